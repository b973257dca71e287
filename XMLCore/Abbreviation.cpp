#include "Abbreviation.h"

#include "Lexer.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t maximumCount = 500;

/// The offset of the first unit of `text`, from `from` on, that is one of `units`; the length of `text` if
/// there is none.
std::size_t findAny(std::u16string_view text, std::u16string_view units, std::size_t from) {
    return std::min(text.find_first_of(units, from), text.size());
}

} // namespace

AbbreviationReader::AbbreviationReader(std::u16string_view text) : m_text(text), m_visited(text.size() + 1) {}

std::optional<AbbreviationReader::Elements> AbbreviationReader::elements(std::size_t from) {
    Elements elements;
    m_at = from;
    do {
        std::optional<Element> next = element();
        if (!next) {
            return std::nullopt;
        }
        next->hasChildren = !next->selfClosing && take(u'>');
        elements.push_back(*std::move(next));
    } while (elements.back().hasChildren || take(u'+'));
    return isAtEnd() ? std::optional(std::move(elements)) : std::nullopt;
}

std::optional<AbbreviatedElement> AbbreviationReader::element() {
    if (std::exchange(m_visited[m_at].element, true)) {
        return std::nullopt;
    }
    Element element;
    const auto elementName = name();
    if (!elementName || (take(u'[') && !readAttributes(element.attributes))) {
        return std::nullopt;
    }
    element.name = *elementName;
    if (take(u'*')) {
        const auto repetitions = count();
        if (!repetitions) {
            return std::nullopt;
        }
        element.count = *repetitions;
    }
    element.selfClosing = take(u'/');
    return element;
}

std::optional<std::u16string_view> AbbreviationReader::name() {
    const std::u16string_view name = takeUntil(findAny(m_text, u"[]=*/>+ \t\"'", m_at));
    return Lexer::isValidName(name) ? std::optional(name) : std::nullopt;
}

/// Reads the attributes and their closing `]`; returns false if they are malformed.
bool AbbreviationReader::readAttributes(std::vector<Element::Attribute>& attributes) {
    while (!std::exchange(m_visited[m_at].attributes, true)) {
        takeUntil(std::min(m_text.find_first_not_of(u' ', m_at), m_text.size()));
        if (take(u']')) {
            return true;
        }
        const auto attributeName = name();
        const auto attributeValue = take(u'=') ? value() : std::u16string_view();
        if (!attributeName || !attributeValue || !(isAt(u' ') || isAt(u']'))) {
            return false;
        }
        attributes.push_back({*attributeName, *attributeValue});
    }
    return false;
}

std::optional<std::u16string_view> AbbreviationReader::value() {
    for (const char16_t quote : {u'"', u'\''}) {
        if (take(quote)) {
            const std::u16string_view value = takeUntil(std::min(m_text.find(quote, m_at), m_text.size()));
            return take(quote) ? std::optional(value) : std::nullopt;
        }
    }
    if (m_at < m_bareValueStart || m_bareValueEnd <= m_at) {
        m_bareValueStart = m_at;
        m_bareValueEnd = findAny(m_text, u" ]", m_at);
    }
    return takeUntil(m_bareValueEnd);
}

std::optional<std::size_t> AbbreviationReader::count() {
    const std::size_t start = m_at;
    std::size_t count = 0;
    for (; !isAtEnd() && u'0' <= m_text[m_at] && m_text[m_at] <= u'9'; ++m_at) {
        count = std::min<std::size_t>(count * 10 + (m_text[m_at] - u'0'), maximumCount + 1);
    }
    const bool isInRange = m_at > start && 1 <= count && count <= maximumCount;
    return isInRange ? std::optional(count) : std::nullopt;
}

bool AbbreviationReader::take(char16_t unit) {
    const bool isThere = isAt(unit);
    m_at += isThere ? 1 : 0;
    return isThere;
}

std::u16string_view AbbreviationReader::takeUntil(std::size_t end) {
    const std::u16string_view taken = m_text.substr(m_at, end - m_at);
    m_at = end;
    return taken;
}
