#pragma once

#include "DocumentTree.h"

#include <cstddef>
#include <optional>
#include <unordered_set>
#include <vector>

/// Repairs mistyped end tags. An end tag that matches no open element is renamed to the innermost open
/// element if its name is similar or missing, and if that element, or one of the same name around it, lacks
/// an end tag.
class EndTagRepair {
public:
    explicit EndTagRepair(const DocumentTree& tree) : m_tree(tree) {}

    struct Renaming {
        TextEdit edit;
        NodeID element; ///< The element whose name the end tag gets.
        /// The element that then no longer lacks an end tag: `element` or one of the same name around it.
        NodeID unclosed;
    };

    /// The renaming that repairs the diagnostic at `index` of the tree's list; none if there is none, or if
    /// the element that would get the end tag is claimed.
    std::optional<Renaming> renaming(std::size_t index) const;

    /// Records that a renaming gives `unclosed` an end tag, so that no other end tag is renamed for it.
    void claim(NodeID unclosed) { m_claimed.insert(m_tree[unclosed].nameRange.lower); }

    /// Whether the element whose name starts at offset `name` is claimed.
    bool isClaimed(Offset name) const { return m_claimed.contains(name); }

private:
    std::optional<NodeID> elementWithoutEndTag(NodeID innermost, SourceRange endTag) const;
    bool endsDocument(Offset from, NodeID element) const;

    const DocumentTree& m_tree;
    std::unordered_set<Offset> m_claimed; ///< The offsets at which the names of the claimed elements start.
};
