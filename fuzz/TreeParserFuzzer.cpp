#include "Lexer.h"
#include "Precondition.h"
#include "ReferenceParser.h"
#include "TreeParser.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace {

std::u16string asUTF16(std::span<const std::uint8_t> bytes) {
    std::u16string text(bytes.size() / sizeof(char16_t), u'\0');
    std::memcpy(text.data(), bytes.data(), text.size() * sizeof(char16_t));
    return text;
}

/// ASCII units as they are; the other bytes stand for units and sequences that are rare in random bytes.
std::u16string asMarkup(std::span<const std::uint8_t> bytes) {
    constexpr std::u16string_view pieces[] = {
        u"<!--",     u"-->", u"<![CDATA[", u"]]>",    u"<!DOCTYPE",  u"<?xml ", u"?>",     u"&#x",
        u"&amp;",    u"é",   u"\xD83D",    u"\xDE00", u"\U0001F600", u"\x2028", u"\xFFFF", u"abcdefgh",
        u"        ", u"<a>", u"</a>",      u"<a b='", u" b=''",      u"<b>",    u"</b>",   u"<a/>"};
    std::u16string text;
    for (const std::uint8_t byte : bytes) {
        if (byte < 0x80) {
            text.push_back(byte);
        } else {
            text += pieces[byte % std::size(pieces)];
        }
    }
    return text;
}

bool isWithin(SourceRange inner, SourceRange outer) {
    return outer.lower <= inner.lower && inner.lower <= inner.upper && inner.upper <= outer.upper;
}

void checkTokens(const std::vector<Token>& tokens, Offset count) {
    Offset upper = 0;
    for (const Token& token : tokens) {
        precondition(upper <= token.range.lower, "tokens ascend and do not overlap");
        precondition(token.range.lower < token.range.upper, "no token is empty");
        upper = token.range.upper;
    }
    precondition(upper <= count, "tokens lie inside the text");
}

void checkNode(const DocumentTree& tree, std::size_t index) {
    const TreeNode& node = tree.nodes[index];
    precondition(isWithin(node.range, tree.text.fullRange()), "a node lies inside the text");
    precondition(isWithin(node.nameRange, node.range), "a name lies inside its node");
    precondition(isWithin(node.contentRange, node.range), "content lies inside its node");
    precondition(node.isElement() || node.flags == TreeNode::Flags(), "only elements have flags");
    precondition(node.parent.raw < index, "a parent stands before its children");
    precondition(isWithin(node.range, tree[node.parent].contentRange), "a node lies inside its parent");
    precondition(tree.nodes[index - 1].range.lower <= node.range.lower, "nodes stand in document order");
}

void checkAttributes(const DocumentTree& tree, const TreeNode& node) {
    precondition(node.isElement() || node.attributeCount == 0, "only elements have attributes");
    precondition(std::size_t{node.firstAttribute} + node.attributeCount <= tree.attributes.size(),
                 "a node's attributes exist");
    Offset upper = node.nameRange.upper;
    for (std::size_t i = 0; i < node.attributeCount; ++i) {
        const AttributeSpan& attribute = tree.attributes[node.firstAttribute + i];
        precondition(upper <= attribute.range.lower, "attributes stand in text order");
        precondition(isWithin(attribute.range, node.startTagRange()),
                     "an attribute lies inside its start tag");
        precondition(attribute.name.lower == attribute.range.lower && !attribute.name.isEmpty(),
                     "an attribute starts with its name");
        precondition(isWithin(attribute.name, attribute.range) && isWithin(attribute.value, attribute.range),
                     "an attribute's parts lie inside it");
        upper = attribute.range.upper;
    }
}

/// Checks that the links to children and siblings agree with those to parents.
void checkChildren(const DocumentTree& tree, NodeID parent) {
    std::size_t count = 0;
    Offset upper = tree[parent].contentRange.lower;
    for (const NodeID child : tree.children(parent)) {
        precondition(tree[child].parent == parent, "a child knows its parent");
        precondition(upper <= tree[child].range.lower, "children stand in text order and do not overlap");
        upper = tree[child].range.upper;
        ++count;
    }
    precondition(count == tree[parent].childCount, "a node counts its children");
}

void checkTree(const DocumentTree& tree) {
    precondition(!tree.nodes.empty() && tree.nodes[0].kind == TreeNode::Kind::document,
                 "a tree has a document");
    precondition(tree.nodes[0].range == tree.text.fullRange() && tree.nodes[0].parent.isNone(),
                 "the document spans the text");
    std::size_t attributes = 0;
    std::size_t children = 0;
    for (std::size_t i = 0; i < tree.nodes.size(); ++i) {
        if (i > 0) {
            checkNode(tree, i);
        }
        checkAttributes(tree, tree.nodes[i]);
        checkChildren(tree, {static_cast<std::uint32_t>(i)});
        attributes += tree.nodes[i].attributeCount;
        children += tree.nodes[i].childCount;
    }
    precondition(attributes == tree.attributes.size(), "every attribute belongs to one node");
    precondition(children == tree.nodes.size() - 1, "every node but the document is one node's child");
    for (std::size_t i = 0; i < tree.diagnostics.size(); ++i) {
        precondition(i == 0 || tree.diagnostics.range(i - 1).lower <= tree.diagnostics.range(i).lower,
                     "diagnostics stand in order");
        precondition(isWithin(tree.diagnostics.range(i), tree.text.fullRange()),
                     "a diagnostic lies inside the text");
    }
}

void checkQueries(const DocumentTree& tree, std::size_t seed) {
    const auto offset = static_cast<Offset>(seed % (std::size_t{tree.text.count()} + 2));
    precondition(tree.lexStart(offset) <= offset, "lexing starts at or before the offset");
    const NodeID node{static_cast<std::uint32_t>(seed % tree.nodes.size())};
    const std::size_t position = tree.indexInParent(node);
    precondition(node == NodeID::document() || tree.child(tree[node].parent, position) == node,
                 "a node stands at its position");
    constexpr std::size_t limit = 7;
    const auto content = tree.textContent(node);
    const auto preview = tree.preview(node, limit);
    precondition(!preview || (content && (preview->empty() || !content->empty())),
                 "a preview shows some content");
}

void checkReference(const DocumentTree& tree, const std::vector<Token>& tokens, SourceRange doctype) {
    constexpr Offset quickCount = 600;
    if (tree.text.count() > quickCount) {
        return;
    }
    const ReferenceParser::Result expected =
        ReferenceParser::parse(tree.text.units(), ReferenceParser::Stop::notRequested, doctype);
    precondition(std::ranges::equal(tree.nodes, expected.nodes), "nodes are the reference's");
    precondition(std::ranges::equal(tree.attributes, expected.attributes), "attributes are the reference's");
    precondition(std::equal(tree.diagnostics.begin(), tree.diagnostics.end(), expected.diagnostics.begin(),
                            expected.diagnostics.end()),
                 "diagnostics are the reference's");
    precondition(tokens == ReferenceParser::tokens(tree.text.units(), tree.text.fullRange(), doctype),
                 "tokens are the reference's");
}

DocumentTree checkedTree(const std::u16string& units, DoctypeReading doctype = {}) {
    DocumentTree tree = TreeParser::parse(SourceText(units), {}, {}, doctype);
    checkTree(tree);
    return tree;
}

/// Checks the same text with its document type declaration read as in the application.
void checkReading(const std::u16string& units) {
    const DoctypeReading reading = DoctypeReading::of(SourceText(units));
    const SourceRange doctype = reading.declaration;
    if (doctype.isEmpty()) {
        return;
    }
    const DocumentTree tree = checkedTree(units, reading);
    precondition(tree[tree.innermostNode(doctype.lower)].range == doctype, "the declaration is a node");
    const std::vector<Token> tokens = Lexer::tokens(tree.text, tree.text.fullRange(), reading);
    checkTokens(tokens, tree.text.count());
    checkReference(tree, tokens, ReferenceParser::doctype(units));
}

/// Whether a `>` or an end tag that `insertion` inserts is not markup, because of the token that ends there:
/// a value without a closing quote, a construct without a terminator, or a lone `<` or `&`, after which a `>`
/// is text.
bool isSwallowed(const TextEdit& insertion, const std::vector<Token>& tokens, std::u16string_view units) {
    const auto token =
        std::ranges::find(tokens, insertion.range.lower, [](const Token& each) { return each.range.upper; });
    if (token == tokens.end()) {
        return false;
    }
    const std::u16string_view covered = units.substr(token->range.lower, token->range.length());
    switch (token->kind) {
    case Token::Kind::attributeValue:
        return covered.size() < 2 || covered.front() != covered.back();
    case Token::Kind::comment:
    case Token::Kind::cdata:
    case Token::Kind::instruction:
    case Token::Kind::doctype:
        return true;
    case Token::Kind::invalid:
        return insertion.replacement == u">" && (covered == u"<" || covered == u"&");
    default:
        return false;
    }
}

std::ptrdiff_t countUnclosed(const DocumentTree& tree) {
    return std::ranges::count_if(
        tree.nodes, [](const TreeNode& node) { return node.flags.contains(TreeNode::unclosed); });
}

/// Applies the fix of `diagnostic` and checks that it removes the problem.
void checkFix(const DocumentTree& tree, const std::vector<Token>& tokens, const Diagnostic& diagnostic) {
    const std::u16string_view units = tree.text.units();
    const TextEdit& edit = diagnostic.fix->edits.front();
    precondition(diagnostic.fix->edits.size() == 1 && !diagnostic.fix->title.empty(), "a fix is one edit");
    const DocumentTree fixed = checkedTree(TextEdit::apply(diagnostic.fix->edits, units));
    const bool isClosing = edit.replacement.starts_with(u"</");
    // After a deletion, a similar problem may be at the same place.
    if (edit.replacement.empty() ||
        ((isClosing || edit.replacement == u">") && diagnostic.message != u"Falta cerrar con >" &&
         isSwallowed(edit, tokens, units))) {
        return;
    }
    if (isClosing) {
        // Of several open elements of one name, the innermost one is closed.
        precondition(countUnclosed(fixed) == countUnclosed(tree) - 1, "one element more is closed");
        return;
    }
    for (const Diagnostic& left : fixed.diagnostics) {
        precondition(left.message != diagnostic.message || left.range.lower != diagnostic.range.lower,
                     "a fixed problem is gone");
    }
}

void checkFixes(const DocumentTree& tree, const std::vector<Token>& tokens) {
    constexpr std::size_t mostFixes = 12;
    std::size_t checked = 0;
    for (const Diagnostic& diagnostic : tree.diagnostics) {
        if (diagnostic.fix && checked < mostFixes) {
            checkFix(tree, tokens, diagnostic);
            ++checked;
        }
    }
}

} // namespace

/// Trees keep their invariants and equal those of the reference parser, fixes remove their problems, and
/// every prefix parses. The first byte says how the input is read; the second one chooses offsets in it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t headerSize = 2;
    if (size < headerSize) {
        return 0;
    }
    const std::span<const std::uint8_t> bytes(data + headerSize, size - headerSize);
    const std::u16string units = data[0] % 4 == 0 ? asUTF16(bytes) : asMarkup(bytes);
    const DocumentTree tree = checkedTree(units);
    const std::vector<Token> tokens = Lexer::tokens(tree.text);
    checkTokens(tokens, tree.text.count());
    checkReference(tree, tokens, {});
    checkReading(units);
    checkFixes(tree, tokens);
    const std::size_t seed = data[1] * std::size_t{7919};
    checkQueries(tree, seed);
    const DocumentTree prefix = checkedTree(units.substr(0, seed % (units.size() + 1)));
    checkReference(prefix, Lexer::tokens(prefix.text), {});
    return 0;
}
