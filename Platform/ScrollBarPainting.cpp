#include "ScrollBarPainting.h"

#include "SystemColor.h"

#include <QPainter>
#include <QStyleOption>

#include <algorithm>

namespace {

constexpr int quietAlpha = 60; // Of 255.
constexpr int nearAlpha = 105;
constexpr int heldAlpha = 140;

QRect handle(const QStyleOptionSlider& bar) {
    const bool isHorizontal = bar.orientation == Qt::Horizontal;
    const int length = isHorizontal ? bar.rect.width() : bar.rect.height();
    const qint64 range = qint64(bar.maximum) - bar.minimum;
    int size = length;
    if (range > 0) {
        const int least = std::min(ScrollBarPainting::shortestHandle, length);
        size = std::clamp(int(qint64(bar.pageStep) * length / (range + bar.pageStep)), least, length);
    }
    const int start = QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition,
                                                      length - size, bar.upsideDown);
    return isHorizontal ? QRect(bar.rect.x() + start, bar.rect.y(), size, bar.rect.height())
                        : QRect(bar.rect.x(), bar.rect.y() + start, bar.rect.width(), size);
}

} // namespace

QRect ScrollBarPainting::part(const QStyleOptionSlider& bar, QStyle::SubControl part) {
    const QRect held = handle(bar);
    const bool isHorizontal = bar.orientation == Qt::Horizontal;
    QRect rest = bar.rect;
    switch (part) {
    case QStyle::SC_ScrollBarGroove:
        return rest;
    case QStyle::SC_ScrollBarSlider:
        return held;
    case QStyle::SC_ScrollBarSubPage:
        isHorizontal ? rest.setRight(held.left() - 1) : rest.setBottom(held.top() - 1);
        return rest;
    case QStyle::SC_ScrollBarAddPage:
        isHorizontal ? rest.setLeft(held.right() + 1) : rest.setTop(held.bottom() + 1);
        return rest;
    default:
        return {};
    }
}

void ScrollBarPainting::draw(QPainter& painter, const QStyleOptionSlider& bar, const QColor& ground) {
    painter.fillRect(bar.rect, ground);
    if (bar.maximum <= bar.minimum || !bar.state.testFlag(QStyle::State_Enabled)) {
        return;
    }
    const bool isHeld = bar.state.testFlag(QStyle::State_Sunken);
    const bool isNear = isHeld || bar.state.testFlag(QStyle::State_MouseOver);
    const double gap = isNear ? 2 : 3;
    const QRectF shape = QRectF(handle(bar)).adjusted(gap, gap, -gap, -gap);
    const double radius = std::min(shape.width(), shape.height()) / 2;
    QColor ink = color(SystemColor::textColor, bar.palette);
    ink.setAlpha(isHeld ? heldAlpha : isNear ? nearAlpha : quietAlpha);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ink);
    painter.drawRoundedRect(shape, radius, radius);
    painter.restore();
}
