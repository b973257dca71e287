#pragma once

#include "DocumentTree.h"

#include <QAbstractItemModel>

#include <unordered_map>
#include <vector>

/// The nodes of a document's tree as rows for a tree view: the children of a node are its rows, those of the
/// document the top ones. One column of plain text.
///
/// The rows of a parent are listed when the view first asks for them, so that a row is found by position and
/// a position by binary search, whatever the number of siblings.
class DocumentOutlineModel : public QAbstractItemModel {
    Q_OBJECT

public:
    using QAbstractItemModel::QAbstractItemModel;

    /// Shows `tree`, which outlives the model or the next call. Null shows nothing.
    void setTree(const DocumentTree* tree);

    /// The node of a row; the document for the invalid index.
    NodeID node(const QModelIndex& of) const;

    /// The row of a node; invalid for the document.
    QModelIndex index(NodeID of) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    const std::vector<NodeID>& children(NodeID of) const;

    const DocumentTree* m_tree = nullptr;
    mutable std::unordered_map<NodeID, std::vector<NodeID>> m_children;
};
