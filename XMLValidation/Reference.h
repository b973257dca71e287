#pragma once

#include "SourceRange.h"
#include "XMLCharacters.h"

#include <string_view>

/// A reference as it is written: `&name;`, `%name;`, `&#10;` or `&#xA;`.
struct Reference {
    enum class Kind : std::uint8_t {
        none,               ///< The `&` or `%` starts no reference.
        malformedCharacter, ///< `&#` to `;`, but no number between them that means one: `&#;`, `&#X20;`.
        character,
        entity,
    };

    Kind kind = Kind::none;
    SourceRange range;   ///< To just after the `;`; the `&` or `%` alone where that is all.
    SourceRange name;    ///< Of an entity; the digits of a character, the `x` included.
    char32_t scalar = 0; ///< Of a character; beyond U+10FFFF when it means none.

    /// The reference whose `&` or `%` stands at `at`. Of names only the shape is looked at, as the lexer
    /// does: which characters beyond ASCII belong in one is not asked.
    static Reference read(std::u16string_view units, Offset at);
};
