#include "WheelScroll.h"

#include <QWheelEvent>

#include <gtest/gtest.h>

namespace {

constexpr QSizeF notch(30, 51);

QPoint turned(WheelScroll& scroll, QPoint pixels, QPoint angle, Qt::KeyboardModifiers modifiers = {}) {
    const QWheelEvent event({}, {}, pixels, angle, Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
    return scroll.pixels(event, notch);
}

} // namespace

TEST(WheelScroll, TakesNotchesAndPixels) {
    WheelScroll scroll;
    EXPECT_EQ(turned(scroll, {}, {0, -120}), QPoint(0, 51));
    EXPECT_EQ(turned(scroll, {}, {0, 240}), QPoint(0, -102));
    EXPECT_EQ(turned(scroll, {}, {120, 0}), QPoint(-30, 0));
    EXPECT_EQ(turned(scroll, {3, -7}, {0, -120}), QPoint(-3, 7));
}

TEST(WheelScroll, KeepsWhatIsLessThanAPixel) {
    WheelScroll scroll;
    int moved = 0;
    for (int i = 0; i < 120; ++i) {
        moved += turned(scroll, {}, {0, -1}).y();
    }
    EXPECT_NEAR(moved, 51, 1);
}

TEST(WheelScroll, ForgetsWhatIsLeftWhenTheWheelTurnsAround) {
    WheelScroll scroll;
    turned(scroll, {}, {0, -2});
    EXPECT_EQ(turned(scroll, {}, {0, 3}).y(), -1);
}

TEST(WheelScroll, SwapsDirectionsWithShift) {
    WheelScroll scroll;
    EXPECT_EQ(turned(scroll, {}, {0, -120}, Qt::ShiftModifier), QPoint(30, 0));
    EXPECT_EQ(turned(scroll, {}, {-120, 0}, Qt::ShiftModifier), QPoint(30, 0));
}
