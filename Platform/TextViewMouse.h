#pragma once

#include "DragSelection.h"
#include "SourceRange.h"

#include <QBasicTimer>
#include <QObject>
#include <QPointF>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

class QDragMoveEvent;
class QDropEvent;
class QMouseEvent;
class TextView;

/// What the mouse does to a text view: it selects, pastes the primary selection, carries text away, and drops
/// what comes from elsewhere.
class TextViewMouse : public QObject {
    Q_OBJECT

public:
    /// Part of `view`.
    explicit TextViewMouse(TextView& view) : m_view(view) {}

    void press(QMouseEvent& event);
    void pressTwice(QMouseEvent& event);
    void move(QMouseEvent& event);
    void release(QMouseEvent& event);

    /// A press beside the text, as in a ruler, selects the whole line there, or `extends` the selection to
    /// it. A drag then goes on line by line until it ends. Positions are in the viewport, or above or below
    /// it.
    enum class Extent : std::uint8_t { line, extended };
    void pressLine(QPointF position, Extent extent);
    void dragTo(QPointF position);
    void endDrag();

    /// Something is carried over the view, has left it, or is dropped.
    void carryOver(QDragMoveEvent& event);
    void leave() { setDropPlace(std::nullopt); }
    void drop(QDropEvent& event);

    /// Whether the mouse is selecting just now.
    bool isSelecting() const { return m_drag.has_value(); }

    /// Where what is carried over the view would go.
    std::optional<Offset> dropPlace() const;

    /// `length` units now stand in the place of `replaced`.
    void followEdit(SourceRange replaced, Offset length);

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    void press(QMouseEvent& event, int clicks);
    void selectTo(QPointF position);
    void scrollAlong(QPointF position);
    void pastePrimarySelection(QPointF position);
    void carrySelectionAway();
    void insertDropped(std::u16string units, Offset at);
    void moveCarriedText(std::u16string_view units, Offset to);
    void setDropPlace(std::optional<Offset> place);

    TextView& m_view;
    ClickCounter m_clicks;
    std::optional<DragSelection> m_drag;
    std::optional<SourceRange> m_carried; ///< What is carried out of this view.
    std::optional<Offset> m_dropPlace;
    bool m_isPressedOnSelection = false;
    QPointF m_position; ///< Of the press, or of the last move that selected.
    QBasicTimer m_scrolling;
};
