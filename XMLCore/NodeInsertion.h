#pragma once

#include "NodeLayout.h"
#include "TextEdit.h"
#include "TreeMutation.h"

#include <optional>
#include <string>
#include <string_view>

/// The edit that inserts the source of a node into a document.
struct NodeInsertion {
    TextEdit edit;
    Offset prefixLength = 0; ///< The number of units before the node in the replacement.

    /// The offset at which the node starts after this edit alone has been applied.
    Offset nodeStart() const { return edit.range.lower + prefixLength; }

    /// The insertion of `source` into or beside `target`. A new node beside a node that starts its line gets
    /// a line of its own; in an empty element it gets a line of its own, one level deeper. In an element that
    /// contains only text, a last child is inserted like a first child, before the text. None if `target` is
    /// to get a child but is neither an element nor the document.
    static std::optional<NodeInsertion> plan(const std::u16string& source, NodeID target,
                                             TreeMutation::Placement placement, const DocumentTree& in,
                                             NodeLayout& layout);
};

/// The edit that gives content to a self-closing element: `<a/>` becomes `<a>content</a>`. A start tag that
/// was cut off has no `/>` to be replaced; the rest is inserted after it.
TextEdit fillSelfClosing(NodeID element, std::u16string_view content, const DocumentTree& in);
