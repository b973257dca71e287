#include "WellFormedness.h"

#include "StandardsCheck.h"

std::vector<Violation> WellFormedness::check(const DocumentTree& tree, const DocumentType& type) {
    return StandardsCheck::check(tree, type, StandardsCheck::Scope::wellFormedness);
}

std::vector<Violation> WellFormedness::check(const DocumentTree& tree) {
    return check(tree, DocumentType::read(tree));
}
