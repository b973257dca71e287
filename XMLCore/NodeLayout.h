#pragma once

#include "DocumentTree.h"
#include "IndentStyle.h"

#include <string>
#include <string_view>

/// How nodes are placed on the lines of a document: what must be known before markup is inserted or deleted.
/// Create one for each plan; it remembers the last line, so that it stays fast if the whole document is one
/// line.
class NodeLayout {
public:
    /// Borrows the tree. `indent` is the style of new lines.
    NodeLayout(const DocumentTree& tree, IndentStyle indent);

    /// The line break for new lines: that of the document's first line, or LF if it has none.
    std::u16string_view lineBreak() const { return m_lineBreak; }
    /// One level of indentation.
    const std::u16string& indentUnit() const { return m_indentUnit; }

    /// Whether there are only spaces and tabs before the node on its line.
    bool startsLine(NodeID node) const;

    /// The spaces and tabs at the start of the line in which the node starts.
    std::u16string lineIndentation(NodeID node);

    /// The indentation of a new child of `node`: that of its first child other than text, if that child
    /// starts its line, otherwise that of the node's own line and one level more. Empty for the document.
    std::u16string childIndentation(NodeID node);

    /// The range to delete with the node: its whole lines if they contain nothing else but spaces and tabs,
    /// otherwise the node's range.
    SourceRange deletionRange(NodeID node) const;

private:
    Offset lineStart(Offset at);

    const DocumentTree& m_tree;
    const SourceText& m_text;
    std::u16string m_indentUnit;
    SourceRange m_line; ///< The start of the last line and an offset in it; no LF in between.
    std::u16string_view m_lineBreak;
};

/// `source`, which starts in a line indented by `from`, changed for a line indented by `to`: every further
/// line that starts with `from` starts with `to` instead. Unchanged if the result would have more than
/// 67,108,864 units and more than four times as many as `source`.
std::u16string reindented(std::u16string_view source, std::u16string_view from, std::u16string_view to);
