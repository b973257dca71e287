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
/// diagnostics. It does not change after the parser has returned it, and any thread may read it. It can be
/// moved but not copied, because the tree of a large document takes hundreds of megabytes.
///
/// Node 0 is the document and spans the whole text. Node indices ascend with `range.lower`, and children are
/// in text order, so the first child of a node has the next index. Operations that take a node abort if the
/// tree has no such node.
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

    /// Whether any diagnostic is an error. Warnings do not count: a document that has only warnings is
    /// well-formed.
    bool hasErrors() const { return diagnostics.errorCount() != 0; }

    /// The text of the node's `nameRange`, with lone surrogates replaced by U+FFFD.
    std::u16string name(NodeID of) const { return text.string((*this)[of].nameRange); }

    /// The attributes of a node, in text order; borrowed from the tree.
    std::span<const AttributeSpan> attributesOf(NodeID node) const;

    /// The first attribute of the node whose name has exactly the units of `named`.
    std::optional<AttributeSpan> attribute(std::u16string_view named, NodeID of) const;

    /// The index of a node among its parent's children; 0 for the document. Takes time linear in that index.
    std::size_t indexInParent(NodeID node) const;

    /// The child at index `at`, counted from 0; none if the node has fewer children.
    std::optional<NodeID> child(NodeID of, std::size_t at) const;

    /// The last child; none if there are no children. Does not visit the other children.
    std::optional<NodeID> lastChild(NodeID of) const;

    /// The sibling before the node; none for a first child and for the document. Does not visit the other
    /// siblings.
    std::optional<NodeID> previousSibling(NodeID of) const;

    /// The path of the node, which can also be resolved in later trees.
    NodePath path(NodeID of) const;

    /// The node at `path`; none if one of its indices is out of range.
    std::optional<NodeID> resolve(const NodePath& path) const;

    /// The path of a node as it is shown to the user, such as "/rss/channel/item[2]/title/text()"; "/" for
    /// the document. A number counts the sibling elements of the same name from 1, and is left out if there
    /// are no others.
    std::u16string xpath(NodeID of) const;

    /// The last node, in document order, that starts at or before `at`. The innermost node that contains `at`
    /// is this node or its nearest ancestor that contains `at`.
    NodeID node(Offset at) const;

    /// The innermost node whose range contains `offset`, the document if no other does.
    NodeID innermostNode(Offset containing) const;

    /// Whether all children are texts or CDATA sections; true if there are no children.
    bool hasOnlyTextContent(NodeID node) const;

    /// The text that the user reads in the node, with lone surrogates replaced. For an element: its direct
    /// texts, with references resolved, and its direct CDATA sections as written; none if it has no children.
    /// For a text: its content, with references resolved. For any other node: its content as written.
    std::optional<std::u16string> textContent(NodeID of) const;

    /// `textContent` on one line, for lists: white space is collapsed, and a text that reaches `limit`
    /// characters (extended grapheme clusters) is cut there and gets "…" appended. Of texts and other leaves
    /// at most 4 × `limit` units are read. None for the document, for elements without children and for
    /// elements with other children than texts and CDATA sections.
    std::optional<std::u16string> preview(NodeID of, std::size_t limit) const;

    /// The distinct names in the tree, in order of first appearance.
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
    /// The child of `below` that is `startingAt` or one of its ancestors.
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
