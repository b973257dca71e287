#pragma once

#include "NodePath.h"

#include <QColor>
#include <QList>
#include <QString>
#include <QWidget>

#include <vector>

class EditorSession;
class QHBoxLayout;
class QScrollArea;
class QToolButton;

/// One step of the path to the selected node.
struct Crumb {
    NodePath path;
    QString title; ///< Plain text.
    QColor color;  ///< Of the title: an element's own, the secondary colour for other nodes.
    bool isAfterGap = false;

    bool operator==(const Crumb&) const = default;
};

/// The path from the document to the selected node as a row of buttons, each of which selects its node. A
/// path wider than the bar shows its end; the wheel and the arrow keys move along it.
class BreadcrumbBar : public QWidget {
    Q_OBJECT

public:
    /// `session` outlives the bar.
    explicit BreadcrumbBar(EditorSession& session, QWidget* parent = nullptr);

    const std::vector<Crumb>& crumbs() const { return m_crumbs; }

signals:
    /// The crumb of the selected node was pressed: the node is wanted in view.
    void selectedNodeRequested();

protected:
    void changeEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::vector<Crumb> crumbsOfSelection() const;
    void showSelection();
    void rebuild();
    void orderCrumbs();
    QList<QToolButton*> buttons() const;
    void choose(std::size_t crumb);
    void showEnd();

    EditorSession& m_session;
    std::vector<Crumb> m_crumbs;
    bool m_isBuilt = false;
    QScrollArea* m_scroll = nullptr;
    QWidget* m_row = nullptr;
    QHBoxLayout* m_layout = nullptr;
};
