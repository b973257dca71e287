#include "Breadcrumbs.h"

#include "ShownText.h"

#include <algorithm>

namespace {

constexpr Offset longestName = 100;
constexpr std::size_t mostSteps = 256;
constexpr std::size_t fewestLastSteps = 4;
constexpr std::size_t mostIndices = 2'000'000; ///< In the paths of the last steps together.

} // namespace

QString Breadcrumbs::kindTitle(TreeNode::Kind kind) {
    switch (kind) {
    case TreeNode::Kind::document:
        return QStringLiteral("Documento");
    case TreeNode::Kind::element:
        return QStringLiteral("Elemento");
    case TreeNode::Kind::text:
        return QStringLiteral("Texto");
    case TreeNode::Kind::comment:
        return QStringLiteral("Comentario");
    case TreeNode::Kind::cdata:
        return QStringLiteral("CDATA");
    case TreeNode::Kind::instruction:
        return QStringLiteral("Instrucción de procesamiento");
    case TreeNode::Kind::doctype:
        return QStringLiteral("DOCTYPE");
    }
    std::unreachable();
}

QString Breadcrumbs::title(NodeID of, const DocumentTree& in) {
    const TreeNode& node = in[of];
    if (node.nameRange.isEmpty()) {
        return kindTitle(node.kind);
    }
    const QString name = ShownText::start(node.nameRange, longestName, in.text);
    return node.isElement() ? name : kindTitle(node.kind) + u' ' + name;
}

std::vector<Breadcrumb> Breadcrumbs::steps(NodeID to, const NodePath& path, const DocumentTree& in) {
    std::vector<NodeID> nodes;
    for (NodeID node = to; !node.isNone(); node = in[node].parent) {
        nodes.push_back(node);
    }
    std::ranges::reverse(nodes);
    // Each step has a path of its own, so that the steps of a deep node would take the square of its depth.
    const bool isLong = nodes.size() > mostSteps;
    const std::size_t first = isLong ? mostSteps / 2 : nodes.size();
    const std::size_t lastSteps = std::clamp(mostIndices / nodes.size(), fewestLastSteps, mostSteps / 2);
    const std::size_t last = isLong ? nodes.size() - lastSteps : nodes.size();
    std::vector<Breadcrumb> steps;
    for (std::size_t depth = 0; depth < nodes.size(); depth = depth + 1 == first ? last : depth + 1) {
        const auto end = path.indices.begin() + static_cast<std::ptrdiff_t>(depth);
        steps.push_back({NodePath{{path.indices.begin(), end}}, title(nodes[depth], in),
                         in[nodes[depth]].kind, depth == last});
    }
    return steps;
}
