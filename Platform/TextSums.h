#pragma once

#include "SourceRange.h"

#include <string_view>

/// What the units of a stretch of text add up to. Only LF ends a line; its units stand between two of them,
/// so a CR belongs to its line.
struct TextSums {
    Offset units = 0;
    Offset lineFeeds = 0;
    Offset outsidePrintableASCII = 0; ///< Units outside U+0020 to U+007E; LF, CR and tab are outside too.
    Offset firstLine = 0;             ///< Units before the first LF; all of them when there is none.
    Offset lastLine = 0;              ///< Units after the last LF; all of them when there is none.
    Offset longestLine = 0;           ///< Units of the longest line, the first and the last included.

    /// The sums of at most 4294967295 units.
    static TextSums of(std::u16string_view stretch);

    /// Makes these the sums of this stretch and the one after it.
    TextSums& operator+=(const TextSums& next);

    bool operator==(const TextSums&) const = default;
};
static_assert(sizeof(TextSums) == 24);
