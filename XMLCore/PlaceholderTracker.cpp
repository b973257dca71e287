#include "PlaceholderTracker.h"

#include <utility>

void PlaceholderTracker::start(std::vector<SourceRange> stops) {
    m_stops = std::move(stops);
    m_current = 0;
    if (m_stops.size() < 2) {
        cancel();
    }
}

std::optional<SourceRange> PlaceholderTracker::next() {
    if (!isActive()) {
        return std::nullopt;
    }
    // The tracker becomes inactive at the last stop, so an active one always has a next stop.
    ++m_current;
    const SourceRange stop = m_stops[m_current];
    if (m_current + 1 == m_stops.size()) {
        cancel();
    }
    return stop;
}

std::optional<SourceRange> PlaceholderTracker::previous() {
    if (!isActive() || m_current == 0) {
        return std::nullopt;
    }
    --m_current;
    return m_stops[m_current];
}

void PlaceholderTracker::adjust(const TextEdit& forEdit) {
    const SourceRange edited = forEdit.range;
    const std::int64_t delta = forEdit.delta();
    for (std::size_t i = 0; i < m_stops.size(); ++i) {
        SourceRange& stop = m_stops[i];
        const bool isInside = stop.lower <= edited.lower && edited.upper <= stop.upper;
        if (i == m_current && isInside) {
            stop = {stop.lower, stop.upper + delta};
        } else if (edited.upper <= stop.lower) {
            stop = stop.shifted(delta);
        } else if (edited.lower < stop.upper) {
            cancel();
            return;
        }
    }
}
