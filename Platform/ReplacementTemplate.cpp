#include "ReplacementTemplate.h"

#include <optional>

namespace {

std::optional<char16_t> escapedUnit(char16_t letter) {
    switch (letter) {
    case u'n':
        return u'\n';
    case u'r':
        return u'\r';
    case u't':
        return u'\t';
    case u'\\':
        return u'\\';
    default:
        return std::nullopt;
    }
}

} // namespace

ReplacementTemplate::ReplacementTemplate(std::u16string_view written, SearchPattern::Syntax forSyntax) {
    if (forSyntax == SearchPattern::Syntax::plain) {
        m_pieces.emplace_back(std::u16string(written));
        return;
    }
    for (std::size_t at = 0; at < written.size(); ++at) {
        const char16_t next = written[at] == u'\\' && at + 1 < written.size() ? written[at + 1] : u' ';
        if (u'0' <= next && next <= u'9') {
            m_pieces.emplace_back(static_cast<std::size_t>(next - u'0'));
            ++at;
        } else if (const auto unit = escapedUnit(next)) {
            addUnit(*unit);
            ++at;
        } else {
            addUnit(written[at]);
        }
    }
}

void ReplacementTemplate::addUnit(char16_t unit) {
    if (m_pieces.empty() || !std::holds_alternative<std::u16string>(m_pieces.back())) {
        m_pieces.emplace_back(std::u16string());
    }
    std::get<std::u16string>(m_pieces.back()) += unit;
}

void ReplacementTemplate::append(std::u16string& units, const Rope& text, MatchGroups groups) const {
    for (const Piece& piece : m_pieces) {
        if (const auto* const literal = std::get_if<std::u16string>(&piece)) {
            units += *literal;
        } else if (const std::size_t group = std::get<std::size_t>(piece); group < groups.size()) {
            const std::size_t start = units.size();
            units.resize(start + groups[group].length());
            text.copyTo(groups[group], units.data() + start);
        }
    }
}
