#include "TreeParser.h"

#include "AttributeNames.h"
#include "Lexer.h"
#include "OpenElements.h"
#include "RunSort.h"

#include <algorithm>

namespace {

using Kind = TreeNode::Kind;
using Rule = DiagnosticRecord::Rule;

/// The range between two offsets of the text that are known to be in order.
constexpr SourceRange rangeOf(std::ptrdiff_t lower, std::ptrdiff_t upper) {
    return SourceRange::unchecked(static_cast<Offset>(lower), static_cast<Offset>(upper));
}

/// The delimiters of a construct that is a single token, and the diagnostic if it is not terminated.
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
    Builder(const SourceText& text, DocumentTree recycled, DoctypeReading doctype);

    DocumentTree build(const std::stop_token& stop);

private:
    struct StartTag {
        Offset lower;
        SourceRange name;
        std::uint32_t firstAttribute;
    };

    void dispatch(Lexer& lexer, Token::Kind kind, SourceRange range);

    TreeNode& append(Kind kind, TreeNode::Flags flags, SourceRange range, SourceRange name,
                     SourceRange content);

    void addToTextRun(SourceRange range, bool hasContent);
    void flushTextRun();

    void openTag(Lexer& lexer, Offset lower);
    Offset skipInvalidContent(std::ptrdiff_t position);
    void appendElement(const StartTag& tag, TreeNode::Flags flags, Offset upper);
    void appendCutOffElement(StartTag tag, Offset upper);
    void appendTag(const StartTag& tag, TreeNode::Flags flags, Offset upper);
    Offset attribute(Lexer& lexer, SourceRange name, std::uint32_t firstAttribute);
    void diagnoseRepeated(SourceRange name, std::uint32_t firstAttribute);
    void diagnoseRepeatedLater(std::uint32_t firstAttribute);
    std::span<const AttributeSpan> attributesFrom(std::uint32_t first) const {
        return std::span(m_attributes.begin(), m_attributes.end()).subspan(first);
    }
    void appendAttribute(SourceRange name, Offset upper, SourceRange value, char16_t quote);

    void closeTag(Lexer& lexer, SourceRange opener);
    std::ptrdiff_t closeUnexpectedTag(SourceRange opener);
    Offset endTagEnd(Lexer& lexer, SourceRange opener, Offset nameEnd);
    void closeNearest(SourceRange name, SourceRange endTag);
    void closeTop(SourceRange endTag);
    void closeTopImplicitly(Offset at);
    void popTop(Offset contentUpper, Offset upper, TreeNode::Flags closing);
    void linkChildren(const OpenElement& element);

    void leaf(SourceRange range, const Delimiters& delimiters);

    void finish();
    void sortDiagnostics();
    void diagnose(Rule rule, SourceRange range, Offset fixOffset = 0) {
        m_diagnostics.append({range, fixOffset, rule});
    }

    bool isOutsideRoot() const { return m_open.depth() == 1; }
    Offset count() const { return m_text.count(); }

    SourceText m_text;
    std::u16string_view m_units;
    DoctypeReading m_doctype;
    UnitIndex m_index;
    RecordArray<TreeNode> m_nodes;
    RecordArray<AttributeSpan> m_attributes;
    RecordArray<DiagnosticRecord> m_diagnostics;
    OpenElements m_open;
    AttributeNames m_attributeNames;

    // The run of text since the last markup.
    static constexpr Offset noTextRun = 0xFFFFFFFF;
    Offset m_textRunLower = 0;
    Offset m_textRunUpper = noTextRun;
    bool m_textRunHasContent = false;

    bool m_hasRoot = false;
};

Builder::Builder(const SourceText& text, DocumentTree recycled, DoctypeReading doctype)
    : m_text(text), m_units(text.units()), m_doctype(doctype), m_nodes(std::move(recycled.nodes)),
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

// A separate function with few variables on its stack: so the compiler produces the fastest loop.
TAMO_NEVER_INLINE DocumentTree Builder::build(const std::stop_token& stop) {
    constexpr int tokensBetweenStopChecks = 16384;
    int tokensLeft = tokensBetweenStopChecks;
    bool isStopped = false;
    // The lexer is kept in registers, so its address must not be passed to functions that are not inlined.
    // These, for rare cases, create a lexer of their own.
    Lexer lexer(m_units, m_index);
    lexer.doctype = m_doctype;
    std::ptrdiff_t start = 0;
    for (Token::Kind kind; (kind = lexer.scanContent(start)) != Lexer::noToken;) {
        if (--tokensLeft == 0) {
            tokensLeft = tokensBetweenStopChecks;
            isStopped = stop.stop_requested();
            if (isStopped) {
                break;
            }
        }
        dispatch(lexer, kind, rangeOf(start, lexer.position));
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

TAMO_ALWAYS_INLINE void Builder::dispatch(Lexer& lexer, Token::Kind kind, SourceRange range) {
    switch (kind) {
    case Token::Kind::text:
        addToTextRun(range, lexer.textHasContent());
        break;
    case Token::Kind::entity:
        addToTextRun(range, true);
        break;
    case Token::Kind::invalid:
        diagnose(m_units[range.lower] == u'&' ? Rule::unescapedAmpersand : Rule::unescapedLessThan, range);
        addToTextRun(range, true);
        break;
    case Token::Kind::openTagStart:
        openTag(lexer, range.lower);
        break;
    case Token::Kind::closeTagStart:
        closeTag(lexer, range);
        break;
    case Token::Kind::comment:
        leaf(range, commentDelimiters);
        break;
    case Token::Kind::cdata:
        leaf(range, cdataDelimiters);
        break;
    case Token::Kind::instruction:
        leaf(range, instructionDelimiters);
        break;
    case Token::Kind::doctype:
        leaf(range, declarationDelimiters);
        break;
    case Token::Kind::tagName:
    case Token::Kind::attributeName:
    case Token::Kind::equals:
    case Token::Kind::attributeValue:
    case Token::Kind::tagEnd:
    case Token::Kind::selfCloseEnd:
        break; // These do not occur in content.
    }
}

/// Appends a node as the last child of the innermost open element. A first child has the index after that of
/// its parent, so only later children are linked here; `linkChildren` completes the parent.
TAMO_ALWAYS_INLINE TreeNode& Builder::append(Kind kind, TreeNode::Flags flags, SourceRange range,
                                             SourceRange name, SourceRange content) {
    const auto index = static_cast<std::uint32_t>(m_nodes.size());
    OpenElement& parent = m_open.top();
    if (parent.childCount != 0) {
        m_nodes[parent.lastChild].nextSibling = {index};
    }
    parent.lastChild = index;
    ++parent.childCount;
    TreeNode& node = m_nodes.append();
    node.kind = kind;
    node.flags = flags;
    node.range = range;
    node.nameRange = name;
    node.contentRange = content;
    node.firstAttribute = 0;
    node.attributeCount = 0;
    node.parent = {parent.node};
    node.firstChild = NodeID::none();
    node.nextSibling = NodeID::none();
    node.childCount = 0;
    return node;
}

TAMO_ALWAYS_INLINE void Builder::addToTextRun(SourceRange range, bool hasContent) {
    if (m_textRunUpper != range.lower) {
        flushTextRun();
        m_textRunLower = range.lower;
    }
    m_textRunUpper = range.upper;
    m_textRunHasContent |= hasContent;
}

/// Appends the node of the current run of text. A run of only white space gets no node.
TAMO_ALWAYS_INLINE void Builder::flushTextRun() {
    if (m_textRunHasContent) {
        const SourceRange run = rangeOf(m_textRunLower, m_textRunUpper);
        if (isOutsideRoot()) {
            diagnose(Rule::textOutsideRoot, run);
        }
        append(Kind::text, {}, run, rangeOf(run.lower, run.lower), run);
        m_textRunHasContent = false;
    }
    m_textRunUpper = noTextRun;
}

/// Parses the start tag whose `<` is at `lower`.
TAMO_ALWAYS_INLINE void Builder::openTag(Lexer& lexer, Offset lower) {
    flushTextRun();
    m_attributeNames.clear();
    StartTag tag{lower, rangeOf(lower, lower), static_cast<std::uint32_t>(m_attributes.size())};
    Offset upper = lower + 1;
    std::ptrdiff_t start = 0;
    if (lexer.takeTagName(start)) [[likely]] {
        tag.name = rangeOf(start, lexer.position);
        upper = tag.name.upper;
    } else {
        diagnose(Rule::missingTagName, rangeOf(lower, upper));
    }
    while (true) {
        const Token::Kind kind = lexer.scanTag(start);
        const SourceRange range = rangeOf(start, lexer.position);
        switch (kind) {
        case Token::Kind::attributeName:
            upper = attribute(lexer, range, tag.firstAttribute);
            break;
        case Token::Kind::tagEnd:
            return appendElement(tag, {}, range.upper);
        case Token::Kind::selfCloseEnd:
            return appendElement(tag, TreeNode::selfClosing, range.upper);
        case Token::Kind::equals:
        case Token::Kind::attributeValue:
        case Token::Kind::invalid:
            diagnose(Rule::unexpectedInTag, range);
            upper = range.upper;
            if (lexer.mode == Lexer::Mode::content) {
                upper = skipInvalidContent(lexer.position);
                lexer.position = upper;
                return appendCutOffElement(tag, upper);
            }
            break;
        default:
            lexer.rewind(start, Lexer::Mode::content);
            return appendCutOffElement(tag, upper);
        }
    }
}

/// After a lone `<` in a start tag the lexer is in content again. There, only invalid units that follow
/// directly still belong to the tag. Diagnoses those from `position` on and returns their end.
TAMO_NEVER_INLINE Offset Builder::skipInvalidContent(std::ptrdiff_t position) {
    UnitIndex index;
    Lexer lexer(m_units, index, position, count(), Lexer::Mode::content);
    std::ptrdiff_t start = position;
    while (lexer.scan(start) == Token::Kind::invalid) {
        diagnose(Rule::unexpectedInTag, rangeOf(start, lexer.position));
    }
    return static_cast<Offset>(start);
}

/// Appends the element of a complete start tag that ends at `upper`.
TAMO_ALWAYS_INLINE void Builder::appendElement(const StartTag& tag, TreeNode::Flags flags, Offset upper) {
    if (isOutsideRoot()) {
        if (m_hasRoot) {
            diagnose(Rule::secondRoot, tag.name);
        }
        m_hasRoot = true;
    }
    appendTag(tag, flags, upper);
    if (!flags.contains(TreeNode::selfClosing)) {
        m_open.push({.node = static_cast<std::uint32_t>(m_nodes.size() - 1), .name = tag.name});
    }
}

/// Appends the element of a start tag that ends at `upper` without `>` or `/>`. What follows becomes its
/// sibling.
void Builder::appendCutOffElement(StartTag tag, Offset upper) {
    const SourceRange name = tag.name.isEmpty() ? rangeOf(tag.lower, tag.lower + 1) : tag.name;
    diagnose(Rule::unterminatedStartTag, name, upper);
    appendTag(tag, TreeNode::selfClosing | TreeNode::unterminated, upper);
}

TAMO_ALWAYS_INLINE void Builder::appendTag(const StartTag& tag, TreeNode::Flags flags, Offset upper) {
    TreeNode& node = append(Kind::element, flags, rangeOf(tag.lower, upper), tag.name, rangeOf(upper, upper));
    node.firstAttribute = tag.firstAttribute;
    node.attributeCount = static_cast<std::uint32_t>(m_attributes.size()) - tag.firstAttribute;
    if (node.attributeCount > AttributeNames::comparedOneByOne) [[unlikely]] {
        diagnoseRepeatedLater(tag.firstAttribute);
    }
}

/// Parses the attribute that starts with `name`; returns the end of its last token.
TAMO_ALWAYS_INLINE Offset Builder::attribute(Lexer& lexer, SourceRange name, std::uint32_t firstAttribute) {
    if (m_attributeNames.mayBeRepeated(name)) [[unlikely]] {
        diagnoseRepeated(name, firstAttribute);
    }
    std::ptrdiff_t start = 0;
    if (!lexer.takeEquals()) {
        if (const Token::Kind kind = lexer.scanTag(start); kind != Token::Kind::equals) {
            if (kind != Lexer::noToken) {
                lexer.rewind(start, Lexer::Mode::tag);
                diagnose(Rule::attributeWithoutValue, name, name.upper);
            }
            appendAttribute(name, name.upper, rangeOf(name.upper, name.upper), 0);
            return name.upper;
        }
    }
    const auto equalsUpper = static_cast<Offset>(lexer.position);
    if (const Token::Kind kind = lexer.scanValue(start); kind != Token::Kind::attributeValue) {
        if (kind != Lexer::noToken) {
            lexer.rewind(start, Lexer::Mode::tag);
        }
        diagnose(Rule::unquotedValue, name);
        appendAttribute(name, equalsUpper, rangeOf(name.upper, name.upper), 0);
        return equalsUpper;
    }
    const SourceRange value = rangeOf(start, lexer.position);
    const char16_t quote = m_units[value.lower];
    const bool isClosed = value.length() >= 2 && m_units[value.upper - 1] == quote;
    if (!isClosed) {
        diagnose(Rule::unclosedQuote, value, value.upper);
    }
    appendAttribute(name, value.upper, rangeOf(value.lower + 1, isClosed ? value.upper - 1 : value.upper),
                    quote);
    return value.upper;
}

void Builder::diagnoseRepeated(SourceRange name, std::uint32_t firstAttribute) {
    const std::span<const AttributeSpan> earlier = attributesFrom(firstAttribute);
    if (earlier.size() < AttributeNames::comparedOneByOne && m_attributeNames.isAmong(earlier, name)) {
        diagnose(Rule::duplicateAttribute, name);
    }
}

/// Diagnoses the later repeated names of a tag with more attributes than are compared one by one.
void Builder::diagnoseRepeatedLater(std::uint32_t firstAttribute) {
    for (const SourceRange name : m_attributeNames.repeatedLater(attributesFrom(firstAttribute))) {
        diagnose(Rule::duplicateAttribute, name);
    }
}

TAMO_ALWAYS_INLINE void Builder::appendAttribute(SourceRange name, Offset upper, SourceRange value,
                                                 char16_t quote) {
    AttributeSpan& attribute = m_attributes.append();
    attribute.range = rangeOf(name.lower, upper);
    attribute.name = name;
    attribute.value = value;
    attribute.quote = quote;
}

/// Parses the end tag whose `</` is `opener`.
TAMO_ALWAYS_INLINE void Builder::closeTag(Lexer& lexer, SourceRange opener) {
    flushTextRun();
    if (lexer.takeEndTagRest(m_open.top().name)) [[likely]] {
        closeTop(rangeOf(opener.lower, lexer.position));
    } else {
        lexer.rewind(closeUnexpectedTag(opener), Lexer::Mode::content);
    }
}

/// `closeTag` for an end tag of any form; returns the offset at which content continues.
TAMO_NEVER_INLINE std::ptrdiff_t Builder::closeUnexpectedTag(SourceRange opener) {
    UnitIndex index;
    Lexer lexer(m_units, index, opener.upper, count(), Lexer::Mode::tagName);
    SourceRange name = rangeOf(opener.upper, opener.upper);
    std::ptrdiff_t start = 0;
    if (lexer.scan(start) == Token::Kind::tagName) {
        name = rangeOf(start, lexer.position);
    } else {
        lexer.rewind(opener.upper, Lexer::Mode::tag);
    }
    closeNearest(name, rangeOf(opener.lower, endTagEnd(lexer, opener, name.upper)));
    return lexer.position;
}

/// Parses the rest of an end tag whose name ends at `nameEnd`; returns the end of the tag.
Offset Builder::endTagEnd(Lexer& lexer, SourceRange opener, Offset nameEnd) {
    Offset upper = nameEnd;
    while (true) {
        std::ptrdiff_t start = 0;
        const Token::Kind kind = lexer.scan(start);
        const SourceRange range = rangeOf(start, lexer.position);
        switch (kind) {
        case Token::Kind::tagEnd:
            return range.upper;
        case Token::Kind::selfCloseEnd:
            diagnose(Rule::unexpectedInEndTag, range);
            return range.upper;
        case Token::Kind::attributeName:
        case Token::Kind::equals:
        case Token::Kind::attributeValue:
        case Token::Kind::invalid:
            diagnose(Rule::unexpectedInEndTag, range);
            upper = range.upper;
            break;
        default:
            lexer.rewind(start, Lexer::Mode::content);
            diagnose(Rule::unterminatedEndTag, opener, upper);
            return upper;
        }
    }
}

/// Closes the innermost open element named `name`, after the open elements inside it. An end tag that closes
/// no element becomes text.
void Builder::closeNearest(SourceRange name, SourceRange endTag) {
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

TAMO_ALWAYS_INLINE void Builder::closeTop(SourceRange endTag) {
    popTop(endTag.lower, endTag.upper, TreeNode::hasCloseTag);
}

void Builder::closeTopImplicitly(Offset at) {
    diagnose(Rule::unclosedElement, m_open.top().name, at);
    popTop(at, at, TreeNode::unclosed);
}

TAMO_ALWAYS_INLINE void Builder::popTop(Offset contentUpper, Offset upper, TreeNode::Flags closing) {
    const OpenElement& element = m_open.top();
    TreeNode& node = m_nodes[element.node];
    node.contentRange.upper = contentUpper;
    node.range.upper = upper;
    node.flags = node.flags | closing;
    linkChildren(element);
    m_open.pop();
}

/// Records the children in the node. The first child has the index after that of the node.
TAMO_ALWAYS_INLINE void Builder::linkChildren(const OpenElement& element) {
    TreeNode& node = m_nodes[element.node];
    node.childCount = element.childCount;
    node.firstChild = element.childCount == 0 ? NodeID::none() : NodeID{element.node + 1};
}

/// Appends the node of a construct that is a single token.
void Builder::leaf(SourceRange range, const Delimiters& delimiters) {
    flushTextRun();
    const auto terminatorLength = static_cast<Offset>(delimiters.terminator.size());
    const bool isTerminated = range.length() >= delimiters.openingLength + terminatorLength &&
                              m_text.hasPrefix(delimiters.terminator, range.upper - terminatorLength);
    const Offset contentUpper = isTerminated ? range.upper - terminatorLength : range.upper;
    const Offset contentLower = std::min(range.lower + delimiters.openingLength, contentUpper);
    SourceRange name = rangeOf(range.lower, range.lower);
    if (delimiters.kind == Kind::instruction) {
        name = rangeOf(contentLower, UnitScan::findNameEnd(m_units.data(), contentLower, contentUpper));
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
    sortDiagnostics();
}

/// Sorts by offset. Diagnostics at the same offset keep their order, but a repeated attribute comes first: it
/// may have been detected after the other problems of the attribute.
void Builder::sortDiagnostics() {
    const auto order = [](const DiagnosticRecord& record) {
        const bool isRepeated = record.rule == Rule::duplicateAttribute;
        return std::uint64_t{record.range.lower} << 1 | (isRepeated ? 0 : 1);
    };
    sortByRuns(std::span(m_diagnostics.begin(), m_diagnostics.end()), order);
}

} // namespace

DocumentTree TreeParser::parse(const SourceText& text, std::stop_token stop, DocumentTree recycled,
                               DoctypeReading doctype) {
    return Builder(text, std::move(recycled), doctype).build(stop);
}
