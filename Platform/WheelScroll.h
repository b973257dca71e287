#pragma once

#include <QPoint>
#include <QPointF>
#include <QSizeF>

class QWheelEvent;

/// Turns the turns of a wheel and the strokes on a touchpad into whole pixels. What a slow movement leaves
/// over of a pixel is kept for the next event.
class WheelScroll {
public:
    /// How far the view is to move over its document, to the right and down. `notch` is as far as one notch
    /// of a wheel goes in either direction, in pixels. With Shift the two directions change places.
    QPoint pixels(const QWheelEvent& event, QSizeF notch);

private:
    QPointF m_rest;
};
