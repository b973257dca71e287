#include "DiagnosticFinder.h"

#include <algorithm>

std::vector<DiagnosticFinder::Found> DiagnosticFinder::touching(SourceRange range) const {
    const SourceRange then = m_edits.then(range);
    std::size_t index = m_diagnostics.firstIndex(then.lower);
    index -= std::min(index, mostBefore);
    const std::size_t end = std::min(m_diagnostics.size(), index + mostLookedAt);
    std::vector<Found> found;
    for (; index < end && found.size() < most; ++index) {
        const SourceRange diagnosed = m_diagnostics.range(index);
        if (diagnosed.lower > then.upper) {
            break;
        }
        const auto now = m_edits.now(diagnosed);
        if (now && now->lower <= range.upper && now->upper >= range.lower) {
            found.push_back({index, *now});
        }
    }
    return found;
}

std::vector<DiagnosticFinder::Found> DiagnosticFinder::startingIn(SourceRange range,
                                                                  const ProblemStarts& starts) const {
    std::vector<Found> found = touching(range);
    std::erase_if(found, [&](const Found& diagnostic) {
        const Offset blank = starts.start(diagnostic.index) - m_diagnostics.range(diagnostic.index).lower;
        const Offset start = diagnostic.range.lower + blank;
        return start < range.lower || start > range.upper;
    });
    return found;
}
