#include "TreeParser.h"

#include "AttributeNames.h"
#include "Lexer.h"
#include "OpenElements.h"

#include <algorithm>

namespace {

using Kind = TreeNode::Kind;
using Rule = DiagnosticRecord::Rule;

constexpr SourceRange rangeOf(Offset lower, Offset upper) { return SourceRange::unchecked(lower, upper); }

/// What the delimiters of a construct that is one token are.
struct Delimiters {
    Kind kind;
    Offset openingLength;
    std::u16string_view terminator;
    Rule unterminated;
};
constexpr Delimiters commentDelimiters{Kind::comment, 4, u"-->", Rule::unterminatedComment};
constexpr Delimiters cdataDelimiters{Kind::cdata, 9, u"]]>", Rule::unterminatedCDATA};
constexpr Delimiters instructionDelimiters{Kind::instruction, 2, u"?>", Rule::unterminatedInstruction};
constexpr Delimiters declarationDelimiters{Kind::doctype, 2, u">", Rule::unterminatedDeclaration};

/// The working state of one parse.
class Builder {
public:
    Builder(const SourceText& text, DocumentTree recycled);

    DocumentTree build(const std::stop_token& stop);

private:
    struct StartTag {
        Offset lower;
        SourceRange name;
        std::uint32_t firstAttribute;
    };

    void dispatch(const Token& token);

    std::uint32_t append(Kind kind, TreeNode::Flags flags, SourceRange range, SourceRange name,
                         SourceRange content);

    void addToTextRun(SourceRange range, bool hasContent);
    void flushTextRun();

    void openTag(Offset lower);
    void appendElement(const StartTag& tag, TreeNode::Flags flags, Offset upper);
    void appendCutOffElement(const StartTag& tag, Offset upper);
    std::uint32_t appendTag(const StartTag& tag, TreeNode::Flags flags, Offset upper);
    Offset attribute(SourceRange name, std::uint32_t firstAttribute);

    void closeTag(SourceRange opener);
    Offset endTagEnd(SourceRange opener, Offset nameEnd);
    void closeNearest(SourceRange name, SourceRange endTag);
    void closeTop(SourceRange endTag);
    void closeTopImplicitly(Offset at);
    void popTop(Offset contentUpper, Offset upper, TreeNode::Flags closing);
    void linkChildren(const OpenElement& element);

    void leaf(SourceRange range, const Delimiters& delimiters);

    void finish();
    void diagnose(Rule rule, SourceRange range, Offset fixOffset = 0) {
        m_diagnostics.append({range, fixOffset, rule});
    }

    bool isOutsideRoot() const { return m_open.depth() == 1; }
    Offset count() const { return m_text.count(); }

    SourceText m_text;
    std::u16string_view m_units;
    Lexer m_lexer;
    RecordArray<TreeNode> m_nodes;
    RecordArray<AttributeSpan> m_attributes;
    RecordArray<DiagnosticRecord> m_diagnostics;
    OpenElements m_open;
    AttributeNames m_attributeNames;
    SourceRange m_textRun; ///< The text gathered since the last markup; empty when there is none.
    bool m_textRunHasContent = false;
    bool m_hasRoot = false;
};

Builder::Builder(const SourceText& text, DocumentTree recycled)
    : m_text(text), m_units(text.units()), m_lexer(m_units), m_nodes(std::move(recycled.nodes)),
      m_attributes(std::move(recycled.attributes)), m_diagnostics(recycled.diagnostics.releaseRecords()),
      m_open(m_units), m_attributeNames(m_units) {
    m_nodes.clear();
    m_attributes.clear();
    m_diagnostics.clear();
    constexpr std::size_t fewestNodes = 16;
    constexpr std::size_t unitsPerNode = 24;
    m_nodes.reserve(std::max(fewestNodes, m_units.size() / unitsPerNode));
    m_nodes.append(
        {.kind = Kind::document, .flags = {}, .range = text.fullRange(), .contentRange = text.fullRange()});
    m_open.push({});
}

DocumentTree Builder::build(const std::stop_token& stop) {
    constexpr std::size_t tokensBetweenStopChecks = 16384;
    std::size_t tokenCount = 0;
    bool isStopped = false;
    while (const auto token = m_lexer.next()) {
        if (++tokenCount % tokensBetweenStopChecks == 0 && stop.stop_requested()) {
            isStopped = true;
            break;
        }
        dispatch(*token);
    }
    if (!isStopped) {
        finish();
    }
    while (m_open.depth() > 0) {
        linkChildren(m_open.top());
        m_open.pop();
    }
    m_nodes.trim();
    m_attributes.trim();
    m_diagnostics.trim();
    DocumentTree tree;
    tree.text = m_text;
    tree.nodes = std::move(m_nodes);
    tree.attributes = std::move(m_attributes);
    tree.diagnostics = DiagnosticList(m_text, std::move(m_diagnostics));
    return tree;
}

inline void Builder::dispatch(const Token& token) {
    switch (token.kind) {
    case Token::Kind::text:
        addToTextRun(token.range, !m_text.isWhitespace(token.range));
        break;
    case Token::Kind::entity:
        addToTextRun(token.range, true);
        break;
    case Token::Kind::invalid:
        diagnose(m_units[token.range.lower] == u'&' ? Rule::unescapedAmpersand : Rule::unescapedLessThan,
                 token.range);
        addToTextRun(token.range, true);
        break;
    case Token::Kind::openTagStart:
        openTag(token.range.lower);
        break;
    case Token::Kind::closeTagStart:
        closeTag(token.range);
        break;
    case Token::Kind::comment:
        leaf(token.range, commentDelimiters);
        break;
    case Token::Kind::cdata:
        leaf(token.range, cdataDelimiters);
        break;
    case Token::Kind::instruction:
        leaf(token.range, instructionDelimiters);
        break;
    case Token::Kind::doctype:
        leaf(token.range, declarationDelimiters);
        break;
    case Token::Kind::tagName:
    case Token::Kind::attributeName:
    case Token::Kind::equals:
    case Token::Kind::attributeValue:
    case Token::Kind::tagEnd:
    case Token::Kind::selfCloseEnd:
        break; // Content holds none of these.
    }
}

/// Appends a node as the last child of the innermost open element. A first child stands right after its
/// parent, so only later children are linked here; `closeTop` completes the parent.
inline std::uint32_t Builder::append(Kind kind, TreeNode::Flags flags, SourceRange range, SourceRange name,
                                     SourceRange content) {
    const auto index = static_cast<std::uint32_t>(m_nodes.size());
    OpenElement& parent = m_open.top();
    if (parent.childCount != 0) {
        m_nodes[parent.lastChild].nextSibling = {index};
    }
    parent.lastChild = index;
    ++parent.childCount;
    m_nodes.append({.kind = kind,
                    .flags = flags,
                    .range = range,
                    .nameRange = name,
                    .contentRange = content,
                    .firstAttribute = static_cast<std::uint32_t>(m_attributes.size()),
                    .parent = {parent.node}});
    return index;
}

inline void Builder::addToTextRun(SourceRange range, bool hasContent) {
    if (!m_textRun.isEmpty() && m_textRun.upper == range.lower) {
        m_textRun.upper = range.upper;
    } else {
        flushTextRun();
        m_textRun = range;
    }
    m_textRunHasContent |= hasContent;
}

/// White space alone, between elements or as indentation, makes no node.
inline void Builder::flushTextRun() {
    if (m_textRunHasContent) {
        if (isOutsideRoot()) {
            diagnose(Rule::textOutsideRoot, m_textRun);
        }
        append(Kind::text, {}, m_textRun, rangeOf(m_textRun.lower, m_textRun.lower), m_textRun);
    }
    m_textRun = {};
    m_textRunHasContent = false;
}

/// The start tag whose `<` stands at `lower`.
inline void Builder::openTag(Offset lower) {
    flushTextRun();
    m_attributeNames.clear();
    StartTag tag{lower, rangeOf(lower, lower), static_cast<std::uint32_t>(m_attributes.size())};
    Offset upper = lower + 1;
    Lexer beforeToken = m_lexer;
    if (const auto name = m_lexer.nextTagName(); name && name->kind == Token::Kind::tagName) {
        tag.name = name->range;
        upper = name->range.upper;
    } else {
        m_lexer = beforeToken;
        diagnose(Rule::missingTagName, rangeOf(lower, lower + 1));
    }
    while (true) {
        beforeToken = m_lexer;
        const auto token = m_lexer.next();
        if (!token) {
            return appendCutOffElement(tag, upper);
        }
        switch (token->kind) {
        case Token::Kind::attributeName:
            upper = attribute(token->range, tag.firstAttribute);
            break;
        case Token::Kind::tagEnd:
            return appendElement(tag, {}, token->range.upper);
        case Token::Kind::selfCloseEnd:
            return appendElement(tag, TreeNode::selfClosing, token->range.upper);
        case Token::Kind::equals:
        case Token::Kind::attributeValue:
        case Token::Kind::invalid:
            diagnose(Rule::unexpectedInTag, token->range);
            upper = token->range.upper;
            break;
        default:
            m_lexer = beforeToken;
            return appendCutOffElement(tag, upper);
        }
    }
}

/// A complete start tag, which ends at `upper`.
inline void Builder::appendElement(const StartTag& tag, TreeNode::Flags flags, Offset upper) {
    if (isOutsideRoot()) {
        if (m_hasRoot) {
            diagnose(Rule::secondRoot, tag.name);
        }
        m_hasRoot = true;
    }
    const std::uint32_t node = appendTag(tag, flags, upper);
    if (!flags.contains(TreeNode::selfClosing)) {
        m_open.push({.node = node, .name = tag.name});
    }
}

/// A start tag that something else than `>` or `/>` follows at `upper`. What follows becomes its sibling.
void Builder::appendCutOffElement(const StartTag& tag, Offset upper) {
    const SourceRange name = tag.name.isEmpty() ? rangeOf(tag.lower, tag.lower + 1) : tag.name;
    diagnose(Rule::unterminatedStartTag, name, upper);
    appendTag(tag, TreeNode::selfClosing | TreeNode::unterminated, upper);
}

inline std::uint32_t Builder::appendTag(const StartTag& tag, TreeNode::Flags flags, Offset upper) {
    const std::uint32_t node =
        append(Kind::element, flags, rangeOf(tag.lower, upper), tag.name, rangeOf(upper, upper));
    m_nodes[node].firstAttribute = tag.firstAttribute;
    m_nodes[node].attributeCount = static_cast<std::uint32_t>(m_attributes.size()) - tag.firstAttribute;
    return node;
}

/// The attribute that starts with `name`; answers where its last token ends.
inline Offset Builder::attribute(SourceRange name, std::uint32_t firstAttribute) {
    const std::span<const AttributeSpan> all(m_attributes.begin(), m_attributes.end());
    if (m_attributeNames.isRepeated(name, all.subspan(firstAttribute))) {
        diagnose(Rule::duplicateAttribute, name);
    }
    const SourceRange noValue = rangeOf(name.upper, name.upper);
    Lexer beforeToken = m_lexer;
    const auto equals = m_lexer.next();
    if (!equals || equals->kind != Token::Kind::equals) {
        if (equals) {
            m_lexer = beforeToken;
            diagnose(Rule::attributeWithoutValue, name, name.upper);
        }
        m_attributes.append({name, name, noValue, 0});
        return name.upper;
    }
    beforeToken = m_lexer;
    const auto token = m_lexer.next();
    if (!token || token->kind != Token::Kind::attributeValue) {
        if (token) {
            m_lexer = beforeToken;
        }
        diagnose(Rule::unquotedValue, name);
        m_attributes.append({rangeOf(name.lower, equals->range.upper), name, noValue, 0});
        return equals->range.upper;
    }
    const SourceRange value = token->range;
    const char16_t quote = m_units[value.lower];
    const bool isClosed = value.length() >= 2 && m_units[value.upper - 1] == quote;
    if (!isClosed) {
        diagnose(Rule::unclosedQuote, value, value.upper);
    }
    m_attributes.append({rangeOf(name.lower, value.upper), name,
                         rangeOf(value.lower + 1, isClosed ? value.upper - 1 : value.upper), quote});
    return value.upper;
}

/// The end tag whose `</` is `opener`.
inline void Builder::closeTag(SourceRange opener) {
    flushTextRun();
    SourceRange name = rangeOf(opener.upper, opener.upper);
    const Lexer beforeName = m_lexer;
    if (const auto token = m_lexer.nextTagName(m_open.top().name);
        token && token->kind == Token::Kind::tagName) {
        name = token->range;
    } else {
        m_lexer = beforeName;
        m_lexer.mode = Lexer::Mode::tag;
    }
    closeNearest(name, rangeOf(opener.lower, endTagEnd(opener, name.upper)));
}

/// Where the end tag ends, whose name ends at `nameEnd`.
inline Offset Builder::endTagEnd(SourceRange opener, Offset nameEnd) {
    Offset upper = nameEnd;
    while (true) {
        const Lexer beforeToken = m_lexer;
        const auto token = m_lexer.next();
        const Token::Kind kind = token ? token->kind : Token::Kind::text;
        switch (kind) {
        case Token::Kind::tagEnd:
            return token->range.upper;
        case Token::Kind::selfCloseEnd:
            diagnose(Rule::unexpectedInEndTag, token->range);
            return token->range.upper;
        case Token::Kind::attributeName:
        case Token::Kind::equals:
        case Token::Kind::attributeValue:
        case Token::Kind::invalid:
            diagnose(Rule::unexpectedInEndTag, token->range);
            upper = token->range.upper;
            break;
        default:
            if (token) {
                m_lexer = beforeToken;
            }
            diagnose(Rule::unterminatedEndTag, opener, upper);
            return upper;
        }
    }
}

/// Closes the nearest open element of that name, after all those inside it; an end tag that closes none
/// stays as text.
inline void Builder::closeNearest(SourceRange name, SourceRange endTag) {
    if (!isOutsideRoot() && m_text.equals(m_open.top().name, name)) {
        closeTop(endTag);
        return;
    }
    const auto position = m_open.nearest(m_text.units(name));
    if (!position) {
        diagnose(Rule::unmatchedEndTag, endTag);
        addToTextRun(endTag, true);
        return;
    }
    while (m_open.depth() - 1 > *position) {
        closeTopImplicitly(endTag.lower);
    }
    closeTop(endTag);
}

inline void Builder::closeTop(SourceRange endTag) {
    popTop(endTag.lower, endTag.upper, TreeNode::hasCloseTag);
}

void Builder::closeTopImplicitly(Offset at) {
    diagnose(Rule::unclosedElement, m_open.top().name, at);
    popTop(at, at, TreeNode::unclosed);
}

inline void Builder::popTop(Offset contentUpper, Offset upper, TreeNode::Flags closing) {
    const OpenElement& element = m_open.top();
    TreeNode& node = m_nodes[element.node];
    node.contentRange.upper = contentUpper;
    node.range.upper = upper;
    node.flags = node.flags | closing;
    linkChildren(element);
    m_open.pop();
}

/// The node's own record of its children; they stand right after it.
inline void Builder::linkChildren(const OpenElement& element) {
    TreeNode& node = m_nodes[element.node];
    node.childCount = element.childCount;
    node.firstChild = element.childCount == 0 ? NodeID::none() : NodeID{element.node + 1};
}

/// A construct that is one token.
void Builder::leaf(SourceRange range, const Delimiters& delimiters) {
    flushTextRun();
    const auto terminatorLength = static_cast<Offset>(delimiters.terminator.size());
    const bool isTerminated = range.length() >= delimiters.openingLength + terminatorLength &&
                              m_text.hasPrefix(delimiters.terminator, range.upper - terminatorLength);
    const Offset contentUpper = isTerminated ? range.upper - terminatorLength : range.upper;
    const Offset contentLower = std::min(range.lower + delimiters.openingLength, contentUpper);
    SourceRange name = rangeOf(range.lower, range.lower);
    if (delimiters.kind == Kind::instruction) {
        const char16_t* const units = m_units.data();
        const char16_t* const nameEnd = UnitScan::findNameEnd(units + contentLower, units + contentUpper);
        name = rangeOf(contentLower, static_cast<Offset>(nameEnd - units));
    }
    append(delimiters.kind, {}, range, name, rangeOf(contentLower, contentUpper));
    if (!isTerminated) {
        const Offset openingLength = std::min(delimiters.openingLength, range.length());
        diagnose(delimiters.unterminated, rangeOf(range.lower, range.lower + openingLength), range.upper);
    }
}

void Builder::finish() {
    flushTextRun();
    while (!isOutsideRoot()) {
        closeTopImplicitly(count());
    }
    if (!m_hasRoot && !m_text.isWhitespace(m_text.fullRange())) {
        diagnose(Rule::noRoot, SourceRange());
    }
    std::ranges::stable_sort(m_diagnostics, {},
                             [](const DiagnosticRecord& record) { return record.range.lower; });
}

} // namespace

DocumentTree TreeParser::parse(const SourceText& text, std::stop_token stop, DocumentTree recycled) {
    return Builder(text, std::move(recycled)).build(stop);
}
