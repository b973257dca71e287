#pragma once

#include "SourceRange.h"

#include <QColor>
#include <QRectF>

#include <cstdint>

class QPainter;
class QPalette;

/// How the marks look that a text view paints around its characters.
namespace TextMarks {

/// The part of `range` that `shown` has; empty at the nearer end of `shown` when there is none.
SourceRange part(SourceRange range, SourceRange shown);

/// A match of a search: one of all, or the one that was gone to.
enum class Highlight : std::uint8_t { usual, current };

/// What is painted behind the characters; they keep their colours and stand out from it.
QColor highlightColor(Highlight kind, const QPalette& palette);

/// Behind the characters in `box`; the current one with an outline.
void paintHighlight(QPainter& painter, const QRectF& box, Highlight kind, const QPalette& palette);

/// A wavy line along the bottom of `box`.
void paintWave(QPainter& painter, const QRectF& box, const QColor& color);

} // namespace TextMarks
