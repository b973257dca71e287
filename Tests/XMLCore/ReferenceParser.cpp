#include "ReferenceParser.h"

#include "SourceText.h"
#include "TextEdit.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace {

using Kind = TreeNode::Kind;
using Severity = Diagnostic::Severity;

bool isBlank(char16_t unit) { return unit == u' ' || unit == u'\t' || unit == u'\n' || unit == u'\r'; }

bool isNameStart(char16_t unit) {
    return (u'A' <= unit && unit <= u'Z') || (u'a' <= unit && unit <= u'z') || unit == u':' || unit == u'_' ||
           unit >= 0x80;
}

bool isNameUnit(char16_t unit) {
    return isNameStart(unit) || (u'0' <= unit && unit <= u'9') || unit == u'-' || unit == u'.';
}

/// The offset just after the `>` that ends the declaration at `start` by the strict rule: the first one
/// outside quotes and brackets.
std::optional<std::size_t> endByTheLetter(std::u16string_view units, std::size_t start) {
    int depth = 0;
    char16_t quote = u'\0';
    for (std::size_t at = start; at < units.size(); ++at) {
        const char16_t unit = units[at];
        if (quote != u'\0') {
            quote = unit == quote ? u'\0' : quote;
        } else if (unit == u'"' || unit == u'\'') {
            quote = unit;
        } else if (unit == u'>' && depth <= 0) {
            return at + 1;
        } else {
            depth += unit == u'[' ? 1 : unit == u']' ? -1 : 0;
        }
    }
    return std::nullopt;
}

/// `units`, with dots in place of the comments and instructions inside the brackets of the declaration at
/// `start`. A comment or instruction without an end extends to the end of the text.
std::u16string blanked(std::u16string units, std::size_t start) {
    int depth = 0;
    char16_t quote = u'\0';
    for (std::size_t at = start; at < units.size(); ++at) {
        const std::u16string_view rest = std::u16string_view(units).substr(at);
        const bool isComment = rest.starts_with(u"<!--");
        if (quote != u'\0') {
            quote = rest.front() == quote ? u'\0' : quote;
        } else if (rest.front() == u'"' || rest.front() == u'\'') {
            quote = rest.front();
        } else if (depth > 0 && (isComment || rest.starts_with(u"<?"))) {
            const std::u16string_view closer = isComment ? u"-->" : u"?>";
            const std::size_t found = units.find(closer, at + (isComment ? 4 : 2));
            const std::size_t end = std::min(found, units.size() - closer.size()) + closer.size();
            std::fill(units.begin() + static_cast<std::ptrdiff_t>(at),
                      units.begin() + static_cast<std::ptrdiff_t>(end), u'.');
        } else {
            depth += rest.front() == u'[' ? 1 : rest.front() == u']' ? -1 : 0;
        }
    }
    return units;
}

class PlainLexer {
public:
    PlainLexer(std::u16string_view units, SourceRange range, SourceRange doctype)
        : m_units(units), m_end(range.upper), m_position(range.lower), m_doctype(doctype) {}

    std::optional<Token> next() {
        if (m_mode == Mode::tagName) {
            m_mode = Mode::tag;
            if (m_position < m_end && isNameStart(m_units[m_position])) {
                return take(Token::Kind::tagName, nameEnd(m_position));
            }
        }
        return m_mode == Mode::tag ? nextInTag() : nextInContent();
    }

private:
    enum class Mode { content, tagName, tag };

    Token take(Token::Kind kind, std::int64_t upTo) {
        const SourceRange range(m_position, upTo);
        m_position = upTo;
        return {kind, range};
    }

    std::int64_t nameEnd(std::int64_t from) const {
        while (from < m_end && isNameUnit(m_units[from])) {
            ++from;
        }
        return from;
    }

    bool has(std::u16string_view string, std::int64_t at) const {
        return at + static_cast<std::int64_t>(string.size()) <= m_end &&
               m_units.substr(at, string.size()) == string;
    }

    std::int64_t after(std::u16string_view terminator, std::int64_t from) const {
        for (; from < m_end; ++from) {
            if (has(terminator, from)) {
                return from + static_cast<std::int64_t>(terminator.size());
            }
        }
        return m_end;
    }

    std::optional<Token> nextInContent() {
        if (m_position >= m_end) {
            return std::nullopt;
        }
        if (m_units[m_position] == u'&') {
            return reference();
        }
        if (m_units[m_position] == u'<') {
            return markup();
        }
        std::int64_t upTo = m_position;
        while (upTo < m_end && m_units[upTo] != u'<' && m_units[upTo] != u'&') {
            ++upTo;
        }
        return take(Token::Kind::text, upTo);
    }

    Token markup() {
        const std::int64_t second = m_position + 1;
        if (second >= m_end) {
            return take(Token::Kind::invalid, second);
        }
        if (m_units[second] == u'?') {
            return take(Token::Kind::instruction, after(u"?>", m_position + 2));
        }
        if (m_units[second] == u'/') {
            m_mode = Mode::tagName;
            return take(Token::Kind::closeTagStart, m_position + 2);
        }
        if (m_units[second] == u'!') {
            if (has(u"<!--", m_position)) {
                return take(Token::Kind::comment, after(u"-->", m_position + 4));
            }
            if (has(u"<![CDATA[", m_position)) {
                return take(Token::Kind::cdata, after(u"]]>", m_position + 9));
            }
            if (!m_doctype.isEmpty() && m_position == m_doctype.lower) {
                return take(Token::Kind::doctype, std::min<std::int64_t>(m_doctype.upper, m_end));
            }
            return take(Token::Kind::doctype, declarationEnd());
        }
        if (isNameStart(m_units[second])) {
            m_mode = Mode::tagName;
            return take(Token::Kind::openTagStart, second);
        }
        return take(Token::Kind::invalid, second);
    }

    std::int64_t declarationEnd() const {
        std::int64_t depth = 0;
        std::optional<char16_t> quote;
        for (std::int64_t at = m_position + 2; at < m_end; ++at) {
            const char16_t unit = m_units[at];
            if (quote) {
                if (unit == *quote) {
                    quote.reset();
                }
            } else if (unit == u'"' || unit == u'\'') {
                quote = unit;
            } else if (unit == u'[') {
                ++depth;
            } else if (unit == u']') {
                --depth;
            } else if (unit == u'>' && depth <= 0) {
                return at + 1;
            }
        }
        return m_end;
    }

    Token reference() {
        const std::int64_t first = m_position + 1;
        std::int64_t stop = first;
        if (has(u"#", first)) {
            constexpr std::u16string_view digits = u"0123456789abcdefABCDEFxX";
            ++stop;
            while (stop < m_end && digits.find(m_units[stop]) != std::u16string_view::npos) {
                ++stop;
            }
        } else if (first < m_end && isNameStart(m_units[first])) {
            stop = nameEnd(first);
        }
        if (has(u";", stop) && stop > first) {
            return take(Token::Kind::entity, stop + 1);
        }
        return take(Token::Kind::invalid, first);
    }

    std::optional<Token> nextInTag() {
        while (m_position < m_end && isBlank(m_units[m_position])) {
            ++m_position;
        }
        if (m_position >= m_end) {
            return std::nullopt;
        }
        const char16_t unit = m_units[m_position];
        if (unit == u'"' || unit == u'\'') {
            std::int64_t at = m_position + 1;
            while (at < m_end && m_units[at] != unit && m_units[at] != u'<') {
                ++at;
            }
            const bool isClosed = at < m_end && m_units[at] == unit;
            return take(Token::Kind::attributeValue, isClosed ? at + 1 : at);
        }
        if (has(u"/>", m_position)) {
            m_mode = Mode::content;
            return take(Token::Kind::selfCloseEnd, m_position + 2);
        }
        if (unit == u'=') {
            return take(Token::Kind::equals, m_position + 1);
        }
        if (unit == u'>') {
            m_mode = Mode::content;
            return take(Token::Kind::tagEnd, m_position + 1);
        }
        if (unit == u'<') {
            m_mode = Mode::content;
            return nextInContent();
        }
        if (isNameStart(unit)) {
            return take(Token::Kind::attributeName, nameEnd(m_position));
        }
        return take(Token::Kind::invalid, m_position + 1);
    }

    std::u16string_view m_units;
    std::int64_t m_end;
    std::int64_t m_position;
    SourceRange m_doctype;
    Mode m_mode = Mode::content;
};

class PlainBuilder {
public:
    PlainBuilder(std::u16string_view units, SourceRange doctype)
        : m_units(units), m_count(static_cast<std::int64_t>(units.size())),
          m_lexer(units, {0, m_count}, doctype) {
        m_result.nodes.push_back(
            {.kind = Kind::document, .range = {0, m_count}, .contentRange = {0, m_count}});
    }

    ReferenceParser::Result build(ReferenceParser::Stop stop) {
        std::size_t tokenCount = 0;
        while (const auto token = next()) {
            ++tokenCount;
            if (tokenCount % 16384 == 0 && stop == ReferenceParser::Stop::requested) {
                return m_result;
            }
            dispatch(*token);
        }
        finish();
        return m_result;
    }

private:
    std::optional<Token> next() {
        if (m_pending) {
            return std::exchange(m_pending, std::nullopt);
        }
        return m_lexer.next();
    }
    void pushBack(std::optional<Token> token) { m_pending = token; }

    std::u16string_view units(SourceRange range) const { return m_units.substr(range.lower, range.length()); }
    std::u16string shown(SourceRange range) const { return repaired(units(range)); }

    void diagnose(SourceRange range, std::u16string message, std::optional<Diagnostic::Fix> fix = {},
                  Severity severity = Severity::error) {
        m_result.diagnostics.push_back({range, std::move(message), severity, std::move(fix)});
    }
    static Diagnostic::Fix inserting(std::u16string title, std::u16string string, Offset at) {
        return {std::move(title), {{SourceRange(at, at), std::move(string)}}};
    }

    void dispatch(const Token& token) {
        switch (token.kind) {
        case Token::Kind::text:
            addToTextRun(token.range, !std::ranges::all_of(units(token.range), isBlank));
            break;
        case Token::Kind::entity:
            addToTextRun(token.range, true);
            break;
        case Token::Kind::invalid:
            if (m_units[token.range.lower] == u'&') {
                diagnose(token.range, u"“&” sin escapar",
                         Diagnostic::Fix{u"Escapar como &amp;", {{token.range, u"&amp;"}}});
            } else {
                diagnose(token.range, u"“<” sin escapar",
                         Diagnostic::Fix{u"Escapar como &lt;", {{token.range, u"&lt;"}}});
            }
            addToTextRun(token.range, true);
            break;
        case Token::Kind::openTagStart:
            openTag(token.range.lower);
            break;
        case Token::Kind::closeTagStart:
            closeTag(token.range);
            break;
        case Token::Kind::comment:
            leaf(token.range, Kind::comment, 4, u"-->");
            break;
        case Token::Kind::cdata:
            leaf(token.range, Kind::cdata, 9, u"]]>");
            break;
        case Token::Kind::instruction:
            leaf(token.range, Kind::instruction, 2, u"?>");
            break;
        case Token::Kind::doctype:
            leaf(token.range, Kind::doctype, 2, u">");
            break;
        default:
            break;
        }
    }

    void append(TreeNode node) {
        const NodeID added{static_cast<std::uint32_t>(m_result.nodes.size())};
        const NodeID parent{static_cast<std::uint32_t>(m_stack.back())};
        node.parent = parent;
        m_result.nodes.push_back(node);
        m_lastChild.emplace_back();
        const NodeID previous = std::exchange(m_lastChild[parent.raw], added);
        (previous.isNone() ? m_result.nodes[parent.raw].firstChild
                           : m_result.nodes[previous.raw].nextSibling) = added;
        ++m_result.nodes[parent.raw].childCount;
    }

    void addToTextRun(SourceRange range, bool hasContent) {
        if (m_textRun && m_textRun->upper == range.lower) {
            m_textRun->upper = range.upper;
        } else {
            flushTextRun();
            m_textRun = range;
        }
        m_textRunHasContent = m_textRunHasContent || hasContent;
    }

    void flushTextRun() {
        if (!m_textRun) {
            return;
        }
        const SourceRange run = *std::exchange(m_textRun, std::nullopt);
        if (m_textRunHasContent) {
            if (m_stack.size() == 1) {
                diagnose(run, u"Texto fuera del elemento raíz", std::nullopt, Severity::warning);
            }
            append({.kind = Kind::text,
                    .range = run,
                    .nameRange = SourceRange(run.lower, run.lower),
                    .contentRange = run});
        }
        m_textRunHasContent = false;
    }

    void openTag(Offset lower) {
        flushTextRun();
        const std::size_t firstAttribute = m_result.attributes.size();
        SourceRange name(lower, lower);
        Offset consumed = lower + 1;
        if (const auto token = next(); token && token->kind == Token::Kind::tagName) {
            name = token->range;
            consumed = name.upper;
        } else {
            pushBack(token);
            diagnose({lower, lower + 1}, u"Falta el nombre de la etiqueta");
        }
        TreeNode::Flags flags;
        bool isTerminated = false;
        for (bool goesOn = true; goesOn;) {
            const auto token = next();
            if (!token) {
                break;
            }
            switch (token->kind) {
            case Token::Kind::attributeName:
                consumed = attribute(token->range, firstAttribute);
                break;
            case Token::Kind::equals:
            case Token::Kind::attributeValue:
            case Token::Kind::invalid:
                diagnose(token->range, u"Carácter inesperado dentro de la etiqueta");
                consumed = token->range.upper;
                break;
            case Token::Kind::selfCloseEnd:
                flags = TreeNode::selfClosing;
                [[fallthrough]];
            case Token::Kind::tagEnd:
                isTerminated = true;
                consumed = token->range.upper;
                goesOn = false;
                break;
            default:
                pushBack(token);
                goesOn = false;
                break;
            }
        }
        if (!isTerminated) {
            flags = TreeNode::selfClosing | TreeNode::unterminated;
            diagnose(name.isEmpty() ? SourceRange(lower, lower + 1) : name,
                     u"La etiqueta <" + shown(name) + u"> no termina con >",
                     inserting(u"Añadir >", u">", consumed));
        } else if (m_stack.size() == 1) {
            if (m_hasRoot) {
                diagnose(name, u"Solo se permite un elemento raíz");
            }
            m_hasRoot = true;
        }
        append({.kind = Kind::element,
                .flags = flags,
                .range = {lower, consumed},
                .nameRange = name,
                .contentRange = {consumed, consumed},
                .firstAttribute = static_cast<std::uint32_t>(firstAttribute),
                .attributeCount = static_cast<std::uint32_t>(m_result.attributes.size() - firstAttribute)});
        if (flags == TreeNode::Flags()) {
            m_stack.push_back(m_result.nodes.size() - 1);
        }
    }

    Offset attribute(SourceRange name, std::size_t firstAttribute) {
        for (std::size_t i = firstAttribute; i < m_result.attributes.size(); ++i) {
            if (units(m_result.attributes[i].name) == units(name)) {
                diagnose(name, u"Atributo duplicado “" + shown(name) + u"”");
                break;
            }
        }
        const SourceRange noValue(name.upper, name.upper);
        const auto second = next();
        if (!second) {
            m_result.attributes.push_back({name, name, noValue, 0});
            return name.upper;
        }
        if (second->kind != Token::Kind::equals) {
            pushBack(second);
            diagnose(name, u"El atributo “" + shown(name) + u"” no tiene valor",
                     inserting(u"Añadir valor", u"=\"\"", name.upper));
            m_result.attributes.push_back({name, name, noValue, 0});
            return name.upper;
        }
        const auto third = next();
        if (!third || third->kind != Token::Kind::attributeValue) {
            pushBack(third);
            diagnose(name, u"Falta el valor entre comillas");
            m_result.attributes.push_back({{name.lower, second->range.upper}, name, noValue, 0});
            return second->range.upper;
        }
        const SourceRange value = third->range;
        const char16_t quote = m_units[value.lower];
        const bool isClosed = value.length() >= 2 && m_units[value.upper - 1] == quote;
        if (!isClosed) {
            diagnose(value, u"Falta cerrar la comilla",
                     inserting(u"Cerrar comilla", quote == u'\'' ? u"'" : u"\"", value.upper));
        }
        const SourceRange inside(value.lower + 1, isClosed ? value.upper - 1 : value.upper);
        m_result.attributes.push_back({{name.lower, value.upper}, name, inside, quote});
        return value.upper;
    }

    void closeTag(SourceRange opener) {
        flushTextRun();
        SourceRange name(opener.upper, opener.upper);
        if (const auto token = next(); token && token->kind == Token::Kind::tagName) {
            name = token->range;
        } else {
            pushBack(token);
        }
        Offset consumed = name.upper;
        for (bool goesOn = true; goesOn;) {
            const auto token = next();
            if (token && token->kind == Token::Kind::tagEnd) {
                consumed = token->range.upper;
                break;
            }
            const bool isUnexpected =
                token && (token->kind == Token::Kind::attributeName || token->kind == Token::Kind::equals ||
                          token->kind == Token::Kind::attributeValue ||
                          token->kind == Token::Kind::selfCloseEnd || token->kind == Token::Kind::invalid);
            if (isUnexpected) {
                diagnose(token->range, u"Contenido inesperado en la etiqueta de cierre");
                consumed = token->range.upper;
                goesOn = token->kind != Token::Kind::selfCloseEnd;
            } else {
                pushBack(token);
                diagnose(opener, u"La etiqueta de cierre no termina con >",
                         inserting(u"Añadir >", u">", consumed));
                goesOn = false;
            }
        }
        closeNearest(name, {opener.lower, consumed});
    }

    void closeNearest(SourceRange name, SourceRange endTag) {
        std::size_t depth = m_stack.size() - 1;
        while (depth > 0 && units(m_result.nodes[m_stack[depth]].nameRange) != units(name)) {
            --depth;
        }
        if (depth == 0) {
            diagnose(endTag, u"</" + shown(name) + u"> no tiene etiqueta de apertura",
                     Diagnostic::Fix{u"Eliminar cierre", {{endTag, u""}}});
            addToTextRun(endTag, true);
            return;
        }
        while (m_stack.size() - 1 > depth) {
            closeTopImplicitly(endTag.lower);
        }
        close(endTag.lower, endTag.upper, TreeNode::hasCloseTag);
    }

    void closeTopImplicitly(Offset at) {
        const SourceRange name = m_result.nodes[m_stack.back()].nameRange;
        diagnose(name, u"Falta cerrar <" + shown(name) + u">",
                 inserting(u"Cerrar <" + shown(name) + u">", u"</" + std::u16string(units(name)) + u">", at));
        close(at, at, TreeNode::unclosed);
    }

    void close(Offset contentUpper, Offset upper, TreeNode::Flags flag) {
        TreeNode& node = m_result.nodes[m_stack.back()];
        node.contentRange.upper = contentUpper;
        node.range.upper = upper;
        node.flags = node.flags | flag;
        m_stack.pop_back();
    }

    void leaf(SourceRange range, Kind kind, Offset openingLength, const std::u16string& terminator) {
        flushTextRun();
        const auto terminatorLength = static_cast<Offset>(terminator.size());
        const bool isTerminated =
            range.length() >= openingLength + terminatorLength && units(range).ends_with(terminator);
        const Offset contentEnd = isTerminated ? range.upper - terminatorLength : range.upper;
        SourceRange name(range.lower, range.lower);
        if (kind == Kind::instruction) {
            name = {range.lower + 2, range.lower + 2};
            while (name.upper < contentEnd && isNameUnit(m_units[name.upper])) {
                ++name.upper;
            }
        }
        append({.kind = kind,
                .range = range,
                .nameRange = name,
                .contentRange = {std::min(range.lower + openingLength, contentEnd), contentEnd}});
        if (!isTerminated) {
            diagnose({range.lower, range.lower + std::min(openingLength, range.length())},
                     u"Falta cerrar con " + terminator,
                     inserting(u"Cerrar con " + terminator, terminator, range.upper));
        }
    }

    void finish() {
        flushTextRun();
        while (m_stack.size() > 1) {
            closeTopImplicitly(static_cast<Offset>(m_count));
        }
        if (!m_hasRoot && !std::ranges::all_of(m_units, isBlank)) {
            diagnose({0, 0}, u"El documento no tiene elemento raíz", std::nullopt, Severity::warning);
        }
        std::ranges::stable_sort(m_result.diagnostics, {},
                                 [](const Diagnostic& diagnostic) { return diagnostic.range.lower; });
    }

    std::u16string_view m_units;
    std::int64_t m_count;
    PlainLexer m_lexer;
    std::optional<Token> m_pending;
    ReferenceParser::Result m_result;
    std::vector<NodeID> m_lastChild{NodeID::none()}; ///< The last child of each node.
    std::vector<std::size_t> m_stack{0};
    std::optional<SourceRange> m_textRun;
    bool m_textRunHasContent = false;
    bool m_hasRoot = false;
};

} // namespace

std::vector<Token> ReferenceParser::tokens(std::u16string_view units, SourceRange range,
                                           SourceRange doctype) {
    PlainLexer lexer(units, range, doctype);
    std::vector<Token> tokens;
    while (const auto token = lexer.next()) {
        tokens.push_back(*token);
    }
    return tokens;
}

ReferenceParser::Result ReferenceParser::parse(std::u16string_view units, Stop stop, SourceRange doctype) {
    return PlainBuilder(units, doctype).build(stop);
}

SourceRange ReferenceParser::doctype(std::u16string_view units) {
    PlainLexer lexer(units, SourceRange(0, std::ssize(units)), {});
    while (const auto token = lexer.next()) {
        if (token->kind == Token::Kind::openTagStart) {
            return {};
        }
        if (token->kind == Token::Kind::doctype &&
            units.substr(token->range.lower).starts_with(u"<!DOCTYPE")) {
            std::optional<std::size_t> end = endByTheLetter(units, token->range.lower);
            // The same, without the content of comments and instructions.
            end =
                end ? end
                    : endByTheLetter(blanked(std::u16string(units), token->range.lower), token->range.lower);
            return end ? SourceRange(token->range.lower, static_cast<std::int64_t>(*end)) : SourceRange();
        }
    }
    return {};
}
