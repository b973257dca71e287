#include "Lexer.h"

#include "DeclarationEnd.h"

#include <algorithm>

namespace {

constexpr std::u16string_view commentOpener = u"<!--";
constexpr std::u16string_view cdataOpener = u"<![CDATA[";

/// Whether `unit` may stand in a character reference after `&#`. Deliberately permissive: the lexer does not
/// check which combinations of digits and `x` are valid.
bool isReferenceDigit(char16_t unit) {
    return (u'0' <= unit && unit <= u'9') || (u'a' <= unit && unit <= u'f') ||
           (u'A' <= unit && unit <= u'F') || unit == u'x' || unit == u'X';
}

} // namespace

/// The token that starts with the `<` at `start`.
Lexer::Rare Lexer::markup(std::u16string_view units, std::ptrdiff_t start, std::ptrdiff_t end,
                          DoctypeReading doctype) {
    const std::u16string_view rest = units.substr(start, end - start);
    const char16_t next = rest.size() > 1 ? rest[1] : u'\0';
    if (UnitScan::isNameStart(next)) {
        return {Token::Kind::openTagStart, start + 1};
    }
    const auto after = [&](std::u16string_view opener) {
        return start + static_cast<std::ptrdiff_t>(opener.size());
    };
    switch (next) {
    case u'/':
        return {Token::Kind::closeTagStart, after(u"</")};
    case u'?':
        return {Token::Kind::instruction, UnitScan::findAfter(units.data(), after(u"<?"), end, u"?>")};
    case u'!':
        if (rest.starts_with(commentOpener)) {
            return {Token::Kind::comment,
                    UnitScan::findAfter(units.data(), after(commentOpener), end, u"-->")};
        }
        if (rest.starts_with(cdataOpener)) {
            return {Token::Kind::cdata, UnitScan::findAfter(units.data(), after(cdataOpener), end, u"]]>")};
        }
        if (const SourceRange known = doctype.declaration; !known.isEmpty() && start == known.lower) {
            return {Token::Kind::doctype, std::min<std::ptrdiff_t>(known.upper, end)};
        }
        return {Token::Kind::doctype,
                DeclarationEnd::find(units.data(), after(u"<!"), end, DeclarationEnd::Skipping::quotesOnly)
                    .value_or(end)};
    default:
        return {Token::Kind::invalid, start + 1};
    }
}

/// The token that starts with the `&` at `start`: a reference, or the `&` alone.
Lexer::Rare Lexer::reference(std::u16string_view units, std::ptrdiff_t start, std::ptrdiff_t end) {
    const std::ptrdiff_t first = start + 1;
    std::ptrdiff_t stop = first;
    if (first < end && units[first] == u'#') {
        const auto digits = units.substr(first + 1, end - first - 1);
        stop = std::ranges::find_if_not(digits, isReferenceDigit) - units.begin();
    } else if (first < end && UnitScan::isNameStart(units[first])) {
        stop = UnitScan::findNameEnd(units.data(), first + 1, end);
    }
    if (stop > first && stop < end && units[stop] == u';') {
        return {Token::Kind::entity, stop + 1};
    }
    return {Token::Kind::invalid, first};
}

std::vector<Token> Lexer::tokens(const SourceText& in, SourceRange range, DoctypeReading doctype) {
    precondition(range.upper <= in.count(), "the range to tokenize lies inside the text");
    UnitIndex index;
    Lexer lexer(in.units(), index, range.lower, range.upper, Mode::content);
    lexer.doctype = doctype;
    std::vector<Token> tokens;
    while (const auto token = lexer.next()) {
        tokens.push_back(*token);
    }
    return tokens;
}

bool Lexer::isValidName(std::u16string_view name) {
    return !name.empty() && UnitScan::isNameStart(name.front()) &&
           std::all_of(name.begin() + 1, name.end(), UnitScan::isName);
}
