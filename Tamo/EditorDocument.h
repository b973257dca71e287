#pragma once

#include "Document.h"
#include "EditorSession.h"
#include "UndoManager.h"
#include "XMLFileDocument.h"

#include <QPointer>

#include <memory>

class EditorWindowView;

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

private:
    const std::shared_ptr<XMLFileDocument> m_file; ///< A write on another thread holds it too.
    UndoManager m_undoManager;
    std::unique_ptr<EditorSession> m_session;
    QPointer<EditorWindowView> m_view;
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
