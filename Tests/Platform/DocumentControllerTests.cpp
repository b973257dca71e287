#include "DocumentDesk.h"

#include <QContextMenuEvent>
#include <QDir>
#include <QLineEdit>
#include <QThreadPool>
#include <QTimer>

#include <unistd.h>

namespace {

using Desk = DocumentDesk;

} // namespace

TEST(DocumentController, OpensAFileInAWindowOfItsOwn) {
    Desk desk;
    DocumentWindow* const window = desk.open(desk.write(QStringLiteral("a.txt"), "hola"));
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(Desk::note(window).text(), QStringLiteral("hola"));
    EXPECT_EQ(window->windowTitle(), QStringLiteral("a.txt[*] — ") + QCoreApplication::applicationName());
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_FALSE(window->isPristine());
}

TEST(DocumentController, BringsAFileThatIsOpenToTheFront) {
    Desk desk;
    const QString path = desk.write(QStringLiteral("a.txt"), "hola");
    DocumentWindow* const window = desk.open(path);
    desk.controller.newDocument();
    QFile::link(path, desk.folder.filePath(QStringLiteral("enlace.txt")));
    desk.controller.open({path, desk.folder.filePath(QStringLiteral("enlace.txt"))});
    EXPECT_TRUE(QTest::qWaitForWindowActive(window));
    EXPECT_EQ(desk.controller.windows().size(), 2U);
}

TEST(DocumentController, TellsWhyAFileCannotBeOpened) {
    Desk desk;
    QSignalSpy failed(&desk.controller, &DocumentController::openingFailed);
    desk.controller.open({desk.folder.filePath(QStringLiteral("no.txt"))});
    EXPECT_TRUE(desk.controller.hasOpenDocuments()) << "while it is under way";
    ASSERT_TRUE(failed.wait(10'000));
    EXPECT_EQ(failed.first().at(1).toString(), QStringLiteral("No está."));
    EXPECT_FALSE(desk.controller.hasOpenDocuments());
}

TEST(DocumentController, TellsFilesOfOneNameApart) {
    Desk desk;
    for (const char* const folder : {"uno", "dos"}) {
        ASSERT_TRUE(QDir(desk.folder.path()).mkdir(QLatin1String(folder)));
    }
    const QString rest = QStringLiteral(" — ") + QCoreApplication::applicationName();
    DocumentWindow* const first = desk.open(desk.write(QStringLiteral("uno/a.txt"), "hola"));
    EXPECT_EQ(first->windowTitle(), QStringLiteral("a.txt[*]") + rest);
    DocumentWindow* const second = desk.open(desk.write(QStringLiteral("dos/a.txt"), "hola"));
    DocumentWindow* const other = desk.open(desk.write(QStringLiteral("b.txt"), "hola"));
    EXPECT_EQ(first->windowTitle(), QStringLiteral("a.txt[*] — uno") + rest);
    EXPECT_EQ(second->windowTitle(), QStringLiteral("a.txt[*] — dos") + rest);
    EXPECT_EQ(other->windowTitle(), QStringLiteral("b.txt[*]") + rest);
    Desk::note(second).type(QStringLiteral("cambiado"));
    QMenu& list = first->menu(DocumentWindow::Menu::window);
    emit list.aboutToShow();
    QStringList names;
    for (const QAction* const action : list.actions()) {
        names += action->text();
    }
    EXPECT_EQ(names.mid(3), (QStringList{QStringLiteral("a.txt — uno"), QStringLiteral("a.txt* — dos"),
                                         QStringLiteral("b.txt")}));
    Desk::note(second).undoManager().undo();
    second->close();
    EXPECT_EQ(first->windowTitle(), QStringLiteral("a.txt[*]") + rest);
}

TEST(DocumentController, ShowsAFileThatTakesLong) {
    Desk desk;
    const QString path = desk.write(QStringLiteral("a.txt"), "hola");
    desk.gate.close();
    desk.controller.open({path});
    ASSERT_TRUE(QTest::qWaitFor([&] { return desk.controller.windows().size() == 1; }));
    DocumentWindow* const window = desk.controller.windows().front();
    EXPECT_EQ(window->notices().text(), QStringLiteral("Abriendo “a.txt”…"));
    EXPECT_EQ(window->documentName(), QStringLiteral("a.txt"));
    EXPECT_TRUE(window->windowTitle().startsWith(QStringLiteral("a.txt[*] — ")));
    EXPECT_FALSE(window->isPristine());
    EXPECT_TRUE(window->notices().isBusy());
    desk.gate.open();
    ASSERT_TRUE(desk.opened.count() == 1 || desk.opened.wait(10'000));
    EXPECT_EQ(Desk::note(window).text(), QStringLiteral("hola"));
    EXPECT_EQ(window->notices().text(), QString());
}

TEST(DocumentController, GivesUpAFileThatTakesTooLong) {
    Desk desk;
    const QString path = desk.write(QStringLiteral("a.txt"), "hola");
    desk.gate.close();
    desk.controller.open({path});
    ASSERT_TRUE(QTest::qWaitFor([&] { return desk.controller.windows().size() == 1; }));
    const QPointer<DocumentWindow> window = desk.controller.windows().front();
    QTest::mouseClick(window->notices().findChild<QPushButton*>(), Qt::LeftButton);
    EXPECT_TRUE(isGone(window));
    EXPECT_FALSE(desk.controller.hasOpenDocuments());
    desk.gate.open();
    EXPECT_FALSE(desk.opened.wait(100));
}

TEST(DocumentWindow, SavesToItsFile) {
    Desk desk;
    DocumentWindow* const window = desk.open(desk.write(QStringLiteral("a.txt"), "hola"));
    Desk::note(window).type(QStringLiteral("adiós"));
    EXPECT_TRUE(window->isWindowModified());
    QSignalSpy saved(window, &DocumentWindow::saved);
    window->save();
    ASSERT_TRUE(saved.wait(10'000));
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_EQ(desk.read(QStringLiteral("a.txt")), QByteArray("adiós"));
    Desk::note(window).undoManager().undo();
    EXPECT_TRUE(window->isWindowModified());
    Desk::note(window).undoManager().redo();
    EXPECT_FALSE(window->isWindowModified());
}

TEST(DocumentWindow, CountsWhatIsTypedDuringASaveAsUnsaved) {
    Desk desk;
    DocumentWindow* const window = desk.open(desk.write(QStringLiteral("a.txt"), "hola"));
    Desk::note(window).type(QStringLiteral("uno"));
    QSignalSpy saved(window, &DocumentWindow::saved);
    desk.gate.close();
    window->save();
    Desk::note(window).type(QStringLiteral("dos"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return window->notices().isBusy(); }));
    EXPECT_EQ(window->notices().text(), QStringLiteral("Guardando “a.txt”…"));
    desk.gate.open();
    ASSERT_TRUE(saved.wait(10'000));
    EXPECT_EQ(desk.read(QStringLiteral("a.txt")), QByteArray("uno"));
    EXPECT_TRUE(window->isWindowModified());
    EXPECT_FALSE(window->notices().isVisible());
}

TEST(DocumentWindow, CountsAsUnsavedUntilItIsSaved) {
    Desk desk;
    DocumentWindow* const window = desk.open(desk.write(QStringLiteral("a.txt"), "hola"));
    Desk::note(window).type(QStringLiteral("uno"));
    desk.gate.close();
    QSignalSpy saved(window, &DocumentWindow::saved);
    window->save();
    ASSERT_TRUE(QTest::qWaitFor([&] { return window->notices().isBusy(); }));
    EXPECT_TRUE(window->isWindowModified());
    desk.gate.open();
    ASSERT_TRUE(saved.wait(10'000));
    EXPECT_FALSE(window->isWindowModified());
}

TEST(DocumentWindow, GivesASaveUpAtOnceWhenItIsCancelled) {
    Desk desk;
    DocumentWindow* const window = desk.open(desk.write(QStringLiteral("a.txt"), "hola"));
    Desk::note(window).type(QStringLiteral("uno"));
    desk.gate.close();
    QSignalSpy ended(window, &DocumentWindow::savingEnded);
    window->save();
    ASSERT_TRUE(QTest::qWaitFor([&] { return window->notices().isBusy(); }));
    QTest::mouseClick(window->notices().findChild<QPushButton*>(), Qt::LeftButton);
    // The worker still waits, as for a disk that hangs.
    EXPECT_FALSE(window->isSaving());
    EXPECT_FALSE(window->notices().isVisible());
    ASSERT_EQ(ended.count(), 1);
    EXPECT_FALSE(ended.first().first().toBool());
    EXPECT_TRUE(window->isWindowModified());
    desk.gate.open();
    QThreadPool::globalInstance()->waitForDone();
    EXPECT_EQ(desk.read(QStringLiteral("a.txt")), QByteArray("hola"));
    QSignalSpy saved(window, &DocumentWindow::saved);
    window->save();
    ASSERT_TRUE(saved.wait(10'000)) << "it can be saved again";
    EXPECT_EQ(desk.read(QStringLiteral("a.txt")), QByteArray("uno"));
    EXPECT_EQ(ended.count(), 2);
}

TEST(DocumentWindow, OffersToCancelOnlyUntilTheFileIsReplaced) {
    Desk desk;
    DocumentWindow* const window = desk.open(desk.write(QStringLiteral("a.txt"), "hola"));
    Desk::note(window).type(QStringLiteral("uno"));
    const auto isOffered = [window] {
        const auto* const button = window->notices().findChild<QPushButton*>();
        return button != nullptr && button->isVisible();
    };
    desk.gate.close();
    desk.replacing.close();
    QSignalSpy saved(window, &DocumentWindow::saved);
    window->save();
    ASSERT_TRUE(QTest::qWaitFor(isOffered));
    desk.gate.open();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !isOffered(); }));
    EXPECT_EQ(window->notices().text(), QStringLiteral("Guardando “a.txt”…"));
    EXPECT_TRUE(window->notices().isBusy());
    desk.replacing.open();
    ASSERT_TRUE(saved.wait(10'000));
    EXPECT_EQ(desk.read(QStringLiteral("a.txt")), QByteArray("uno"));
    EXPECT_FALSE(window->isWindowModified());
}

TEST(DocumentWindow, AsksAgainWhenTheFileChangesWhileItIsSaved) {
    Desk desk;
    DocumentWindow* const window = desk.open(desk.write(QStringLiteral("a.txt"), "hola"));
    Desk::note(window).type(QStringLiteral("mío"));
    const auto saveWhileItChanges = [&](const QByteArray& change) {
        ASSERT_TRUE(QTest::qWaitFor([&] { return window->notices().isBusy(); }));
        desk.write(QStringLiteral("a.txt"), change);
        Answer cancel(QStringLiteral("Cancelar"));
        desk.gate.open();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !cancel.question().isEmpty(); }));
        EXPECT_EQ(cancel.question(), QStringLiteral("“a.txt” ha cambiado en el disco mientras se guardaba."));
        EXPECT_EQ(desk.read(QStringLiteral("a.txt")), change);
        EXPECT_TRUE(window->isWindowModified());
    };
    desk.gate.close();
    window->save();
    saveWhileItChanges("de otro programa");
    // The user settles it for the file that is there then, not for one that comes later.
    desk.gate.close();
    {
        Answer overwrite(QStringLiteral("Guardar encima"));
        window->save();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !overwrite.question().isEmpty() && window->isSaving(); }));
    }
    saveWhileItChanges("de otro más");
}

TEST(DocumentWindow, AsksWhatIsToBecomeOfOtherNamesOfItsFile) {
    struct Row {
        QString button;
        QByteArray file;
        QByteArray other;
    };
    for (const Row& row : {Row{QStringLiteral("Cancelar"), "hola", "hola"},
                           Row{QStringLiteral("Guardar en todos"), "mío", "mío"},
                           Row{QStringLiteral("Guardar solo en este"), "mío", "hola"}}) {
        Desk desk;
        const QString path = desk.write(QStringLiteral("a.txt"), "hola");
        const QString other = desk.folder.filePath(QStringLiteral("b.txt"));
        ASSERT_EQ(link(QFile::encodeName(path).constData(), QFile::encodeName(other).constData()), 0);
        DocumentWindow* const window = desk.open(path);
        Desk::note(window).type(QStringLiteral("mío"));
        QSignalSpy ended(window, &DocumentWindow::savingEnded);
        {
            Answer answer(row.button);
            window->save();
            ASSERT_TRUE(QTest::qWaitFor([&] { return !answer.question().isEmpty() && !window->isSaving(); }));
            EXPECT_EQ(answer.question(),
                      QStringLiteral("“a.txt” tiene más de un nombre en el disco (enlaces físicos)."));
        }
        EXPECT_EQ(desk.read(QStringLiteral("a.txt")), row.file) << qPrintable(row.button);
        EXPECT_EQ(desk.read(QStringLiteral("b.txt")), row.other) << qPrintable(row.button);
        EXPECT_EQ(window->isWindowModified(), row.file == "hola");
        if (row.file != "hola") {
            Desk::note(window).type(QStringLiteral("más"));
            QSignalSpy saved(window, &DocumentWindow::saved);
            window->save();
            EXPECT_TRUE(saved.wait(10'000)) << "it is asked once";
        }
    }
}

TEST(DocumentWindow, ShowsNamesWithStandIns) {
    Desk desk;
    const QString name = QStringLiteral("fac\u202Etura\u0007.txt");
    DocumentWindow* const window = desk.open(desk.write(name, "hola"));
    EXPECT_EQ(window->documentName(), QStringLiteral("fac\u2B1Atura\u2B1A.txt"));
    EXPECT_TRUE(window->windowTitle().startsWith(QStringLiteral("fac\u2B1Atura\u2B1A.txt[*]")));
    Desk::note(window).type(QStringLiteral("mío"));
    Answer answer(cancelButton);
    window->close();
    EXPECT_EQ(answer.question(), QStringLiteral("¿Guardar los cambios en “fac\u2B1Atura\u2B1A.txt”?"));
}

TEST(DocumentWindow, AsksBeforeItSavesOverAFileThatChanged) {
    Desk desk;
    DocumentWindow* const window = desk.open(desk.write(QStringLiteral("a.txt"), "hola"));
    Desk::note(window).type(QStringLiteral("mío"));
    desk.write(QStringLiteral("a.txt"), "de otro programa");
    {
        Answer answer(QStringLiteral("Cancelar"));
        window->save();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !answer.question().isEmpty(); }));
        EXPECT_EQ(answer.question(), QStringLiteral("“a.txt” ha cambiado en el disco desde que se abrió."));
    }
    EXPECT_EQ(desk.read(QStringLiteral("a.txt")), QByteArray("de otro programa"));
    EXPECT_TRUE(window->isWindowModified());
    QSignalSpy saved(window, &DocumentWindow::saved);
    Answer answer(QStringLiteral("Guardar encima"));
    window->save();
    ASSERT_TRUE(saved.wait(10'000));
    EXPECT_EQ(desk.read(QStringLiteral("a.txt")), QByteArray("mío"));
    EXPECT_FALSE(window->isWindowModified());
    window->save();
    ASSERT_TRUE(saved.wait(10'000)) << "its own file is not a changed one";
}

TEST(DocumentWindow, GoesBackToWhatIsSaved) {
    Desk desk;
    DocumentWindow* const window = desk.open(desk.write(QStringLiteral("a.txt"), "hola"));
    Desk::note(window).type(QStringLiteral("otra cosa"));
    Answer answer(QStringLiteral("Volver a lo guardado"));
    window->revert();
    ASSERT_TRUE(QTest::qWaitFor([&] { return Desk::note(window).text() == QStringLiteral("hola"); }));
    EXPECT_FALSE(window->isWindowModified());
    Desk::note(window).undoManager().undo();
    EXPECT_EQ(Desk::note(window).text(), QStringLiteral("otra cosa"));
    EXPECT_TRUE(window->isWindowModified());
}

TEST(DocumentWindow, AsksBeforeItCloses) {
    struct Row {
        QString button;
        bool closes;
        QByteArray contents;
    };
    for (const Row& row : {Row{cancelButton, false, "hola"}, Row{discardButton, true, "hola"},
                           Row{saveButton, true, "cambiado"}}) {
        Desk desk;
        const QPointer<DocumentWindow> window = desk.open(desk.write(QStringLiteral("a.txt"), "hola"));
        Desk::note(window).type(QStringLiteral("cambiado"));
        Answer answer(row.button);
        window->close();
        EXPECT_EQ(answer.question(), QStringLiteral("¿Guardar los cambios en “a.txt”?"));
        EXPECT_EQ(isGone(window), row.closes);
        EXPECT_EQ(desk.read(QStringLiteral("a.txt")), row.contents);
    }
}

TEST(DocumentWindow, ClosesAnUnchangedDocumentAtOnce) {
    Desk desk;
    const QPointer<DocumentWindow> window = desk.open(desk.write(QStringLiteral("a.txt"), "hola"));
    window->close();
    EXPECT_TRUE(isGone(window));
    EXPECT_FALSE(desk.controller.hasOpenDocuments());
}

TEST(DocumentWindow, ClosesAnUntitledDocumentThatIsEmptyAgainAtOnce) {
    Desk desk;
    const QPointer<DocumentWindow> window = desk.controller.newDocument();
    Desk::note(window).type(QStringLiteral("algo"));
    EXPECT_TRUE(window->hasChangesToKeep());
    Desk::note(window).type(QString());
    EXPECT_TRUE(window->isWindowModified());
    EXPECT_FALSE(window->hasChangesToKeep());
    window->close();
    EXPECT_TRUE(isGone(window));
}

TEST(DocumentWindow, AsksAboutAFileThatWasEmptied) {
    Desk desk;
    DocumentWindow* const window = desk.open(desk.write(QStringLiteral("a.txt"), "hola"));
    Desk::note(window).type(QString());
    EXPECT_TRUE(window->hasChangesToKeep());
}

TEST(DocumentController, QuitsWhenAllDocumentsMayGo) {
    Desk desk;
    QSignalSpy ready(&desk.controller, &DocumentController::readyToQuit);
    QSignalSpy refused(&desk.controller, &DocumentController::quitRefused);
    desk.open(desk.write(QStringLiteral("a.txt"), "hola"));
    DocumentWindow* const changed = desk.open(desk.write(QStringLiteral("b.txt"), "hola"));
    desk.controller.newDocument();
    Desk::note(changed).type(QStringLiteral("cambiado"));
    {
        Answer answer(cancelButton);
        desk.controller.quit();
        ASSERT_TRUE(refused.count() == 1 || refused.wait(10'000));
    }
    EXPECT_EQ(ready.count(), 0);
    EXPECT_TRUE(changed->isVisible());
    Answer answer(saveButton);
    desk.controller.quit();
    ASSERT_TRUE(ready.wait(10'000));
    EXPECT_EQ(desk.read(QStringLiteral("b.txt")), QByteArray("cambiado"));
    EXPECT_FALSE(desk.controller.hasOpenDocuments());
}

TEST(DocumentController, ClosesNothingWhenTheUserCancelsTheLastQuestion) {
    Desk desk;
    QSignalSpy refused(&desk.controller, &DocumentController::quitRefused);
    const QPointer<DocumentWindow> unchanged = desk.open(desk.write(QStringLiteral("a.txt"), "hola"));
    const QPointer<DocumentWindow> discarded = desk.open(desk.write(QStringLiteral("b.txt"), "hola"));
    const QPointer<DocumentWindow> kept = desk.open(desk.write(QStringLiteral("c.txt"), "hola"));
    const QPointer<DocumentWindow> last = desk.controller.newDocument();
    Desk::note(discarded).type(QStringLiteral("sin querer"));
    Desk::note(kept).type(QStringLiteral("cambiado"));
    const Answer answer(QStringList{discardButton, cancelButton});
    desk.controller.quit();
    ASSERT_TRUE(refused.count() == 1 || refused.wait(10'000));
    EXPECT_EQ(answer.question(), QStringLiteral("¿Guardar los cambios en “c.txt”?"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    for (const auto& window : {unchanged, discarded, kept, last}) {
        ASSERT_NE(window, nullptr);
        EXPECT_TRUE(window->isVisible());
    }
    EXPECT_EQ(Desk::note(discarded).text(), QStringLiteral("sin querer"));
    EXPECT_TRUE(discarded->hasChangesToKeep());
}

TEST(DocumentController, QuitsWithoutDiscardedChanges) {
    Desk desk;
    QSignalSpy ready(&desk.controller, &DocumentController::readyToQuit);
    DocumentWindow* const first = desk.open(desk.write(QStringLiteral("a.txt"), "hola"));
    DocumentWindow* const second = desk.open(desk.write(QStringLiteral("b.txt"), "hola"));
    Desk::note(first).type(QStringLiteral("sin querer"));
    Desk::note(second).type(QStringLiteral("cambiado"));
    const Answer answer(QStringList{discardButton, saveButton});
    desk.controller.quit();
    ASSERT_TRUE(ready.count() == 1 || ready.wait(10'000));
    EXPECT_EQ(desk.read(QStringLiteral("a.txt")), QByteArray("hola"));
    EXPECT_EQ(desk.read(QStringLiteral("b.txt")), QByteArray("cambiado"));
}

TEST(DocumentController, KeepsAFileThatArrivesDuringTheQuestions) {
    Desk desk;
    QSignalSpy ready(&desk.controller, &DocumentController::readyToQuit);
    QSignalSpy refused(&desk.controller, &DocumentController::quitRefused);
    const QPointer<DocumentWindow> changed = desk.open(desk.write(QStringLiteral("a.txt"), "hola"));
    Desk::note(changed).type(QStringLiteral("sin querer"));
    const QString late = desk.write(QStringLiteral("b.txt"), "hola");
    std::unique_ptr<Answer> answer;
    desk.opened.clear();
    QTimer::singleShot(50, &desk.controller, [&] { desk.controller.open({late}); });
    QObject::connect(&desk.controller, &DocumentController::windowOpened, &desk.controller,
                     [&] { answer = std::make_unique<Answer>(discardButton); });
    desk.controller.quit();
    ASSERT_TRUE(refused.count() == 1 || refused.wait(10'000));
    EXPECT_TRUE(isGone(changed));
    ASSERT_EQ(desk.controller.windows().size(), 1U);
    EXPECT_EQ(desk.controller.windows().front()->path(), late);
    EXPECT_TRUE(desk.controller.windows().front()->isVisible());
    EXPECT_EQ(ready.count(), 0);
}

TEST(DocumentController, AsksAgainAboutADocumentThatChangesAfterItsQuestion) {
    Desk desk;
    QSignalSpy refused(&desk.controller, &DocumentController::quitRefused);
    DocumentWindow* const first = desk.open(desk.write(QStringLiteral("a.txt"), "hola"));
    DocumentWindow* const second = desk.open(desk.write(QStringLiteral("b.txt"), "hola"));
    Desk::note(first).type(QStringLiteral("sin querer"));
    Desk::note(second).type(QStringLiteral("cambiado"));
    desk.gate.close();
    QObject::connect(second, &DocumentWindow::savingStarted, first, [&] {
        Desk::note(first).type(QStringLiteral("queriendo"));
        desk.gate.open();
    });
    const Answer answer(QStringList{discardButton, saveButton, cancelButton});
    desk.controller.quit();
    ASSERT_TRUE(refused.count() == 1 || refused.wait(10'000));
    EXPECT_EQ(answer.question(), QStringLiteral("¿Guardar los cambios en “a.txt”?"));
    EXPECT_EQ(Desk::note(first).text(), QStringLiteral("queriendo"));
}

TEST(DocumentController, StaysWhenADocumentCannotBeSaved) {
    Desk desk;
    QSignalSpy refused(&desk.controller, &DocumentController::quitRefused);
    DocumentWindow* const window = desk.open(desk.write(QStringLiteral("a.txt"), "hola"));
    Desk::note(window).type(QStringLiteral("cambiado"));
    ASSERT_TRUE(QFile::remove(window->path()));
    ASSERT_TRUE(QDir().mkdir(window->path()));
    const Answer save(saveButton);
    const Answer read(QStringLiteral("OK"));
    desk.controller.quit();
    ASSERT_TRUE(refused.count() == 1 || refused.wait(10'000));
    EXPECT_TRUE(window->hasChangesToKeep());
}

TEST(DocumentWindow, TakesAnUntouchedNewDocumentAsPristine) {
    Desk desk;
    DocumentWindow* const window = desk.controller.newDocument();
    EXPECT_TRUE(window->isPristine());
    EXPECT_EQ(window->documentName(), QStringLiteral("Sin título"));
    Desk::note(window).type(QStringLiteral("a"));
    EXPECT_FALSE(window->isPristine());
    Desk::note(window).undoManager().undo();
    EXPECT_TRUE(window->isPristine());
}

TEST(DocumentWindow, PressesTheButtonWithTheFocusByReturn) {
    Desk desk;
    DocumentWindow* const window = desk.controller.newDocument();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    QPushButton button(window);
    QLineEdit field(window);
    for (QWidget* const each : {static_cast<QWidget*>(&button), static_cast<QWidget*>(&field)}) {
        each->show();
    }
    QSignalSpy pressed(&button, &QPushButton::clicked);
    button.setFocus();
    QTest::keyClick(&button, Qt::Key_Return);
    EXPECT_EQ(pressed.count(), 1);
    QTest::keyClick(&button, Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(pressed.count(), 2);
    QTest::keyClick(&button, Qt::Key_Return, Qt::ControlModifier);
    field.setFocus();
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(pressed.count(), 2);
}

TEST(DocumentWindow, OpensTheContextMenuOfWhatHasTheFocusByTheKeysOfOtherDesktops) {
    Desk desk;
    DocumentWindow* const window = desk.controller.newDocument();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    struct Listener : QWidget {
        using QWidget::QWidget;
        std::optional<QContextMenuEvent::Reason> reason;
        void contextMenuEvent(QContextMenuEvent* event) override { reason = event->reason(); }
    } listener(window);
    listener.setFocusPolicy(Qt::StrongFocus);
    listener.show();
    listener.setFocus();
    QTest::keyClick(&listener, Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_EQ(listener.reason, QContextMenuEvent::Keyboard);
}

TEST(DocumentWindow, HasTheMenusOfTheDesktop) {
    Desk desk;
    DocumentWindow* const window = desk.controller.newDocument();
    const auto titles = [](const QList<QAction*>& actions) {
        QStringList all;
        for (const QAction* action : actions) {
            all += action->isSeparator() ? QStringLiteral("-") : action->text().remove(u'&');
        }
        return all.join(u'|');
    };
    using Menu = DocumentWindow::Menu;
    EXPECT_EQ(titles(window->menu(Menu::file).actions()),
              QStringLiteral("Nuevo|Abrir…|Abrir reciente|-|Guardar|Guardar como…|Volver a lo guardado|-|"
                             "Cerrar|Salir"));
    EXPECT_EQ(titles(window->menu(Menu::edit).actions()),
              QStringLiteral("Deshacer|Rehacer|-|Cortar|Copiar|Pegar|Seleccionar todo"));
    Desk::note(window).type(QStringLiteral("a"), QStringLiteral("Pegar & más"));
    EXPECT_EQ(window->menu(Menu::edit).actions().front()->text(), QStringLiteral("Deshacer Pegar && más"));
    EXPECT_TRUE(window->menu(Menu::edit).actions().front()->isEnabled());
}
