#pragma once

#include "DocumentType.h"
#include "Violation.h"

#include <vector>

/// What XML 1.0 (fifth edition) asks of a document beyond what the parser says; of a document that declares
/// version 1.1, what that asks.
namespace WellFormedness {

/// The violations in `tree`, ordered by place, those of its document type declaration among them; without
/// those that only repeat an error of the parser at the same place. A document is well-formed when the tree
/// has no error and this answers no violation that is one. Near-linear in the text whatever it holds; takes
/// any tree.
std::vector<Violation> check(const DocumentTree& tree);

/// The same with the document type of the tree, as `DocumentType::read` has it.
std::vector<Violation> check(const DocumentTree& tree, const DocumentType& type);

} // namespace WellFormedness
