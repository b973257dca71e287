#include "NodeInsertion.h"

namespace {

using Placement = TreeMutation::Placement;

/// Computes one insertion.
class Insertion {
public:
    Insertion(const std::u16string& source, const DocumentTree& tree, NodeLayout& layout)
        : m_source(source), m_tree(tree), m_layout(layout) {}

    std::optional<NodeInsertion> at(NodeID target, Placement placement) {
        switch (placement) {
        case Placement::firstChild:
            return firstChild(target);
        case Placement::lastChild:
            return lastChild(target);
        case Placement::before:
            return before(target);
        case Placement::after:
            return after(target);
        }
        return std::nullopt;
    }

private:
    /// A target that starts its line moves to a new line below.
    NodeInsertion before(NodeID target) {
        std::u16string replacement = m_source;
        if (m_layout.startsLine(target)) {
            replacement.append(lineStart(m_layout.lineIndentation(target)));
        }
        return {TextEdit::insert(std::move(replacement), m_tree[target].range.lower)};
    }

    NodeInsertion after(NodeID target) {
        std::u16string prefix;
        if (m_layout.startsLine(target)) {
            prefix = lineStart(m_layout.lineIndentation(target));
        }
        return {TextEdit::insert(prefix + m_source, m_tree[target].range.upper), length(prefix)};
    }

    std::optional<NodeInsertion> firstChild(NodeID target) {
        const TreeNode& node = m_tree[target];
        if (target == NodeID::document()) {
            return node.hasChildren() ? before(node.firstChild)
                                      : NodeInsertion{TextEdit::insert(m_source, 0)};
        }
        if (!node.isElement()) {
            return std::nullopt;
        }
        if (node.flags.contains(TreeNode::selfClosing)) {
            return intoSelfClosing(target);
        }
        return m_tree.hasOnlyTextContent(target) ? intoText(target) : before(node.firstChild);
    }

    std::optional<NodeInsertion> lastChild(NodeID target) {
        const std::optional<NodeID> last = m_tree.lastChild(target);
        const bool mayFollowLast = target == NodeID::document() || !m_tree.hasOnlyTextContent(target);
        return last && mayFollowLast ? after(*last) : firstChild(target);
    }

    NodeInsertion intoSelfClosing(NodeID element) {
        const std::u16string prefix = lineStart(m_layout.childIndentation(element));
        const std::u16string suffix = lineStart(m_layout.lineIndentation(element));
        constexpr Offset tagEndLength = 1; // The `>` that the start tag gets.
        return {fillSelfClosing(element, prefix + m_source + suffix, m_tree), length(prefix) + tagEndLength};
    }

    /// The insertion into an element whose children are all texts or CDATA sections.
    NodeInsertion intoText(NodeID element) {
        const SourceRange content = m_tree[element].contentRange;
        const std::u16string prefix = lineStart(m_layout.childIndentation(element));
        if (m_tree.text.isWhitespace(content)) {
            const std::u16string suffix = lineStart(m_layout.lineIndentation(element));
            return {{content, prefix + m_source + suffix}, length(prefix)};
        }
        return {TextEdit::insert(prefix + m_source, content.lower), length(prefix)};
    }

    /// A line break, and the indentation of the line that follows it.
    std::u16string lineStart(std::u16string_view indentation) const {
        return std::u16string(m_layout.lineBreak()).append(indentation);
    }

    static Offset length(const std::u16string& text) { return static_cast<Offset>(text.size()); }

    const std::u16string& m_source;
    const DocumentTree& m_tree;
    NodeLayout& m_layout;
};

} // namespace

std::optional<NodeInsertion> NodeInsertion::plan(const std::u16string& source, NodeID target,
                                                 Placement placement, const DocumentTree& in,
                                                 NodeLayout& layout) {
    return Insertion(source, in, layout).at(target, placement);
}

TextEdit fillSelfClosing(NodeID element, std::u16string_view content, const DocumentTree& in) {
    const TreeNode& node = in[element];
    const std::int64_t end = node.range.upper;
    constexpr std::int64_t closingLength = 2; // "/>"
    const bool isCutOff = node.flags.contains(TreeNode::unterminated);
    std::u16string replacement = u">";
    replacement.append(content).append(u"</").append(in.text.units(node.nameRange)).append(u">");
    return {SourceRange(isCutOff ? end : end - closingLength, end), std::move(replacement)};
}
