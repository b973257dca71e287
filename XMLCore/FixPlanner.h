#pragma once

#include "DocumentTree.h"

#include <cstddef>
#include <optional>
#include <span>
#include <stop_token>
#include <vector>

/// Computes edits that repair the problems of a document. Each problem is repaired by the fix that the parser
/// offers or by a repair that considers more of the surrounding text; `plan` repairs all problems together.
namespace FixPlanner {

/// The repairs of the diagnostic at `index`, without its fix. Reads only the text near the problem.
std::vector<Diagnostic::Fix> repairs(const DocumentTree& tree, std::size_t index);

/// Everything that can repair the diagnostic at `index`: its fix first, if it has one, then its repairs.
std::vector<Diagnostic::Fix> fixes(const DocumentTree& tree, std::size_t index);

/// The edits that repair a whole document, and what they leave.
struct Plan {
    std::vector<TextEdit> edits; ///< In ascending order, with at least one unit between two.
    std::size_t left = 0;        ///< The number of diagnostics of the resulting text, including warnings.
    bool mayMendMore = false;    ///< Whether any of these diagnostics has a fix or a repair.
};

/// Plans in stages, each of which works on the text that the stage before has produced: first the quotes of
/// values, then the rest of the markup (escapes, `>`, terminators, values), then end tags, and finally
/// whatever is left. A stage that increases the number of errors is part of the plan only if a later stage
/// makes up for it; the resulting text never has more errors than `text`. Parses at most five times, and
/// takes near-linear time. None once `stop` is requested.
std::optional<Plan> plan(const SourceText& text, const std::stop_token& stop = {});

/// One edit that has the same effect on `text` as all of `edits`, of which there is at least one. Its range
/// is the smallest that covers theirs.
TextEdit merged(std::span<const TextEdit> edits, const SourceText& text);

} // namespace FixPlanner
