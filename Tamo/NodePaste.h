#pragma once

#include "NodeAddition.h"

/// What becomes of text that is pasted into a tree.
namespace NodePaste {

/// Where the text comes from.
enum class Origin : std::uint8_t {
    anywhere, ///< Markup only if all of it is without faults; otherwise text to be escaped.
    node,     ///< The source of a node, whatever its faults.
};

/// The plan that puts `pasted` beside or into the node at `path`, or into the document without a path.
///
/// Markup goes behind the node, on a line of its own where the node has one, its lines indented anew; into
/// an element that is empty, and always into the root, as its last child. The declarations before a root go
/// only with a document that is pasted into an empty one. Anything else is text, and goes where
/// `NodeAddition::text` puts it. Line breaks become those of the document.
///
/// Takes time in proportion to `pasted`; may run on any thread.
NodeAddition::Result plan(std::u16string pasted, Origin origin, const std::optional<NodePath>& path,
                          const DocumentTree& in, IndentStyle indent);

} // namespace NodePaste
