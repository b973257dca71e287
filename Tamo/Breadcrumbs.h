#pragma once

#include "DocumentTree.h"
#include "NodePath.h"

#include <QString>

#include <vector>

/// One step of the way to a node.
struct Breadcrumb {
    NodePath path;
    QString title; ///< Plain text.
    TreeNode::Kind kind = TreeNode::Kind::document;
    bool isAfterGap = false; ///< Steps before this one are left out.

    bool operator==(const Breadcrumb&) const = default;
};

namespace Breadcrumbs {

/// What a kind of node is called.
QString kindTitle(TreeNode::Kind kind);

/// What the node is called as a step: an element by its name, an instruction by its kind and its target, any
/// other by its kind. A name is cut after 100 units.
QString title(NodeID of, const DocumentTree& in);

/// The steps from the document to `node`, both included. Of more than 256 the middle ones are left out, the
/// more of them the deeper the node is, whose path every step begins with.
std::vector<Breadcrumb> steps(NodeID to, const NodePath& path, const DocumentTree& in);

} // namespace Breadcrumbs
