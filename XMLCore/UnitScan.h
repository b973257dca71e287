#pragma once

#include "UnitVector.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// The scans that the lexer and the text types spend their time in, eight units at a step.
///
/// Each takes the half-open stretch `from ..< end` of one array, reads nothing outside it, and answers with
/// a position in it, `end` when it finds nothing.
namespace UnitScan {

namespace CharacterClass {
inline constexpr std::uint8_t nameStart = 1;  ///< A letter, `:`, `_` or any unit of 128 and above.
inline constexpr std::uint8_t name = 2;       ///< A name-start unit, digit, `-` or `.`.
inline constexpr std::uint8_t whitespace = 4; ///< Space, tab, LF or CR.
} // namespace CharacterClass

/// The classes of the units below 128.
inline constexpr std::array<std::uint8_t, 128> asciiClasses = [] {
    std::array<std::uint8_t, 128> classes{};
    const auto add = [&](char first, char last, std::uint8_t flags) {
        for (int unit = first; unit <= last; ++unit) {
            classes[unit] |= flags;
        }
    };
    constexpr std::uint8_t anywhere = CharacterClass::nameStart | CharacterClass::name;
    add('A', 'Z', anywhere);
    add('a', 'z', anywhere);
    add(':', ':', anywhere);
    add('_', '_', anywhere);
    add('0', '9', CharacterClass::name);
    add('-', '.', CharacterClass::name);
    for (const char unit : {' ', '\t', '\n', '\r'}) {
        add(unit, unit, CharacterClass::whitespace);
    }
    return classes;
}();

constexpr bool isNameStart(char16_t unit) {
    return unit >= 128 || (asciiClasses[unit] & CharacterClass::nameStart) != 0;
}
constexpr bool isName(char16_t unit) {
    return unit >= 128 || (asciiClasses[unit] & CharacterClass::name) != 0;
}
constexpr bool isWhitespace(char16_t unit) {
    return unit < 128 && (asciiClasses[unit] & CharacterClass::whitespace) != 0;
}

/// The first unit for which `isMatch` holds; `matches` says the same of a vector, lane by lane.
template <class VectorTest, class UnitTest>
inline const char16_t* find(const char16_t* from, const char16_t* end, VectorTest matches, UnitTest isMatch) {
    for (; end - from >= UnitVector::lanes; from += UnitVector::lanes) {
        const UnitMask mask = matches(UnitVector::load(from));
        if (mask.any()) {
            return from + mask.first();
        }
    }
    while (from != end && !isMatch(*from)) {
        ++from;
    }
    return from;
}

/// The first unit that is one of `wanted`.
template <class... Units>
inline const char16_t* findAny(const char16_t* from, const char16_t* end, Units... wanted) {
    return find(
        from, end, [=](UnitVector units) { return ((units == UnitVector::all(wanted)) | ...).mask(); },
        [=](char16_t unit) { return ((unit == wanted) || ...); });
}

/// The first unit that no name holds.
inline const char16_t* findNameEnd(const char16_t* from, const char16_t* end) {
    return find(
        from, end,
        [](UnitVector units) {
            const auto all = [](char16_t unit) { return UnitVector::all(unit); };
            // One subtraction and one comparison a range; setting 0x20 folds the letters' two cases.
            const UnitVector letter = ((units | all(0x20)) - all(u'a')).atMost(all(u'z' - u'a'));
            const UnitVector digitOrColon = (units - all(u'0')).atMost(all(u':' - u'0'));
            const UnitVector dashOrDot = (units - all(u'-')).atMost(all(u'.' - u'-'));
            const UnitVector beyondASCII = (units - all(0x80)).atMost(all(0xFFFF - 0x80));
            return ~(letter | digitOrColon | dashOrDot | beyondASCII | (units == all(u'_'))).mask();
        },
        [](char16_t unit) { return !isName(unit); });
}

/// The first unit that is not a space, tab, LF or CR.
inline const char16_t* findNonWhitespace(const char16_t* from, const char16_t* end) {
    return find(
        from, end,
        [](UnitVector units) {
            const auto all = [](char16_t unit) { return UnitVector::all(unit); };
            return ~((units == all(u' ')) | (units == all(u'\t')) | (units == all(u'\n')) |
                     (units == all(u'\r')))
                        .mask();
        },
        [](char16_t unit) { return !isWhitespace(unit); });
}

/// Just after the first whole `terminator`, of two or three units, or `end`.
template <std::size_t size>
inline const char16_t* findAfter(const char16_t* from, const char16_t* end,
                                 const char16_t (&terminator)[size]) {
    constexpr std::ptrdiff_t length = size - 1;
    static_assert(length == 2 || length == 3);
    const auto occursAt = [&](const char16_t* at) {
        return std::u16string_view(at, length) == std::u16string_view(terminator, length);
    };
    for (; end - from >= UnitVector::lanes + length - 1; from += UnitVector::lanes) {
        UnitVector matches = (UnitVector::load(from) == UnitVector::all(terminator[0])) &
                             (UnitVector::load(from + 1) == UnitVector::all(terminator[1]));
        if constexpr (length == 3) {
            matches = matches & (UnitVector::load(from + 2) == UnitVector::all(terminator[2]));
        }
        const UnitMask mask = matches.mask();
        if (mask.any()) {
            return from + mask.first() + length;
        }
    }
    for (; end - from >= length; ++from) {
        if (occursAt(from)) {
            return from + length;
        }
    }
    return end;
}

/// Whether the `count` units at `first` and `second` are the same. `readable` is the number of units that
/// may be read at each: at least `count`, and the more there are, the quicker short stretches compare.
inline bool areEqual(const char16_t* first, const char16_t* second, std::ptrdiff_t count,
                     std::ptrdiff_t readable) {
    while (count >= UnitVector::lanes) {
        if ((~(UnitVector::load(first) == UnitVector::load(second)).mask()).any()) {
            return false;
        }
        first += UnitVector::lanes;
        second += UnitVector::lanes;
        count -= UnitVector::lanes;
        readable -= UnitVector::lanes;
    }
    if (readable >= UnitVector::lanes) {
        const UnitMask differing = ~(UnitVector::load(first) == UnitVector::load(second)).mask();
        return !differing.firstLanes(static_cast<int>(count)).any();
    }
    return std::u16string_view(first, count) == std::u16string_view(second, count);
}

} // namespace UnitScan
