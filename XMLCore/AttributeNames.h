#pragma once

#include "NameHash.h"
#include "TreeNode.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <unordered_set>

/// Tells whether an attribute's name was met before in the same start tag, in constant time a name.
class AttributeNames {
public:
    /// `units` is the text that the names lie in; borrowed.
    explicit AttributeNames(std::u16string_view units) : m_units(units) {}

    /// Forgets all names: a new start tag begins.
    void clear() { m_filter = 0; }

    /// Whether `name`, not empty, may be the name of an earlier attribute of the tag. To be asked for every
    /// attribute of the tag in turn.
    bool mayBeRepeated(SourceRange name) {
        // Most names differ in length, first or last unit from all others of their tag.
        const std::uint64_t mix = name.length() * 5U + m_units[name.lower] + m_units[name.upper - 1] * 3U;
        const std::uint64_t bit = std::uint64_t{1} << (mix % 64);
        const bool mayBeRepeated = (m_filter & bit) != 0;
        m_filter |= bit;
        return mayBeRepeated;
    }

    /// Whether `name` is the name of one of `earlier`, all attributes of the tag before it.
    bool isRepeated(SourceRange name, std::span<const AttributeSpan> earlier);

private:
    std::u16string_view units(SourceRange name) const { return m_units.substr(name.lower, name.length()); }

    std::u16string_view m_units;
    std::uint64_t m_filter = 0; ///< A bit for every name met.

    // The names of a tag with many attributes.
    std::unordered_set<std::u16string_view, NameHash> m_names;
    std::size_t m_namesCount = 0; ///< How many attributes of the tag they cover.
    Offset m_firstName = 0;       ///< Where the first of them starts: which tag it is.
};
