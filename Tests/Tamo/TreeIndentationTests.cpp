#include "TreeIndentation.h"

#include <gtest/gtest.h>

#include <ostream>

void PrintTo(const TreeIndentation& indentation, std::ostream* out) {
    *out << indentation.base << " + " << indentation.step;
}

TEST(TreeIndentation, TakesOneStepALevelWhereThereIsRoom) {
    EXPECT_EQ(TreeIndentation::fitting(0, 0, 0), TreeIndentation());
    EXPECT_EQ(TreeIndentation::fitting(3, 10, 160), TreeIndentation());
    EXPECT_EQ(TreeIndentation().pixels(3), 48);
}

TEST(TreeIndentation, MovesToTheLeftWhereThereIsNone) {
    EXPECT_EQ(TreeIndentation::fitting(3, 11, 160), (TreeIndentation{.base = 1}));
    EXPECT_EQ(TreeIndentation::fitting(999'990, 999'999, 160), (TreeIndentation{.base = 999'989}));
}

TEST(TreeIndentation, MakesSmallerStepsForManyLevelsAtOnce) {
    EXPECT_EQ(TreeIndentation::fitting(500, 540, 160), (TreeIndentation{.base = 500, .step = 4}));
    EXPECT_EQ(TreeIndentation::fitting(0, 20, 0), (TreeIndentation{.base = 0, .step = 0}));
    EXPECT_EQ(TreeIndentation::fitting(0, 20, -5).pixels(20), 0);
}

TEST(TreeIndentation, NeverLeavesTheRoom) {
    for (const std::uint32_t shallowest : {0U, 5U, 1000U}) {
        for (std::uint32_t deepest = shallowest; deepest < shallowest + 60; ++deepest) {
            for (const int room : {0, 7, 100, 333}) {
                const TreeIndentation fitting = TreeIndentation::fitting(shallowest, deepest, room);
                EXPECT_LE(fitting.base, shallowest);
                EXPECT_LE(fitting.pixels(deepest), room);
                EXPECT_GE(fitting.pixels(shallowest), 0);
            }
        }
    }
}
