#include "UnitSearch.h"

#include "CaseFolding.h"
#include "Precondition.h"
#include "UnitVector.h"

#include <algorithm>

namespace {

/// Comparing candidates may cost this many times the units passed, and a little more to begin with.
constexpr std::size_t patience = 4;
constexpr std::size_t firstPatience = 4096;

} // namespace

UnitSearch::UnitSearch(std::u16string_view wanted, SearchPattern::Case letterCase)
    : m_case(letterCase), m_wanted(wanted), m_borders(wanted.size(), 0) {
    precondition(!wanted.empty(), "an empty string is nowhere to be found");
    m_first.fill(wanted.front());
    m_last.fill(wanted.back());
    if (m_case == SearchPattern::Case::ignored) {
        m_wanted = CaseFolding::folded(wanted);
        const std::u16string first = CaseFolding::variants(m_wanted.front());
        const std::u16string last = CaseFolding::variants(m_wanted.back());
        std::ranges::copy(first, m_first.begin());
        std::ranges::copy(last, m_last.begin());
        const std::size_t most = std::max(first.size(), last.size());
        m_variants = most > 2 ? 4 : most;
    }
    for (std::size_t end = 1, border = 0; end < m_wanted.size(); ++end) {
        while (border > 0 && m_wanted[end] != m_wanted[border]) {
            border = m_borders[border - 1];
        }
        border += m_wanted[end] == m_wanted[border];
        m_borders[end] = border;
    }
}

std::size_t UnitSearch::find(std::u16string_view units, std::size_t from) const {
    switch (m_variants) {
    case 1:
        return findQuickly<1>(units, from);
    case 2:
        return findQuickly<2>(units, from);
    default:
        return findQuickly<4>(units, from);
    }
}

/// Looks for the first and the last unit at once, eight candidates at a time, and compares what is between.
template <std::size_t variants>
std::size_t UnitSearch::findQuickly(std::u16string_view units, std::size_t from) const {
    const std::size_t last = m_wanted.size() - 1;
    std::array<UnitVector, variants> firstUnits;
    std::array<UnitVector, variants> lastUnits;
    for (std::size_t i = 0; i < variants; ++i) {
        firstUnits[i] = UnitVector::all(m_first[i]);
        lastUnits[i] = UnitVector::all(m_last[i]);
    }
    const auto isOneOf = [](const std::array<UnitVector, variants>& wanted, UnitVector vector) {
        UnitVector found = vector == wanted[0];
        for (std::size_t i = 1; i < variants; ++i) {
            found = found | (vector == wanted[i]);
        }
        return found;
    };
    std::size_t compared = 0;
    std::size_t at = from;
    for (; at + last + UnitVector::lanes <= units.size(); at += UnitVector::lanes) {
        UnitMask mask = (isOneOf(firstUnits, UnitVector::load(units.data() + at)) &
                         isOneOf(lastUnits, UnitVector::load(units.data() + at + last)))
                            .mask();
        for (; mask.any(); mask.clearFirst()) {
            const std::size_t candidate = at + static_cast<std::size_t>(mask.first());
            const std::size_t matching = matchingUnits(units.data() + candidate);
            if (matching == m_wanted.size()) {
                return candidate;
            }
            compared += matching;
        }
        if (compared > firstPatience + patience * (at - from)) {
            at += UnitVector::lanes;
            break;
        }
    }
    return findSteadily(units, at);
}

/// Reads every unit once: after a difference, what the match began with tells where the next one may start.
std::size_t UnitSearch::findSteadily(std::u16string_view units, std::size_t from) const {
    std::size_t matching = 0;
    for (std::size_t at = from; at < units.size(); ++at) {
        const char16_t unit = asWanted(units[at]);
        while (matching > 0 && unit != m_wanted[matching]) {
            matching = m_borders[matching - 1];
        }
        matching += unit == m_wanted[matching];
        if (matching == m_wanted.size()) {
            return at + 1 - matching;
        }
    }
    return npos;
}

std::size_t UnitSearch::matchingUnits(const char16_t* at) const {
    std::size_t matching = 0;
    while (matching < m_wanted.size() && asWanted(at[matching]) == m_wanted[matching]) {
        ++matching;
    }
    return matching;
}

char16_t UnitSearch::asWanted(char16_t unit) const {
    return m_case == SearchPattern::Case::ignored ? CaseFolding::folded(unit) : unit;
}
