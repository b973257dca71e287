#include "IndentStyle.h"

#include <gtest/gtest.h>
#include <unordered_set>
#include <vector>

namespace {

constexpr int maxLines = 2000;

/// A text with one word per line; each line is indented by the given number of spaces.
std::u16string indented(const std::vector<int>& widths) {
    std::u16string text;
    for (const int width : widths) {
        text += std::u16string(static_cast<std::size_t>(width), u' ') + u"x\n";
    }
    return text;
}

IndentStyle detect(std::u16string_view text) { return IndentStyle::detect(SourceText(text), maxLines); }

} // namespace

TEST(IndentStyle, DetectsTheCommonestStep) {
    struct Row {
        std::vector<int> widths;
        IndentStyle expected;
    };
    const Row rows[] = {
        {{0, 2, 4, 2}, IndentStyle::spaces(2)},
        {{0, 4, 8, 4, 0}, IndentStyle::spaces(4)},
        {{0, 0, 0}, IndentStyle::spaces(4)},
        {{}, IndentStyle::spaces(4)},
        {{0, 2, 4, 6, 10, 14, 18}, IndentStyle::spaces(2)},
        {{0, 4, 8, 12, 14, 16, 18}, IndentStyle::spaces(2)},
        {{0, 4, 8, 12, 16, 14, 12, 10}, IndentStyle::spaces(4)},
        {{3}, IndentStyle::spaces(3)},
        {{3, 3, 3}, IndentStyle::spaces(3)},
        {{0, 8, 0}, IndentStyle::spaces(8)},
        {{0, 9, 0}, IndentStyle::spaces(4)},
        {{0, 9, 0, 9, 0, 1}, IndentStyle::spaces(1)},
        {{0, 20, 21, 41}, IndentStyle::spaces(1)},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(detect(indented(row.widths)), row.expected) << ::testing::PrintToString(row.widths);
    }
}

TEST(IndentStyle, DetectsTabsWhereTheyAreMore) {
    EXPECT_EQ(detect(u"a\n\tb\n"), IndentStyle::tabs());
    EXPECT_EQ(detect(u"\tb"), IndentStyle::tabs());
    EXPECT_EQ(detect(u"a\n\tb\n  c\n"), IndentStyle::spaces(2));
    EXPECT_EQ(detect(u"a\n\tb\n\tb\n  c\n"), IndentStyle::tabs());
    // A line that starts with a space counts as a line with spaces, one that starts with a tab as a line with
    // tabs.
    EXPECT_EQ(detect(u" \tb\n \tb\n\tc"), IndentStyle::spaces(1));
    EXPECT_EQ(detect(u"\t b\n\t b\n c"), IndentStyle::tabs());
    // Lines of only white space count too.
    EXPECT_EQ(detect(u"\t\n\t\n  a"), IndentStyle::tabs());
    EXPECT_EQ(detect(u"   \n   \n\ta"), IndentStyle::spaces(4));
}

TEST(IndentStyle, MeasuresNoStepsToBlankLines) {
    EXPECT_EQ(detect(u"a\n  b\n\n  c\n\n  d\n"), IndentStyle::spaces(2));
    EXPECT_EQ(detect(u"a\r\n  b\r\n\r\n  c\r\n"), IndentStyle::spaces(2));
    EXPECT_EQ(detect(u"   \n   \r\n     "), IndentStyle::spaces(4));
    EXPECT_EQ(detect(u"  a\n     "), IndentStyle::spaces(2));
}

TEST(IndentStyle, StepsOverLinesThatStartWithATab) {
    EXPECT_EQ(detect(u"  a\n\tb\n     c"), IndentStyle::spaces(2));
    EXPECT_EQ(detect(u"  a\n\tb\n     c\n  d"), IndentStyle::spaces(3));
}

TEST(IndentStyle, LooksAtSoManyLines) {
    const SourceText text(u"a\n  b\n\tc\n\td\n");
    EXPECT_EQ(IndentStyle::detect(text, 0), IndentStyle::spaces(4));
    EXPECT_EQ(IndentStyle::detect(text, 1), IndentStyle::spaces(4));
    EXPECT_EQ(IndentStyle::detect(text, 2), IndentStyle::spaces(2));
    EXPECT_EQ(IndentStyle::detect(text, 3), IndentStyle::spaces(2));
    EXPECT_EQ(IndentStyle::detect(text, 4), IndentStyle::tabs());
    EXPECT_EQ(IndentStyle::detect(text, maxLines), IndentStyle::tabs());
}

TEST(IndentStyle, IsWrittenAsItsUnit) {
    EXPECT_EQ(IndentStyle::spaces(3).unit(), u"   ");
    EXPECT_EQ(IndentStyle::spaces(0).unit(), u"");
    EXPECT_EQ(IndentStyle::tabs().unit(), u"\t");
    EXPECT_EQ(IndentStyle().unit(), u"    ");
}

TEST(IndentStyle, TellsSpacesFromTabs) {
    EXPECT_TRUE(IndentStyle::tabs().usesTabs());
    EXPECT_EQ(IndentStyle::tabs().width(), 0);
    EXPECT_FALSE(IndentStyle::spaces(0).usesTabs());
    EXPECT_EQ(IndentStyle::spaces(7).width(), 7);
    EXPECT_EQ(IndentStyle(), IndentStyle::spaces(4));
    const std::unordered_set<IndentStyle> styles = {IndentStyle::tabs(), IndentStyle::spaces(0),
                                                    IndentStyle(), IndentStyle::spaces(4)};
    EXPECT_EQ(styles.size(), 3U);
}
