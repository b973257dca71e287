#include "TextMarks.h"

#include "Appearance.h"
#include "SystemColor.h"

#include <QImage>
#include <QPainter>
#include <QPalette>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using enum TextMarks::Highlight;

double linear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double contrast(const QColor& one, const QColor& other) {
    const auto luminance = [](const QColor& color) {
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
               0.0722 * linear(color.blueF());
    };
    const auto [low, high] = std::minmax({luminance(one), luminance(other)});
    return (high + 0.05) / (low + 0.05);
}

} // namespace

TEST(TextMarks, LetsColouredTextStandOutFromMatches) {
    constexpr SystemColor inks[] = {
        SystemColor::textColor,  SystemColor::secondaryLabel, SystemColor::systemBlue,
        SystemColor::systemRed,  SystemColor::systemOrange,   SystemColor::systemBrown,
        SystemColor::systemGray, SystemColor::systemTeal,     SystemColor::systemPurple,
    };
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
        const QPalette colors = palette(appearance);
        for (const SystemColor ink : inks) {
            for (const auto kind : {usual, current}) {
                EXPECT_GE(contrast(color(ink, colors), TextMarks::highlightColor(kind, colors)), 3)
                    << int(ink) << " on " << int(kind)
                    << (appearance == Appearance::dark ? " in the dark" : "");
            }
        }
    }
}

TEST(TextMarks, MakesTheCurrentMatchTheStrongest) {
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
        const QPalette colors = palette(appearance);
        const QColor ground = colors.color(QPalette::Base);
        const double strength = contrast(TextMarks::highlightColor(current, colors), ground);
        EXPECT_GT(strength, 1.2 * contrast(TextMarks::highlightColor(usual, colors), ground));
        EXPECT_GT(strength, contrast(colors.color(QPalette::Inactive, QPalette::Highlight), ground));
    }
}

TEST(TextMarks, OutlinesTheCurrentMatchInsideItsBox) {
    const QPalette colors = palette(Appearance::light);
    QImage image(20, 20, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    TextMarks::paintHighlight(painter, {5, 5, 10, 10}, current, colors);
    painter.end();
    EXPECT_EQ(image.pixelColor(4, 10), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(15, 10), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(10, 10), TextMarks::highlightColor(current, colors));
    for (const QPoint edge : {QPoint(5, 10), QPoint(14, 10), QPoint(10, 5), QPoint(10, 14)}) {
        EXPECT_GT(contrast(image.pixelColor(edge), Qt::white), 4) << edge.x() << ' ' << edge.y();
    }
}
