#pragma once

#include "BackgroundTask.h"
#include "OutlineContents.h"
#include "ParsedDocument.h"

#include <QObject>
#include <QTimer>

/// The rows that a session's outline shows, kept in step with the tree, with what is expanded and with the
/// filter. Rows always belong to the current tree; after a change of one of the others they may follow later,
/// since nothing that takes time in proportion to a large document is done on the main thread.
///
/// Lives on the main thread.
class OutlineState : public QObject {
    Q_OBJECT

public:
    /// Starts with nothing expanded. `document` is what `take` would give.
    explicit OutlineState(std::shared_ptr<const ParsedDocument> document, QObject* parent = nullptr);

    const TreeOutline& outline() const { return *m_outline; }
    const TreeOutline::Rows& rows() const { return m_rows; }
    /// What `rows` are filtered by; empty for no filter.
    const QString& shownFilter() const { return m_shownFilter; }

    /// Filters by `filter`, which has no white space around it, once 150 ms have passed without another
    /// filter; shows all at once when it is empty.
    void setFilter(const QString& filter);

    /// What a worker has to know to make the contents for the next tree.
    OutlineContents::Request request() const;

    /// Takes a new tree with its contents and gives back the old rows, as memory to use again. Tells nobody:
    /// the owner does, once it has taken the rest.
    TreeOutline::Rows take(std::shared_ptr<const ParsedDocument> document, OutlineContents contents);

    void setExpanded(const NodePath& path, bool isExpanded);
    void setRowExpanded(std::size_t row, bool isExpanded);

    /// Expands what hides the node at `path`.
    void showAncestors(const NodePath& path, NodeID node);

    /// `DocumentTree::path` and `resolve`, which walk over siblings, but quicker where there is a row.
    NodePath path(NodeID of) const;
    std::optional<NodeID> resolve(const NodePath& path) const;

signals:
    void rowsChanged();

private:
    TreeOutline& changeableOutline();
    bool isFiltered() const { return !m_shownFilter.isEmpty(); }
    const DocumentTree& tree() const { return m_document->tree; }

    void search();
    void makeRows();
    bool makeRowsIfFew();
    void makeRowsElsewhere(const QString& filter);
    void show(OutlineContents contents);

    std::shared_ptr<const ParsedDocument> m_document;
    std::shared_ptr<TreeOutline> m_outline; ///< Copied before a change while others read it.
    bool m_isFirstExpansionDue = true;      ///< Nothing was expanded yet, not even to begin with.
    TreeOutline::Rows m_rows;
    QString m_filter;
    QString m_shownFilter;
    QTimer m_searchDelay;
    BackgroundTask<OutlineContents> m_task;
};
