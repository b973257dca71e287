#include "TreeDropTarget.h"

namespace {

using Placement = TreeMutation::Placement;

constexpr double upperEdge = 0.25;
constexpr double middle = 0.5;
constexpr double lowerEdge = 0.75;

} // namespace

TreeDropTarget TreeDropTarget::at(std::size_t row, double fraction, const TreeOutline::Rows& rows,
                                  const DocumentTree& tree) {
    const bool takesChildren = tree[rows[row].node].isElement();
    const bool showsChildren = row + 1 < rows.size() && rows[row + 1].depth > rows[row].depth;
    if (fraction < (takesChildren ? upperEdge : middle)) {
        return {row, Placement::before};
    }
    if (takesChildren && fraction < lowerEdge) {
        return {row, Placement::lastChild};
    }
    return {row, showsChildren ? Placement::firstChild : Placement::after};
}

bool TreeDropTarget::accepts(NodeID dragged, Qt::DropAction action, const TreeOutline::Rows& rows,
                             const DocumentTree& tree) const {
    const NodeID target = rows[row].node;
    const bool isInside =
        target == dragged || (target > dragged && tree[target].range.lower < tree[dragged].range.upper);
    return action == Qt::CopyAction || !isInside;
}
