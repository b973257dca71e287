#include "NodeErrors.h"

#include <algorithm>

namespace {

/// The last node from `from` on that starts at or before `offset`, as `from` does. Looks the farther ahead
/// the longer it finds nothing, so that close problems cost little and far ones a bisection.
NodeID lastStart(const DocumentTree& tree, NodeID from, Offset offset) {
    std::size_t step = 1;
    std::size_t known = from.raw;
    while (known + step < tree.nodes.size() && tree.nodes[known + step].range.lower <= offset) {
        known += step;
        step *= 2;
    }
    const TreeNode* const end = tree.nodes.begin() + std::min(known + step, tree.nodes.size());
    const TreeNode* const next =
        std::upper_bound(tree.nodes.begin() + known, end, offset,
                         [](Offset position, const TreeNode& node) { return position < node.range.lower; });
    return {static_cast<std::uint32_t>(next - tree.nodes.begin() - 1)};
}

} // namespace

NodeErrors::NodeErrors(const DocumentTree& tree) {
    if (tree.diagnostics.empty()) {
        return;
    }
    m_words.resize((tree.nodes.size() + bitsPerWord - 1) / bitsPerWord);
    NodeID start = NodeID::document();
    NodeID around = NodeID::document();
    for (std::size_t index = 0; index < tree.diagnostics.size(); ++index) {
        const Offset offset = tree.diagnostics.range(index).lower;
        if (const NodeID last = lastStart(tree, start, offset); last != start) {
            start = last;
            around = last;
        }
        // A node that ends here is left for good: later problems start behind it.
        while (around != NodeID::document() && !tree[around].range.contains(offset)) {
            around = tree[around].parent;
        }
        insertWithAncestors(around, tree);
    }
}

void NodeErrors::insertWithAncestors(NodeID node, const DocumentTree& tree) {
    while (!node.isNone() && !contains(node)) {
        m_words[node.raw / bitsPerWord] |= std::uint64_t(1) << (node.raw % bitsPerWord);
        node = tree[node].parent;
    }
}
