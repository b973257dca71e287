#include "HostileShapes.h"

#include <algorithm>
#include <array>

namespace {

using Text = std::u16string;
using View = std::u16string_view;

Text repeated(View piece, std::size_t units) {
    Text text;
    text.reserve(units + piece.size());
    while (text.size() < units) {
        text += piece;
    }
    return text;
}

/// `number` written with six letters, so that all names have the same length.
Text letters(std::size_t number) {
    Text text(6, u'a');
    for (auto letter = text.rbegin(); letter != text.rend(); ++letter) {
        *letter = static_cast<char16_t>(u'a' + number % 26);
        number /= 26;
    }
    return text;
}

/// `before`, a name and `after`, repeated with a different name each time.
Text numbered(View before, View after, std::size_t units) {
    Text text;
    text.reserve(units + before.size() + after.size() + 6);
    for (std::size_t i = 0; text.size() < units; ++i) {
        text += before;
        text += letters(i);
        text += after;
    }
    return text;
}

Text joined(View opening, View middle, View closing = {}) {
    Text text(opening);
    text += middle;
    text += closing;
    return text;
}

Text inElement(View content) { return joined(u"<r>", content, u"</r>"); }
Text inStartTag(View attributes) { return joined(u"<r", attributes, u"/>"); }

/// Start tags in the first half of the text, end tags in the second half.
Text halves(View opening, View closing, std::size_t units) {
    return repeated(opening, units / 2) + repeated(closing, units / 2);
}

/// Elements that are all nested, and closed in order at the end of the text.
Text nested(std::size_t units) {
    constexpr std::size_t unitsPerElement = 7;
    return repeated(u"<a>", units / unitsPerElement * 3) + repeated(u"</a>", units / unitsPerElement * 4);
}

/// Names with the same length, the same first and last unit, and the same sum of their units.
Text anagrams(View before, View after, std::size_t units) {
    Text text;
    text.reserve(units + 64);
    Text name = u"abcdefghijkl";
    while (text.size() < units) {
        text += before;
        text += name;
        text += after;
        std::next_permutation(name.begin() + 1, name.end() - 1);
    }
    return text;
}

const Text longPrefix(200, u'p');

constexpr auto shapes = std::to_array<HostileShape>({
    {"attributes of distinct names", [](auto n) { return inStartTag(numbered(u" ", u"=''", n)); }},
    {"attributes of one name", [](auto n) { return inStartTag(repeated(u" a=''", n)); }},
    {"attributes of anagram names", [](auto n) { return inStartTag(anagrams(u" ", u"=''", n)); }},
    {"attributes of long common prefixes",
     [](auto n) { return inStartTag(numbered(joined(u" ", longPrefix), u"=''", n)); }},
    {"attributes of long common suffixes",
     [](auto n) { return inStartTag(numbered(u" a", joined(longPrefix, u"=''"), n)); }},
    {"attributes without value", [](auto n) { return inStartTag(repeated(u" a", n)); }},
    {"attributes without value of distinct names", [](auto n) { return inStartTag(numbered(u" ", u"", n)); }},
    {"elements of nine attributes",
     [](auto n) { return inElement(repeated(u"<a a='' b='' c='' d='' e='' f='' g='' h='' i=''/>", n)); }},
    {"elements of forty equal attributes",
     [](auto n) { return inElement(repeated(joined(u"<a", repeated(u" b=''", 200), u"/>"), n)); }},
    {"one long attribute name", [](auto n) { return inStartTag(joined(u" ", Text(n, u'a'))); }},
    {"value without closing quote", [](auto n) { return joined(u"<r a='", Text(n, u'a')); }},
    {"values without closing quotes", [](auto n) { return repeated(u"<a b=\"", n); }},
    {"values cut off by tags", [](auto n) { return repeated(u"<a b=<a b=<", n); }},
    {"quotes and equals signs", [](auto n) { return inStartTag(repeated(u"=\"", n)); }},
    {"lone quotes in a tag", [](auto n) { return inStartTag(repeated(u" '<", n)); }},
    {"slashes in a tag", [](auto n) { return inStartTag(Text(n, u'/')); }},
    {"white space in a tag", [](auto n) { return inStartTag(Text(n, u' ')); }},

    {"siblings", [](auto n) { return inElement(repeated(u"<a/>", n)); }},
    {"siblings with texts", [](auto n) { return inElement(repeated(u"<a>b</a>c", n)); }},
    {"roots", [](auto n) { return repeated(u"<a/>", n); }},
    {"nested", nested},
    {"nested, never closed", [](auto n) { return repeated(u"<a>", n); }},
    {"nested, distinct names, never closed", [](auto n) { return numbered(u"<", u">", n); }},
    {"nested, anagram names, never closed", [](auto n) { return anagrams(u"<", u">", n); }},
    {"unmatched end tags", [](auto n) { return inElement(repeated(u"</b>", n)); }},
    {"unmatched end tags, no element", [](auto n) { return repeated(u"</b>", n); }},
    {"unmatched end tags in a deep element", [](auto n) { return halves(u"<a>", u"</b>", n); }},
    {"unmatched distinct end tags in a deep element",
     [](auto n) { return repeated(u"<a>", n / 2) + numbered(u"</", u">", n / 2); }},
    {"unmatched end tags in distinct elements",
     [](auto n) { return numbered(u"<", u">", n / 2) + repeated(u"</b>", n / 2); }},
    {"unmatched anagram end tags in anagram elements",
     [](auto n) { return anagrams(u"<", u">", n / 2) + anagrams(u"</b", u">", n / 2); }},
    {"distinct elements closed from the outside",
     [](auto n) { return numbered(u"<", u">", n / 2) + numbered(u"</", u">", n / 2); }},
    {"end tags of every second element", [](auto n) { return halves(u"<a><b>", u"</a>", n); }},
    {"end tags of the outer element", [](auto n) { return inElement(repeated(u"<a><b><b><b></a>", n)); }},
    {"end tags crossed", [](auto n) { return inElement(repeated(u"<a><b></a></b>", n)); }},
    {"opened deep, each level crossed", [](auto n) { return repeated(u"<a><b></a>", n); }},
    {"end tags cut off", [](auto n) { return repeated(u"</a", n); }},
    {"end tags without names", [](auto n) { return repeated(u"</", n); }},
    {"end tags with attributes", [](auto n) { return joined(u"<a></a", repeated(u" b=''", n), u">"); }},
    {"start tags cut off", [](auto n) { return repeated(u"<a", n); }},
    {"start tags cut off by text", [](auto n) { return repeated(u"<a <", n); }},
    {"one long element name", [](auto n) { return joined(joined(u"<", Text(n / 2, u'a'), u">"), u"</", Text(n / 2, u'a')); }},
    {"long element names, nested",
     [](auto n) { return numbered(joined(u"<", longPrefix), u">", n / 2) + numbered(joined(u"</", longPrefix), u"x>", n / 2); }},

    {"bare less-than signs", [](auto n) { return inElement(Text(n, u'<')); }},
    {"bare ampersands", [](auto n) { return inElement(Text(n, u'&')); }},
    {"references", [](auto n) { return inElement(repeated(u"&amp;", n)); }},
    {"references without end", [](auto n) { return inElement(repeated(u"&a", n)); }},
    {"numeric references without end", [](auto n) { return inElement(repeated(u"&#", n)); }},
    {"one reference without end", [](auto n) { return inElement(joined(u"&", Text(n, u'a'))); }},
    {"one numeric reference without end", [](auto n) { return inElement(joined(u"&#", Text(n, u'1'))); }},
    {"one line of text", [](auto n) { return inElement(Text(n, u'a')); }},
    {"text without element", [](auto n) { return repeated(u"a b\n", n); }},
    {"texts cut by comments", [](auto n) { return inElement(repeated(u"a<!---->", n)); }},
    {"empty lines", [](auto n) { return Text(n, u'\n'); }},
    {"NUL", [](auto n) { return Text(n, u'\0'); }},
    {"lone surrogates", [](auto n) { return inElement(Text(n, u'\xDC00')); }},
    {"surrogates as names", [](auto n) { return repeated(u"<\xD800>", n); }},

    {"comments without end", [](auto n) { return repeated(u"<!--", n); }},
    {"comments nearly begun", [](auto n) { return repeated(u"<!-", n); }},
    {"a comment of dashes", [](auto n) { return joined(u"<!--", Text(n, u'-')); }},
    {"CDATA sections", [](auto n) { return inElement(repeated(u"<![CDATA[]]>", n)); }},
    {"CDATA sections without end", [](auto n) { return inElement(repeated(u"<![CDATA[", n)); }},
    {"a CDATA section of brackets", [](auto n) { return joined(u"<r><![CDATA[", Text(n, u']')); }},
    {"instructions without end", [](auto n) { return repeated(u"<?a", n); }},
    {"an instruction of question marks", [](auto n) { return joined(u"<?a ", Text(n, u'?')); }},
    {"declarations without end", [](auto n) { return repeated(u"<!", n); }},
    {"declarations", [](auto n) { return repeated(u"<!>", n); }},
    {"a doctype of brackets", [](auto n) { return joined(u"<!DOCTYPE r ", Text(n, u'[')); }},
    {"a doctype of closing brackets", [](auto n) { return joined(u"<!DOCTYPE r ", Text(n, u']')); }},
    {"a doctype of quotes", [](auto n) { return joined(u"<!DOCTYPE r [", repeated(u"\"'", n)); }},
    {"a doctype of declarations",
     [](auto n) { return joined(u"<!DOCTYPE r [", numbered(u"<!ENTITY ", u" '>'>", n), u"]><r/>"); }},
});

} // namespace

std::span<const HostileShape> hostileShapes() { return shapes; }
