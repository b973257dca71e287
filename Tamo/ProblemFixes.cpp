#include "ProblemFixes.h"

#include <algorithm>

namespace {

/// Whether one of the edits replaces units, and the other changes these or adds to them.
bool clash(const TextEdit& first, const TextEdit& second) {
    const bool areInsertions = first.range.isEmpty() && second.range.isEmpty();
    return !areInsertions && first.range.lower <= second.range.upper &&
           second.range.lower <= first.range.upper;
}

} // namespace

std::vector<TextEdit> ProblemFixes::edits(const DocumentTree& tree) {
    // Fixes replace the range of their problem or insert something, never inside the range of another fix. So
    // only those of problems that start at the same offset can clash, as when an end tag that nobody needs
    // (`</b` in `<a></b`) has no `>` either.
    std::vector<TextEdit> edits;
    std::size_t firstHere = 0;
    for (std::size_t index = 0; index < tree.diagnostics.size(); ++index) {
        if (index == 0 || tree.diagnostics.range(index - 1).lower != tree.diagnostics.range(index).lower) {
            firstHere = edits.size();
        }
        const auto fix = tree.diagnostics[index].fix;
        if (!fix) {
            continue;
        }
        const std::span here(edits.begin() + static_cast<std::ptrdiff_t>(firstHere), edits.end());
        const bool isInTheWay = std::ranges::any_of(fix->edits, [here](const TextEdit& edit) {
            return std::ranges::any_of(here, [&](const TextEdit& other) { return clash(edit, other); });
        });
        if (!isInTheWay) {
            edits.insert(edits.end(), fix->edits.begin(), fix->edits.end());
        }
    }
    return edits;
}

TextEdit ProblemFixes::merged(std::span<const TextEdit> edits, const SourceText& text) {
    SourceRange range = edits.front().range;
    for (const TextEdit& edit : edits) {
        range = {std::min(range.lower, edit.range.lower), std::max(range.upper, edit.range.upper)};
    }
    std::vector<TextEdit> shifted(edits.begin(), edits.end());
    for (TextEdit& edit : shifted) {
        edit.range = edit.range.shifted(-std::int64_t(range.lower));
    }
    return {range, TextEdit::apply(shifted, text.units(range))};
}
