#include "XMLCharacters.h"

#include "UTF16.h"
#include "UnitScan.h"

#include <array>
#include <cstdint>

namespace {

struct ScalarRange {
    char32_t first;
    char32_t last;
};

/// Beyond ASCII, ascending.
constexpr ScalarRange nameStarts[] = {
    {0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},
    {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF},
    {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF},
};

/// What a name may hold besides after its first character.
constexpr ScalarRange nameParts[] = {{0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}};

/// A bit for every scalar of the basic plane.
using Bits = std::array<std::uint64_t, 0x10000 / 64>;

constexpr void add(Bits& bits, char32_t first, char32_t last) {
    for (char32_t scalar = first; scalar <= last && scalar < 0x10000; ++scalar) {
        bits[scalar / 64] |= std::uint64_t{1} << scalar % 64;
    }
}

constexpr Bits nameStartBits = [] {
    Bits bits{};
    for (char16_t unit = 0; unit < 0x80; ++unit) {
        if (UnitScan::isNameStart(unit)) {
            add(bits, unit, unit);
        }
    }
    for (const ScalarRange& range : nameStarts) {
        add(bits, range.first, range.last);
    }
    return bits;
}();

constexpr Bits nameBits = [] {
    Bits bits = nameStartBits;
    for (char16_t unit = 0; unit < 0x80; ++unit) {
        if (UnitScan::isName(unit)) {
            add(bits, unit, unit);
        }
    }
    for (const ScalarRange& range : nameParts) {
        add(bits, range.first, range.last);
    }
    return bits;
}();

bool contains(const Bits& bits, char32_t scalar) {
    constexpr char32_t lastOutsideBasicPlane = 0xEFFFF;
    return scalar < 0x10000 ? (bits[scalar / 64] >> scalar % 64 & 1) != 0 : scalar <= lastOutsideBasicPlane;
}

} // namespace

bool XMLCharacters::isNameStart(char32_t scalar) { return contains(nameStartBits, scalar); }

bool XMLCharacters::isName(char32_t scalar) { return contains(nameBits, scalar); }

std::size_t XMLCharacters::findNonName(std::u16string_view name, NamePart first) {
    const char16_t* const end = name.data() + name.size();
    std::size_t at = 0;
    while (at < name.size()) {
        const char32_t scalar = UTF16::scalarAt(name.data() + at, end);
        const bool mustStart = at == 0 && first == NamePart::start;
        if (mustStart ? !isNameStart(scalar) : !isName(scalar)) {
            return at;
        }
        at += UTF16::length(scalar);
    }
    return at;
}

std::size_t XMLCharacters::nameLength(std::u16string_view units) { return findNonName(units); }

std::size_t XMLCharacters::nameTokenLength(std::u16string_view units) {
    return findNonName(units, NamePart::rest);
}
