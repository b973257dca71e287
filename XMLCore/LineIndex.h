#pragma once

#include "SourceText.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// The lines of a text by the offsets at which they start. Only LF ends a line: a CR is an ordinary unit
/// that stays at the end of its line.
struct LineIndex {
    std::vector<Offset> starts = {0}; ///< Never empty, the first always 0.

    /// The index of the empty text: one line.
    LineIndex() = default;
    explicit LineIndex(const SourceText& text);

    /// The line, counted from 0, that holds `at`; an offset before the text belongs to the first line, one
    /// beyond it to the last.
    std::size_t line(std::int64_t at) const;

    /// The offset at which line `ofLine` starts; lines beyond either end count as the nearest one.
    Offset start(std::int64_t ofLine) const;

    std::size_t lineCount() const { return starts.size(); }

    bool operator==(const LineIndex&) const = default;
};
