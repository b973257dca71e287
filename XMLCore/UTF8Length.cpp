#include "UTF8Length.h"

#include "UTF16.h"
#include "UnitVector.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <numeric>

namespace {

/// The number of bytes in UTF-8, less the number of units, of the whole vectors from `unit` to `end`.
std::uint64_t bytesBeyondUnits(const char16_t* unit, const char16_t* end) {
    UnitVector more = UnitVector::all(0);
    for (; unit != end; unit += UnitVector::lanes) {
        const UnitVector units = UnitVector::load(unit);
        const UnitVector one = units.atMost(UnitVector::all(0x7F));
        // Each half of a surrogate pair counts as two of its four bytes.
        const UnitVector surrogate = (units & UnitVector::all(0xF800)) == UnitVector::all(0xD800);
        const UnitVector two = units.atMost(UnitVector::all(0x7FF)) | surrogate;
        // A lane with all bits set is -1, so subtracting it adds one.
        more = more - UnitVector::all(0xFFFF).without(one) - UnitVector::all(0xFFFF).without(two);
    }
    const auto lanes = std::bit_cast<std::array<char16_t, UnitVector::lanes>>(more);
    return std::accumulate(lanes.begin(), lanes.end(), std::uint64_t{0});
}

} // namespace

std::uint64_t utf8LengthOfText(std::u16string_view units) {
    // A lane counts up to 65,535, and each vector adds at most two to it.
    constexpr std::size_t mostCounted = std::size_t{32'767} * UnitVector::lanes;
    std::uint64_t length = units.size();
    const char16_t* unit = units.data();
    for (std::size_t left = units.size() / UnitVector::lanes * UnitVector::lanes; left > 0;) {
        const std::size_t counted = std::min(left, mostCounted);
        length += bytesBeyondUnits(unit, unit + counted);
        unit += counted;
        left -= counted;
    }
    const std::u16string_view rest(unit, units.data() + units.size());
    return length + UTF16::utf8Length(rest) - rest.size();
}
