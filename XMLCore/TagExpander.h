#pragma once

#include "Snippet.h"
#include "SourceText.h"

#include <cstddef>
#include <optional>
#include <string_view>

/// Expands abbreviations such as `ul>li*3` to markup.
///
///     sequence    element ('+' element)*
///     element     name ('[' attributes ']')? ('*' count)? '/'? ('>' sequence)?
///     attributes  names, each with '=' and a value or without, separated by spaces
///
/// Everything after a `>` is inside the element before it. `/` makes a self-closing element, which has no
/// children. A count is between 1 and 500. A value is enclosed in quotes, or ends before the next space or
/// `]`. `!`, `!cdata` and `?` stand for a comment, a CDATA section and an instruction; at the start of a
/// document, `?` stands for the XML declaration.
///
/// An abbreviation is invalid if its markup would be malformed (such as the same attribute twice) or would
/// have more than `maximumElements` elements or `maximumUnits` units.
namespace TagExpander {

inline constexpr std::size_t maximumElements = 100'000;
inline constexpr std::size_t maximumUnits = 16'000'000;

/// The markup that `abbreviation` stands for; none if it is not a valid abbreviation. Lines end with LF; each
/// line except the first starts with `indent` and one `unit` per level. There is a placeholder in each empty
/// attribute value and in each element without children that is not self-closing, and, if there are any of
/// these, one at the end.
std::optional<Snippet> expand(std::u16string_view abbreviation, std::u16string_view indent,
                              std::u16string_view unit, bool atDocumentStart);

struct Expansion {
    SourceRange range; ///< The abbreviation, which ends at the caret.
    Snippet snippet;

    bool operator==(const Expansion&) const = default;
};

/// The expansion of the abbreviation that ends at the caret `before` of `in`; none if there is none. An
/// abbreviation starts at the start of its line, after white space outside brackets or after a tag. If the
/// text from there on is not a valid abbreviation, the abbreviation starts after the first `>` that leaves a
/// valid one: in `x<y>1>p` it is `p`. If it is too large, the largest part after a `>` that is not too large
/// is expanded.
std::optional<Expansion> expansion(Offset before, const SourceText& in, std::u16string_view unit);

} // namespace TagExpander
