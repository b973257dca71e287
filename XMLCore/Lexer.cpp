#include "Lexer.h"

#include <algorithm>

namespace {

constexpr std::u16string_view commentOpener = u"<!--";
constexpr std::u16string_view cdataOpener = u"<![CDATA[";

/// Whether `unit` may stand in a character reference after `&#`. Deliberately loose: which digits and `x`
/// make sense together is not the lexer's business.
bool isReferenceDigit(char16_t unit) {
    return (u'0' <= unit && unit <= u'9') || (u'a' <= unit && unit <= u'f') ||
           (u'A' <= unit && unit <= u'F') || unit == u'x' || unit == u'X';
}

} // namespace

/// The token that starts with the `<!` at `position`.
Token Lexer::declaration() {
    const std::u16string_view rest = units.substr(position, end - position);
    if (rest.starts_with(commentOpener)) {
        return takeThrough(Token::Kind::comment, commentOpener.size(), u"-->");
    }
    if (rest.starts_with(cdataOpener)) {
        return takeThrough(Token::Kind::cdata, cdataOpener.size(), u"]]>");
    }
    return take(Token::Kind::doctype, doctypeEnd());
}

/// Just after the `>` that ends the declaration at `position`: the first one outside quotes and brackets.
std::ptrdiff_t Lexer::doctypeEnd() const {
    std::ptrdiff_t depth = 0;
    const char16_t* unit = at(position + 2);
    while ((unit = UnitScan::findAny(unit, at(end), u'>', u'"', u'\'', u'[', u']')) != at(end)) {
        switch (*unit) {
        case u'>':
            if (depth <= 0) {
                return unit + 1 - at(0);
            }
            break;
        case u'[':
            ++depth;
            break;
        case u']':
            --depth;
            break;
        default:
            unit = UnitScan::findAny(unit + 1, at(end), *unit);
            if (unit == at(end)) {
                return end;
            }
        }
        ++unit;
    }
    return end;
}

/// The token that starts with the `&` at `position`: a reference, or the `&` alone.
Token Lexer::entity() {
    const char16_t* const first = at(position + 1);
    const char16_t* stop = first;
    if (first < at(end) && *first == u'#') {
        stop = std::find_if_not(first + 1, at(end), isReferenceDigit);
    } else if (first < at(end) && UnitScan::isNameStart(*first)) {
        stop = UnitScan::findNameEnd(first + 1, at(end));
    }
    const bool isReference = stop > first && stop < at(end) && *stop == u';';
    return isReference ? take(Token::Kind::entity, stop + 1 - at(0))
                       : take(Token::Kind::invalid, position + 1);
}

std::vector<Token> Lexer::tokens(const SourceText& in, SourceRange range) {
    Lexer lexer(in.units(), range.lower, range.upper, Mode::content);
    precondition(range.upper <= in.count(), "the range to tokenize lies inside the text");
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
