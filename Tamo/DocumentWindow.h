#pragma once

#include "DiagnosticsModel.h"
#include "EditorSession.h"
#include "TextView.h"
#include "UndoManager.h"
#include "XMLFileDocument.h"

#include <QMainWindow>

#include <memory>

class DocumentOutlineView;
class QLabel;
class QListView;

/// The window of one document: outline, source, problems, and the commands on them.
class DocumentWindow : public QMainWindow {
    Q_OBJECT

public:
    /// `path` is empty for a document that was never saved.
    DocumentWindow(std::unique_ptr<XMLFileDocument> document, const QString& path);
    ~DocumentWindow() override;

    EditorSession& session() { return m_session; }
    const QString& path() const { return m_path; }

    /// Whether this is a new document that nobody touched.
    bool isPristine() const;

    /// Writes the document to its file, asking for one where there is none. Answers whether it was written;
    /// when it was not, the user knows why.
    bool save();
    bool saveAs();

signals:
    void newRequested();
    void openRequested();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildViews();
    void buildMenus();
    void buildStatusBar();

    void showTree();
    void showCaret();
    void showHistory();
    void showTitle();

    QString name() const;
    QString encodingName() const;
    bool write(const QString& path);
    std::vector<TextView::Underline> underlines(SourceRange visible) const;
    void reveal(SourceRange range);
    void revealNode(NodeID node);
    void revealDiagnostic(const QModelIndex& row);
    void applyFix(const QModelIndex& row);

    std::unique_ptr<XMLFileDocument> m_document;
    QString m_path;
    UndoManager m_undoManager;
    EditorSession m_session;
    DiagnosticsModel m_diagnostics;

    // Children of the window.
    TextView* m_source = nullptr;
    DocumentOutlineView* m_outline = nullptr;
    QListView* m_problems = nullptr;
    QLabel* m_summary = nullptr;
    QLabel* m_position = nullptr;
    QLabel* m_lineEnding = nullptr;
    QLabel* m_encoding = nullptr;
    QAction* m_undo = nullptr;
    QAction* m_redo = nullptr;
};
