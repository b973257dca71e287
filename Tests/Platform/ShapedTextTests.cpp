#include "ShapedText.h"

#include "GraphemeBreaker.h"
#include "TextSamples.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

#include <set>

namespace {

QFont font() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPixelSize(14);
    return font;
}

double column() { return QFontMetricsF(font()).horizontalAdvance(u'0'); }

ShapedText shaped(std::u16string_view units) { return {units, font(), 4 * column()}; }

std::vector<int> caretPositions(std::u16string_view units) {
    std::vector<int> positions{0};
    for (const std::u16string_view character : GraphemeBreaker::Characters(units)) {
        positions.push_back(positions.back() + static_cast<int>(character.size()));
    }
    return positions;
}

std::u16string text60(Random& random, int round) {
    return round % 2 == 0 ? random.text(TextSamples::leftToRight, 60)
                          : random.text(TextSamples::bothWays, 60);
}

QImage drawn(const ShapedText& text, std::span<const QRgb> colors) {
    QImage image(400, 30, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setPen(Qt::black);
    text.draw(painter, QPointF(4, 4), 15, colors);
    painter.end();
    return image;
}

/// Which of red, green and blue are told apart from the others in the columns of pixels from `left` to
/// `right`.
std::set<char> hues(const QImage& image, int left, int right) {
    std::set<char> hues;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = left; x < right; ++x) {
            const QColor color = image.pixelColor(x, y);
            if (color.red() > std::max(color.green(), color.blue()) + 60) {
                hues.insert('r');
            }
            if (color.blue() > std::max(color.green(), color.red()) + 60) {
                hues.insert('b');
            }
            if (std::max({color.red(), color.green(), color.blue()}) < 120) {
                hues.insert('k');
            }
        }
    }
    return hues;
}

} // namespace

TEST(ShapedText, CountsColumnsInPlainText) {
    const ShapedText text = shaped(u"<a b=\"c\">  ");
    EXPECT_DOUBLE_EQ(text.width(), 11 * column());
    for (int at = 0; at <= 11; ++at) {
        EXPECT_NEAR(text.x(at), at * column(), 0.01);
        EXPECT_EQ(text.offset(at * column() + 1), at);
        EXPECT_EQ(text.offset(at * column() - 1), at);
    }
}

TEST(ShapedText, KeepsEmptyTextAtTheStart) {
    const ShapedText text = shaped(u"");
    EXPECT_EQ(text.width(), 0);
    EXPECT_EQ(text.x(0), 0);
    EXPECT_EQ(text.offset(50), 0);
    EXPECT_TRUE(text.boxes(0, 0).empty());
}

TEST(ShapedText, StopsTabsEveryFourColumns) {
    const ShapedText text = shaped(u"\ta\tbcde\t\t");
    const double columns[] = {0, 4, 5, 8, 9, 10, 11, 12, 16, 20};
    for (int at = 0; at < 10; ++at) {
        EXPECT_NEAR(text.x(at), columns[at] * column(), 0.02) << at;
    }
    EXPECT_NEAR(text.width(), 20 * column(), 0.02);
}

TEST(ShapedText, KeepsStandInsOneColumnWideInEveryFont) {
    const char16_t units[] = {0,      1,      0x1B,   0x7F,   0x85,   u'\r',     0x200B,
                              0x202E, 0x2028, 0xFEFF, 0xFFFC, 0xD83D, 0xDE00 - 1};
    // In the second a dotted box, a blank and a digit are of three widths.
    for (const QFont::StyleHint style : {QFont::Monospace, QFont::SansSerif}) {
        QFont chosen = font();
        if (style == QFont::SansSerif) {
            chosen.setFamilies(QFontDatabase::systemFont(QFontDatabase::GeneralFont).families());
        }
        const double width = QFontMetricsF(chosen).horizontalAdvance(u'0');
        for (const char16_t unit : units) {
            const ShapedText text(std::u16string(1, unit), chosen, 4 * width);
            EXPECT_NEAR(text.width(), width, 0.02) << std::hex << int(unit);
            EXPECT_NEAR(text.x(1), width, 0.02) << std::hex << int(unit);
        }
    }
}

TEST(ShapedText, DrawsStandInsInTheirColorAndColumn) {
    const ShapedText text = shaped(u"a\u0001 \u202E ");
    const QRgb colors[] = {0, 0xFFFF0000, 0, 0xFF0000FF, 0};
    const QImage image = drawn(text, colors);
    const auto end = [](int count) { return 4 + int(count * column()); };
    EXPECT_EQ(hues(image, end(1) + 1, end(2)), std::set{'r'});
    EXPECT_EQ(hues(image, end(2), end(3) + 1), std::set<char>{});
    EXPECT_EQ(hues(image, end(3) + 1, end(4)), std::set{'b'});
    EXPECT_EQ(hues(image, end(4) + 1, end(5)), std::set<char>{});
    EXPECT_EQ(hues(drawn(text, {}), end(1) + 1, end(5)), std::set{'k'});
}

TEST(ShapedText, NeverStopsInsideACharacter) {
    const std::u16string units = u"e\u0301x👩\u200D💻y🇪🇸z";
    const ShapedText text = shaped(units);
    const std::vector<int> positions = caretPositions(units);
    for (double x = -5; x < text.width() + 5; x += 0.5) {
        EXPECT_NE(std::ranges::find(positions, text.offset(x)), positions.end()) << x;
    }
    EXPECT_EQ(text.x(1), text.x(0));
    EXPECT_EQ(text.boxes(0, 1).front().right, text.boxes(0, 2).front().right);
}

TEST(ShapedText, TurnsTextFromRightToLeft) {
    // Seen as "ab", the four letters from the last to the first, "c".
    const ShapedText text = shaped(u"abאבגדc");
    EXPECT_LT(text.x(2), text.x(5));
    EXPECT_GT(text.x(3), text.x(4));
    EXPECT_GT(text.x(4), text.x(5));
    EXPECT_GT(text.x(6), text.x(3));
    // The first two letters are on the right, the selection of "b" and the first letter in two parts.
    const auto turned = text.boxes(2, 4);
    ASSERT_EQ(turned.size(), 1U);
    EXPECT_NEAR(turned.front().left, text.x(4), 0.01);
    EXPECT_EQ(text.boxes(1, 3).size(), 2U);
    EXPECT_EQ(text.boxes(0, 7).size(), 1U);
}

TEST(ShapedText, FindsEveryCaretWhereItStands) {
    Random random;
    for (int round = 0; round < 300; ++round) {
        const std::u16string units = text60(random, round);
        const ShapedText text = shaped(units);
        for (const int at : caretPositions(units)) {
            EXPECT_EQ(text.offset(text.x(at)), at)
                << round << ": " << QString::fromStdU16String(units).toStdString();
            ASSERT_GE(text.x(at), 0);
            ASSERT_LE(text.x(at), text.width() + 0.1);
        }
    }
}

TEST(ShapedText, CoversItsWidthWithBoxes) {
    Random random;
    for (int round = 0; round < 300; ++round) {
        const std::u16string units = text60(random, round);
        if (units.empty()) {
            continue;
        }
        const ShapedText text = shaped(units);
        const auto size = static_cast<int>(units.size());
        const auto boxes = text.boxes(0, size);
        ASSERT_EQ(boxes.size(), 1U) << QString::fromStdU16String(units).toStdString();
        EXPECT_NEAR(boxes.front().left, 0, 0.1);
        EXPECT_NEAR(boxes.front().right, text.width(), 0.1);
        // The boxes of two parts have together the width of both.
        const std::vector<int> positions = caretPositions(units);
        const int middle = positions[random.below(positions.size())];
        double sum = 0;
        for (const auto& part : {text.boxes(0, middle), text.boxes(middle, size)}) {
            for (const ShapedText::Box& box : part) {
                sum += box.right - box.left;
            }
        }
        EXPECT_NEAR(sum, text.width(), 0.2);
    }
}

TEST(ShapedText, PaintsEachUnitInItsColor) {
    for (const std::u16string_view units : {u"MMMMMM", u"ÑÑMMÑÑ"}) {
        const ShapedText text = shaped(units);
        const QRgb colors[] = {0xFFFF0000, 0xFFFF0000, 0, 0, 0xFF0000FF, 0xFF0000FF};
        const auto end = [](int column_) { return 4 + int(column_ * column()); };
        for (int time = 0; time < 2; ++time) {
            const QImage image = drawn(text, colors);
            EXPECT_EQ(hues(image, 0, end(2)), std::set{'r'});
            EXPECT_EQ(hues(image, end(2) + 1, end(4)), std::set{'k'});
            EXPECT_EQ(hues(image, end(4) + 1, end(6)), std::set{'b'});
            EXPECT_EQ(hues(drawn(text, {}), 0, 400), std::set{'k'});
        }
    }
}

TEST(ShapedText, ShowsTheStartOfAnEndlessCharacter) {
    const ShapedText text = shaped(u"a" + std::u16string(100'000, u'\u0301'));
    EXPECT_LE(text.size(), 2048);
    EXPECT_NEAR(text.width(), column(), column());
    EXPECT_EQ(text.x(50'000), text.width());
    EXPECT_EQ(text.boxes(0, 100'001).size(), 1U);
}
