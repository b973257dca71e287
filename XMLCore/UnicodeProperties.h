#pragma once

#include <cstdint>
#include <string_view>

/// What Unicode 15.0 says of single scalars. Never fails: a surrogate counts as a control, and what is no
/// code point at all as an unassigned one.
namespace UnicodeProperties {

/// Grapheme_Cluster_Break, with Extended_Pictographic for the scalars that would be Other otherwise.
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
/// XML knows fewer, see `UnitScan::isWhitespace`.
bool isWhitespace(char32_t scalar);

/// Whether `character`, of any number of scalars, is white space: whether its first scalar is.
bool isWhitespace(std::u16string_view character);

} // namespace UnicodeProperties
