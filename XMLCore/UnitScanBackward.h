#pragma once

#include "UnitScan.h"

#include <string_view>

/// Searches backwards, for example from a caret. Each function searches the range `from ..< end` of the array
/// `units` and reads no unit outside it. It returns the last matching offset in this range, or `nowhere`.
namespace UnitScanBackward {

using UnitScan::Position;

inline constexpr Position nowhere = -1;

/// The last offset for which `isMatch` returns true; `matches` returns the same for the eight offsets from
/// its argument on, as a vector.
template <class VectorTest, class UnitTest>
Position findLast(Position from, Position end, VectorTest matches, UnitTest isMatch) {
    constexpr Position lanes = UnitVector::lanes;
    constexpr Position stride = 4 * lanes;
    // The match is usually near; the wider stride pays off only for long searches.
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

/// The last unit that is `first` and is directly followed by one of `second`. Both are inside the range.
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

/// The start of the last complete `sequence`, which has at least two units.
inline Position findLastSequence(const char16_t* units, Position from, Position end,
                                 std::u16string_view sequence) {
    Position at = end;
    while ((at = findLastPair(units, from, at, sequence[0], sequence[1])) != nowhere) {
        if (std::u16string_view(units + at, end - at).starts_with(sequence)) {
            return at;
        }
        ++at; // The next pair may end with the first unit of this pair.
    }
    return nowhere;
}

} // namespace UnitScanBackward
