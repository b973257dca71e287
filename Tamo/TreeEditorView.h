#pragma once

#include "EditorSession.h"
#include "TreeOutlineView.h"

#include <QWidget>

#include <cstdint>
#include <memory>
#include <optional>

class EmptyStateView;
class InsertionPrompts;
class QLabel;
class QLineEdit;
class QMenu;
class QStackedLayout;

/// The pane that shows a document as a tree: a field that filters it, and the list of its rows with their
/// commands. Shows what the session has, and asks the session for whatever the user wants.
class TreeEditorView : public QWidget {
    Q_OBJECT

public:
    /// `session` outlives the view.
    explicit TreeEditorView(EditorSession& session, QWidget* parent = nullptr);

    TreeOutlineView& outline() { return *m_outline; }
    QLineEdit& filterField() { return *m_filterField; }
    /// What stands in place of the list when there is no row to show; none while the list is there.
    const EmptyStateView* emptyState() const;

    /// The commands for the node of a row, which is to be the selected one.
    std::unique_ptr<QMenu> makeMenu(std::size_t row);

    /// Where the user writes new nodes.
    InsertionPrompts& prompts() { return *m_prompts; }

    /// Scrolls to the selected node.
    void showSelectedNode();

    /// Scrolls to the row of the node at `path`, once there is one.
    void bringIntoView(const NodePath& path);

    /// Gives the filter field the keyboard.
    void focusFilter();

    enum class Direction : std::uint8_t { forward, backward };
    /// Selects the next node that the filter has found, behind the last one again the first; the other way
    /// round backward. Does nothing while no row is one that was found.
    void goToMatch(Direction direction);

public slots:
    // On the selected node, as `NodeClipboard` does; nothing while a filter hides it.
    /// Edits the name or the content of the selected node in its row, which comes into view.
    void editSelectedNode();
    void cut();
    void copy();
    void paste();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    bool isSelectionShown() const { return m_outline->selectedRow().has_value(); }
    void addClipboard(QMenu& menu);
    void addInsertions(QMenu& menu);
    void makeFilterField();
    void showMatchCount();
    void showWanted();
    void connectOutline();
    void showTree();
    void showRows();
    void passFocusOn();
    void showSelection();
    bool isMatch(std::size_t row) const;
    bool areMatchesKnown() const;
    void goToFirstMatch();
    void followSelection();
    void showFilter();

    NodePath path(std::size_t row) const { return m_session.rows().path(row, m_session.tree()); }
    void select(std::size_t row) { m_session.select(path(row)); }
    void collapse(std::size_t row);
    void showMenu(std::size_t row, QPoint globalPosition);
    void drop(const NodePath& dragged, const NodePath& target, TreeMutation::Placement placement,
              Qt::DropAction action);

    EditorSession& m_session;
    QLineEdit* m_filterField;
    QLabel* m_matchCount;
    QStackedLayout* m_pages;
    TreeOutlineView* m_outline;
    EmptyStateView* m_emptyState;
    InsertionPrompts* m_prompts;
    QWidget* m_blank;                 ///< Shows before there is a tree.
    std::optional<NodePath> m_wanted; ///< Has not been in view yet.
    std::int64_t m_followedSerial = 0;
    bool m_isMatchWanted = false; ///< The first match is to be selected once it has a row.
};
