#pragma once

#include "DocumentOutlineModel.h"

#include <QTreeView>

#include <set>
#include <vector>

/// The outline of a document. What the user opened stays open when the tree is parsed anew: nodes are
/// remembered by the positions of the rows that lead to them.
class DocumentOutlineView : public QTreeView {
    Q_OBJECT

public:
    explicit DocumentOutlineView(QWidget* parent = nullptr);

    /// Shows `tree`, which outlives the view or the next call. The first tree shows the root's children.
    void setTree(const DocumentTree& tree);

signals:
    /// The user went to a row.
    void nodeChosen(NodeID node);

protected:
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    using Rows = std::vector<int>;

    static Rows rows(QModelIndex to);
    QModelIndex index(const Rows& rows) const;
    void openRoot(const DocumentTree& tree);
    void openBranch(const QModelIndex& top);

    DocumentOutlineModel m_model;
    std::set<Rows> m_expanded; ///< In an order that has parents before their children.
    bool m_hasShownRoot = false;
    bool m_isRestoring = false;
};
