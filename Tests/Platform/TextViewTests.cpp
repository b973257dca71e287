#include "TextView.h"

#include <QApplication>
#include <QClipboard>
#include <QInputMethodEvent>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace {

/// A view on the screen that gets what it asks for.
struct Desk {
    TextView view;

    explicit Desk(std::u16string_view units) {
        QObject::connect(&view, &TextView::editRequested, &view, [this](const TextEdit& edit) {
            const Rope text = view.text().replaced(edit.range, edit.replacement);
            view.changeText(text, edit.range.lower + static_cast<Offset>(edit.replacement.size()));
        });
        view.resize(600, 300);
        view.setText(Rope(units));
        view.show();
        view.setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
    }

    /// The text with the selection between brackets, or the caret as `|`.
    std::u16string shown() const {
        std::u16string units = view.text().units(view.text().fullRange());
        if (view.selection().isEmpty()) {
            return units.insert(view.caret(), 1, u'|');
        }
        units.insert(view.selection().upper, 1, u']');
        return units.insert(view.selection().lower, 1, u'[');
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(&view, key, modifiers);
    }
    void type(const char* text) { QTest::keyClicks(&view, QString::fromUtf8(text)); }
};

} // namespace

TEST(TextView, InsertsWhatIsTyped) {
    Desk desk(u"<a/>");
    desk.press(Qt::Key_Right);
    desk.type("n");
    EXPECT_EQ(desk.shown(), u"<n|a/>");
    desk.press(Qt::Key_End);
    desk.press(Qt::Key_Return);
    desk.type("fin");
    EXPECT_EQ(desk.shown(), u"<na/>\nfin|");
}

TEST(TextView, TypesOverTheSelection) {
    Desk desk(u"uno dos");
    desk.view.select({0, 3});
    desk.type("x");
    EXPECT_EQ(desk.shown(), u"x| dos");
}

TEST(TextView, EndsNewLinesAsTheDocumentDoes) {
    Desk desk(u"a\r\nb");
    desk.press(Qt::Key_Return);
    EXPECT_EQ(desk.shown(), u"\r\n|a\r\nb");
}

TEST(TextView, InsertsItsIndentationForTab) {
    Desk desk(u"a");
    desk.press(Qt::Key_Tab);
    EXPECT_EQ(desk.shown(), u"\t|a");
    desk.view.setIndentation(QStringLiteral("  "));
    desk.press(Qt::Key_Tab);
    EXPECT_EQ(desk.shown(), u"\t  |a");
}

TEST(TextView, ErasesCharactersAndWords) {
    Desk desk(u"uno 👩\u200D💻e\u0301 dos");
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

TEST(TextView, AsksForNothingWhenThereIsNothingToErase) {
    Desk desk(u"");
    QSignalSpy requests(&desk.view, &TextView::editRequested);
    desk.press(Qt::Key_Backspace);
    desk.press(Qt::Key_Delete);
    EXPECT_EQ(requests.count(), 0);
}

TEST(TextView, MovesAndSelectsByKeys) {
    Desk desk(u"uno\ndos más\ntres");
    desk.press(Qt::Key_Down);
    EXPECT_EQ(desk.shown(), u"uno\n|dos más\ntres");
    desk.press(Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(desk.shown(), u"uno\ndos| más\ntres");
    desk.press(Qt::Key_End, Qt::ShiftModifier);
    EXPECT_EQ(desk.shown(), u"uno\ndos[ más]\ntres");
    desk.press(Qt::Key_Left);
    EXPECT_EQ(desk.shown(), u"uno\ndos má|s\ntres");
    desk.press(Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(desk.shown(), u"uno\ndos más\ntres|");
    desk.press(Qt::Key_Home, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(desk.shown(), u"[uno\ndos más\ntres]");
    desk.press(Qt::Key_Home, Qt::ControlModifier);
    desk.press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(desk.shown(), u"[uno\ndos más\ntres]");
}

TEST(TextView, KeepsItsColumnAcrossShortLines) {
    Desk desk(u"largo\na\nlargo");
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
    Desk desk(odd);
    desk.view.selectAll();
    desk.press(Qt::Key_C, Qt::ControlModifier);
    desk.press(Qt::Key_End, Qt::ControlModifier);
    desk.press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(desk.view.text().units(desk.view.text().fullRange()), odd + odd);
}

TEST(TextView, CutsAndPastesPlainText) {
    Desk desk(u"uno dos");
    desk.view.select({0, 4});
    desk.press(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(desk.shown(), u"|dos");
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("uno "));
    QApplication::clipboard()->setText(QStringLiteral("ñ"));
    desk.press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(desk.shown(), u"ñ|dos");
}

TEST(TextView, TakesComposedCharacters) {
    Desk desk(u"ab");
    QInputMethodEvent composing(QStringLiteral("´"), {});
    QApplication::sendEvent(&desk.view, &composing);
    EXPECT_EQ(desk.shown(), u"|ab");
    QInputMethodEvent composed;
    composed.setCommitString(QStringLiteral("á"));
    QApplication::sendEvent(&desk.view, &composed);
    EXPECT_EQ(desk.shown(), u"á|ab");
}

TEST(TextView, SelectsByMouse) {
    Desk desk(u"uno dos\ntres");
    QWidget* const port = desk.view.viewport();
    const auto place = [&](Offset at) {
        desk.view.select(SourceRange::empty(at));
        return desk.view.inputMethodQuery(Qt::ImCursorRectangle).toRect().center() - port->pos();
    };
    const QPoint two = place(2);
    const QPoint six = place(6);
    QTest::mousePress(port, Qt::LeftButton, {}, two);
    QTest::mouseMove(port, six);
    QTest::mouseRelease(port, Qt::LeftButton, {}, six);
    EXPECT_EQ(desk.shown(), u"un[o do]s\ntres");

    QTest::mouseClick(port, Qt::LeftButton, Qt::ShiftModifier, place(4));
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
    Desk desk(units);
    const SourceRange far = {3000, 3005};
    desk.view.reveal(far);
    EXPECT_EQ(desk.view.selection(), far);
    const QRect caret = desk.view.inputMethodQuery(Qt::ImCursorRectangle).toRect();
    EXPECT_TRUE(desk.view.viewport()->rect().contains(caret.center()));

    desk.view.reveal({5998, 20000});
    EXPECT_EQ(desk.view.selection(), SourceRange(5998, 6000));
}

TEST(TextView, BringsTheCaretOfALongLineIntoView) {
    // Wide characters lie further right than their number tells.
    for (const std::u16string unit : {u"x", u"林", u"é", u"😀"}) {
        std::u16string units;
        while (units.size() < 100'000) {
            units += unit;
        }
        Desk desk(units);
        for (const Offset at : {100'000U, 50'000U, 2'000U, 0U}) {
            desk.view.select(SourceRange::empty(at));
            const QRect caret = desk.view.inputMethodQuery(Qt::ImCursorRectangle).toRect();
            EXPECT_TRUE(desk.view.viewport()->geometry().contains(caret.center())) << at << " " << caret.x();
        }
    }
}

TEST(TextView, EditsInTheMiddleOfALongLine) {
    Desk desk(std::u16string(1'000'000, u'x'));
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
    Desk desk(units);
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
