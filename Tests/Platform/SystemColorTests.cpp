#include "SystemColor.h"

#include <QPalette>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr SystemColor textColors[] = {
    SystemColor::textColor,   SystemColor::secondaryLabel, SystemColor::tertiaryLabel,
    SystemColor::systemBlue,  SystemColor::systemRed,      SystemColor::systemOrange,
    SystemColor::systemGreen, SystemColor::systemBrown,    SystemColor::systemGray,
    SystemColor::systemTeal,  SystemColor::systemPurple,   SystemColor::accent,
};

constexpr SystemColor grounds[] = {SystemColor::textBackground, SystemColor::alternateRow,
                                   SystemColor::currentLine, SystemColor::barBackground};

const QPalette light(Qt::white);
const QPalette dark(QColor(0x20, 0x20, 0x20));

double linear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& one, const QColor& other) {
    const auto [low, high] = std::minmax({luminance(one), luminance(other)});
    return (high + 0.05) / (low + 0.05);
}

} // namespace

TEST(SystemColor, TellsDarkFromLightByTheWindow) {
    EXPECT_FALSE(isDark(light));
    EXPECT_TRUE(isDark(dark));
    EXPECT_TRUE(isDark(QPalette(QColor(127, 127, 127))));
    EXPECT_FALSE(isDark(QPalette(QColor(128, 128, 128))));
}

TEST(SystemColor, LetsTextStandOutFromEveryGround) {
    for (const QPalette& palette : {light, dark}) {
        for (const SystemColor text : textColors) {
            for (const SystemColor ground : grounds) {
                EXPECT_GE(contrast(color(text, palette), color(ground, palette)), 4.5)
                    << int(text) << " on " << int(ground) << (isDark(palette) ? " in the dark" : "");
            }
        }
        EXPECT_GE(contrast(color(SystemColor::textOnAccent, palette), color(SystemColor::accent, palette)),
                  4.5);
    }
}

TEST(SystemColor, KeepsSelectedTextReadable) {
    for (const QPalette& palette : {light, dark}) {
        for (const SystemColor ground : {SystemColor::selection, SystemColor::quietSelection}) {
            EXPECT_GE(contrast(color(SystemColor::textColor, palette), color(ground, palette)), 7);
            for (const SystemColor text : textColors) {
                EXPECT_GE(contrast(color(text, palette), color(ground, palette)), 3)
                    << int(text) << " on " << int(ground) << (isDark(palette) ? " in the dark" : "");
            }
        }
    }
}

TEST(SystemColor, TellsTheColorsOfTextApart) {
    for (const QPalette& palette : {light, dark}) {
        for (const SystemColor one : textColors) {
            EXPECT_EQ(std::ranges::count(textColors, color(one, palette),
                                         [&](SystemColor each) { return color(each, palette); }),
                      1)
                << int(one);
        }
    }
}

TEST(SystemColor, HasAnotherValueInTheDark) {
    for (const SystemColor each : textColors) {
        EXPECT_GT(luminance(color(each, dark)), luminance(color(each, light))) << int(each);
    }
    for (const SystemColor each : grounds) {
        EXPECT_LT(luminance(color(each, dark)), luminance(color(each, light))) << int(each);
    }
}

TEST(SystemColor, KeepsFoundTextReadable) {
    for (const QPalette& palette : {light, dark}) {
        EXPECT_GE(contrast(color(SystemColor::textColor, palette), color(SystemColor::foundText, palette)),
                  4.5);
    }
}
