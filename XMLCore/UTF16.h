#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// UTF-16 units and the scalars that they encode. A lone surrogate counts as a scalar here.
namespace UTF16 {

constexpr bool isHighSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
constexpr bool isLowSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }
constexpr bool isSurrogate(char16_t unit) { return (unit & 0xF800) == 0xD800; }

/// The scalar that a high and a low surrogate encode.
constexpr char32_t decode(char16_t high, char16_t low) {
    return 0x10000 + ((static_cast<char32_t>(high) & 0x3FF) << 10) + (static_cast<char32_t>(low) & 0x3FF);
}

/// The number of units of `scalar`: 1 or 2.
constexpr std::size_t length(char32_t scalar) { return scalar < 0x10000 ? 1 : 2; }

/// The scalar whose first unit is `*at`. `end`, the end of the text, is greater than `at`.
constexpr char32_t scalarAt(const char16_t* at, const char16_t* end) {
    const bool isPair = isHighSurrogate(*at) && end - at > 1 && isLowSurrogate(at[1]);
    return isPair ? decode(at[0], at[1]) : *at;
}

/// The scalar whose last unit is `at[-1]`. `begin`, the start of the text, is less than `at`.
constexpr char32_t scalarBefore(const char16_t* begin, const char16_t* at) {
    const bool isPair = isLowSurrogate(at[-1]) && at - begin > 1 && isHighSurrogate(at[-2]);
    return isPair ? decode(at[-2], at[-1]) : at[-1];
}

/// The length of `units` in UTF-8, in bytes. A lone surrogate counts as two bytes.
constexpr std::uint64_t utf8Length(std::u16string_view units) {
    std::uint64_t length = units.size();
    for (const char16_t unit : units) {
        // Each half of a surrogate pair counts as two of its four bytes.
        length += static_cast<std::uint64_t>(unit >= 0x80) + (unit >= 0x800 && !isSurrogate(unit));
    }
    return length;
}

/// Writes the one or two units of `scalar` to `to` and returns their end.
constexpr char16_t* write(char32_t scalar, char16_t* to) {
    if (scalar < 0x10000) {
        *to++ = static_cast<char16_t>(scalar);
    } else {
        *to++ = static_cast<char16_t>(0xD800 + ((scalar - 0x10000) >> 10));
        *to++ = static_cast<char16_t>(0xDC00 + (scalar & 0x3FF));
    }
    return to;
}

constexpr void append(std::u16string& text, char32_t scalar) {
    char16_t units[2] = {};
    text.append(units, write(scalar, units));
}

} // namespace UTF16
