#pragma once

#include <span>
#include <string_view>

/// A starting text for a new document. All views are of static storage.
struct DocumentTemplate {
    std::u16string_view id;     ///< Stable key, unique in the catalogue.
    std::u16string_view title;  ///< For the user.
    std::u16string_view symbol; ///< Name of the icon on the template's card.
    std::u16string_view text;   ///< The whole document; every line ends in LF, the last one too.

    /// All templates, in the order in which they are offered.
    static std::span<const DocumentTemplate> catalogue();

    bool operator==(const DocumentTemplate&) const = default;
};
