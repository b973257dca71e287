#include "TreeEditorView.h"

#include "EmptyStateView.h"
#include "FieldUndo.h"
#include "GroupedNumber.h"
#include "InsertionPrompts.h"
#include "MutationPlanner.h"
#include "NodeClipboard.h"
#include "NodeCopy.h"
#include "NodeSearch.h"
#include "NodeShortcuts.h"
#include "StringUnits.h"
#include "Symbol.h"
#include "SymbolLabel.h"
#include "SystemColor.h"
#include "SystemFont.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QStackedLayout>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace {

using PromptKind = EditorSession::NamePrompt::Kind;

constexpr int margin = 8;
constexpr int fieldHeight = 28;
constexpr qsizetype longestQuery = 60; ///< Units of a filter text that are quoted.

/// A document of nothing but its XML declaration has no structure to show either.
bool hasStructure(const DocumentTree& tree) {
    constexpr NodeID first{1};
    const bool isDeclarationAlone = tree.nodes.size() == 2 &&
                                    tree[first].kind == TreeNode::Kind::instruction &&
                                    tree.name(first) == u"xml";
    return tree.nodes.size() > 1 && !isDeclarationAlone;
}

QString matchCountText(std::size_t count) {
    return count == 0   ? QStringLiteral("Sin resultados")
           : count == 1 ? QStringLiteral("1 resultado")
                        : QStringLiteral("%1 resultados").arg(groupedNumber(count));
}

QString quoted(const QString& query) {
    const QString trimmed = query.trimmed();
    return trimmed.size() <= longestQuery ? trimmed : trimmed.first(longestQuery - 1) + u'…';
}

} // namespace

TreeEditorView::TreeEditorView(EditorSession& session, QWidget* parent)
    : QWidget(parent), m_session(session), m_filterField(new QLineEdit(this)), m_matchCount(new QLabel(this)),
      m_pages(new QStackedLayout), m_outline(new TreeOutlineView(this)),
      m_emptyState(new EmptyStateView(this)), m_prompts(new InsertionPrompts(session, *this)),
      m_blank(new QWidget(this)) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    auto* const header = new QHBoxLayout;
    header->setContentsMargins(margin, margin, margin, margin);
    header->setSpacing(margin);
    header->addWidget(m_filterField, 1);
    header->addWidget(m_matchCount);
    column->addLayout(header);
    column->addLayout(m_pages, 1);
    for (QWidget* const page :
         {static_cast<QWidget*>(m_outline), static_cast<QWidget*>(m_emptyState), m_blank}) {
        m_pages->addWidget(page);
    }
    m_blank->setBackgroundRole(QPalette::Base);
    m_blank->setAutoFillBackground(true);
    m_matchCount->setTextFormat(Qt::PlainText);
    m_matchCount->setFont(SystemFont::withMonospacedDigits(SystemFont::callout()));
    m_matchCount->setForegroundRole(QPalette::PlaceholderText);
    makeFilterField();
    connectOutline();
    connect(m_emptyState, &EmptyStateView::actionRequested, this, [this] {
        // The button goes with the empty state; the pane then passes the keys on.
        setFocus(Qt::OtherFocusReason);
        m_prompts->askForRoot();
    });
    connect(&m_session, &EditorSession::rowsChanged, this, &TreeEditorView::showRows);
    connect(&m_session, &EditorSession::lacksMemoryChanged, this, &TreeEditorView::showRows);
    connect(&m_session, &EditorSession::treeChanged, this, &TreeEditorView::showTree);
    connect(&m_session, &EditorSession::errorNodesChanged, m_outline->viewport(),
            qOverload<>(&QWidget::update));
    connect(&m_session, &EditorSession::selectionChanged, this, &TreeEditorView::followSelection);
    connect(&m_session, &EditorSession::filterChanged, this, &TreeEditorView::showFilter);
    showFilter();
    showRows();
}

void TreeEditorView::makeFilterField() {
    m_filterField->setPlaceholderText(QStringLiteral("Filtrar nodos"));
    m_filterField->setAccessibleName(QStringLiteral("Filtrar nodos"));
    m_filterField->setClearButtonEnabled(true);
    m_filterField->setMinimumHeight(fieldHeight);
    // A label: an action in the field would be a button that does nothing.
    auto* const symbol = new SymbolLabel;
    symbol->setIcon(Symbol::icon(u"magnifyingglass", SystemColor::secondaryLabel));
    symbol->setAttribute(Qt::WA_TransparentForMouseEvents);
    auto* const inField = new QHBoxLayout(m_filterField);
    inField->setContentsMargins(0, 0, 0, 0);
    inField->addWidget(symbol, 0, Qt::AlignLeft | Qt::AlignVCenter);
    m_filterField->setTextMargins(symbol->sizeHint().width() - margin, 0, 0, 0);
    for (QToolButton* const clear : m_filterField->findChildren<QToolButton*>()) {
        clear->setAccessibleName(QStringLiteral("Vaciar el filtro"));
    }
    m_filterField->installEventFilter(this);
    FieldUndo::shareWithDocument(*m_filterField);
    connect(m_filterField, &QLineEdit::textChanged, &m_session, &EditorSession::setFilter);
}

void TreeEditorView::connectOutline() {
    connect(m_outline, &TreeOutlineView::rowChosen, this, &TreeEditorView::select);
    connect(m_outline, &TreeOutlineView::expansionRequested, &m_session, &EditorSession::expandRow);
    connect(m_outline, &TreeOutlineView::collapseRequested, this, &TreeEditorView::collapse);
    connect(m_outline, &TreeOutlineView::menuRequested, this, &TreeEditorView::showMenu);
    connect(m_outline, &TreeOutlineView::deletionRequested, this, [this](std::size_t row) {
        select(row);
        m_session.deleteSelection();
    });
    connect(m_outline, &TreeOutlineView::renameRequested, &m_session, &EditorSession::rename);
    connect(m_outline, &TreeOutlineView::textChangeRequested, &m_session, &EditorSession::setText);
    connect(m_outline, &TreeOutlineView::dropRequested, this, &TreeEditorView::drop);
}

const EmptyStateView* TreeEditorView::emptyState() const {
    return m_pages->currentWidget() == m_emptyState ? m_emptyState : nullptr;
}

void TreeEditorView::showTree() {
    m_outline->carryPaths([this](const NodePath& path) { return m_session.carried(path); });
    if (m_wanted) {
        m_wanted = m_session.carried(*m_wanted);
    }
    showRows();
}

/// Whether the rows are those of a filter, and of the one in the field.
bool TreeEditorView::areMatchesKnown() const {
    return m_session.areRowsFiltered() && m_session.shownFilter() == m_session.filter().trimmed();
}

void TreeEditorView::showMatchCount() {
    const bool isKnown = areMatchesKnown();
    m_matchCount->setVisible(isKnown);
    m_matchCount->setText(isKnown ? matchCountText(m_session.matchCount()) : QString());
}

void TreeEditorView::showRows() {
    if (!m_outline->contents().filter.isEmpty() && !m_session.areRowsFiltered()) {
        m_wanted = m_session.selection();
    }
    m_outline->setContents({&m_session.tree(), &m_session.rows(),
                            [this](NodeID node) { return m_session.errorNodes().contains(node); },
                            m_session.shownFilter()});
    showSelection();
    showMatchCount();
    if (m_isMatchWanted && areMatchesKnown()) {
        goToFirstMatch();
    }
    const bool isSearchInVain = m_session.areRowsFiltered() && m_session.rows().isEmpty();
    if (!m_session.hasTree() && !m_session.lacksMemory()) {
        m_pages->setCurrentWidget(m_blank);
        return;
    }
    if (m_session.lacksMemory()) {
        m_emptyState->setContents(QStringLiteral("list.bullet.indent"), QStringLiteral("Sin árbol"),
                                  QStringLiteral("No hay memoria suficiente para el árbol del documento."));
        m_emptyState->setAction({});
    } else if (!hasStructure(m_session.tree())) {
        m_emptyState->setContents(QStringLiteral("list.bullet.indent"), QStringLiteral("Sin nodos"),
                                  QStringLiteral("El documento aún no tiene estructura."));
        m_emptyState->setAction(QStringLiteral("Crear elemento raíz…"));
    } else if (isSearchInVain) {
        m_emptyState->setContents(QStringLiteral("magnifyingglass"),
                                  QStringLiteral("Sin resultados para “%1”").arg(quoted(m_session.filter())),
                                  QStringLiteral("Comprueba la ortografía o prueba otra búsqueda."));
        m_emptyState->setAction({});
    } else {
        m_pages->setCurrentWidget(m_outline);
        passFocusOn();
        return;
    }
    m_pages->setCurrentWidget(m_emptyState);
}

/// The outline takes the keys that were given to the whole pane, as soon as it shows.
void TreeEditorView::passFocusOn() {
    if (hasFocus() && m_pages->currentWidget() == m_outline) {
        m_outline->setFocus(Qt::OtherFocusReason);
    }
}

void TreeEditorView::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    passFocusOn();
}

void TreeEditorView::showSelection() {
    const auto& selection = m_session.selection();
    const auto row = selection ? m_session.rows().row(*selection, m_session.tree()) : std::nullopt;
    m_outline->setSelectedRow(row);
    showWanted();
}

/// Other rows alone move nothing that the user has scrolled to.
void TreeEditorView::showWanted() {
    const auto row = m_wanted ? m_session.rows().row(*m_wanted, m_session.tree()) : std::nullopt;
    if (row) {
        m_wanted.reset();
        m_outline->scrollTo(*row);
    }
}

void TreeEditorView::bringIntoView(const NodePath& path) {
    m_wanted = path;
    showWanted();
}

void TreeEditorView::focusFilter() {
    m_filterField->setFocus(Qt::ShortcutFocusReason);
    m_filterField->selectAll();
}

bool TreeEditorView::isMatch(std::size_t row) const {
    return NodeSearch::isMatch(m_session.rows()[row].node, unitsOf(m_session.shownFilter()), m_session.tree());
}

void TreeEditorView::goToMatch(Direction direction) {
    const std::size_t count = areMatchesKnown() ? m_outline->rowCount() : 0;
    const bool isForward = direction == Direction::forward;
    const std::size_t from = m_outline->selectedRow().value_or(isForward ? count - 1 : 0);
    for (std::size_t distance = 1; distance <= count; ++distance) {
        const std::size_t row = (isForward ? from + distance : from + count - distance) % count;
        if (isMatch(row)) {
            m_outline->choose(row);
            return;
        }
    }
}

/// A match that is selected already stays so.
void TreeEditorView::goToFirstMatch() {
    m_isMatchWanted = m_session.filter().trimmed() != m_session.shownFilter();
    const auto selected = m_outline->selectedRow();
    if (!m_isMatchWanted && areMatchesKnown() && !(selected && isMatch(*selected))) {
        m_outline->setSelectedRow(std::nullopt);
        goToMatch(Direction::forward);
    }
}

void TreeEditorView::followSelection() {
    // A node that only has another path now is where the user left it.
    const std::int64_t serial = m_session.selectionSerial();
    if (m_session.selection() && std::exchange(m_followedSerial, serial) != serial) {
        m_wanted = m_session.selection();
    }
    showSelection();
}

void TreeEditorView::showSelectedNode() {
    m_wanted = m_session.selection();
    showSelection();
}

void TreeEditorView::showFilter() {
    m_isMatchWanted = false;
    if (m_filterField->text() != m_session.filter()) {
        m_filterField->setText(m_session.filter());
    }
    showMatchCount();
}

/// A selected node that a collapsed one hides gives the selection to that one.
void TreeEditorView::collapse(std::size_t row) {
    const auto selected = m_outline->selectedRow();
    const bool hidesSelection =
        selected && *selected > row && *selected < m_session.rows().subtreeEnd(row, m_session.tree());
    if (hidesSelection && !m_session.areRowsFiltered()) {
        select(row);
    }
    m_session.collapseRow(row);
}

std::unique_ptr<QMenu> TreeEditorView::makeMenu(std::size_t row) {
    auto menu = std::make_unique<QMenu>(this);
    const auto ask = [this](PromptKind kind) { return [this, kind] { m_session.requestNamePrompt(kind); }; };
    QAction* const addChild = menu->addAction(Symbol::icon(u"plus.square.on.square"),
                                              QStringLiteral("Añadir hijo…"), ask(PromptKind::addChild));
    addChild->setEnabled(m_session.tree()[m_session.rows()[row].node].isElement());
    addChild->setShortcut(NodeShortcuts::addChild);
    menu->addAction(Symbol::icon(u"plus"), QStringLiteral("Añadir hermano…"), ask(PromptKind::addSibling))
        ->setShortcut(NodeShortcuts::addSibling);
    menu->addAction(QStringLiteral("Duplicar"), &m_session, &EditorSession::duplicate)
        ->setShortcut(NodeShortcuts::duplicate);
    menu->addAction(QStringLiteral("Envolver en…"), ask(PromptKind::wrap))->setShortcut(NodeShortcuts::wrap);
    menu->addSeparator();
    menu->addAction(Symbol::icon(u"link"), QStringLiteral("Copiar ruta"), &m_session,
                    &EditorSession::copyPath)
        ->setShortcut(NodeShortcuts::copyPath);
    menu->addSeparator();
    menu->addAction(Symbol::icon(u"trash", SystemColor::systemRed), QStringLiteral("Eliminar"), &m_session,
                    &EditorSession::deleteSelection)
        ->setShortcut(QKeySequence::Delete);
    addClipboard(*menu);
    addInsertions(*menu);
    return menu;
}

void TreeEditorView::addClipboard(QMenu& menu) {
    menu.addSeparator();
    menu.addAction(QStringLiteral("Renombrar…"), Qt::Key_F2, this, &TreeEditorView::editSelectedNode);
    menu.addAction(QStringLiteral("Cortar"), QKeySequence::Cut, this, &TreeEditorView::cut);
    menu.addAction(QStringLiteral("Copiar"), QKeySequence::Copy, this, &TreeEditorView::copy);
    menu.addAction(QStringLiteral("Pegar"), QKeySequence::Paste, this, &TreeEditorView::paste)
        ->setEnabled(NodeClipboard::canPaste());
}

void TreeEditorView::addInsertions(QMenu& menu) {
    menu.addSeparator();
    menu.addAction(QStringLiteral("Insertar texto…"), m_prompts, &InsertionPrompts::askForText);
    menu.addAction(QStringLiteral("Insertar comentario…"), m_prompts, &InsertionPrompts::askForComment);
    if (!m_session.tree().rootElement()) {
        menu.addAction(QStringLiteral("Crear elemento raíz…"), m_prompts, &InsertionPrompts::askForRoot);
    }
}

void TreeEditorView::editSelectedNode() {
    showSelectedNode();
    if (const auto row = m_outline->selectedRow()) {
        m_outline->edit(*row);
    }
}

void TreeEditorView::cut() {
    if (isSelectionShown()) {
        NodeClipboard::cut(m_session);
    }
}

void TreeEditorView::copy() {
    if (isSelectionShown()) {
        NodeClipboard::copy(m_session);
    }
}

void TreeEditorView::paste() {
    if (isSelectionShown() || !m_session.selection()) {
        NodeClipboard::paste(m_session);
    }
}

void TreeEditorView::showMenu(std::size_t row, QPoint globalPosition) {
    select(row);
    QMenu* const menu = makeMenu(row).release();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(globalPosition);
}

/// Carries out what was dropped, unless that cannot be done.
void TreeEditorView::drop(const NodePath& dragged, const NodePath& target, TreeMutation::Placement placement,
                          Qt::DropAction action) {
    const DocumentTree& tree = m_session.tree();
    if (action == Qt::CopyAction) {
        if (NodeCopy::plan(dragged, target, placement, tree, m_session.indent())) {
            m_session.copy(dragged, target, placement);
        }
    } else if (MutationPlanner::plan(TreeMutation::Move{dragged, target, placement}, tree,
                                     m_session.indent())) {
        m_session.move(dragged, target, placement);
    }
}

bool TreeEditorView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_filterField && event->type() == QEvent::KeyPress) {
        switch (static_cast<QKeyEvent*>(event)->key()) {
        case Qt::Key_Escape:
            if (!m_filterField->text().isEmpty()) {
                m_filterField->clear();
                return true;
            }
            break;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            goToFirstMatch();
            [[fallthrough]];
        case Qt::Key_Down:
            if (m_outline->rowCount() != 0) {
                m_outline->setFocus(Qt::TabFocusReason);
                return true;
            }
            break;
        default:
            break;
        }
    }
    return QWidget::eventFilter(watched, event);
}
