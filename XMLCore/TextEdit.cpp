#include "TextEdit.h"

#include <algorithm>
#include <ranges>

std::vector<TextEdit> TextEdit::applicationOrder(std::span<const TextEdit> edits) {
    std::vector<TextEdit> ordered(edits.begin(), edits.end());
    std::ranges::stable_sort(ordered, [](const TextEdit& first, const TextEdit& second) {
        return first.range.lower != second.range.lower ? first.range.lower > second.range.lower
                                                       : first.range.length() > second.range.length();
    });
    return ordered;
}

std::u16string TextEdit::apply(std::span<const TextEdit> edits, std::u16string_view to) {
    const std::vector<TextEdit> ordered = applicationOrder(edits);
    std::int64_t length = static_cast<std::int64_t>(to.size());
    for (const TextEdit& edit : ordered) {
        length += edit.delta();
    }
    // The result is composed from its start, so the edits are taken in the reverse order of application.
    std::u16string result;
    result.reserve(static_cast<std::size_t>(std::max<std::int64_t>(length, 0)));
    std::size_t kept = 0;
    for (const TextEdit& edit : ordered | std::views::reverse) {
        precondition(kept <= edit.range.lower, "edits do not overlap");
        precondition(edit.range.upper <= to.size(), "an edit lies inside the text");
        result.append(to.substr(kept, edit.range.lower - kept)).append(edit.replacement);
        kept = edit.range.upper;
    }
    result.append(to.substr(kept));
    return result;
}

std::int64_t TextEdit::map(Offset offset, std::span<const TextEdit> edits) {
    std::int64_t mapped = offset;
    for (const TextEdit& edit : edits) {
        const bool isInsertionHere = edit.range.isEmpty() && edit.range.lower == offset;
        if (edit.range.upper <= offset && !isInsertionHere) {
            mapped += edit.delta();
        }
    }
    return mapped;
}
