#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

/// Where windows go on a screen. All in logical pixels; `available` is what panels and docks leave of the
/// screen.
namespace WindowPlacement {

/// `wanted`, less where the screen has not that much, the frame that the window system adds included.
QSize fitting(QSize wanted, const QRect& available);

/// The place of a window of `size`, frame included, that follows one at `last`: a step to the right and down;
/// where it would leave the screen in one direction, at its edge in that direction again.
QPoint cascaded(QPoint last, QSize size, const QRect& available);

} // namespace WindowPlacement
