#pragma once

#include "SourceText.h"
#include "Token.h"
#include "UnitScan.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

/// Cuts UTF-16 text into tokens: a small state machine that never allocates, never fails and reports
/// nothing. What it cannot classify becomes an `invalid` token. Tokens come in increasing order, are never
/// empty and never overlap; white space inside tags belongs to none.
///
/// Units are looked at one by one, surrogates included: every unit of 128 and above counts as a letter.
class Lexer {
public:
    enum class Mode : std::uint8_t {
        content, ///< Between markup.
        tagName, ///< Right after `<` or `</`.
        tag,     ///< Inside a start or end tag, after its name.
    };

    std::u16string_view units;   ///< The whole text; borrowed.
    std::ptrdiff_t end = 0;      ///< Where lexing stops.
    std::ptrdiff_t position = 0; ///< The next offset to read.
    Mode mode = Mode::content;

    /// A lexer over all of `units`, in content.
    explicit Lexer(std::u16string_view wholeText)
        : units(wholeText), end(static_cast<std::ptrdiff_t>(wholeText.size())) {}

    /// A lexer over the units from `start` to `stop`.
    Lexer(std::u16string_view wholeText, std::ptrdiff_t start, std::ptrdiff_t stop, Mode startMode)
        : units(wholeText), end(stop), position(start), mode(startMode) {}

    /// The next token, or none at the end (inside a tag: when only white space remains).
    std::optional<Token> next();

    /// `next()` for those who know the mode.
    std::optional<Token> nextInContent();
    std::optional<Token> nextTagName();
    std::optional<Token> nextInTag();

    /// `nextTagName()` for an end tag that probably names the element `expected`, which it then finds by a
    /// mere comparison.
    std::optional<Token> nextTagName(SourceRange expected);

    /// All tokens of `range` of the text, read from its start as content.
    static std::vector<Token> tokens(const SourceText& in, SourceRange range);
    static std::vector<Token> tokens(const SourceText& in) { return tokens(in, in.fullRange()); }

    /// Whether `name` is a name for elements and attributes: not empty, a name-start unit first, name units
    /// after it. Reserved prefixes and Unicode's own classes are not looked at.
    static bool isValidName(std::u16string_view name);

private:
    const char16_t* at(std::ptrdiff_t offset) const { return units.data() + offset; }

    Token take(Token::Kind kind, std::ptrdiff_t upTo) {
        const auto range = SourceRange::unchecked(static_cast<Offset>(position), static_cast<Offset>(upTo));
        position = upTo;
        return {kind, range};
    }

    template <std::size_t size>
    Token takeThrough(Token::Kind kind, std::ptrdiff_t openingLength, const char16_t (&terminator)[size]) {
        return take(kind, UnitScan::findAfter(at(position + openingLength), at(end), terminator) - at(0));
    }

    Token markup();
    Token declaration();
    Token entity();
    std::ptrdiff_t doctypeEnd() const;
};

inline std::optional<Token> Lexer::next() {
    switch (mode) {
    case Mode::content:
        return nextInContent();
    case Mode::tagName:
        return nextTagName();
    case Mode::tag:
        return nextInTag();
    }
    return std::nullopt;
}

inline std::optional<Token> Lexer::nextInContent() {
    if (position >= end) {
        return std::nullopt;
    }
    const char16_t unit = *at(position);
    if (unit == u'<') {
        return markup();
    }
    if (unit == u'&') {
        return entity();
    }
    return take(Token::Kind::text, UnitScan::findAny(at(position + 1), at(end), u'<', u'&') - at(0));
}

inline std::optional<Token> Lexer::nextTagName() {
    mode = Mode::tag;
    if (position < end && UnitScan::isNameStart(*at(position))) {
        return take(Token::Kind::tagName, UnitScan::findNameEnd(at(position + 1), at(end)) - at(0));
    }
    return nextInTag();
}

inline std::optional<Token> Lexer::nextTagName(SourceRange expected) {
    const std::ptrdiff_t length = expected.length();
    // The unit after the name must be there to be looked at, too.
    if (length > 0 && end - position > length &&
        UnitScan::areEqual(at(position), at(expected.lower), length, end - position) &&
        !UnitScan::isName(*at(position + length))) {
        mode = Mode::tag;
        return take(Token::Kind::tagName, position + length);
    }
    return nextTagName();
}

inline std::optional<Token> Lexer::nextInTag() {
    if (position < end && UnitScan::isWhitespace(*at(position))) {
        position = UnitScan::findNonWhitespace(at(position + 1), at(end)) - at(0);
    }
    if (position >= end) {
        return std::nullopt;
    }
    const char16_t unit = *at(position);
    if (UnitScan::isNameStart(unit)) {
        return take(Token::Kind::attributeName, UnitScan::findNameEnd(at(position + 1), at(end)) - at(0));
    }
    switch (unit) {
    case u'>':
        mode = Mode::content;
        return take(Token::Kind::tagEnd, position + 1);
    case u'=':
        return take(Token::Kind::equals, position + 1);
    case u'"':
    case u'\'': {
        const char16_t* const stop = UnitScan::findAny(at(position + 1), at(end), unit, u'<');
        const bool isClosed = stop != at(end) && *stop == unit;
        return take(Token::Kind::attributeValue, stop - at(0) + (isClosed ? 1 : 0));
    }
    case u'/':
        if (position + 1 < end && *at(position + 1) == u'>') {
            mode = Mode::content;
            return take(Token::Kind::selfCloseEnd, position + 2);
        }
        break;
    case u'<':
        mode = Mode::content;
        return markup();
    default:
        break;
    }
    return take(Token::Kind::invalid, position + 1);
}

/// The token that starts with the `<` at `position`.
inline Token Lexer::markup() {
    if (position + 1 >= end) {
        return take(Token::Kind::invalid, position + 1);
    }
    const char16_t unit = *at(position + 1);
    if (UnitScan::isNameStart(unit)) {
        mode = Mode::tagName;
        return take(Token::Kind::openTagStart, position + 1);
    }
    switch (unit) {
    case u'/':
        mode = Mode::tagName;
        return take(Token::Kind::closeTagStart, position + 2);
    case u'!':
        return declaration();
    case u'?':
        return takeThrough(Token::Kind::instruction, 2, u"?>");
    default:
        return take(Token::Kind::invalid, position + 1);
    }
}
