#include "TextLayout.h"

#include "GraphemeBreaker.h"
#include "TextNavigation.h"
#include "TextSamples.h"

#include <QFontDatabase>
#include <QImage>
#include <QPainter>
#include <QPalette>

#include <gtest/gtest.h>

#include <cmath>

namespace {

QFont font() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPixelSize(14);
    return font;
}

struct Sample : TextLayout {
    explicit Sample(std::u16string_view units) {
        setFont(font());
        setText(Rope(units));
    }
    double columns(double count) const { return count * columnWidth(); }

    void replace(SourceRange range, std::u16string_view units) {
        edit(text().replaced(range, units), SourceRange::at(range.lower, std::int64_t(units.size())),
             std::int64_t(units.size()) - range.length());
    }

    QImage drawn(SourceRange selected = {}, double left = 0, double ratio = 1) {
        QImage image(int(400 * ratio), int(lineHeight() * ratio), QImage::Format_RGB32);
        image.setDevicePixelRatio(ratio);
        image.fill(Qt::white);
        QPainter painter(&image);
        draw(painter, 0, QPointF(-left, 0), left, left + 400, selected, palette());
        painter.end();
        return image;
    }

    static QPalette palette() {
        QPalette palette;
        palette.setColor(QPalette::Text, Qt::black);
        palette.setColor(QPalette::Highlight, Qt::yellow);
        palette.setColor(QPalette::HighlightedText, Qt::blue); // Painted nowhere.
        return palette;
    }
};

int count(const QImage& image, QColor color, int left = 0, int right = 400) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = left; x < std::min(right, image.width()); ++x) {
            count += image.pixelColor(x, y) == color ? 1 : 0;
        }
    }
    return count;
}

std::vector<Offset> caretPositions(std::u16string_view units) {
    std::vector<Offset> positions{0};
    for (const std::u16string_view character : GraphemeBreaker::Characters(units)) {
        positions.push_back(positions.back() + Offset(character.size()));
    }
    return positions;
}

} // namespace

TEST(TextLayout, MeasuresLinesAndText) {
    Sample layout(u"<a>\n  <b/>\r\n</a>");
    EXPECT_EQ(layout.height(), 3 * layout.lineHeight());
    EXPECT_GT(layout.baseline(), 0);
    EXPECT_LT(layout.baseline(), layout.lineHeight());
    EXPECT_EQ(layout.x(2), layout.columns(2));
    EXPECT_EQ(layout.x(10), layout.columns(6));
    // Between and behind CR and LF is the end of the line.
    EXPECT_EQ(layout.x(11), layout.columns(6));
    EXPECT_EQ(layout.offset(1, 1000), 10U);
    EXPECT_EQ(layout.offset(2, 1000), 16U);
    EXPECT_EQ(layout.offset(0, -5), 0U);
}

TEST(TextLayout, ShowsACarriageReturnThatEndsNoLine) {
    Sample layout(u"a\rb\r");
    EXPECT_EQ(layout.x(4), layout.columns(4));
    EXPECT_EQ(layout.offset(0, 1000), 4U);
}

TEST(TextLayout, AnswersBoxesOfOneLine) {
    Sample layout(u"abcd\nef\n");
    const struct {
        SourceRange range;
        std::size_t line;
        double left, right; ///< Columns.
    } rows[] = {
        {{1, 3}, 0, 1, 3}, {{1, 5}, 0, 1, 4.5}, {{4, 5}, 0, 4, 4.5}, {{0, 8}, 1, 0, 2.5}, {{7, 8}, 1, 2, 2.5},
    };
    for (const auto& row : rows) {
        const auto boxes = layout.boxes(row.range, row.line);
        ASSERT_EQ(boxes.size(), 1U);
        EXPECT_NEAR(boxes.front().left(), layout.columns(row.left), 0.02);
        EXPECT_NEAR(boxes.front().right(), layout.columns(row.right), 0.02);
        EXPECT_EQ(boxes.front().height(), layout.lineHeight());
    }
    EXPECT_TRUE(layout.boxes({1, 1}, 0).empty());
    EXPECT_TRUE(layout.boxes({5, 6}, 0).empty());
    EXPECT_TRUE(layout.boxes({0, 8}, 2).empty());
}

TEST(TextLayout, FindsEveryCaretOfAnyLine) {
    Random random;
    for (int round = 0; round < 6; ++round) {
        std::u16string units;
        while (units.size() < (round % 2 == 0 ? 200 : 3000)) {
            units += random.text(TextSamples::leftToRight, 300);
        }
        Sample layout(units);
        while (layout.buildMore()) {
        }
        const Offset end = TextNavigation::lineEnd(0, layout.text());
        for (int time = 0; time < 2; ++time) {
            for (const Offset at : caretPositions(units)) {
                const double x = layout.x(at);
                if (time == 1) {
                    ASSERT_EQ(layout.offset(0, x), std::min(at, end)) << at << " of " << units.size();
                }
            }
        }
    }
}

TEST(TextLayout, PlacesSegmentsAsOneLayoutWould) {
    // No tabs and nothing from right to left, which a long line treats segment by segment.
    Random random;
    constexpr char32_t alphabet[] = {U'a', U'<', U' ', U'ñ', U'中', U'あ', U'한', U'€', U'😀'};
    std::u16string units;
    while (units.size() < 3000) {
        units += random.text(alphabet, 100);
    }
    Sample layout(units);
    const ShapedText whole(std::u16string_view(units).substr(0, 2048), font(), layout.columns(4));
    layout.stretch(0, 0, 1e6);
    for (const Offset at : caretPositions(std::u16string_view(units).substr(0, 2000))) {
        // Each join rounds anew.
        ASSERT_NEAR(layout.x(at), whole.x(int(at)), 2 + at / 128.0) << at;
    }
}

TEST(TextLayout, ReachesTheEndOfAWideLine) {
    Sample layout(std::u16string(100'000, u'中'));
    const double end = layout.x(100'000);
    EXPECT_GE(layout.width(), end);
    EXPECT_NEAR(layout.width(), end, 1);
    EXPECT_EQ(layout.offset(0, end), 100'000U);
    while (layout.buildMore()) {
    }
    EXPECT_GE(layout.width(), layout.x(100'000));
}

TEST(TextLayout, FollowsEditsOfALongLine) {
    Random random;
    std::u16string line = TextSamples::mixed(random, 20'000);
    std::u16string units = u"short\n";
    units += line;
    units += u"\nshort";
    Sample edited(units);
    edited.x(5000);
    for (int step = 0; step < 200; ++step) {
        const std::int64_t at = 6 + std::int64_t(random.below(20'000));
        const std::int64_t length = std::int64_t(random.below(8));
        edited.replace({at, at + length}, random.text(TextSamples::everything, 6));
        edited.x(Offset(at));
        if (step % 20 == 0) {
            edited.replace({0, 1}, u"sh");
        }
    }
    Sample anew(edited.text().units(edited.text().fullRange()));
    // All shaped, both are exact but for tabs, whose stops count from the segments.
    edited.stretch(1, 0, 1e7);
    anew.stretch(1, 0, 1e7);
    const Offset end = TextNavigation::lineEnd(1, anew.text());
    EXPECT_NEAR(edited.x(end), anew.x(end), anew.x(end) / 50);
    EXPECT_EQ(edited.offset(1, 1e9), end);
}

TEST(TextLayout, KeepsLinesApartWhenTheyAreSplitAndJoined) {
    std::u16string units(2001, u'a');
    units[1000] = u'\n';
    Sample layout(units);
    EXPECT_EQ(layout.x(2001), layout.columns(1000));
    layout.replace({1000, 1001}, u"");
    EXPECT_EQ(layout.x(2000), layout.columns(2000));
    layout.replace({700, 700}, u"\n");
    EXPECT_EQ(layout.x(2001), layout.columns(1300));
    EXPECT_EQ(layout.x(700), layout.columns(700));
    layout.replace({0, 0}, u"c\n");
    EXPECT_EQ(layout.x(2003), layout.columns(1300));
    layout.replace({0, 2003}, u"");
    EXPECT_EQ(layout.x(0), 0);
    EXPECT_EQ(layout.offset(0, 10), 0U);
}

TEST(TextLayout, LaysOutTheVisiblePartOfALongLineOnly) {
    Sample layout(std::u16string(1'000'000, u'M'));
    const SourceRange shown = layout.stretch(0, layout.columns(500'000), layout.columns(500'100));
    EXPECT_LE(shown.lower, 500'000U);
    EXPECT_GE(shown.upper, 500'100U);
    EXPECT_LE(shown.length(), 5 * 256U);
    EXPECT_GT(count(layout.drawn({}, layout.columns(500'000)), Qt::black), 0);
}

TEST(TextLayout, PaintsTheSelectionInTheHighlight) {
    Sample layout(u"MMMM\nM");
    const int column = int(layout.columnWidth());
    EXPECT_EQ(count(layout.drawn(), Qt::yellow), 0);
    const QImage image = layout.drawn({1, 3});
    EXPECT_GT(count(image, Qt::yellow, column + 2, 3 * column), 0);
    EXPECT_EQ(count(image, Qt::yellow, 0, column), 0);
    EXPECT_EQ(count(image, Qt::yellow, 3 * column + 3), 0);
    // The line feed is half a column.
    const int lineFeed = count(layout.drawn({4, 5}), Qt::yellow);
    EXPECT_NEAR(lineFeed, layout.columns(0.5) * layout.lineHeight(), layout.lineHeight());
}

TEST(TextLayout, PaintsTemporaryAttributesThatMoveWithTheText) {
    Sample layout(u"MMMMMM");
    layout.setTemporaryAttributes({2, 4}, {Qt::red, TemporaryAttributes::Underline::thick});
    const int column = int(layout.columnWidth());
    // Two pixels below two columns.
    EXPECT_GE(count(layout.drawn(), Qt::red), 2 * 2 * column);
    EXPECT_EQ(count(layout.drawn(), Qt::red, 0, 2 * column), 0);
    layout.replace({0, 0}, u"MM");
    EXPECT_EQ(count(layout.drawn(), Qt::red, 0, 4 * column), 0);
    EXPECT_GE(count(layout.drawn(), Qt::red), 2 * 2 * column);
    layout.removeTemporaryAttributes({0, 8});
    EXPECT_EQ(count(layout.drawn(), Qt::red), 0);
}

TEST(TextLayout, ShowsAPreeditAsIfItStoodThere) {
    for (const std::size_t length : {4UZ, 2000UZ}) {
        Sample layout(std::u16string(length, u'M'));
        const QImage before = layout.drawn();
        QTextCharFormat format;
        format.setFontUnderline(true);
        format.setUnderlineColor(Qt::red);
        layout.setPreedit(2, {QStringLiteral("xyz"), {{0, 3, format}}, 1});
        EXPECT_EQ(layout.x(1), layout.columns(1));
        EXPECT_EQ(layout.x(2), layout.columns(3));
        EXPECT_EQ(layout.x(3), layout.columns(6));
        EXPECT_EQ(layout.x(Offset(length)), layout.columns(double(length) + 3));
        EXPECT_EQ(layout.offset(0, layout.columns(3)), 2U);
        EXPECT_EQ(layout.offset(0, layout.columns(6)), 3U);
        EXPECT_EQ(layout.boxes({0, 4}, 0).size(), 2U);
        EXPECT_GE(count(layout.drawn(), Qt::red), int(layout.columns(3)) - 1);
        layout.setPreedit(0, {});
        EXPECT_EQ(layout.drawn(), before);
    }
    Sample empty(u"");
    empty.setPreedit(0, {QStringLiteral("ab"), {}, 2});
    EXPECT_EQ(empty.x(0), empty.columns(2));
}

TEST(TextLayout, AlignsHighlightsWithDevicePixels) {
    Sample layout(u"MMMM");
    for (const double ratio : {1.0, 1.25, 1.5, 2.0}) {
        const QImage image = layout.drawn({0, 4}, 0, ratio);
        // No column of pixels is half highlighted at its top or bottom.
        for (const int y : {0, int(std::floor(layout.lineHeight() * ratio)) - 1}) {
            EXPECT_EQ(image.pixelColor(1, y), QColor(Qt::yellow)) << ratio << " " << y;
        }
    }
}

TEST(TextLayout, CopesWithHostileLines) {
    const std::u16string_view repeated[] = {u"\u0301", u"🇪",  u"\u200D", u"\u202E", u"\t",
                                            u"א",      u"中", u"\r",     u"👩\u200D"};
    for (const std::u16string_view unit : repeated) {
        std::u16string units = u"a";
        while (units.size() < 100'000) {
            units += unit;
        }
        Sample layout(units);
        for (const double left : {0.0, 1000.0, 100'000.0}) {
            layout.drawn({10, 90'000}, left);
        }
        layout.replace({50'000, 50'001}, unit);
        const double end = layout.x(100'000);
        EXPECT_GE(end, 0);
        EXPECT_GE(layout.width() + 1, end);
        EXPECT_LE(layout.offset(0, 1e9), layout.text().size());
    }
}

TEST(TextLayout, KeepsTheColoursOfSelectedCharacters) {
    Sample layout(u"MMMM");
    layout.setTemporaryAttributes({0, 2}, {Qt::red});
    const QImage image = layout.drawn({0, 4});
    EXPECT_GT(count(image, Qt::yellow), 0);
    EXPECT_GT(count(image, Qt::red), 0);
    EXPECT_GT(count(image, Qt::black), 0);
    EXPECT_EQ(count(image, Qt::blue), 0);
}
