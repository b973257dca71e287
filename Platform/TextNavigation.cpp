#include "TextNavigation.h"

#include "GraphemeBreaker.h"

#include <QChar>

#include <algorithm>

namespace {

/// How many units around a caret are looked at.
constexpr Offset reach = 256;
constexpr Offset deepestIndentation = 4096;

enum class Class : std::uint8_t { space, lineEnd, word, punctuation };

Class classOf(char16_t unit) {
    if (unit == u'\n' || unit == u'\r') {
        return Class::lineEnd;
    }
    const QChar character(unit);
    if (character.isSpace()) {
        return Class::space;
    }
    // Halves of pairs are letters of a kind: a caret must not stop between them.
    const bool isWord =
        character.isLetterOrNumber() || character.isMark() || character.isSurrogate() || unit == u'_';
    return isWord ? Class::word : Class::punctuation;
}

SourceRange before(Offset caret) { return SourceRange::unchecked(caret - std::min(caret, reach), caret); }

SourceRange after(Offset caret, const Rope& in) {
    return SourceRange::unchecked(caret, caret + std::min(in.size() - caret, reach));
}

/// How many of the units from `at` on have its class.
std::size_t runLength(std::u16string_view units, std::size_t at) {
    const auto differs = [&](char16_t unit) { return classOf(unit) != classOf(units[at]); };
    return static_cast<std::size_t>(std::ranges::find_if(units.substr(at), differs) - (units.begin() + at));
}

/// The same backwards, for the units that end at `at`.
std::size_t runLengthBefore(std::u16string_view units, std::size_t at) {
    std::size_t start = at;
    while (start > 0 && classOf(units[start - 1]) == classOf(units[at - 1])) {
        --start;
    }
    return at - start;
}

} // namespace

Offset TextNavigation::nextCharacter(Offset caret, const Rope& in) {
    const std::u16string units = in.units(after(caret, in));
    return caret + static_cast<Offset>(GraphemeBreaker::nextBoundary(units, 0));
}

Offset TextNavigation::previousCharacter(Offset caret, const Rope& in) {
    const std::u16string units = in.units(before(caret));
    const std::size_t boundary = GraphemeBreaker::previousBoundary(units, units.size());
    return caret - static_cast<Offset>(units.size() - boundary);
}

Offset TextNavigation::characterStart(Offset offset, const Rope& in) {
    const SourceRange behind = before(offset);
    const std::u16string units = in.units(SourceRange::unchecked(behind.lower, after(offset, in).upper));
    if (GraphemeBreaker::isBoundary(units, offset - behind.lower)) {
        return offset;
    }
    return behind.lower +
           static_cast<Offset>(GraphemeBreaker::previousBoundary(units, offset - behind.lower));
}

Offset TextNavigation::nextWord(Offset caret, const Rope& in) {
    const std::u16string units = in.units(after(caret, in));
    std::size_t at = 0;
    if (at < units.size() && classOf(units[at]) == Class::lineEnd) {
        return nextCharacter(caret, in);
    }
    if (at < units.size() && classOf(units[at]) == Class::space) {
        at += runLength(units, at);
    }
    if (at < units.size() && classOf(units[at]) != Class::lineEnd) {
        at += runLength(units, at);
    }
    return characterStart(caret + static_cast<Offset>(at), in);
}

Offset TextNavigation::previousWord(Offset caret, const Rope& in) {
    const std::u16string units = in.units(before(caret));
    std::size_t at = units.size();
    if (at > 0 && classOf(units[at - 1]) == Class::lineEnd) {
        return previousCharacter(caret, in);
    }
    if (at > 0 && classOf(units[at - 1]) == Class::space) {
        at -= runLengthBefore(units, at);
    }
    if (at > 0 && classOf(units[at - 1]) != Class::lineEnd) {
        at -= runLengthBefore(units, at);
    }
    return characterStart(caret - static_cast<Offset>(units.size() - at), in);
}

SourceRange TextNavigation::word(Offset at, const Rope& in) {
    const SourceRange behind = before(at);
    const std::u16string units = in.units(SourceRange::unchecked(behind.lower, after(at, in).upper));
    if (units.empty()) {
        return SourceRange::empty(at);
    }
    // At the end of a line or of the text the run before counts.
    const std::size_t here = at - behind.lower;
    const bool looksBack = here == units.size() || (classOf(units[here]) == Class::lineEnd && here > 0);
    const std::size_t inside = looksBack ? here - 1 : here;
    const std::size_t end = inside + runLength(units, inside);
    const std::size_t start = end - runLengthBefore(units, end);
    return {behind.lower + std::int64_t(start), behind.lower + std::int64_t(end)};
}

Offset TextNavigation::lineEnd(std::size_t ofLine, const Rope& in) {
    const SourceRange line = in.lineRange(ofLine);
    const bool hasLineFeed = line.upper < in.size();
    return hasLineFeed && !line.isEmpty() && in.unit(line.upper - 1) == u'\r' ? line.upper - 1 : line.upper;
}

Offset TextNavigation::lineHome(Offset caret, const Rope& in) {
    const std::size_t line = in.line(caret);
    const Offset start = in.lineStart(line);
    const Offset end = lineEnd(line, in);
    const std::u16string units =
        in.units(SourceRange::unchecked(start, start + std::min(end - start, deepestIndentation)));
    const std::size_t blanks = units.find_first_not_of(u" \t");
    const Offset first = blanks != std::u16string::npos ? start + static_cast<Offset>(blanks)
                         : end - start < deepestIndentation ? end
                                                            : start;
    return caret == first ? start : first;
}

SourceRange TextNavigation::partialWord(Offset caret, const Rope& in) {
    const SourceRange behind = before(caret);
    const std::u16string units = in.units(behind);
    const auto isPart = [](char16_t unit) {
        return classOf(unit) == Class::word || unit == u'-' || unit == u'.' || unit == u':';
    };
    std::size_t start = units.size();
    while (start > 0 && isPart(units[start - 1])) {
        --start;
    }
    return SourceRange::unchecked(behind.lower + static_cast<Offset>(start), caret);
}

bool TextNavigation::isWordUnit(char16_t unit) { return classOf(unit) == Class::word; }

std::u16string_view TextNavigation::lineEnding(const Rope& of) {
    return lineEnd(0, of) != of.lineRange(0).upper ? u"\r\n" : u"\n";
}
