#pragma once

#include "Diagnostic.h"
#include "RecordArray.h"
#include "SourceText.h"
#include "TreeNode.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct NodePath;

/// The result of one parse: the text, its nodes in document order linked by index, their attributes, and the
/// diagnostics. Never changed after the parser returned it; may be read from any thread. Moves, never
/// copies: a large document's tree takes hundreds of megabytes.
///
/// Node 0 is the document and spans the whole text. Node indices grow with `range.lower`, children stand in
/// text order, and so the first child of a node is the node right after it. Operations that take a node stop
/// the program when the tree has no such node.
struct DocumentTree {
    class Children;

    SourceText text;
    RecordArray<TreeNode> nodes;
    RecordArray<AttributeSpan> attributes;
    DiagnosticList diagnostics; ///< In ascending order of `range.lower`.

    /// The tree of the empty text: the document node only.
    static DocumentTree empty();

    const TreeNode& operator[](NodeID node) const {
        precondition(node.raw < nodes.size(), "the tree has that node");
        return nodes[node.raw];
    }

    Children children(NodeID of) const;

    /// The first element among the document's children.
    std::optional<NodeID> rootElement() const;

    /// Whether any diagnostic is an error; warnings alone leave the document well-formed.
    bool hasErrors() const { return diagnostics.errorCount() != 0; }

    /// The text of the node's `nameRange`, lone surrogates replaced.
    std::u16string name(NodeID of) const { return text.string((*this)[of].nameRange); }

    /// The attributes of a node, in text order; borrowed from the tree.
    std::span<const AttributeSpan> attributesOf(NodeID node) const;

    /// The first attribute of the node whose name has exactly these units.
    std::optional<AttributeSpan> attribute(std::u16string_view named, NodeID of) const;

    /// The position of a node among its parent's children; 0 for the document.
    std::size_t indexInParent(NodeID node) const;

    /// The child at position `at`, counted from 0.
    std::optional<NodeID> child(NodeID of, std::size_t at) const;

    /// The last child, found without a walk over the others; none when there are none.
    std::optional<NodeID> lastChild(NodeID of) const;

    /// The sibling right before the node, found without a walk from the first; none for the first.
    std::optional<NodeID> previousSibling(NodeID of) const;

    /// Where the node stands, which outlives this tree.
    NodePath path(NodeID of) const;

    /// The node that stands at `path`, none when one of its positions is out of range.
    std::optional<NodeID> resolve(const NodePath& path) const;

    /// The path of a node as shown to the user, such as "/rss/channel/item[2]/title/text()". A position
    /// counts the sibling elements of the same name, and is left out when there are no others.
    std::u16string xpath(NodeID of) const;

    /// The last node that starts at or before `at`. The innermost node that contains the offset is that one
    /// or the nearest of its ancestors that does.
    NodeID node(Offset at) const;

    /// The innermost node whose range contains `offset`, the document if no other does.
    NodeID innermostNode(Offset containing) const;

    /// Whether all children are texts or CDATA sections; also when there are none.
    bool hasOnlyTextContent(NodeID node) const;

    /// What the user reads in the node: of an element its direct texts, references resolved, and its direct
    /// CDATA sections as written, or nothing when it has no children; of a text its content, references
    /// resolved; of any other node its content as written.
    std::optional<std::u16string> textContent(NodeID of) const;

    /// `textContent` on one line for lists: white space collapsed, cut after `limit` characters (extended
    /// grapheme clusters), "…" added when that many were reached. Of texts and other leaves at most
    /// 4 × `limit` units are looked at; the document, and elements with other content than text, have none.
    std::optional<std::u16string> preview(NodeID of, std::size_t limit) const;

    /// The distinct names that the tree uses, in order of first appearance.
    struct Vocabulary {
        std::vector<std::u16string> elements;
        std::vector<std::u16string> attributes;
    };
    Vocabulary vocabulary() const;

    /// The text of the node's `range`, every unit as written; borrowed from the tree.
    std::u16string_view source(NodeID of) const { return text.units((*this)[of].range); }

    /// An offset at or before `before` where the lexer may start in content mode.
    Offset lexStart(Offset before) const;

private:
    /// `startingAt` or the ancestor of it that is a child of `below`.
    NodeID ancestor(NodeID below, NodeID startingAt) const;
};

/// The children of a node, in text order.
class DocumentTree::Children {
public:
    class Iterator {
    public:
        using value_type = NodeID;
        using difference_type = std::ptrdiff_t;
        using iterator_category = std::forward_iterator_tag;

        Iterator() = default;
        Iterator(const TreeNode* nodes, NodeID current) : m_nodes(nodes), m_current(current) {}

        NodeID operator*() const { return m_current; }
        Iterator& operator++() {
            m_current = m_nodes[m_current.raw].nextSibling;
            return *this;
        }
        Iterator operator++(int) {
            const Iterator before = *this;
            ++*this;
            return before;
        }
        bool operator==(const Iterator&) const = default;

    private:
        const TreeNode* m_nodes = nullptr;
        NodeID m_current;
    };

    Children(const TreeNode* nodes, NodeID first) : m_nodes(nodes), m_first(first) {}

    Iterator begin() const { return {m_nodes, m_first}; }
    Iterator end() const { return {m_nodes, NodeID::none()}; }

private:
    const TreeNode* m_nodes;
    NodeID m_first;
};

inline DocumentTree::Children DocumentTree::children(NodeID of) const {
    return {nodes.data(), (*this)[of].firstChild};
}
