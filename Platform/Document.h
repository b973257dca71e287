#pragma once

#include "FileReplacement.h"
#include "TextSelection.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <expected>
#include <functional>
#include <memory>
#include <stop_token>
#include <utility>

class DocumentWindow;
class QWidget;
class TextStorage;
class UndoManager;
struct RecoveredText;
struct RecoveryFacts;

/// What a worker made of a file, on its way to a document. Belongs to no thread.
class DocumentContents {
public:
    virtual ~DocumentContents() = default;
};

/// Why a document could not be written, for the user.
struct WriteFailure {
    // Implicit: most failures are a message and nothing else.
    WriteFailure(QString text, QString remedyTitle = {}) // NOLINT(google-explicit-constructor)
        : message(std::move(text)), remedy(std::move(remedyTitle)) {}

    QString message;
    /// The title of what lets the next write succeed: `Document::applyWriteRemedy`. Empty where nothing does.
    QString remedy;
};

/// A document as its window, its file and its recovery see it: a text with a history, that a view shows and
/// that can be written. Lives on the main thread.
class Document : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    virtual TextStorage& storage() = 0;
    virtual UndoManager& undoManager() = 0;

    /// What fills the document's window; called once.
    virtual QWidget* makeView(QWidget* parent) = 0;

    /// Writes the text of this moment to a file as `how` says, on any thread, and answers why it could not,
    /// for the user. The file that is there stays as it is until `how` lets it be replaced; where `how` does
    /// not, or asks to stop, the text of the failure is not shown.
    using Write =
        std::function<std::expected<void, WriteFailure>(const QString& path, const FileReplacement& how)>;
    virtual Write write() const = 0;

    /// Called before each write to the file called `name`: asks the user, over `window`, what only the user
    /// can settle. Returns whether to write.
    virtual bool settleBeforeWriting(const QString& /*name*/, QWidget* /*window*/) { return true; }

    /// Changes the document so that what made the last write fail does so no longer.
    virtual void applyWriteRemedy() {}

    /// Readies what a file holds for `replaceContents`, on any thread: what takes long in proportion to the
    /// text of this moment. Without it, or after further changes, that takes long itself.
    using Preparation = std::function<void(DocumentContents& contents, const std::stop_token& stop)>;
    virtual Preparation preparation() const {
        return [](DocumentContents&, const std::stop_token&) {};
    }

    /// Has what a file holds now in the place of the text, as one step of undo. Where the user is stays as
    /// near as it can.
    virtual void replaceContents(std::unique_ptr<DocumentContents> contents, const QString& actionName) = 0;

    /// How the text is written; the origin and its version are filled in by the window.
    virtual RecoveryFacts recoveryFacts() const = 0;

    virtual TextSelection textSelection() const = 0;
    virtual void setTextSelection(TextSelection selection) = 0;

Q_SIGNALS:
    void textSelectionChanged();
    /// `recoveryFacts` returns something else now.
    void recoveryFactsChanged();
    /// The user dropped files on the text.
    void filesDropped(const QList<QUrl>& files);
};

/// A kind of document: how one is made, and what belongs into the menus of its window.
class DocumentType {
public:
    virtual ~DocumentType() = default;

    virtual std::unique_ptr<Document> makeUntitled() const = 0;

    /// Reads a file on any thread, and answers why it could not, for the user.
    virtual std::expected<std::unique_ptr<DocumentContents>, QString> read(const QString& path,
                                                                           std::stop_token stop) const = 0;
    virtual std::unique_ptr<Document> makeDocument(std::unique_ptr<DocumentContents> contents) const = 0;
    virtual std::unique_ptr<Document> makeDocument(const RecoveredText& recovered) const = 0;

    /// What a file dialog lists, the usual first, such as "Documentos XML (*.xml *.svg)".
    virtual QStringList openFilters() const = 0;
    virtual QStringList saveFilters() const = 0;
    virtual QString untitledFileName() const = 0;

    /// Adds what is this kind's own to the menus of a new window, which has no document yet.
    virtual void buildMenus(DocumentWindow& window) const = 0;
};
