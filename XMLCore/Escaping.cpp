#include "Escaping.h"

#include "UTF16.h"
#include "UnicodeProperties.h"
#include "UnitScan.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace {

using UnicodeProperties::GraphemeBreak;
using UnicodeProperties::graphemeBreak;

/// The first unit from `from` on that is one of `wanted`, or `end`.
template <class... Units>
const char16_t* findAny(const char16_t* from, const char16_t* end, Units... wanted) {
    return from + UnitScan::findAny(from, 0, end - from, wanted...);
}

/// Whether the unit at `at`, a printable ASCII unit, is a character by itself. Only its two neighbours
/// decide, so that the time is constant, however many marks follow.
bool standsAlone(const char16_t* begin, const char16_t* at, const char16_t* end) {
    if (at != begin && graphemeBreak(UTF16::scalarBefore(begin, at)) == GraphemeBreak::prepend) {
        return false;
    }
    if (end - at == 1) {
        return true;
    }
    const GraphemeBreak after = graphemeBreak(UTF16::scalarAt(at + 1, end));
    return after != GraphemeBreak::extend && after != GraphemeBreak::zeroWidthJoiner &&
           after != GraphemeBreak::spacingMark;
}

/// The reference that replaces `unit`.
std::u16string_view reference(char16_t unit) {
    switch (unit) {
    case u'&':
        return u"&amp;";
    case u'<':
        return u"&lt;";
    case u'>':
        return u"&gt;";
    case u'"':
        return u"&quot;";
    case u'\'':
        return u"&apos;";
    case u'\n':
        return u"&#10;";
    default:
        return u"&#9;";
    }
}

/// Whether the unit at `at`, one of those that `reference` knows, is a character by itself.
bool isWholeCharacter(const char16_t* begin, const char16_t* at, const char16_t* end) {
    switch (*at) {
    case u'\t':
        return true;
    case u'\n':
        return at == begin || at[-1] != u'\r';
    default:
        return standsAlone(begin, at, end);
    }
}

/// `text` with each character that is one of `markup` replaced by its reference.
template <class... Units>
std::u16string escape(std::u16string_view text, Units... markup) {
    const char16_t* const begin = text.data();
    const char16_t* const end = begin + text.size();
    std::u16string result;
    result.reserve(text.size() + 8);
    const char16_t* copied = begin;
    for (const char16_t* at = findAny(begin, end, markup...); at != end;
         at = findAny(at + 1, end, markup...)) {
        if (isWholeCharacter(begin, at, end)) {
            result.append(copied, at).append(reference(*at));
            copied = at + 1;
        }
    }
    result.append(copied, end);
    return result;
}

/// The value of `digits`, an optional sign and at most nine digits; none if they are not a number or the
/// number is negative.
std::optional<char32_t> parse(std::u16string_view digits, std::uint32_t radix) {
    const bool isNegative = digits.starts_with(u'-');
    if (isNegative || digits.starts_with(u'+')) {
        digits.remove_prefix(1);
    }
    if (digits.empty()) {
        return std::nullopt;
    }
    std::uint32_t value = 0; // Nine digits fit into 32 bits.
    for (const char16_t unit : digits) {
        const char16_t letter = unit | 0x20;
        std::uint32_t digit = radix;
        if (u'0' <= unit && unit <= u'9') {
            digit = unit - u'0';
        } else if (u'a' <= letter && letter <= u'f') {
            digit = letter - u'a' + 10;
        }
        if (digit >= radix) {
            return std::nullopt;
        }
        value = value * radix + digit;
    }
    return isNegative && value != 0 ? std::nullopt : std::optional<char32_t>(value);
}

/// The scalar that the reference `&name;` stands for; none if it stands for nothing.
std::optional<char32_t> decode(std::u16string_view name) {
    if (name.starts_with(u'#')) {
        const bool isHexadecimal = name.starts_with(u"#x") || name.starts_with(u"#X");
        const auto scalar = isHexadecimal ? parse(name.substr(2), 16) : parse(name.substr(1), 10);
        const bool isScalar = scalar && *scalar <= 0x10FFFF && (*scalar < 0xD800 || 0xDFFF < *scalar);
        return isScalar ? scalar : std::nullopt;
    }
    struct Entity {
        std::u16string_view name;
        char32_t scalar;
    };
    static constexpr Entity entities[] = {
        {u"amp", U'&'}, {u"lt", U'<'}, {u"gt", U'>'}, {u"quot", U'"'}, {u"apos", U'\''}};
    const Entity* const entity = std::ranges::find(entities, name, &Entity::name);
    return entity == std::end(entities) ? std::nullopt : std::optional(entity->scalar);
}

struct Reference {
    char32_t scalar;
    const char16_t* end; ///< Just after its `;`.
};

/// The reference that starts with the `&` at `at`. Only as many units as the longest name has are searched
/// for the `;`: a character of several units would make the name invalid anyway.
std::optional<Reference> referenceAt(const char16_t* at, const char16_t* end) {
    constexpr std::ptrdiff_t longestName = 10;
    const char16_t* const name = at + 1;
    const char16_t* const limit = end - name > longestName ? name + longestName + 1 : end;
    const char16_t* const semicolon = std::find(name, limit, u';');
    if (semicolon == limit || !standsAlone(name, semicolon, end)) {
        return std::nullopt;
    }
    const std::optional<char32_t> scalar = decode({name, semicolon});
    return scalar ? std::optional(Reference{*scalar, semicolon + 1}) : std::nullopt;
}

} // namespace

std::u16string Escaping::escapeText(std::u16string text) {
    const char16_t* const begin = text.data();
    const char16_t* const end = begin + text.size();
    if (findAny(begin, end, u'&', u'<', u'>') == end) {
        return text;
    }
    return escape(text, u'&', u'<', u'>');
}

std::u16string Escaping::escapeAttribute(std::u16string_view value, char16_t quote) {
    const bool isQuote = quote == u'"' || quote == u'\'';
    return escape(value, u'&', u'<', isQuote ? quote : u'&', u'\n', u'\t');
}

std::u16string Escaping::unescape(std::u16string text) {
    char16_t* const begin = text.data();
    const char16_t* const end = begin + text.size();
    const auto nextAmpersand = [end](const char16_t* from) { return findAny(from, end, u'&'); };
    // A reference is longer than the scalar that replaces it, so writing never overtakes reading.
    char16_t* written = begin;
    const char16_t* read = begin;
    const auto keepUntil = [&](const char16_t* at) {
        std::char_traits<char16_t>::move(written, read, at - read);
        written += at - read;
    };
    for (const char16_t* at = nextAmpersand(begin); at != end;) {
        // Before `read` is a `;` or the start of the text, and neither forms one character with an `&`.
        const auto found = standsAlone(read, at, end) ? referenceAt(at, end) : std::nullopt;
        if (found) {
            keepUntil(at);
            written = UTF16::write(found->scalar, written);
            read = found->end;
        }
        at = nextAmpersand(found ? found->end : at + 1);
    }
    if (read != begin) {
        keepUntil(end);
        text.resize(written - begin);
    }
    return text;
}
