#include "NodePaste.h"

#include "Escaping.h"
#include "NodeLayout.h"
#include "TreeParser.h"

namespace {

using Kind = TreeNode::Kind;
using Placement = TreeMutation::Placement;

constexpr std::u16string_view whitespace = u" \t\r\n";

std::u16string_view trimmed(std::u16string_view text) {
    const std::size_t start = text.find_first_not_of(whitespace);
    return start == text.npos ? std::u16string_view()
                              : text.substr(start, text.find_last_not_of(whitespace) + 1 - start);
}

/// `text` with every line ended by `lineBreak`; a CR alone stays.
std::u16string withLineBreaks(std::u16string_view text, std::u16string_view lineBreak) {
    std::u16string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool isPair = text[at] == u'\r' && at + 1 < text.size() && text[at + 1] == u'\n';
        if (isPair || text[at] == u'\n') {
            result.append(lineBreak);
            at += isPair ? 1 : 0;
        } else {
            result.push_back(text[at]);
        }
    }
    return result;
}

/// Markup without the white space around it.
struct Markup {
    std::u16string source;
    bool hasElement = false;
    bool hasText = false; ///< Between its nodes: white space around it would be read along.
};

/// The part of `pasted` behind the XML declaration and the document type that it begins with.
std::u16string_view withoutProlog(std::u16string_view pasted) {
    const DocumentTree tree = TreeParser::parse(SourceText(pasted));
    const auto isProlog = [&tree](NodeID node) {
        return tree[node].kind == Kind::doctype ||
               (tree[node].kind == Kind::instruction && tree.name(node) == u"xml");
    };
    Offset start = 0;
    for (NodeID child = tree[NodeID::document()].firstChild; !child.isNone() && isProlog(child);
         child = tree[child].nextSibling) {
        start = tree[child].range.upper;
    }
    return pasted.substr(start);
}

/// `text` as markup; none when it holds no node but text or, from anywhere, has faults.
std::optional<Markup> markup(std::u16string_view text, NodePaste::Origin origin) {
    const std::u16string_view fragment = trimmed(text);
    constexpr std::u16string_view start = u"<x>";
    const DocumentTree tree =
        TreeParser::parse(SourceText(std::u16string(start).append(fragment).append(u"</x>")));
    const auto outer = tree.rootElement();
    const bool isWhole = tree.diagnostics.errorCount() == 0 && outer && tree[*outer].nextSibling.isNone();
    if (!outer || (origin == NodePaste::Origin::anywhere && !isWhole)) {
        return std::nullopt;
    }
    Markup found{std::u16string(fragment)};
    bool hasMarkup = false;
    for (NodeID child = tree[*outer].firstChild; !child.isNone(); child = tree[child].nextSibling) {
        hasMarkup = hasMarkup || tree[child].kind != Kind::text;
        found.hasElement = found.hasElement || tree[child].isElement();
        found.hasText = found.hasText || tree[child].kind == Kind::text;
    }
    return hasMarkup ? std::optional(std::move(found)) : std::nullopt;
}

/// The indentation of the line that the source of an element begins in, as its end tag's line shows it.
std::u16string_view indentation(std::u16string_view source) {
    const std::size_t lineFeed = source.rfind(u'\n');
    if (lineFeed == source.npos) {
        return {};
    }
    const std::u16string_view last = source.substr(lineFeed + 1);
    const std::size_t end = last.find_first_not_of(u" \t");
    return end != last.npos && last.substr(end).starts_with(u"</") ? last.substr(0, end)
                                                                   : std::u16string_view();
}

/// A node, and whether something goes into it or behind it.
struct Place {
    NodeID node;
    bool isInside;
};

/// Where markup goes that is pasted at `node`.
Place place(const Markup& markup, NodeID node, const DocumentTree& in) {
    const auto root = in.rootElement();
    const bool isOutsideRoot = node == NodeID::document() || in[node].parent == NodeID::document();
    if (root && (node == *root || (isOutsideRoot && markup.hasElement))) {
        return {*root, true};
    }
    const bool isEmpty =
        in[node].isElement() && in.hasOnlyTextContent(node) && in.text.isWhitespace(in[node].contentRange);
    return {node, node == NodeID::document() || isEmpty};
}

NodeAddition::Result insertion(const Markup& markup, Place place, const DocumentTree& in,
                               IndentStyle indent) {
    NodeLayout layout(in, indent);
    const std::u16string to =
        place.isInside ? layout.childIndentation(place.node) : layout.lineIndentation(place.node);
    const std::u16string source = reindented(markup.source, indentation(markup.source), to);
    const bool isTextElement =
        place.isInside && in[place.node].isElement() && in.hasOnlyTextContent(place.node);
    if (isTextElement && (markup.hasText || NodeAddition::holdsText(place.node, in))) {
        return NodeAddition::planned(NodeAddition::behindText(place.node, source, in));
    }
    return NodeAddition::planned(NodeInsertion::plan(
        source, place.node, place.isInside ? Placement::lastChild : Placement::after, in, layout));
}

} // namespace

NodeAddition::Result NodePaste::plan(std::u16string pasted, Origin origin,
                                     const std::optional<NodePath>& path, const DocumentTree& in,
                                     IndentStyle indent) {
    const NodePath at = path.value_or(NodePath());
    const auto node = in.resolve(at);
    if (!node) {
        return std::unexpected(MutationPlanner::Failure(MutationPlanner::NodeNotFound()));
    }
    pasted = withLineBreaks(pasted, NodeLayout(in, indent).lineBreak());
    const bool isDocumentEmpty = !in[NodeID::document()].hasChildren();
    const std::u16string_view nodes = withoutProlog(pasted);
    std::optional<Markup> found = markup(nodes, origin);
    if (!found) {
        return NodeAddition::text(origin == Origin::node ? pasted : Escaping::escapeText(pasted), at, in,
                                  indent);
    }
    if (isDocumentEmpty) {
        found->source = pasted;
    }
    return insertion(*found, place(*found, *node, in), in, indent);
}
