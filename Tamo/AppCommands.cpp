#include "AppCommands.h"

#include "CommitField.h"
#include "EditorWindowView.h"

#include <QAction>
#include <QCoreApplication>
#include <QMenu>
#include <QThread>

#include <functional>

namespace {

using Kind = EditorSession::NamePrompt::Kind;
using Mode = EditorSession::Mode;

/// Adds a command on the focused window; what is being written in a field there counts before.
void add(QMenu& menu, const QString& title, const QKeySequence& shortcut,
         std::function<void(EditorWindowView&)> command) {
    QAction* const action = menu.addAction(title);
    action->setShortcut(shortcut);
    QObject::connect(action, &QAction::triggered, &menu, [command = std::move(command)] {
        precondition(QThread::currentThread() == QCoreApplication::instance()->thread(),
                     "commands run on the main thread");
        if (EditorWindowView* const view = EditorWindowView::focused()) {
            CommitField::commitFocused();
            command(*view);
        }
    });
}

/// The same for an operation of the session.
void add(QMenu& menu, const QString& title, const QKeySequence& shortcut, void (EditorSession::*operation)()) {
    add(menu, title, shortcut, [operation](EditorWindowView& view) { (view.session().*operation)(); });
}

void addPrompt(QMenu& menu, const QString& title, const QKeySequence& shortcut, Kind kind) {
    add(menu, title, shortcut, [kind](EditorWindowView& view) { view.session().requestNamePrompt(kind); });
}

void addMode(QMenu& menu, const QString& title, const QKeySequence& shortcut, Mode mode) {
    add(menu, title, shortcut, [mode](EditorWindowView& view) { view.session().setMode(mode); });
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

QMenu* AppCommands::makeFormatMenu(QWidget* parent) {
    auto* menu = new QMenu(QStringLiteral("F&ormato"), parent);
    add(*menu, QStringLiteral("Formatear documento"), Qt::CTRL | Qt::ALT | Qt::Key_F, &EditorSession::format);
    add(*menu, QStringLiteral("Minificar documento"), Qt::CTRL | Qt::ALT | Qt::SHIFT | Qt::Key_F,
        &EditorSession::minify);
    menu->addSeparator();
    add(*menu, QStringLiteral("Comentar / descomentar"), Qt::CTRL | Qt::Key_Slash,
        [](EditorWindowView& view) { view.toggleComment(); });
    return menu;
}

QMenu* AppCommands::makeNodeMenu(QWidget* parent) {
    auto* menu = new QMenu(QStringLiteral("&Nodo"), parent);
    addPrompt(*menu, QStringLiteral("Añadir hijo…"), Qt::CTRL | Qt::Key_Return, Kind::addChild);
    addPrompt(*menu, QStringLiteral("Añadir hermano…"), Qt::CTRL | Qt::SHIFT | Qt::Key_Return, Kind::addSibling);
    addPrompt(*menu, QStringLiteral("Envolver en…"), Qt::CTRL | Qt::ALT | Qt::Key_W, Kind::wrap);
    add(*menu, QStringLiteral("Duplicar"), Qt::CTRL | Qt::Key_D, &EditorSession::duplicate);
    menu->addSeparator();
    add(*menu, QStringLiteral("Mover arriba"), Qt::CTRL | Qt::ALT | Qt::Key_Up, &EditorSession::moveUp);
    add(*menu, QStringLiteral("Mover abajo"), Qt::CTRL | Qt::ALT | Qt::Key_Down, &EditorSession::moveDown);
    menu->addSeparator();
    add(*menu, QStringLiteral("Copiar ruta"), Qt::CTRL | Qt::SHIFT | Qt::Key_C,
        [](EditorWindowView& view) { view.session().copyPath(); });
    add(*menu, QStringLiteral("Eliminar"), {}, &EditorSession::deleteSelection);
    return menu;
}
