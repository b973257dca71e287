#include "TextDesk.h"
#include "TextMarks.h"

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

TEST(TextView, FollowsTheTextToWhereItIsStored) {
    TextDesk desk(u"");
    auto units = std::make_shared<char16_t[]>(10'000, u'x');
    const std::weak_ptr<char16_t[]> old = units;
    desk.storage.replaceCharacters({}, Rope(SourceText(std::move(units), 10'000)));
    desk.view.select(SourceRange{5000, 5001});
    const double x = desk.view.caretRect().x();
    desk.storage.moveTo(desk.storage.text().movedTo(SourceText(desk.text())));
    EXPECT_TRUE(old.expired());
    EXPECT_EQ(desk.view.caretRect().x(), x);
    desk.type("y");
    EXPECT_EQ(desk.text(), std::u16string(5000, u'x') + u"y" + std::u16string(4999, u'x'));
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

TEST(TextView, PastesWithTheLineEndsOfTheText) {
    TextDesk desk(u"<a>\r\n</a>");
    QApplication::clipboard()->setText(QStringLiteral("x\ny\n"));
    desk.press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(desk.shown(), u"x\r\ny\r\n|<a>\r\n</a>");
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

TEST(TextView, CarriesTheSelectionThroughEditsOfOthers) {
    const struct {
        TextSelection before;
        TextEdit edit;
        TextSelection after;
    } rows[] = {
        {{2, 2}, {{4, 6}, u"xyz"}, {2, 2}}, {{4, 4}, {{4, 6}, u"xyz"}, {4, 4}},
        {{5, 5}, {{4, 6}, u"xyz"}, {7, 7}}, {{6, 6}, {{4, 6}, u"xyz"}, {7, 7}},
        {{8, 8}, {{4, 6}, u""}, {6, 6}},    {{4, 4}, {{4, 4}, u"xyz"}, {7, 7}},
        {{2, 5}, {{4, 6}, u"xyz"}, {2, 7}}, {{5, 2}, {{4, 6}, u"xyz"}, {7, 2}},
        {{2, 4}, {{4, 4}, u"xyz"}, {2, 4}}, {{4, 6}, {{4, 4}, u"xyz"}, {7, 9}},
        {{3, 7}, {{0, 10}, u"ab"}, {2, 2}},
    };
    for (const auto& row : rows) {
        TextDesk desk(u"0123456789");
        desk.view.select(row.before);
        desk.history.apply({&row.edit, 1});
        EXPECT_EQ(desk.view.directedSelection(), row.after) << row.edit.range.description();
    }
}

TEST(TextView, UndoesToTheSelectionAndRedoesToTheCaret) {
    TextDesk desk(u"uno dos tres");
    desk.view.select(TextSelection{7, 4});
    desk.type("xy");
    desk.press(Qt::Key_Home);
    desk.press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(desk.shown(), u"uno [dos] tres");
    EXPECT_EQ(desk.view.caret(), 4U);
    desk.press(Qt::Key_End);
    desk.press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(desk.shown(), u"uno xy| tres");
}

TEST(TextView, StartsANewStepAfterAMoveOfTheCaret) {
    TextDesk desk(u"");
    desk.type("ab");
    desk.press(Qt::Key_Left);
    desk.press(Qt::Key_Right);
    desk.type("cd");
    desk.view.undo();
    EXPECT_EQ(desk.shown(), u"ab|");
    desk.view.undo();
    EXPECT_EQ(desk.shown(), u"|");
    EXPECT_FALSE(desk.undo.canUndo());
}

TEST(TextView, NamesWhatCanBeUndone) {
    TextDesk desk(u"uno dos");
    desk.view.select(SourceRange(0, 4));
    desk.press(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Cortar"));
    desk.press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Pegar"));
    desk.press(Qt::Key_Backspace);
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Eliminar"));
    desk.type("x");
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Escribir"));
}

TEST(TextView, AsksItsDelegateFirst) {
    struct Delegate : TextViewDelegate {
        bool allows = false;
        std::vector<TextCommand> commands;
        std::vector<SourceRange> asked;
        QStringList told;
        bool shouldChangeText(SourceRange range, std::u16string_view) override {
            asked.push_back(range);
            return allows;
        }
        bool doCommand(TextCommand command) override {
            commands.push_back(command);
            return command != TextCommand::cancelOperation;
        }
        void textDidChange() override { told += QStringLiteral("text"); }
        void selectionDidChange() override { told += QStringLiteral("selection"); }
    } delegate;
    TextDesk desk(u"uno");
    desk.view.setDelegate(&delegate);
    desk.type("x");
    desk.press(Qt::Key_Delete);
    EXPECT_EQ(desk.shown(), u"|uno");
    EXPECT_EQ(delegate.asked, (std::vector<SourceRange>{{0, 0}, {0, 1}}));
    desk.press(Qt::Key_Tab);
    desk.press(Qt::Key_Backtab, Qt::ShiftModifier);
    desk.press(Qt::Key_Return);
    desk.press(Qt::Key_Escape);
    EXPECT_EQ(delegate.commands, (std::vector{TextCommand::insertTab, TextCommand::insertBacktab,
                                              TextCommand::insertNewline, TextCommand::cancelOperation}));
    EXPECT_EQ(desk.shown(), u"|uno");
    EXPECT_TRUE(delegate.told.isEmpty());
    delegate.allows = true;
    desk.type("x");
    EXPECT_EQ(desk.shown(), u"x|uno");
    EXPECT_EQ(delegate.told, (QStringList{"text", "selection"}));
    desk.view.setDelegate(nullptr);
}

TEST(TextView, TellsWhatShows) {
    std::u16string units;
    for (int line = 0; line < 100; ++line) {
        units += u"0123456\n";
    }
    units += std::u16string(100'000, u'x') + u"\nfin";
    TextDesk desk(units);
    QSignalSpy moved(&desk.view, &TextView::visibleTextChanged);
    const auto first = desk.view.visibleStretches();
    ASSERT_EQ(first.size(), 1U);
    EXPECT_EQ(first[0].lower, 0U);
    EXPECT_EQ(first[0].upper, (desk.view.lastVisibleLine() + 1) * 8);
    desk.press(Qt::Key_End, Qt::ControlModifier);
    EXPECT_GT(moved.count(), 0);
    const auto last = desk.view.visibleStretches();
    ASSERT_EQ(last.size(), 3U);
    EXPECT_EQ(last[0].lower, desk.view.firstVisibleLine() * 8);
    EXPECT_EQ(last[0].upper, 800U);
    EXPECT_GE(last[1].lower, 800U);
    EXPECT_LT(last[1].length(), 4000U);
    EXPECT_EQ(last[2], SourceRange(100'801, 100'804));
}

TEST(TextView, KeepsWhatIsLookedAtInPlace) {
    std::u16string units;
    for (int line = 0; line < 1000; ++line) {
        units += u"línea\n";
    }
    TextDesk desk(units);
    desk.view.scrollToVisible(SourceRange::empty(3000));
    const double before = desk.view.lineRect(500).top();
    const TextEdit edit = TextEdit::insert(u"a\nb\nc\n", 6);
    desk.history.apply({&edit, 1});
    EXPECT_EQ(desk.view.lineRect(503).top(), before);
}

TEST(TextView, KeepsTheLineOfTheCaretInPlaceWhenAllIsReplaced) {
    std::u16string units;
    std::u16string replacement;
    for (int line = 0; line < 1000; ++line) {
        units += u"x\n";
        replacement += u"x\n\n\n";
    }
    TextDesk desk(units);
    desk.view.select(SourceRange::empty(1000));
    desk.view.scrollToVisible(SourceRange::empty(1000));
    const double before = desk.view.caretRect().top();
    EXPECT_GT(before, 0);
    desk.history.replace(desk.storage.text().fullRange(), Rope(replacement), {}, TextSelection::at(2000));
    EXPECT_EQ(desk.view.caret(), 2000U);
    EXPECT_EQ(desk.view.caretRect().top(), before);
    desk.undo.undo();
    EXPECT_EQ(desk.view.caret(), 1000U);
    EXPECT_EQ(desk.view.caretRect().top(), before);
    desk.undo.redo();
    EXPECT_EQ(desk.view.caret(), 2000U);
    EXPECT_EQ(desk.view.caretRect().top(), before);
}

TEST(TextView, ScrollsBackFromTheEndOfALineThatIsGone) {
    TextDesk desk(std::u16string(100'000, u'x'));
    desk.view.select(SourceRange::empty(90'000));
    desk.view.scrollToVisible(SourceRange::empty(90'000));
    ASSERT_LT(desk.view.caretRect(0).left(), 0);
    std::u16string lines;
    for (int line = 0; line < 10'000; ++line) {
        lines += u"xxxxxxxxxx\n";
    }
    desk.history.replace(desk.storage.text().fullRange(), Rope(lines), {}, TextSelection::at(99'005));
    EXPECT_GE(desk.view.caretRect(99'000).left(), 0);
    EXPECT_TRUE(desk.view.viewport()->rect().contains(desk.view.caretRect().toRect()));
}

TEST(TextView, GivesItsRulerTheWidthItHintsAt) {
    struct Ruler : QWidget {
        int width = 40;
        QSize sizeHint() const override { return {width, 0}; }
    };
    TextDesk desk(u"uno");
    auto* ruler = new Ruler;
    desk.view.setRuler(ruler);
    EXPECT_TRUE(ruler->isVisible());
    EXPECT_EQ(ruler->geometry(), QRect(0, 0, 40, desk.view.viewport()->height()));
    EXPECT_EQ(desk.view.viewport()->x(), 40);
    ruler->width = 55;
    desk.view.retile();
    EXPECT_EQ(desk.view.viewport()->x(), 55);
    desk.view.resize(500, 200);
    EXPECT_EQ(ruler->height(), desk.view.viewport()->height());
    const QPointer<QWidget> gone(ruler);
    desk.view.setRuler(nullptr);
    EXPECT_EQ(gone, nullptr);
    EXPECT_EQ(desk.view.viewport()->x(), 0);
}

TEST(TextView, RepaintsOnlyTheCaretWhenItBlinks) {
    struct Painted : QObject {
        QRegion region;
        bool eventFilter(QObject*, QEvent* event) override {
            if (event->type() == QEvent::Paint) {
                region += static_cast<QPaintEvent*>(event)->region();
            }
            return false;
        }
    } painted;
    TextDesk desk(u"uno\ndos");
    QApplication::processEvents();
    desk.view.viewport()->installEventFilter(&painted);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !painted.region.isEmpty(); }));
    EXPECT_LE(painted.region.boundingRect().width(), 4);
    EXPECT_TRUE(painted.region.boundingRect().intersects(desk.view.caretRect().toRect()));
}

TEST(TextView, FollowsThePalette) {
    TextDesk desk(u"uno");
    const auto corner = [&] { return desk.view.viewport()->grab().toImage().pixelColor(300, 200); };
    for (const QColor& color : {QColor(Qt::white), QColor(30, 30, 30)}) {
        QPalette palette = desk.view.palette();
        palette.setColor(QPalette::Base, color);
        desk.view.setPalette(palette);
        EXPECT_EQ(corner(), color);
    }
}

TEST(TextView, GoesHomeInTwoSteps) {
    TextDesk desk(u"   uno");
    desk.press(Qt::Key_End);
    desk.press(Qt::Key_Home);
    EXPECT_EQ(desk.shown(), u"   |uno");
    desk.press(Qt::Key_Home);
    EXPECT_EQ(desk.shown(), u"|   uno");
    desk.press(Qt::Key_Home, Qt::ShiftModifier);
    EXPECT_EQ(desk.shown(), u"[   ]uno");
}

TEST(TextView, MarksTheMatchThatIsSelectedMostOfAll) {
    TextDesk desk(u"uno dos uno");
    desk.view.setHighlights([](SourceRange) { return std::vector<SourceRange>{{0, 3}, {8, 11}}; });
    const auto picture = [&](SourceRange selection) {
        desk.view.select(selection);
        return desk.view.viewport()->grab().toImage();
    };
    const auto pixels = [&](const QImage& image, Offset at, const QColor& color) {
        const QRect box(desk.view.caretRect(at).toRect().topLeft(),
                        desk.view.caretRect(at + 3).toRect().bottomLeft());
        int found = 0;
        for (int y = box.top(); y <= box.bottom(); ++y) {
            for (int x = box.left(); x <= box.right(); ++x) {
                found += image.pixelColor(x, y) == color;
            }
        }
        return found;
    };
    const QColor current = TextMarks::highlightColor(TextMarks::Highlight::current, desk.view.palette());
    const QColor usual = TextMarks::highlightColor(TextMarks::Highlight::usual, desk.view.palette());
    const QColor selection = desk.view.palette().color(QPalette::Highlight);
    const QImage onMatch = picture({8, 11});
    EXPECT_GT(pixels(onMatch, 8, current), 0);
    EXPECT_EQ(pixels(onMatch, 8, selection), 0);
    EXPECT_GT(pixels(onMatch, 0, usual), 0);
    EXPECT_EQ(pixels(onMatch, 0, current), 0);
    const QImage beside = picture({4, 7});
    EXPECT_GT(pixels(beside, 4, selection), 0);
    EXPECT_GT(pixels(beside, 8, usual), 0);
}

TEST(TextView, KeepsTheLineOfTheCaretInViewWhenItGetsLower) {
    std::u16string text;
    for (int line = 0; line < 200; ++line) {
        text += u"linea\n";
    }
    TextDesk desk(text);
    const auto isCaretInView = [&] {
        const QRectF caret = desk.view.caretRect();
        return caret.top() >= 0 && caret.bottom() <= desk.view.viewport()->height();
    };
    const std::size_t last = desk.view.lastVisibleLine() - 1;
    desk.view.select(SourceRange::empty(desk.storage.text().lineStart(last)));
    ASSERT_TRUE(isCaretInView());
    desk.view.resize(600, 240);
    EXPECT_TRUE(isCaretInView());
    desk.view.resize(600, 160);
    EXPECT_TRUE(isCaretInView());
    // What was scrolled away on purpose stays away.
    desk.view.verticalScrollBar()->setValue(desk.view.verticalScrollBar()->maximum());
    ASSERT_FALSE(isCaretInView());
    desk.view.resize(600, 120);
    EXPECT_FALSE(isCaretInView());
}
