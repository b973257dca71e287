#pragma once

#include <cstdint>
#include <string>

/// What a user looks for in a text.
struct SearchPattern {
    enum class Case : std::uint8_t { ignored, distinguished };
    enum class Extent : std::uint8_t { anywhere, wholeWords };
    enum class Syntax : std::uint8_t { plain, regularExpression };

    std::u16string text; ///< Empty to look for nothing.
    Case letterCase = Case::ignored;
    Extent extent = Extent::anywhere; ///< Whether a match may start or end inside a word.
    Syntax syntax = Syntax::plain;

    bool operator==(const SearchPattern&) const = default;
};
