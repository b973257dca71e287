#include "NodeCopy.h"

#include "NodeInsertion.h"
#include "NodeLayout.h"

using MutationPlanner::Failure;
using MutationPlanner::Plan;
using Placement = TreeMutation::Placement;

std::expected<Plan, Failure> NodeCopy::plan(const NodePath& path, const NodePath& target, Placement placement,
                                            const DocumentTree& in, IndentStyle indent) {
    const auto node = in.resolve(path);
    const auto targetNode = in.resolve(target);
    if (!node || !targetNode) {
        return std::unexpected(MutationPlanner::NodeNotFound());
    }
    if (*node == NodeID::document()) {
        return std::unexpected(MutationPlanner::InvalidTarget());
    }
    NodeLayout layout(in, indent);
    const bool isInside = placement == Placement::firstChild || placement == Placement::lastChild;
    const std::u16string indentation =
        isInside ? layout.childIndentation(*targetNode) : layout.lineIndentation(*targetNode);
    const std::u16string source = reindented(in.source(*node), layout.lineIndentation(*node), indentation);
    const auto insertion = NodeInsertion::plan(source, *targetNode, placement, in, layout);
    if (!insertion) {
        return std::unexpected(MutationPlanner::NotAnElement());
    }
    return Plan{{insertion->edit}, insertion->nodeStart()};
}
