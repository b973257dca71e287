#pragma once

#include "DocumentController.h"

#include "AtomicFile.h"
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

#include <condition_variable>
#include <mutex>

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
    struct Gates {
        Gate& start;     ///< Before anything is read or written.
        Gate& replacing; ///< When a file is about to be replaced.
    };

    Note(const QString& text, Gates gates)
        : m_gates(gates), m_storage(Rope(text.toStdU16String())), m_history(m_storage) {
        m_history.setUndoManager(&m_undo);
    }

    TextStorage& storage() override { return m_storage; }
    UndoManager& undoManager() override { return m_undo; }
    QWidget* makeView(QWidget* parent) override { return new QLabel(parent); }
    Write write() const override {
        return [text = text(), gates = m_gates](const QString& path,
                                                const FileReplacement& how) -> std::expected<void, QString> {
            gates.start.pass();
            FileReplacement slow = how;
            slow.mayReplace = [&] {
                const bool may = how.mayReplace();
                gates.replacing.pass();
                return may;
            };
            auto file = AtomicFile::open(path, how.stop);
            if (!file) {
                return std::unexpected(QStringLiteral("No se pudo."));
            }
            const std::string bytes = text.toStdString();
            file->write(bytesOf(bytes));
            if (!file->commit(slow)) {
                return std::unexpected(QStringLiteral("No se pudo."));
            }
            return {};
        };
    }
    void replaceContents(std::unique_ptr<DocumentContents> contents, const QString& actionName) override {
        type(static_cast<NoteContents&>(*contents).text, actionName);
    }
    RecoveryFacts recoveryFacts() const override { return {.encoding = "UTF-8"}; }
    TextSelection textSelection() const override { return m_selection; }
    void setTextSelection(TextSelection selection) override {
        m_selection = selection;
        emit textSelectionChanged();
    }

    QString text() const {
        return QString::fromStdU16String(m_storage.text().units(m_storage.text().fullRange()));
    }
    void type(const QString& text, const QString& actionName = QStringLiteral("Escribir")) {
        const TextEdit edit{m_storage.text().fullRange(), text.toStdU16String()};
        m_history.apply(std::span(&edit, 1), actionName);
    }

private:
    Gates m_gates;
    TextSelection m_selection;
    UndoManager m_undo;
    TextStorage m_storage;
    TextHistory m_history;
};

class NoteType : public DocumentType {
public:
    explicit NoteType(Note::Gates gates) : m_gates(gates) {}

    std::unique_ptr<Document> makeUntitled() const override {
        return std::make_unique<Note>(QString(), m_gates);
    }
    std::expected<std::unique_ptr<DocumentContents>, QString> read(const QString& path,
                                                                   std::stop_token) const override {
        m_gates.start.pass();
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            return std::unexpected(QStringLiteral("No está."));
        }
        auto contents = std::make_unique<NoteContents>();
        contents->text = QString::fromUtf8(file.readAll());
        return contents;
    }
    std::unique_ptr<Document> makeDocument(std::unique_ptr<DocumentContents> contents) const override {
        return std::make_unique<Note>(static_cast<NoteContents&>(*contents).text, m_gates);
    }
    std::unique_ptr<Document> makeDocument(const RecoveredText& recovered) const override {
        const Rope& text = recovered.text;
        return std::make_unique<Note>(QString::fromStdU16String(text.units(text.fullRange())), m_gates);
    }
    QStringList openFilters() const override { return {QStringLiteral("Notas (*.txt)")}; }
    QStringList saveFilters() const override { return openFilters(); }
    QString untitledFileName() const override { return QStringLiteral("Sin título.txt"); }
    void buildMenus(DocumentWindow&) const override {}

private:
    Note::Gates m_gates;
};

/// Windows on documents that are plain text, and a folder for their files.
struct DocumentDesk {
    QTemporaryDir folder;
    Gate gate;
    Gate replacing;
    DocumentController controller{std::make_unique<NoteType>(Note::Gates{gate, replacing})};
    QSignalSpy opened{&controller, &DocumentController::windowOpened};

    ~DocumentDesk() {
        gate.open();
        replacing.open();
    }

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

/// Presses the button called `button` in the message boxes that come, or one of `buttons` in each in turn, the
/// last of them in all that follow; answers what the last box said.
class Answer : public QObject {
public:
    explicit Answer(const QString& button) : Answer(QStringList(button)) {}
    explicit Answer(QStringList buttons) : m_buttons(std::move(buttons)) { startTimer(10); }

    const QString& question() const { return m_question; }

protected:
    void timerEvent(QTimerEvent*) override {
        auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr) {
            return;
        }
        for (QAbstractButton* const button : box->buttons()) {
            if (button->text().remove(u'&') == m_buttons.front()) {
                m_question = box->text();
                if (m_buttons.size() > 1) {
                    m_buttons.removeFirst();
                }
                button->click();
                return;
            }
        }
    }

private:
    QStringList m_buttons;
    QString m_question;
};

inline const QString saveButton = QStringLiteral("Save"); // No translation is loaded here.
inline const QString discardButton = QStringLiteral("Discard");
inline const QString cancelButton = QStringLiteral("Cancel");

inline bool isGone(const QPointer<DocumentWindow>& window) {
    return QTest::qWaitFor([&] { return window == nullptr; });
}
