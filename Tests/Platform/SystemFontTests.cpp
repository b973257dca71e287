#include "SystemFont.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QGlyphRun>
#include <QTextLayout>

#include <gtest/gtest.h>

namespace {

/// The families of the fonts that `text` is drawn with.
QStringList familiesDrawing(const QString& text, const QFont& font) {
    QTextLayout layout(text, font);
    layout.beginLayout();
    layout.createLine();
    layout.endLayout();
    QStringList families;
    for (const QGlyphRun& run : layout.glyphRuns()) {
        families += run.rawFont().familyName();
    }
    return families;
}

} // namespace

TEST(SystemFont, HasSizesInLogicalPixels) {
    const struct {
        const QFont& font;
        int pixels;
    } rows[] = {
        {SystemFont::body(), 13},  {SystemFont::callout(), 12},    {SystemFont::caption(), 11},
        {SystemFont::title(), 22}, {SystemFont::monospaced(), 13}, {SystemFont::monospacedDigits(), 11},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.font.pixelSize(), row.pixels);
        EXPECT_EQ(row.font.weight(), QFont::Normal);
        EXPECT_FALSE(row.font.italic());
    }
}

TEST(SystemFont, StartsWithTheFontsOfTheDesktop) {
    EXPECT_EQ(SystemFont::body().family(), QFontDatabase::systemFont(QFontDatabase::GeneralFont).family());
    EXPECT_EQ(SystemFont::monospaced().family(),
              QFontDatabase::systemFont(QFontDatabase::FixedFont).family());
}

TEST(SystemFont, IsMadeOnce) {
    EXPECT_EQ(&SystemFont::monospaced(), &SystemFont::monospaced());
    EXPECT_EQ(&SystemFont::body(), &SystemFont::body());
}

TEST(SystemFont, GivesSourceTextEqualWidths) {
    const QFontMetricsF metrics(SystemFont::monospaced());
    for (const QChar each : QStringLiteral("iWm.<ñÁ09")) {
        EXPECT_EQ(metrics.horizontalAdvance(each), metrics.horizontalAdvance(u'x')) << int(each.unicode());
    }
}

TEST(SystemFont, GivesDigitsEqualWidths) {
    for (const QFont& font :
         {SystemFont::monospacedDigits(), SystemFont::withMonospacedDigits(SystemFont::caption()),
          SystemFont::withMonospacedDigits(QFont(QStringLiteral("DejaVu Serif")))}) {
        const QFontMetricsF metrics(font);
        for (char16_t digit = u'0'; digit <= u'9'; ++digit) {
            EXPECT_EQ(metrics.horizontalAdvance(digit), metrics.horizontalAdvance(u'0')) << int(digit);
        }
    }
}

TEST(SystemFont, KeepsItsSizeWithMonospacedDigits) {
    EXPECT_EQ(SystemFont::withMonospacedDigits(SystemFont::title()).pixelSize(), 22);
}

TEST(SystemFont, IsSemiboldOnDemand) {
    EXPECT_EQ(SystemFont::semibold(SystemFont::body()).weight(), QFont::DemiBold);
    EXPECT_EQ(SystemFont::semibold(SystemFont::title()).pixelSize(), 22);
}

TEST(SystemFont, DrawsEveryScriptThatAnInstalledFontHas) {
    const struct {
        QString text;
        QString family;
    } rows[] = {
        {QStringLiteral("漢字"), QStringLiteral("Noto Sans Mono CJK SC")},
        {QStringLiteral("한글"), QStringLiteral("Noto Sans Mono CJK SC")},
        {QStringLiteral("😀"), QStringLiteral("Noto Color Emoji")},
    };
    for (const auto& row : rows) {
        if (QFontDatabase::hasFamily(row.family)) {
            EXPECT_EQ(familiesDrawing(row.text, SystemFont::monospaced()), QStringList{row.family});
        }
    }
    EXPECT_FALSE(familiesDrawing(QStringLiteral("0"), SystemFont::monospaced())
                     .contains(QStringLiteral("Noto Color Emoji")));
}
