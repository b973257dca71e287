#include "ErrorLines.h"

#include <utility>

ErrorLines::ErrorLines(std::shared_ptr<const ProblemStarts> starts, std::shared_ptr<const LineIndex> lines)
    : m_starts(std::move(starts)), m_lines(std::move(lines)) {}

std::optional<std::size_t> ErrorLines::first(std::size_t from) const {
    if (isEmpty() || from >= m_lines->lineCount()) {
        return std::nullopt;
    }
    const auto start = m_starts->first(m_lines->start(static_cast<std::int64_t>(from)));
    return start ? std::optional(m_lines->line(*start)) : std::nullopt;
}
