#pragma once

#include "DocumentTree.h"

#include <QAbstractTableModel>

#include <string>
#include <vector>

/// The attributes of one element as rows of name, value, and a place for the button that removes the row.
/// Reads the tree when asked, so that it costs what is visible.
class AttributeTableModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { name, value, removal };

    explicit AttributeTableModel(QObject* parent = nullptr) : QAbstractTableModel(parent) {}

    /// Shows the attributes of another node, or of the same one in a later tree, which outlives this or is
    /// replaced first; null for none. Rows that both have stay, so that one being edited is not lost.
    void setNode(const DocumentTree* tree, NodeID node);

    std::u16string attributeName(int row) const;
    /// The name or value in a cell as the user edits it, references resolved. Of one with more than 65536 units
    /// only the start, which is longer than that too.
    QString editedText(const QModelIndex& cell) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    std::span<const AttributeSpan> attributes() const;
    int count() const { return static_cast<int>(m_nameHashes.size()); }

    const DocumentTree* m_tree = nullptr;
    NodeID m_node;
    std::vector<std::size_t> m_nameHashes; ///< Of the start of each; they outlive the tree.
};
