#pragma once

#include "SourceRange.h"

#include <cstdint>

/// One piece of markup or character data that the lexer has found. A comment, CDATA section, instruction or
/// declaration without its terminator extends to the offset where lexing stops.
struct Token {
    enum class Kind : std::uint8_t {
        text,           ///< A run of character data.
        entity,         ///< A complete reference: `&`, a name or `#` and digits, `;`.
        openTagStart,   ///< The `<` that opens a start tag.
        closeTagStart,  ///< The `</` that opens an end tag.
        tagName,        ///< The element name after `<` or `</`.
        attributeName,  ///< An attribute name inside a tag.
        equals,         ///< `=` inside a tag.
        attributeValue, ///< A quoted value, quotes included.
        tagEnd,         ///< `>`
        selfCloseEnd,   ///< `/>`
        comment,        ///< A comment, from `<!--` to `-->`.
        cdata,          ///< A CDATA section, to `]]>`.
        instruction,    ///< A processing instruction, `<?` to `?>`.
        doctype,        ///< Any other `<!` declaration, to its `>`.
        invalid,        ///< One unit that cannot start anything valid here.
    };

    Kind kind = Kind::text;
    SourceRange range;

    bool operator==(const Token&) const = default;
};
static_assert(sizeof(Token) == 12);

template <>
struct std::hash<Token> {
    std::size_t operator()(const Token& token) const noexcept {
        return hashOf(static_cast<int>(token.kind), token.range);
    }
};
