#pragma once

#include "Document.h"
#include "EditorSession.h"
#include "UndoManager.h"
#include "XMLFileDocument.h"

#include <QPointer>

#include <expected>
#include <memory>
#include <optional>

class EditorWindowView;
class EncodingCommands;

/// A document that is open in the editor: what its file holds, its history, and the session of its window.
class EditorDocument : public Document {
    Q_OBJECT

public:
    explicit EditorDocument(std::unique_ptr<XMLFileDocument> file);
    ~EditorDocument() override;

    EditorSession& session() { return *m_session; }
    XMLFileDocument& file() { return *m_file; }

    TextStorage& storage() override;
    UndoManager& undoManager() override { return m_undoManager; }
    QWidget* makeView(QWidget* parent) override;
    Write write() const override;
    Preparation preparation() const override;
    void replaceContents(std::unique_ptr<DocumentContents> contents, const QString& actionName) override;
    RecoveryFacts recoveryFacts() const override;
    TextSelection textSelection() const override;
    void setTextSelection(TextSelection selection) override;
    bool settleBeforeWriting(const QString& name, QWidget* window) override;
    void applyWriteRemedy() override;

    /// Reads a file on any thread, in `encoding` or else in the one that the file shows; on failure the
    /// message for the user.
    static std::expected<std::unique_ptr<DocumentContents>, QString>
    read(const QString& path, const std::optional<StringEncoding>& encoding, const std::stop_token& stop);

    /// What is doubtful about how the file was read last; nothing where all is well.
    const std::optional<EncodingDoubt>& doubt() const { return m_doubt; }

    /// Writes the document in another form from now on; part of the undo step that is open, else a step of
    /// its own.
    void setForm(const FileForm& form);

    /// From now on the file is read in the document's encoding, whatever it declares.
    void keepEncoding();

    /// The commands on the encoding; null before there is a view.
    EncodingCommands* encodingCommands() const;

signals:
    void contentsReplaced();

private:
    void takeForm(const FileForm& form);
    void replaceText(SourceRange replaced, const Rope& units);

    const std::unique_ptr<XMLFileDocument> m_file;
    std::optional<EncodingDoubt> m_doubt;
    UndoManager m_undoManager;
    std::unique_ptr<EditorSession> m_session;
    QPointer<EditorWindowView> m_view;
    QPointer<EncodingCommands> m_encodingCommands;
};

/// The kind of document that the program edits.
class EditorDocumentType : public DocumentType {
public:
    std::unique_ptr<Document> makeUntitled() const override;
    std::expected<std::unique_ptr<DocumentContents>, QString> read(const QString& path,
                                                                   std::stop_token stop) const override;
    std::unique_ptr<Document> makeDocument(std::unique_ptr<DocumentContents> contents) const override;
    std::unique_ptr<Document> makeDocument(const RecoveredText& recovered) const override;
    QStringList openFilters() const override;
    QStringList saveFilters() const override;
    QString untitledFileName() const override;
    void buildMenus(DocumentWindow& window) const override;
};
