#include "Escaping.h"

#include "GraphemeBreaker.h"
#include "Random.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

constexpr char16_t doubleQuote = u'"';
constexpr char16_t apostrophe = u'\'';

struct Row {
    std::u16string input;
    std::u16string expected;
};

void checkText(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        EXPECT_EQ(Escaping::escapeText(row.input), row.expected) << ::testing::PrintToString(row.input);
    }
}

void checkAttribute(char16_t quote, const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        EXPECT_EQ(Escaping::escapeAttribute(row.input, quote), row.expected)
            << ::testing::PrintToString(row.input);
    }
}

void checkUnescape(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        EXPECT_EQ(Escaping::unescape(row.input), row.expected) << ::testing::PrintToString(row.input);
    }
}

void checkKept(const std::vector<std::u16string>& texts) {
    for (const std::u16string& text : texts) {
        EXPECT_EQ(Escaping::unescape(text), text);
    }
}

/// Too long to be stored inside the string object itself, so that a copy would have another address.
const std::u16string longText(1000, u'a');

/// A plain model of escaping and unescaping that works character by character.
namespace Model {

using Character = std::u16string_view;

std::vector<Character> characters(std::u16string_view text) {
    const GraphemeBreaker::Characters range(text);
    return {range.begin(), range.end()};
}

std::u16string escapeAttribute(std::u16string_view value, char16_t quote) {
    std::u16string result;
    for (const Character character : characters(value)) {
        if (character == u"&") {
            result += u"&amp;";
        } else if (character == u"<") {
            result += u"&lt;";
        } else if (character == u"\"" && quote == doubleQuote) {
            result += u"&quot;";
        } else if (character == u"'" && quote == apostrophe) {
            result += u"&apos;";
        } else if (character == u"\n") {
            result += u"&#10;";
        } else if (character == u"\t") {
            result += u"&#9;";
        } else {
            result += character;
        }
    }
    return result;
}

std::u16string escapeText(std::u16string_view text) {
    std::u16string result;
    for (const Character character : characters(text)) {
        result += character == u"&"   ? Character(u"&amp;")
                  : character == u"<" ? Character(u"&lt;")
                  : character == u">" ? Character(u"&gt;")
                                      : character;
    }
    return result;
}

std::u16string decode(const std::u16string& name) {
    const std::pair<std::u16string_view, std::u16string_view> entities[] = {
        {u"amp", u"&"}, {u"lt", u"<"}, {u"gt", u">"}, {u"quot", u"\""}, {u"apos", u"'"}};
    for (const auto& [known, meaning] : entities) {
        if (name == known) {
            return std::u16string(meaning);
        }
    }
    if (!name.starts_with(u'#')) {
        return u"";
    }
    const bool isHexadecimal = name.starts_with(u"#x") || name.starts_with(u"#X");
    const std::u16string digits = name.substr(isHexadecimal ? 2 : 1);
    const bool hasSign = digits.starts_with(u'+') || digits.starts_with(u'-');
    const std::u16string_view allowed = isHexadecimal ? u"0123456789abcdefABCDEF" : u"0123456789";
    if (digits.size() == (hasSign ? 1 : 0) ||
        digits.find_first_not_of(allowed, hasSign ? 1 : 0) != std::u16string::npos) {
        return u"";
    }
    const long long value =
        std::stoll(std::string(digits.begin(), digits.end()), nullptr, isHexadecimal ? 16 : 10);
    std::u16string result;
    if (0 <= value && value <= 0x10FFFF && (value < 0xD800 || 0xDFFF < value)) {
        UTF16::append(result, static_cast<char32_t>(value));
    }
    return result;
}

std::u16string unescape(std::u16string_view text) {
    const std::vector<Character> all = characters(text);
    std::u16string result;
    for (std::size_t at = 0; at < all.size(); ++at) {
        std::u16string decoded;
        std::size_t semicolon = at;
        if (all[at] == u"&") {
            const std::size_t spanEnd = std::min(at + 12, all.size());
            std::u16string name;
            for (semicolon = at + 1; semicolon < spanEnd && all[semicolon] != u";"; ++semicolon) {
                name += all[semicolon];
            }
            decoded = semicolon < spanEnd ? decode(name) : u"";
        }
        result += decoded.empty() ? all[at] : Character(decoded);
        at = decoded.empty() ? at : semicolon;
    }
    return result;
}

} // namespace Model

/// Markup, parts of references, and scalars that combine with their neighbours in every way.
constexpr char32_t alphabet[] = {U'&',  U'&',  U'&',    U'<',    U'>',   U'"',   U'\'',  U'\n',
                                 U'\r', U'\t', U';',    U';',    U'#',   U'x',   U'0',   U'1',
                                 U'a',  U'm',  U'p',    U'l',    U't',   U' ',   0x301,  0x200D,
                                 0x903, 0x600, 0x1F600, 0x1F1EA, 0xD83D, 0xDE00, 0x110BD};

std::u16string withReferences(Random& random) {
    static const std::u16string_view pieces[] = {
        u"&amp;", u"&lt;",     u"&#65;", u"&#x1F600;", u"&#x0001F600;", u"&#x00001F600;", u"&#-0;", u"&#+9;",
        u"&quot", u"&#xD800;", u"&;",    u"&apos;",    u"&AMP;",        u"&#x110000;",    u"x"};
    std::u16string text;
    for (std::size_t left = random.below(8); left > 0; --left) {
        text += random.text(alphabet, 3);
        text += pieces[random.below(std::size(pieces))];
    }
    return text;
}

/// Whether an LF or tab has a neighbour that would combine with the reference that replaces it.
bool hasJoiningNeighbour(std::u16string_view value) {
    using UnicodeProperties::GraphemeBreak;
    for (std::size_t at = 0; at < value.size(); ++at) {
        if (value[at] != u'\n' && value[at] != u'\t') {
            continue;
        }
        // A letter replaces the control: a neighbour that combines with it would also combine with `&` and
        // `;`.
        std::u16string probe(value);
        probe[at] = u'a';
        if (!GraphemeBreaker::isBoundary(probe, at) || !GraphemeBreaker::isBoundary(probe, at + 1)) {
            return true;
        }
    }
    return false;
}

} // namespace

TEST(Escaping, EscapesText) {
    checkText({
        {u"a < b && c > d", u"a &lt; b &amp;&amp; c &gt; d"},
        {u"", u""},
        {u"plain", u"plain"},
        {u"<", u"&lt;"},
        {u">", u"&gt;"},
        {u"&", u"&amp;"},
        {u"&amp;", u"&amp;amp;"},
        {u"\"'\n\t\r\n<", u"\"'\n\t\r\n&lt;"},
        {u"\U0001F600<\U0001F600", u"\U0001F600&lt;\U0001F600"},
    });
}

TEST(Escaping, GivesTextWithoutMarkupBackUncopied) {
    std::u16string text = longText;
    const char16_t* const storage = text.data();
    const std::u16string escaped = Escaping::escapeText(std::move(text));
    EXPECT_EQ(escaped.data(), storage);
    EXPECT_EQ(escaped, longText);
}

TEST(Escaping, ReservesRoomForTheResultOnce) {
    EXPECT_GE(Escaping::escapeText(longText + u"<").capacity(), longText.size() + 9);
    EXPECT_GE(Escaping::escapeAttribute(longText, doubleQuote).capacity(), longText.size() + 8);
}

TEST(Escaping, EscapesAttributes) {
    checkAttribute(doubleQuote, {
                                    {u"say \"hi\" it's", u"say &quot;hi&quot; it's"},
                                    {u"a > b", u"a > b"},
                                    {u"a\nb\tc", u"a&#10;b&#9;c"},
                                    {u"a\r\nb", u"a\r\nb"},
                                    {u"\n\r\r\n\n", u"&#10;\r\r\n&#10;"},
                                    {u"\r", u"\r"},
                                    {u"", u""},
                                    {u"<&>", u"&lt;&amp;>"},
                                });
    checkAttribute(apostrophe, {
                                   {u"say \"hi\" it's", u"say \"hi\" it&apos;s"},
                                   {u"'\"'", u"&apos;\"&apos;"},
                               });
    checkAttribute(0, {{u"\"'&", u"\"'&amp;"}});
}

TEST(Escaping, ComparesWholeCharacters) {
    checkText({
        {u"<\u0338 <", u"<\u0338 &lt;"},
        {u"&\u0301", u"&\u0301"},
        {u">\u200D", u">\u200D"},
        {u">\u0903", u">\u0903"},
        {u"\u0600<", u"\u0600<"},
        {u"\U000110BD<<", u"\U000110BD<&lt;"},
        {u"\u0600\n<", u"\u0600\n&lt;"},
        {{0xD83D, u'<', 0xDE00}, {0xD83D, u'&', u'l', u't', u';', 0xDE00}},
    });
    checkAttribute(doubleQuote, {
                                    {u"\"\u0301\"", u"\"\u0301&quot;"},
                                    {u"\n\u0301\t\u0301", u"&#10;\u0301&#9;\u0301"},
                                    {u"\u0600\n", u"\u0600&#10;"},
                                });
    checkUnescape({
        {u"&lt;\u0338", u"&lt;\u0338"},
        {u"&\u0301lt;&lt;", u"&\u0301lt;<"},
        {u"\u0600&lt;", u"\u0600&lt;"},
        {u"&l\u0301t;", u"&l\u0301t;"},
        {u"&lt;\u0600&lt;&lt;", u"<\u0600&lt;<"},
        {u"&lt;;\u0301", u"<;\u0301"},
        {u"\U0001F600&lt;\U0001F600", u"\U0001F600<\U0001F600"},
    });
}

TEST(Escaping, UnescapesOneLevel) {
    checkUnescape({
        {u"&lt;a&gt; &amp;amp;", u"<a> &amp;"},
        {u"&#65;&#x42;&#X43;", u"ABC"},
        {u"&quot;&apos;", u"\"'"},
        {u"&amp;lt;", u"&lt;"},
        {u"&&amp;&", u"&&&"},
        {u"&#38;#38;", u"&#38;"},
        {u"x&lt;", u"x<"},
        {u"&lt;x", u"<x"},
    });
}

TEST(Escaping, KeepsWhatIsNoReference) {
    checkKept({
        u"&#x;",        u"&#;",        u"&#xD800;",  u"&#x110000;", u"&nbsp;",       u"&copy;",
        u"a & b; c",    u"a &",        u"&",         u"&;",         u"&AMP;",        u"&Lt;",
        u"& lt;",       u"&lt ;",      u"&lt",       u"&#55296;",   u"&#57343;",     u"&#xDFFF;",
        u"&#xG;",       u"&#1a;",      u"&# 65;",    u"&#65 ;",     u"&#x 41;",      u"&x41;",
        u"&#0x41;",     u"&#+;",       u"&#-;",      u"&#x+;",      u"&#-1;",        u"&#x-1;",
        u"&#++1;",      u"&#1114112;", u"&#\uFF11;", u"&#xx41;",    u"&ampx;",       u"&#X-41;",
        u"&#-00001;",   u"&apos\n;",   u"&\r\nlt;",  u"",           u"&#999999999;", u"&#xFFFFFFFF;",
        u"&#x1000041;",
    });
}

TEST(Escaping, ReadsTheNumbersOfReferences) {
    checkUnescape({
        {u"&#0;", std::u16string(1, u'\0')},
        {u"&#x0;", std::u16string(1, u'\0')},
        {u"&#-0;", std::u16string(1, u'\0')},
        {u"&#x-000;", std::u16string(1, u'\0')},
        {u"&#+65;", u"A"},
        {u"&#x+41;", u"A"},
        {u"&#xfF;&#XFf;", u"\u00FF\u00FF"},
        {u"&#x10FFFF;", u"\U0010FFFF"},
        {u"&#1114111;", u"\U0010FFFF"},
        {u"&#xD7FF;&#xE000;", u"\uD7FF\uE000"},
        {u"&#55295;&#57344;", u"\uD7FF\uE000"},
        {u"&#65535;&#65536;", u"\uFFFF\U00010000"},
        {u"&#128512;", u"\U0001F600"},
    });
}

TEST(Escaping, LooksTwelveCharactersAhead) {
    checkUnescape({
        {u"&#x0001F600;", u"\U0001F600"},
        {u"&#x00001F600;", u"&#x00001F600;"},
        {u"&#000000065;", u"A"},
        {u"&#0000000065;", u"&#0000000065;"},
        {u"&#x00&#65;", u"&#x00A"},
        {u"&#x0001F60&#65;;", u"&#x0001F60A;"},
    });
}

TEST(Escaping, UnescapesWithoutCopying) {
    for (const char16_t* const reference : {u"", u"&nbsp;", u"&", u"&lt;", u"&#x1F600;"}) {
        std::u16string text = longText + reference + longText;
        const char16_t* const storage = text.data();
        EXPECT_EQ(Escaping::unescape(std::move(text)).data(), storage);
    }
}

TEST(Escaping, UnescapesHugeCharactersAndEndlessAmpersands) {
    const std::u16string ampersands(1'000'000, u'&');
    EXPECT_EQ(Escaping::unescape(ampersands), ampersands);
    const std::u16string huge = u"a" + std::u16string(1'000'000, u'\u0301');
    const std::u16string text = u"&" + huge + u"&" + huge + u";&lt;" + huge;
    EXPECT_EQ(Escaping::unescape(text), u"&" + huge + u"&" + huge + u";<" + huge);
}

TEST(Escaping, AgreesWithItsDefinition) {
    Random random;
    for (int round = 0; round < 20'000; ++round) {
        const std::u16string text = random.below(2) == 0 ? random.text(alphabet, 30) : withReferences(random);
        const char16_t quote = random.below(2) == 0 ? doubleQuote : apostrophe;
        ASSERT_EQ(Escaping::escapeText(text), Model::escapeText(text)) << ::testing::PrintToString(text);
        ASSERT_EQ(Escaping::escapeAttribute(text, quote), Model::escapeAttribute(text, quote))
            << ::testing::PrintToString(text);
        ASSERT_EQ(Escaping::unescape(text), Model::unescape(text)) << ::testing::PrintToString(text);
    }
}

TEST(Escaping, ReadsBackWhatItEscapes) {
    Random random;
    for (int round = 0; round < 20'000; ++round) {
        const std::u16string text = random.below(2) == 0 ? random.text(alphabet, 30) : withReferences(random);
        const char16_t quote = random.below(2) == 0 ? doubleQuote : apostrophe;
        ASSERT_EQ(Escaping::unescape(Escaping::escapeText(text)), text) << ::testing::PrintToString(text);
        if (!hasJoiningNeighbour(text)) {
            ASSERT_EQ(Escaping::unescape(Escaping::escapeAttribute(text, quote)), text)
                << ::testing::PrintToString(text);
        }
    }
}

TEST(Escaping, LeavesReferencesThatTheirNeighboursJoin) {
    EXPECT_EQ(Escaping::unescape(Escaping::escapeAttribute(u"\n\u0301", doubleQuote)), u"&#10;\u0301");
    EXPECT_EQ(Escaping::unescape(Escaping::escapeAttribute(u"\u0600\t", doubleQuote)), u"\u0600&#9;");
}
