#pragma once

#include "Diagnostic.h"

#include <cstddef>
#include <optional>
#include <vector>

/// Where each diagnostic of a text is shown: at the first unit of its range that is not white space, or at
/// the start of a range without one. Text outside the root element is diagnosed from the line end before it,
/// but is on the next line. Offsets count UTF-16 units of the parsed text.
class ProblemStarts {
public:
    /// Of no diagnostics.
    ProblemStarts() = default;

    /// Of the diagnostics of `text`, by their index. Linear in the text and the diagnostics, however the
    /// ranges overlap.
    ProblemStarts(const DiagnosticList& diagnostics, const SourceText& text);

    bool isEmpty() const { return m_starts.empty(); }
    Offset start(std::size_t index) const { return m_starts[index]; }

    /// The first of all starts from `from` on, none if there is none.
    std::optional<Offset> first(Offset from) const;

    bool operator==(const ProblemStarts&) const = default;

private:
    std::vector<Offset> m_starts;
    std::vector<Offset> m_ascending; ///< The same in order; empty when they are in order already.
};
