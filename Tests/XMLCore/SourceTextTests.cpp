#include "SourceText.h"

#include "Random.h"
#include "UnitScan.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

constexpr char32_t alphabet[] = {U'a', U'\r', U'\n', U'\n', U' ', U'\t'};

/// A plain model of `lineEnd`, which searches unit by unit.
std::size_t plainLineEnd(std::u16string_view text, std::size_t at) {
    std::size_t end = std::min(at, text.size());
    const std::size_t from = end;
    while (end < text.size() && text[end] != u'\n') {
        ++end;
    }
    if (end == text.size()) {
        return end > 0 && text[end - 1] == u'\r' ? end - 1 : end;
    }
    return end > from && text[end - 1] == u'\r' ? end - 1 : end;
}

std::size_t plainLineStart(std::u16string_view text, std::size_t at) {
    std::size_t start = std::min(at, text.size());
    while (start > 0 && text[start - 1] != u'\n') {
        --start;
    }
    return start;
}

} // namespace

TEST(SourceText, KeepsEveryUnitAsItIs) {
    const std::u16string units = {u'a', 0, u'\r', 0xD83D, 0x2028, 0xDE00, 0xFFFF};
    const SourceText text(units);
    EXPECT_EQ(text.units(), units);
    EXPECT_EQ(text.count(), 7U);
    EXPECT_EQ(text.fullRange(), SourceRange(0, 7));
    EXPECT_EQ(text.units({2, 4}), (std::u16string{u'\r', 0xD83D}));
}

TEST(SourceText, OfNothingIsEmpty) {
    for (const SourceText& text : {SourceText(), SourceText(u"")}) {
        EXPECT_EQ(text.count(), 0U);
        EXPECT_EQ(text.fullRange(), SourceRange());
        EXPECT_EQ(text.string(), u"");
        EXPECT_TRUE(text.isWhitespace({0, 0}));
        EXPECT_EQ(text.lineStart(0), 0U);
        EXPECT_EQ(text.lineEnd(0), 0U);
        EXPECT_EQ(text.indentation(0), u"");
        EXPECT_EQ(text.lineEnding(), u"\n");
    }
    EXPECT_EQ(SourceText(), SourceText(u""));
}

TEST(SourceText, SharesItsUnitsWithItsCopies) {
    const SourceText text(u"abc");
    const SourceText copy = text;
    EXPECT_EQ(copy.units().data(), text.units().data());
    EXPECT_EQ(text.storage().get(), text.units().data());
}

TEST(SourceText, TakesTheFirstUnitsOfSharedStorage) {
    const std::shared_ptr<const char16_t[]> storage(new char16_t[]{u'a', u'b', u'c'});
    const SourceText text(storage, 2);
    EXPECT_EQ(text.units(), u"ab");
    EXPECT_EQ(text.units().data(), storage.get());
}

TEST(SourceText, ReplacesLoneSurrogatesInItsStrings) {
    struct Row {
        std::u16string units;
        std::u16string expected;
    };
    const Row rows[] = {
        {u"abc", u"abc"},
        {u"\U0001F600", u"\U0001F600"},
        {{0xD83D}, u"\uFFFD"},
        {{0xDE00}, u"\uFFFD"},
        {{0xDE00, 0xD83D}, u"\uFFFD\uFFFD"},
        {{0xD83D, 0xD83D, 0xDE00}, u"\uFFFD\U0001F600"},
        {{0xD83D, 0xDE00, 0xDE00}, u"\U0001F600\uFFFD"},
        {{u'a', 0xD83D, u'b'}, u"a\uFFFDb"},
        {{u'a', 0, u'b'}, {u'a', 0, u'b'}},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(SourceText(row.units).string(), row.expected);
        EXPECT_EQ(repaired(row.units), row.expected);
    }
    // If a range cuts a surrogate pair, its half is a lone surrogate.
    const SourceText text(u"a\U0001F600b");
    EXPECT_EQ(text.string({0, 2}), u"a\uFFFD");
    EXPECT_EQ(text.string({2, 4}), u"\uFFFDb");
    EXPECT_EQ(text.string({1, 3}), u"\U0001F600");
    EXPECT_EQ(text.string({1, 1}), u"");
}

TEST(SourceText, KnowsTheWhitespaceOfXML) {
    const SourceText text(u" \t\r\n\u00A0x");
    EXPECT_TRUE(text.isWhitespace({0, 4}));
    EXPECT_TRUE(text.isWhitespace({4, 4}));
    EXPECT_TRUE(text.isWhitespace({6, 6}));
    EXPECT_FALSE(text.isWhitespace({0, 5}));
    EXPECT_FALSE(text.isWhitespace({5, 6}));
    for (int unit = 0; unit <= 0xFFFF; ++unit) {
        const auto value = static_cast<char16_t>(unit);
        const bool expected = unit == ' ' || unit == '\t' || unit == '\r' || unit == '\n';
        ASSERT_EQ(UnitScan::isWhitespace(value), expected);
        ASSERT_EQ(SourceText(std::u16string(1, value)).isWhitespace({0, 1}), expected);
    }
}

TEST(SourceText, FindsPrefixesAtOffsets) {
    const SourceText text(u"<!-- x");
    EXPECT_TRUE(text.hasPrefix(u"<!--", 0));
    EXPECT_TRUE(text.hasPrefix(u" x", 4));
    EXPECT_TRUE(text.hasPrefix(u"", 0));
    EXPECT_TRUE(text.hasPrefix(u"", 6));
    EXPECT_FALSE(text.hasPrefix(u"<!--", 1));
    EXPECT_FALSE(text.hasPrefix(u" xy", 4));
    EXPECT_FALSE(text.hasPrefix(u"x", 6));
    EXPECT_FALSE(text.hasPrefix(u"x", 4294967295));
    EXPECT_FALSE(text.hasPrefix(u"", 7));
}

TEST(SourceText, ComparesTheUnitsOfRanges) {
    const SourceText text(u"ab ab abc");
    EXPECT_TRUE(text.equals({0, 2}, SourceRange(3, 5)));
    EXPECT_TRUE(text.equals({0, 2}, SourceRange(0, 2)));
    EXPECT_TRUE(text.equals({1, 1}, SourceRange(9, 9)));
    EXPECT_FALSE(text.equals({0, 2}, SourceRange(6, 9)));
    EXPECT_FALSE(text.equals({0, 2}, SourceRange(1, 3)));
    EXPECT_TRUE(text.equals({6, 9}, u"abc"));
    EXPECT_TRUE(text.equals({6, 6}, u""));
    EXPECT_FALSE(text.equals({6, 9}, u"ab"));
    EXPECT_FALSE(text.equals({6, 9}, u"abd"));
}

TEST(SourceText, EqualsTextsOfTheSameUnits) {
    EXPECT_EQ(SourceText(u"abc"), SourceText(u"abc"));
    EXPECT_NE(SourceText(u"abc"), SourceText(u"abd"));
    EXPECT_NE(SourceText(u"abc"), SourceText(u"ab"));
}

TEST(SourceText, FindsTheEndsOfLines) {
    struct Row {
        std::u16string text;
        Offset at;
        Offset start;
        Offset end;
    };
    const Row rows[] = {
        {u"ab\ncd", 0, 0, 2},   {u"ab\ncd", 2, 0, 2},   {u"ab\ncd", 3, 3, 5},   {u"ab\ncd", 5, 3, 5},
        {u"ab\ncd", 99, 3, 5},  {u"ab\r\ncd", 0, 0, 2}, {u"ab\r\ncd", 2, 0, 2}, {u"ab\r\ncd", 3, 0, 3},
        {u"ab\r\ncd", 4, 4, 6}, {u"ab\r", 0, 0, 2},     {u"ab\r", 3, 0, 2},     {u"ab\r", 99, 0, 2},
        {u"\r", 0, 0, 0},       {u"\r", 1, 0, 0},       {u"a\rb\n", 0, 0, 3},   {u"\n\n", 0, 0, 0},
        {u"\n\n", 1, 1, 1},     {u"\n\n", 2, 2, 2},     {u"\n\r", 1, 1, 1},     {u"a\n\r\n", 2, 2, 2},
    };
    for (const Row& row : rows) {
        const SourceText text(row.text);
        EXPECT_EQ(text.lineStart(row.at), row.start) << ::testing::PrintToString(row.text) << row.at;
        EXPECT_EQ(text.lineEnd(row.at), row.end) << ::testing::PrintToString(row.text) << row.at;
    }
}

TEST(SourceText, FindsLinesAsAPlainLoopDoes) {
    Random random;
    for (int round = 0; round < 2000; ++round) {
        const std::u16string units = random.text(alphabet, 40);
        const SourceText text(units);
        for (Offset at = 0; at <= units.size() + 2; ++at) {
            ASSERT_EQ(text.lineStart(at), plainLineStart(units, at)) << ::testing::PrintToString(units) << at;
            ASSERT_EQ(text.lineEnd(at), plainLineEnd(units, at)) << ::testing::PrintToString(units) << at;
        }
    }
}

TEST(SourceText, FindsTheStartsOfLongLines) {
    constexpr std::size_t length = 300;
    for (std::size_t lineFeed = 0; lineFeed < length; ++lineFeed) {
        std::u16string units(length, u'x');
        units[lineFeed] = u'\n';
        const SourceText text(units);
        for (Offset at = 0; at <= length; ++at) {
            ASSERT_EQ(text.lineStart(at), plainLineStart(units, at)) << lineFeed << ' ' << at;
        }
    }
}

TEST(SourceText, ReadsTheIndentationOfLines) {
    const SourceText text(u"a\n \t b\n\t\r\n  ");
    EXPECT_EQ(text.indentation(0), u"");
    EXPECT_EQ(text.indentation(1), u"");
    EXPECT_EQ(text.indentation(2), u" \t ");
    EXPECT_EQ(text.indentation(5), u" \t ");
    EXPECT_EQ(text.indentation(6), u" \t ");
    EXPECT_EQ(text.indentation(7), u"\t");
    EXPECT_EQ(text.indentation(10), u"  ");
    EXPECT_EQ(text.indentation(12), u"  ");
    EXPECT_EQ(text.indentation(99), u"  ");
}

TEST(SourceText, TakesItsLineEndingFromTheFirstLineFeed) {
    struct Row {
        std::u16string_view text;
        std::u16string_view expected;
    };
    const Row rows[] = {
        {u"a", u"\n"},           {u"a\r", u"\n"},    {u"a\nb\r\n", u"\n"}, {u"a\r\nb\n", u"\r\n"},
        {u"a\rb\nc\r\n", u"\n"}, {u"\r\n", u"\r\n"}, {u"\n", u"\n"},       {u"\n\r\n", u"\n"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(SourceText(row.text).lineEnding(), row.expected) << ::testing::PrintToString(row.text);
    }
}

TEST(SourceTextDeathTest, StopsAtRangesBeyondTheText) {
    const SourceText text(u"abc");
    const char* const message = "inside the text";
    EXPECT_DEATH(text.units({0, 4}), message);
    EXPECT_DEATH(text.string({3, 4}), message);
    EXPECT_DEATH(text.isWhitespace({4, 4}), message);
    EXPECT_DEATH(text.equals({0, 4}, SourceRange(0, 1)), message);
    EXPECT_DEATH(text.equals({0, 1}, SourceRange(0, 4)), message);
    EXPECT_DEATH(text.equals({0, 4}, u"abc"), message);
}

TEST(SourceTextDeathTest, StopsAtMoreUnitsThanOffsetsReach) {
    constexpr std::size_t tooMany = 4294967296;
    const char16_t unit = u'a';
    EXPECT_DEATH(SourceText(std::u16string_view(&unit, tooMany)), "at most 4294967295 units");
    EXPECT_DEATH(SourceText(std::shared_ptr<const char16_t[]>(), tooMany), "at most 4294967295 units");
}
