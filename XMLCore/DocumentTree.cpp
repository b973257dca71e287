#include "DocumentTree.h"

#include "Escaping.h"
#include "GraphemeBreaker.h"
#include "NameHash.h"
#include "UnicodeProperties.h"

#include <algorithm>
#include <unordered_set>

namespace {

/// The beginning of a text, collapsed to one line.
struct Line {
    std::u16string string;
    bool isCut = false;        ///< Whether `string` reached the limit of its length.
    std::size_t unitsRead = 0; ///< How many units of the text were read for `string`.
};

/// `text` with its white space collapsed, cut after `limit` characters.
Line collapsed(std::u16string_view text, std::size_t limit) {
    Line line;
    line.isCut = limit == 0;
    std::size_t length = 0;
    bool isSpacePending = false;
    const auto append = [&](std::u16string_view character) {
        if (length < limit) {
            line.string += character;
            line.isCut = ++length == limit;
        }
    };
    for (const std::u16string_view character : GraphemeBreaker::Characters(text)) {
        if (line.isCut) {
            break;
        }
        line.unitsRead += character.size();
        if (UnicodeProperties::isWhitespace(character)) {
            isSpacePending = !line.string.empty();
            continue;
        }
        if (isSpacePending) {
            append(u" ");
        }
        append(character);
        isSpacePending = false;
    }
    return line;
}

std::u16string shown(Line line) {
    if (line.isCut) {
        line.string += u'…';
    }
    return std::move(line.string);
}

/// The first `units` units of a leaf's content as the user reads them.
std::u16string contentPrefix(const DocumentTree& tree, const TreeNode& leaf, std::size_t units) {
    const std::u16string_view content = tree.text.units(leaf.contentRange);
    std::u16string prefix = repaired(content.substr(0, units));
    return leaf.kind == TreeNode::Kind::text ? Escaping::unescape(std::move(prefix)) : prefix;
}

/// The direct texts and CDATA sections of an element as the user reads them, cut after `units` units of the
/// source.
std::u16string textPrefix(const DocumentTree& tree, NodeID element, std::size_t units) {
    std::u16string prefix;
    for (const NodeID id : tree.children(element)) {
        const TreeNode& child = tree[id];
        if (child.kind == TreeNode::Kind::text || child.kind == TreeNode::Kind::cdata) {
            const std::size_t taken = std::min<std::size_t>(units, child.contentRange.length());
            prefix += contentPrefix(tree, child, taken);
            units -= taken;
        }
        if (units == 0) {
            break;
        }
    }
    return prefix;
}

/// The text of an element, collapsed. `units` is a first guess of how much of the text has to be read; it is
/// doubled until that is enough.
Line collapsedText(const DocumentTree& tree, NodeID element, std::size_t units, std::size_t limit) {
    // The end of a prefix may cut a reference or a character in two, so what its last units show does not
    // count.
    constexpr std::size_t unprovenUnits = 32;
    const std::size_t count = tree[element].contentRange.length();
    for (units += 2 * unprovenUnits;; units *= 2) {
        const std::u16string prefix = textPrefix(tree, element, units);
        Line line = collapsed(prefix, limit);
        if (units >= count || (line.isCut && line.unitsRead + unprovenUnits <= prefix.size())) {
            return line;
        }
    }
}

} // namespace

DocumentTree DocumentTree::empty() {
    DocumentTree tree;
    tree.nodes.append(TreeNode());
    return tree;
}

std::optional<NodeID> DocumentTree::rootElement() const {
    for (const NodeID child : children(NodeID::document())) {
        if ((*this)[child].isElement()) {
            return child;
        }
    }
    return std::nullopt;
}

std::span<const AttributeSpan> DocumentTree::attributesOf(NodeID node) const {
    const TreeNode& owner = (*this)[node];
    return std::span(attributes.begin(), attributes.end())
        .subspan(owner.firstAttribute, owner.attributeCount);
}

std::optional<AttributeSpan> DocumentTree::attribute(std::u16string_view named, NodeID of) const {
    for (const AttributeSpan& attribute : attributesOf(of)) {
        if (text.equals(attribute.name, named)) {
            return attribute;
        }
    }
    return std::nullopt;
}

std::size_t DocumentTree::indexInParent(NodeID node) const {
    const NodeID parent = (*this)[node].parent;
    if (parent.isNone()) {
        return 0;
    }
    return static_cast<std::size_t>(
        std::ranges::distance(children(parent).begin(), Children::Iterator(nodes.data(), node)));
}

std::optional<NodeID> DocumentTree::child(NodeID of, std::size_t at) const {
    if (at >= (*this)[of].childCount) {
        return std::nullopt;
    }
    return *std::ranges::next(children(of).begin(), static_cast<std::ptrdiff_t>(at));
}

NodeID DocumentTree::ancestor(NodeID below, NodeID startingAt) const {
    NodeID node = startingAt;
    while ((*this)[node].parent != below) {
        node = (*this)[node].parent;
    }
    return node;
}

std::optional<NodeID> DocumentTree::lastChild(NodeID of) const {
    if (!(*this)[of].hasChildren()) {
        return std::nullopt;
    }
    // The last node inside `of` has the index before that of the first node after `of`.
    NodeID enclosing = of;
    while (enclosing != NodeID::document() && (*this)[enclosing].nextSibling.isNone()) {
        enclosing = (*this)[enclosing].parent;
    }
    const NodeID next = (*this)[enclosing].nextSibling;
    const std::size_t end = next.isNone() ? nodes.size() : next.raw;
    return ancestor(of, {static_cast<std::uint32_t>(end - 1)});
}

std::optional<NodeID> DocumentTree::previousSibling(NodeID of) const {
    const NodeID parent = (*this)[of].parent;
    if (parent.isNone() || (*this)[parent].firstChild == of) {
        return std::nullopt;
    }
    return ancestor(parent, {of.raw - 1});
}

NodeID DocumentTree::node(Offset at) const {
    const auto next =
        std::ranges::upper_bound(nodes, at, {}, [](const TreeNode& node) { return node.range.lower; });
    const auto index = std::max<std::ptrdiff_t>(next - nodes.begin() - 1, 0);
    return {static_cast<std::uint32_t>(index)};
}

NodeID DocumentTree::innermostNode(Offset containing) const {
    NodeID id = node(containing);
    while (id != NodeID::document() && !(*this)[id].range.contains(containing)) {
        id = (*this)[id].parent;
    }
    return id;
}

bool DocumentTree::hasOnlyTextContent(NodeID node) const {
    return std::ranges::all_of(children(node), [this](NodeID child) {
        const TreeNode::Kind kind = (*this)[child].kind;
        return kind == TreeNode::Kind::text || kind == TreeNode::Kind::cdata;
    });
}

std::optional<std::u16string> DocumentTree::textContent(NodeID of) const {
    const TreeNode& node = (*this)[of];
    if (!node.isElement()) {
        return contentPrefix(*this, node, node.contentRange.length());
    }
    if (!node.hasChildren()) {
        return std::nullopt;
    }
    return textPrefix(*this, of, node.contentRange.length());
}

std::optional<std::u16string> DocumentTree::preview(NodeID of, std::size_t limit) const {
    const TreeNode& node = (*this)[of];
    const std::size_t count = node.contentRange.length();
    // A limit beyond the content has no effect, so it is clamped, and the product cannot overflow.
    const std::size_t units = 4 * std::min(limit, count);
    if (node.isElement()) {
        const bool isText = node.hasChildren() && hasOnlyTextContent(of);
        return isText ? std::optional(shown(collapsedText(*this, of, units, limit))) : std::nullopt;
    }
    if (node.kind == TreeNode::Kind::document) {
        return std::nullopt;
    }
    return shown(collapsed(contentPrefix(*this, node, units), limit));
}

DocumentTree::Vocabulary DocumentTree::vocabulary() const {
    std::unordered_set<std::u16string_view, NameHash> seen;
    const auto collect = [&](std::vector<std::u16string>& names, SourceRange name) {
        if (!name.isEmpty() && seen.insert(text.units(name)).second) {
            names.push_back(text.string(name));
        }
    };
    Vocabulary vocabulary;
    for (const TreeNode& node : nodes) {
        if (node.isElement()) {
            collect(vocabulary.elements, node.nameRange);
        }
    }
    seen.clear();
    for (const AttributeSpan& attribute : attributes) {
        collect(vocabulary.attributes, attribute.name);
    }
    return vocabulary;
}

Offset DocumentTree::lexStart(Offset before) const {
    const NodeID deepest = innermostNode(before);
    if (deepest == NodeID::document()) {
        return 0;
    }
    const TreeNode& node = (*this)[deepest];
    const bool isBeforeContent = before < node.contentRange.lower;
    if (!node.isElement() || isBeforeContent || node.flags.contains(TreeNode::selfClosing)) {
        return node.range.lower;
    }
    return before < node.contentRange.upper ? node.contentRange.lower : node.contentRange.upper;
}
