#include "ErrorLines.h"

#include <utility>

ErrorLines::ErrorLines(std::shared_ptr<const DiagnosticList> diagnostics,
                       std::shared_ptr<const LineIndex> lines)
    : m_diagnostics(std::move(diagnostics)), m_lines(std::move(lines)) {}

std::optional<std::size_t> ErrorLines::first(std::size_t from) const {
    if (isEmpty() || from >= m_lines->lineCount()) {
        return std::nullopt;
    }
    const Offset start = m_lines->start(static_cast<std::int64_t>(from));
    const std::size_t index = m_diagnostics->firstIndex(start);
    return index < m_diagnostics->size() ? std::optional(m_lines->line(m_diagnostics->range(index).lower))
                                         : std::nullopt;
}
