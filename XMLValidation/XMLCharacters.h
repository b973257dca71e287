#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// The version of XML that a document declares. Every version but exactly 1.1 is read by the rules of 1.0.
enum class XMLVersion : std::uint8_t { v1_0, v1_1 };

/// The character classes of the standards, over Unicode scalars. Surrogates belong to none of them.
namespace XMLCharacters {

/// Whether `scalar` may stand in a document as itself.
constexpr bool isAllowed(char32_t scalar, XMLVersion version) {
    if (scalar < 0x20) {
        return scalar == U'\t' || scalar == U'\n' || scalar == U'\r';
    }
    if (version == XMLVersion::v1_1 && 0x7F <= scalar && scalar <= 0x9F) {
        return scalar == 0x85;
    }
    return scalar < 0xD800 || (0xE000 <= scalar && scalar <= 0xFFFD) ||
           (0x10000 <= scalar && scalar <= 0x10FFFF);
}

/// Whether a character reference may stand for `scalar`. XML 1.1 lets one stand for every control but NUL.
constexpr bool isReferable(char32_t scalar, XMLVersion version) {
    return isAllowed(scalar, version) ||
           (version == XMLVersion::v1_1 &&
            ((1 <= scalar && scalar < 0x20) || (0x7F <= scalar && scalar <= 0x9F)));
}

/// Whether `scalar` may start a name, the colon included.
bool isNameStart(char32_t scalar);

/// Whether `scalar` may stand in a name after its first character.
bool isName(char32_t scalar);

/// White space of markup.
constexpr bool isSpace(char16_t unit) {
    return unit == u' ' || unit == u'\t' || unit == u'\n' || unit == u'\r';
}

/// White space of the markup of a version, after line ends were translated: XML 1.1 reads U+0085 and U+2028
/// as line ends.
constexpr bool isSpace(char16_t unit, XMLVersion version) {
    return isSpace(unit) || (version == XMLVersion::v1_1 && (unit == 0x85 || unit == 0x2028));
}

enum class NamePart : std::uint8_t { start, rest };

/// The offset in `name` of the first character that may not stand there, `name.size()` when all may.
/// `first` tells whether the first character has to start a name.
std::size_t findNonName(std::u16string_view name, NamePart first = NamePart::start);

/// Whether `name` is a Name by the productions; an empty one is none.
inline bool isValidName(std::u16string_view name) {
    return !name.empty() && findNonName(name) == name.size();
}

/// The length of the longest Name that `units` start with, 0 when they start with none.
std::size_t nameLength(std::u16string_view units);

/// The length of the longest run of name characters that `units` start with.
std::size_t nameTokenLength(std::u16string_view units);

} // namespace XMLCharacters
