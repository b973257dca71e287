#pragma once

#include "DocumentTree.h"
#include "IndentStyle.h"
#include "TextEdit.h"
#include "TreeMutation.h"

#include <expected>
#include <optional>
#include <string>
#include <variant>
#include <vector>

/// Turns a change of the tree into edits of the text. All units that the change does not concern stay as they
/// are.
namespace MutationPlanner {

/// The edits that carry a mutation out.
struct Plan {
    /// In the coordinates of the text before any of them. They do not overlap, and may be in any order.
    std::vector<TextEdit> edits;
    /// The offset, in the text after the edits, at which the node to select starts; none if no node is to be
    /// selected.
    std::optional<Offset> selectOffset;

    bool operator==(const Plan&) const = default;
};

/// The new name is not a valid name.
struct InvalidName {
    std::u16string name;
    bool operator==(const InvalidName&) const = default;
};
/// Another attribute of the element already has the new name.
struct DuplicateAttribute {
    std::u16string name;
    bool operator==(const DuplicateAttribute&) const = default;
};
/// There is no node at the path, or its element has no attribute of the name.
struct NodeNotFound {
    bool operator==(const NodeNotFound&) const = default;
};
/// The mutation needs an element, and the node is not an element.
struct NotAnElement {
    bool operator==(const NotAnElement&) const = default;
};
/// The mutation is not possible for the node, or not at that place.
struct InvalidTarget {
    bool operator==(const InvalidTarget&) const = default;
};

/// Why a mutation is not possible. Names are ready for display: lone surrogates are replaced.
using Failure = std::variant<InvalidName, DuplicateAttribute, NodeNotFound, NotAnElement, InvalidTarget>;

/// The plan for `mutation` of the document `in`; new lines are indented by units of `indent`. If there are
/// several causes of failure, the first is returned; names are checked first, then paths, then kinds of
/// nodes. The time depends on the node concerned, its line and the siblings along its path, not on the rest
/// of the document. May run on any thread.
std::expected<Plan, Failure> plan(const TreeMutation& mutation, const DocumentTree& in, IndentStyle indent);

} // namespace MutationPlanner

template <>
struct std::hash<MutationPlanner::Plan> {
    std::size_t operator()(const MutationPlanner::Plan& plan) const noexcept;
};

template <>
struct std::hash<MutationPlanner::Failure> {
    std::size_t operator()(const MutationPlanner::Failure& failure) const noexcept;
};
