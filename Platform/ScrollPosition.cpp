#include "ScrollPosition.h"

#include <QScopedValueRollback>
#include <QScrollBar>

#include <algorithm>

namespace {

constexpr qint64 largestBarValue = qint64(1) << 30;

int barUnits(qint64 pixels, qint64 scale) { return static_cast<int>(std::max<qint64>(1, pixels / scale)); }

} // namespace

void ScrollPosition::setExtent(qint64 extent, int page, int line) {
    m_maximum = std::max<qint64>(0, extent - page);
    m_scale = m_maximum / largestBarValue + 1;
    m_value = std::min(m_value, m_maximum);
    const QScopedValueRollback showing(m_isShowing, true);
    m_bar.setRange(0, static_cast<int>(m_maximum / m_scale));
    m_bar.setPageStep(barUnits(page, m_scale));
    m_bar.setSingleStep(barUnits(line, m_scale));
    showOnBar();
}

bool ScrollPosition::set(qint64 value) {
    const qint64 before = m_value;
    m_value = std::clamp<qint64>(value, 0, m_maximum);
    showOnBar();
    return m_value != before;
}

void ScrollPosition::follow(int barValue) {
    // Only a move of the bar itself counts, or a scaled bar would round the position.
    if (!m_isShowing && barValue != static_cast<int>(m_value / m_scale)) {
        m_value = barValue == m_bar.maximum() ? m_maximum : barValue * m_scale;
    }
}

void ScrollPosition::showOnBar() {
    const QScopedValueRollback showing(m_isShowing, true);
    m_bar.setValue(static_cast<int>(m_value / m_scale));
}
