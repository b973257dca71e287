#pragma once

#include "SourceRange.h"

#include <cstdint>
#include <optional>

/// The one stretch of a text that holds all edits made since a certain moment. With it, what was found in
/// the text of that moment can still be shown in the text of now: before the stretch nothing moved, behind
/// it everything moved equally far.
class EditedSpan {
public:
    /// Widens the stretch by an edit of the text of now: `edited` was replaced by `length` units.
    void add(SourceRange edited, Offset length);

    /// Where a range of then is now; nothing when it touches the inside of the stretch.
    std::optional<SourceRange> now(SourceRange then) const;

    /// Where the stretch starts, then as now; none as long as there is no edit.
    std::optional<Offset> start() const { return m_isEmpty ? std::nullopt : std::optional(m_then.lower); }

    /// The least range of then that holds all of a range of now, the stretch taken as a whole.
    SourceRange then(SourceRange now) const;

private:
    Offset newUpper() const { return static_cast<Offset>(m_then.upper + m_delta); }
    Offset moved(Offset then) const { return static_cast<Offset>(then + m_delta); }

    bool m_isEmpty = true;
    SourceRange m_then; ///< The stretch as it was.
    std::int64_t m_delta = 0;
};
