#pragma once

#include "SourceText.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// The offsets at which the lines of a text start. Only LF ends a line; a CR is an ordinary unit at the end
/// of its line.
struct LineIndex {
    std::vector<Offset> starts = {0}; ///< Ascending and never empty; the first is always 0.

    /// The index of the empty text: one line.
    LineIndex() = default;
    explicit LineIndex(const SourceText& text);

    /// The line, counted from 0, that contains `at`. An offset before the text belongs to the first line, one
    /// beyond the text to the last line.
    std::size_t line(std::int64_t at) const;

    /// The offset at which line `ofLine`, counted from 0, starts. A number before the first or beyond the
    /// last line counts as the nearest line.
    Offset start(std::int64_t ofLine) const;

    std::size_t lineCount() const { return starts.size(); }

    bool operator==(const LineIndex&) const = default;
};
