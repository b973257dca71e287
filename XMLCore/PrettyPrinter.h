#pragma once

#include "DocumentTree.h"
#include "IndentStyle.h"
#include "TextEdit.h"

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

} // namespace PrettyPrinter
