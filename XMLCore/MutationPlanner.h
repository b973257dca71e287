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

/// Turns a change of the tree into edits of the text. Whatever the change does not touch stays as it is, to
/// the last unit.
namespace MutationPlanner {

/// The edits that carry a mutation out.
struct Plan {
    /// In the coordinates of the text before all of them. They never overlap, and may stand in any order.
    std::vector<TextEdit> edits;
    /// Where the node to select afterwards begins in the text after the edits; none when there is none.
    std::optional<Offset> selectOffset;

    bool operator==(const Plan&) const = default;
};

/// A new name that is no name.
struct InvalidName {
    std::u16string name;
    bool operator==(const InvalidName&) const = default;
};
/// A new name that another attribute of the element has already.
struct DuplicateAttribute {
    std::u16string name;
    bool operator==(const DuplicateAttribute&) const = default;
};
/// No node stands at a path, or its element has no attribute of that name.
struct NodeNotFound {
    bool operator==(const NodeNotFound&) const = default;
};
/// Only an element can have that done.
struct NotAnElement {
    bool operator==(const NotAnElement&) const = default;
};
/// That node cannot have that done, or not there.
struct InvalidTarget {
    bool operator==(const InvalidTarget&) const = default;
};

/// Why a mutation cannot be carried out. Names are as shown, lone surrogates replaced.
using Failure = std::variant<InvalidName, DuplicateAttribute, NodeNotFound, NotAnElement, InvalidTarget>;

/// The plan for `mutation` of the document `in`; new lines are indented by units of `indent`. Of several
/// causes of failure the first one is told: first names, then paths, then kinds of nodes. Takes time in
/// proportion to the source of the node at hand, not to the document. May run on any thread.
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
