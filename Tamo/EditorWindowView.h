#pragma once

#include "EditorSession.h"
#include "PaneCycle.h"

#include <QPointer>
#include <QWidget>

class BreadcrumbBar;
class CodeEditorView;
class DiagnosticsBar;
class NamePromptDialog;
class NodeInspectorView;
class PaneSplitter;
class PlaceKeeper;
class QAction;
class QMessageBox;
class QStackedWidget;
class QToolBar;
class SegmentedControl;
class SymbolLabel;
class TemplateGalleryView;
class TreeEditorView;
class UndoManager;

/// What fills the window of a document: its tool bar, the source and the tree as the session's mode has them,
/// the inspector, the two bars, and the dialogs in which the session asks and tells.
class EditorWindowView : public QWidget {
    Q_OBJECT

public:
    /// Both outlive the view. The session starts, with this history, when the view first shows.
    EditorWindowView(EditorSession& session, UndoManager& undoManager, QWidget* parent = nullptr);

    EditorSession& session() { return m_session; }
    CodeEditorView& codeEditor() { return *m_source; }
    TreeEditorView& treeEditor() { return *m_tree; }
    TemplateGalleryView& gallery() { return *m_gallery; }
    NodeInspectorView& inspector() { return *m_inspector; }
    QToolBar& toolBar() { return *m_toolBar; }

    /// "Buscar…" and the like, for a menu. Where there is only the tree, "Buscar…" goes to its filter; for
    /// the others the source comes into view.
    QList<QAction*> findCommands() const;

    /// Whether the inspector shows.
    bool showInspector() const { return m_showInspector; }
    void setShowInspector(bool showInspector);

    /// The parts of the window that the keyboard goes around, and the notices above them.
    const PaneCycle& panesInTurn();

    /// Edits the name or the content of the selected node in the tree, which comes into view.
    void editSelectedNode();

    /// Makes the lines that are selected in the text a comment, or uncomments them.
    void toggleComment();

    /// Whether the user sees the node that commands would work on: its row, or the pane that the keys go to.
    bool isSelectionInSight() const;

    /// The view of the window that has the focus, null when that is no document's.
    static EditorWindowView* focused();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void buildToolBar();
    void buildPanes();
    void connectFindCommands();
    void connectBreadcrumbs();
    void find(QAction& command);

    void showMode();
    void showStatus();
    void showGallery();
    void showNamePrompt();
    void showError();
    void showBusy();
    void beginText(const QString& units);
    bool isWorkingOnNodes() const;
    void focusPane();

    EditorSession& m_session;
    UndoManager& m_undoManager;
    bool m_isStarted = false;
    bool m_showInspector = true;
    bool m_isBusyShown = false;

    QToolBar* m_toolBar = nullptr;
    SegmentedControl* m_modes = nullptr;
    QAction* m_inspectorAction = nullptr;
    SymbolLabel* m_status = nullptr;
    QStackedWidget* m_pages = nullptr;
    TemplateGalleryView* m_gallery = nullptr;
    QWidget* m_editor = nullptr;
    PaneSplitter* m_panes = nullptr;
    QWidget* m_findBars = nullptr; ///< To look for something in the source.
    BreadcrumbBar* m_breadcrumbs = nullptr;
    DiagnosticsBar* m_diagnostics = nullptr;
    PaneCycle m_panesInTurn;
    CodeEditorView* m_source = nullptr;
    TreeEditorView* m_tree = nullptr;
    NodeInspectorView* m_inspector = nullptr;
    PlaceKeeper* m_places = nullptr;
    QPointer<NamePromptDialog> m_prompt;
    QPointer<QMessageBox> m_alert;
};
