#include "EditorWindowView.h"

#include "BreadcrumbBar.h"
#include "CodeEditorView.h"
#include "DiagnosticsBar.h"
#include "FieldDraft.h"
#include "FindBar.h"
#include "GoToLineBar.h"
#include "GroupedNumber.h"
#include "NamePromptDialog.h"
#include "NodeInspectorView.h"
#include "NoticeBar.h"
#include "PaneSplitter.h"
#include "PlaceKeeper.h"
#include "SegmentedControl.h"
#include "Symbol.h"
#include "SymbolLabel.h"
#include "SystemColor.h"
#include "SystemFont.h"
#include "TemplateGalleryView.h"
#include "TreeEditorView.h"
#include "UndoManager.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QShowEvent>
#include <QStackedWidget>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <array>
#include <utility>
#include <vector>

namespace {

using Mode = EditorSession::Mode;

// Three panes of these widths fit into the smallest window.
constexpr int narrowestInspector = 200;
constexpr int narrowestPane = 130;
constexpr int narrowestMessage = 280;

struct Segment {
    QString title;
    QString symbol;
};

/// In the order of the modes.
std::array<Segment, 3> segments() {
    return {Segment{QStringLiteral("Texto"), QStringLiteral("doc.plaintext")},
            Segment{QStringLiteral("Visual"), QStringLiteral("list.bullet.indent")},
            Segment{QStringLiteral("Dividido"), QStringLiteral("rectangle.split.2x1")}};
}

/// A line between bars and panes.
QFrame* makeSeparator() {
    auto* line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Plain);
    line->setFixedHeight(1);
    line->setForegroundRole(QPalette::Mid);
    return line;
}

/// `bars` one below the other.
QWidget* makeStack(std::initializer_list<QWidget*> bars) {
    auto* stack = new QWidget;
    auto* column = new QVBoxLayout(stack);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    for (QWidget* const bar : bars) {
        column->addWidget(bar);
    }
    return stack;
}

/// A box with a heading, and lines of a length that reads well.
void layOut(QMessageBox& box) {
    if (auto* const heading = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))) {
        heading->setFont(SystemFont::semibold(SystemFont::body()));
    }
    if (auto* const message = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"))) {
        message->setMinimumWidth(narrowestMessage);
    }
}

} // namespace

EditorWindowView::EditorWindowView(EditorSession& session, UndoManager& undoManager, QWidget* parent)
    : QWidget(parent), m_session(session), m_undoManager(undoManager) {
    buildPanes();
    buildToolBar();
    connectFindCommands();
    connectBreadcrumbs();
    m_pages = new QStackedWidget;
    m_gallery = new TemplateGalleryView(session);
    m_pages->addWidget(m_editor);
    m_pages->addWidget(m_gallery);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_toolBar);
    layout->addWidget(m_pages, 1);

    connect(m_gallery, &TemplateGalleryView::textRequested, this, &EditorWindowView::beginText);
    connect(m_gallery, &TemplateGalleryView::pasteRequested, &m_source->textView(), &TextView::paste);
    connect(&session, &EditorSession::modeChanged, this, &EditorWindowView::showMode);
    connect(&session, &EditorSession::treeChanged, this, &EditorWindowView::showStatus);
    connect(&session, &EditorSession::showsGalleryChanged, this, &EditorWindowView::showGallery);
    connect(&session, &EditorSession::namePromptChanged, this, &EditorWindowView::showNamePrompt);
    connect(&session, &EditorSession::errorMessageChanged, this, &EditorWindowView::showError);
    connect(&session, &EditorSession::isBusyChanged, this, &EditorWindowView::showBusy);
    showMode();
    showStatus();
    showGallery();
}

EditorWindowView* EditorWindowView::focused() {
    const QWidget* const window = QApplication::activeWindow();
    return window == nullptr ? nullptr : window->findChild<EditorWindowView*>();
}

// What it is made of

void EditorWindowView::buildPanes() {
    m_source = new CodeEditorView(m_session);
    m_tree = new TreeEditorView(m_session);
    m_inspector = new NodeInspectorView(m_session);
    m_places = new PlaceKeeper(m_session, *m_source, *m_tree, this);
    m_source->coordinator().setFocusGuard([this] { return !isWorkingOnNodes(); });
    m_source->setMinimumWidth(narrowestPane);
    m_tree->setMinimumWidth(narrowestPane);
    m_inspector->setMinimumWidth(narrowestInspector);
    m_panes = new PaneSplitter(PaneSplitter::Kept::share);
    m_panes->addWidget(m_source);
    m_panes->addWidget(m_tree);
    auto* columns = new PaneSplitter(PaneSplitter::Kept::trailingWidth);
    columns->addWidget(m_panes);
    columns->addWidget(m_inspector);
    // Above all panes: no pane is always as wide as they need.
    m_findBars = makeStack({&m_source->findBar(), &m_source->goToLineBar()});

    m_editor = new QWidget;
    auto* rows = new QVBoxLayout(m_editor);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    m_breadcrumbs = new BreadcrumbBar(m_session);
    m_diagnostics = new DiagnosticsBar(m_session);
    rows->addWidget(m_breadcrumbs);
    rows->addWidget(makeSeparator());
    rows->addWidget(m_findBars);
    rows->addWidget(columns, 1);
    rows->addWidget(makeSeparator());
    rows->addWidget(m_diagnostics);
}

void EditorWindowView::buildToolBar() {
    m_toolBar = new QToolBar(QStringLiteral("Barra de herramientas"));
    m_toolBar->setMovable(false);
    m_toolBar->setContextMenuPolicy(Qt::PreventContextMenu);

    m_modes = new SegmentedControl;
    m_modes->setAccessibleName(QStringLiteral("Modo"));
    for (const Segment& segment : segments()) {
        m_modes->addSegment(segment.title, segment.symbol);
    }
    connect(m_modes, &SegmentedControl::chosen, &m_session,
            [this](int mode) { m_session.setMode(static_cast<Mode>(mode)); });
    m_toolBar->addWidget(m_modes);

    QAction* const format =
        m_toolBar->addAction(Symbol::icon(u"increase.indent"), QStringLiteral("Formatear"));
    static_cast<QToolButton*>(m_toolBar->widgetForAction(format))
        ->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    format->setToolTip(QStringLiteral("Formatear documento (%1)")
                           .arg(QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_F).toString(QKeySequence::NativeText)));
    connect(format, &QAction::triggered, this, [this] {
        FieldDraft::commit(QApplication::focusWidget());
        m_session.format();
    });

    auto* space = new QWidget;
    space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    m_toolBar->addWidget(space);
    m_status = new SymbolLabel;
    m_toolBar->addWidget(m_status);
    m_inspectorAction = m_toolBar->addAction(Symbol::icon(u"sidebar.trailing"), QStringLiteral("Inspector"));
    m_inspectorAction->setCheckable(true);
    m_inspectorAction->setChecked(m_showInspector);
    connect(m_inspectorAction, &QAction::toggled, this, &EditorWindowView::setShowInspector);
    for (QToolButton* button : m_toolBar->findChildren<QToolButton*>()) {
        button->setFocusPolicy(Qt::TabFocus);
    }
}

QList<QAction*> EditorWindowView::findCommands() const {
    return m_source->findBar().commands() + m_source->goToLineBar().commands();
}

void EditorWindowView::connectFindCommands() {
    for (QAction* const command : findCommands()) {
        connect(command, &QAction::triggered, this, [this, command] { find(*command); });
    }
}

/// Brings the selected node into view again, wherever it shows.
void EditorWindowView::connectBreadcrumbs() {
    connect(m_breadcrumbs, &BreadcrumbBar::selectedNodeRequested, this, [this] {
        m_tree->showSelectedNode();
        if (const auto node = m_session.selectedNode(); node && m_session.mode() != Mode::visual) {
            m_session.reveal(m_session.tree()[*node].range);
        }
    });
}

/// With the notices of now.
const PaneCycle& EditorWindowView::panesInTurn() {
    std::vector<PaneCycle::Pane> panes;
    for (NoticeBar* const notice : window()->findChildren<NoticeBar*>()) {
        panes.push_back({notice, nullptr});
    }
    panes.insert(panes.end(), {{m_gallery, m_gallery},
                               {m_findBars, nullptr},
                               {m_source, &m_source->textView()},
                               {m_tree, &m_tree->outline()},
                               {m_inspector, nullptr},
                               {m_breadcrumbs, nullptr},
                               {m_diagnostics, nullptr},
                               {m_toolBar, nullptr}});
    m_panesInTurn.setPanes(std::move(panes));
    return m_panesInTurn;
}

void EditorWindowView::find(QAction& command) {
    if (m_session.mode() != Mode::visual) {
        return;
    }
    if (&command == findCommands().front()) {
        m_source->findBar().closeBar();
        m_tree->focusFilter();
        return;
    }
    // In the tree these go through what its filter has found.
    const bool isNext = command.shortcut() == QKeySequence(Qt::Key_F3);
    const bool isPrevious = command.shortcut() == QKeySequence(Qt::SHIFT | Qt::Key_F3);
    if ((isNext || isPrevious) && !m_session.filter().trimmed().isEmpty()) {
        m_source->findBar().closeBar();
        m_tree->goToMatch(isNext ? TreeEditorView::Direction::forward : TreeEditorView::Direction::backward);
        return;
    }
    m_session.setMode(Mode::split);
    // The bar could not take the keyboard while it was out of sight.
    command.trigger();
}

// What it shows

void EditorWindowView::setShowInspector(bool showInspector) {
    m_showInspector = showInspector;
    m_inspector->setVisible(showInspector);
    m_inspectorAction->setChecked(showInspector);
}

void EditorWindowView::showMode() {
    const Mode mode = m_session.mode();
    const QWidget* const focused = QApplication::focusWidget();
    const auto isIn = [focused](const QWidget* pane) { return pane == focused || pane->isAncestorOf(focused); };
    m_places->prepare(mode);
    const bool losesFocus = (mode == Mode::visual && (isIn(m_source) || isIn(m_findBars))) ||
                            (mode == Mode::text && isIn(m_tree));
    m_findBars->setVisible(mode != Mode::visual);
    m_source->setVisible(mode != Mode::visual);
    m_tree->setVisible(mode != Mode::text);
    m_modes->setCurrent(static_cast<int>(mode));
    if (losesFocus) {
        focusPane();
    }
}

/// Whether the keys go to the tree or the inspector, and what is to be revealed is only the node they have
/// selected or changed. Who asks to see a place in the text wants to go on there.
bool EditorWindowView::isWorkingOnNodes() const {
    const QWidget* const focused = QApplication::focusWidget();
    const auto& selection = m_session.selection();
    const auto& request = m_session.revealRequest();
    if (!selection || !request || !(m_tree->isAncestorOf(focused) || m_inspector->isAncestorOf(focused))) {
        return false;
    }
    const auto node = m_session.tree().resolve(*selection);
    return node && m_session.tree()[*node].range == request->range;
}

bool EditorWindowView::isSelectionInSight() const {
    const QWidget* const focused = QApplication::focusWidget();
    return m_session.mode() == Mode::text || !m_session.isSelectionFilteredOut() ||
           m_source->isAncestorOf(focused) || m_inspector->isAncestorOf(focused);
}

void EditorWindowView::focusPane() {
    QWidget* const pane = m_session.mode() == Mode::visual ? static_cast<QWidget*>(m_tree) : m_source;
    pane->setFocus(Qt::OtherFocusReason);
}

void EditorWindowView::showStatus() {
    const std::size_t errors = m_session.tree().diagnostics.errorCount();
    if (!m_session.hasTree()) {
        m_status->setIcon({});
        m_status->setText({});
        m_status->setToolTip({});
    } else if (errors == 0) {
        m_status->setIcon(Symbol::icon(u"checkmark.seal.fill", SystemColor::systemGreen));
        m_status->setText({});
        m_status->setToolTip(QStringLiteral("El documento está bien formado"));
    } else {
        m_status->setIcon(Symbol::icon(u"xmark.seal.fill", SystemColor::systemRed));
        m_status->setText(counted(errors, QStringLiteral("error"), QStringLiteral("errores")));
        m_status->setToolTip(QStringLiteral("El documento tiene errores"));
    }
    m_status->setAccessibleName(m_status->toolTip());
}

void EditorWindowView::showGallery() {
    const bool shows = m_session.showsGallery();
    QWidget* const page = shows ? static_cast<QWidget*>(m_gallery) : m_editor;
    if (m_pages->currentWidget() != page) {
        m_pages->setCurrentWidget(page);
        if (shows) {
            m_gallery->setFocus();
        } else {
            focusPane();
        }
    }
}

void EditorWindowView::showNamePrompt() {
    const auto& prompt = m_session.namePrompt();
    if (!prompt) {
        if (m_prompt != nullptr) {
            m_prompt->reject();
        }
        return;
    }
    delete m_prompt;
    const bool wraps = prompt->kind == EditorSession::NamePrompt::Kind::wrap;
    m_prompt = new NamePromptDialog(wraps ? QStringLiteral("Envolver en") : QString(), this);
    m_prompt->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_prompt, &QDialog::accepted, this, [this, dialog = m_prompt.get()] {
        m_prompt.clear();
        m_session.completeNamePrompt(dialog->name());
    });
    connect(m_prompt, &QDialog::rejected, this, [this] {
        m_prompt.clear();
        m_session.setNamePrompt(std::nullopt);
    });
    m_prompt->open();
}

void EditorWindowView::showError() {
    const auto& message = m_session.errorMessage();
    if (!message) {
        return;
    }
    delete m_alert;
    m_alert = new QMessageBox(QMessageBox::Warning, QStringLiteral("No se pudo editar"),
                              QStringLiteral("No se pudo editar"), QMessageBox::NoButton, this);
    m_alert->setTextFormat(Qt::PlainText);
    m_alert->setInformativeText(*message);
    layOut(*m_alert);
    m_alert->addButton(QStringLiteral("Aceptar"), QMessageBox::AcceptRole);
    m_alert->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_alert, &QDialog::finished, this, [this] {
        m_alert.clear();
        m_session.setErrorMessage(std::nullopt);
    });
    m_alert->open();
}

void EditorWindowView::showBusy() {
    if (m_session.isBusy() == m_isBusyShown) {
        return;
    }
    m_isBusyShown = m_session.isBusy();
    if (m_isBusyShown) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
    } else {
        QApplication::restoreOverrideCursor();
    }
}

// What the user does

void EditorWindowView::toggleComment() {
    if (const auto selection = m_session.toggleComment()) {
        m_source->select(*selection);
    }
}

void EditorWindowView::editSelectedNode() {
    if (m_session.mode() == Mode::text) {
        m_session.setMode(Mode::split);
    }
    // Once the tree is laid out.
    QMetaObject::invokeMethod(m_tree, &TreeEditorView::editSelectedNode, Qt::QueuedConnection);
}

void EditorWindowView::beginText(const QString& units) {
    // There is no tree yet to work on.
    if (m_session.mode() == Mode::visual) {
        m_session.setMode(Mode::text);
    }
    if (units.isEmpty()) {
        m_session.startBlank();
    } else {
        m_source->textView().insertText(units.toStdU16String());
    }
    m_source->setFocus(Qt::OtherFocusReason);
}

void EditorWindowView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!m_isStarted) {
        m_isStarted = true;
        m_session.buffer().setUndoManager(&m_undoManager);
        m_session.start();
        if (m_session.showsGallery()) {
            m_gallery->setFocus();
        } else {
            focusPane();
        }
    }
}
