#include "DocumentOutlineView.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QScopedValueRollback>
#include <QScrollBar>

#include <algorithm>

namespace {

/// A root with more children stays closed at first.
constexpr std::uint32_t mostChildrenOpened = 10'000;

/// How many rows one key opens. A branch may be a million levels deep.
constexpr std::size_t mostOpenedAtOnce = 500;

} // namespace

DocumentOutlineView::DocumentOutlineView(QWidget* parent) : QTreeView(parent) {
    setModel(&m_model);
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setFrameShape(QFrame::NoFrame);
    setIndentation(16);
    setTextElideMode(Qt::ElideRight);
    setAccessibleName(QStringLiteral("Esquema"));
    connect(this, &QTreeView::expanded, this,
            [this](const QModelIndex& index) { m_expanded.insert(rows(index)); });
    connect(this, &QTreeView::collapsed, this,
            [this](const QModelIndex& index) { m_expanded.erase(rows(index)); });
}

void DocumentOutlineView::setTree(const DocumentTree& tree) {
    const QScopedValueRollback restoring(m_isRestoring, true);
    const int scrolled = verticalScrollBar()->value();
    const Rows current = rows(currentIndex());
    m_model.setTree(&tree);
    openRoot(tree);
    for (const Rows& each : std::set<Rows>(m_expanded)) {
        if (const QModelIndex found = index(each); found.isValid()) {
            expand(found);
        }
    }
    if (const QModelIndex found = index(current); found.isValid()) {
        selectionModel()->setCurrentIndex(found, QItemSelectionModel::ClearAndSelect);
    }
    if (scrolled != 0) {
        executeDelayedItemsLayout();
        verticalScrollBar()->setValue(scrolled);
    }
}

void DocumentOutlineView::openRoot(const DocumentTree& tree) {
    const auto root = tree.rootElement();
    if (!m_hasShownRoot && root) {
        m_hasShownRoot = true;
        if (tree[*root].childCount <= mostChildrenOpened) {
            m_expanded.insert(rows(m_model.index(*root)));
        }
    }
}

void DocumentOutlineView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTreeView::currentChanged(current, previous);
    if (!m_isRestoring && current.isValid()) {
        emit nodeChosen(m_model.node(current));
    }
}

void DocumentOutlineView::keyPressEvent(QKeyEvent* event) {
    // The tree view's own answer recurses as deep as the branch goes.
    if (event->key() == Qt::Key_Asterisk && currentIndex().isValid()) {
        openBranch(currentIndex());
        event->accept();
    } else {
        QTreeView::keyPressEvent(event);
    }
}

/// Opens `top` and what is below it, the upper levels first.
void DocumentOutlineView::openBranch(const QModelIndex& top) {
    // One layout at the end, not one for each row.
    scheduleDelayedItemsLayout();
    std::vector<QModelIndex> reached{top};
    for (std::size_t at = 0; at < reached.size(); ++at) {
        const QModelIndex open = reached[at];
        expand(open);
        const int count = m_model.rowCount(open);
        for (int row = 0; row < count && reached.size() < mostOpenedAtOnce; ++row) {
            if (const QModelIndex child = m_model.index(row, 0, open); m_model.hasChildren(child)) {
                reached.push_back(child);
            }
        }
    }
}

DocumentOutlineView::Rows DocumentOutlineView::rows(QModelIndex to) {
    Rows rows;
    for (; to.isValid(); to = to.parent()) {
        rows.push_back(to.row());
    }
    std::ranges::reverse(rows);
    return rows;
}

QModelIndex DocumentOutlineView::index(const Rows& rows) const {
    QModelIndex found;
    for (const int row : rows) {
        const QModelIndex child = m_model.index(row, 0, found);
        if (!child.isValid()) {
            return {};
        }
        found = child;
    }
    return found;
}
