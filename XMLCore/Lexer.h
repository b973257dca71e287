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

/// Splits UTF-16 text into tokens: a small state machine that does not allocate memory, cannot fail and
/// reports no problems. What it cannot classify becomes an `invalid` token. Tokens are in ascending order,
/// are not empty and do not overlap; white space inside tags belongs to no token.
///
/// Units are classified one by one, surrogates included: every unit from 128 on counts as a letter.
class Lexer {
public:
    enum class Mode : std::uint8_t {
        content, ///< Between markup.
        tagName, ///< Right after `<` or `</`.
        tag,     ///< Inside a start or end tag, after its name.
    };

    std::u16string_view units;   ///< The whole text; borrowed. Constant, as is `end`.
    std::ptrdiff_t end = 0;      ///< Where lexing stops.
    std::ptrdiff_t position = 0; ///< The next offset to read.
    Mode mode = Mode::content;
    /// Where the document type declaration of `units` ends; by default the strict rule applies.
    DoctypeReading doctype;

    /// A lexer for all of `wholeText` that starts in content. `index` is borrowed as working space: no other
    /// lexer may use it at the same time, and its previous contents do not matter.
    Lexer(std::u16string_view wholeText, UnitIndex& index)
        : Lexer(wholeText, index, 0, static_cast<std::ptrdiff_t>(wholeText.size()), Mode::content) {}

    /// A lexer for the units `start ..< stop`, a range inside `wholeText`.
    Lexer(std::u16string_view wholeText, UnitIndex& index, std::ptrdiff_t start, std::ptrdiff_t stop,
          Mode startMode)
        : units(wholeText), end(stop), position(start), mode(startMode), m_index(&index),
          m_flags(index.begin()) {}

    /// The next token; none at the end, and inside a tag also if only white space remains.
    std::optional<Token> next();

    /// The result of `scan` if there is no next token.
    static constexpr auto noToken = static_cast<Token::Kind>(0xFF);

    /// `next()` in the form that the parser's inner loop needs, with all results in registers: returns the
    /// kind, and the token covers `start ..< position`.
    Token::Kind scan(std::ptrdiff_t& start);

    /// `scan` for a known mode.
    Token::Kind scanContent(std::ptrdiff_t& start);
    Token::Kind scanTagName(std::ptrdiff_t& start);
    Token::Kind scanTag(std::ptrdiff_t& start);

    /// `scanTag`, faster if an `attributeValue` comes next.
    Token::Kind scanValue(std::ptrdiff_t& start);

    // Shortcuts for the tokens that usually come next. Each consumes the tokens that it names and returns
    // true if they are directly at `position`, without white space before or between them. Otherwise it
    // returns false and consumes nothing.

    /// In a start tag after its `<`: the `tagName`, which covers `start ..< position`. Sets the mode to `tag`
    /// in any case.
    bool takeTagName(std::ptrdiff_t& start);
    /// The `equals` between an attribute's name and its value.
    bool takeEquals();
    /// In an end tag after its `</`: a `tagName` with the units of `expected`, and the `tagEnd`.
    bool takeEndTagRest(SourceRange expected);

    /// Whether the `text` token that `scanContent` has just returned contains anything but white space.
    bool textHasContent() const { return m_textContent < position; }

    /// Goes back to a token that starts at `start`, which is then read again in mode `inMode`.
    void rewind(std::ptrdiff_t start, Mode inMode) {
        position = start;
        mode = inMode;
    }

    /// All tokens of `range` of the text. Lexing starts in content. Aborts if the range reaches beyond the
    /// text.
    static std::vector<Token> tokens(const SourceText& in, SourceRange range, DoctypeReading doctype = {});
    static std::vector<Token> tokens(const SourceText& in) { return tokens(in, in.fullRange()); }

    /// Whether `name` is a valid name for elements and attributes: a name-start unit, followed by name units.
    /// Reserved prefixes and the character classes of Unicode are not checked.
    static bool isValidName(std::u16string_view name);

private:
    std::ptrdiff_t find(std::uint64_t UnitFlags::* flags, std::ptrdiff_t from);
    void nextFlags(std::ptrdiff_t from);

    Token::Kind take(Token::Kind kind, std::ptrdiff_t upTo) {
        position = upTo;
        return kind;
    }

    /// The result of the functions for rare tokens, which are not inlined.
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
    const UnitFlags* m_flags; ///< The current flags of the index.
    /// The offset of the first unit that the current flags describe. The initial value lies so far before the
    /// text that neither the current flags nor the next ones are used for it: the index may still contain
    /// those of another text.
    std::ptrdiff_t m_flagsLower = -2 * UnitIndex::flagsLength;
    std::ptrdiff_t m_textContent = 0; ///< The end of the leading white space of the last text.
};

inline std::optional<Token> Lexer::next() {
    std::ptrdiff_t start = 0;
    const Token::Kind kind = scan(start);
    if (kind == noToken) {
        return std::nullopt;
    }
    return Token{kind, SourceRange::unchecked(static_cast<Offset>(start), static_cast<Offset>(position))};
}

/// The offset of the first unit from `from` on whose bit in `flags` is set, or `end`.
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

/// Moves on to the flags of the next units, or to those of `from` if it lies beyond them.
TAMO_ALWAYS_INLINE void Lexer::nextFlags(std::ptrdiff_t from) {
    const auto index = static_cast<std::size_t>(from - m_flagsLower);
    if (index < 2 * UnitIndex::flagsLength && m_flags + 1 != m_index->end()) [[likely]] {
        ++m_flags;
        m_flagsLower += UnitIndex::flagsLength;
        return;
    }
    // After a jump, the lexer may need only a few units. If it continues after the units just before, it
    // probably needs many.
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

/// Consumes the value whose opening quote, `quote`, is at `from`: up to the next `quote`, or to the `<` or
/// the end that comes before it.
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

/// Consumes the token that starts with the `<` at `position`.
TAMO_ALWAYS_INLINE Token::Kind Lexer::takeMarkup() {
    const Rare token = markup(units, position, end, doctype);
    const bool opensTag = token.kind == Token::Kind::openTagStart || token.kind == Token::Kind::closeTagStart;
    mode = opensTag ? Mode::tagName : Mode::content;
    return take(token.kind, token.upper);
}
