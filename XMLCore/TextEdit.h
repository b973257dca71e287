#pragma once

#include "SourceRange.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The replacement of one range of a text by a string. An insertion has an empty range, a deletion an empty
/// replacement. The edits of a list all speak of the text before any of them, and do not overlap.
struct TextEdit {
    SourceRange range;
    std::u16string replacement;

    static TextEdit insert(std::u16string string, Offset at) {
        return {SourceRange::empty(at), std::move(string)};
    }
    static TextEdit deleteRange(SourceRange range) { return {range, {}}; }

    /// What the edit adds to the text's length, in units.
    std::int64_t delta() const {
        return static_cast<std::int64_t>(replacement.size()) - static_cast<std::int64_t>(range.length());
    }

    /// `edits` in the order in which they are applied: from the highest `range.lower` down, at one offset
    /// the longer range first, otherwise as given. Of two insertions at one offset the first given is
    /// therefore applied first, and its text ends up last.
    static std::vector<TextEdit> applicationOrder(std::span<const TextEdit> edits);

    /// `to` with `edits` applied, given in any order. Stops the program when two of them overlap or one
    /// reaches beyond the text.
    static std::u16string apply(std::span<const TextEdit> edits, std::u16string_view to);

    /// Where `offset` of the text before `edits` is found after them: it moves with every edit that ends at
    /// or before it, but stays before an insertion exactly at it and within an edit that contains it.
    static std::int64_t map(Offset offset, std::span<const TextEdit> edits);

    bool operator==(const TextEdit&) const = default;
};

template <>
struct std::hash<TextEdit> {
    std::size_t operator()(const TextEdit& edit) const noexcept {
        return hashOf(edit.range, edit.replacement);
    }
};
