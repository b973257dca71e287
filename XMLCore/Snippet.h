#pragma once

#include "SourceRange.h"

#include <cstddef>
#include <string>
#include <vector>

/// A text to insert, with the places at which the user will type next.
struct Snippet {
    std::u16string text;
    std::vector<SourceRange> placeholders; ///< Ranges of `text`, in the order in which they are visited.

    /// The offset of the caret, counted from the start of `text`: that of the first placeholder or, if there
    /// is none, the end of `text`.
    Offset cursor() const;

    bool operator==(const Snippet&) const = default;
};

template <>
struct std::hash<Snippet> {
    std::size_t operator()(const Snippet& snippet) const noexcept {
        return hashOf(snippet.text, hashOfList(snippet.placeholders));
    }
};
