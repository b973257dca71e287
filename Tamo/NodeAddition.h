#pragma once

#include "MutationPlanner.h"
#include "NodeInsertion.h"

#include <QString>

#include <expected>
#include <string>
#include <string_view>
#include <variant>

/// Plans for texts and comments that the user adds to a tree, and what other plans of new nodes share.
namespace NodeAddition {

/// Character data has no place beside the root element.
struct TextOutsideRoot {
    bool operator==(const TextOutsideRoot&) const = default;
};
/// The text of a comment holds two hyphens in a row.
struct DoubleHyphen {
    bool operator==(const DoubleHyphen&) const = default;
};

/// Why a node cannot be added.
using Failure = std::variant<MutationPlanner::Failure, TextOutsideRoot, DoubleHyphen>;
using Result = std::expected<MutationPlanner::Plan, Failure>;

/// The failure in words for the user.
QString message(const Failure& failure);

/// Puts `source`, character data as a document writes it, at the end of the element at `path`, or behind a
/// node of another kind. No layout comes between it and other text, so it is read as it was meant.
Result text(const std::u16string& source, const NodePath& path, const DocumentTree& in, IndentStyle indent);

/// Puts a comment of `text` at the end of the element or the document at `path`, or behind a node of another
/// kind. A line of its own where nodes have one; none where the element holds text.
Result comment(std::u16string_view text, const NodePath& path, const DocumentTree& in, IndentStyle indent);

/// Whether the element holds text, CDATA sections or both, and not only white space.
bool holdsText(NodeID element, const DocumentTree& in);

/// The insertion of `source` at the end of an element without elements, to the unit. White space that is all
/// its content gives way.
NodeInsertion behindText(NodeID element, const std::u16string& source, const DocumentTree& in);

/// The plan of an insertion, which selects what was inserted.
Result planned(const std::optional<NodeInsertion>& insertion);

} // namespace NodeAddition
