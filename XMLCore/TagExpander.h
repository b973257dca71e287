#pragma once

#include "Snippet.h"
#include "SourceText.h"

#include <cstddef>
#include <optional>
#include <string_view>

/// Turns abbreviations such as `ul>li*3` into markup.
///
///     sequence    element ('+' element)*
///     element     name ('[' attributes ']')? ('*' count)? '/'? ('>' sequence)?
///     attributes  names, each with '=' and a value or without, separated by spaces
///
/// What follows `>` are the children, all of it. `/` makes an element that closes itself and has no children.
/// A count goes from 1 to 500. A value stands between quotes, or up to the next space or `]`. `!`, `!cdata`
/// and `?` are a comment, a CDATA section and an instruction; `?` where a document starts is its XML
/// declaration.
///
/// Nothing is an abbreviation whose markup would be wrong (the same attribute twice) or would have more than
/// `maximumElements` elements or `maximumUnits` units.
namespace TagExpander {

inline constexpr std::size_t maximumElements = 100'000;
inline constexpr std::size_t maximumUnits = 16'000'000;

/// The markup that `abbreviation` stands for, none when it is no abbreviation. Its lines end with LF; each
/// but the first starts with `indent` and one `unit` for each level. There is a placeholder in each empty
/// attribute value, in each element without children, and at the end when there are others.
std::optional<Snippet> expand(std::u16string_view abbreviation, std::u16string_view indent,
                              std::u16string_view unit, bool atDocumentStart);

struct Expansion {
    SourceRange range; ///< The abbreviation, up to the caret.
    Snippet snippet;

    bool operator==(const Expansion&) const = default;
};

/// The expansion of the abbreviation that ends at the caret `before` of `in`, none when there is none. An
/// abbreviation starts at the start of its line, after white space outside brackets or after a tag, and
/// otherwise after the first `>` that leaves one: in `x<y>1>p` it is `p`. Of one that is too large it is the
/// largest part after a `>` that is not.
std::optional<Expansion> expansion(Offset before, const SourceText& in, std::u16string_view unit);

} // namespace TagExpander
