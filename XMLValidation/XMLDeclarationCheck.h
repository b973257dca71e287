#pragma once

#include "DocumentTree.h"
#include "Violation.h"
#include "XMLCharacters.h"

#include <vector>

/// What the XML declaration of a document says about how to read it.
struct DeclaredForm {
    XMLVersion version = XMLVersion::v1_0;
    bool isStandalone = false;
};

/// The XML declaration at the start of a text, read strictly.
namespace XMLDeclarationCheck {

/// The node of the XML declaration: an instruction `xml` at the very start of the text. None without one.
std::optional<NodeID> find(const DocumentTree& tree);

/// What is wrong with the declaration, in order, added to `violations`; what it says as far as it can be
/// read. A text without one says the same as one that declares version 1.0 alone.
DeclaredForm check(const DocumentTree& tree, std::vector<Violation>& violations);

} // namespace XMLDeclarationCheck
