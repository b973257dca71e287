#pragma once

#include "Diagnostic.h"
#include "LineIndex.h"

#include <cstddef>
#include <memory>
#include <optional>

/// The lines, counted from 0, on which diagnostics start. A set in name: looked up among the diagnostics when
/// somebody asks, for a hostile document has millions.
class ErrorLines {
public:
    /// None.
    ErrorLines() = default;

    /// Those of `diagnostics`, in the lines of the same text.
    ErrorLines(std::shared_ptr<const DiagnosticList> diagnostics, std::shared_ptr<const LineIndex> lines);

    bool isEmpty() const { return m_diagnostics == nullptr || m_diagnostics->empty(); }
    bool contains(std::size_t line) const { return first(line) == line; }

    /// The first one from line `from` on, none when there is none.
    std::optional<std::size_t> first(std::size_t from) const;

private:
    std::shared_ptr<const DiagnosticList> m_diagnostics;
    std::shared_ptr<const LineIndex> m_lines;
};
