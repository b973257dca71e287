#pragma once

#include "DocumentTree.h"

#include <cstddef>
#include <optional>
#include <span>
#include <stop_token>
#include <vector>

/// Mends the problems of a document, each by the fix that the parser offers or by a repair that sees more of
/// the text around it, and all of them in one go.
namespace FixPlanner {

/// Repairs of the problem at `index` of the tree's list, beside its fix. Takes a moment, whatever the text.
std::vector<Diagnostic::Fix> repairs(const DocumentTree& tree, std::size_t index);

/// All that can be done about one problem: its fix first, if it has one.
std::vector<Diagnostic::Fix> fixes(const DocumentTree& tree, std::size_t index);

/// What mends a whole document.
struct Plan {
    std::vector<TextEdit> edits; ///< Ascending, with at least one unit between two of them.
    std::size_t left = 0;        ///< How many problems the text then has, warnings too.
    bool mayMendMore = false;    ///< Whether any of these has a fix or a repair.
};

/// Mends in stages, each of which sees what the one before made of the text: first the quotes of values, then
/// the rest of the markup (escapes, `>`, terminators, values), then end tags, and at last whatever is left.
/// A stage that leaves more errors than there were is not part of the plan, and neither is what builds on it;
/// the text never has more errors than before. Parses at most five times, and takes time near-linear in the
/// text. Nothing once `stop` is requested.
std::optional<Plan> plan(const SourceText& text, const std::stop_token& stop = {});

/// One edit of the least range of `text` that does what all of `edits`, at least one, do together.
TextEdit merged(std::span<const TextEdit> edits, const SourceText& text);

} // namespace FixPlanner
