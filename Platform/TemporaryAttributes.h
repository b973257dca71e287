#pragma once

#include <QColor>

#include <cstdint>

/// How a part of a text looks beside its characters. Never part of the text, of its history, or of a file.
struct TemporaryAttributes {
    enum class Underline : std::uint8_t { none, thick };

    QColor foreground; ///< Invalid for the colour of the text.
    Underline underline = Underline::none;

    bool operator==(const TemporaryAttributes&) const = default;
};
