#include "LineIndex.h"

#include "Random.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>

namespace {

void check(std::u16string_view text, const std::vector<Offset>& starts) {
    const LineIndex index{SourceText(text)};
    EXPECT_EQ(index.starts, starts) << ::testing::PrintToString(text);
    EXPECT_EQ(index.lineCount(), starts.size());
}

} // namespace

TEST(LineIndex, StartsALineAfterEveryLineFeed) {
    check(u"", {0});
    check(u"a", {0});
    check(u"a\n", {0, 2});
    check(u"a\r\nb", {0, 3});
    check(u"a\rb", {0});
    check(u"\r", {0});
    check(u"\n", {0, 1});
    check(u"\n\n\n", {0, 1, 2, 3});
    check(u"a\u2028b\u0085c\u2029", {0});
    check(u"01234567\n9", {0, 9});
    check(u"0123456\n\n9", {0, 8, 9});
}

TEST(LineIndex, OfTheEmptyTextHasOneLine) {
    EXPECT_EQ(LineIndex(), LineIndex(SourceText()));
    EXPECT_EQ(LineIndex().lineCount(), 1U);
    EXPECT_EQ(LineIndex().line(0), 0U);
    EXPECT_EQ(LineIndex().line(10), 0U);
    EXPECT_EQ(LineIndex().start(0), 0U);
}

TEST(LineIndex, FindsTheLineOfAnOffset) {
    const LineIndex index{SourceText(u"ab\n\ncd\n")};
    const std::pair<std::int64_t, std::size_t> rows[] = {
        {-5, 0},
        {0, 0},
        {2, 0},
        {3, 1},
        {4, 2},
        {5, 2},
        {6, 2},
        {7, 3},
        {8, 3},
        {1'000'000, 3},
        {4294967295, 3},
        {4294967296, 3},
        {std::numeric_limits<std::int64_t>::max(), 3},
        {std::numeric_limits<std::int64_t>::min(), 0},
    };
    for (const auto& [offset, line] : rows) {
        EXPECT_EQ(index.line(offset), line) << offset;
    }
}

TEST(LineIndex, FindsTheStartOfALine) {
    const LineIndex index{SourceText(u"ab\n\ncd\n")};
    const std::pair<std::int64_t, Offset> rows[] = {
        {-1, 0}, {0, 0}, {1, 3}, {2, 4}, {3, 7}, {4, 7}, {std::numeric_limits<std::int64_t>::max(), 7}};
    for (const auto& [line, start] : rows) {
        EXPECT_EQ(index.start(line), start) << line;
    }
}

TEST(LineIndex, ReservesForLinesOfUsualLength) {
    const LineIndex index{SourceText(std::u16string(4000, u'a'))};
    EXPECT_EQ(index.starts.capacity(), 101U);
}

TEST(LineIndex, AgreesWithAPlainLoop) {
    constexpr char32_t alphabet[] = {U'a', U'b', U'c', U'\r', U'\n'};
    Random random;
    for (int round = 0; round < 2000; ++round) {
        const std::u16string text = random.text(alphabet, 60);
        const LineIndex index{SourceText(text)};
        std::vector<Offset> starts = {0};
        for (Offset at = 0; at < text.size(); ++at) {
            ASSERT_EQ(index.line(at), starts.size() - 1) << ::testing::PrintToString(text) << at;
            if (text[at] == u'\n') {
                starts.push_back(at + 1);
            }
        }
        ASSERT_EQ(index.starts, starts) << ::testing::PrintToString(text);
    }
}
