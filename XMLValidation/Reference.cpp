#include "Reference.h"

#include "UnitScan.h"

#include <algorithm>

namespace {

constexpr char32_t beyondAll = 0x110000;

bool isDigit(char16_t unit) { return u'0' <= unit && unit <= u'9'; }

/// The value of a digit in hexadecimal; 16 of anything else.
std::uint32_t valueOf(char16_t unit) {
    if (isDigit(unit)) {
        return unit - u'0';
    }
    const char16_t letter = unit | 0x20;
    return u'a' <= letter && letter <= u'f' ? letter - u'a' + 10U : 16U;
}

/// The scalar that `digits` stand for, none or more of them.
char32_t scalarOf(std::u16string_view digits, std::uint32_t radix) {
    std::uint32_t scalar = 0;
    for (const char16_t unit : digits) {
        scalar = std::min<std::uint32_t>(scalar * radix + valueOf(unit), beyondAll);
    }
    return scalar;
}

Reference readCharacter(std::u16string_view units, Offset at) {
    const auto isPart = [](char16_t unit) { return valueOf(unit) < 16 || unit == u'x' || unit == u'X'; };
    const std::u16string_view rest = units.substr(at + 2);
    const auto length = static_cast<Offset>(std::ranges::find_if_not(rest, isPart) - rest.begin());
    if (length == rest.size() || rest[length] != u';') {
        return {.range = SourceRange::at(at, 1)};
    }
    Reference reference{.kind = Reference::Kind::malformedCharacter,
                        .range = {at, at + length + 3},
                        .name = {at + 2, at + length + 2}};
    const bool isHexadecimal = rest.starts_with(u'x');
    const std::u16string_view digits = rest.substr(isHexadecimal ? 1 : 0, length - (isHexadecimal ? 1 : 0));
    const std::uint32_t radix = isHexadecimal ? 16 : 10;
    if (!digits.empty() &&
        std::ranges::all_of(digits, [=](char16_t unit) { return valueOf(unit) < radix; })) {
        reference.kind = Reference::Kind::character;
        reference.scalar = scalarOf(digits, radix);
    }
    return reference;
}

} // namespace

Reference Reference::read(std::u16string_view units, Offset at) {
    const Offset first = at + 1;
    if (first >= units.size()) {
        return {.range = SourceRange::at(at, 1)};
    }
    if (units[first] == u'#' && units[at] == u'&') {
        return readCharacter(units, at);
    }
    if (UnitScan::isNameStart(units[first])) {
        const auto end = static_cast<std::ptrdiff_t>(units.size());
        const auto stop = static_cast<Offset>(UnitScan::findNameEnd(units.data(), first + 1, end));
        if (stop < units.size() && units[stop] == u';') {
            return {.kind = Kind::entity, .range = {at, stop + 1}, .name = {first, stop}};
        }
    }
    return {.range = SourceRange::at(at, 1)};
}
