#pragma once

#include "SearchPattern.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Finds a string in stretches of units at the speed of memory. Takes time in proportion to the stretch,
/// whatever is repeated in it and in the string.
class UnitSearch {
public:
    /// Looks for `wanted`, which must not be empty; unit by unit, so that half a surrogate pair is found too.
    UnitSearch(std::u16string_view wanted, SearchPattern::Case letterCase);

    /// The number of units of every match.
    std::size_t size() const { return m_wanted.size(); }

    /// Where the first match that starts at `from` or later starts in `units`; `npos` when there is none.
    std::size_t find(std::u16string_view units, std::size_t from) const;

    static constexpr std::size_t npos = std::u16string_view::npos;

private:
    /// The units that count as one of the string's; the first again in the places that are left.
    using Variants = std::array<char16_t, 4>;

    template <std::size_t variants>
    std::size_t findQuickly(std::u16string_view units, std::size_t from) const;
    std::size_t findSteadily(std::u16string_view units, std::size_t from) const;
    std::size_t matchingUnits(const char16_t* at) const;
    char16_t asWanted(char16_t unit) const;

    SearchPattern::Case m_case;
    std::u16string m_wanted; ///< Folded when the case is ignored.
    Variants m_first{};
    Variants m_last{};
    std::size_t m_variants = 1; ///< How many of the variants of either are in use: 1, 2 or 4.
    std::vector<std::size_t>
        m_borders; ///< How much of the start ends each beginning of the string, but whole.
};
