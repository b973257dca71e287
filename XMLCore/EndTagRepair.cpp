#include "EndTagRepair.h"

#include "NameSimilarity.h"
#include "UnitScan.h"

#include <algorithm>
#include <string_view>

namespace {

using Rule = DiagnosticRecord::Rule;

/// The maximum number of nested elements of one name that are examined.
constexpr int mostAncestors = 64;

/// The name between `</` and `>` of an end tag, without the white space around it; empty if there is no name.
/// None if the tag contains anything else or has no `>`.
std::optional<SourceRange> writtenName(const SourceText& text, SourceRange endTag) {
    std::u16string_view inside = text.units(endTag);
    if (!inside.ends_with(u'>')) {
        return std::nullopt;
    }
    inside.remove_prefix(2);
    inside.remove_suffix(1);
    const auto isSpace = [](char16_t unit) { return UnitScan::isWhitespace(unit); };
    const auto start = std::ranges::find_if_not(inside, isSpace);
    const auto end = std::find_if(start, inside.end(), isSpace);
    if (!std::all_of(start, end, UnitScan::isName) || !std::all_of(end, inside.end(), isSpace)) {
        return std::nullopt;
    }
    return SourceRange::at(endTag.lower + 2 + (start - inside.begin()), end - start);
}

} // namespace

std::optional<EndTagRepair::Renaming> EndTagRepair::renaming(std::size_t index) const {
    if (m_tree.diagnostics.rule(index) != Rule::unmatchedEndTag) {
        return std::nullopt;
    }
    // The tree contains an unmatched end tag as a text or as a part of one.
    const SourceRange endTag = m_tree.diagnostics.range(index);
    const NodeID element = m_tree[m_tree.node(endTag.lower)].parent;
    if (element.isNone() || !m_tree[element].isElement()) {
        return std::nullopt;
    }
    const auto written = writtenName(m_tree.text, endTag);
    const std::u16string_view name = m_tree.text.units(m_tree[element].nameRange);
    if (!written || !(written->isEmpty() || NameSimilarity::areClose(m_tree.text.units(*written), name))) {
        return std::nullopt;
    }
    const auto unclosed = elementWithoutEndTag(element, endTag);
    if (!unclosed) {
        return std::nullopt;
    }
    return Renaming{{{endTag.lower + 2, written->upper}, std::u16string(name)}, element, *unclosed};
}

/// The innermost element that lacks an end tag, of `innermost` and the elements of the same name directly
/// around it: the one that gets an end tag once another end tag of this name is at `endTag`. None if there is
/// no such element, if it is already claimed, or if it is the root and its content continues.
std::optional<NodeID> EndTagRepair::elementWithoutEndTag(NodeID innermost, SourceRange endTag) const {
    NodeID element = innermost;
    Offset end = endTag.upper;
    for (int looked = 0; looked < mostAncestors; ++looked) {
        const TreeNode& node = m_tree[element];
        if (node.flags.contains(TreeNode::unclosed)) {
            const bool mayEnd = node.parent != NodeID::document() || endsDocument(end, element);
            return mayEnd && !isClaimed(node.nameRange.lower) ? std::optional(element) : std::nullopt;
        }
        const TreeNode& parent = m_tree[node.parent];
        if (!parent.isElement() || !m_tree.text.equals(parent.nameRange, node.nameRange)) {
            return std::nullopt;
        }
        end = node.range.upper;
        element = node.parent;
    }
    return std::nullopt;
}

/// Whether `element` contains only white space from `from` on. The root may be closed only there: content
/// after it would be an error.
bool EndTagRepair::endsDocument(Offset from, NodeID element) const {
    const Offset end = m_tree[element].contentRange.upper;
    const char16_t* const units = m_tree.text.units().data();
    return UnitScan::findNonWhitespace(units, from, end) >= end;
}
