#pragma once

#include <QStyle>

class QStyleOptionSlider;

/// Scroll bars that are a handle and nothing else: thin and pale until the mouse is over them, always there
/// while there is something to scroll, and never too short to take hold of.
namespace ScrollBarPainting {

/// Across the bar, and along its handle, in logical pixels.
inline constexpr int extent = 12;
inline constexpr int shortestHandle = 32;

/// Where a part of the bar is. There are no arrows, so their places are empty.
QRect part(const QStyleOptionSlider& bar, QStyle::SubControl part);

void draw(QPainter& painter, const QStyleOptionSlider& bar, const QColor& ground);

} // namespace ScrollBarPainting
