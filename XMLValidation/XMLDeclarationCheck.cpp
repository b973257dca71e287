#include "XMLDeclarationCheck.h"

#include "UnitScan.h"

#include <algorithm>
#include <array>

namespace {

using Rule = Violation::Rule;
using XMLCharacters::isSpace;

bool isLetter(char16_t unit) {
    const char16_t letter = unit | 0x20;
    return u'a' <= letter && letter <= u'z';
}
bool isDigit(char16_t unit) { return u'0' <= unit && unit <= u'9'; }

bool isVersionNumber(std::u16string_view value) {
    return value.starts_with(u"1.") && value.size() > 2 && std::ranges::all_of(value.substr(2), isDigit);
}

bool isEncodingName(std::u16string_view value) {
    const auto isPart = [](char16_t unit) {
        return isLetter(unit) || isDigit(unit) || unit == u'.' || unit == u'_' || unit == u'-';
    };
    return !value.empty() && isLetter(value.front()) && std::ranges::all_of(value, isPart);
}

/// Reads the parts of a declaration, `name="value"` each, one after the other.
class Reader {
public:
    Reader(const DocumentTree& tree, SourceRange parts, std::vector<Violation>& violations)
        : m_units(tree.text.units()), m_violations(violations), m_at(parts.lower), m_end(parts.upper) {}

    DeclaredForm read();

private:
    enum class Part : std::uint8_t { version, encoding, standalone };

    bool readPart();
    bool readValue(SourceRange name);
    void take(SourceRange name, SourceRange value);
    void takeVersion(SourceRange value);
    void takeStandalone(SourceRange value);

    void skipSpaces() {
        while (m_at < m_end && isSpace(m_units[m_at])) {
            ++m_at;
        }
    }
    void report(Rule rule, SourceRange range, Offset detail = 0) {
        m_violations.push_back({range, detail, rule});
    }
    /// Reports the unit that stands where something else should, or the end.
    bool fail() {
        report(Rule::malformedXMLDeclaration,
               {m_at, std::min(m_at + 1, static_cast<Offset>(m_units.size()))});
        return false;
    }

    std::u16string_view m_units;
    std::vector<Violation>& m_violations;
    Offset m_at;
    Offset m_end;
    std::array<bool, 3> m_has{};
    DeclaredForm m_form;
};

DeclaredForm Reader::read() {
    const Offset start = m_at;
    const std::size_t first = m_violations.size();
    bool goesOn = true;
    while (goesOn) {
        goesOn = readPart();
    }
    if (!m_has[static_cast<int>(Part::version)]) {
        constexpr Offset openerLength = 5;
        m_violations.insert(m_violations.begin() + static_cast<std::ptrdiff_t>(first),
                            {{start - openerLength, start}, start, Rule::missingVersion});
    }
    return m_form;
}

/// Whether there is more to read after this part.
bool Reader::readPart() {
    const Offset before = m_at;
    skipSpaces();
    if (m_at == m_end) {
        return false;
    }
    const Offset lower = m_at;
    m_at = static_cast<Offset>(UnitScan::findNameEnd(m_units.data(), m_at, m_end));
    const SourceRange name(lower, m_at);
    if (name.isEmpty()) {
        return fail();
    }
    if (before == lower) {
        report(Rule::missingSpaceInXMLDeclaration, name, lower);
    }
    return readValue(name);
}

bool Reader::readValue(SourceRange name) {
    skipSpaces();
    if (m_at == m_end || m_units[m_at] != u'=') {
        return fail();
    }
    ++m_at;
    skipSpaces();
    if (m_at == m_end || (m_units[m_at] != u'"' && m_units[m_at] != u'\'')) {
        return fail();
    }
    const auto close = static_cast<Offset>(UnitScan::findAny(m_units.data(), m_at + 1, m_end, m_units[m_at]));
    if (close == m_end) {
        return fail();
    }
    const SourceRange value(m_at + 1, close);
    m_at = close + 1;
    take(name, value);
    return true;
}

void Reader::take(SourceRange name, SourceRange value) {
    constexpr std::array<std::u16string_view, 3> names{u"version", u"encoding", u"standalone"};
    const auto units = m_units.substr(value.lower, value.length());
    const auto* const found = std::ranges::find(names, m_units.substr(name.lower, name.length()));
    if (found == names.end() || m_has[found - names.begin()]) {
        return report(Rule::unknownInXMLDeclaration, name, m_at);
    }
    const auto index = static_cast<std::size_t>(found - names.begin());
    if (std::any_of(m_has.begin() + static_cast<std::ptrdiff_t>(index), m_has.end(),
                    [](bool has) { return has; })) {
        report(Rule::disorderedXMLDeclaration, name);
    }
    m_has[index] = true;
    switch (static_cast<Part>(index)) {
    case Part::version:
        return takeVersion(value);
    case Part::encoding:
        if (!isEncodingName(units)) {
            report(Rule::invalidEncodingName, value);
        }
        return;
    case Part::standalone:
        return takeStandalone(value);
    }
}

void Reader::takeVersion(SourceRange value) {
    const auto units = m_units.substr(value.lower, value.length());
    if (!isVersionNumber(units)) {
        report(Rule::invalidVersion, value);
    }
    m_form.version = units == u"1.1" ? XMLVersion::v1_1 : XMLVersion::v1_0;
}

void Reader::takeStandalone(SourceRange value) {
    const auto units = m_units.substr(value.lower, value.length());
    m_form.isStandalone = units == u"yes";
    if (units != u"yes" && units != u"no") {
        report(Rule::invalidStandalone, value);
    }
}

} // namespace

std::optional<NodeID> XMLDeclarationCheck::find(const DocumentTree& tree) {
    const NodeID first{1};
    const bool isDeclaration = tree.nodes.size() > 1 && tree[first].kind == TreeNode::Kind::instruction &&
                               tree[first].range.lower == 0 &&
                               tree.text.equals(tree[first].nameRange, u"xml");
    return isDeclaration ? std::optional(first) : std::nullopt;
}

DeclaredForm XMLDeclarationCheck::check(const DocumentTree& tree, std::vector<Violation>& violations) {
    const auto node = find(tree);
    if (!node) {
        return {};
    }
    return Reader(tree, {tree[*node].nameRange.upper, tree[*node].contentRange.upper}, violations).read();
}
