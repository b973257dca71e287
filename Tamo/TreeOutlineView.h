#pragma once

#include "NodePath.h"
#include "ScrollPosition.h"
#include "TreeDropTarget.h"
#include "TreeIndentation.h"
#include "TreeRowView.h"
#include "TreeTypeAhead.h"

#include <QAbstractScrollArea>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>

class QMimeData;
class TreeRowDrag;
class TreeRowEditor;

/// The list of the outline's rows. It shows rows that others made and tells what the user wants done with
/// them; it changes nothing itself.
///
/// All rows are equally high and none is kept here, so that a million of them cost what the visible ones do.
class TreeOutlineView : public QAbstractScrollArea {
    Q_OBJECT

public:
    /// What is shown. `rows` were made from `tree`; both outlive the view or the next contents.
    struct Contents {
        const DocumentTree* tree;
        const TreeOutline::Rows* rows;
        std::function<bool(NodeID)> hasError;
        QString filter = {}; ///< What the rows are filtered by; empty for no filter.
    };

    explicit TreeOutlineView(QWidget* parent = nullptr);
    ~TreeOutlineView() override;

    /// Shows other rows, none of them selected. A row that is being edited goes on being so where its node
    /// is still there.
    void setContents(Contents contents);
    /// Has paths that are kept here, of a row that is edited or dragged, follow their nodes to another tree.
    void carryPaths(const std::function<NodePath(const NodePath&)>& carried);
    const Contents& contents() const { return m_contents; }

    std::size_t rowCount() const;
    NodePath path(std::size_t row) const { return m_contents.rows->path(row, *m_contents.tree); }
    TreeRowView rowView(std::size_t row) const;

    std::optional<std::size_t> selectedRow() const { return m_selectedRow; }
    /// Selects a row, or none, and tells nobody.
    void setSelectedRow(std::optional<std::size_t> row);
    void scrollTo(std::size_t row);
    /// Answers whether there was anything left to scroll.
    bool scrollBy(int pixels);
    /// What a click on a row does: selects it, brings it into view and tells.
    void choose(std::size_t row);

    /// Where a row is in the viewport, which it may lie outside of.
    QRect rect(std::size_t row) const;
    TreeRowView::Appearance appearance(std::size_t row) const;
    /// The row at a point of the viewport.
    std::optional<std::size_t> row(QPoint at) const;

    /// Asks for the other state of a row with children.
    void toggle(std::size_t row);

    /// Puts a field into the place of the row's label: the name of an element, the content of a text, comment
    /// or CDATA section. Nothing happens for other nodes, nor for a content of more than 10,000 units.
    void edit(std::size_t row);
    TreeRowEditor* editor() const { return m_editor; }

    /// What is dragged when the user drags a row. Only this view takes it.
    std::unique_ptr<QMimeData> pickUp(std::size_t row);
    const std::optional<TreeDropTarget>& dropTarget() const;

signals:
    void rowChosen(std::size_t row);
    void expansionRequested(std::size_t row);
    void collapseRequested(std::size_t row);
    void menuRequested(std::size_t row, QPoint globalPosition);
    void deletionRequested(std::size_t row);
    void renameRequested(const NodePath& path, const QString& name);
    void textChangeRequested(const NodePath& path, const QString& text);
    /// A row was dropped; `action` tells whether it is to be copied or moved.
    void dropRequested(const NodePath& dragged, const NodePath& target, TreeMutation::Placement placement,
                       Qt::DropAction action);

protected:
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    const TreeOutline::Row& shown(std::size_t row) const { return (*m_contents.rows)[row]; }
    /// The first row that is visible, at least in part, and one past the last.
    std::size_t firstVisibleRow() const;
    std::size_t visibleEnd() const;
    TreeIndentation indentation() const;
    void updateExtent();
    void followScrolling();

    bool goTo(int key);
    bool openOrClose(int key);
    void chooseBelow(std::size_t from, std::ptrdiff_t distance);
    bool isOnDisclosure(QPoint at) const;
    void setHoveredDisclosure(std::optional<std::size_t> row);

    void placeEditor();
    void finishEditing(bool isAccepted);

    void paintFocus(QPainter& painter) const;

    Contents m_contents;
    ScrollPosition m_scrolled;
    std::optional<std::size_t> m_selectedRow;
    std::optional<std::size_t> m_hoveredDisclosure;
    TreeTypeAhead m_typeAhead;

    TreeRowEditor* m_editor = nullptr; ///< While a row is edited.
    NodePath m_edited;

    std::optional<QPoint> m_pressed; ///< Where a drag may start from.
    std::unique_ptr<TreeRowDrag> m_drag;
};
