#include "InsertionPrompts.h"

#include "NamePromptDialog.h"
#include "ParsedDesk.h"
#include "TextPromptDialog.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

namespace {

struct Desk : ParsedDesk {
    QWidget window;
    InsertionPrompts prompts{session, window};

    explicit Desk(std::u16string_view text) : ParsedDesk(text) {
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    template <class Dialog>
    Dialog* dialog() const {
        return qobject_cast<Dialog*>(QApplication::activeModalWidget());
    }
    /// Writes into the open dialog and accepts with Return.
    void answer(const QString& text) const {
        auto* const prompt = dialog<TextPromptDialog>();
        ASSERT_NE(prompt, nullptr);
        auto* const field = prompt->findChild<QPlainTextEdit*>();
        field->setPlainText(text);
        QTest::keyClick(field, Qt::Key_Return);
    }
};

} // namespace

TEST(InsertionPrompts, CreateTheRoot) {
    Desk desk(u"<?xml version=\"1.0\"?>\n<!-- c -->\n");
    desk.prompts.askForRoot();
    auto* const prompt = desk.dialog<NamePromptDialog>();
    ASSERT_NE(prompt, nullptr);
    QTest::keyClicks(prompt->findChild<QLineEdit*>(), QStringLiteral("raiz"));
    QTest::keyClick(prompt, Qt::Key_Return);
    EXPECT_EQ(desk.text(), QStringLiteral("<?xml version=\"1.0\"?>\n<!-- c -->\n<raiz></raiz>\n"));
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Crear elemento raíz"));
    desk.waitForTree();
    EXPECT_EQ(desk.selected(), u"<raiz></raiz>");
}

TEST(InsertionPrompts, AskForNothingWhereThereIsNothingToDo) {
    Desk desk(u"<a/>");
    desk.prompts.askForRoot();
    desk.prompts.askForText();
    desk.prompts.askForComment();
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST(InsertionPrompts, InsertTextEscaped) {
    Desk desk(u"<a>\r\n<b/>\r\n</a>");
    desk.select(u"<b");
    desk.prompts.askForText();
    desk.answer(QStringLiteral("1 < 2\n& más"));
    EXPECT_EQ(desk.text(), QStringLiteral("<a>\r\n<b>1 &lt; 2\r\n&amp; más</b>\r\n</a>"));
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Insertar texto"));
    desk.waitForTree();
    EXPECT_EQ(desk.selected(), u"1 &lt; 2\r\n&amp; más");
}

TEST(InsertionPrompts, RefuseACommentWithTwoHyphens) {
    Desk desk(u"<a/>");
    desk.select(u"<a");
    desk.prompts.askForComment();
    desk.answer(QStringLiteral("uno -- dos"));
    auto* const prompt = desk.dialog<TextPromptDialog>();
    ASSERT_NE(prompt, nullptr) << "it stays open";
    EXPECT_EQ(prompt->text(), QStringLiteral("uno -- dos"));
    EXPECT_EQ(desk.text(), QStringLiteral("<a/>"));
    desk.answer(QStringLiteral("uno - dos"));
    EXPECT_EQ(desk.text(), QStringLiteral("<a>\n    <!-- uno - dos -->\n</a>"));
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Insertar comentario"));
}

TEST(InsertionPrompts, TellWhereTextHasNoPlace) {
    Desk desk(u"<a/>");
    desk.session.select(NodePath());
    desk.prompts.askForText();
    desk.answer(QStringLiteral("x"));
    EXPECT_EQ(desk.session.errorMessage(), QStringLiteral("Fuera del elemento raíz no puede haber texto."));
    EXPECT_EQ(desk.text(), QStringLiteral("<a/>"));
}

TEST(InsertionPrompts, KeepTheTextWhenAButtonTakesTheFocus) {
    Desk desk(u"<a/>");
    desk.select(u"<a");
    desk.prompts.askForText();
    auto* const prompt = desk.dialog<TextPromptDialog>();
    ASSERT_NE(prompt, nullptr);
    auto* const field = prompt->findChild<QPlainTextEdit*>();
    QTest::keyClicks(field, QStringLiteral("uno"));
    QTest::keyClick(field, Qt::Key_Tab);
    EXPECT_FALSE(field->hasFocus());
    EXPECT_EQ(prompt->text(), QStringLiteral("uno"));
    prompt->accept();
    EXPECT_EQ(desk.text(), QStringLiteral("<a>uno</a>"));
}
