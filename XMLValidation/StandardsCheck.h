#pragma once

#include "DocumentType.h"
#include "Violation.h"

#include <vector>

/// Everything that the standards forbid in a document and that the parser could read all the same:
/// `WellFormedness` and `Namespaces` in one pass.
namespace StandardsCheck {

struct Findings {
    DocumentType type;
    std::vector<Violation> violations; ///< Ordered by place; at one place those of well-formedness first.
};

/// What is to be looked for.
enum class Scope : std::uint8_t { everything, wellFormedness, namespaces };

/// Near-linear in the text, whatever it holds; allocates nothing that grows with the text where nothing is
/// wrong. Takes any tree and may run on any thread.
Findings check(const DocumentTree& tree);
std::vector<Violation> check(const DocumentTree& tree, const DocumentType& type, Scope scope);

} // namespace StandardsCheck
