#include "PaneSplitter.h"

#include <QShowEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr double inspectorWidth = 264;
constexpr double half = 0.5;

/// Where the divider was left last, for each thing to keep.
double& lastPlace(PaneSplitter::Kept kept) {
    static double share = half;
    static double trailingWidth = inspectorWidth;
    return kept == PaneSplitter::Kept::share ? share : trailingWidth;
}

} // namespace

PaneSplitter::PaneSplitter(Kept kept, QWidget* parent) : QSplitter(Qt::Horizontal, parent), m_kept(kept) {
    setHandleWidth(1);
    setChildrenCollapsible(false);
    connect(this, &QSplitter::splitterMoved, this, &PaneSplitter::remember);
}

void PaneSplitter::showEvent(QShowEvent* event) {
    QSplitter::showEvent(event);
    // Only now is the width the one that the window has.
    if (!m_isPlaced) {
        m_isPlaced = true;
        place();
    }
}

void PaneSplitter::place() {
    const int room = width() - handleWidth();
    const double kept = lastPlace(m_kept);
    const int second = static_cast<int>(std::lround(m_kept == Kept::share ? room * (1 - kept) : kept));
    setSizes({std::max(room - second, 0), second});
    if (m_kept == Kept::trailingWidth) {
        setStretchFactor(0, 1);
        setStretchFactor(1, 0);
    }
}

void PaneSplitter::remember() {
    const QList<int> now = sizes();
    const int room = now[0] + now[1];
    if (room > 0) {
        lastPlace(m_kept) = m_kept == Kept::share ? double(now[0]) / room : now[1];
    }
}
