#pragma once

#include "DoctypeReading.h"
#include "SourceText.h"
#include "Token.h"
#include "UnitIndex.h"
#include "UnitScan.h"

#include <algorithm>
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

    std::u16string_view units;   ///< The whole text; borrowed. Not to be changed any more, nor is `end`.
    std::ptrdiff_t end = 0;      ///< Where lexing stops.
    std::ptrdiff_t position = 0; ///< The next offset to read.
    Mode mode = Mode::content;
    /// Where the document type declaration of `units` ends; by default that is found by the letter.
    DoctypeReading doctype;

    /// A lexer over all of `wholeText`, in content. `index` is its working space, borrowed: nobody else may
    /// use it meanwhile, and what an earlier lexer left in it does not matter.
    Lexer(std::u16string_view wholeText, UnitIndex& index)
        : Lexer(wholeText, index, 0, static_cast<std::ptrdiff_t>(wholeText.size()), Mode::content) {}

    /// A lexer over the units from `start` to `stop`, which lie inside the text.
    Lexer(std::u16string_view wholeText, UnitIndex& index, std::ptrdiff_t start, std::ptrdiff_t stop,
          Mode startMode)
        : units(wholeText), end(stop), position(start), mode(startMode), m_index(&index),
          m_flags(index.begin()) {}

    /// The next token, or none at the end (inside a tag: when only white space remains).
    std::optional<Token> next();

    /// What `scan` answers instead of a kind when there is no next token.
    static constexpr auto noToken = static_cast<Token::Kind>(0xFF);

    /// `next()` in the form that the parser's inner loop needs, all in registers: answers the kind, and the
    /// token covers `start ..< position`.
    Token::Kind scan(std::ptrdiff_t& start);

    /// `scan` for those who know the mode.
    Token::Kind scanContent(std::ptrdiff_t& start);
    Token::Kind scanTagName(std::ptrdiff_t& start);
    Token::Kind scanTag(std::ptrdiff_t& start);

    /// `scanTag` where an `attributeValue` comes next in all likelihood.
    Token::Kind scanValue(std::ptrdiff_t& start);

    // Shortcuts for what mostly comes next. Each takes the tokens that it names when they stand right at
    // `position`, no white space before or between them, and otherwise changes nothing and answers false.

    /// In a start tag after its `<`: the `tagName`, which covers `start ..< position`. The mode is `tag`
    /// then, whatever stands there.
    bool takeTagName(std::ptrdiff_t& start);
    /// The `equals` between an attribute's name and its value.
    bool takeEquals();
    /// In an end tag after its `</`: a `tagName` with the units of `expected`, and the `tagEnd`.
    bool takeEndTagRest(SourceRange expected);

    /// Whether the `text` that `scanContent` has just found holds anything but white space.
    bool textHasContent() const { return m_textContent < position; }

    /// Goes back to a token that starts at `start`, to be read again in `inMode`.
    void rewind(std::ptrdiff_t start, Mode inMode) {
        position = start;
        mode = inMode;
    }

    /// All tokens of `range` of the text, read from its start as content. Stops the program when the range
    /// reaches beyond the text.
    static std::vector<Token> tokens(const SourceText& in, SourceRange range, DoctypeReading doctype = {});
    static std::vector<Token> tokens(const SourceText& in) { return tokens(in, in.fullRange()); }

    /// Whether `name` is a name for elements and attributes: not empty, a name-start unit first, name units
    /// after it. Reserved prefixes and Unicode's own classes are not looked at.
    static bool isValidName(std::u16string_view name);

private:
    std::ptrdiff_t find(std::uint64_t UnitFlags::* flags, std::ptrdiff_t from);
    void nextFlags(std::ptrdiff_t from);

    Token::Kind take(Token::Kind kind, std::ptrdiff_t upTo) {
        position = upTo;
        return kind;
    }

    /// A token that is worth a function call.
    struct Rare {
        Token::Kind kind;
        std::ptrdiff_t upper;
    };
    static Rare markup(std::u16string_view units, std::ptrdiff_t start, std::ptrdiff_t end,
                       DoctypeReading doctype);
    static Rare reference(std::u16string_view units, std::ptrdiff_t start, std::ptrdiff_t end);
    Token::Kind takeMarkup();
    Token::Kind takeValue(std::ptrdiff_t from, char16_t quote);

    UnitIndex* m_index;
    const UnitFlags* m_flags; ///< Those of the index that are at work.
    /// The offset of the first unit that they tell of. At first far enough before the text that not even the
    /// flags after them are taken for the text's: the index may still hold another one's.
    std::ptrdiff_t m_flagsLower = -2 * UnitIndex::flagsLength;
    std::ptrdiff_t m_textContent = 0; ///< Where the white space that the last text starts with ends.
};

inline std::optional<Token> Lexer::next() {
    std::ptrdiff_t start = 0;
    const Token::Kind kind = scan(start);
    if (kind == noToken) {
        return std::nullopt;
    }
    return Token{kind, SourceRange::unchecked(static_cast<Offset>(start), static_cast<Offset>(position))};
}

/// The first unit from `from` on that has one of `flags`, or `end`.
TAMO_ALWAYS_INLINE std::ptrdiff_t Lexer::find(std::uint64_t UnitFlags::* flags, std::ptrdiff_t from) {
    const auto index = static_cast<std::size_t>(from - m_flagsLower);
    std::uint64_t rest = index < UnitIndex::flagsLength ? m_flags->*flags >> index : 0;
    while (rest == 0) {
        nextFlags(from);
        from = std::max(from, m_flagsLower);
        rest = m_flags->*flags >> (from - m_flagsLower);
    }
    return from + std::countr_zero(rest);
}

/// Goes on to the flags of the next units, or to those of `from` where these are others.
TAMO_ALWAYS_INLINE void Lexer::nextFlags(std::ptrdiff_t from) {
    const auto index = static_cast<std::size_t>(from - m_flagsLower);
    if (index < 2 * UnitIndex::flagsLength && m_flags + 1 != m_index->end()) [[likely]] {
        ++m_flags;
        m_flagsLower += UnitIndex::flagsLength;
        return;
    }
    // Who jumps here may soon be done; who comes from the units before goes on.
    const bool isNext = index < UnitIndex::flagsLength;
    m_flagsLower = isNext ? m_flagsLower + UnitIndex::flagsLength : from & ~(UnitIndex::flagsLength - 1);
    m_flags = m_index->begin();
    m_index->move(units.data(), m_flagsLower, end, isNext ? UnitIndex::capacity : 1);
}

TAMO_ALWAYS_INLINE Token::Kind Lexer::scan(std::ptrdiff_t& start) {
    switch (mode) {
    case Mode::content:
        return scanContent(start);
    case Mode::tagName:
        return scanTagName(start);
    case Mode::tag:
        return scanTag(start);
    }
    return noToken;
}

TAMO_ALWAYS_INLINE Token::Kind Lexer::scanContent(std::ptrdiff_t& start) {
    start = position;
    if (position >= end) {
        return noToken;
    }
    const char16_t unit = units[position];
    if (unit == u'<') {
        const char16_t next = position + 1 < end ? units[position + 1] : u'\0';
        if (UnitScan::isNameStart(next)) {
            mode = Mode::tagName;
            return take(Token::Kind::openTagStart, position + 1);
        }
        if (next == u'/') {
            mode = Mode::tagName;
            return take(Token::Kind::closeTagStart, position + 2);
        }
        return takeMarkup();
    }
    if (unit == u'&') {
        const Rare token = reference(units, position, end);
        return take(token.kind, token.upper);
    }
    m_textContent = UnitScan::isWhitespace(unit) ? find(&UnitFlags::content, position + 1) : position;
    return take(Token::Kind::text, find(&UnitFlags::markup, m_textContent));
}

TAMO_ALWAYS_INLINE Token::Kind Lexer::scanTagName(std::ptrdiff_t& start) {
    mode = Mode::tag;
    if (position < end && UnitScan::isNameStart(units[position])) {
        start = position;
        return take(Token::Kind::tagName, find(&UnitFlags::nameEnd, position + 1));
    }
    return scanTag(start);
}

TAMO_ALWAYS_INLINE bool Lexer::takeTagName(std::ptrdiff_t& start) {
    mode = Mode::tag;
    start = position;
    position = find(&UnitFlags::nameEnd, position);
    return position != start;
}

TAMO_ALWAYS_INLINE Token::Kind Lexer::scanValue(std::ptrdiff_t& start) {
    if (position < end && units[position] == u'"') [[likely]] {
        start = position;
        return takeValue(position, u'"');
    }
    return scanTag(start);
}

TAMO_ALWAYS_INLINE bool Lexer::takeEquals() {
    if (position < end && units[position] == u'=') {
        ++position;
        return true;
    }
    return false;
}

TAMO_ALWAYS_INLINE bool Lexer::takeEndTagRest(SourceRange expected) {
    const std::ptrdiff_t nameEnd = position + expected.length();
    if (nameEnd >= end || units[nameEnd] != u'>' || expected.isEmpty() ||
        !UnitScan::areEqual(units.data() + position, units.data() + expected.lower, expected.length(),
                            end - position)) {
        return false;
    }
    position = nameEnd + 1;
    mode = Mode::content;
    return true;
}

/// The quoted value that starts at `from` and ends with `quote`, the mark that stands there.
TAMO_ALWAYS_INLINE Token::Kind Lexer::takeValue(std::ptrdiff_t from, char16_t quote) {
    std::ptrdiff_t stop = from;
    do {
        stop = find(&UnitFlags::valueEnd, stop + 1);
    } while (stop < end && units[stop] != quote && units[stop] != u'<');
    const bool isClosed = stop < end && units[stop] == quote;
    return take(Token::Kind::attributeValue, isClosed ? stop + 1 : stop);
}

TAMO_ALWAYS_INLINE Token::Kind Lexer::scanTag(std::ptrdiff_t& start) {
    if (position < end && UnitScan::isWhitespace(units[position])) {
        position = find(&UnitFlags::content, position + 1);
    }
    start = position;
    if (position >= end) {
        return noToken;
    }
    const char16_t unit = units[position];
    if (unit == u'>') {
        mode = Mode::content;
        return take(Token::Kind::tagEnd, position + 1);
    }
    if (unit == u'"') {
        return takeValue(position, u'"');
    }
    if (UnitScan::isNameStart(unit)) {
        return take(Token::Kind::attributeName, find(&UnitFlags::nameEnd, position + 1));
    }
    if (unit == u'/' && position + 1 < end && units[position + 1] == u'>') {
        mode = Mode::content;
        return take(Token::Kind::selfCloseEnd, position + 2);
    }
    if (unit == u'\'') {
        return takeValue(position, u'\'');
    }
    if (unit == u'=') {
        return take(Token::Kind::equals, position + 1);
    }
    return unit == u'<' ? takeMarkup() : take(Token::Kind::invalid, position + 1);
}

/// The token that starts with the `<` at `position`.
TAMO_ALWAYS_INLINE Token::Kind Lexer::takeMarkup() {
    const Rare token = markup(units, position, end, doctype);
    const bool opensTag = token.kind == Token::Kind::openTagStart || token.kind == Token::Kind::closeTagStart;
    mode = opensTag ? Mode::tagName : Mode::content;
    return take(token.kind, token.upper);
}
