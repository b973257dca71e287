#include "TextContextMenu.h"
#include "TextDesk.h"
#include "TextMimeData.h"

#include <QApplication>
#include <QDropEvent>
#include <QSignalSpy>
#include <QToolTip>
#include <QWheelEvent>

namespace {

struct Desk : TextDesk {
    using TextDesk::TextDesk;

    Qt::DropAction drop(const QMimeData& data, Offset at, Qt::DropAction action) {
        const Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction;
        const auto modifier = action == Qt::CopyAction ? Qt::ControlModifier : Qt::ShiftModifier;
        QDragEnterEvent enter(place(at), actions, &data, Qt::LeftButton, modifier);
        QApplication::sendEvent(view.viewport(), &enter);
        if (!enter.isAccepted()) {
            return Qt::IgnoreAction;
        }
        QDropEvent dropped(place(at), actions, &data, Qt::LeftButton, modifier);
        QApplication::sendEvent(view.viewport(), &dropped);
        return dropped.dropAction();
    }
    void dragSelectionFrom(Offset at) {
        QTest::mousePress(view.viewport(), Qt::LeftButton, {}, place(at));
        QTest::mouseMove(view.viewport(), place(at) + QPoint(QApplication::startDragDistance() + 1, 0));
        QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, place(at));
    }
};

void turnWheel(TextView& view, QPoint pixels, QPoint angle, Qt::KeyboardModifiers modifiers = {}) {
    QWheelEvent event({9, 9}, view.viewport()->mapToGlobal(QPoint(9, 9)), pixels, angle, Qt::NoButton,
                      modifiers, Qt::NoScrollPhase, false);
    QApplication::sendEvent(view.viewport(), &event);
}

} // namespace

TEST(TextViewMouse, SelectsByCharactersWordsAndLines) {
    TextDesk desk(u"uno dos\ntres cuatro\ncinco");
    QWidget* const port = desk.view.viewport();
    QTest::mousePress(port, Qt::LeftButton, {}, desk.place(2));
    QTest::mouseMove(port, desk.place(6));
    QTest::mouseRelease(port, Qt::LeftButton, {}, desk.place(6));
    EXPECT_EQ(desk.shown(), u"un[o do]s\ntres cuatro\ncinco");

    desk.view.select(TextSelection{});
    QTest::mouseDClick(port, Qt::LeftButton, {}, desk.place(5));
    EXPECT_EQ(desk.shown(), u"uno [dos]\ntres cuatro\ncinco");
    QTest::mousePress(port, Qt::LeftButton, {}, desk.place(5));
    EXPECT_EQ(desk.shown(), u"[uno dos\n]tres cuatro\ncinco");
    QTest::mouseMove(port, desk.place(10));
    EXPECT_EQ(desk.shown(), u"[uno dos\ntres cuatro\n]cinco");
    QTest::mouseRelease(port, Qt::LeftButton, {}, desk.place(10));
}

TEST(TextViewMouse, DragsOnByWordsAfterADoubleClick) {
    TextDesk desk(u"uno dos tres cuatro");
    QWidget* const port = desk.view.viewport();
    const auto send = [&](QEvent::Type type, Offset at) {
        QMouseEvent event(type, desk.place(at), port->mapToGlobal(desk.place(at)), Qt::LeftButton,
                          Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(port, &event);
    };
    send(QEvent::MouseButtonDblClick, 5);
    send(QEvent::MouseMove, 10);
    EXPECT_EQ(desk.shown(), u"uno [dos tres] cuatro");
    send(QEvent::MouseMove, 1);
    EXPECT_EQ(desk.shown(), u"[uno dos] tres cuatro");
    EXPECT_EQ(desk.view.caret(), 0U);
}

TEST(TextViewMouse, ExtendsWithShift) {
    TextDesk desk(u"uno dos tres");
    desk.view.select(SourceRange(4, 7));
    QTest::mouseClick(desk.view.viewport(), Qt::LeftButton, Qt::ShiftModifier, desk.place(10));
    EXPECT_EQ(desk.shown(), u"uno [dos tr]es");
    QTest::mouseClick(desk.view.viewport(), Qt::LeftButton, Qt::ShiftModifier, desk.place(1));
    EXPECT_EQ(desk.shown(), u"u[no ]dos tres");
}

TEST(TextViewMouse, ScrollsAlongWithADragBeyondTheEdge) {
    std::u16string units;
    for (int line = 0; line < 1000; ++line) {
        units += u"línea\n";
    }
    TextDesk desk(units);
    QWidget* const port = desk.view.viewport();
    QTest::mousePress(port, Qt::LeftButton, {}, desk.place(2));
    QTest::mouseMove(port, QPoint(10, port->height() + 20));
    EXPECT_TRUE(QTest::qWaitFor([&] { return desk.view.firstVisibleLine() > 10; }));
    EXPECT_EQ(desk.view.selection().lower, 2U);
    QTest::mouseRelease(port, Qt::LeftButton, {}, QPoint(10, port->height() + 20));
    const Offset caret = desk.view.caret();
    QTest::qWait(100);
    EXPECT_EQ(desk.view.caret(), caret);
}

TEST(TextViewMouse, PutsTheCaretWhereASelectionIsClickedButNotCarried) {
    TextDesk desk(u"uno dos tres");
    desk.view.select(SourceRange(4, 12));
    QTest::mouseClick(desk.view.viewport(), Qt::LeftButton, {}, desk.place(6));
    EXPECT_EQ(desk.shown(), u"uno do|s tres");
}

TEST(TextViewMouse, MovesAndCopiesTextInsideAsOneStep) {
    for (const Qt::DropAction action : {Qt::MoveAction, Qt::CopyAction}) {
        Desk desk(u"uno dos tres");
        desk.view.carried = [&](const QMimeData& data) { return desk.drop(data, 12, action); };
        desk.view.select(SourceRange(4, 8));
        desk.dragSelectionFrom(5);
        const bool moves = action == Qt::MoveAction;
        EXPECT_EQ(desk.text(), moves ? u"uno tresdos " : u"uno dos tresdos ");
        EXPECT_EQ(desk.view.selection(), moves ? SourceRange(8, 12) : SourceRange(12, 16));
        EXPECT_EQ(desk.undo.undoActionName(),
                  moves ? QStringLiteral("Mover texto") : QStringLiteral("Soltar"));
        desk.view.undo();
        EXPECT_EQ(desk.text(), u"uno dos tres");
        EXPECT_EQ(desk.view.selection(), SourceRange(4, 8));
        EXPECT_FALSE(desk.undo.canUndo());
    }
}

TEST(TextViewMouse, CarriesTextWholeOrNotAtAll) {
    // A delegate that does something else instead would make half a move of it.
    struct Busy : TextViewDelegate {
        int changes = 0;
        bool shouldChangeText(SourceRange, std::u16string_view) override {
            ++changes;
            return false;
        }
    } busy;
    Desk desk(u"uno dos tres");
    desk.view.setDelegate(&busy);
    desk.view.carried = [&](const QMimeData& data) { return desk.drop(data, 12, Qt::MoveAction); };
    desk.view.select(SourceRange(4, 8));
    desk.dragSelectionFrom(5);
    EXPECT_EQ(desk.text(), u"uno tresdos ");
    EXPECT_EQ(busy.changes, 0);
    desk.view.setDelegate(nullptr);
}

TEST(TextViewMouse, LeavesTextDroppedOnItselfAlone) {
    Desk desk(u"uno dos tres");
    desk.view.carried = [&](const QMimeData& data) { return desk.drop(data, 6, Qt::MoveAction); };
    desk.view.select(SourceRange(4, 8));
    desk.dragSelectionFrom(5);
    EXPECT_EQ(desk.text(), u"uno dos tres");
    EXPECT_FALSE(desk.undo.canUndo());
}

TEST(TextViewMouse, GivesAwayWhatAnotherViewTook) {
    Desk other(u"<>");
    Desk desk(u"uno dos tres");
    desk.view.carried = [&](const QMimeData& data) { return other.drop(data, 1, Qt::MoveAction); };
    desk.view.select(SourceRange(4, 8));
    desk.dragSelectionFrom(5);
    EXPECT_EQ(desk.text(), u"uno tres");
    EXPECT_EQ(other.text(), u"<dos >");
    EXPECT_EQ(other.undo.undoActionName(), QStringLiteral("Soltar"));
}

TEST(TextViewMouse, HandsDroppedFilesOn) {
    Desk desk(u"uno");
    QSignalSpy files(&desk.view, &TextView::filesDropped);
    QMimeData data;
    const QList<QUrl> urls = {QUrl::fromLocalFile(QStringLiteral("/a.xml"))};
    data.setUrls(urls);
    EXPECT_EQ(desk.drop(data, 1, Qt::MoveAction), Qt::CopyAction);
    ASSERT_EQ(files.count(), 1);
    EXPECT_EQ(files[0][0].value<QList<QUrl>>(), urls);
    EXPECT_EQ(desk.text(), u"uno");

    QMimeData link;
    link.setUrls({QUrl(QStringLiteral("https://example.org/"))});
    link.setText(QStringLiteral("https://example.org/"));
    desk.drop(link, 0, Qt::CopyAction);
    EXPECT_EQ(files.count(), 1);
    EXPECT_EQ(desk.text(), u"https://example.org/uno");

    QMimeData picture;
    picture.setImageData(QImage(1, 1, QImage::Format_RGB32));
    EXPECT_EQ(desk.drop(picture, 0, Qt::CopyAction), Qt::IgnoreAction);
}

TEST(TextViewMouse, ScrollsByWheelAndTouchpad) {
    std::u16string units;
    for (int line = 0; line < 1000; ++line) {
        units += std::u16string(300, u'x') + u'\n';
    }
    TextDesk desk(units);
    const double top = desk.view.lineRect(0).top();
    const double left = desk.view.caretRect(0).left();
    turnWheel(desk.view, {}, {0, -120});
    const double notch = QApplication::wheelScrollLines() * desk.view.lineHeight();
    EXPECT_EQ(desk.view.lineRect(0).top(), top - notch);
    turnWheel(desk.view, {0, 5}, {0, 1});
    EXPECT_EQ(desk.view.lineRect(0).top(), top - notch + 5);
    turnWheel(desk.view, {-30, 0}, {});
    EXPECT_EQ(desk.view.caretRect(0).left(), left - 30);
    turnWheel(desk.view, {0, -20}, {}, Qt::ShiftModifier);
    EXPECT_EQ(desk.view.caretRect(0).left(), left - 50);
    turnWheel(desk.view, {}, {0, 120'000});
    EXPECT_EQ(desk.view.lineRect(0).top(), top);
}

TEST(TextViewMouse, ReachesTheEndOfTenMillionLines) {
    TextDesk desk(std::u16string(10'000'000, u'\n'));
    desk.press(Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(desk.view.lastVisibleLine(), 10'000'000U);
    turnWheel(desk.view, {0, 3}, {});
    const double top = desk.view.lineRect(9'999'990).top();
    turnWheel(desk.view, {0, 7}, {});
    EXPECT_EQ(desk.view.lineRect(9'999'990).top(), top + 7);
}

TEST(TextViewMouse, OffersWhatCanBeDoneInAMenu) {
    struct Adding : TextViewDelegate {
        Offset asked = 99;
        void contextMenuWillOpen(QMenu& menu, Offset at) override {
            asked = at;
            menu.addAction(QStringLiteral("Más"));
        }
    } adding;
    TextDesk desk(u"uno dos");
    desk.view.setDelegate(&adding);
    desk.view.select(TextSelection::at(7));
    desk.type("x");
    const auto open = [&](Offset at) {
        QContextMenuEvent event(QContextMenuEvent::Mouse, desk.place(at),
                                desk.view.viewport()->mapToGlobal(desk.place(at)));
        QApplication::sendEvent(desk.view.viewport(), &event);
        return QPointer(desk.view.findChild<TextContextMenu*>());
    };
    QPointer<TextContextMenu> menu = open(2);
    ASSERT_NE(menu, nullptr);
    QStringList titles;
    for (const QAction* action : menu->actions()) {
        if (!action->isSeparator()) {
            titles += action->text() + (action->isEnabled() ? QString() : QStringLiteral("?"));
        }
    }
    titles.replace(4, titles[4].remove(u'?')); // As the clipboard has text or not.
    EXPECT_EQ(titles, (QStringList{"Deshacer Escribir", "Rehacer?", "Cortar?", "Copiar?", "Pegar",
                                   "Eliminar?", "Seleccionar todo", "Más"}));
    EXPECT_EQ(adding.asked, 2U);
    EXPECT_EQ(desk.shown(), u"un|o dosx");
    menu->actions().front()->trigger();
    EXPECT_EQ(desk.shown(), u"uno dos|");
    menu->close();
    EXPECT_TRUE(QTest::qWaitFor([&] { return menu == nullptr; }));

    desk.view.select(SourceRange(0, 3));
    menu = open(1);
    EXPECT_EQ(desk.shown(), u"[uno] dos");
    for (QAction* action : menu->actions()) {
        if (action->text() == QStringLiteral("Eliminar")) {
            action->trigger();
        }
    }
    EXPECT_EQ(desk.shown(), u"| dos");
    menu->close();
    EXPECT_TRUE(QTest::qWaitFor([&] { return menu == nullptr; }));
    desk.view.setDelegate(nullptr);
}

TEST(TextViewMouse, TellsAboutTheTextUnderTheMouseAsPlainText) {
    struct Telling : TextViewDelegate {
        QString toolTip(Offset at) override { return QStringLiteral("<b>%1</b>").arg(at); }
    } telling;
    TextDesk desk(u"uno dos\nx");
    desk.view.setDelegate(&telling);
    const auto rest = [&](QPoint place) {
        QHelpEvent event(QEvent::ToolTip, place, desk.view.viewport()->mapToGlobal(place));
        QApplication::sendEvent(desk.view.viewport(), &event);
    };
    rest(desk.place(5));
    EXPECT_TRUE(QToolTip::text().contains(QStringLiteral("&lt;b&gt;5&lt;/b&gt;")));
    rest(desk.place(8) + QPoint(200, 0));
    EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }));
    desk.view.setDelegate(nullptr);
}
