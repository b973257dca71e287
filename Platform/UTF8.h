#pragma once

#include "Bytes.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

/// UTF-8 to UTF-16 and back, sixteen bytes at a step where they are ASCII. Strict: overlong and truncated
/// sequences, surrogates and characters beyond U+10FFFF are illegal. U+FEFF is a character like others.
namespace UTF8 {

/// How far a conversion came: to the end of its input, or to the first illegal sequence.
struct Progress {
    std::size_t read = 0;    ///< Bytes or units of the input.
    std::size_t written = 0; ///< Units or bytes of the output.
};

/// Writes the units of `bytes` at `to`, which must have room for as many units as there are bytes.
Progress decode(Bytes bytes, char16_t* to);

/// How many units `decode` writes for `bytes` when they are legal. Never more than there are bytes, nor fewer
/// than `decode` writes when they are not.
std::size_t unitCount(Bytes bytes);

/// Whether `bytes` are UTF-8 from the first to the last.
bool isValid(Bytes bytes);

/// Writes the bytes of `units` at `to`, which must have room for three bytes a unit. A lone surrogate is
/// illegal.
Progress encode(std::u16string_view units, std::uint8_t* to);

} // namespace UTF8
