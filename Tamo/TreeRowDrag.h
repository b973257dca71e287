#pragma once

#include "NodePath.h"
#include "TreeDropTarget.h"

#include <QBasicTimer>
#include <QObject>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>

class QDragLeaveEvent;
class QDragMoveEvent;
class QDropEvent;
class QMimeData;
class QPainter;
class TreeOutlineView;

/// Dragging rows about in one list: where the row under the pointer would go, the mark that shows it,
/// scrolling near the edges, and expanding a row that the pointer rests on. Only rows of the same list are
/// taken. The control key asks for a copy.
class TreeRowDrag : public QObject {
    Q_OBJECT

public:
    explicit TreeRowDrag(TreeOutlineView& view);

    /// Drags a row with the pointer until it is dropped somewhere.
    void run(std::size_t row);

    /// What is dragged from now on.
    std::unique_ptr<QMimeData> pickUp(std::size_t row);

    const std::optional<TreeDropTarget>& target() const { return m_target; }

    // What the pointer does over the list

    /// Accepts every row of the list: a drag that is not accepted here never hovers.
    void enter(QDragMoveEvent& event);
    void hover(QDragMoveEvent& event);
    void leave();
    void drop(QDropEvent& event);

    /// A line between two rows, or a frame around the one that takes the dragged node in.
    void paintMark(QPainter& painter) const;

    /// Has what is dragged follow its node to another tree.
    void carryPath(const std::function<NodePath(const NodePath&)>& carried);

    /// Other rows are there: the target of the drag has to be found again.
    void forgetTarget() { setTarget(std::nullopt); }

signals:
    void expansionRequested(std::size_t row);
    void dropRequested(const NodePath& dragged, const NodePath& target, TreeMutation::Placement placement,
                       Qt::DropAction action);

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    bool isOurs(const QMimeData* dragData) const;
    std::optional<TreeDropTarget> target(QPoint at, Qt::DropAction action) const;
    void setTarget(std::optional<TreeDropTarget> target);
    void scrollAtEdges(int y);

    TreeOutlineView& m_view;
    std::optional<NodePath> m_dragged;
    std::optional<TreeDropTarget> m_target;
    QBasicTimer m_edgeTimer;
    int m_edgeDirection = 0;
    QBasicTimer m_springTimer; ///< Expands the row that the drag rests on.
};
