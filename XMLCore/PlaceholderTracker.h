#pragma once

#include "TextEdit.h"

#include <cstddef>
#include <optional>
#include <vector>

/// The stops of a snippet that was inserted into a document. Returns them one by one, and adjusts them to the
/// edits of the document. Inactive, without stops, before `start` and after the last stop has been returned.
class PlaceholderTracker {
public:
    /// Starts at the first of `stops`, ranges in the document; the caret is already there. With fewer than
    /// two stops, the tracker becomes inactive.
    void start(std::vector<SourceRange> stops);

    /// Goes to the next stop and returns it; none if the tracker is inactive. Becomes inactive at the last
    /// stop.
    std::optional<SourceRange> next();

    /// Goes to the previous stop and returns it; none, without moving, at the first stop.
    std::optional<SourceRange> previous();

    /// Adjusts the stops to `forEdit`, which has just been applied. The current stop grows and shrinks with
    /// edits inside it and at its ends; the others move. The tracker becomes inactive if the edit overlaps
    /// another stop.
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
