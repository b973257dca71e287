#include "QuoteRepair.h"

#include "UnitScan.h"

#include <algorithm>
#include <string_view>

namespace {

using QuoteRepair::Repair;
using Rule = DiagnosticRecord::Rule;

/// How many units are searched for a quote. Values are rarely longer.
constexpr std::size_t farthest = 4096;

constexpr bool isQuote(char16_t unit) { return unit == u'"' || unit == u'\''; }

/// A text, with functions that read the markup at any offset of it.
class Tag {
public:
    explicit Tag(std::u16string_view units) : m_units(units) {}

    char16_t unit(std::size_t at) const { return at < m_units.size() ? m_units[at] : u'\0'; }
    std::size_t size() const { return m_units.size(); }

    /// The offset of the first unit from `from` on for which `isMatch` returns true. If there is none, the
    /// offset where the search ends: `farthest` units farther or at the end of the text.
    template <class IsMatch>
    std::size_t find(std::size_t from, IsMatch isMatch) const {
        const std::size_t end = std::min(m_units.size(), from + farthest);
        while (from < end && !isMatch(m_units[from])) {
            ++from;
        }
        return from;
    }

    std::size_t skipSpace(std::size_t from) const {
        return find(from, [](char16_t unit) { return !UnitScan::isWhitespace(unit); });
    }
    std::size_t skipName(std::size_t from) const {
        return find(from, [](char16_t unit) { return !UnitScan::isName(unit); });
    }
    std::size_t skipSpaceBack(std::size_t from) const {
        while (from > 0 && UnitScan::isWhitespace(m_units[from - 1])) {
            --from;
        }
        return from;
    }

    /// Whether a tag correctly continues or ends at `at`, just after a value.
    bool continuesAt(std::size_t at) const {
        const std::size_t next = skipSpace(at);
        if (unit(next) == u'>' || (unit(next) == u'/' && unit(next + 1) == u'>')) {
            return true;
        }
        const std::size_t nameEnd = skipName(next);
        return next > at && UnitScan::isNameStart(unit(next)) && unit(skipSpace(nameEnd)) == u'=';
    }

    /// The offset of the first `<` from `at` on, or the end of the text.
    std::size_t nextMarkup(std::size_t at) const { return std::min(m_units.find(u'<', at), m_units.size()); }

private:
    std::u16string_view m_units;
};

TextEdit insertion(char16_t quote, std::size_t at) {
    return TextEdit::insert(std::u16string(1, quote), static_cast<Offset>(at));
}

/// `b="1 < 2"`: the value continues after the `<`, up to a quote after which the tag continues.
std::optional<Repair> escapedValue(const Tag& tag, SourceRange value) {
    const char16_t quote = tag.unit(value.lower);
    const std::size_t end = tag.find(value.upper, [quote](char16_t unit) { return unit == quote; });
    const bool isOpening = tag.unit(tag.skipSpaceBack(end) - 1) == u'=';
    if (tag.unit(end) != quote || isOpening || !tag.continuesAt(end + 1)) {
        return std::nullopt;
    }
    Repair repair{u"Escapar “<” en el valor", {}, static_cast<Offset>(end + 1)};
    for (std::size_t at = value.upper; at < end; ++at) {
        if (tag.unit(at) == u'<') {
            repair.edits.push_back({SourceRange::at(static_cast<std::int64_t>(at), 1), u"&lt;"});
        }
    }
    return repair;
}

/// `b="x>t</a>`: the closing quote is missing before the first `>` or `/>`.
std::optional<Repair> valueEndedByTag(const Tag& tag, SourceRange value) {
    std::size_t end = tag.find(value.lower + 1, [](char16_t unit) { return unit == u'>'; });
    if (end >= value.upper || tag.unit(end) != u'>') {
        return std::nullopt;
    }
    end -= tag.unit(end - 1) == u'/' && end - 1 > value.lower ? 1 : 0;
    return Repair{u"Cerrar comilla antes de >", {insertion(tag.unit(value.lower), end)}, value.upper};
}

/// `b="x c="y">`: the text at `at` follows a quote that closes a value, and this value ends like the start of
/// an attribute (`c=`). The missing quote belongs before that attribute.
std::optional<Repair> valueEndedByAttribute(const Tag& tag, std::size_t at) {
    const std::size_t earliest = at - std::min(at, farthest);
    std::size_t quote = at;
    while (quote > earliest && UnitScan::isName(tag.unit(quote - 1))) {
        --quote;
    }
    if (quote < 2 || !isQuote(tag.unit(quote - 1)) || tag.unit(quote - 2) != u'=') {
        return std::nullopt;
    }
    std::size_t name = quote - 2;
    while (name > earliest && UnitScan::isName(tag.unit(name - 1))) {
        --name;
    }
    const std::size_t end = tag.skipSpaceBack(name);
    if (name == quote - 2 || !UnitScan::isNameStart(tag.unit(name)) || end == name) {
        return std::nullopt;
    }
    return Repair{
        u"Cerrar comilla", {insertion(tag.unit(quote - 1), end)}, static_cast<Offset>(tag.nextMarkup(at))};
}

/// `b=x">`, `b=x` or `b=`: the value of the attribute whose name is at `name` lacks one quote or both.
/// Returns a repair without edits if what follows is too long for a value.
std::optional<Repair> quotedValue(const Tag& tag, SourceRange name) {
    const std::size_t equals = tag.skipSpace(name.upper);
    if (tag.unit(equals) != u'=') {
        return std::nullopt;
    }
    const auto endsValue = [](char16_t unit) {
        return UnitScan::isWhitespace(unit) || unit == u'>' || unit == u'<' || isQuote(unit);
    };
    const std::size_t start = tag.skipSpace(equals + 1);
    std::size_t end = tag.find(start, endsValue);
    if (end == start + farthest) {
        return Repair{{}, {}, static_cast<Offset>(end)};
    }
    const bool isNextAttribute = end > start && tag.unit(end - 1) == u'=' && isQuote(tag.unit(end));
    if (UnitScan::isWhitespace(tag.unit(end))) {
        const std::size_t later = tag.find(
            end, [](char16_t unit) { return unit == u'=' || unit == u'<' || unit == u'>' || isQuote(unit); });
        end = isQuote(tag.unit(later)) && tag.continuesAt(later + 1) ? later : end;
    }
    const std::size_t slash = tag.unit(end) == u'>' && end > start && tag.unit(end - 1) == u'/' ? 1 : 0;
    end -= slash;
    if (end == start || isNextAttribute) {
        const bool needsSpace = isNextAttribute && start == equals + 1;
        return Repair{u"Añadir valor",
                      {TextEdit::insert(needsSpace ? u"\"\" " : u"\"\"", static_cast<Offset>(equals + 1))},
                      static_cast<Offset>(equals + 1)};
    }
    if (isQuote(tag.unit(end))) {
        return Repair{u"Abrir comilla", {insertion(tag.unit(end), start)}, static_cast<Offset>(end + 1)};
    }
    return Repair{
        u"Poner comillas", {insertion(u'"', start), insertion(u'"', end)}, static_cast<Offset>(end)};
}

/// The result of `repair`, or a repair without edits if nothing is known about the text before its end.
std::optional<Repair> look(const DocumentTree& tree, std::size_t index) {
    const Tag tag(tree.text.units());
    const SourceRange range = tree.diagnostics.range(index);
    switch (tree.diagnostics.rule(index)) {
    case Rule::unclosedQuote: {
        auto escaped = escapedValue(tag, range);
        return escaped ? escaped : valueEndedByTag(tag, range);
    }
    case Rule::unexpectedInTag:
        return valueEndedByAttribute(tag, range.lower);
    case Rule::unquotedValue:
        return quotedValue(tag, range);
    default:
        return std::nullopt;
    }
}

} // namespace

std::optional<Repair> QuoteRepair::repair(const DocumentTree& tree, std::size_t index) {
    auto found = look(tree, index);
    return found && !found->edits.empty() ? found : std::nullopt;
}

std::vector<TextEdit> QuoteRepair::edits(const DocumentTree& tree) {
    std::vector<TextEdit> edits;
    // A repair changes how a malformed tag is read, so later problems in the tag may disappear.
    Offset end = 0;
    for (std::size_t index = 0; index < tree.diagnostics.size(); ++index) {
        if (tree.diagnostics.range(index).lower < end) {
            continue;
        }
        const auto found = look(tree, index);
        if (!found) {
            continue;
        }
        if (!found->edits.empty() && found->edits.front().range.lower >= end) {
            edits.insert(edits.end(), found->edits.begin(), found->edits.end());
            end = found->edits.back().range.upper;
        }
        end = std::max(end, found->end);
    }
    return edits;
}
