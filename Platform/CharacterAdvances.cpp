#include "CharacterAdvances.h"

#include "UnicodeProperties.h"

#include <algorithm>
#include <cmath>

namespace {

/// One scalar in whose place all of a large, equally wide group is measured; `scalar` itself elsewhere.
char32_t representative(char32_t scalar) {
    if ((scalar >= 0x3400 && scalar < 0xA000) || (scalar >= 0x20000 && scalar < 0x40000)) {
        return U'\u4E00';
    }
    if (scalar >= 0xAC00 && scalar < 0xD7A4) {
        return U'\uAC00';
    }
    if (scalar >= 0xE000 && scalar < 0xF900) {
        return U'\uE000';
    }
    return scalar;
}

} // namespace

CharacterAdvances::CharacterAdvances(const QFont& font)
    : m_metrics(font), m_column(m_metrics.horizontalAdvance(u'0')) {
    std::ranges::fill(m_ascii, static_cast<float>(m_column));
    for (char16_t unit = u' '; unit <= u'~'; ++unit) {
        m_ascii[unit] = static_cast<float>(m_metrics.horizontalAdvance(QChar(unit)));
        m_isFixed = m_isFixed && m_ascii[unit] == static_cast<float>(m_column);
    }
}

double CharacterAdvances::advance(char32_t scalar) {
    if (scalar < std::size(m_ascii)) {
        return m_ascii[scalar];
    }
    const char32_t measured = representative(scalar);
    const auto known = m_others.find(measured);
    if (known != m_others.end()) {
        return known->second;
    }
    return m_others.emplace(measured, static_cast<float>(measure(measured))).first->second;
}

double CharacterAdvances::end(double x, char32_t scalar) {
    return scalar == u'\t' ? (std::floor(x / tab()) + 1) * tab() : x + advance(scalar);
}

double CharacterAdvances::measure(char32_t scalar) const {
    using UnicodeProperties::GraphemeBreak;
    const GraphemeBreak property = UnicodeProperties::graphemeBreak(scalar);
    if (property == GraphemeBreak::control || property == GraphemeBreak::extend ||
        property == GraphemeBreak::zeroWidthJoiner) {
        return m_column;
    }
    return m_metrics.horizontalAdvance(QString::fromUcs4(&scalar, 1));
}
