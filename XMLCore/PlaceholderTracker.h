#pragma once

#include "TextEdit.h"

#include <cstddef>
#include <optional>
#include <vector>

/// The stops of a snippet that was inserted into a document: hands them out one by one and keeps them in step
/// with the edits of the document. Inactive, without stops, until `start` and again once the last stop was
/// handed out.
class PlaceholderTracker {
public:
    /// Starts at the first of `stops`, offsets of the document, where the caret is already. Fewer than two
    /// leave nowhere to go, so that the tracker becomes inactive.
    void start(std::vector<SourceRange> stops);

    /// Goes to the next stop and answers it, none when there is none. Ends tracking at the last one.
    std::optional<SourceRange> next();

    /// Goes to the previous stop and answers it; none, staying, when it is at the first one.
    std::optional<SourceRange> previous();

    /// Carries the stops through `forEdit`, which has just been applied: the current one grows and shrinks
    /// with what is typed inside it or at its ends, the others move. An edit that overlaps one of the others
    /// ends tracking.
    void adjust(const TextEdit& forEdit);

    void cancel() { m_stops.clear(); }

    bool isActive() const { return !m_stops.empty(); }
    const std::vector<SourceRange>& stops() const { return m_stops; }

    bool operator==(const PlaceholderTracker&) const = default;

private:
    friend struct std::hash<PlaceholderTracker>;

    std::vector<SourceRange> m_stops;
    std::size_t m_current = 0;
};

template <>
struct std::hash<PlaceholderTracker> {
    std::size_t operator()(const PlaceholderTracker& tracker) const noexcept {
        return hashOf(hashOfList(tracker.m_stops), tracker.m_current);
    }
};
