#pragma once

#include "SourceRange.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The replacement of one range of a text by a string. An insertion has an empty range, a deletion an empty
/// replacement. The edits of a list are all in the coordinates of the text before any of them, and do not
/// overlap.
struct TextEdit {
    SourceRange range;
    std::u16string replacement;

    static TextEdit insert(std::u16string string, Offset at) {
        return {SourceRange::empty(at), std::move(string)};
    }
    static TextEdit deleteRange(SourceRange range) { return {range, {}}; }

    /// The change of the text's length, in units; negative if the text becomes shorter.
    std::int64_t delta() const {
        return static_cast<std::int64_t>(replacement.size()) - static_cast<std::int64_t>(range.length());
    }

    /// `edits` in the order in which they are applied: by descending `range.lower`; at the same offset, the
    /// longer range first; otherwise in the given order. So of two insertions at one offset, the one given
    /// first is applied first, and its text comes last.
    static std::vector<TextEdit> applicationOrder(std::span<const TextEdit> edits);

    /// `to` with `edits` applied, which may be in any order. Aborts if two of them overlap or one reaches
    /// beyond the text.
    static std::u16string apply(std::span<const TextEdit> edits, std::u16string_view to);

    /// The offset after `edits` that corresponds to `offset` before them. An edit that ends at or before
    /// `offset` moves it. An insertion exactly at `offset` and an edit that contains it do not.
    static std::int64_t map(Offset offset, std::span<const TextEdit> edits);

    bool operator==(const TextEdit&) const = default;
};

template <>
struct std::hash<TextEdit> {
    std::size_t operator()(const TextEdit& edit) const noexcept {
        return hashOf(edit.range, edit.replacement);
    }
};
