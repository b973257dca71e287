#pragma once

#include "TextEdit.h"

#include <optional>
#include <string_view>

/// The XML declaration at the start of a text, as far as it tells how the text is encoded. Offsets count
/// UTF-16 units of the text.
struct XMLDeclaration {
    SourceRange range; ///< From `<?xml` to the end of `?>`, or to where a lost one is missing.
    std::optional<SourceRange> encoding; ///< The declared name inside its quotes; may be empty.
    Offset encodingPlace = 0;            ///< Where ` encoding="…"` belongs if there is none.
    char16_t quote = u'"';               ///< Of the version.

    /// As many units at the start of a text tell everything here.
    static constexpr Offset longest = 4096;

    /// The declaration at the start of `text`, of which no more than `longest` units count. Nothing where the
    /// text starts otherwise, be it with white space.
    static std::optional<XMLDeclaration> of(std::u16string_view text);

    /// The encoding that `text` declares, as it is written there; empty where it declares none.
    static std::u16string_view declaredEncoding(std::u16string_view text);

    /// The edit after which `text` declares the encoding `name`: in place of the declared one, else in the
    /// declaration, else with a declaration of its own in front, in a line that ends with `lineEnding`.
    static TextEdit declaring(std::u16string_view name, std::u16string_view text,
                              std::u16string_view lineEnding);

    bool operator==(const XMLDeclaration&) const = default;
};
