#include "TreeOutlineView.h"

#include "ApplicationIdentifier.h"
#include "Signposter.h"
#include "SystemColor.h"
#include "SystemFont.h"
#include "TreeOutlineAccessibility.h"
#include "TreeRowDrag.h"
#include "TreeRowEditor.h"

#include <QAccessible>
#include <QApplication>
#include <QContextMenuEvent>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QStyleHints>
#include <QToolTip>

#include <algorithm>
#include <array>

namespace {

using Kind = TreeNode::Kind;

constexpr Signposter signposter(applicationIdentifier, "Outline");

constexpr int rowHeight = TreeRowView::height;
constexpr int margin = 8; ///< Above the first row and below the last.
constexpr int roomForLabels = 200;
constexpr std::size_t longestEdited = 10'000; ///< Units; more belong into the source.

/// What the user edits in the place of a label, none where nothing can be edited there.
std::optional<QString> editedText(const DocumentTree& tree, NodeID node) {
    switch (tree[node].kind) {
    case Kind::element:
        return tree[node].nameRange.length() <= longestEdited
                   ? std::optional(QString::fromStdU16String(tree.name(node)))
                   : std::nullopt;
    case Kind::text:
    case Kind::comment:
    case Kind::cdata:
        return tree[node].contentRange.length() <= longestEdited
                   ? std::optional(QString::fromStdU16String(tree.textContent(node).value_or(u"")))
                   : std::nullopt;
    default:
        return std::nullopt;
    }
}

} // namespace

TreeOutlineView::TreeOutlineView(QWidget* parent)
    : QAbstractScrollArea(parent), m_contents{}, m_scrolled(*verticalScrollBar()),
      m_drag(std::make_unique<TreeRowDrag>(*this)) {
    TreeOutlineAccessibility::install();
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAccessibleName(QStringLiteral("Árbol del documento"));
    setAcceptDrops(true);
    viewport()->setMouseTracking(true);
    connect(m_drag.get(), &TreeRowDrag::expansionRequested, this, &TreeOutlineView::expansionRequested);
    connect(m_drag.get(), &TreeRowDrag::dropRequested, this, &TreeOutlineView::dropRequested);
}

TreeOutlineView::~TreeOutlineView() {
    // Losing the focus would end the editing.
    if (m_editor != nullptr) {
        m_editor->disconnect(this);
    }
}

void TreeOutlineView::setContents(Contents contents) {
    m_contents = std::move(contents);
    m_selectedRow.reset();
    m_hoveredDisclosure.reset();
    m_pressed.reset();
    m_drag->forgetTarget();
    updateExtent();
    placeEditor();
    viewport()->update();
    TreeOutlineAccessibility::rowsChanged(*this);
}

void TreeOutlineView::carryPaths(const std::function<NodePath(const NodePath&)>& carried) {
    if (m_editor != nullptr) {
        m_edited = carried(m_edited);
    }
    m_drag->carryPath(carried);
}

std::size_t TreeOutlineView::rowCount() const {
    return m_contents.rows != nullptr ? m_contents.rows->size() : 0;
}

TreeRowView TreeOutlineView::rowView(std::size_t row) const {
    const NodeID node = shown(row).node;
    return {shown(row), *m_contents.tree, m_contents.hasError && m_contents.hasError(node),
            m_contents.filter};
}

void TreeOutlineView::setSelectedRow(std::optional<std::size_t> row) {
    precondition(!row || *row < rowCount(), "the outline has the row to select");
    const bool isOther = row != m_selectedRow;
    m_selectedRow = row;
    viewport()->update();
    if (isOther) {
        TreeOutlineAccessibility::selectionChanged(*this);
    }
}

void TreeOutlineView::scrollTo(std::size_t row) {
    const qint64 top = margin + qint64(row) * rowHeight;
    const int height = viewport()->height();
    const qint64 seen = m_scrolled.value();
    qint64 wanted = std::clamp(seen, std::min(top, top + rowHeight - height), top);
    // A row from far away comes into the middle.
    if (std::abs(wanted - seen) > height) {
        wanted = top - (height - rowHeight) / 2;
    }
    if (row == 0 || row + 1 == rowCount()) {
        wanted += row == 0 ? -margin : margin;
    }
    if (m_scrolled.set(wanted)) {
        followScrolling();
    }
}

QRect TreeOutlineView::rect(std::size_t row) const {
    const qint64 top = margin + qint64(row) * rowHeight - m_scrolled.value();
    constexpr qint64 farAway = 1 << 24;
    return {0, static_cast<int>(std::clamp(top, -farAway, farAway)), viewport()->width(), rowHeight};
}

TreeRowView::Appearance TreeOutlineView::appearance(std::size_t row) const {
    const TreeIndentation indented = indentation();
    return {.rect = rect(row),
            .indentation = shown(row).depth >= indented.base ? indented.pixels(shown(row).depth) : 0,
            .isAlternate = row % 2 == 1,
            .isSelected = row == m_selectedRow,
            .hasFocus = hasFocus(),
            .isDisclosureHovered = row == m_hoveredDisclosure};
}

bool TreeOutlineView::scrollBy(int pixels) {
    const bool moves = m_scrolled.set(m_scrolled.value() + pixels);
    if (moves) {
        followScrolling();
    }
    return moves;
}

std::optional<std::size_t> TreeOutlineView::row(QPoint at) const {
    const qint64 y = at.y() + m_scrolled.value() - margin;
    const auto row = static_cast<std::size_t>(std::max<qint64>(y, 0) / rowHeight);
    return y >= 0 && row < rowCount() ? std::optional(row) : std::nullopt;
}

void TreeOutlineView::toggle(std::size_t row) {
    if (shown(row).hasChildren) {
        shown(row).isExpanded ? emit collapseRequested(row) : emit expansionRequested(row);
    }
}

std::size_t TreeOutlineView::firstVisibleRow() const {
    return static_cast<std::size_t>(std::max<qint64>(0, m_scrolled.value() - margin) / rowHeight);
}

std::size_t TreeOutlineView::visibleEnd() const {
    const qint64 bottom = m_scrolled.value() + viewport()->height() - margin;
    const auto end = static_cast<std::size_t>((std::max<qint64>(0, bottom) + rowHeight - 1) / rowHeight);
    return std::min(end, rowCount());
}

TreeIndentation TreeOutlineView::indentation() const {
    const std::size_t first = firstVisibleRow();
    const std::size_t end = visibleEnd();
    if (first >= end) {
        return {};
    }
    const auto [shallowest, deepest] = std::ranges::minmax(
        std::ranges::subrange(m_contents.rows->begin() + first, m_contents.rows->begin() + end), {},
        &TreeOutline::Row::depth);
    const int width = viewport()->width();
    return TreeIndentation::fitting(shallowest.depth, deepest.depth,
                                    std::max(width / 3, width - roomForLabels));
}

void TreeOutlineView::updateExtent() {
    const qint64 height = rowCount() != 0 ? qint64(rowCount()) * rowHeight + 2 * margin : 0;
    m_scrolled.setExtent(height, viewport()->height(), rowHeight);
}

void TreeOutlineView::followScrolling() {
    setHoveredDisclosure(std::nullopt);
    placeEditor();
    viewport()->update();
}

void TreeOutlineView::scrollContentsBy(int, int) {
    m_scrolled.follow(verticalScrollBar()->value());
    followScrolling();
}

void TreeOutlineView::resizeEvent(QResizeEvent*) {
    updateExtent();
    placeEditor();
}

void TreeOutlineView::paintEvent(QPaintEvent* event) {
    const auto interval = signposter.interval("Paint", std::to_string(rowCount()) + " rows");
    QPainter painter(viewport());
    painter.fillRect(event->rect(), color(SystemColor::textBackground, palette()));
    const std::size_t end = visibleEnd();
    for (std::size_t row = firstVisibleRow(); row < end; ++row) {
        if (rect(row).intersects(event->rect())) {
            rowView(row).paint(painter, appearance(row), palette());
        }
    }
    m_drag->paintMark(painter);
    if (hasFocus() && !m_selectedRow) {
        paintFocus(painter);
    }
}

/// Tells that keys go here while no row does.
void TreeOutlineView::paintFocus(QPainter& painter) const {
    painter.setPen(color(SystemColor::accent, palette()));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(viewport()->rect().adjusted(0, 0, -1, -1));
}

bool TreeOutlineView::viewportEvent(QEvent* event) {
    switch (event->type()) {
    case QEvent::ToolTip: {
        const auto* help = static_cast<QHelpEvent*>(event);
        const auto pointed = row(help->pos());
        const bool isOnError = pointed && rowView(*pointed).hasError &&
                               TreeRowView::errorRect(appearance(*pointed)).contains(help->pos());
        QToolTip::showText(help->globalPos(), isOnError ? TreeRowView::errorHelp() : QString(), viewport());
        return true;
    }
    case QEvent::Leave:
        setHoveredDisclosure(std::nullopt);
        break;
    default:
        break;
    }
    return QAbstractScrollArea::viewportEvent(event);
}

// Keys

void TreeOutlineView::keyPressEvent(QKeyEvent* event) {
    const bool isPlain = (event->modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier)) == 0;
    if (isPlain && rowCount() != 0 && (goTo(event->key()) || openOrClose(event->key()))) {
        return;
    }
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F2:
        if (isPlain && m_selectedRow) {
            edit(*m_selectedRow);
            return;
        }
        break;
    case Qt::Key_Delete:
        if (isPlain && m_selectedRow) {
            emit deletionRequested(*m_selectedRow);
            return;
        }
        break;
    default:
        break;
    }
    const QString text = event->text();
    const bool isTyped = isPlain && !text.isEmpty() && text.front().isPrint() && !text.front().isSpace();
    if (isTyped && rowCount() != 0) {
        if (const auto found = m_typeAhead.row(text, m_selectedRow, *m_contents.rows, *m_contents.tree)) {
            choose(*found);
        }
        return;
    }
    event->ignore();
}

/// Moves the selection up or down.
bool TreeOutlineView::goTo(int key) {
    const std::ptrdiff_t page = std::max(1, viewport()->height() / rowHeight - 1);
    const std::size_t last = rowCount() - 1;
    const std::size_t from = m_selectedRow.value_or(0);
    const auto distance = m_selectedRow ? 1 : 0;
    switch (key) {
    case Qt::Key_Down:
        chooseBelow(from, distance);
        return true;
    case Qt::Key_Up:
        chooseBelow(m_selectedRow.value_or(last), -distance);
        return true;
    case Qt::Key_PageDown:
        chooseBelow(from, page);
        return true;
    case Qt::Key_PageUp:
        chooseBelow(from, -page);
        return true;
    case Qt::Key_Home:
        choose(0);
        return true;
    case Qt::Key_End:
        choose(last);
        return true;
    default:
        return false;
    }
}

/// Expands the selected row or goes to its first child; collapses it or goes to its parent.
bool TreeOutlineView::openOrClose(int key) {
    if (key != Qt::Key_Right && key != Qt::Key_Left) {
        return false;
    }
    if (!m_selectedRow) {
        choose(0);
        return true;
    }
    const std::size_t row = *m_selectedRow;
    const bool isOpen = shown(row).hasChildren && shown(row).isExpanded;
    if (key == Qt::Key_Right) {
        if (shown(row).hasChildren && !isOpen) {
            emit expansionRequested(row);
        } else if (row + 1 < rowCount() && shown(row + 1).depth > shown(row).depth) {
            choose(row + 1);
        }
        return true;
    }
    const auto parent = m_contents.rows->parent(row, *m_contents.tree);
    if (isOpen) {
        emit collapseRequested(row);
    } else if (parent) {
        choose(*parent);
    }
    return true;
}

void TreeOutlineView::choose(std::size_t row) {
    setSelectedRow(row);
    scrollTo(row);
    emit rowChosen(row);
}

void TreeOutlineView::chooseBelow(std::size_t from, std::ptrdiff_t distance) {
    const auto last = static_cast<std::ptrdiff_t>(rowCount()) - 1;
    choose(static_cast<std::size_t>(
        std::clamp<std::ptrdiff_t>(static_cast<std::ptrdiff_t>(from) + distance, 0, last)));
}

void TreeOutlineView::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
    TreeOutlineAccessibility::selectionChanged(*this);
}

void TreeOutlineView::focusOutEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}

// The pointer

bool TreeOutlineView::isOnDisclosure(QPoint at) const {
    const auto pointed = row(at);
    if (!pointed || !shown(*pointed).hasChildren) {
        return false;
    }
    // Easier to hit than it looks: as high as the row, and some pixels to either side.
    constexpr int tolerance = 4;
    const QRect drawn = TreeRowView::disclosureRect(appearance(*pointed));
    return drawn.left() - tolerance <= at.x() && at.x() <= drawn.right() + tolerance;
}

void TreeOutlineView::setHoveredDisclosure(std::optional<std::size_t> hovered) {
    if (hovered != m_hoveredDisclosure) {
        m_hoveredDisclosure = hovered;
        viewport()->update();
    }
}

void TreeOutlineView::mousePressEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    const auto pressed = row(at);
    if (!pressed) {
        return;
    }
    if (event->button() == Qt::LeftButton && isOnDisclosure(at)) {
        toggle(*pressed);
    } else if (event->button() == Qt::LeftButton || event->button() == Qt::RightButton) {
        choose(*pressed);
        if (event->button() == Qt::LeftButton) {
            m_pressed = at;
        }
    }
}

void TreeOutlineView::mouseMoveEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    const int distance = m_pressed ? (at - *m_pressed).manhattanLength() : 0;
    if (m_pressed && m_selectedRow && distance >= QGuiApplication::styleHints()->startDragDistance()) {
        m_pressed.reset();
        m_drag->run(*m_selectedRow);
    } else if (event->buttons() == Qt::NoButton) {
        setHoveredDisclosure(isOnDisclosure(at) ? row(at) : std::nullopt);
    }
}

void TreeOutlineView::mouseReleaseEvent(QMouseEvent*) { m_pressed.reset(); }

void TreeOutlineView::mouseDoubleClickEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    if (const auto pressed = row(at); pressed && event->button() == Qt::LeftButton) {
        isOnDisclosure(at) ? toggle(*pressed) : edit(*pressed);
    }
}

void TreeOutlineView::contextMenuEvent(QContextMenuEvent* event) {
    const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
    const auto on = isByKey ? m_selectedRow : row(event->pos());
    if (!on) {
        return;
    }
    if (isByKey) {
        scrollTo(*on);
    }
    const QPoint belowIcon = TreeRowView::iconRect(appearance(*on)).bottomLeft();
    emit menuRequested(*on, isByKey ? viewport()->mapToGlobal(belowIcon) : event->globalPos());
}

// Editing in place

void TreeOutlineView::edit(std::size_t row) {
    if (m_editor != nullptr) {
        m_editor->clearFocus();
    }
    const auto text = editedText(*m_contents.tree, shown(row).node);
    if (!text) {
        return;
    }
    scrollTo(row);
    m_edited = path(row);
    const bool isElement = (*m_contents.tree)[shown(row).node].isElement();
    const QFont& font = SystemFont::body();
    m_editor = new TreeRowEditor(*text, isElement ? SystemFont::semibold(font) : font, viewport());
    m_editor->setAccessibleName(isElement ? QStringLiteral("Nombre del elemento")
                                          : QStringLiteral("Contenido del nodo"));
    connect(m_editor, &TreeRowEditor::finished, this, &TreeOutlineView::finishEditing);
    placeEditor();
    m_editor->show();
    m_editor->setFocus();
}

/// Keeps the field on its row, wherever that has gone; ends the editing when the row is no longer there.
void TreeOutlineView::placeEditor() {
    if (m_editor == nullptr) {
        return;
    }
    const auto row = m_contents.rows->row(m_edited, *m_contents.tree);
    if (!row) {
        m_editor->cancel();
        return;
    }
    constexpr int frame = 3; ///< Between the field's edge and its text.
    constexpr int space = 2;
    const QRect label = rowView(*row).labelRect(appearance(*row));
    m_editor->setGeometry(label.adjusted(-frame, space, 0, -space));
}

void TreeOutlineView::finishEditing(bool isAccepted) {
    TreeRowEditor* const editor = std::exchange(m_editor, nullptr);
    const bool hadFocus = window()->focusWidget() == editor; // Also while another window is active.
    const QString text = editor->text();
    editor->hide();
    editor->deleteLater();
    if (hadFocus) {
        setFocus();
    }
    const auto row = m_contents.rows->row(m_edited, *m_contents.tree);
    if (!isAccepted || !row) {
        return;
    }
    if ((*m_contents.tree)[shown(*row).node].isElement()) {
        emit renameRequested(m_edited, text);
    } else {
        emit textChangeRequested(m_edited, text);
    }
}

// Drag and drop

std::unique_ptr<QMimeData> TreeOutlineView::pickUp(std::size_t row) { return m_drag->pickUp(row); }

const std::optional<TreeDropTarget>& TreeOutlineView::dropTarget() const { return m_drag->target(); }

void TreeOutlineView::dragEnterEvent(QDragEnterEvent* event) { m_drag->enter(*event); }

void TreeOutlineView::dragMoveEvent(QDragMoveEvent* event) { m_drag->hover(*event); }

void TreeOutlineView::dragLeaveEvent(QDragLeaveEvent*) { m_drag->leave(); }

void TreeOutlineView::dropEvent(QDropEvent* event) { m_drag->drop(*event); }
