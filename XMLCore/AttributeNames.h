#pragma once

#include "TreeNode.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

/// Finds the attributes of a start tag whose name already occurred in the same tag. The first few names are
/// compared one by one; for a tag with more, all names are sorted by their hashes.
class AttributeNames {
public:
    /// The number of attributes of a tag whose names are compared one by one.
    static constexpr std::size_t comparedOneByOne = 32;

    /// `units` is the text that the names lie in; borrowed.
    explicit AttributeNames(std::u16string_view units) : m_units(units) {}

    /// Forgets all names. Call it at the beginning of each start tag.
    void clear() { m_filter = 0; }

    /// Whether `name`, which is not empty, may be the name of an earlier attribute of the tag; false is
    /// certain. Call it once for every attribute of the tag, in order.
    bool mayBeRepeated(SourceRange name) {
        // Most names differ in length, first or last unit from all others of their tag.
        const std::uint64_t bit =
            (name.length() * 5U + m_units[name.lower] + m_units[name.upper - 1] * 3U) % 64;
        const bool mayBeRepeated = (m_filter >> bit & 1) != 0;
        m_filter |= std::uint64_t{1} << bit;
        return mayBeRepeated;
    }

    /// Whether `name` is the name of one of `earlier`, at most `comparedOneByOne` attributes.
    bool isAmong(std::span<const AttributeSpan> earlier, SourceRange name) const;

    /// The names that repeat an earlier name of `attributes`, without those among the first
    /// `comparedOneByOne`, in no particular order. Takes near-linear time and stays fast when the names do
    /// not fit into the processor's caches.
    std::vector<SourceRange> repeatedLater(std::span<const AttributeSpan> attributes);

private:
    std::u16string_view units(SourceRange name) const { return m_units.substr(name.lower, name.length()); }

    std::u16string_view m_units;
    /// One bit for each name since `clear`; several names may share a bit.
    std::uint64_t m_filter = 0;
    std::vector<std::uint64_t> m_keys; ///< Working space of `repeatedLater`.
};
