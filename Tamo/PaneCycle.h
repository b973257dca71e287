#pragma once

#include <QPointer>
#include <QWidget>

#include <cstdint>
#include <vector>

/// Leads the keyboard from one pane of a window to the next, around all that show.
class PaneCycle {
public:
    struct Pane {
        QPointer<QWidget> area;
        /// What takes the keys when nothing in `area` had them before; null for the first that Tab stops at.
        QPointer<QWidget> landing;
    };
    enum class Direction : std::uint8_t { forward, backward };

    /// In this order.
    void setPanes(std::vector<Pane> panes) { m_panes = std::move(panes); }

    /// Gives the focus to the pane that follows the one that has it; to the first one, or the last, when none
    /// has it. Panes that are hidden or have nothing to take the keys are left out.
    void move(Direction direction) const;

private:
    std::vector<Pane> m_panes;
};
