#pragma once

#include "CodeEditorCoordinator.h"
#include "TextViewFindClient.h"

#include <QWidget>

class FindBar;
class GoToLineBar;

/// The source pane of a window: the text of a session in a monospaced text view that never wraps, with the
/// numbers of its lines, typing aids, colours and the problems of the last parse.
class CodeEditorView : public QWidget {
    Q_OBJECT

public:
    /// `session` outlives the view.
    explicit CodeEditorView(EditorSession& session, QWidget* parent = nullptr);
    ~CodeEditorView() override;

    EditorSession& session() { return m_coordinator.session(); }
    CodeEditorCoordinator& coordinator() { return m_coordinator; }
    TextView& textView() { return *m_textView; }
    LineNumberRuler& ruler() { return *m_ruler; }
    FindBar& findBar() { return *m_findBar; }
    GoToLineBar& goToLineBar() { return *m_goToLineBar; }

    /// Selects `range` and scrolls it into view.
    void select(SourceRange range);

protected:
    void changeEvent(QEvent* event) override;

private:
    void applyAppearance();

    CodeEditorCoordinator m_coordinator;
    // Children of this widget.
    TextView* m_textView;
    LineNumberRuler* m_ruler;
    TextViewFindClient m_findClient;
    FindBar* m_findBar;
    GoToLineBar* m_goToLineBar;
};
