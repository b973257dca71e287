#pragma once

#include "SourceRange.h"

#include <QColor>
#include <QRectF>

class QPainter;
class QPalette;

/// How the marks look that a text view paints around its characters.
namespace TextMarks {

/// The part of `range` that `shown` has; empty at the nearer end of `shown` when there is none.
SourceRange part(SourceRange range, SourceRange shown);

/// Behind the characters in `box`.
void paintHighlight(QPainter& painter, const QRectF& box, const QPalette& palette);

/// A wavy line along the bottom of `box`.
void paintWave(QPainter& painter, const QRectF& box, const QColor& color);

} // namespace TextMarks
