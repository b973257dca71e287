#include "TagExpander.h"

#include "Abbreviation.h"
#include "Escaping.h"
#include "UnitScan.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace {

using Element = AbbreviatedElement;
using Elements = AbbreviationReader::Elements;
using TagExpander::Expansion;

constexpr char16_t quote = u'"';

/// The maximum length of an abbreviation, in units.
constexpr Offset maximumLength = 1'000'000;

struct Indentation {
    std::u16string_view line; ///< The indentation of the line in which the expansion starts.
    std::u16string_view unit;
};

/// The size of an expansion. Numbers are clamped to a value that exceeds every limit.
struct Size {
    std::uint64_t elements = 0;
    std::uint64_t units = 0;  ///< All units except for `Indentation::line`.
    std::uint64_t breaks = 0; ///< The number of line breaks.

    Size operator+(const Size& other) const {
        return Size{elements + other.elements, units + other.units, breaks + other.breaks}.limited();
    }
    Size operator*(std::uint64_t times) const {
        return Size{elements * times, units * times, breaks * times}.limited();
    }

private:
    Size limited() const {
        constexpr std::uint64_t most = 1'000'000'000;
        return {std::min(elements, most), std::min(units, most), std::min(breaks, most)};
    }
};

constexpr Size lineBreak{.units = 1, .breaks = 1};

bool isWithinLimits(const Size& size, const Indentation& indentation) {
    return size.elements <= TagExpander::maximumElements &&
           size.units + size.breaks * indentation.line.size() <= TagExpander::maximumUnits;
}

/// The size of one `element` with both its tags, without its children.
Size tagsSize(const Element& element) {
    const std::size_t tags = element.selfClosing
                                 ? std::u16string_view(u"</>").size() + element.name.size()
                                 : std::u16string_view(u"<></>").size() + 2 * element.name.size();
    Size size{.elements = 1, .units = tags};
    for (const auto& [name, value] : element.attributes) {
        size.units += std::u16string_view(u" =\"\"").size() + name.size();
        size.units += Escaping::escapeAttribute(value, quote).size();
    }
    return size;
}

/// The size of `element` with its repetitions; `inside` is the size of its children.
Size elementSize(const Element& element, const Size& inside, std::size_t unitLength) {
    Size size = tagsSize(element);
    if (element.hasChildren) {
        size = size + lineBreak + inside + Size{.units = (inside.breaks + 1) * unitLength} + lineBreak;
    }
    return size * element.count + lineBreak * (element.count - 1);
}

/// Whether no attribute is given twice, and each value can be enclosed in quotes: a `<` or a quote that forms
/// one character with a combining mark is not escaped.
bool isWellFormed(const Element& element) {
    std::vector<std::u16string_view> names;
    for (const auto& [name, value] : element.attributes) {
        names.push_back(name);
        const bool mayBreakOut = value.find_first_of(u"<\"") != std::u16string_view::npos;
        if (mayBreakOut &&
            Escaping::escapeAttribute(value, quote).find_first_of(u"<\"") != std::u16string::npos) {
            return false;
        }
    }
    std::ranges::sort(names);
    return std::ranges::adjacent_find(names) == names.end();
}

/// The number of elements to drop from the start, so that the rest may be expanded; the last one dropped has
/// children. The number of all elements if no rest may be expanded.
std::size_t firstExpandable(const Elements& elements, const Indentation& indentation) {
    std::size_t first = elements.size();
    Size after;
    for (std::size_t i = elements.size(); i-- > 0 && isWellFormed(elements[i]);) {
        const Size size = elementSize(elements[i], after, indentation.unit.size());
        const bool hasSiblingsAfter = !elements[i].hasChildren && i + 1 < elements.size();
        after = hasSiblingsAfter ? size + lineBreak + after : size;
        if (!isWithinLimits(after, indentation)) {
            break;
        }
        if (i == 0 || elements[i - 1].hasChildren) {
            first = i;
        }
    }
    return first;
}

/// Writes elements without recursion, because there may be as many levels as elements.
class Writer {
public:
    Writer(std::span<const Element> elements, const Indentation& indentation)
        : m_elements(elements), m_unit(indentation.unit), m_lineStart(u"\n") {
        m_lineStart += indentation.line;
    }

    Snippet write() {
        std::vector<Level> levels{{}};
        while (!levels.empty()) {
            Level& level = levels.back();
            const Element& element = m_elements[level.element];
            if (level.isInside) {
                m_lineStart.resize(m_lineStart.size() - m_unit.size());
                m_snippet.text += m_lineStart;
                writeEndTag(element);
                level.isInside = false;
            } else {
                writeStartTag(element);
                if (element.hasChildren) {
                    m_lineStart += m_unit;
                    m_snippet.text += m_lineStart;
                    level.isInside = true;
                    levels.push_back({level.element + 1});
                    continue;
                }
            }
            if (advance(level)) {
                m_snippet.text += m_lineStart;
            } else {
                levels.pop_back();
            }
        }
        if (!m_snippet.placeholders.empty()) {
            addPlaceholder();
        }
        return std::move(m_snippet);
    }

private:
    /// The writer's position in a list of siblings.
    struct Level {
        std::size_t element = 0;
        std::size_t repetition = 0;
        bool isInside = false; ///< Whether the writer is between the element's tags.
    };

    /// Moves on to the next repetition or sibling; returns false after the last.
    bool advance(Level& level) const {
        const Element& element = m_elements[level.element];
        if (++level.repetition < element.count) {
            return true;
        }
        level.repetition = 0;
        ++level.element;
        return !element.hasChildren && level.element < m_elements.size();
    }

    void writeStartTag(const Element& element) {
        m_snippet.text.append(u"<").append(element.name);
        for (const auto& [name, value] : element.attributes) {
            m_snippet.text.append(u" ").append(name).append(u"=\"");
            if (value.empty()) {
                addPlaceholder();
            }
            m_snippet.text.append(Escaping::escapeAttribute(value, quote)).append(u"\"");
        }
        m_snippet.text += element.selfClosing ? u"/>" : u">";
        if (!element.selfClosing && !element.hasChildren) {
            addPlaceholder();
            writeEndTag(element);
        }
    }

    void writeEndTag(const Element& element) {
        m_snippet.text.append(u"</").append(element.name).append(u">");
    }

    void addPlaceholder() {
        m_snippet.placeholders.push_back(
            SourceRange::empty(static_cast<std::int64_t>(m_snippet.text.size())));
    }

    std::span<const Element> m_elements;
    std::u16string_view m_unit;
    std::u16string m_lineStart; ///< A line feed and the indentation of the current level.
    Snippet m_snippet;
};

/// The comment, CDATA section, instruction or declaration that `abbreviation` stands for; none for any other
/// abbreviation.
std::optional<Snippet> construct(std::u16string_view abbreviation, bool atDocumentStart) {
    const auto around = [](std::u16string_view opener, std::u16string_view closer) {
        const auto stop = SourceRange::empty(static_cast<std::int64_t>(opener.size()));
        return Snippet{std::u16string(opener).append(closer), {stop}};
    };
    if (abbreviation == u"!") {
        return around(u"<!-- ", u" -->");
    }
    if (abbreviation == u"!cdata") {
        return around(u"<![CDATA[", u"]]>");
    }
    if (abbreviation == u"?") {
        return atDocumentStart ? Snippet{u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>", {}}
                               : around(u"<?", u"?>");
    }
    return std::nullopt;
}

/// Where an abbreviation that ends with `text` may start at the earliest; none if there cannot be one. `text`
/// is the text before the caret. It starts at the start of the document if `isWhole`.
std::optional<std::size_t> candidateStart(std::u16string_view text, bool isWhole) {
    const auto afterTag = [text](std::size_t from) {
        const std::size_t tagEnd = text.find(u'>', from);
        return tagEnd == std::u16string_view::npos ? std::nullopt : std::optional(tagEnd + 1);
    };
    std::size_t brackets = 0;
    for (std::size_t start = text.size(); start > 0; --start) {
        const char16_t unit = text[start - 1];
        if (unit == u'\n' || (brackets == 0 && UnitScan::isWhitespace(unit))) {
            return start;
        }
        if (brackets == 0 && unit == u'<') {
            return afterTag(start);
        }
        if (unit == u']') {
            ++brackets;
        } else if (unit == u'[' && brackets > 0) {
            --brackets;
        }
    }
    return isWhole ? 0 : afterTag(0);
}

struct Expanded {
    Offset start; ///< The offset of the abbreviation in the candidate.
    Snippet snippet;
};

/// The expansion of the longest part of `candidate` that is a valid abbreviation: the whole, or what follows
/// a `>`.
std::optional<Expanded> expandLongest(std::u16string_view candidate, const Indentation& indentation) {
    AbbreviationReader reader(candidate);
    auto elements = reader.elements(0);
    for (std::size_t from = 0; !elements; elements = reader.elements(from)) {
        from = candidate.find(u'>', from);
        if (from == std::u16string_view::npos) {
            return std::nullopt;
        }
        ++from;
    }
    const std::size_t first = firstExpandable(*elements, indentation);
    if (first == elements->size()) {
        return std::nullopt;
    }
    const auto part = std::span<const Element>(*elements).subspan(first);
    const auto start = static_cast<Offset>(part.front().name.data() - candidate.data());
    return Expanded{start, Writer(part, indentation).write()};
}

} // namespace

std::optional<Snippet> TagExpander::expand(std::u16string_view abbreviation, std::u16string_view indent,
                                           std::u16string_view unit, bool atDocumentStart) {
    if (auto snippet = construct(abbreviation, atDocumentStart)) {
        return snippet;
    }
    const Indentation indentation{indent, unit};
    if (abbreviation.size() > maximumLength) {
        return std::nullopt;
    }
    const auto elements = AbbreviationReader(abbreviation).elements(0);
    if (!elements || firstExpandable(*elements, indentation) != 0) {
        return std::nullopt;
    }
    return Writer(*elements, indentation).write();
}

std::optional<Expansion> TagExpander::expansion(Offset before, const SourceText& in,
                                                std::u16string_view unit) {
    const SourceRange searched(before - std::min(before, maximumLength), before);
    const auto offset = candidateStart(in.units(searched), searched.lower == 0);
    if (!offset || *offset == searched.length()) {
        return std::nullopt;
    }
    const SourceRange candidate(searched.lower + static_cast<Offset>(*offset), before);
    const std::u16string_view text = in.units(candidate);
    // The abbreviation of a construct contains no `>`, and no abbreviation of elements ends with `>`.
    const auto last = static_cast<Offset>(text.rfind(u'>') + 1);
    const bool atDocumentStart = last == 0 && in.isWhitespace({0, candidate.lower});
    if (auto snippet = construct(text.substr(last), atDocumentStart)) {
        return Expansion{{candidate.lower + last, before}, *std::move(snippet)};
    }
    const std::u16string indent = in.indentation(before);
    if (auto expanded = expandLongest(text, {indent, unit})) {
        return Expansion{{candidate.lower + expanded->start, before}, std::move(expanded->snippet)};
    }
    return std::nullopt;
}
