#pragma once

#include "AttributeTableModel.h"
#include "NodePath.h"

#include <QTableView>

#include <optional>

class CommitField;
class EditorSession;
class QToolButton;

/// The attributes of one element in a table, each name and value a field, with a button in each row that
/// removes it and one below that adds another. Every change is one that the session makes.
class AttributeTableView : public QWidget {
    Q_OBJECT

public:
    /// `session` outlives the view.
    explicit AttributeTableView(EditorSession& session, QWidget* parent = nullptr);

    /// Shows the element `node` of the session's tree, which stands at `path`. To be called for every tree.
    void setElement(const NodePath& path, NodeID node);
    /// The element is the same in another tree, at `path` there: what is being edited goes on.
    void setPath(const NodePath& path) { m_path = path; }

    /// Shows no element, and no longer reads the session's tree. A draft that was not committed is given up.
    void clear();

    /// How wide the column of names is in `room` pixels for both columns: two fifths, and where the longest
    /// of the names needs more, up to three fifths.
    static int nameColumnWidth(int widestName, int room);

    QTableView* table() const { return m_table; }
    QToolButton* addButton() const { return m_add; }

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    class CellDelegate;

    CommitField* makeField(const QModelIndex& cell, QWidget* parent);
    bool commit(const QModelIndex& cell, const QString& draft);
    bool moveOn(CommitField& field, bool isForward);
    void edit(const QModelIndex& cell);
    void makeCurrent(const QModelIndex& cell);
    void enter(Qt::FocusReason reason);
    void leave(Qt::FocusReason reason);
    void remove(int row);
    void add();
    void editAdded();
    void fitHeight();
    void fitNames();

    EditorSession& m_session;
    NodePath m_path;
    AttributeTableModel m_model;
    QTableView* m_table = nullptr;
    QToolButton* m_add = nullptr;
    bool m_isChanging = false; ///< Fields that close meanwhile are of rows that are no more.
    QString m_added; ///< The name of an attribute that the next tree will have, to be edited at once.
};
