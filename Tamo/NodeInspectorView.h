#pragma once

#include "NodePath.h"
#include "TreeNode.h"

#include <QWidget>

class AttributeTableView;
class CommitField;
class EditorSession;
class EmptyStateView;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QScrollArea;
class QVBoxLayout;

/// The selected node in detail: what it is, its name, its attributes and its content to edit, and the
/// commands on it. Every change is one that the session makes.
class NodeInspectorView : public QWidget {
    Q_OBJECT

public:
    /// `session` outlives the view.
    explicit NodeInspectorView(EditorSession& session, QWidget* parent = nullptr);

    /// What the header calls a kind of node, and the symbol that it has there.
    static QString title(TreeNode::Kind kind);
    static QString symbol(TreeNode::Kind kind);

protected:
    void changeEvent(QEvent* event) override;

private:
    /// A heading, and what stands below it.
    QWidget* makeSection(const QString& heading, QWidget* content);
    QWidget* makeActions();
    QPushButton* makeButton(const QString& text, const QString& symbol, void (NodeInspectorView::*action)());

    void showSelection();
    void showNode(const NodePath& path, NodeID node);
    void showHeader(NodeID node);
    QString content(NodeID node) const;
    QString source(NodeID node) const;
    QString start(SourceRange range) const;

    bool rename(const QString& name);
    bool setContent(const QString& text);
    void addChild();
    void addSibling();
    void duplicate();
    void wrap();
    void remove();

    EditorSession& m_session;
    NodePath m_path;
    std::int64_t m_shownSerial = -1; ///< Of the selection.
    QString m_shownSource;

    EmptyStateView* m_nothing = nullptr;
    QScrollArea* m_form = nullptr;
    QLabel* m_symbol = nullptr;
    QLabel* m_title = nullptr;
    CommitField* m_name = nullptr;
    AttributeTableView* m_attributes = nullptr;
    CommitField* m_content = nullptr;
    QPlainTextEdit* m_source = nullptr;
    QPushButton* m_addChild = nullptr;
    QWidget* m_nameSection = nullptr;
    QWidget* m_attributeSection = nullptr;
    QWidget* m_contentSection = nullptr;
    QWidget* m_sourceSection = nullptr;
    QWidget* m_actionSection = nullptr;
};
