#include "TextMarks.h"

#include <QPainter>
#include <QPalette>

#include <algorithm>
#include <cmath>

namespace {

constexpr double waveStep = 2;
constexpr QColor highlightInLight(255, 224, 102);
constexpr QColor highlightInDark(120, 96, 0);

} // namespace

SourceRange TextMarks::part(SourceRange range, SourceRange shown) {
    return SourceRange::unchecked(std::clamp(range.lower, shown.lower, shown.upper),
                                  std::clamp(range.upper, shown.lower, shown.upper));
}

void TextMarks::paintHighlight(QPainter& painter, const QRectF& box, const QPalette& palette) {
    const bool isDark = palette.color(QPalette::Base).lightness() < 128;
    painter.fillRect(box, isDark ? highlightInDark : highlightInLight);
}

void TextMarks::paintWave(QPainter& painter, const QRectF& box, const QColor& color) {
    if (box.isEmpty()) {
        return;
    }
    // Waves start at multiples of their length, so that one that is painted in parts is one.
    const double start = std::floor(box.left() / (2 * waveStep)) * 2 * waveStep;
    QPolygonF wave;
    bool isLow = true;
    for (double x = start; x <= box.right() + waveStep; x += waveStep, isLow = !isLow) {
        wave << QPointF(x, box.bottom() - (isLow ? 1 : 3));
    }
    painter.save();
    painter.setClipRect(box, Qt::IntersectClip);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, 1));
    painter.drawPolyline(wave);
    painter.restore();
}
