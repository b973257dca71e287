#include "LineSegments.h"

#include "GraphemeBreaker.h"
#include "TextSamples.h"

#include <QFontDatabase>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

CharacterAdvances& advances() {
    static CharacterAdvances advances(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    return advances;
}

LineSegments segmentsOf(std::u16string_view units) { return {Rope(units), advances()}; }

void build(LineSegments& segments) {
    while (segments.buildMore()) {
    }
}

/// Looks at the whole line; the segments touch, and end between characters.
void check(LineSegments& segments) {
    const std::u16string units = segments.line().units(segments.line().fullRange());
    Offset at = 0;
    double left = 0;
    while (at < units.size()) {
        const auto segment = segments.segmentHolding(at);
        ASSERT_EQ(segment.range.lower, at);
        ASSERT_GT(segment.range.upper, at);
        ASSERT_NEAR(segment.left, left, 0.01);
        ASSERT_TRUE(GraphemeBreaker::isBoundary(units, segment.range.upper)) << segment.range.upper;
        at = segment.range.upper;
        left = segment.right();
    }
    ASSERT_EQ(at, units.size());
    ASSERT_NEAR(left, segments.width(), 0.01);
}

} // namespace

TEST(LineSegments, CountsColumnsInPlainText) {
    constexpr Offset length = 10'000'000;
    LineSegments segments = segmentsOf(std::u16string(length, u'x'));
    const double column = advances().column();
    EXPECT_EQ(segments.width(), length * column);
    EXPECT_FALSE(segments.buildMore());
    EXPECT_EQ(segments.blockCount(), 1U);
    const auto segment = segments.segmentHolding(5'000'000);
    EXPECT_TRUE(segment.range.contains(5'000'000));
    EXPECT_EQ(segment.left, segment.range.lower * column);
    EXPECT_EQ(segments.segmentAt(segment.left + 1), segment);
    EXPECT_EQ(segments.segmentAt(1e12).range.upper, length);
    EXPECT_EQ(segments.segmentAt(-5).range.lower, 0U);
    EXPECT_EQ(segments.segmentHolding(length).range.upper, length);
}

TEST(LineSegments, CutsBetweenCharacters) {
    Random random;
    for (int round = 0; round < 20; ++round) {
        LineSegments segments = segmentsOf(TextSamples::mixed(random, 1 + random.below(40'000)));
        check(segments);
    }
}

TEST(LineSegments, KeepsLongCharactersInOnePiece) {
    std::u16string units(42'001, u'x');
    std::fill_n(units.begin() + 1001, 40'000, u'\u0301');
    LineSegments segments = segmentsOf(units);
    check(segments);
    EXPECT_EQ(segments.segmentHolding(1000).range, segments.segmentHolding(40'000).range);
    // Bounded, and still in order.
    LineSegments endless = segmentsOf(std::u16string(1'000'000, u'\u0301'));
    build(endless);
    EXPECT_EQ(endless.segmentHolding(1'000'000).range.upper, 1'000'000U);
}

TEST(LineSegments, FindsTheSameSegmentByPlaceAndByOffset) {
    Random random;
    LineSegments segments = segmentsOf(TextSamples::mixed(random, 100'000));
    for (int step = 0; step < 300; ++step) {
        const auto segment = segments.segmentHolding(Offset(random.below(100'000)));
        if (segment.width > 0) {
            EXPECT_EQ(segments.segmentAt(segment.left + segment.width / 2), segment);
        }
    }
}

TEST(LineSegments, GuessesTheWidthOfWideTextBeforeLookingAtIt) {
    LineSegments segments = segmentsOf(std::u16string(1'000'000, u'中'));
    const double guess = segments.width();
    build(segments);
    EXPECT_NEAR(guess, segments.width(), segments.width() / 100);
}

TEST(LineSegments, TakesOverShapedWidths) {
    LineSegments segments = segmentsOf(std::u16string(2000, u'中'));
    const auto segment = segments.segmentHolding(1000);
    const double before = segments.width();
    segments.setWidth(segment, segment.width + 10);
    EXPECT_EQ(segments.segmentHolding(1000).width, segment.width + 10);
    EXPECT_EQ(segments.width(), before + 10);
    EXPECT_EQ(segments.segmentHolding(segment.range.upper).left, segment.right() + 10);
}

TEST(LineSegments, LeavesNoCrumbsBehindATyper) {
    std::u16string units(2000, u'中');
    LineSegments segments = segmentsOf(units);
    build(segments);
    const std::size_t before = segments.cuts().size();
    for (Offset at = 1000; at < 2000; ++at) {
        units.insert(at, 1, u'文');
        segments.edit(Rope(units), SourceRange::at(at, 1), 1);
    }
    EXPECT_LE(segments.cuts().size(), before + 2 * 1000 / 256);
    check(segments);
}

TEST(LineSegments, MergesWhatTypingSplit) {
    std::u16string units(100'000, u'x');
    LineSegments segments = segmentsOf(units);
    for (Offset at = 50'000; at < 51'000; ++at) {
        units.insert(at, 1, u'y');
        segments.edit(Rope(units), SourceRange::at(at, 1), 1);
    }
    EXPECT_EQ(segments.blockCount(), 1U);
    EXPECT_EQ(segments.width(), 101'000 * advances().column());
}

/// An edited index against one made anew.
TEST(LineSegments, PatchesAsIfBuiltAnew) {
    Random random;
    for (int round = 0; round < 8; ++round) {
        std::u16string units = TextSamples::mixed(random, 2000 + random.below(40'000));
        LineSegments segments = segmentsOf(units);
        for (int step = 0; step < 60; ++step) {
            const std::size_t lower = random.below(units.size() + 1);
            const std::size_t longest = random.below(10) == 0 ? 20'000 : 5;
            const std::size_t removed = random.below(std::min(units.size() - lower, longest) + 1);
            const std::u16string put = random.below(10) == 0 ? TextSamples::mixed(random, 2000)
                                                             : random.text(TextSamples::everything, 4);
            units.replace(lower, removed, put);
            segments.edit(Rope(units), SourceRange::at(std::int64_t(lower), std::int64_t(put.size())),
                          std::int64_t(put.size()) - std::int64_t(removed));
            if (random.below(4) == 0) {
                segments.segmentHolding(Offset(random.below(units.size() + 1)));
            }
        }
        // What was not yet looked at may cut the segment before it anew.
        build(segments);
        ASSERT_NO_FATAL_FAILURE(check(segments)) << "round " << round;
        LineSegments anew = segmentsOf(units);
        build(anew);
        // Tab stops differ with the places of the cuts.
        EXPECT_NEAR(segments.width(), anew.width(), anew.width() / 50 + 200);
    }
}
