#include "CommitField.h"

#include "FieldDraft.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace {

/// A field on the screen beside another widget that can take the focus.
struct Desk {
    QWidget window;
    CommitField* field;
    QLineEdit* other;
    QStringList commits;
    bool isAccepted = true;

    explicit Desk(CommitField::Axis axis = CommitField::Axis::horizontal, const QString& value = u"uno"_qs)
        : field(new CommitField(QStringLiteral("Nombre"), axis)), other(new QLineEdit) {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(field);
        layout->addWidget(other);
        field->setValue(value);
        field->setCommit([this](const QString& draft) {
            commits += draft;
            return isAccepted;
        });
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        field->setFocus();
        EXPECT_TRUE(field->isFocused());
        press(Qt::Key_End);
    }
    ~Desk() { field->setCommit({}); }

    void type(const QString& text) const { QTest::keyClicks(field->editor(), text); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
        QTest::keyClick(field->editor(), key, modifiers);
    }
};

} // namespace

TEST(CommitField, CommitsWithReturn) {
    Desk desk;
    desk.type(QStringLiteral("!"));
    EXPECT_EQ(desk.commits, QStringList());
    desk.press(Qt::Key_Return);
    EXPECT_EQ(desk.commits, QStringList{QStringLiteral("uno!")});
    EXPECT_EQ(desk.field->value(), QStringLiteral("uno")) << "the value follows the document";
}

TEST(CommitField, CommitsAnUnchangedDraftWithReturnOnly) {
    Desk desk;
    desk.other->setFocus();
    EXPECT_EQ(desk.commits, QStringList());
    desk.field->setFocus();
    desk.press(Qt::Key_Return);
    EXPECT_EQ(desk.commits, QStringList{QStringLiteral("uno")});
}

TEST(CommitField, CommitsAChangedDraftOnceWhenItLosesTheFocus) {
    Desk desk;
    desk.type(QStringLiteral("2"));
    desk.other->setFocus();
    EXPECT_EQ(desk.commits, QStringList{QStringLiteral("uno2")});
    EXPECT_EQ(desk.field->draft(), QStringLiteral("uno2")) << "until the document says otherwise";
    desk.field->setFocus();
    desk.other->setFocus();
    EXPECT_EQ(desk.commits.size(), 1);
}

TEST(CommitField, CommitsADraftThatWasSubmittedNotAgain) {
    Desk desk;
    desk.type(QStringLiteral("2"));
    desk.press(Qt::Key_Return);
    desk.other->setFocus();
    EXPECT_EQ(desk.commits.size(), 1);
}

TEST(CommitField, CommitsAnEmptyDraftOnce) {
    Desk desk;
    desk.field->selectAll();
    desk.press(Qt::Key_Delete);
    desk.press(Qt::Key_Return);
    desk.other->setFocus();
    EXPECT_EQ(desk.commits, QStringList{QString()});
}

TEST(CommitField, ShowsItsValueAgainWhenRefused) {
    Desk desk;
    desk.isAccepted = false;
    desk.type(QStringLiteral(" x"));
    desk.press(Qt::Key_Return);
    EXPECT_EQ(desk.commits.size(), 1);
    EXPECT_EQ(desk.field->draft(), QStringLiteral("uno"));
    desk.other->setFocus();
    EXPECT_EQ(desk.commits.size(), 1);
}

TEST(CommitField, GivesTheDraftUpWithEscape) {
    Desk desk;
    desk.type(QStringLiteral("xyz"));
    desk.press(Qt::Key_Escape);
    EXPECT_EQ(desk.field->draft(), QStringLiteral("uno"));
    desk.other->setFocus();
    EXPECT_EQ(desk.commits, QStringList());
}

TEST(CommitField, FollowsTheValueWhileNobodyWrites) {
    Desk desk;
    desk.field->setValue(QStringLiteral("dos"));
    EXPECT_EQ(desk.field->draft(), QStringLiteral("dos")) << "focused, but nothing was written";
    desk.type(QStringLiteral("!"));
    desk.field->setValue(QStringLiteral("tres"));
    EXPECT_EQ(desk.field->draft(), QStringLiteral("dos!"));
    desk.other->setFocus();
    EXPECT_EQ(desk.commits, QStringList{QStringLiteral("dos!")});
    desk.field->setValue(QStringLiteral("cuatro"));
    EXPECT_EQ(desk.field->draft(), QStringLiteral("cuatro"));
}

TEST(CommitField, CommitsWhatIsWrittenBeforeACommandElsewhere) {
    Desk desk;
    desk.type(QStringLiteral("9"));
    FieldDraft::commit(QApplication::focusWidget());
    EXPECT_EQ(desk.commits, QStringList{QStringLiteral("uno9")});
    desk.other->setFocus();
    FieldDraft::commit(QApplication::focusWidget());
    EXPECT_EQ(desk.commits.size(), 1);
}

TEST(CommitField, TakesSeveralLinesWhenVertical) {
    Desk desk(CommitField::Axis::vertical, QStringLiteral("a\nb"));
    auto* const editor = qobject_cast<QPlainTextEdit*>(desk.field->editor());
    ASSERT_NE(editor, nullptr);
    const int height = editor->height();
    editor->moveCursor(QTextCursor::End);
    desk.press(Qt::Key_Return, Qt::ShiftModifier);
    desk.type(QStringLiteral("c"));
    for (int line = 0; line < 4; ++line) {
        desk.press(Qt::Key_Return, Qt::ShiftModifier);
    }
    EXPECT_EQ(desk.commits, QStringList());
    EXPECT_GT(editor->height(), height);
    desk.press(Qt::Key_Return);
    EXPECT_EQ(desk.commits, QStringList{QStringLiteral("a\nb\nc\n\n\n\n")});
    QTest::keyClick(editor, Qt::Key_Tab);
    EXPECT_TRUE(desk.other->hasFocus());
}

TEST(CommitField, LeavesReturnWithControlToCommands) {
    Desk desk(CommitField::Axis::vertical, QStringLiteral("a"));
    desk.press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(desk.commits, QStringList());
    QKeyEvent asked(QEvent::ShortcutOverride, Qt::Key_Return, Qt::ControlModifier);
    asked.ignore();
    QApplication::sendEvent(desk.field->editor(), &asked);
    EXPECT_FALSE(asked.isAccepted());
}

TEST(CommitField, GrowsWithWrappedLinesUpToABound) {
    Desk desk(CommitField::Axis::vertical, QStringLiteral("uno"));
    desk.window.resize(200, 600);
    const int height = desk.field->editor()->height();
    desk.field->setDraft(QStringLiteral("palabra ").repeated(30));
    EXPECT_GT(desk.field->editor()->height(), height);
    const int grown = desk.field->editor()->height();
    desk.field->setDraft(QStringLiteral("palabra ").repeated(3000));
    const int tallest = desk.field->editor()->height();
    EXPECT_GT(tallest, grown);
    EXPECT_LT(tallest, 400);
    desk.field->setDraft(QStringLiteral("palabra ").repeated(30));
    desk.window.resize(1200, 600);
    EXPECT_TRUE(QTest::qWaitFor([&] { return desk.field->editor()->height() < grown; }));
}

TEST(CommitField, KeepsLineBreaksItCannotShow) {
    // A CR becomes a line break in the editor; that alone is no change.
    for (const auto axis : {CommitField::Axis::horizontal, CommitField::Axis::vertical}) {
        Desk desk(axis, QStringLiteral("a\r\nb\rc"));
        desk.other->setFocus();
        EXPECT_EQ(desk.commits, QStringList());
        desk.field->setFocus();
        desk.press(Qt::Key_Return);
        EXPECT_EQ(desk.commits, QStringList{QStringLiteral("a\r\nb\rc")});
    }
}

TEST(CommitField, KeepsSpacesThatDoNotBreak) {
    const QString value = QStringLiteral("a\u00A0b\u2028c");
    for (const auto axis : {CommitField::Axis::horizontal, CommitField::Axis::vertical}) {
        Desk desk(axis, value);
        EXPECT_EQ(desk.field->draft(), value);
        QTest::keyClick(desk.field->editor(), Qt::Key_End, Qt::ControlModifier);
        desk.type(QStringLiteral("d"));
        desk.other->setFocus();
        EXPECT_EQ(desk.commits, QStringList{value + u'd'});
    }
}

TEST(CommitField, ShowsTheStartOfWhatIsTooLongToEdit) {
    for (const auto axis : {CommitField::Axis::horizontal, CommitField::Axis::vertical}) {
        Desk desk(axis, QString(65'537, u'x'));
        EXPECT_EQ(desk.field->draft(), QString(1000, u'x') + u'…');
        EXPECT_FALSE(desk.field->editor()->toolTip().isEmpty());
        desk.type(QStringLiteral("y"));
        desk.press(Qt::Key_Return, Qt::ShiftModifier);
        desk.press(Qt::Key_Return);
        desk.other->setFocus();
        EXPECT_EQ(desk.commits, QStringList());
        desk.field->setValue(QStringLiteral("corto"));
        EXPECT_TRUE(desk.field->editor()->toolTip().isEmpty());
        desk.field->setFocus();
        desk.type(QStringLiteral("y"));
        EXPECT_NE(desk.field->draft(), QStringLiteral("corto"));
    }
}

TEST(CommitField, EditsTheLongestValueThatItShowsWhole) {
    const QString longest(65'536, u'x');
    Desk desk(CommitField::Axis::horizontal, longest);
    EXPECT_EQ(desk.field->draft(), longest);
}

TEST(CommitField, KeepsTheCaretAndItsStepsOfUndoWhenItsCommitBecomesTheValue) {
    for (const auto axis : {CommitField::Axis::horizontal, CommitField::Axis::vertical}) {
        Desk desk(axis, QStringLiteral("tres"));
        desk.type(QStringLiteral(" mas"));
        desk.press(Qt::Key_Return);
        desk.field->setValue(QStringLiteral("tres mas"));
        desk.type(QStringLiteral(" aun"));
        EXPECT_EQ(desk.field->draft(), QStringLiteral("tres mas aun"));
        FieldDraft::commit(QApplication::focusWidget());
        desk.field->setValue(QStringLiteral("tres mas aun"));
        FieldDraft::commit(QApplication::focusWidget());
        desk.type(QStringLiteral("!"));
        EXPECT_EQ(desk.field->draft(), QStringLiteral("tres mas aun!"));
        EXPECT_EQ(desk.commits, (QStringList{QStringLiteral("tres mas"), QStringLiteral("tres mas aun")}));
        desk.press(Qt::Key_Z, Qt::ControlModifier);
        EXPECT_TRUE(QStringLiteral("tres mas aun").startsWith(desk.field->draft())) << "a step taken back";
    }
}

TEST(CommitField, KeepsTheCaretWhenTheValueChangesElsewhere) {
    for (const auto axis : {CommitField::Axis::horizontal, CommitField::Axis::vertical}) {
        Desk desk(axis, QStringLiteral("cuatro"));
        desk.press(Qt::Key_Left);
        desk.press(Qt::Key_Left);
        desk.field->setValue(QStringLiteral("cinco y"));
        desk.type(QStringLiteral("|"));
        EXPECT_EQ(desk.field->draft(), QStringLiteral("cinc|o y"));
    }
}

TEST(CommitField, UndoesNothingOfAnotherValueAfterItsDraftWasDiscarded) {
    for (const auto axis : {CommitField::Axis::horizontal, CommitField::Axis::vertical}) {
        Desk desk(axis);
        desk.type(QStringLiteral("!"));
        desk.press(Qt::Key_Return);
        desk.field->setValue(QStringLiteral("uno!"));
        desk.field->discardDraft();
        desk.press(Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(desk.field->draft(), QStringLiteral("uno!"));
    }
}

TEST(CommitField, ShowsItsLinesWhole) {
    for (const QString& text : {QStringLiteral("1\n2\n3\n4"), QStringLiteral("1\n2\n3\n4\n5\n6\n7\n8"),
                                QStringLiteral("1\n2 😀\n3 😀\n4 😀\n5"), QStringLiteral("palabra ").repeated(30)}) {
        Desk desk(CommitField::Axis::vertical, text);
        desk.window.resize(200, 600);
        const auto* const editor = qobject_cast<QPlainTextEdit*>(desk.field->editor());
        EXPECT_TRUE(QTest::qWaitFor([&] { return editor->verticalScrollBar()->maximum() == 0; }))
            << text.toStdString();
    }
}

TEST(CommitField, SaysBelowSeveralLinesThatTheyAreTooLong) {
    Desk desk(CommitField::Axis::vertical, QString(65'537, u'x'));
    const auto* const note = desk.field->findChild<QLabel*>();
    ASSERT_NE(note, nullptr);
    EXPECT_TRUE(note->isVisible());
    EXPECT_EQ(note->text(), desk.field->editor()->toolTip());
    desk.field->setValue(QStringLiteral("corto"));
    EXPECT_FALSE(note->isVisible());
}
