#include "PaneCycle.h"

#include <QApplication>

#include <algorithm>

namespace {

bool takesKeys(const QWidget& widget) { return widget.isVisible() && widget.isEnabled(); }

/// The first widget of `area` that Tab stops at.
QWidget* firstStop(QWidget& area) {
    QWidget* stop = area.nextInFocusChain();
    const auto isStop = [&area](const QWidget* widget) {
        return area.isAncestorOf(widget) && (widget->focusPolicy() & Qt::TabFocus) != 0 && takesKeys(*widget);
    };
    while (stop != &area && !isStop(stop)) {
        stop = stop->nextInFocusChain();
    }
    return stop != &area ? stop : nullptr;
}

/// What is to take the keys in `pane`; null when nothing can.
QWidget* target(const PaneCycle::Pane& pane) {
    if (pane.area == nullptr || !takesKeys(*pane.area)) {
        return nullptr;
    }
    if (QWidget* const last = pane.area->focusWidget(); last != nullptr && takesKeys(*last)) {
        return last;
    }
    return pane.landing != nullptr && takesKeys(*pane.landing) ? pane.landing.data() : firstStop(*pane.area);
}

} // namespace

void PaneCycle::move(Direction direction) const {
    const QWidget* const focused = QApplication::focusWidget();
    const auto current = std::ranges::find_if(m_panes, [focused](const Pane& pane) {
        return focused != nullptr && pane.area != nullptr &&
               (pane.area == focused || pane.area->isAncestorOf(focused));
    });
    const std::size_t count = m_panes.size();
    const std::size_t step = direction == Direction::forward ? 1 : count - 1;
    std::size_t at = static_cast<std::size_t>(current - m_panes.begin());
    if (current == m_panes.end()) {
        at = direction == Direction::forward ? count - 1 : 0;
    }
    for (std::size_t tried = 0; tried < count; ++tried) {
        at = (at + step) % count;
        if (QWidget* const next = target(m_panes[at])) {
            next->setFocus(direction == Direction::forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return;
        }
    }
}
