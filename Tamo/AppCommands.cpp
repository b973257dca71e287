#include "AppCommands.h"

#include "EditorWindowView.h"
#include "FieldDraft.h"
#include "InsertionPrompts.h"
#include "NodeShortcuts.h"
#include "TreeEditorView.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QThread>

#include <functional>

namespace {

using Kind = EditorSession::NamePrompt::Kind;
using Mode = EditorSession::Mode;

using Shortcuts = QList<QKeySequence>;

/// Adds a command on the focused window; what is being written in a field there counts before. Of several
/// shortcuts the menu shows the first.
QAction* add(QMenu& menu, const QString& title, const Shortcuts& shortcuts,
             std::function<void(EditorWindowView&)> command) {
    QAction* const action = menu.addAction(title);
    action->setShortcuts(shortcuts);
    QObject::connect(action, &QAction::triggered, &menu, [command = std::move(command)] {
        precondition(QThread::currentThread() == qApp->thread(),
                     "commands run on the main thread");
        if (EditorWindowView* const view = EditorWindowView::focused()) {
            FieldDraft::commit(QApplication::focusWidget());
            command(*view);
        }
    });
    return action;
}

/// The same for an operation of the session.
void add(QMenu& menu, const QString& title, const Shortcuts& shortcuts, void (EditorSession::*operation)()) {
    add(menu, title, shortcuts, [operation](EditorWindowView& view) { (view.session().*operation)(); });
}

/// The same for a command on the selected node: it works on none that cannot be seen.
void addOnNode(QMenu& menu, const QString& title, const Shortcuts& shortcuts,
               std::function<void(EditorSession&)> command) {
    add(menu, title, shortcuts, [command = std::move(command)](EditorWindowView& view) {
        if (view.isSelectionInSight()) {
            command(view.session());
        }
    });
}

void addPrompt(QMenu& menu, const QString& title, const QKeySequence& shortcut, Kind kind) {
    addOnNode(menu, title, {shortcut}, [kind](EditorSession& session) { session.requestNamePrompt(kind); });
}

void addMode(QMenu& menu, const QString& title, const QKeySequence& shortcut, Mode mode) {
    add(menu, title, {shortcut}, [mode](EditorWindowView& view) { view.session().setMode(mode); });
}

void addPaneStep(QMenu& menu, const QString& title, const QKeySequence& shortcut,
                 PaneCycle::Direction direction) {
    add(menu, title, {shortcut}, [direction](EditorWindowView& view) { view.panesInTurn().move(direction); });
}

/// Commands that write new nodes. That for a root element shows while there is none.
void addInsertions(QMenu& menu) {
    const auto addPrompted = [&menu](const QString& title, void (InsertionPrompts::*ask)()) {
        add(menu, title, {}, [ask](EditorWindowView& view) {
            if (view.isSelectionInSight()) {
                (view.treeEditor().prompts().*ask)();
            }
        });
    };
    addPrompted(QStringLiteral("Insertar &texto…"), &InsertionPrompts::askForText);
    addPrompted(QStringLiteral("Insertar c&omentario…"), &InsertionPrompts::askForComment);
    QAction* const root = add(menu, QStringLiteral("Crear elemento raí&z…"), {},
                              [](EditorWindowView& view) { view.treeEditor().prompts().askForRoot(); });
    QObject::connect(&menu, &QMenu::aboutToShow, root, [root] {
        const EditorSession* const session = AppCommands::focused().session;
        root->setVisible(session != nullptr && !session->showsGallery() && !session->tree().rootElement());
    });
}

} // namespace

AppCommands AppCommands::focused() {
    EditorWindowView* const view = EditorWindowView::focused();
    return {view == nullptr ? nullptr : &view->session()};
}

void AppCommands::addModes(QMenu& menu) {
    addMode(menu, QStringLiteral("Modo texto"), Qt::CTRL | Qt::Key_1, Mode::text);
    addMode(menu, QStringLiteral("Modo visual"), Qt::CTRL | Qt::Key_2, Mode::visual);
    addMode(menu, QStringLiteral("Modo dividido"), Qt::CTRL | Qt::Key_3, Mode::split);
    menu.addSeparator();
}

void AppCommands::addPlaces(QMenu& menu) {
    addPaneStep(menu, QStringLiteral("Panel siguiente"), Qt::Key_F6, PaneCycle::Direction::forward);
    addPaneStep(menu, QStringLiteral("Panel anterior"), Qt::SHIFT | Qt::Key_F6,
                PaneCycle::Direction::backward);
    menu.addSeparator();
    add(menu, QStringLiteral("Problema siguiente"), {Qt::Key_F8}, &EditorSession::nextProblem);
    add(menu, QStringLiteral("Problema anterior"), {Qt::SHIFT | Qt::Key_F8}, &EditorSession::previousProblem);
}

QMenu* AppCommands::makeFormatMenu(QWidget* parent) {
    auto* menu = new QMenu(QStringLiteral("F&ormato"), parent);
    add(*menu, QStringLiteral("Formatear documento"), {Qt::CTRL | Qt::ALT | Qt::Key_F},
        &EditorSession::format);
    add(*menu, QStringLiteral("Minificar documento"), {Qt::CTRL | Qt::ALT | Qt::SHIFT | Qt::Key_F},
        &EditorSession::minify);
    menu->addSeparator();
    add(*menu, QStringLiteral("Comentar / descomentar"), {Qt::CTRL | Qt::Key_Slash},
        [](EditorWindowView& view) { view.toggleComment(); });
    return menu;
}

QMenu* AppCommands::makeNodeMenu(QWidget* parent) {
    auto* menu = new QMenu(QStringLiteral("&Nodo"), parent);
    addPrompt(*menu, QStringLiteral("Añadir &hijo…"), NodeShortcuts::addChild, Kind::addChild);
    addPrompt(*menu, QStringLiteral("Añadir her&mano…"), NodeShortcuts::addSibling, Kind::addSibling);
    addPrompt(*menu, QStringLiteral("&Envolver en…"), NodeShortcuts::wrap, Kind::wrap);
    addOnNode(*menu, QStringLiteral("&Duplicar"), {NodeShortcuts::duplicate}, &EditorSession::duplicate);
    menu->addSeparator();
    // Window managers take the first of each; they leave the second.
    addOnNode(*menu, QStringLiteral("Mover &arriba"),
              {Qt::CTRL | Qt::ALT | Qt::Key_Up, Qt::ALT | Qt::SHIFT | Qt::Key_Up}, &EditorSession::moveUp);
    addOnNode(*menu, QStringLiteral("Mover a&bajo"),
              {Qt::CTRL | Qt::ALT | Qt::Key_Down, Qt::ALT | Qt::SHIFT | Qt::Key_Down},
              &EditorSession::moveDown);
    menu->addSeparator();
    addOnNode(*menu, QStringLiteral("&Copiar ruta"), {NodeShortcuts::copyPath}, &EditorSession::copyPath);
    addOnNode(*menu, QStringLiteral("E&liminar"), {}, &EditorSession::deleteSelection);
    menu->addSeparator();
    add(*menu, QStringLiteral("&Renombrar…"), {}, [](EditorWindowView& view) {
        if (view.isSelectionInSight()) {
            view.editSelectedNode();
        }
    });
    addInsertions(*menu);
    return menu;
}
