#include "PaneSplitter.h"

#include <QTest>

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

using Kept = PaneSplitter::Kept;

/// A splitter in a window of its own.
struct Desk {
    PaneSplitter splitter;

    explicit Desk(Kept kept, int width = 1001) : splitter(kept) {
        for (int pane = 0; pane < 2; ++pane) {
            splitter.addWidget(new QWidget);
            splitter.widget(pane)->setMinimumWidth(100);
        }
        splitter.resize(width, 200);
        splitter.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&splitter));
    }

    int first() const { return splitter.sizes()[0]; }
    int second() const { return splitter.sizes()[1]; }

    /// Carries the divider there with the mouse.
    void drag(int x) {
        QWidget* const handle = splitter.handle(1);
        const QPoint grip = handle->rect().center();
        QTest::mousePress(handle, Qt::LeftButton, {}, grip);
        QTest::mouseMove(handle, handle->mapFrom(&splitter, QPoint(x, 100)));
        QTest::mouseRelease(handle, Qt::LeftButton, {}, handle->mapFrom(&splitter, QPoint(x, 100)));
    }
};

} // namespace

TEST(PaneSplitter, RemembersTheShareOfThePanes) {
    Desk one(Kept::share);
    EXPECT_NEAR(one.first(), 500, 1);
    one.drag(300);
    EXPECT_NEAR(one.first(), 300, 3);
    Desk other(Kept::share, 2001);
    EXPECT_NEAR(other.first(), 600, 6);
    other.drag(1000);
    EXPECT_NEAR(Desk(Kept::share).first(), 500, 4);
}

TEST(PaneSplitter, RemembersTheWidthOfTheSecondPane) {
    Desk one(Kept::trailingWidth);
    const int usual = one.second();
    EXPECT_LT(usual, 320);
    one.splitter.resize(1401, 200);
    EXPECT_EQ(one.second(), usual);
    one.drag(1000);
    EXPECT_NEAR(one.second(), 400, 3);
    Desk other(Kept::trailingWidth, 2001);
    EXPECT_NEAR(other.second(), 400, 3);
    other.drag(2000 - usual);
    EXPECT_NEAR(Desk(Kept::trailingWidth).second(), usual, 3);
}

TEST(PaneSplitter, PlacesPanesThatAreHiddenAtFirst) {
    PaneSplitter splitter(Kept::share);
    splitter.addWidget(new QWidget);
    splitter.addWidget(new QWidget);
    splitter.widget(0)->hide();
    splitter.resize(1001, 200);
    splitter.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&splitter));
    splitter.widget(0)->show();
    EXPECT_TRUE(QTest::qWaitFor([&] { return std::abs(splitter.sizes()[0] - 500) <= 4; })) << splitter.sizes()[0];
}
