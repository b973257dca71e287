#include "WheelScroll.h"

#include <QWheelEvent>

#include <cmath>

namespace {

/// What is left of a movement that turned around would only hold the new one up.
double carried(double rest, double delta) { return rest * delta < 0 ? 0 : rest; }

} // namespace

QPoint WheelScroll::pixels(const QWheelEvent& event, QSizeF notch) {
    const bool isInPixels = !event.pixelDelta().isNull();
    QPointF delta = isInPixels ? event.pixelDelta() : event.angleDelta();
    // The desktop may have swapped them already.
    if (event.modifiers() & Qt::ShiftModifier && delta.x() == 0) {
        delta = delta.transposed();
    }
    const QSizeF unit = isInPixels ? QSizeF(1, 1) : notch / QWheelEvent::DefaultDeltasPerStep;
    delta = {-delta.x() * unit.width(), -delta.y() * unit.height()};
    const QPointF whole(carried(m_rest.x(), delta.x()) + delta.x(),
                        carried(m_rest.y(), delta.y()) + delta.y());
    const QPoint pixels(static_cast<int>(std::trunc(whole.x())), static_cast<int>(std::trunc(whole.y())));
    m_rest = whole - pixels;
    return pixels;
}
