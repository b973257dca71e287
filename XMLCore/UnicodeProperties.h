#pragma once

#include <cstdint>
#include <string_view>

/// Properties of single scalars in Unicode 15.0. Defined for every number: a surrogate counts as a control,
/// and a number above U+10FFFF as an unassigned scalar.
namespace UnicodeProperties {

/// Grapheme_Cluster_Break. `pictographic` stands for Extended_Pictographic, whose scalars would be Other
/// otherwise.
enum class GraphemeBreak : std::uint8_t {
    other,
    carriageReturn,
    lineFeed,
    control,
    extend,
    zeroWidthJoiner,
    regionalIndicator,
    prepend,
    spacingMark,
    hangulL,
    hangulV,
    hangulT,
    hangulLV,
    hangulLVT,
    pictographic,
};

namespace Tables {
#include "GraphemeTables.inc"
} // namespace Tables

inline GraphemeBreak graphemeBreak(char32_t scalar) {
    if (scalar >= Tables::gapStart) {
        if (scalar < Tables::gapEnd || scalar >= Tables::end) {
            return GraphemeBreak::other;
        }
        scalar -= Tables::gapEnd - Tables::gapStart;
    }
    const char32_t block = Tables::blockIndex[scalar / Tables::blockSize];
    const char32_t place = block * Tables::blockSize + scalar % Tables::blockSize;
    return static_cast<GraphemeBreak>(Tables::blocks[place / 2] >> (place % 2 * 4) & 0xF);
}

/// White_Space: the controls from tab to CR, the spaces of every width, the line and paragraph separators.
/// XML has fewer: see `UnitScan::isWhitespace`.
bool isWhitespace(char32_t scalar);

/// Whether the first scalar of `character`, which may have several, is white space; false if it is empty.
bool isWhitespace(std::u16string_view character);

} // namespace UnicodeProperties
