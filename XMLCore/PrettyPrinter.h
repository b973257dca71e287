#pragma once

#include "DocumentTree.h"
#include "IndentStyle.h"
#include "TextEdit.h"

#include <span>
#include <vector>

/// Lays a whole document out anew: only the white space between nodes changes. Tags, references, comments,
/// CDATA sections, instructions and declarations are copied as they stand, unit for unit.
///
/// Each answers with one edit over the whole text. Neither fails: what is damaged is copied as it is, and an
/// element that was never closed gets its end tag. Takes time linear in the text, also when elements nest a
/// million deep. May run on any thread.
namespace PrettyPrinter {

/// Each tag, comment and so on a line of its own, indented by its depth; ended by a line break. An element
/// that holds only text and CDATA sections stays on one line. Text is trimmed of Unicode's White_Space, also
/// between elements, where each run becomes a line.
///
/// Elements nested very deep end up in one column: the indentation grows only to the depth at which all of it
/// together stays within 67,108,864 units, or within four times the document's markup where that is more.
TextEdit format(const DocumentTree& tree, IndentStyle indent);

/// The same without any indentation and line breaks.
TextEdit minify(const DocumentTree& tree);

/// A layout and what it does to the old text.
struct Reflow {
    TextEdit edit;
    std::vector<Offset> places; ///< Where the given offsets of the old text are in the new text.
    /// Whether white space changed that may be part of the text: in an element that holds both text and other
    /// nodes, or where `xml:space` is `preserve`.
    bool changesTextSpace = false;
};

/// The same edits as above, and where `places`, offsets of the text in any order, are found afterwards: an
/// offset keeps the unit that follows it; one inside white space that is laid out anew moves to the end of
/// what stands before it, or, behind a line break, to the start of what follows.
Reflow format(const DocumentTree& tree, IndentStyle indent, std::span<const Offset> places);
Reflow minify(const DocumentTree& tree, std::span<const Offset> places);

} // namespace PrettyPrinter
