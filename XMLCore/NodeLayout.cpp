#include "NodeLayout.h"

#include "UnitScan.h"

#include <algorithm>

namespace {

bool isBlank(char16_t unit) { return unit == u' ' || unit == u'\t'; }

/// The offset of the first LF of `text` from `from` on, or the end of `text`.
std::size_t findLineFeed(std::u16string_view text, std::size_t from) {
    return static_cast<std::size_t>(UnitScan::findAny(text.data(), static_cast<std::ptrdiff_t>(from),
                                                      static_cast<std::ptrdiff_t>(text.size()), u'\n'));
}

/// The start of the spaces and tabs before `at`.
Offset blankStart(std::u16string_view text, Offset at) {
    while (at > 0 && isBlank(text[at - 1])) {
        --at;
    }
    return at;
}

/// The end of the spaces and tabs from `at` on.
Offset blankEnd(std::u16string_view text, Offset at) {
    while (at < text.size() && isBlank(text[at])) {
        ++at;
    }
    return at;
}

/// The start of the line break before `lineStart`: of the LF, or of the CR before it.
Offset lineBreakStart(std::u16string_view text, Offset lineStart) {
    return text.substr(0, lineStart).ends_with(u"\r\n") ? lineStart - 2 : lineStart - 1;
}

} // namespace

NodeLayout::NodeLayout(const DocumentTree& tree, IndentStyle indent)
    : m_tree(tree), m_text(tree.text), m_indentUnit(indent.unit()), m_line(0, m_text.lineEnd(0)),
      m_lineBreak(m_text.hasPrefix(u"\r\n", m_line.upper) ? u"\r\n" : u"\n") {}

bool NodeLayout::startsLine(NodeID node) const {
    const std::u16string_view text = m_text.units();
    const Offset start = m_tree[node].range.lower;
    const Offset blank = blankStart(text, start);
    const bool isAtLineStart = blank == 0 || text[blank - 1] == u'\n';
    // A text may itself begin with spaces and tabs: then it starts inside the indentation of its line.
    return isAtLineStart && blankEnd(text, start) == start;
}

std::u16string NodeLayout::lineIndentation(NodeID node) {
    return m_text.indentation(lineStart(m_tree[node].range.lower));
}

std::u16string NodeLayout::childIndentation(NodeID node) {
    if (node == NodeID::document()) {
        return {};
    }
    for (const NodeID child : m_tree.children(node)) {
        if (m_tree[child].kind != TreeNode::Kind::text) {
            if (startsLine(child)) {
                return lineIndentation(child);
            }
            break;
        }
    }
    return lineIndentation(node).append(m_indentUnit);
}

SourceRange NodeLayout::deletionRange(NodeID node) const {
    const SourceRange range = m_tree[node].range;
    if (!startsLine(node)) {
        return range;
    }
    const std::u16string_view text = m_text.units();
    const Offset start = blankStart(text, range.lower);
    const Offset end = blankEnd(text, range.upper);
    if (end == text.size()) {
        return {start == 0 ? 0 : lineBreakStart(text, start), end};
    }
    for (const std::u16string_view lineBreak : {u"\n", u"\r\n"}) {
        if (m_text.hasPrefix(lineBreak, end)) {
            return {start, static_cast<std::int64_t>(end + lineBreak.size())};
        }
    }
    return range;
}

/// The start of the line that contains `at`. Reads only the units that the remembered line does not cover.
Offset NodeLayout::lineStart(Offset at) {
    const bool isInLine =
        m_line.lower <= at &&
        (at <= m_line.upper || findLineFeed(m_text.units().substr(0, at), m_line.upper) == at);
    m_line = isInLine ? SourceRange(m_line.lower, std::max(m_line.upper, at))
                      : SourceRange(m_text.lineStart(at), at);
    return m_line.lower;
}

std::u16string reindented(std::u16string_view source, std::u16string_view from, std::u16string_view to) {
    constexpr std::size_t alwaysAllowed = std::size_t{1} << 26;
    constexpr std::size_t allowedGrowth = 4;
    const std::size_t longest = std::max(alwaysAllowed, allowedGrowth * source.size());
    std::u16string result;
    std::size_t copied = 0;
    if (from != to) {
        for (std::size_t lineFeed = findLineFeed(source, 0);
             lineFeed != source.size() && result.size() <= longest;
             lineFeed = findLineFeed(source, lineFeed + 1)) {
            if (source.substr(lineFeed + 1).starts_with(from)) {
                result.append(source.substr(copied, lineFeed + 1 - copied)).append(to);
                copied = lineFeed + 1 + from.size();
            }
        }
    }
    result.append(source.substr(copied));
    if (result.size() > longest) {
        result = source;
    }
    return result;
}
