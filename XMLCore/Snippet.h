#pragma once

#include "SourceRange.h"

#include <cstddef>
#include <string>
#include <vector>

/// A piece of text to insert, with the places where the user will type next.
struct Snippet {
    std::u16string text;
    std::vector<SourceRange> placeholders; ///< In `text`, in the order in which they are visited.

    /// Where the caret goes, counted from the start of `text`: to the first placeholder, or to the end of the
    /// text when there is none.
    Offset cursor() const;

    bool operator==(const Snippet&) const = default;
};

template <>
struct std::hash<Snippet> {
    std::size_t operator()(const Snippet& snippet) const noexcept {
        return hashOf(snippet.text, hashOfList(snippet.placeholders));
    }
};
