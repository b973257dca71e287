#include "DocumentController.h"

#include "DocumentWindow.h"
#include "NoticeBar.h"
#include "RecoveryState.h"
#include "TextHistory.h"
#include "TextStorage.h"
#include "UndoManager.h"

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>

namespace {

/// Lets workers wait at a gate while a test looks at the windows.
class Gate {
public:
    void close() {
        const std::lock_guard lock(m_mutex);
        m_isOpen = false;
    }
    void open() {
        {
            const std::lock_guard lock(m_mutex);
            m_isOpen = true;
        }
        m_changed.notify_all();
    }
    void pass() {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_isOpen; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isOpen = true;
};

struct NoteContents : DocumentContents {
    QString text;
};

/// A document that is plain text.
class Note : public Document {
public:
    Note(const QString& text, Gate& gate)
        : m_gate(gate), m_storage(Rope(text.toStdU16String())), m_history(m_storage) {
        m_history.setUndoManager(&m_undo);
    }

    TextStorage& storage() override { return m_storage; }
    UndoManager& undoManager() override { return m_undo; }
    QWidget* makeView(QWidget* parent) override { return new QLabel(parent); }
    Write write() const override {
        return [text = text(), &gate = m_gate](const QString& path, const std::stop_token& stop)
                   -> std::expected<void, QString> {
            gate.pass();
            QFile file(path);
            if (stop.stop_requested() || !file.open(QIODevice::WriteOnly)) {
                return std::unexpected(QStringLiteral("No se pudo."));
            }
            file.write(text.toUtf8());
            return {};
        };
    }
    void replaceContents(std::unique_ptr<DocumentContents> contents, const QString& actionName) override {
        type(static_cast<NoteContents&>(*contents).text, actionName);
    }
    RecoveryFacts recoveryFacts() const override { return {}; }
    TextSelection textSelection() const override { return {}; }
    void setTextSelection(TextSelection) override {}

    QString text() const { return QString::fromStdU16String(m_storage.text().units(m_storage.text().fullRange())); }
    void type(const QString& text, const QString& actionName = QStringLiteral("Escribir")) {
        const TextEdit edit{m_storage.text().fullRange(), text.toStdU16String()};
        m_history.apply(std::span(&edit, 1), actionName);
    }

private:
    Gate& m_gate;
    UndoManager m_undo;
    TextStorage m_storage;
    TextHistory m_history;
};

class NoteType : public DocumentType {
public:
    explicit NoteType(Gate& gate) : m_gate(gate) {}

    std::unique_ptr<Document> makeUntitled() const override { return std::make_unique<Note>(QString(), m_gate); }
    std::expected<std::unique_ptr<DocumentContents>, QString> read(const QString& path,
                                                                   std::stop_token) const override {
        m_gate.pass();
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            return std::unexpected(QStringLiteral("No está."));
        }
        auto contents = std::make_unique<NoteContents>();
        contents->text = QString::fromUtf8(file.readAll());
        return contents;
    }
    std::unique_ptr<Document> makeDocument(std::unique_ptr<DocumentContents> contents) const override {
        return std::make_unique<Note>(static_cast<NoteContents&>(*contents).text, m_gate);
    }
    std::unique_ptr<Document> makeDocument(const RecoveredText&) const override { return makeUntitled(); }
    QStringList openFilters() const override { return {QStringLiteral("Notas (*.txt)")}; }
    QStringList saveFilters() const override { return openFilters(); }
    QString untitledFileName() const override { return QStringLiteral("Sin título.txt"); }
    void buildMenus(DocumentWindow&) const override {}

private:
    Gate& m_gate;
};

struct Desk {
    QTemporaryDir folder;
    Gate gate;
    DocumentController controller{std::make_unique<NoteType>(gate)};
    QSignalSpy opened{&controller, &DocumentController::windowOpened};

    ~Desk() { gate.open(); }

    QString write(const QString& name, const QByteArray& contents) const {
        const QString path = folder.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
        return path;
    }
    QByteArray read(const QString& name) const {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
    DocumentWindow* open(const QString& path) {
        opened.clear();
        controller.open({path});
        EXPECT_TRUE(opened.count() == 1 || opened.wait(10'000));
        return opened.isEmpty() ? nullptr : opened.takeFirst().first().value<DocumentWindow*>();
    }
    static Note& note(DocumentWindow* window) { return *static_cast<Note*>(window->document()); }
};

/// Presses the button called `text` in the next message box, and answers what the box says.
class Answer : public QObject {
public:
    explicit Answer(QString button) : m_button(std::move(button)) { startTimer(10); }

    const QString& question() const { return m_question; }

protected:
    void timerEvent(QTimerEvent*) override {
        auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr) {
            return;
        }
        for (QAbstractButton* const button : box->buttons()) {
            if (button->text().remove(u'&') == m_button) {
                m_question = box->text();
                button->click();
                return;
            }
        }
    }

private:
    QString m_button;
    QString m_question;
};

const QString saveButton = QStringLiteral("Save"); // No translation is loaded here.
const QString discardButton = QStringLiteral("Discard");
const QString cancelButton = QStringLiteral("Cancel");

bool isGone(const QPointer<DocumentWindow>& window) {
    return QTest::qWaitFor([&] { return window == nullptr; });
}

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

TEST(DocumentController, ShowsAFileThatTakesLong) {
    Desk desk;
    const QString path = desk.write(QStringLiteral("a.txt"), "hola");
    desk.gate.close();
    desk.controller.open({path});
    ASSERT_TRUE(QTest::qWaitFor([&] { return desk.controller.windows().size() == 1; }));
    DocumentWindow* const window = desk.controller.windows().front();
    EXPECT_EQ(window->notices().text(), QStringLiteral("Abriendo “a.txt”…"));
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

TEST(DocumentWindow, StaysUnsavedWhenASaveFailsOrIsCancelled) {
    Desk desk;
    DocumentWindow* const window = desk.open(desk.write(QStringLiteral("a.txt"), "hola"));
    Desk::note(window).type(QStringLiteral("uno"));
    desk.gate.close();
    window->save();
    ASSERT_TRUE(QTest::qWaitFor([&] { return window->notices().isBusy(); }));
    QTest::mouseClick(window->notices().findChild<QPushButton*>(), Qt::LeftButton);
    desk.gate.open();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window->isSaving(); }));
    EXPECT_TRUE(window->isWindowModified());
    EXPECT_EQ(desk.read(QStringLiteral("a.txt")), QByteArray("hola"));
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
        EXPECT_EQ(answer.question(), QStringLiteral("¿Guardar los cambios en «a.txt»?"));
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
