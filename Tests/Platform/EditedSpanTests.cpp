#include "EditedSpan.h"

#include <gtest/gtest.h>

TEST(EditedSpan, LeavesEverythingInPlaceAtFirst) {
    const EditedSpan span;
    EXPECT_EQ(span.now({3, 7}), SourceRange(3, 7));
    EXPECT_EQ(span.then({3, 7}), SourceRange(3, 7));
}

TEST(EditedSpan, MovesWhatLiesBehindAnEdit) {
    EditedSpan span;
    span.add({10, 12}, 5);
    EXPECT_EQ(span.now({2, 10}), SourceRange(2, 10));
    EXPECT_EQ(span.now({12, 20}), SourceRange(15, 23));
    EXPECT_EQ(span.now({10, 12}), SourceRange(10, 15));
    EXPECT_EQ(span.now({4, 20}), SourceRange(4, 23));
    EXPECT_EQ(span.now({11, 20}), std::nullopt);
    EXPECT_EQ(span.now({4, 11}), std::nullopt);
    EXPECT_EQ(span.now({11, 11}), std::nullopt);
}

TEST(EditedSpan, LooksBack) {
    EditedSpan span;
    span.add({10, 12}, 5);
    EXPECT_EQ(span.then({2, 10}), SourceRange(2, 10));
    EXPECT_EQ(span.then({15, 23}), SourceRange(12, 20));
    EXPECT_EQ(span.then({12, 13}), SourceRange(10, 12));
    EXPECT_EQ(span.then({3, 14}), SourceRange(3, 12));
}

TEST(EditedSpan, JoinsEdits) {
    const SourceRange before(0, 5);
    const SourceRange behind(40, 50);
    EditedSpan span;
    span.add({20, 20}, 3);
    span.add({23, 23}, 1);
    EXPECT_EQ(span.now({20, 20}), SourceRange(20, 20));
    EXPECT_EQ(span.now(behind), SourceRange(44, 54));
    span.add({10, 12}, 0);
    EXPECT_EQ(span.now(before), before);
    EXPECT_EQ(span.now(behind), SourceRange(42, 52));
    EXPECT_EQ(span.now({12, 15}), std::nullopt);
    span.add({30, 31}, 4);
    EXPECT_EQ(span.now(behind), SourceRange(45, 55));
    EXPECT_EQ(span.then({45, 55}), behind);
    EXPECT_EQ(span.now({28, 30}), std::nullopt);
}

TEST(EditedSpan, SurvivesTheDeletionOfEverything) {
    EditedSpan span;
    span.add({5, 5}, 10);
    span.add({0, 110}, 0);
    EXPECT_EQ(span.now({20, 30}), std::nullopt);
    EXPECT_EQ(span.now({0, 100}), SourceRange(0, 0));
    EXPECT_EQ(span.then({0, 0}), SourceRange(0, 0));
}
