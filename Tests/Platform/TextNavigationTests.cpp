#include "TextNavigation.h"

#include <gtest/gtest.h>

namespace {

/// A text with the caret written into it as `|`.
struct Written {
    Rope text;
    Offset caret = 0;

    explicit Written(std::u16string units) {
        caret = static_cast<Offset>(units.find(u'|'));
        units.erase(caret, 1);
        text = Rope(units);
    }
};

std::u16string show(const Rope& text, Offset caret) {
    std::u16string units = text.units(text.fullRange());
    return units.insert(caret, 1, u'|');
}

using Move = Offset (*)(Offset, const Rope&);

void check(Move move, const std::u16string& from, const std::u16string& to) {
    const Written written(from);
    EXPECT_EQ(show(written.text, move(written.caret, written.text)), to);
}

} // namespace

TEST(TextNavigation, MovesByCharacters) {
    const std::u16string texts[] = {u"a|ñ",     u"a|😀b", u"a|e\u0301b", u"a|👩\u200D💻b",
                                    u"a|\r\nb", u"a|\rb", u"a|🇪🇸b"};
    const std::u16string after[] = {u"añ|",     u"a😀|b", u"ae\u0301|b", u"a👩\u200D💻|b",
                                    u"a\r\n|b", u"a\r|b", u"a🇪🇸|b"};
    for (std::size_t row = 0; row < std::size(texts); ++row) {
        check(TextNavigation::nextCharacter, texts[row], after[row]);
        check(TextNavigation::previousCharacter, after[row], texts[row]);
    }
}

TEST(TextNavigation, StaysAtTheEndsOfTheText) {
    check(TextNavigation::nextCharacter, u"ab|", u"ab|");
    check(TextNavigation::previousCharacter, u"|ab", u"|ab");
    check(TextNavigation::nextWord, u"ab|", u"ab|");
    check(TextNavigation::previousWord, u"|ab", u"|ab");
    check(TextNavigation::nextCharacter, u"|", u"|");
    check(TextNavigation::previousCharacter, u"|", u"|");
}

TEST(TextNavigation, FindsTheStartOfACharacter) {
    check(TextNavigation::characterStart, u"a\xD83D|\xDE00", u"a|\xD83D\xDE00");
    check(TextNavigation::characterStart, u"ae|\u0301", u"a|e\u0301");
    check(TextNavigation::characterStart, u"a|b", u"a|b");
    check(TextNavigation::characterStart, u"a\r|\n", u"a|\r\n");
}

TEST(TextNavigation, TakesALoneSurrogateAsACharacter) {
    const Rope text(std::u16string{u'a', u'\xD83D', u'b', u'\xDE00'});
    EXPECT_EQ(TextNavigation::nextCharacter(1, text), 2U);
    EXPECT_EQ(TextNavigation::nextCharacter(3, text), 4U);
    EXPECT_EQ(TextNavigation::previousCharacter(4, text), 3U);
}

TEST(TextNavigation, MovesByWords) {
    const struct {
        std::u16string from, next, previous;
    } rows[] = {
        {u"uno |dos tres", u"uno dos| tres", u"|uno dos tres"},
        {u"uno| dos", u"uno dos|", u"|uno dos"},
        {u"<libro| isbn", u"<libro isbn|", u"<|libro isbn"},
        {u"<|libro>", u"<libro|>", u"|<libro>"},
        {u"a=\"|ñandú\"", u"a=\"ñandú|\"", u"a|=\"ñandú\""},
        {u"uno  |\n  dos", u"uno  \n|  dos", u"|uno  \n  dos"},
        {u"uno\r\n|dos", u"uno\r\ndos|", u"uno|\r\ndos"},
        {u"uno|\r\ndos", u"uno\r\n|dos", u"|uno\r\ndos"},
    };
    for (const auto& row : rows) {
        check(TextNavigation::nextWord, row.from, row.next);
        check(TextNavigation::previousWord, row.from, row.previous);
    }
}

TEST(TextNavigation, FindsTheWordAround) {
    const struct {
        std::u16string at, word;
    } rows[] = {
        {u"<li|bro>", u"libro"}, {u"|<libro>", u"<"},    {u"uno |dos", u"dos"}, {u"uno|  dos", u"  "},
        {u"uno|", u"uno"},       {u"uno|\ndos", u"uno"}, {u"|", u""},           {u"uno\n|dos", u"dos"},
    };
    for (const auto& row : rows) {
        const Written written(row.at);
        EXPECT_EQ(written.text.units(TextNavigation::word(written.caret, written.text)), row.word);
    }
}

TEST(TextNavigation, EndsALineBeforeItsLineBreak) {
    const Rope text(u"uno\r\ndos\ntres\r");
    EXPECT_EQ(TextNavigation::lineEnd(0, text), 3U);
    EXPECT_EQ(TextNavigation::lineEnd(1, text), 8U);
    EXPECT_EQ(TextNavigation::lineEnd(2, text), text.size());
    EXPECT_EQ(TextNavigation::lineEnd(0, Rope()), 0U);
}

TEST(TextNavigation, TakesTheLineEndingOfTheFirstLine) {
    EXPECT_EQ(TextNavigation::lineEnding(Rope(u"a\r\nb\n")), u"\r\n");
    EXPECT_EQ(TextNavigation::lineEnding(Rope(u"a\nb\r\n")), u"\n");
    EXPECT_EQ(TextNavigation::lineEnding(Rope(u"a\r")), u"\n");
    EXPECT_EQ(TextNavigation::lineEnding(Rope()), u"\n");
}
TEST(TextNavigation, GoesHomeToTheFirstCharacterAndThenToTheStart) {
    const Rope text(u"a\n  \tb c\n   \nd");
    const struct {
        Offset caret, home;
    } rows[] = {{0, 0}, {1, 0}, {2, 5}, {3, 5}, {5, 2}, {8, 5}, {9, 12}, {12, 9}, {13, 13}, {14, 13}};
    for (const auto& row : rows) {
        EXPECT_EQ(TextNavigation::lineHome(row.caret, text), row.home) << row.caret;
    }
    const Rope blanks(std::u16string(100'000, u' '));
    EXPECT_EQ(TextNavigation::lineHome(50'000, blanks), 0U);
}

TEST(TextNavigation, TakesNamesForPartialWords) {
    const Rope text(u"<xs:ele-1.b a=\"");
    EXPECT_EQ(TextNavigation::partialWord(11, text), SourceRange(1, 11));
    EXPECT_EQ(TextNavigation::partialWord(1, text), SourceRange(1, 1));
    EXPECT_EQ(TextNavigation::partialWord(13, text), SourceRange(12, 13));
    EXPECT_EQ(TextNavigation::partialWord(15, text), SourceRange(15, 15));
}
