#pragma once

#include "TreeNode.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

/// Finds the attributes of a start tag whose name was met before in the same tag: the first few by comparing
/// them, those of a tag with more all at once.
class AttributeNames {
public:
    /// How many attributes of a tag are asked for one by one.
    static constexpr std::size_t comparedOneByOne = 32;

    /// `units` is the text that the names lie in; borrowed.
    explicit AttributeNames(std::u16string_view units) : m_units(units) {}

    /// Forgets all names: a new start tag begins.
    void clear() { m_filter = 0; }

    /// Whether `name`, not empty, may be the name of an earlier attribute of the tag. To be asked for every
    /// attribute of the tag in turn.
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

    /// The names after the first `comparedOneByOne` of `attributes` that are repeated, in no order. Takes
    /// near-linear time, and does not slow down when the names outgrow the processor's caches.
    std::vector<SourceRange> repeatedLater(std::span<const AttributeSpan> attributes);

private:
    std::u16string_view units(SourceRange name) const { return m_units.substr(name.lower, name.length()); }

    std::u16string_view m_units;
    std::uint64_t m_filter = 0;        ///< A bit for every name met.
    std::vector<std::uint64_t> m_keys; ///< Used again by one tag after the other.
};
