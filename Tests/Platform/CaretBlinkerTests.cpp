#include "CaretBlinker.h"

#include <QGuiApplication>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QStyleHints>
#include <QTest>

#include <gtest/gtest.h>

namespace {

auto withFlashTime(int milliseconds) {
    QStyleHints* hints = QGuiApplication::styleHints();
    const int before = hints->cursorFlashTime();
    hints->setCursorFlashTime(milliseconds);
    return qScopeGuard([=] { hints->setCursorFlashTime(before); });
}

} // namespace

TEST(CaretBlinker, GoesOnAndOffWhileStarted) {
    const auto restored = withFlashTime(20);
    CaretBlinker blinker;
    EXPECT_FALSE(blinker.isOn());
    blinker.start();
    EXPECT_TRUE(blinker.isOn());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !blinker.isOn(); }));
    EXPECT_TRUE(QTest::qWaitFor([&] { return blinker.isOn(); }));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !blinker.isOn(); }));
    blinker.start();
    EXPECT_TRUE(blinker.isOn());
    blinker.stop();
    EXPECT_FALSE(blinker.isOn());
}

TEST(CaretBlinker, StaysOnWhereTheDesktopWantsNoBlinking) {
    const auto restored = withFlashTime(0);
    CaretBlinker blinker;
    blinker.start();
    QSignalSpy toggles(&blinker, &CaretBlinker::toggled);
    EXPECT_FALSE(toggles.wait(50));
    EXPECT_TRUE(blinker.isOn());
    QGuiApplication::styleHints()->setCursorFlashTime(20);
    EXPECT_TRUE(toggles.wait());
}
