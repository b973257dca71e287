#include "ApplicationAppearance.h"

#include "SystemColor.h"
#include "SystemFont.h"

#include <QApplication>
#include <QPalette>
#include <QSignalSpy>
#include <QStyle>
#include <QTest>
#include <QToolTip>
#include <QWidget>

#include <gtest/gtest.h>

namespace {

/// Gives the application its own style, fonts and palettes back.
class ApplicationAppearanceTest : public testing::Test {
protected:
    ~ApplicationAppearanceTest() override {
        qunsetenv("TAMO_APPEARANCE");
        QApplication::setStyle(m_style);
        QApplication::setFont(m_font);
        QApplication::setPalette(m_palette);
        QToolTip::setPalette(m_tipPalette);
        QToolTip::setFont(m_tipFont);
    }

    QString m_style = QApplication::style()->name();
    QFont m_font = QApplication::font();
    QPalette m_palette = QApplication::palette();
    QPalette m_tipPalette = QToolTip::palette();
    QFont m_tipFont = QToolTip::font();
};

} // namespace

TEST_F(ApplicationAppearanceTest, StartsAsTheEnvironmentSays) {
    for (const Appearance each : {Appearance::dark, Appearance::light}) {
        qputenv("TAMO_APPEARANCE", each == Appearance::dark ? "dark" : "light");
        const ApplicationAppearance appearance;
        EXPECT_EQ(appearance.current(), each);
        EXPECT_EQ(isDark(QApplication::palette()), each == Appearance::dark);
        EXPECT_EQ(isDark(QToolTip::palette()), each == Appearance::dark);
    }
}

TEST_F(ApplicationAppearanceTest, StartsLikeThePaletteOfTheDesktop) {
    QApplication::setPalette(palette(Appearance::dark));
    const ApplicationAppearance appearance;
    EXPECT_EQ(appearance.current(), Appearance::dark);
}

TEST_F(ApplicationAppearanceTest, ChangesWhileTheProgramRuns) {
    qputenv("TAMO_APPEARANCE", "light");
    ApplicationAppearance appearance;
    QSignalSpy changes(&appearance, &ApplicationAppearance::changed);
    QWidget window;
    window.show();
    appearance.setOverride(Appearance::dark);
    EXPECT_EQ(appearance.current(), Appearance::dark);
    EXPECT_EQ(changes.count(), 1);
    QTRY_VERIFY(isDark(window.palette()));
    EXPECT_EQ(window.grab().toImage().pixelColor(1, 1), color(SystemColor::barBackground, window.palette()));
    appearance.setOverride(Appearance::dark);
    EXPECT_EQ(changes.count(), 1);
}

TEST_F(ApplicationAppearanceTest, KeepsItsPaletteWhenTheThemeChanges) {
    qputenv("TAMO_APPEARANCE", "dark");
    const ApplicationAppearance appearance;
    QWidget window;
    QEvent change(QEvent::ThemeChange);
    QCoreApplication::sendEvent(&window, &change);
    QCoreApplication::processEvents();
    EXPECT_EQ(appearance.current(), Appearance::dark);
    EXPECT_TRUE(isDark(QApplication::palette()));
}

TEST_F(ApplicationAppearanceTest, SetsTheFonts) {
    const ApplicationAppearance appearance;
    EXPECT_EQ(QApplication::font(), SystemFont::body());
    EXPECT_EQ(QToolTip::font().pixelSize(), SystemFont::callout().pixelSize());
}
