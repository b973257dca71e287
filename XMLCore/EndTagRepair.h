#pragma once

#include "DocumentTree.h"

#include <cstddef>
#include <optional>
#include <unordered_set>
#include <vector>

/// Renames an end tag that matches no open element to the innermost open one, where that lacks its own and
/// the name looks like a slip of it.
class EndTagRepair {
public:
    explicit EndTagRepair(const DocumentTree& tree) : m_tree(tree) {}

    struct Renaming {
        TextEdit edit;
        NodeID element; ///< Whose name it gets.
        NodeID
            unclosed; ///< Which element no longer lacks an end tag: `element` or one around it of its name.
    };

    /// For the problem at `index` of the tree's list; nothing if it is another one, or if it needs an element
    /// that `claim` was told of.
    std::optional<Renaming> renaming(std::size_t index) const;

    /// The element gets an end tag by a renaming: no other one is renamed for it.
    void claim(NodeID unclosed) { m_claimed.insert(m_tree[unclosed].nameRange.lower); }

    /// Whether the element whose name starts at `name` was claimed.
    bool isClaimed(Offset name) const { return m_claimed.contains(name); }

private:
    std::optional<NodeID> elementWithoutEndTag(NodeID innermost, SourceRange endTag) const;
    bool endsDocument(Offset from, NodeID element) const;

    const DocumentTree& m_tree;
    std::unordered_set<Offset> m_claimed; ///< By the start of the name.
};
