#pragma once

#include "UnitScan.h"

#include <string_view>

/// The scans for those who look back from a caret. Each looks at the stretch `from ..< end` of the array
/// `units`, reads nothing outside it, and answers with the last place in it that fits, `nowhere` when none
/// does.
namespace UnitScanBackward {

using UnitScan::Position;

inline constexpr Position nowhere = -1;

/// The last place for which `isMatch` holds; `matches` says the same of the eight places from `at` on.
template <class VectorTest, class UnitTest>
Position findLast(Position from, Position end, VectorTest matches, UnitTest isMatch) {
    constexpr Position lanes = UnitVector::lanes;
    constexpr Position stride = 4 * lanes;
    // What is looked for is mostly near; only long searches are worth the wider stride.
    if (end - from >= lanes && !matches(end - lanes).mask().any()) {
        end -= lanes;
        while (end - from >= stride && !(matches(end - lanes) | matches(end - 2 * lanes) |
                                         matches(end - 3 * lanes) | matches(end - 4 * lanes))
                                            .mask()
                                            .any()) {
            end -= stride;
        }
        while (end - from >= lanes && !matches(end - lanes).mask().any()) {
            end -= lanes;
        }
    }
    while (end > from) {
        --end;
        if (isMatch(end)) {
            return end;
        }
    }
    return nowhere;
}

/// The last unit that is one of `wanted`.
template <class... Units>
Position findLastAny(const char16_t* units, Position from, Position end, Units... wanted) {
    return findLast(
        from, end,
        [=](Position at) {
            const UnitVector vector = UnitVector::load(units + at);
            return ((vector == UnitVector::all(wanted)) | ...);
        },
        [=](Position at) { return ((units[at] == wanted) || ...); });
}

/// The last unit that is `first` and has one of `second` right after it, inside the stretch too.
template <class... Units>
Position findLastPair(const char16_t* units, Position from, Position end, char16_t first, Units... second) {
    return findLast(
        from, end - 1,
        [=](Position at) {
            const UnitVector next = UnitVector::load(units + at + 1);
            return (UnitVector::load(units + at) == UnitVector::all(first)) &
                   ((next == UnitVector::all(second)) | ...);
        },
        [=](Position at) { return units[at] == first && ((units[at + 1] == second) || ...); });
}

/// The last place where the whole of `sequence` stands, of two units or more.
inline Position findLastSequence(const char16_t* units, Position from, Position end,
                                 std::u16string_view sequence) {
    Position at = end;
    while ((at = findLastPair(units, from, at, sequence[0], sequence[1])) != nowhere) {
        if (std::u16string_view(units + at, end - at).starts_with(sequence)) {
            return at;
        }
        ++at; // The next pair may end with the unit that this one starts with.
    }
    return nowhere;
}

} // namespace UnitScanBackward
