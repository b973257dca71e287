#pragma once

#include "TreeMutation.h"
#include "TreeOutline.h"

#include <qnamespace.h>

#include <cstddef>
#include <optional>

/// Where a node that is dragged over the outline would go: beside the node of a row, or into it as its last
/// child.
struct TreeDropTarget {
    std::size_t row;
    TreeMutation::Placement placement;

    /// The target of the pointer over `row`; `fraction` tells where, 0 at its upper edge and 1 at its lower.
    /// The middle of an element means into it, the edges before or after. Right below an element whose
    /// children are shown comes its first child.
    static TreeDropTarget at(std::size_t row, double fraction, const TreeOutline::Rows& rows,
                             const DocumentTree& tree);

    /// Whether `dragged` may go there: neither onto itself nor into itself, unless a copy of it is meant.
    bool accepts(NodeID dragged, Qt::DropAction action, const TreeOutline::Rows& rows,
                 const DocumentTree& tree) const;

    bool isInto() const { return placement == TreeMutation::Placement::lastChild; }

    bool operator==(const TreeDropTarget&) const = default;
};
