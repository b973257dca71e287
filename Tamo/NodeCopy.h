#pragma once

#include "MutationPlanner.h"

/// Copies of nodes, for trees whose nodes are dragged about.
namespace NodeCopy {

/// The plan that puts a copy of the node at `path` into or beside the one at `target`, indented as it is to
/// be there. Fails as a move would, but a node may be copied into itself.
std::expected<MutationPlanner::Plan, MutationPlanner::Failure>
plan(const NodePath& path, const NodePath& target, TreeMutation::Placement placement, const DocumentTree& in,
     IndentStyle indent);

} // namespace NodeCopy
