#include "AttributeTableView.h"

#include "CommitField.h"
#include "EditorSession.h"
#include "ShownText.h"
#include "Symbol.h"
#include "SystemColor.h"
#include "SystemFont.h"

#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QStyledItemDelegate>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int rowHeight = 28;
constexpr int removalWidth = 28;
constexpr int symbolSize = 14;
constexpr qsizetype longestSpokenName = 100; ///< Of an attribute, in the name of its field.
constexpr int mostRowsAtOnce = 12; ///< A longer table scrolls.
constexpr int mostMeasured = 200;  ///< Names that the width of their column comes from.
constexpr qsizetype longestMeasured = 100;
constexpr int cellPadding = 20; ///< Left and right of a name together.

/// The width of the longest of the first names.
int widestName(const AttributeTableModel& model, const QFontMetrics& metrics) {
    int widest = 0;
    for (int row = 0; row < std::min(model.rowCount(), mostMeasured); ++row) {
        const QString name =
            model.data(model.index(row, AttributeTableModel::name), Qt::DisplayRole).toString();
        widest =
            std::max(widest, metrics.horizontalAdvance(name.first(std::min(name.size(), longestMeasured))));
    }
    return widest;
}

/// While it lives, a cell that becomes the current one is not edited at once.
class EditingPause {
public:
    explicit EditingPause(QTableView& table) : m_table(table), m_triggers(table.editTriggers()) {
        m_table.setEditTriggers(QAbstractItemView::NoEditTriggers);
    }
    ~EditingPause() { m_table.setEditTriggers(m_triggers); }
    EditingPause(const EditingPause&) = delete;
    EditingPause& operator=(const EditingPause&) = delete;

private:
    QTableView& m_table;
    const QAbstractItemView::EditTriggers m_triggers;
};

} // namespace

/// Paints the cells, and makes a field of the one that is edited.
class AttributeTableView::CellDelegate : public QStyledItemDelegate {
public:
    explicit CellDelegate(AttributeTableView& view) : QStyledItemDelegate(&view), m_view(view) {}

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex& cell) const override {
        CommitField* const field = m_view.makeField(cell, parent);
        const auto close = [this, field, edited = QPersistentModelIndex(cell)] {
            // Return closes it, and then it loses the focus.
            if (m_view.m_table->indexWidget(edited) == field) {
                emit const_cast<CellDelegate*>(this)->closeEditor(field, QAbstractItemDelegate::NoHint);
            }
        };
        connect(field, &CommitField::submitted, field, close);
        connect(field, &CommitField::cancelled, field, close);
        connect(field, &CommitField::focusLost, field, close, Qt::QueuedConnection);
        return field;
    }

    // A field knows its value and commits by itself.
    void setEditorData(QWidget* editor, const QModelIndex& cell) const override {
        static_cast<CommitField*>(editor)->setValue(m_view.m_model.editedText(cell));
    }
    void setModelData(QWidget*, QAbstractItemModel*, const QModelIndex&) const override {}
    bool eventFilter(QObject*, QEvent*) override { return false; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& cell) const override {
        if (cell.column() != AttributeTableModel::removal) {
            QStyledItemDelegate::paint(painter, option, cell);
            return;
        }
        QStyleOptionViewItem background = option;
        QStyledItemDelegate::paint(painter, background, cell);
        const bool isHot = option.state.testFlag(QStyle::State_MouseOver) ||
                           option.state.testFlag(QStyle::State_HasFocus);
        const SystemColor ink = isHot ? SystemColor::systemRed : SystemColor::tertiaryLabel;
        QRectF box(0, 0, symbolSize, symbolSize);
        box.moveCenter(QRectF(option.rect).center());
        Symbol::draw(*painter, box, u"minus.circle.fill", color(ink, option.palette));
    }

private:
    AttributeTableView& m_view;
};

AttributeTableView::AttributeTableView(EditorSession& session, QWidget* parent)
    : QWidget(parent), m_session(session), m_table(new QTableView), m_add(new QToolButton) {
    m_table->setModel(&m_model);
    m_table->setItemDelegate(new CellDelegate(*this));
    m_table->setAccessibleName(QStringLiteral("Atributos"));
    m_table->setFont(SystemFont::monospaced());
    m_table->setEditTriggers(QAbstractItemView::AllEditTriggers);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setTabKeyNavigation(false);
    m_table->setShowGrid(false);
    m_table->setAlternatingRowColors(true);
    m_table->setMouseTracking(true);
    m_table->setWordWrap(false);
    m_table->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_table->verticalHeader()->setDefaultSectionSize(rowHeight);
    QHeaderView* const header = m_table->horizontalHeader();
    header->setFont(SystemFont::caption());
    header->setHighlightSections(false);
    header->setSectionsClickable(false);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setMinimumSectionSize(removalWidth);
    m_table->verticalHeader()->setMinimumSectionSize(rowHeight);
    header->setSectionResizeMode(AttributeTableModel::name, QHeaderView::Fixed);
    header->setSectionResizeMode(AttributeTableModel::value, QHeaderView::Stretch);
    header->setSectionResizeMode(AttributeTableModel::removal, QHeaderView::Fixed);
    header->resizeSection(AttributeTableModel::removal, removalWidth);
    m_table->installEventFilter(this);
    connect(m_table, &QTableView::clicked, this, [this](const QModelIndex& cell) {
        if (cell.column() == AttributeTableModel::removal) {
            remove(cell.row());
        }
    });

    m_add->setText(QStringLiteral("Añadir atributo"));
    m_add->setIcon(Symbol::icon(u"plus.circle.fill"));
    m_add->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_add->setAutoRaise(true);
    m_add->setFocusPolicy(Qt::StrongFocus);
    connect(m_add, &QToolButton::clicked, this, &AttributeTableView::add);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(m_table);
    layout->addWidget(m_add, 0, Qt::AlignLeft);
    fitHeight();
}

void AttributeTableView::setElement(const NodePath& path, NodeID node) {
    if (path != m_path) {
        clear();
    }
    m_path = path;
    {
        const QScopedValueRollback changing(m_isChanging, true);
        const EditingPause pause(*m_table);
        m_model.setNode(&m_session.tree(), node);
    }
    fitHeight();
    fitNames();
    editAdded();
}

void AttributeTableView::clear() {
    const QScopedValueRollback changing(m_isChanging, true);
    m_table->setCurrentIndex({});
    m_model.setNode(nullptr, {});
    m_added.clear();
}

CommitField* AttributeTableView::makeField(const QModelIndex& cell, QWidget* parent) {
    const QString title =
        m_model.headerData(cell.column(), Qt::Horizontal, Qt::DisplayRole).toString();
    auto* field = new CommitField(title, CommitField::Axis::horizontal, parent);
    field->setFont(m_table->font());
    const QString attribute = ShownText::shortened(m_model.attributeName(cell.row()), longestSpokenName);
    field->editor()->setAccessibleName(QStringLiteral("%1 del atributo %2").arg(title, attribute));
    field->editor()->installEventFilter(this);
    const QPersistentModelIndex edited(cell);
    field->setCommit([this, edited](const QString& draft) {
        return edited.isValid() && !m_isChanging && commit(edited, draft);
    });
    return field;
}

bool AttributeTableView::commit(const QModelIndex& cell, const QString& draft) {
    const QString name = QString::fromStdU16String(m_model.attributeName(cell.row()));
    if (cell.column() == AttributeTableModel::name) {
        m_session.renameAttribute(m_path, name, draft);
    } else {
        m_session.setAttribute(m_path, name, draft);
    }
    return !m_session.errorMessage();
}

bool AttributeTableView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_table && event->type() == QEvent::FocusIn) {
        enter(static_cast<QFocusEvent*>(event)->reason());
        return false;
    }
    if (watched == m_table && event->type() == QEvent::FocusOut) {
        leave(static_cast<QFocusEvent*>(event)->reason());
        return false;
    }
    if (event->type() != QEvent::KeyPress) {
        return QWidget::eventFilter(watched, event);
    }
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (watched != m_table) {
        auto* const field = qobject_cast<CommitField*>(static_cast<QWidget*>(watched)->parentWidget());
        return field != nullptr && (key == Qt::Key_Tab || key == Qt::Key_Backtab) &&
               moveOn(*field, key == Qt::Key_Tab);
    }
    const QModelIndex current = m_table->currentIndex();
    const bool isOnButton = current.column() == AttributeTableModel::removal;
    const bool presses = isOnButton && (key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter);
    if (current.isValid() && (key == Qt::Key_Delete || presses)) {
        remove(current.row());
        return true;
    }
    if (current.isValid() && (key == Qt::Key_Return || key == Qt::Key_Enter)) {
        edit(current);
        return true;
    }
    return false;
}

/// Goes from one field to the next, and out of the table at either end.
bool AttributeTableView::moveOn(CommitField& field, bool isForward) {
    const QModelIndex current = m_table->currentIndex();
    field.commitDraft();
    const int step = current.row() * 2 + current.column() + (isForward ? 1 : -1);
    const QModelIndex next = step < 0 ? QModelIndex() : m_model.index(step / 2, step % 2);
    if (next.isValid()) {
        edit(next);
        return true;
    }
    if (isForward) {
        m_add->setFocus(Qt::TabFocusReason);
        return true;
    }
    m_table->setFocus(Qt::BacktabFocusReason);
    return m_table->previousInFocusChain() != nullptr && focusNextPrevChild(false);
}

void AttributeTableView::edit(const QModelIndex& cell) {
    m_table->scrollTo(cell);
    m_table->setCurrentIndex(cell);
    if (m_table->indexWidget(cell) == nullptr) {
        m_table->edit(cell);
    }
    if (auto* field = qobject_cast<CommitField*>(m_table->indexWidget(cell))) {
        field->editor()->setFocus(Qt::TabFocusReason);
        field->selectAll();
    }
}

/// Makes a cell the current one without editing it.
void AttributeTableView::makeCurrent(const QModelIndex& cell) {
    const EditingPause pause(*m_table);
    m_table->setCurrentIndex(cell);
}

/// The keyboard finds a cell where it comes into the table.
void AttributeTableView::enter(Qt::FocusReason reason) {
    const bool isByKey = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason;
    if (isByKey && !m_table->currentIndex().isValid() && m_model.rowCount() != 0) {
        makeCurrent(reason == Qt::TabFocusReason
                        ? m_model.index(0, AttributeTableModel::name)
                        : m_model.index(m_model.rowCount() - 1, AttributeTableModel::value));
    }
}

/// Without the keyboard no cell is the current one: assistive tools would take it for the one with the focus.
void AttributeTableView::leave(Qt::FocusReason reason) {
    const bool isByKey = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason;
    if (isByKey && !m_table->isAncestorOf(QApplication::focusWidget())) {
        makeCurrent({});
    }
}

void AttributeTableView::remove(int row) {
    // The button of the row that follows must not be pressed by the same key.
    makeCurrent(m_model.index(row, AttributeTableModel::name));
    m_session.removeAttribute(m_path, QString::fromStdU16String(m_model.attributeName(row)));
}

void AttributeTableView::add() {
    m_added = m_session.addAttribute(m_path);
    editAdded();
}

void AttributeTableView::editAdded() {
    const int last = m_model.rowCount() - 1;
    if (!m_added.isEmpty() && last >= 0 && m_added == QString::fromStdU16String(m_model.attributeName(last))) {
        m_added.clear();
        edit(m_model.index(last, AttributeTableModel::name));
    }
}

void AttributeTableView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    fitNames();
}

int AttributeTableView::nameColumnWidth(int widestName, int room) {
    const int shared = std::max(room, 0);
    return std::clamp(widestName + cellPadding, shared * 2 / 5, shared * 3 / 5);
}

void AttributeTableView::fitNames() {
    const int widest = widestName(m_model, m_table->fontMetrics());
    m_table->horizontalHeader()->resizeSection(AttributeTableModel::name,
                                               nameColumnWidth(widest, width() - removalWidth));
}

void AttributeTableView::fitHeight() {
    const int rows = std::clamp(m_model.rowCount(), 0, mostRowsAtOnce);
    const int header = m_table->horizontalHeader()->sizeHint().height();
    const int row = m_table->verticalHeader()->defaultSectionSize();
    m_table->setFixedHeight(header + rows * row + 2 * m_table->frameWidth());
    m_table->setVisible(rows != 0);
}
