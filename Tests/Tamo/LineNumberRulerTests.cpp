#include "LineNumberRuler.h"

#include "SystemColor.h"
#include "SystemFont.h"
#include "TextBuffer.h"
#include "TextView.h"
#include "TextViewMouse.h"
#include "TreeParser.h"

#include <QHelpEvent>
#include <QImage>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>
#include <QWheelEvent>

#include <gtest/gtest.h>
#include <string>

namespace {

/// A text in a view with a ruler.
struct Desk {
    std::shared_ptr<TextMirror> mirror;
    TextBuffer buffer;
    TextView view;
    LineNumberRuler* ruler;

    explicit Desk(std::u16string_view text)
        : mirror(std::make_shared<TextMirror>(Rope(text))), buffer(Rope(text), mirror),
          ruler(new LineNumberRuler(view)) {
        view.setFont(SystemFont::monospaced());
        view.setRuler(ruler);
        view.setHistory(&buffer.history());
        view.resize(600, 300);
        view.show();
        parse();
    }
    ~Desk() { view.setHistory(nullptr); }

    /// Gives the ruler the lines and the diagnostics of the text of now.
    void parse() {
        struct Parsed {
            ProblemStarts starts;
            LineIndex lines;
        };
        const SourceText text = buffer.sourceText();
        const DocumentTree tree = TreeParser::parse(text);
        const auto parsed = std::make_shared<Parsed>(ProblemStarts(tree.diagnostics, text), LineIndex(text));
        const std::shared_ptr<const LineIndex> lines(parsed, &parsed->lines);
        ruler->setLines(lines);
        ruler->setErrorLines({{parsed, &parsed->starts}, lines});
        ruler->updateThickness();
    }

    QImage image() { return ruler->grab().toImage().convertToFormat(QImage::Format_RGB32); }

    /// The top of a line, in the ruler.
    int top(std::size_t line) {
        const QPoint inView = view.viewport()->mapTo(&view, view.lineRect(line).topLeft().toPoint());
        return ruler->mapFrom(&view, inView).y();
    }
    QRect band(std::size_t line) { return {0, top(line), ruler->width(), view.lineHeight()}; }

    /// Whether anything is drawn in `part` of the ruler.
    bool hasInk(QRect part) {
        const QImage drawn = image();
        const QRgb ground = color(SystemColor::textBackground, ruler->palette()).rgb();
        part &= drawn.rect();
        for (int y = part.top(); y <= part.bottom(); ++y) {
            for (int x = part.left(); x <= part.right(); ++x) {
                if (drawn.pixel(x, y) != ground) {
                    return true;
                }
            }
        }
        return false;
    }
    bool hasNumber(std::size_t line) { return hasInk(band(line).adjusted(11, 1, 0, -1)); }
    bool hasDot(std::size_t line) {
        const QPoint center(7, top(line) + view.lineHeight() / 2);
        return image().pixel(center) == color(SystemColor::systemRed, ruler->palette()).rgb();
    }
};

std::u16string lines(int count) {
    std::u16string text;
    for (int line = 1; line < count; ++line) {
        text += u"<a/>\n";
    }
    return text;
}

} // namespace

TEST(LineNumberRuler, IsAsThickAsItsNumbersNeed) {
    const std::pair<std::size_t, double> rows[] = {
        {1, 44.5}, {99, 44.5}, {999, 44.5}, {1'000, 52}, {9'999, 52}, {10'000, 59.5}, {1'000'000, 74.5},
    };
    for (const auto& [lineCount, thickness] : rows) {
        EXPECT_EQ(LineNumberRuler::thickness(lineCount), thickness) << lineCount;
    }
}

TEST(LineNumberRuler, PlacesNumbersAtTheRightAndDotsAtTheLeft) {
    struct Row {
        double y, lineHeight;
        QSizeF label;
        double thickness;
        LineNumberRuler::Marks expected;
    };
    const Row rows[] = {
        {0, 16, {7, 14}, 44.5, {{29.5, 1}, {4, 5, 6, 6}}},
        {100, 17, {21, 14}, 44.5, {{15.5, 101.5}, {4, 105.5, 6, 6}}},
        {-5, 20, {28, 13}, 52, {{16, -1.5}, {4, 2, 6, 6}}},
        {10, 12, {7, 16}, 44.5, {{29.5, 10}, {4, 15, 6, 6}}}, // A label higher than its line.
    };
    for (const Row& row : rows) {
        EXPECT_EQ(LineNumberRuler::marks(row.y, row.lineHeight, row.label, row.thickness), row.expected)
            << row.y;
    }
}

TEST(LineNumberRuler, IsEmptyAtFirst) {
    TextView view;
    const LineNumberRuler ruler(view);
    EXPECT_EQ(ruler.lines(), LineIndex());
    EXPECT_TRUE(ruler.errorLines().isEmpty());
    EXPECT_EQ(ruler.font(), SystemFont::monospacedDigits());
}

TEST(LineNumberRuler, ShowsTheNumberOneForAnEmptyDocument) {
    Desk desk(u"");
    EXPECT_EQ(desk.ruler->number(0), 1U);
    EXPECT_TRUE(desk.hasNumber(0));
    EXPECT_FALSE(desk.hasInk(desk.band(0).translated(0, desk.view.lineHeight())));
}

TEST(LineNumberRuler, NumbersTheEmptyLineAfterTheLastLineFeed) {
    Desk desk(u"<a>\n</a>\n");
    for (std::size_t line = 0; line < 3; ++line) {
        EXPECT_TRUE(desk.hasNumber(line)) << line;
        EXPECT_EQ(desk.ruler->number(line), line + 1);
    }
    EXPECT_FALSE(desk.hasInk(desk.band(2).translated(0, desk.view.lineHeight())));
}

TEST(LineNumberRuler, DotsTheLinesWhereDiagnosticsStart) {
    Desk desk(u"<a>&\n\n&\n</a>\n");
    const std::vector<bool> expected = {true, false, true, false, false};
    for (std::size_t line = 0; line < expected.size(); ++line) {
        EXPECT_EQ(desk.hasDot(line), expected[line]) << line;
        EXPECT_TRUE(desk.hasNumber(line)) << line;
    }
}

TEST(LineNumberRuler, DotsTheEmptyLastLine) {
    Desk desk(u"<a/>\n");
    const SourceText text = desk.buffer.sourceText();
    RecordArray<DiagnosticRecord> records;
    records.append({SourceRange::empty(text.count()), 0, DiagnosticRecord::Rule::noRoot});
    const ProblemStarts starts(DiagnosticList(text, std::move(records)), text);
    desk.ruler->setErrorLines({std::make_shared<ProblemStarts>(starts), std::make_shared<LineIndex>(text)});
    EXPECT_FALSE(desk.hasDot(0));
    EXPECT_TRUE(desk.hasDot(1));
}

TEST(LineNumberRuler, GetsWiderOnlyWithAnotherDigit) {
    Desk desk(lines(99));
    EXPECT_EQ(desk.ruler->ruleThickness(), 44.5);
    EXPECT_EQ(desk.ruler->width(), 45);
    const int viewportWidth = desk.view.viewport()->width();
    desk.buffer.apply(std::vector{TextEdit::insert(lines(901), 0)});
    EXPECT_EQ(desk.ruler->width(), 45); // Nobody has told it yet.
    desk.parse();
    EXPECT_EQ(desk.ruler->lines().lineCount(), 999U);
    EXPECT_EQ(desk.ruler->width(), 45);
    desk.buffer.apply(std::vector{TextEdit::insert(u"\n", 0)});
    desk.parse();
    EXPECT_EQ(desk.ruler->ruleThickness(), 52);
    EXPECT_EQ(desk.ruler->width(), 52);
    EXPECT_EQ(desk.view.viewport()->width(), viewportWidth - 7);
}

TEST(LineNumberRuler, CountsOnFromTheLinesOfTheLastParse) {
    Desk desk(lines(100));
    desk.view.select(SourceRange::empty(desk.buffer.text().lineStart(80)));
    desk.view.scrollToVisible(desk.view.selection());
    const std::size_t first = desk.view.firstVisibleLine();
    const std::size_t last = desk.view.lastVisibleLine();
    ASSERT_GT(first, 50U);
    EXPECT_EQ(desk.ruler->number(first), first + 1);
    EXPECT_EQ(desk.ruler->number(last), last + 1);
    // An index that knows nothing of these lines yet; numbers stay consecutive.
    desk.ruler->setLines(std::make_shared<LineIndex>(SourceText(u"\n\n\n")));
    EXPECT_EQ(desk.ruler->number(first), 4U);
    EXPECT_EQ(desk.ruler->number(last), 4U + (last - first));
}

TEST(LineNumberRuler, CountsTheLinesOfTheViewBeforeTheFirstParse) {
    Desk desk(lines(2'000));
    desk.ruler->setLines(nullptr);
    desk.ruler->updateThickness();
    EXPECT_EQ(desk.ruler->ruleThickness(), 52);
    desk.view.scrollToVisible(SourceRange::empty(desk.buffer.text().size()));
    const std::size_t last = desk.view.lastVisibleLine();
    ASSERT_EQ(last, 1'999U);
    EXPECT_EQ(desk.ruler->number(last), 2'000U);
    EXPECT_EQ(desk.ruler->number(desk.view.firstVisibleLine()), desk.view.firstVisibleLine() + 1);
}

TEST(LineNumberRuler, DrawsAllLinesThatShowAtTheHeightOfTheText) {
    Desk desk(lines(200));
    desk.view.scrollToVisible(SourceRange::empty(desk.buffer.text().lineStart(120)));
    for (std::size_t line = desk.view.firstVisibleLine(); line < desk.view.lastVisibleLine(); ++line) {
        EXPECT_TRUE(desk.hasNumber(line)) << line;
    }
    const double topInView = desk.view.viewport()->mapTo(&desk.view, desk.view.lineRect(120).topLeft()).y();
    EXPECT_EQ(desk.ruler->mapTo(&desk.view, QPoint(0, desk.top(120))).y(), topInView);
}

TEST(LineNumberRuler, TellsTheMessagesOfALineAsPlainText) {
    Desk desk(u"<a>\n&\n</a>");
    std::vector<std::size_t> asked;
    desk.ruler->setToolTips([&](std::size_t line) {
        asked.push_back(line);
        return line == 1 ? QStringLiteral("<b>&amp;") : QString();
    });
    const auto rest = [&](std::size_t line) {
        const QPoint at(7, desk.top(line) + 5);
        QHelpEvent event(QEvent::ToolTip, at, desk.ruler->mapToGlobal(at));
        QCoreApplication::sendEvent(desk.ruler, &event);
    };
    rest(1);
    EXPECT_TRUE(QToolTip::text().contains(QStringLiteral("&lt;b&gt;&amp;amp;")))
        << qPrintable(QToolTip::text());
    rest(2);
    EXPECT_EQ(asked, (std::vector<std::size_t>{1, 2}));
    EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }));
}

TEST(LineNumberRuler, ScrollsTheTextWithTheWheel) {
    Desk desk(lines(200));
    QWheelEvent event({7, 50}, desk.ruler->mapToGlobal(QPointF(7, 50)), {}, {0, -120 * 5}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(desk.ruler, &event);
    EXPECT_GT(desk.view.firstVisibleLine(), 0U);
}

TEST(LineNumberRuler, DrawsNothingWithoutItsView) {
    auto view = std::make_unique<TextView>();
    LineNumberRuler ruler(*view);
    ruler.resize(45, 100);
    view.reset();
    ruler.updateThickness();
    const QImage image = ruler.grab().toImage();
    QImage blank = image;
    blank.fill(image.pixelColor(0, 0));
    EXPECT_EQ(image, blank);
}

TEST(LineNumberRuler, SelectsTheLineThatIsPressed) {
    Desk desk(u"uno\ndos\ntres\ncuatro");
    const auto at = [&](std::size_t line) { return desk.band(line).center(); };
    QTest::mouseClick(desk.ruler, Qt::LeftButton, {}, at(1));
    EXPECT_EQ(desk.view.selection(), SourceRange(4, 8));
    QTest::mouseClick(desk.ruler, Qt::LeftButton, Qt::ShiftModifier, at(2));
    EXPECT_EQ(desk.view.selection(), SourceRange(4, 13));
    QTest::mouseClick(desk.ruler, Qt::RightButton, {}, at(0));
    EXPECT_EQ(desk.view.selection(), SourceRange(4, 13));
    QTest::mouseClick(desk.ruler, Qt::LeftButton, {}, at(3));
    EXPECT_EQ(desk.view.selection(), SourceRange(13, 19));
}

TEST(LineNumberRuler, SelectsTheLinesThatAreDraggedOver) {
    Desk desk(u"uno\ndos\ntres\ncuatro");
    const auto drag = [&](std::size_t from, std::size_t to) {
        QTest::mousePress(desk.ruler, Qt::LeftButton, {}, desk.band(from).center());
        const QPointF place = desk.band(to).center();
        QMouseEvent move(QEvent::MouseMove, place, desk.ruler->mapToGlobal(place), Qt::NoButton,
                         Qt::LeftButton, {});
        QCoreApplication::sendEvent(desk.ruler, &move);
        QTest::mouseRelease(desk.ruler, Qt::LeftButton, {}, place.toPoint());
    };
    drag(0, 2);
    EXPECT_EQ(desk.view.selection(), SourceRange(0, 13));
    drag(2, 1);
    EXPECT_EQ(desk.view.selection(), SourceRange(4, 13));
    EXPECT_FALSE(desk.view.mouse().isSelecting());
}
