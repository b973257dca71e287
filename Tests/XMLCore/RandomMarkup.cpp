#include "RandomMarkup.h"

#include <initializer_list>
#include <iterator>
#include <string>
#include <vector>

namespace {

constexpr char32_t nameScalars[] = {U'a', U'b', U'Z', U'_', U':', U'-', U'.', U'7', U'ñ', U'\x1F600'};
constexpr char32_t contentScalars[] = {U'a', U' ', U'>', U'\n', U'\r',    U'\t',      U'"', U'\'',
                                       U'=', U'/', U']', U'-',  U'\x301', U'\x1F600', U'é', U'.'};
constexpr char32_t blankScalars[] = {U' ', U'\n', U'\r', U'\t'};

using namespace std::string_view_literals;
constexpr std::u16string_view oddPieces[] = {u"<!--"sv,
                                             u"-->"sv,
                                             u"--"sv,
                                             u"->"sv,
                                             u"<![CDATA["sv,
                                             u"]]>"sv,
                                             u"]]"sv,
                                             u"<!"sv,
                                             u"<?"sv,
                                             u"?>"sv,
                                             u"<?xml"sv,
                                             u"<!DOCTYPE"sv,
                                             u"["sv,
                                             u"]"sv,
                                             u"<"sv,
                                             u">"sv,
                                             u"</"sv,
                                             u"/>"sv,
                                             u"/"sv,
                                             u"</a>"sv,
                                             u"<a>"sv,
                                             u"<a/>"sv,
                                             u"<a "sv,
                                             u"a"sv,
                                             u"="sv,
                                             u"\""sv,
                                             u"'"sv,
                                             u"='"sv,
                                             u"=\""sv,
                                             u" a='b'"sv,
                                             u" a"sv,
                                             u"&"sv,
                                             u"&#x"sv,
                                             u"&#"sv,
                                             u"&a;"sv,
                                             u"&lt;"sv,
                                             u";"sv,
                                             u"&#;"sv,
                                             u" "sv,
                                             u"\n"sv,
                                             u"\r"sv,
                                             u"\r\n"sv,
                                             u"\t"sv,
                                             u"\0"sv,
                                             u"\xFFFD"sv,
                                             u"é"sv,
                                             u"\x80"sv,
                                             u"\x7F"sv,
                                             u"\xD83D"sv,
                                             u"\xDE00"sv,
                                             u"\U0001F600"sv,
                                             u"\xFFFF"sv,
                                             u"\x301"sv,
                                             u"\x2028"sv,
                                             u"7"sv,
                                             u"-"sv,
                                             u"."sv,
                                             u":"sv,
                                             u"_"sv,
                                             u"@"sv,
                                             u"`"sv,
                                             u"{"sv,
                                             u"^"sv,
                                             u"!"sv,
                                             u"abcdefgh"sv,
                                             u"        "sv,
                                             u"abcdefghijklmnopqrstuvwxyz"sv,
                                             u"\xA0\xA0\xA0"sv,
                                             u"<b x='1' y=\"2\">"sv};

std::u16string joined(std::initializer_list<std::u16string_view> parts) {
    std::u16string text;
    for (const std::u16string_view part : parts) {
        text += part;
    }
    return text;
}

} // namespace

std::u16string_view RandomMarkup::piece() { return oddPieces[m_random.below(std::size(oddPieces))]; }

std::u16string RandomMarkup::name() {
    constexpr std::size_t longest = 30;
    return joined({u"n", m_random.text(nameScalars, oneIn(4) ? longest : 5)});
}

std::u16string_view RandomMarkup::fewName() {
    constexpr std::u16string_view names[] = {u"a", u"b", u"aa", u"A", u"abcdefgh", u"abcdefghi", u"abcdefgx"};
    return names[m_random.below(std::size(names))];
}

std::u16string RandomMarkup::blank() { return m_random.text(blankScalars, oneIn(8) ? 20 : 2); }

std::u16string RandomMarkup::content() {
    std::u16string text = m_random.text(contentScalars, oneIn(4) ? 60 : 8);
    if (oneIn(3)) {
        text += u"&amp;";
        text += m_random.text(contentScalars, 10);
    }
    return text;
}

std::u16string RandomMarkup::value() {
    const std::u16string_view quote = oneIn(2) ? u"'" : u"\"";
    std::u16string inside = content();
    std::erase(inside, quote.front());
    return joined({quote, inside, quote});
}

std::u16string RandomMarkup::attribute() {
    return joined({u" ", blank(), name(), blank(), u"=", blank(), value()});
}

std::u16string RandomMarkup::leaf() {
    const std::u16string inside = m_random.text(nameScalars, 20);
    switch (m_random.below(4)) {
    case 0:
        return joined({u"<!--", blank(), u"x", inside, u"x -->"});
    case 1:
        return joined({u"<![CDATA[", inside, u"<&]]>"});
    case 2:
        return joined({u"<?", name(), u" ", inside, u"?>"});
    default:
        return joined({u"<!DOCTYPE ", name(), u" [<!ENTITY e ", value(), u">]>"});
    }
}

std::u16string RandomMarkup::document() {
    std::u16string text(oneIn(2) ? u"<?xml version='1.0'?>\n" : u"");
    std::vector<std::u16string> open;
    std::size_t left = m_random.below(60);
    do {
        if (open.empty() || oneIn(3)) {
            open.push_back(name());
            text += joined({u"<", open.back()});
            for (std::size_t count = m_random.below(oneIn(10) ? 30 : 3); count > 0; --count) {
                text += attribute();
            }
            text += blank();
            const bool isEmpty = open.size() > 1 && oneIn(3);
            text += isEmpty ? u"/>" : u">";
            if (isEmpty) {
                open.pop_back();
            }
        } else if (open.size() > 1 && oneIn(3)) {
            text += joined({u"</", open.back(), blank(), u">"});
            open.pop_back();
        } else {
            text += oneIn(4) ? leaf() : content();
        }
    } while (left-- > 0);
    for (; !open.empty(); open.pop_back()) {
        text += joined({u"</", open.back(), u">"});
    }
    return text;
}

std::u16string RandomMarkup::tagSoup() {
    std::u16string text;
    for (std::size_t left = m_random.below(200); left > 0; --left) {
        switch (m_random.below(7)) {
        case 0:
        case 1:
        case 2:
            text += joined({u"<", fewName(), u">"});
            break;
        case 3:
        case 4:
            text += joined({u"</", fewName(), u">"});
            break;
        case 5:
            text += oneIn(2) ? u"</c>" : u"</abcdefgy >";
            break;
        default:
            text += oneIn(2) ? u"x" : u" ";
            break;
        }
        if (oneIn(60)) {
            // In the end so many elements are open that names must be found far below the top of the stack.
            for (std::size_t deep = m_random.below(40); deep > 0; --deep) {
                text += u"<a>";
            }
        }
    }
    return text;
}

std::u16string RandomMarkup::attributeSoup() {
    std::u16string text;
    for (std::size_t tags = m_random.below(5); tags > 0; --tags) {
        text += u"<e";
        for (std::size_t left = m_random.below(oneIn(2) ? 100 : 20); left > 0; --left) {
            text += u' ';
            if (oneIn(6)) {
                text += fewName();
            } else {
                text += joined({u"n", m_random.text(nameScalars, 3)});
            }
            if (!oneIn(12)) {
                text += joined({u"=", value()});
            }
        }
        constexpr std::u16string_view ends[] = {u"", u">", u">", u"/>"};
        text += ends[m_random.below(std::size(ends))];
    }
    return text;
}

std::u16string RandomMarkup::pieces() {
    std::u16string text;
    for (std::size_t left = m_random.below(40); left > 0; --left) {
        text += piece();
    }
    return text;
}

void RandomMarkup::damage(std::u16string& text) {
    const std::size_t at = m_random.below(text.size() + 1);
    const std::size_t length = m_random.below(oneIn(4) ? 40 : 4);
    switch (m_random.below(4)) {
    case 0:
        text.insert(at, piece());
        break;
    case 1:
        text.erase(at, length);
        break;
    case 2:
        text.replace(at, length, piece());
        break;
    default:
        text.insert(m_random.below(text.size() + 1), text.substr(at, length));
        break;
    }
}
