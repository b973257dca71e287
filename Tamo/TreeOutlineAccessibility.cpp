#include "TreeOutlineAccessibility.h"

#include "Breadcrumbs.h"
#include "TreeOutlineView.h"
#include "TreeRowEditor.h"

#include <QAccessibleWidget>
#include <QPointer>

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace {

class OutlineInterface;

/// What a row is beside its label: its kind, how deep it stands, and whether a problem lies on it.
QString description(const TreeRowView& view) {
    const QString what = QStringLiteral("%1, nivel %2")
                             .arg(Breadcrumbs::kindTitle(view.tree[view.row.node].kind))
                             .arg(view.row.depth + 1);
    return view.hasError ? what + QStringLiteral(". ") + TreeRowView::errorHelp() : what;
}

QString actionTitle(const TreeOutline::Row& row) { return TreeRowView::disclosureTitle(row.isExpanded); }

/// A part of the outline that is no widget. Gone once other rows are shown.
class PartInterface : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    PartInterface(TreeOutlineView& view, std::size_t row) : m_view(&view), m_row(row) {}

    bool isValid() const override { return m_view != nullptr && m_row < m_view->rowCount(); }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override { return m_view->window()->windowHandle(); }
    QAccessibleInterface* childAt(int x, int y) const override {
        for (int index = 0; index < childCount(); ++index) {
            if (QAccessibleInterface* const part = child(index); part->rect().contains(x, y)) {
                return part;
            }
        }
        return nullptr;
    }
    void setText(QAccessible::Text, const QString&) override {}
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    QString localizedActionName(const QString& action) const override {
        return action == toggleAction() ? actionTitle(shown())
                                        : QAccessibleActionInterface::localizedActionName(action);
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

protected:
    TreeOutlineView& view() const { return *m_view; }
    std::size_t row() const { return m_row; }
    const TreeOutline::Row& shown() const { return m_view->rowView(m_row).row; }
    OutlineInterface& outline() const;
    QRect onScreen(const QRect& inViewport) const {
        const QWidget* const viewport = m_view->viewport();
        return {viewport->mapToGlobal(inViewport.topLeft()), inViewport.size()};
    }
    bool isInView() const { return m_view->viewport()->rect().intersects(m_view->rect(m_row)); }

private:
    QPointer<TreeOutlineView> m_view;
    std::size_t m_row;
};

/// The disclosure button of a row.
class DisclosureInterface : public PartInterface {
public:
    using PartInterface::PartInterface;

    QAccessible::Role role() const override { return QAccessible::Button; }
    QString text(QAccessible::Text type) const override {
        return type == QAccessible::Name ? actionTitle(shown()) : QString();
    }
    QAccessible::State state() const override {
        QAccessible::State state;
        state.invisible = !isInView();
        state.expandable = true;
        state.expanded = shown().isExpanded;
        state.collapsed = !shown().isExpanded;
        return state;
    }
    QRect rect() const override { return onScreen(TreeRowView::disclosureRect(view().appearance(row()))); }
    QAccessibleInterface* parent() const override;
    int childCount() const override { return 0; }
    QAccessibleInterface* child(int) const override { return nullptr; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& action) override {
        if (action == pressAction()) {
            view().toggle(row());
        }
    }
};

/// A row.
class RowInterface : public PartInterface {
public:
    using PartInterface::PartInterface;

    QAccessible::Role role() const override { return QAccessible::TreeItem; }
    QString text(QAccessible::Text type) const override {
        switch (type) {
        case QAccessible::Name:
            return view().rowView(row()).text();
        case QAccessible::Description:
            return description(view().rowView(row()));
        default:
            return {};
        }
    }
    QAccessible::State state() const override {
        QAccessible::State state;
        state.invisible = !isInView();
        state.selectable = true;
        state.focusable = true;
        state.selected = view().selectedRow() == row();
        state.focused = state.selected && view().hasFocus();
        state.expandable = shown().hasChildren;
        state.expanded = shown().hasChildren && shown().isExpanded;
        state.collapsed = shown().hasChildren && !shown().isExpanded;
        return state;
    }
    QRect rect() const override { return onScreen(view().rect(row())); }
    QAccessibleInterface* parent() const override;
    int childCount() const override { return shown().hasChildren ? 1 : 0; }
    QAccessibleInterface* child(int index) const override;
    int indexOfChild(const QAccessibleInterface* part) const override {
        return childCount() == 1 && part == child(0) ? 0 : -1;
    }
    QStringList actionNames() const override {
        QStringList names{pressAction()};
        if (shown().hasChildren) {
            names += toggleAction();
        }
        return names;
    }
    void doAction(const QString& action) override {
        if (action == pressAction()) {
            view().choose(row());
        } else if (action == toggleAction()) {
            view().toggle(row());
        }
    }
};

/// The outline as a whole: its rows and, behind them, the field in which one is edited.
class OutlineInterface : public QAccessibleWidget {
public:
    explicit OutlineInterface(TreeOutlineView& view) : QAccessibleWidget(&view, QAccessible::Tree) {}
    ~OutlineInterface() override { forgetRows(); }

    int childCount() const override {
        return static_cast<int>(view().rowCount()) + (view().editor() != nullptr ? 1 : 0);
    }
    QAccessibleInterface* child(int index) const override {
        const auto row = static_cast<std::size_t>(index);
        if (index < 0 || row >= view().rowCount()) {
            return index == childCount() - 1 ? QAccessible::queryAccessibleInterface(view().editor())
                                             : nullptr;
        }
        return part<RowInterface>(m_rows, row);
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        if (view().editor() != nullptr && child->object() == view().editor()) {
            return childCount() - 1;
        }
        const auto found = std::ranges::find_if(m_rows, [child](const auto& row) {
            return QAccessible::accessibleInterface(row.second) == child;
        });
        return found != m_rows.end() ? static_cast<int>(found->first) : -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        const auto row = view().row(view().viewport()->mapFromGlobal(QPoint(x, y)));
        return row ? child(static_cast<int>(*row)) : nullptr;
    }
    QAccessibleInterface* focusChild() const override {
        const auto row = view().selectedRow();
        return row && view().hasFocus() ? child(static_cast<int>(*row)) : nullptr;
    }
    QAccessibleInterface* disclosure(std::size_t row) {
        return part<DisclosureInterface>(m_disclosures, row);
    }
    void forgetRows() {
        for (const Parts& parts : {std::exchange(m_rows, {}), std::exchange(m_disclosures, {})}) {
            for (const auto& [row, id] : parts) {
                QAccessible::deleteAccessibleInterface(id);
            }
        }
    }

private:
    using Parts = std::unordered_map<std::size_t, QAccessible::Id>;

    TreeOutlineView& view() const { return *static_cast<TreeOutlineView*>(widget()); }

    template <class Part>
    QAccessibleInterface* part(Parts& parts, std::size_t row) const {
        const auto [found, isNew] = parts.try_emplace(row);
        if (isNew) {
            found->second = QAccessible::registerAccessibleInterface(new Part(view(), row));
        }
        return QAccessible::accessibleInterface(found->second);
    }

    mutable Parts m_rows;
    mutable Parts m_disclosures;
};

OutlineInterface& PartInterface::outline() const {
    return *static_cast<OutlineInterface*>(QAccessible::queryAccessibleInterface(m_view));
}

QAccessibleInterface* RowInterface::parent() const { return &outline(); }

QAccessibleInterface* RowInterface::child(int index) const {
    return index == 0 && shown().hasChildren ? outline().disclosure(row()) : nullptr;
}

QAccessibleInterface* DisclosureInterface::parent() const { return outline().child(static_cast<int>(row())); }

QAccessibleInterface* make(const QString& className, QObject* object) {
    auto* const view = className == u"TreeOutlineView" ? qobject_cast<TreeOutlineView*>(object) : nullptr;
    return view != nullptr ? new OutlineInterface(*view) : nullptr;
}

void tell(TreeOutlineView& view, QAccessible::Event type) {
    QAccessibleEvent event(&view, type);
    if (const auto row = view.selectedRow()) {
        event.setChild(static_cast<int>(*row));
    }
    QAccessible::updateAccessibility(&event);
}

} // namespace

void TreeOutlineAccessibility::install() {
    QAccessible::removeFactory(make);
    QAccessible::installFactory(make);
}

void TreeOutlineAccessibility::rowsChanged(TreeOutlineView& view) {
    if (QAccessible::isActive()) {
        static_cast<OutlineInterface*>(QAccessible::queryAccessibleInterface(&view))->forgetRows();
        QAccessibleEvent event(&view, QAccessible::ObjectReorder);
        QAccessible::updateAccessibility(&event);
    }
}

void TreeOutlineAccessibility::selectionChanged(TreeOutlineView& view) {
    if (QAccessible::isActive() && view.selectedRow()) {
        tell(view, QAccessible::Selection);
        if (view.hasFocus()) {
            tell(view, QAccessible::Focus);
        }
    }
}
