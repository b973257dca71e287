#pragma once

#include "DocumentTree.h"
#include "IndentStyle.h"

#include <string>
#include <string_view>

/// How nodes stand on the lines of a document: what one asks before putting markup somewhere or taking it
/// away. Made for one plan; every answer is quick, also where a whole document stands on one line.
class NodeLayout {
public:
    /// Borrows the tree. `indent` is the style of what is written.
    NodeLayout(const DocumentTree& tree, IndentStyle indent);

    /// What is written where a line ends: as the document's first line ends.
    std::u16string_view lineBreak() const { return m_lineBreak; }
    const std::u16string& indentUnit() const { return m_indentUnit; }

    /// Whether only spaces and tabs stand before the node on its line.
    bool startsLine(NodeID node) const;

    /// The spaces and tabs at the start of the line in which the node starts.
    std::u16string lineIndentation(NodeID node);

    /// The indentation of what is put into `node`: that of its first child other than text, if that child
    /// starts its line, else one unit more than the node's own line has. None inside the document.
    std::u16string childIndentation(NodeID node);

    /// What goes when the node goes: its whole lines, if nothing else stands on them, otherwise the node.
    SourceRange deletionRange(NodeID node) const;

private:
    Offset lineStart(Offset at);

    const DocumentTree& m_tree;
    const SourceText& m_text;
    std::u16string m_indentUnit;
    SourceRange m_line; ///< From a line's start to somewhere in it: no LF stands in between.
    std::u16string_view m_lineBreak;
};

/// `source`, which starts in a line indented by `from`, for a line indented by `to`: every further line that
/// begins with `from` begins with `to` instead. Unchanged where a line of absurd indentation would make it
/// longer than 67,108,864 units and than four times what it was.
std::u16string reindented(std::u16string_view source, std::u16string_view from, std::u16string_view to);
