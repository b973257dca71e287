#include "DisplayText.h"

#include "GraphemeBreaker.h"
#include "UTF16.h"

#include <algorithm>

namespace {

constexpr char16_t replacement = u'\uFFFD';
/// One column wide where source fonts have it. Hardly any has the control pictures: they end as the box of a
/// missing character, like a letter that no font has.
constexpr char16_t dottedBox = u'\u2B1A';

using UnicodeProperties::GraphemeBreak;

/// Characters that take room, or should, and show nothing: U+FFFC and the Hangul fillers.
bool isBlank(char32_t scalar) {
    return scalar == 0xFFFC || scalar == 0x115F || scalar == 0x1160 || scalar == 0x3164 || scalar == 0xFFA0;
}

/// Whether `scalar`, with which a character starts, needs a stand-in.
bool needsStandIn(char32_t scalar) {
    switch (UnicodeProperties::graphemeBreak(scalar)) {
    case GraphemeBreak::control:
    case GraphemeBreak::carriageReturn:
    case GraphemeBreak::lineFeed:
        return scalar != u'\t';
    case GraphemeBreak::extend:
    case GraphemeBreak::zeroWidthJoiner:
        return true;
    default:
        return isBlank(scalar);
    }
}

char16_t standIn(char32_t scalar) { return scalar >= 0xD800 && scalar < 0xE000 ? replacement : dottedBox; }

} // namespace

QString displayText(std::u16string_view units) {
    QString shown(reinterpret_cast<const QChar*>(units.data()), static_cast<qsizetype>(units.size()));
    const bool isPlain = std::ranges::all_of(
        units, [](char16_t unit) { return (unit >= u' ' && unit < 0x7F) || unit == u'\t'; });
    if (isPlain) {
        return shown;
    }
    QChar* const out = shown.data();
    const char16_t* const end = units.data() + units.size();
    GraphemeBreaker::BoundaryFinder finder;
    for (std::size_t at = 0; at < units.size();) {
        const char32_t scalar = UTF16::scalarAt(units.data() + at, end);
        const std::size_t length = UTF16::length(scalar);
        const bool starts = finder.startsCharacter(scalar);
        if ((starts || isBlank(scalar)) && needsStandIn(scalar)) {
            std::fill_n(out + at, length, QChar(standIn(scalar)));
        }
        at += length;
    }
    return shown;
}
