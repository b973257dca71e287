#include "WheelScroll.h"

#include <QWheelEvent>

#include <cmath>

namespace {

/// What is left of a movement that turned around would only hold the new one up.
double carried(double rest, double delta) { return rest * delta < 0 ? 0 : rest; }

} // namespace

QPoint WheelScroll::pixels(const QWheelEvent& event, QSizeF notch) {
    QPointF delta = event.pixelDelta();
    if (delta.isNull()) {
        const QPointF notches = QPointF(event.angleDelta()) / QWheelEvent::DefaultDeltasPerStep;
        delta = {notches.x() * notch.width(), notches.y() * notch.height()};
    }
    // The desktop may have swapped them already.
    if (event.modifiers() & Qt::ShiftModifier && delta.x() == 0) {
        delta = delta.transposed();
    }
    delta = -delta;
    const QPointF whole(carried(m_rest.x(), delta.x()) + delta.x(),
                        carried(m_rest.y(), delta.y()) + delta.y());
    const QPoint pixels(static_cast<int>(std::trunc(whole.x())), static_cast<int>(std::trunc(whole.y())));
    m_rest = whole - pixels;
    return pixels;
}
