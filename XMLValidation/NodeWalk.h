#pragma once

#include "ContentCheck.h"
#include "DocumentTree.h"
#include "NamespaceCheck.h"

/// Shows a tree and its text to the checks, in one pass over both.
namespace NodeWalk {

/// Shows them to those that are not null.
void walk(const DocumentTree& tree, XMLVersion version, ContentCheck* content, NamespaceCheck* namespaces);

} // namespace NodeWalk
