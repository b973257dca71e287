#pragma once

#include "NodeLayout.h"
#include "TextEdit.h"
#include "TreeMutation.h"

#include <optional>
#include <string>
#include <string_view>

/// The edit that puts the source of a node somewhere into a document.
struct NodeInsertion {
    TextEdit edit;
    Offset prefixLength = 0; ///< How much layout the replacement holds before the node.

    /// Where the node begins once nothing but this edit was applied.
    Offset nodeStart() const { return edit.range.lower + prefixLength; }

    /// The insertion of `source` into or beside `target`. A node that starts its line keeps a line to itself;
    /// what goes into an empty element gets a line of its own, one level deeper. An element that holds only
    /// text takes a last child as a first one, before its text. None when something other than an element or
    /// the document is to take a child.
    static std::optional<NodeInsertion> plan(const std::u16string& source, NodeID target,
                                             TreeMutation::Placement placement, const DocumentTree& in,
                                             NodeLayout& layout);
};

/// The edit that gives a self-closing element a content: `<a/>` becomes `<a>content</a>`. A start tag that
/// was cut off has no `/>` to be replaced, and gets the rest behind it.
TextEdit fillSelfClosing(NodeID element, std::u16string_view content, const DocumentTree& in);
