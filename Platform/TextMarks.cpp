#include "TextMarks.h"

#include <QPainter>
#include <QPalette>

#include <algorithm>
#include <cmath>

namespace {

constexpr double waveStep = 2;
constexpr double outlineWidth = 1;

struct Shades {
    QColor usual;
    QColor current;
    QColor outline; ///< Of the current one.
};
constexpr Shades inLight{{255, 240, 173}, {255, 199, 84}, {156, 79, 0}};
constexpr Shades inDark{{74, 62, 14}, {116, 68, 0}, {255, 176, 97}};

const Shades& shades(const QPalette& palette) {
    return palette.color(QPalette::Base).lightness() < 128 ? inDark : inLight;
}

} // namespace

SourceRange TextMarks::part(SourceRange range, SourceRange shown) {
    return SourceRange::unchecked(std::clamp(range.lower, shown.lower, shown.upper),
                                  std::clamp(range.upper, shown.lower, shown.upper));
}

QColor TextMarks::highlightColor(Highlight kind, const QPalette& palette) {
    return kind == Highlight::current ? shades(palette).current : shades(palette).usual;
}

void TextMarks::paintHighlight(QPainter& painter, const QRectF& box, Highlight kind,
                               const QPalette& palette) {
    if (kind == Highlight::current) {
        painter.fillRect(box, shades(palette).outline);
    }
    const double edge = kind == Highlight::current ? outlineWidth : 0;
    painter.fillRect(box.adjusted(edge, edge, -edge, -edge), highlightColor(kind, palette));
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
