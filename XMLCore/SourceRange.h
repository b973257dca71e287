#pragma once

#include "Hash.h"
#include "Precondition.h"

#include <cstdint>
#include <limits>
#include <string>

/// A position in a text, counted in UTF-16 units from its start.
using Offset = std::uint32_t;

/// The half-open range `lower ..< upper` of UTF-16 offsets.
struct SourceRange {
    Offset lower = 0;
    Offset upper = 0;

    constexpr SourceRange() = default;

    /// Aborts if a bound is negative or above 4294967295, or if `upperBound` is below `lowerBound`.
    constexpr SourceRange(std::int64_t lowerBound, std::int64_t upperBound)
        : lower(static_cast<Offset>(lowerBound)), upper(static_cast<Offset>(upperBound)) {
        precondition(0 <= lowerBound && lowerBound <= upperBound &&
                         upperBound <= std::numeric_limits<Offset>::max(),
                     "a range needs 0 <= lower <= upper <= 4294967295");
    }

    /// A range without the constructor's check, for callers that know that `lower <= upper`.
    static constexpr SourceRange unchecked(Offset lower, Offset upper) {
        SourceRange range;
        range.lower = lower;
        range.upper = upper;
        return range;
    }

    /// The range of `length` units that starts at `offset`.
    static constexpr SourceRange at(std::int64_t offset, std::int64_t length) {
        return {offset, offset + length};
    }

    /// The empty range at `offset`.
    static constexpr SourceRange empty(std::int64_t at) { return {at, at}; }

    constexpr Offset length() const { return upper - lower; }
    constexpr bool isEmpty() const { return lower == upper; }

    /// Whether `offset` is the offset of a unit in the range: `lower` is, `upper` is not.
    constexpr bool contains(Offset offset) const { return lower <= offset && offset < upper; }

    /// The range with `base` added to both bounds, which maps a range of a part of a text to the whole text.
    /// Aborts if a bound is then negative or too large.
    constexpr SourceRange shifted(std::int64_t base) const { return {lower + base, upper + base}; }

    /// The range as text, such as "3..<7".
    std::string description() const;

    constexpr bool operator==(const SourceRange&) const = default;
};
static_assert(sizeof(SourceRange) == 8);

template <>
struct std::hash<SourceRange> {
    std::size_t operator()(SourceRange range) const noexcept { return hashOf(range.lower, range.upper); }
};
