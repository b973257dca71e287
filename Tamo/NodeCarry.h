#pragma once

#include "DocumentTree.h"
#include "EditedPieces.h"
#include "NodePath.h"

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

/// Finds the nodes of one tree again in the tree of a later text.
///
/// A node whose name or start was not replaced is the node that now stands where that unit went. Among nodes
/// that were replaced, those of the same text (white space aside) are the same, wherever they went: moved,
/// put back by an undo, formatted. What is left of one replaced piece is paired in order. All of it takes
/// time linear in what was replaced, and in the logarithm of the nodes for each that is asked for.
class NodeCarry {
public:
    /// `edits` lead from the text of `from` to that of `to`. Both trees outlive the carry.
    NodeCarry(const DocumentTree& from, const DocumentTree& to, EditedPieces edits);

    const DocumentTree& from() const { return m_from; }
    const DocumentTree& to() const { return m_to; }
    const EditedPieces& edits() const { return m_edits; }

    /// The node of the later tree that `node` has become; nothing when it is gone.
    std::optional<NodeID> carried(NodeID node);

    /// The same, for nodes whose text was not replaced only: takes no time in proportion to the edits.
    std::optional<NodeID> survivor(NodeID node) const;

    /// The path in the later tree of the node at `path`. A node that is gone passes its path on to one that
    /// was put in there, never to one that had another path before. A path without a node stays as it is.
    std::optional<NodePath> carried(const NodePath& path);

    /// Whether a node of the later tree was put in since, and no node before has become it.
    bool isAdded(NodeID later);

    /// The nodes of the later tree that were put in, also those that came from elsewhere, in document order.
    std::vector<NodeID> newNodes() const;

    /// Tells nodes of different content apart: a hash of the node's kind and the start of its text without
    /// white space.
    static std::uint64_t fingerprint(const DocumentTree& tree, NodeID node);

private:
    struct Replaced {
        NodeID node;
        std::uint64_t fingerprint;
        bool isPaired = false;
    };
    /// The nodes of one replaced piece that have no counterpart yet.
    struct Piece {
        std::vector<Replaced> before;
        std::vector<Replaced> after;
    };

    bool isNew(NodeID later) const;
    NodeID laterNode(Offset at, NodeID of) const;
    std::optional<NodeID> renamed(NodeID node) const;
    void pairReplaced();
    Piece replaced(const EditedPieces::Piece& piece) const;
    void pairEnds(Piece& piece);
    void pairSame(std::vector<Piece>& pieces);
    void pairInOrder(Piece& piece);
    void pairNamesakes(const std::vector<Replaced*>& before, const std::vector<Replaced*>& after);
    void pair(Replaced& before, Replaced& after);

    const DocumentTree& m_from;
    const DocumentTree& m_to;
    EditedPieces m_edits;
    mutable std::int64_t m_distance =
        0; ///< Between the ids of the last node that was found and what it became.
    bool m_isPaired = false;
    std::vector<std::pair<NodeID, NodeID>> m_pairs; ///< Of replaced nodes, ascending; made when first needed.
    std::vector<bool> m_isTaken;                    ///< Nodes of the later tree in them; none without any.
};
