#include "SourceRange.h"

#include <gtest/gtest.h>
#include <unordered_set>

namespace {

constexpr std::int64_t furthest = 4294967295;

} // namespace

TEST(SourceRange, HoldsItsBounds) {
    constexpr SourceRange range(3, 7);
    EXPECT_EQ(range.lower, 3U);
    EXPECT_EQ(range.upper, 7U);
    EXPECT_EQ(range.length(), 4U);
    EXPECT_FALSE(range.isEmpty());
    EXPECT_EQ(SourceRange(), SourceRange(0, 0));
    EXPECT_EQ(SourceRange::unchecked(3, 7), range);
}

TEST(SourceRange, ReachesAsFarAsOffsetsDo) {
    constexpr SourceRange range(0, furthest);
    EXPECT_EQ(range.length(), furthest);
    EXPECT_EQ(SourceRange::empty(furthest).lower, furthest);
}

TEST(SourceRange, IsMadeFromAnOffsetAndALength) {
    EXPECT_EQ(SourceRange::at(3, 4), SourceRange(3, 7));
    EXPECT_EQ(SourceRange::at(3, 0), SourceRange::empty(3));
    EXPECT_EQ(SourceRange::empty(3), SourceRange(3, 3));
    EXPECT_TRUE(SourceRange::empty(3).isEmpty());
    EXPECT_EQ(SourceRange::empty(3).length(), 0U);
}

TEST(SourceRange, ContainsItsLowerBoundButNotItsUpper) {
    constexpr SourceRange range(3, 5);
    EXPECT_FALSE(range.contains(2));
    EXPECT_TRUE(range.contains(3));
    EXPECT_TRUE(range.contains(4));
    EXPECT_FALSE(range.contains(5));
    EXPECT_FALSE(SourceRange::empty(3).contains(3));
}

TEST(SourceRange, ShiftsBothBounds) {
    EXPECT_EQ(SourceRange(3, 7).shifted(10), SourceRange(13, 17));
    EXPECT_EQ(SourceRange(3, 7).shifted(0), SourceRange(3, 7));
    EXPECT_EQ(SourceRange(3, 7).shifted(-3), SourceRange(0, 4));
    EXPECT_EQ(SourceRange(3, 7).shifted(furthest - 7).upper, furthest);
}

TEST(SourceRange, DescribesItself) {
    EXPECT_EQ(SourceRange(3, 7).description(), "3..<7");
    EXPECT_EQ(SourceRange().description(), "0..<0");
    EXPECT_EQ(SourceRange(0, furthest).description(), "0..<4294967295");
}

TEST(SourceRange, ComparesAndHashesByItsBounds) {
    EXPECT_NE(SourceRange(3, 7), SourceRange(3, 8));
    EXPECT_NE(SourceRange(3, 7), SourceRange(2, 7));
    const std::unordered_set<SourceRange> ranges = {{3, 7}, {3, 7}, {7, 7}, {3, 3}};
    EXPECT_EQ(ranges.size(), 3U);
    EXPECT_TRUE(ranges.contains(SourceRange::at(3, 4)));
}

TEST(SourceRangeDeathTest, StopsAtBoundsThatMakeNoRange) {
    const char* const message = "0 <= lower <= upper <= 4294967295";
    EXPECT_DEATH(SourceRange(-1, 3), message);
    EXPECT_DEATH(SourceRange(-2, -1), message);
    EXPECT_DEATH(SourceRange(4, 3), message);
    EXPECT_DEATH(SourceRange(0, furthest + 1), message);
    EXPECT_DEATH(SourceRange::empty(-1), message);
    EXPECT_DEATH(SourceRange::at(3, -1), message);
    EXPECT_DEATH(SourceRange(3, 7).shifted(-4), message);
    EXPECT_DEATH(SourceRange(3, 7).shifted(furthest), message);
}
