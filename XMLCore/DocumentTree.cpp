#include "DocumentTree.h"

#include <algorithm>
#include <unordered_set>

DocumentTree DocumentTree::empty() {
    DocumentTree tree;
    tree.nodes.append(TreeNode());
    return tree;
}

std::optional<NodeID> DocumentTree::rootElement() const {
    for (const NodeID child : children(NodeID::document())) {
        if ((*this)[child].isElement()) {
            return child;
        }
    }
    return std::nullopt;
}

std::span<const AttributeSpan> DocumentTree::attributesOf(NodeID node) const {
    const TreeNode& owner = (*this)[node];
    return std::span(attributes.begin(), attributes.end())
        .subspan(owner.firstAttribute, owner.attributeCount);
}

std::optional<AttributeSpan> DocumentTree::attribute(std::u16string_view named, NodeID of) const {
    for (const AttributeSpan& attribute : attributesOf(of)) {
        if (text.equals(attribute.name, named)) {
            return attribute;
        }
    }
    return std::nullopt;
}

std::size_t DocumentTree::indexInParent(NodeID node) const {
    const NodeID parent = (*this)[node].parent;
    if (parent.isNone()) {
        return 0;
    }
    return static_cast<std::size_t>(
        std::ranges::distance(children(parent).begin(), Children::Iterator(nodes.data(), node)));
}

std::optional<NodeID> DocumentTree::child(NodeID of, std::size_t at) const {
    if (at >= (*this)[of].childCount) {
        return std::nullopt;
    }
    return *std::ranges::next(children(of).begin(), static_cast<std::ptrdiff_t>(at));
}

NodeID DocumentTree::node(Offset at) const {
    const auto next =
        std::ranges::upper_bound(nodes, at, {}, [](const TreeNode& node) { return node.range.lower; });
    const auto index = std::max<std::ptrdiff_t>(next - nodes.begin() - 1, 0);
    return {static_cast<std::uint32_t>(index)};
}

NodeID DocumentTree::innermostNode(Offset containing) const {
    NodeID id = node(containing);
    while (id != NodeID::document() && !(*this)[id].range.contains(containing)) {
        id = (*this)[id].parent;
    }
    return id;
}

bool DocumentTree::hasOnlyTextContent(NodeID node) const {
    return std::ranges::all_of(children(node), [this](NodeID child) {
        const TreeNode::Kind kind = (*this)[child].kind;
        return kind == TreeNode::Kind::text || kind == TreeNode::Kind::cdata;
    });
}

DocumentTree::Vocabulary DocumentTree::vocabulary() const {
    std::unordered_set<std::u16string_view> seen;
    const auto collect = [&](std::vector<std::u16string>& names, SourceRange name) {
        if (!name.isEmpty() && seen.insert(text.units(name)).second) {
            names.push_back(text.string(name));
        }
    };
    Vocabulary vocabulary;
    for (const TreeNode& node : nodes) {
        if (node.isElement()) {
            collect(vocabulary.elements, node.nameRange);
        }
    }
    seen.clear();
    for (const AttributeSpan& attribute : attributes) {
        collect(vocabulary.attributes, attribute.name);
    }
    return vocabulary;
}

Offset DocumentTree::lexStart(Offset before) const {
    const NodeID deepest = innermostNode(before);
    if (deepest == NodeID::document()) {
        return 0;
    }
    const TreeNode& node = (*this)[deepest];
    const bool isBeforeContent = before < node.contentRange.lower;
    if (!node.isElement() || isBeforeContent || node.flags.contains(TreeNode::selfClosing)) {
        return node.range.lower;
    }
    return before < node.contentRange.upper ? node.contentRange.lower : node.contentRange.upper;
}
