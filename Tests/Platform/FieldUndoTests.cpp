#include "FieldUndo.h"

#include "DocumentDesk.h"

#include <QLineEdit>

namespace {

/// A window on a note, with a field beside it that has the keyboard.
struct FieldDesk : DocumentDesk {
    DocumentWindow* window = nullptr;
    QLineEdit* field = nullptr;

    FieldDesk() {
        controller.newDocument();
        EXPECT_TRUE(QTest::qWaitFor([this] { return !opened.isEmpty(); }, 10'000));
        window = opened.takeFirst().first().value<DocumentWindow*>();
        field = new QLineEdit(window);
        FieldUndo::shareWithDocument(*field);
        field->show();
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
        field->setFocus();
    }

    void press(QKeySequence::StandardKey key) const {
        const QKeyCombination keys = QKeySequence(key)[0];
        QTest::keyClick(field, keys.key(), keys.keyboardModifiers());
    }
    void undo() const { press(QKeySequence::Undo); }
    void redo() const { press(QKeySequence::Redo); }
    QString state() const { return note(window).text() + u'|' + field->text(); }
};

} // namespace

TEST(FieldUndo, TakesBackTheFieldsStepsFirstAndThenTheDocuments) {
    FieldDesk desk;
    DocumentDesk::note(desk.window).type(QStringLiteral("uno"));
    QTest::keyClicks(desk.field, QStringLiteral("dos"));
    EXPECT_EQ(desk.state(), QStringLiteral("uno|dos"));
    desk.undo();
    EXPECT_EQ(desk.state(), QStringLiteral("uno|"));
    desk.undo();
    EXPECT_EQ(desk.state(), QStringLiteral("|"));
    desk.undo();
    EXPECT_EQ(desk.state(), QStringLiteral("|"));
}

TEST(FieldUndo, RedoesTheFieldsStepsFirstAndThenTheDocuments) {
    FieldDesk desk;
    DocumentDesk::note(desk.window).type(QStringLiteral("uno"));
    QTest::keyClicks(desk.field, QStringLiteral("dos"));
    desk.undo();
    desk.undo();
    desk.redo();
    EXPECT_EQ(desk.state(), QStringLiteral("|dos"));
    desk.redo();
    EXPECT_EQ(desk.state(), QStringLiteral("uno|dos"));
}

TEST(FieldUndo, WorksThroughTheMenuToo) {
    FieldDesk desk;
    DocumentDesk::note(desk.window).type(QStringLiteral("uno"));
    QTest::keyClicks(desk.field, QStringLiteral("dos"));
    QAction* const undo = desk.window->menu(DocumentWindow::Menu::edit).actions().first();
    undo->trigger();
    EXPECT_EQ(desk.state(), QStringLiteral("uno|"));
    undo->trigger();
    EXPECT_EQ(desk.state(), QStringLiteral("|"));
}

TEST(FieldUndo, LeavesOtherFieldsToThemselves) {
    FieldDesk desk;
    DocumentDesk::note(desk.window).type(QStringLiteral("uno"));
    QLineEdit other(desk.window);
    other.show();
    other.setFocus();
    EXPECT_FALSE(FieldUndo::isForDocument(&other, "undo"));
    EXPECT_FALSE(FieldUndo::isForDocument(desk.window, "undo"));
    QTest::keyClick(&other, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(desk.state(), QStringLiteral("uno|"));
}
