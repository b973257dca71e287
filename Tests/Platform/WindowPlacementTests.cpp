#include "WindowPlacement.h"

#include <gtest/gtest.h>

namespace {

constexpr QRect screen(0, 30, 1366, 700); // Below a panel.

} // namespace

TEST(WindowPlacement, GivesWhatIsWantedWhereThereIsRoom) {
    EXPECT_EQ(WindowPlacement::fitting({800, 500}, screen), QSize(800, 500));
}

TEST(WindowPlacement, CutsAWindowAndItsFrameToTheScreen) {
    const QSize size = WindowPlacement::fitting({1280, 820}, screen);
    EXPECT_EQ(size.width(), 1280);
    EXPECT_LT(size.height(), 700);
    EXPECT_GT(size.height(), 600);
    EXPECT_LT(WindowPlacement::fitting({1280, 820}, {0, 0, 1024, 600}).width(), 1024);
}

TEST(WindowPlacement, MovesEachWindowAStepOn) {
    EXPECT_EQ(WindowPlacement::cascaded({100, 100}, {800, 500}, screen), QPoint(128, 128));
}

TEST(WindowPlacement, StartsAgainAtTheEdgeThatAWindowWouldCross) {
    EXPECT_EQ(WindowPlacement::cascaded({100, 210}, {800, 500}, screen), QPoint(128, 30));
    EXPECT_EQ(WindowPlacement::cascaded({550, 100}, {800, 500}, screen), QPoint(0, 128));
    EXPECT_EQ(WindowPlacement::cascaded({-500, -500}, {800, 500}, screen), QPoint(0, 30));
    EXPECT_EQ(WindowPlacement::cascaded({0, 30}, {2000, 2000}, screen), QPoint(0, 30));
}

TEST(WindowPlacement, KeepsAllOfManyWindowsOnTheScreen) {
    QPoint at(0, 30);
    constexpr QSize size(1280, 600);
    for (int window = 0; window < 100; ++window) {
        at = WindowPlacement::cascaded(at, size, screen);
        EXPECT_TRUE(screen.contains(QRect(at, size))) << window;
    }
}
