#include "Namespaces.h"

#include "StandardsCheck.h"

std::vector<Violation> Namespaces::check(const DocumentTree& tree, const DocumentType& type) {
    return StandardsCheck::check(tree, type, StandardsCheck::Scope::namespaces);
}

std::vector<Violation> Namespaces::check(const DocumentTree& tree) {
    return check(tree, DocumentType::read(tree));
}
