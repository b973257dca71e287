#pragma once

#include <QWidget>

class EditorSession;
class QLabel;
class QMenu;
class QToolButton;

/// Tells whether the document has problems and how many, goes to each from a menu, and states facts about
/// the file.
class DiagnosticsBar : public QWidget {
    Q_OBJECT

public:
    /// `session` outlives the bar.
    explicit DiagnosticsBar(EditorSession& session, QWidget* parent = nullptr);

    /// The problems, each followed by its fix; filled when it opens.
    QMenu* problemsMenu() const { return m_menu; }

private:
    class Counts;
    class Message;

    void showTree();
    void showProblem();
    void showFacts();
    QString title(std::size_t problem) const;
    void fillMenu();
    void addProblem(std::size_t index);

    EditorSession& m_session;
    QWidget* m_noErrors = nullptr;
    Counts* m_counts = nullptr;
    QMenu* m_menu = nullptr;
    QToolButton* m_next = nullptr;
    Message* m_message = nullptr; ///< Of the problem that was gone to last.
    QLabel* m_lineEnding = nullptr;
    QLabel* m_encoding = nullptr;
    QLabel* m_size = nullptr;
};
