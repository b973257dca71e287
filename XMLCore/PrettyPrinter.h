#pragma once

#include "DocumentTree.h"
#include "IndentStyle.h"
#include "TextEdit.h"

#include <span>
#include <vector>

/// Formats a whole document: only the white space between nodes changes. Tags, references, comments, CDATA
/// sections, instructions and declarations are copied unit for unit.
///
///
/// Each function returns one edit of the whole text. They cannot fail: malformed markup is copied as it is,
/// and an element that was never closed gets an end tag. They take time linear in the text, even if elements
/// are nested a million levels deep, and may run on any thread.
namespace PrettyPrinter {

/// Gives each tag, comment and other construct a line of its own, indented by its depth and ended by a line
/// break. An element that contains only text and CDATA sections stays on one line. Text between other nodes
/// gets a line of its own. Unicode's White_Space is removed at both ends of each text.
///
///
/// The indentation stops growing at a certain depth, so that very deep elements are in one column: all
/// indentation together has at most 67,108,864 units, or four times the document's markup if that is more.
TextEdit format(const DocumentTree& tree, IndentStyle indent);

/// The same without indentation and line breaks.
TextEdit minify(const DocumentTree& tree);

/// A formatted text, and how it relates to the old text.
struct Reflow {
    TextEdit edit;
    std::vector<Offset> places; ///< The new offsets of the given places of the old text.
    /// Whether white space changed that may be part of the text: in an element that contains both text and
    /// other nodes, or where `xml:space` is `preserve`.
    bool changesTextSpace = false;
};

/// The same edits as above, and the new offsets of `places`, offsets of the text in any order. A place stays
/// before the unit that follows it. A place in white space that is replaced moves to the end of what precedes
/// that white space or, after a line break in it, to the start of what follows.
Reflow format(const DocumentTree& tree, IndentStyle indent, std::span<const Offset> places);
Reflow minify(const DocumentTree& tree, std::span<const Offset> places);

} // namespace PrettyPrinter
