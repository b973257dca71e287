#pragma once

#include "DocumentType.h"
#include "Violation.h"

#include <vector>

/// What Namespaces in XML 1.0 (third edition) asks of a document. One that declares version 1.1 may take the
/// binding of a prefix away.
namespace Namespaces {

/// The violations in `tree`, ordered by place. `type` is its document type: defaults of its attribute lists
/// may declare prefixes. A prefix that only something unread could declare is no error but a warning.
std::vector<Violation> check(const DocumentTree& tree, const DocumentType& type);
std::vector<Violation> check(const DocumentTree& tree);

} // namespace Namespaces
