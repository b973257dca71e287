#include "Appearance.h"

#include "SystemColor.h"

#include <QPalette>

#include <gtest/gtest.h>

TEST(Appearance, IsReadFromItsName) {
    EXPECT_EQ(appearance(u"light"), Appearance::light);
    EXPECT_EQ(appearance(u"dark"), Appearance::dark);
    for (const QStringView other : {u"", u"Dark", u"dark ", u"auto"}) {
        EXPECT_EQ(appearance(other), std::nullopt) << qPrintable(other.toString());
    }
}

TEST(Appearance, IsToldByItsPalette) {
    EXPECT_FALSE(isDark(palette(Appearance::light)));
    EXPECT_TRUE(isDark(palette(Appearance::dark)));
}

TEST(Appearance, HasAPaletteOfSystemColors) {
    const struct {
        QPalette::ColorRole role;
        SystemColor color;
    } rows[] = {
        {QPalette::Window, SystemColor::barBackground},
        {QPalette::Base, SystemColor::textBackground},
        {QPalette::Text, SystemColor::textColor},
        {QPalette::AlternateBase, SystemColor::alternateRow},
        {QPalette::Highlight, SystemColor::selection},
        {QPalette::HighlightedText, SystemColor::textColor},
        {QPalette::PlaceholderText, SystemColor::tertiaryLabel},
    };
    for (const Appearance each : {Appearance::light, Appearance::dark}) {
        const QPalette made = palette(each);
        for (const auto& row : rows) {
            EXPECT_EQ(made.color(QPalette::Active, row.role), color(row.color, made)) << row.role;
        }
    }
}

TEST(Appearance, DecidesEveryRole) {
    // What is left to the base palette would be light in the dark.
    for (int role = 0; role < QPalette::NColorRoles; ++role) {
        if (role != QPalette::NoRole) {
            EXPECT_NE(palette(Appearance::light).color(QPalette::ColorRole(role)),
                      palette(Appearance::dark).color(QPalette::ColorRole(role)))
                << role;
        }
    }
}

TEST(Appearance, QuietensWhatIsInactiveOrDisabled) {
    for (const Appearance each : {Appearance::light, Appearance::dark}) {
        const QPalette made = palette(each);
        EXPECT_EQ(made.color(QPalette::Inactive, QPalette::Highlight),
                  color(SystemColor::quietSelection, made));
        EXPECT_LT(made.color(QPalette::Disabled, QPalette::ButtonText).alphaF(), 0.6);
        EXPECT_EQ(made.color(QPalette::Inactive, QPalette::Text), color(SystemColor::textColor, made));
    }
}
