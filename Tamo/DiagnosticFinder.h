#pragma once

#include "Diagnostic.h"
#include "EditedSpan.h"
#include "ProblemStarts.h"

#include <cstddef>
#include <vector>

/// Finds the diagnostics of the last parse in the text of now. Both are borrowed. Of a place with very many
/// it finds only some: `most` at a time, and of those that start before it the nearest `mostBefore`.
class DiagnosticFinder {
public:
    static constexpr std::size_t most = 200;
    static constexpr std::size_t mostBefore = 64;
    static constexpr std::size_t mostLookedAt = 1000; ///< What was edited may hide any number.

    struct Found {
        std::size_t index; ///< In the list.
        SourceRange range; ///< In the text of now.

        bool operator==(const Found&) const = default;
    };

    DiagnosticFinder(const DiagnosticList& diagnostics, const EditedSpan& editsSinceParse)
        : m_diagnostics(diagnostics), m_edits(editsSinceParse) {}

    /// Those whose range shares a unit with `range` or meets either end of it, in order. What was edited
    /// inside has no place any more.
    std::vector<Found> touching(SourceRange range) const;

    /// Those of them that are shown to start in `range` or right at its end, as those of a line without its
    /// LF do. `starts` are those of the same diagnostics.
    std::vector<Found> startingIn(SourceRange range, const ProblemStarts& starts) const;

private:
    const DiagnosticList& m_diagnostics;
    const EditedSpan& m_edits;
};
