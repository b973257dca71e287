#pragma once

#include "Rope.h"
#include "SearchPattern.h"
#include "TextMatch.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// What takes the place of a match. For plain text that is the template as it is written. For a regular
/// expression
///
///     \0        is the match,
///     \1 to \9  what a group captured, nothing for a group without part in the match,
///     \n \r \t  a line feed, a carriage return, a tab,
///     \\        a backslash;
///
/// a backslash before anything else, or at the end, stands for itself.
class ReplacementTemplate {
public:
    ReplacementTemplate(std::u16string_view written, SearchPattern::Syntax forSyntax);

    /// Appends what takes the place of the match of `text` to `units`.
    void append(std::u16string& units, const Rope& text, MatchGroups groups) const;

private:
    using Piece = std::variant<std::u16string, std::size_t>; ///< Units, or the number of a group.

    void addUnit(char16_t unit);

    std::vector<Piece> m_pieces;
};
