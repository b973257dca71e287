#pragma once

#include "UTF16.h"
#include "UnitVector.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// For the few functions that inner loops consist of, and for the rare ones that should stay out of these
/// loops.
#define TAMO_ALWAYS_INLINE [[gnu::always_inline]] inline
#define TAMO_NEVER_INLINE [[gnu::noinline]]

/// Searches for one or a few units, eight units per step. The text types use them, and the lexer for long or
/// rare tokens; for frequent tokens it uses the `UnitIndex`.
///
///
/// Each function searches the range `from ..< end` of the array `units` and reads no unit outside it. It
/// returns an offset in this range, or `end` if it finds nothing.
namespace UnitScan {

using Position = std::ptrdiff_t;

namespace CharacterClass {
inline constexpr std::uint8_t nameStart = 1; ///< A letter, `:`, `_` or any unit of 128 and above.
inline constexpr std::uint8_t name = 2;      ///< A name-start unit, digit, `-` or `.`.
} // namespace CharacterClass

/// The classes of the units below 128, as bits of `CharacterClass`.
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
    return classes;
}();

constexpr bool isNameStart(char16_t unit) {
    return unit >= 128 || (asciiClasses[unit] & CharacterClass::nameStart) != 0;
}
constexpr bool isName(char16_t unit) {
    return unit >= 128 || (asciiClasses[unit] & CharacterClass::name) != 0;
}
/// Space, tab, LF or CR.
constexpr bool isWhitespace(char16_t unit) {
    constexpr std::uint64_t whitespace = 1ULL << ' ' | 1ULL << '\t' | 1ULL << '\n' | 1ULL << '\r';
    return unit <= u' ' && (whitespace >> unit & 1) != 0;
}

/// Continues `find` from the second vector on. Not inlined.
template <class VectorTest, class UnitTest>
TAMO_NEVER_INLINE Position findFarther(const char16_t* units, Position from, Position end, VectorTest matches,
                                       UnitTest isMatch) {
    for (; from + UnitVector::lanes <= end; from += UnitVector::lanes) {
        const UnitMask mask = matches(UnitVector::load(units + from));
        if (mask.any()) {
            return from + mask.first();
        }
    }
    while (from < end && !isMatch(units[from])) {
        ++from;
    }
    return from;
}

/// The first unit for which `isMatch` returns true; `matches` returns the same for a vector, as a mask. Most
/// searches end within the first vector, so only this step is inlined.
template <class VectorTest, class UnitTest>
TAMO_ALWAYS_INLINE Position find(const char16_t* units, Position from, Position end, VectorTest matches,
                                 UnitTest isMatch) {
    if (from + UnitVector::lanes <= end) [[likely]] {
        const UnitMask mask = matches(UnitVector::load(units + from));
        if (mask.any()) [[likely]] {
            return from + mask.first();
        }
        from += UnitVector::lanes;
    }
    return findFarther(units, from, end, matches, isMatch);
}

/// The first unit that is one of `wanted`.
template <class... Units>
TAMO_ALWAYS_INLINE Position findAny(const char16_t* units, Position from, Position end, Units... wanted) {
    return find(
        units, from, end,
        [=](UnitVector vector) { return ((vector == UnitVector::all(wanted)) | ...).mask(); },
        [=](char16_t unit) { return ((unit == wanted) || ...); });
}

/// The first unit that cannot be part of a name.
TAMO_ALWAYS_INLINE Position findNameEnd(const char16_t* units, Position from, Position end) {
    return find(
        units, from, end,
        [](UnitVector vector) {
            const auto all = [](char16_t unit) { return UnitVector::all(unit); };
            // One subtraction and one comparison per range; setting the bit 0x20 folds the case of letters.
            const UnitVector letter = ((vector | all(0x20)) - all(u'a')).atMost(all(u'z' - u'a'));
            const UnitVector dashToColon = (vector - all(u'-')).atMost(all(u':' - u'-'));
            const UnitVector isASCII = (vector & all(0xFF80)) == all(0);
            const UnitVector slash = vector == all(u'/');
            return (isASCII.without(letter | dashToColon | (vector == all(u'_'))) | slash).mask();
        },
        [](char16_t unit) { return !isName(unit); });
}

/// The first unit that is not a space, tab, LF or CR.
TAMO_ALWAYS_INLINE Position findNonWhitespace(const char16_t* units, Position from, Position end) {
    return find(
        units, from, end,
        [](UnitVector vector) {
            const auto all = [](char16_t unit) { return UnitVector::all(unit); };
            return ~((vector == all(u' ')) | (vector == all(u'\t')) | (vector == all(u'\n')) |
                     (vector == all(u'\r')))
                        .mask();
        },
        [](char16_t unit) { return !isWhitespace(unit); });
}

/// The first surrogate that is not half of a pair inside the range.
inline Position findLoneSurrogate(const char16_t* units, Position from, Position end) {
    for (;; from += 2) {
        from = find(
            units, from, end,
            [](UnitVector vector) {
                return ((vector & UnitVector::all(0xF800)) == UnitVector::all(0xD800)).mask();
            },
            UTF16::isSurrogate);
        if (from == end || UTF16::length(UTF16::scalarAt(units + from, units + end)) == 1) {
            return from;
        }
    }
}

/// The offset just after the first complete `terminator`, which has two or three units; otherwise `end`.
template <std::size_t size>
inline Position findAfter(const char16_t* units, Position from, Position end,
                          const char16_t (&terminator)[size]) {
    constexpr Position length = size - 1;
    static_assert(length == 2 || length == 3);
    for (; from + UnitVector::lanes + length - 1 <= end; from += UnitVector::lanes) {
        UnitVector matches = (UnitVector::load(units + from) == UnitVector::all(terminator[0])) &
                             (UnitVector::load(units + from + 1) == UnitVector::all(terminator[1]));
        if constexpr (length == 3) {
            matches = matches & (UnitVector::load(units + from + 2) == UnitVector::all(terminator[2]));
        }
        const UnitMask mask = matches.mask();
        if (mask.any()) {
            return from + mask.first() + length;
        }
    }
    for (; from + length <= end; ++from) {
        if (std::u16string_view(units + from, length) == std::u16string_view(terminator, length)) {
            return from + length;
        }
    }
    return end;
}

/// Whether the `count` units at `first` and at `second` are equal. `readable`, at least `count`, is the
/// number of units that may be read at each. If it exceeds `count`, a short range is compared faster.
TAMO_ALWAYS_INLINE bool areEqual(const char16_t* first, const char16_t* second, Position count,
                                 Position readable) {
    Position compared = 0;
    for (; count - compared >= UnitVector::lanes; compared += UnitVector::lanes) {
        if ((~(UnitVector::load(first + compared) == UnitVector::load(second + compared)).mask()).any()) {
            return false;
        }
    }
    if (readable - compared >= UnitVector::lanes) {
        const UnitMask equal =
            (UnitVector::load(first + compared) == UnitVector::load(second + compared)).mask();
        return !(~equal).firstLanes(count - compared).any();
    }
    return std::u16string_view(first + compared, count - compared) ==
           std::u16string_view(second + compared, count - compared);
}

} // namespace UnitScan
