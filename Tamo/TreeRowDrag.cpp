#include "TreeRowDrag.h"

#include "SystemColor.h"
#include "TreeOutlineView.h"

#include <QCoreApplication>
#include <QDrag>
#include <QDragMoveEvent>
#include <QMimeData>
#include <QPainter>
#include <QPixmap>

#include <utility>

namespace {

using Placement = TreeMutation::Placement;

constexpr int margin = 8;      ///< Between the edges of the list and the mark.
constexpr int edgeHeight = 24; ///< A drag this near to an edge scrolls.
constexpr int edgeInterval = 16;
constexpr int edgeStep = 8;
constexpr int springInterval = 700;

QString mimeType() { return QStringLiteral("application/x-tamo-node"); }

/// What a dragged row's data holds: which list it comes from.
QByteArray token(const TreeOutlineView& view) {
    return QByteArray::number(QCoreApplication::applicationPid()) + '/' +
           QByteArray::number(quintptr(&view), 16);
}

/// The row as it hangs from the pointer.
QPixmap picture(const TreeOutlineView& view, std::size_t row) {
    constexpr double opacity = 0.8;
    TreeRowView::Appearance look = view.appearance(row);
    look.isSelected = look.isAlternate = false;
    const QRect label = view.rowView(row).labelRect(look);
    QPixmap picture(label.size() * view.devicePixelRatioF());
    picture.setDevicePixelRatio(view.devicePixelRatioF());
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.translate(-label.topLeft());
    painter.setOpacity(opacity);
    view.rowView(row).paint(painter, look, view.palette());
    return picture;
}

} // namespace

TreeRowDrag::TreeRowDrag(TreeOutlineView& view) : m_view(view) {}

void TreeRowDrag::run(std::size_t row) {
    QDrag drag(&m_view);
    drag.setMimeData(pickUp(row).release());
    drag.setPixmap(picture(m_view, row));
    drag.exec(Qt::MoveAction | Qt::CopyAction, Qt::MoveAction);
    m_dragged.reset();
    leave();
}

std::unique_ptr<QMimeData> TreeRowDrag::pickUp(std::size_t row) {
    m_dragged = m_view.path(row);
    auto dragData = std::make_unique<QMimeData>();
    dragData->setData(mimeType(), token(m_view));
    return dragData;
}

void TreeRowDrag::carryPath(const std::function<NodePath(const NodePath&)>& carried) {
    if (m_dragged) {
        m_dragged = carried(*m_dragged);
    }
}

bool TreeRowDrag::isOurs(const QMimeData* dragData) const {
    return m_dragged && dragData->data(mimeType()) == token(m_view);
}

void TreeRowDrag::enter(QDragMoveEvent& event) {
    hover(event);
    if (isOurs(event.mimeData())) {
        event.acceptProposedAction();
    }
}

void TreeRowDrag::hover(QDragMoveEvent& event) {
    if (!isOurs(event.mimeData())) {
        event.ignore();
        return;
    }
    const QPoint at = event.position().toPoint();
    scrollAtEdges(at.y());
    const bool isCopy = event.modifiers().testFlag(Qt::ControlModifier);
    const Qt::DropAction action = isCopy ? Qt::CopyAction : Qt::MoveAction;
    setTarget(target(at, action));
    event.setDropAction(m_target ? action : Qt::IgnoreAction);
    event.setAccepted(m_target.has_value());
}

void TreeRowDrag::leave() {
    m_edgeTimer.stop();
    setTarget(std::nullopt);
}

void TreeRowDrag::drop(QDropEvent& event) {
    hover(static_cast<QDragMoveEvent&>(event));
    const auto target = m_target;
    leave();
    if (!target) {
        return;
    }
    const NodePath dragged = *std::exchange(m_dragged, std::nullopt);
    const Qt::DropAction action = event.dropAction();
    // The node is moved by an edit of the text; the drag itself has nothing left to take away.
    event.setDropAction(Qt::CopyAction);
    event.accept();
    emit dropRequested(dragged, m_view.path(target->row), target->placement, action);
}

/// Where what is dragged would go; none where it cannot.
std::optional<TreeDropTarget> TreeRowDrag::target(QPoint at, Qt::DropAction action) const {
    const DocumentTree* const tree = m_view.contents().tree;
    const TreeOutline::Rows* const rows = m_view.contents().rows;
    const auto over = m_view.row(at);
    const auto dragged = rows->row(*m_dragged, *tree);
    if (!over || !dragged) {
        return std::nullopt;
    }
    const double fraction = (at.y() - m_view.rect(*over).top()) / double(TreeRowView::height);
    const TreeDropTarget target = TreeDropTarget::at(*over, fraction, *rows, *tree);
    return target.accepts((*rows)[*dragged].node, action, *rows, *tree) ? std::optional(target)
                                                                        : std::nullopt;
}

void TreeRowDrag::setTarget(std::optional<TreeDropTarget> target) {
    if (target == m_target) {
        return;
    }
    m_target = target;
    m_springTimer.stop();
    if (target && target->isInto() && m_view.rowView(target->row).showsCount()) {
        m_springTimer.start(springInterval, this);
    }
    m_view.viewport()->update();
}

void TreeRowDrag::scrollAtEdges(int y) {
    m_edgeDirection = y < edgeHeight ? -1 : y >= m_view.viewport()->height() - edgeHeight ? 1 : 0;
    if (m_edgeDirection == 0) {
        m_edgeTimer.stop();
    } else if (!m_edgeTimer.isActive()) {
        m_edgeTimer.start(edgeInterval, this);
    }
}

void TreeRowDrag::timerEvent(QTimerEvent* event) {
    if (event->timerId() == m_edgeTimer.timerId()) {
        if (m_dragged && m_view.scrollBy(m_edgeDirection * edgeStep)) {
            setTarget(std::nullopt);
        } else {
            m_edgeTimer.stop();
        }
    } else if (event->timerId() == m_springTimer.timerId()) {
        m_springTimer.stop();
        if (m_target) {
            emit expansionRequested(m_target->row);
        }
    }
}

void TreeRowDrag::paintMark(QPainter& painter) const {
    if (!m_target) {
        return;
    }
    constexpr double width = 2;
    constexpr double knob = 3;
    const TreeRowView::Appearance look = m_view.appearance(m_target->row);
    const QColor accent = color(SystemColor::accent, m_view.palette());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(accent, width));
    if (m_target->isInto()) {
        constexpr float veil = 0.15F;
        QColor tint = accent;
        tint.setAlphaF(veil);
        painter.setBrush(tint);
        painter.drawRoundedRect(QRectF(look.rect).adjusted(margin, 1, -margin, -1), 2 * knob, 2 * knob);
        return;
    }
    const int step = m_target->placement == Placement::firstChild ? TreeIndentation::fullStep : 0;
    const double left = TreeRowView::disclosureRect(look).left() + step + knob;
    const double y = m_target->placement == Placement::before ? look.rect.top() : look.rect.bottom() + 1;
    painter.setBrush(color(SystemColor::textBackground, m_view.palette()));
    painter.drawEllipse(QPointF(left, y), knob, knob);
    painter.drawLine(QPointF(left + knob, y), QPointF(look.rect.right() - margin, y));
}
