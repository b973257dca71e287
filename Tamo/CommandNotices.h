#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>

#include <cstddef>
#include <cstdint>

class DocumentWindow;
class EditorSession;
class NoticeBar;
class UndoManager;

/// Tells in a window what a command over the whole document is doing, and what it did beside what it was
/// asked for.
///
/// - While "Corregir todo" takes more than a moment, it can be cancelled; afterwards the number of problems
///   that are left stands there until the text changes.
/// - While there is no tree because the memory is too short for it, this is said, and that the text is there.
/// - The first time that a layout changes white space which may be part of the text, this is said, and
/// undoing
///   is offered as long as that is the last step.
class CommandNotices : public QObject {
    Q_OBJECT

public:
    /// All outlive the notices; the bar belongs to the window.
    CommandNotices(EditorSession& session, UndoManager& undoManager, DocumentWindow& window,
                   QObject* parent = nullptr);

private:
    enum class Shown : std::uint8_t { nothing, fixing, problemsLeft, textSpace, shortage, treeShortage };

    void showFixing();
    void showLeft(std::size_t left, bool mayMendMore);
    void showTextSpace(const QString& actionName);
    void showShortage(const QString& forWhat);
    void followTree();
    void followText();
    void dismiss();

    NoticeBar& bar();
    void offerToClose();

    EditorSession& m_session;
    UndoManager& m_undoManager;
    DocumentWindow& m_window;
    QPointer<NoticeBar> m_bar; ///< Made when it is first needed.
    QTimer m_patience;         ///< A command that takes longer shows.
    Shown m_shown = Shown::nothing;
    std::int64_t m_generation = 0; ///< Of the text that the notice is about.
    QString m_layoutName;
    bool m_hasToldOfTextSpace = false;
};
