#include "ProblemStarts.h"

#include "UnitScan.h"

#include <algorithm>

ProblemStarts::ProblemStarts(const DiagnosticList& diagnostics, const SourceText& text) {
    m_starts.reserve(diagnostics.size());
    const std::u16string_view units = text.units();
    // No unit is scanned twice: the ranges start in ascending order, so from the start of the next one to the
    // end of the white space found last there is nothing but white space.
    Offset blankEnd = 0;
    for (std::size_t index = 0; index < diagnostics.size(); ++index) {
        const SourceRange range = diagnostics.range(index);
        Offset start = std::max(range.lower, blankEnd);
        while (start < range.upper && UnitScan::isWhitespace(units[start])) {
            ++start;
        }
        blankEnd = std::max(blankEnd, start);
        m_starts.push_back(start < range.upper ? start : range.lower);
    }
    if (!std::ranges::is_sorted(m_starts)) {
        m_ascending = m_starts;
        std::ranges::sort(m_ascending);
    }
}

std::optional<Offset> ProblemStarts::first(Offset from) const {
    const std::vector<Offset>& starts = m_ascending.empty() ? m_starts : m_ascending;
    const auto found = std::ranges::lower_bound(starts, from);
    return found != starts.end() ? std::optional(*found) : std::nullopt;
}
