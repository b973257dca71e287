#include "TextDesk.h"

#include <QApplication>
#include <QClipboard>
#include <QInputMethodEvent>
#include <QScrollBar>
#include <QSignalSpy>

TEST(TextView, InsertsWhatIsTyped) {
    TextDesk desk(u"<a/>");
    desk.press(Qt::Key_Right);
    desk.type("n");
    EXPECT_EQ(desk.shown(), u"<n|a/>");
    desk.press(Qt::Key_End);
    desk.press(Qt::Key_Return);
    desk.type("fin");
    EXPECT_EQ(desk.shown(), u"<na/>\nfin|");
}

TEST(TextView, TypesOverTheSelection) {
    TextDesk desk(u"uno dos");
    desk.view.select(SourceRange{0, 3});
    desk.type("x");
    EXPECT_EQ(desk.shown(), u"x| dos");
}

TEST(TextView, EndsNewLinesAsTheDocumentDoes) {
    TextDesk desk(u"a\r\nb");
    desk.press(Qt::Key_Return);
    EXPECT_EQ(desk.shown(), u"\r\n|a\r\nb");
}

TEST(TextView, InsertsATab) {
    TextDesk desk(u"a");
    desk.press(Qt::Key_Tab);
    EXPECT_EQ(desk.shown(), u"\t|a");
    desk.press(Qt::Key_Tab, Qt::ShiftModifier);
    EXPECT_EQ(desk.shown(), u"\t|a");
}

TEST(TextView, ErasesCharactersAndWords) {
    TextDesk desk(u"uno 👩\u200D💻e\u0301 dos");
    desk.press(Qt::Key_End);
    desk.press(Qt::Key_Backspace, Qt::ControlModifier);
    EXPECT_EQ(desk.shown(), u"uno 👩\u200D💻e\u0301 |");
    desk.press(Qt::Key_Backspace);
    desk.press(Qt::Key_Backspace);
    EXPECT_EQ(desk.shown(), u"uno 👩\u200D💻|");
    desk.press(Qt::Key_Backspace);
    EXPECT_EQ(desk.shown(), u"uno |");
    desk.press(Qt::Key_Home);
    desk.press(Qt::Key_Delete);
    EXPECT_EQ(desk.shown(), u"|no ");
    desk.press(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_EQ(desk.shown(), u"| ");
}

TEST(TextView, ChangesNothingWhenThereIsNothingToErase) {
    TextDesk desk(u"");
    desk.press(Qt::Key_Backspace);
    desk.press(Qt::Key_Delete);
    EXPECT_FALSE(desk.undo.canUndo());
}

TEST(TextView, MovesAndSelectsByKeys) {
    TextDesk desk(u"uno\ndos más\ntres");
    desk.press(Qt::Key_Down);
    EXPECT_EQ(desk.shown(), u"uno\n|dos más\ntres");
    desk.press(Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(desk.shown(), u"uno\ndos| más\ntres");
    desk.press(Qt::Key_End, Qt::ShiftModifier);
    EXPECT_EQ(desk.shown(), u"uno\ndos[ más]\ntres");
    desk.press(Qt::Key_Left);
    EXPECT_EQ(desk.shown(), u"uno\ndos| más\ntres");
    desk.press(Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(desk.shown(), u"uno\ndos más\ntres|");
    desk.press(Qt::Key_Home, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(desk.shown(), u"[uno\ndos más\ntres]");
    desk.press(Qt::Key_Home, Qt::ControlModifier);
    desk.press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(desk.shown(), u"[uno\ndos más\ntres]");
}

TEST(TextView, KeepsItsColumnAcrossShortLines) {
    TextDesk desk(u"largo\na\nlargo");
    desk.view.select(SourceRange::empty(4));
    desk.press(Qt::Key_Down);
    EXPECT_EQ(desk.shown(), u"largo\na|\nlargo");
    desk.press(Qt::Key_Down);
    EXPECT_EQ(desk.shown(), u"largo\na\nlarg|o");
    desk.press(Qt::Key_Down);
    EXPECT_EQ(desk.shown(), u"largo\na\nlargo|");
}

TEST(TextView, KeepsEveryUnitItCopiesAndPastes) {
    const std::u16string odd{u'a', u'\0', u'\xD83D', u'\r', u'\u2028', u'b'};
    TextDesk desk(odd);
    desk.view.selectAll();
    desk.press(Qt::Key_C, Qt::ControlModifier);
    desk.press(Qt::Key_End, Qt::ControlModifier);
    desk.press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(desk.view.text().units(desk.view.text().fullRange()), odd + odd);
}

TEST(TextView, CutsAndPastesPlainText) {
    TextDesk desk(u"uno dos");
    desk.view.select(SourceRange{0, 4});
    desk.press(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(desk.shown(), u"|dos");
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("uno "));
    QApplication::clipboard()->setText(QStringLiteral("ñ"));
    desk.press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(desk.shown(), u"ñ|dos");
}

TEST(TextView, TakesComposedCharacters) {
    TextDesk desk(u"ab");
    QInputMethodEvent composing(QStringLiteral("´"), {});
    QApplication::sendEvent(&desk.view, &composing);
    EXPECT_EQ(desk.shown(), u"|ab");
    QInputMethodEvent composed;
    composed.setCommitString(QStringLiteral("á"));
    QApplication::sendEvent(&desk.view, &composed);
    EXPECT_EQ(desk.shown(), u"á|ab");
}

TEST(TextView, SelectsByMouse) {
    TextDesk desk(u"uno dos\ntres");
    QWidget* const port = desk.view.viewport();
    const QPoint two = desk.place(2);
    const QPoint six = desk.place(6);
    QTest::mousePress(port, Qt::LeftButton, {}, two);
    QTest::mouseMove(port, six);
    QTest::mouseRelease(port, Qt::LeftButton, {}, six);
    EXPECT_EQ(desk.shown(), u"un[o do]s\ntres");

    QTest::mouseClick(port, Qt::LeftButton, Qt::ShiftModifier, desk.place(4));
    QTest::mouseDClick(port, Qt::LeftButton, {}, six);
    EXPECT_EQ(desk.shown(), u"uno [dos]\ntres");
    QTest::mouseClick(port, Qt::LeftButton, {}, six);
    EXPECT_EQ(desk.shown(), u"[uno dos\n]tres");
}

TEST(TextView, RevealsARangeFarAway) {
    std::u16string units;
    for (int line = 0; line < 1000; ++line) {
        units += u"línea\n";
    }
    TextDesk desk(units);
    const SourceRange far = {3000, 3005};
    desk.view.select(far);
    desk.view.scrollToVisible(far);
    EXPECT_EQ(desk.view.selection(), far);
    const QRect caret = desk.view.inputMethodQuery(Qt::ImCursorRectangle).toRect();
    EXPECT_TRUE(desk.view.viewport()->rect().contains(caret.center()));

    desk.view.select(SourceRange(5998, 20000));
    EXPECT_EQ(desk.view.selection(), SourceRange(5998, 6000));
}

TEST(TextView, BringsTheCaretOfALongLineIntoView) {
    // Wide characters lie further right than their number tells.
    for (const std::u16string unit : {u"x", u"林", u"é", u"😀"}) {
        std::u16string units;
        while (units.size() < 100'000) {
            units += unit;
        }
        TextDesk desk(units);
        for (const Offset at : {100'000U, 50'000U, 2'000U, 0U}) {
            desk.view.select(SourceRange::empty(at));
            desk.view.scrollToVisible(SourceRange::empty(at));
            const QRect caret = desk.view.inputMethodQuery(Qt::ImCursorRectangle).toRect();
            EXPECT_TRUE(desk.view.viewport()->geometry().contains(caret.center())) << at << " " << caret.x();
        }
    }
}

TEST(TextView, EditsInTheMiddleOfALongLine) {
    TextDesk desk(std::u16string(1'000'000, u'x'));
    desk.view.select(SourceRange::empty(500'000));
    desk.type("ab");
    EXPECT_EQ(desk.view.text().units({499'999, 500'003}), u"xabx");
    EXPECT_EQ(desk.view.caret(), 500'002U);
}

TEST(TextView, PaintsUnderlinesOfWhatItShowsOnly) {
    std::u16string units;
    for (int line = 0; line < 1000; ++line) {
        units += u"línea\n";
    }
    TextDesk desk(units);
    Offset highest = 0;
    int asked = 0;
    desk.view.setUnderlines([&](SourceRange range) {
        highest = std::max(highest, range.upper);
        ++asked;
        return std::vector<TextView::Underline>{{{2, 4}, Qt::red}};
    });
    const QImage picture = desk.view.grab().toImage();
    EXPECT_GT(asked, 0);
    EXPECT_LT(highest, 600U);
    int red = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            red += picture.pixelColor(x, y) == QColor(Qt::red);
        }
    }
    EXPECT_GT(red, 0);
}
