#pragma once

#include "DocumentTree.h"
#include "NodePathSet.h"
#include "RecordArray.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

/// Which nodes of a document are expanded, and the rows that the outline shows for it.
///
/// Expanded nodes are remembered by their paths, which outlive the tree. The document node has no row, its
/// children are the topmost ones. Nothing here recurses; time is linear in the rows, with a filter in the
/// children of the nodes that are shown.
struct TreeOutline {
    struct Row;
    class Rows;

    NodePathSet expanded;

    /// The rows of all nodes whose ancestors are expanded. `reusing` gives its memory.
    Rows rows(const DocumentTree& tree, Rows reusing) const;
    Rows rows(const DocumentTree& tree) const;

    /// The rows of `matches` and of their ancestors, all of them expanded whatever `expanded` holds.
    /// `matches` does not contain the document.
    static Rows rows(const DocumentTree& tree, std::span<const NodeID> matches, Rows reusing);
    static Rows rows(const DocumentTree& tree, std::span<const NodeID> matches);

    /// Expands or collapses the node of one row of `in`, which were made without a filter from `tree` and
    /// these paths, and puts the rows below it in or out. Nothing happens when it is so already.
    void expand(std::size_t row, Rows& in, const DocumentTree& tree);
    void collapse(std::size_t row, Rows& in, const DocumentTree& tree);

    /// What is expanded when a document was opened: the root, and as many levels below it as keep the
    /// outline under 200 rows. A root with more than 10,000 children stays collapsed.
    static NodePathSet defaultExpansion(const DocumentTree& tree);
};

/// One visible line of the outline.
struct TreeOutline::Row {
    NodeID node;
    std::uint32_t position; ///< Of the node among its parent's children.
    std::uint32_t depth;    ///< 0 for children of the document.
    bool hasChildren;
    bool isExpanded; ///< Its children are shown.

    bool operator==(const Row&) const = default;
};
static_assert(sizeof(TreeOutline::Row) == 16);

/// The visible rows, in document order; so the ids of their nodes ascend. Moves, never copies.
///
/// A row's identity is the path of its node. Rows do not store it: a million rows may be a million levels
/// deep. Operations that take the tree want the one that the rows were made from.
class TreeOutline::Rows {
public:
    std::size_t size() const { return m_rows.size(); }
    bool isEmpty() const { return m_rows.empty(); }
    const Row& operator[](std::size_t row) const {
        precondition(row < size(), "the outline has that row");
        return m_rows[row];
    }
    const Row* begin() const { return m_rows.begin(); }
    const Row* end() const { return m_rows.end(); }

    /// The path of a row's node. Takes time in the depth, whatever the number of siblings.
    NodePath path(std::size_t of, const DocumentTree& in) const;

    /// The row of a node, none when it is not shown. `path` may lead to no node.
    std::optional<std::size_t> row(NodeID of) const;
    std::optional<std::size_t> row(const NodePath& of, const DocumentTree& in) const;

    /// The row that a row is indented below; none for the topmost.
    std::optional<std::size_t> parent(std::size_t of, const DocumentTree& in) const;

    /// One past the last row that shows a node inside a row's node.
    std::size_t subtreeEnd(std::size_t row, const DocumentTree& in) const;

private:
    friend struct TreeOutline;

    void replace(std::size_t first, std::size_t count, const RecordArray<Row>& rows);

    RecordArray<Row> m_rows;
};
