#pragma once

#include "LineIndex.h"
#include "ProblemStarts.h"

#include <cstddef>
#include <memory>
#include <optional>

/// The lines, counted from 0, on which diagnostics are shown to start. A set in name: a line is looked up
/// among the starts when it is asked for, because a hostile document has millions of them.
class ErrorLines {
public:
    /// None.
    ErrorLines() = default;

    /// Those of `starts`, in the lines of the same text.
    ErrorLines(std::shared_ptr<const ProblemStarts> starts, std::shared_ptr<const LineIndex> lines);

    bool isEmpty() const { return m_starts == nullptr || m_starts->isEmpty(); }
    bool contains(std::size_t line) const { return first(line) == line; }

    /// The first one from line `from` on, none when there is none.
    std::optional<std::size_t> first(std::size_t from) const;

private:
    std::shared_ptr<const ProblemStarts> m_starts;
    std::shared_ptr<const LineIndex> m_lines;
};
