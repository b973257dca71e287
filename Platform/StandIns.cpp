#include "StandIns.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace {

/// Every font that has letters has this one, and shaping puts no other font or line end in its place.
constexpr QChar blank(u'\u00A0');

} // namespace

std::vector<int> StandIns::blankOut(QString& shown, std::u16string_view units) {
    std::vector<int> offsets;
    for (qsizetype at = 0; at < shown.size(); ++at) {
        if (std::as_const(shown)[at] != units[static_cast<std::size_t>(at)]) {
            shown[at] = blank;
            offsets.push_back(static_cast<int>(at));
        }
    }
    return offsets;
}

QList<QTextLayout::FormatRange> StandIns::formats(std::span<const int> offsets, const QFont& font) {
    if (offsets.empty()) {
        return {};
    }
    const QFontMetricsF metrics(font);
    const double missing = metrics.horizontalAdvance(u'0') - metrics.horizontalAdvance(blank);
    constexpr double tolerated = 1.0 / 64;
    if (std::abs(missing) < tolerated) {
        return {};
    }
    QTextCharFormat format;
    format.setFontLetterSpacingType(QFont::AbsoluteSpacing);
    format.setFontLetterSpacing(missing);
    QList<QTextLayout::FormatRange> ranges;
    for (const int at : offsets) {
        ranges.append({at, 1, format});
    }
    return ranges;
}

void StandIns::draw(QPainter& painter, const QRectF& column) {
    const QPen pen = painter.pen();
    const double left = std::floor(column.left()) + 1.5;
    const double right = std::max(left + 1, std::floor(column.right()) - 1.5);
    const double bottom = std::floor(column.bottom()) - 0.5;
    painter.setPen(QPen(pen.color(), 1, Qt::DotLine));
    painter.drawRect(QRectF(QPointF(left, std::floor(column.top()) + 0.5), QPointF(right, bottom)));
    painter.setPen(pen);
}
