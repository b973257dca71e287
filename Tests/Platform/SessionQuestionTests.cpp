#include "SessionQuestion.h"

#include "DocumentDesk.h"

TEST(SessionQuestion, LetsTheSessionEndWithoutChanges) {
    DocumentDesk desk;
    desk.controller.newDocument();
    EXPECT_TRUE(SessionQuestion(desk.controller).ask());
}

TEST(SessionQuestion, AsksAboutEachDocumentWithChanges) {
    struct Row {
        QString button;
        bool mayEnd;
        bool isModified;
        QByteArray contents;
    };
    for (const Row& row : {Row{cancelButton, false, true, "hola"}, Row{discardButton, true, true, "hola"},
                           Row{saveButton, true, false, "cambiado"}}) {
        DocumentDesk desk;
        DocumentWindow* const first = desk.open(desk.write(QStringLiteral("a.txt"), "hola"));
        DocumentWindow* const second = desk.open(desk.write(QStringLiteral("b.txt"), "hola"));
        DocumentDesk::note(first).type(QStringLiteral("cambiado"));
        DocumentDesk::note(second).type(QStringLiteral("cambiado"));
        const Answer answer(row.button);
        EXPECT_EQ(SessionQuestion(desk.controller).ask(), row.mayEnd);
        EXPECT_EQ(answer.question(), row.mayEnd ? QStringLiteral("¿Guardar los cambios en “b.txt”?")
                                                : QStringLiteral("¿Guardar los cambios en “a.txt”?"));
        for (DocumentWindow* const window : {first, second}) {
            EXPECT_TRUE(window->isVisible()) << "another program may still cancel";
            EXPECT_EQ(window->isWindowModified(), row.isModified);
        }
        EXPECT_EQ(desk.read(QStringLiteral("a.txt")), row.contents);
        EXPECT_EQ(desk.read(QStringLiteral("b.txt")), row.contents);
    }
}

TEST(SessionQuestion, KeepsTheSessionWhenSavingFails) {
    DocumentDesk desk;
    DocumentWindow* const window = desk.open(desk.write(QStringLiteral("a.txt"), "hola"));
    DocumentDesk::note(window).type(QStringLiteral("cambiado"));
    ASSERT_TRUE(QFile::remove(window->path()));
    ASSERT_TRUE(QDir().mkdir(window->path()));
    const Answer save(saveButton);
    const Answer read(QStringLiteral("OK"));
    EXPECT_FALSE(SessionQuestion(desk.controller).ask());
    EXPECT_TRUE(window->isWindowModified());
}

TEST(SessionQuestion, GivesUpNoChangesWhenALaterQuestionIsCancelled) {
    DocumentDesk desk;
    DocumentWindow* const first = desk.open(desk.write(QStringLiteral("a.txt"), "hola"));
    DocumentWindow* const second = desk.open(desk.write(QStringLiteral("b.txt"), "hola"));
    DocumentDesk::note(first).type(QStringLiteral("cambiado"));
    DocumentDesk::note(second).type(QStringLiteral("cambiado"));
    QSignalSpy givenUp(first, &DocumentWindow::changesGivenUp);
    const Answer answer(QStringList{discardButton, cancelButton});
    EXPECT_FALSE(SessionQuestion(desk.controller).ask());
    EXPECT_EQ(givenUp.count(), 0);
}
