#pragma once

#include "BackgroundTask.h"
#include "OutlineContents.h"
#include "ParsedDocument.h"

#include <QObject>
#include <QTimer>

#include <cstddef>
#include <cstdint>
#include <vector>

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
    /// How many nodes match it; 0 without a filter.
    std::size_t matchCount() const { return m_matchCount; }

    /// Filters by `filter`, which has no white space around it, once 150 ms have passed without another
    /// filter; shows all at once when it is empty.
    void setFilter(const QString& filter);

    /// Adds an edit of the text: `edited` was replaced by `length` units.
    void noteEdit(SourceRange edited, Offset length) { m_edits.add(edited, length); }

    /// What a worker has to know to make the contents for the next tree.
    OutlineContents::Request request();

    /// Takes a new tree with its contents, made for the last request, and gives back the old ones, to be used
    /// again or freed elsewhere. No edit came after the request. Emits no signal: the owner does, once it has
    /// taken the rest.
    OutlineContents take(std::shared_ptr<const ParsedDocument> document, OutlineContents contents);

    /// Gives up the tree and its rows for `document`, which has none; what is expanded stays. Returns the rows,
    /// to be freed elsewhere. Emits no signal.
    TreeOutline::Rows giveUpTree(std::shared_ptr<const ParsedDocument> document);

    /// Until `forgetBefore`: where the node at `path` of the tree before is in the current one; `path` itself
    /// where its text was replaced, and when there is no tree before.
    NodePath carried(const NodePath& path) const;

    /// Call it when everything that keeps paths has followed the last tree.
    void forgetBefore() { m_before = {}; }

    void setExpanded(const NodePath& path, bool isExpanded);
    void setRowExpanded(std::size_t row, bool isExpanded);

    /// Expands what hides the node at `path`.
    void showAncestors(const NodePath& path, NodeID node);

    /// `DocumentTree::path` and `resolve`, which walk over siblings, but quicker where there is a row.
    NodePath path(NodeID of) const;
    std::optional<NodeID> resolve(const NodePath& path) const;

signals:
    void rowsChanged();
    /// The memory was too short for other rows; those that are shown stay.
    void lackedMemory();

private:
    /// What the user expanded or collapsed since the last request.
    struct Change {
        enum class Kind : std::uint8_t { expand, collapse, expandAncestors };

        Kind kind;
        NodePath path;
    };

    /// The document before the current one, and the edits that led from its text to that of the current one.
    struct Before {
        std::shared_ptr<const ParsedDocument> document;
        EditedPieces edits;
    };

    TreeOutline& changeableOutline();
    NodePath carried(const NodePath& path, NodeID node) const;
    void change(Change change);
    void note(Change change);
    bool isFiltered() const { return !m_shownFilter.isEmpty(); }
    const DocumentTree& tree() const { return m_document->tree; }

    void search();
    void makeRows();
    bool makeRowsIfFew();
    void makeRowsElsewhere(const QString& filter);
    void show(OutlineContents contents);

    std::shared_ptr<const ParsedDocument> m_document;
    EditedPieces m_edits; ///< Since then.
    Before m_before;
    std::shared_ptr<TreeOutline> m_outline; ///< Copied before a change while others read it.
    bool m_isFirstExpansionDue = true;      ///< Nothing was expanded yet, not even to begin with.
    TreeOutline::Rows m_rows;
    QString m_filter;
    QString m_shownFilter;
    std::size_t m_matchCount = 0;
    std::shared_ptr<const ExpansionCarry::Absent> m_absent;
    std::vector<Change> m_changes; ///< Since the last request.
    bool m_isRequested = false;
    QTimer m_searchDelay;
    BackgroundTask<OutlineContents> m_task;
};
