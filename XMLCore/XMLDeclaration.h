#pragma once

#include "TextEdit.h"

#include <optional>
#include <string_view>

/// The XML declaration at the start of a text, and what it declares about the encoding. Offsets count UTF-16
/// units of the text.
struct XMLDeclaration {
    SourceRange range; ///< From `<?xml` to the end of `?>`, or to where a missing `?>` belongs.
    std::optional<SourceRange> encoding; ///< The declared name inside its quotes; may be empty.
    Offset encodingPlace = 0;            ///< Where ` encoding="…"` belongs if it is missing.
    char16_t quote = u'"';               ///< The quote around the version.

    /// The number of units at the start of a text that are read.
    static constexpr Offset longest = 4096;

    /// The declaration at the start of `text`; only the first `longest` units are read. None if the text
    /// starts with anything else, even white space.
    static std::optional<XMLDeclaration> of(std::u16string_view text);

    /// The encoding that `text` declares, as written; empty if it declares none. Borrows from `text`.
    static std::u16string_view declaredEncoding(std::u16string_view text);

    /// The edit after which `text` declares the encoding `name`. It replaces the declared encoding; if there
    /// is none, it adds one to the declaration; without a declaration, it inserts a declaration at the start
    /// of the text, on a line of its own that ends with `lineEnding`.
    static TextEdit declaring(std::u16string_view name, std::u16string_view text,
                              std::u16string_view lineEnding);

    bool operator==(const XMLDeclaration&) const = default;
};
