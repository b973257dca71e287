#include "NodePath.h"

#include "DocumentTree.h"

#include <algorithm>
#include <ranges>

namespace {

/// The name of `element`, followed by its position among the siblings of that name if there are others.
std::u16string elementStep(const DocumentTree& tree, NodeID element) {
    const SourceRange name = tree[element].nameRange;
    std::size_t position = 0;
    std::size_t namesakes = 0;
    for (const NodeID sibling : tree.children(tree[element].parent)) {
        const TreeNode& node = tree[sibling];
        namesakes += node.isElement() && tree.text.equals(node.nameRange, name) ? 1 : 0;
        if (sibling == element) {
            position = namesakes;
        }
    }
    std::u16string step = tree.name(element);
    if (namesakes > 1) {
        const std::string digits = std::to_string(position);
        step.append(u"[").append(digits.begin(), digits.end()).append(u"]");
    }
    return step;
}

/// The step of the displayed path for `node`, which is not the document.
std::u16string step(const DocumentTree& tree, NodeID node) {
    switch (tree[node].kind) {
    case TreeNode::Kind::element:
        return elementStep(tree, node);
    case TreeNode::Kind::text:
    case TreeNode::Kind::cdata:
        return u"text()";
    case TreeNode::Kind::comment:
        return u"comment()";
    default:
        return u"node()";
    }
}

/// The nodes on the way from the document (excluded) down to `node` (included).
std::vector<NodeID> lineage(const DocumentTree& tree, NodeID node) {
    std::vector<NodeID> nodes;
    for (; node != NodeID::document(); node = tree[node].parent) {
        nodes.push_back(node);
    }
    std::ranges::reverse(nodes);
    return nodes;
}

} // namespace

bool NodePath::contains(const NodePath& node) const {
    return indices.size() < node.indices.size() &&
           std::equal(indices.begin(), indices.end(), node.indices.begin());
}

std::string NodePath::description() const {
    if (indices.empty()) {
        return "/";
    }
    std::string description;
    for (const std::uint32_t index : indices) {
        description.append("/").append(std::to_string(index));
    }
    return description;
}

std::size_t std::hash<NodePath>::operator()(const NodePath& path) const noexcept {
    return hashOf(path.indices.size(), hashOfList(path.indices));
}

NodePath DocumentTree::path(NodeID of) const {
    NodePath path;
    for (const NodeID node : lineage(*this, of)) {
        path.indices.push_back(static_cast<std::uint32_t>(indexInParent(node)));
    }
    return path;
}

std::optional<NodeID> DocumentTree::resolve(const NodePath& path) const {
    std::optional<NodeID> node = NodeID::document();
    for (auto index = path.indices.begin(); node && index != path.indices.end(); ++index) {
        node = child(*node, *index);
    }
    return node;
}

std::u16string DocumentTree::xpath(NodeID of) const {
    std::u16string path;
    for (const NodeID node : lineage(*this, of)) {
        path.append(u"/").append(step(*this, node));
    }
    return path.empty() ? u"/" : path;
}
