#include "ScrollPosition.h"

#include <QScrollBar>

#include <gtest/gtest.h>

TEST(ScrollPosition, KeepsWithinTheDocument) {
    QScrollBar bar(Qt::Vertical);
    ScrollPosition position(bar);
    position.setExtent(1000, 300, 20);
    EXPECT_EQ(position.maximum(), 700);
    EXPECT_EQ(bar.maximum(), 700);
    EXPECT_EQ(bar.pageStep(), 300);
    EXPECT_EQ(bar.singleStep(), 20);

    EXPECT_TRUE(position.set(5000));
    EXPECT_EQ(position.value(), 700);
    EXPECT_FALSE(position.set(9000));
    EXPECT_TRUE(position.set(-1));
    EXPECT_EQ(position.value(), 0);
}

TEST(ScrollPosition, MovesBackWhenTheDocumentShrinks) {
    QScrollBar bar(Qt::Vertical);
    ScrollPosition position(bar);
    position.setExtent(1000, 300, 20);
    position.set(700);
    position.setExtent(500, 300, 20);
    EXPECT_EQ(position.value(), 200);
    EXPECT_EQ(bar.value(), 200);
    position.setExtent(100, 300, 20);
    EXPECT_EQ(position.value(), 0);
    EXPECT_EQ(position.maximum(), 0);
}

TEST(ScrollPosition, FollowsTheBar) {
    QScrollBar bar(Qt::Vertical);
    ScrollPosition position(bar);
    position.setExtent(1000, 300, 20);
    position.follow(41);
    EXPECT_EQ(position.value(), 41);
}

TEST(ScrollPosition, StaysExactBeyondTheNumbersOfTheBar) {
    QScrollBar bar(Qt::Vertical);
    ScrollPosition position(bar);
    const qint64 extent = qint64(1) << 40;
    position.setExtent(extent, 1000, 20);
    EXPECT_LE(bar.maximum(), 1 << 30);
    EXPECT_GE(bar.singleStep(), 1);

    position.set(123456789012);
    EXPECT_EQ(position.value(), 123456789012);
    position.follow(bar.value());
    EXPECT_EQ(position.value(), 123456789012);

    position.follow(bar.maximum());
    EXPECT_EQ(position.value(), extent - 1000);
    position.follow(0);
    EXPECT_EQ(position.value(), 0);
}
