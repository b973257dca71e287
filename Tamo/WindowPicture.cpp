#include "WindowPicture.h"

#include "CodeEditorView.h"
#include "DiagnosticsBar.h"
#include "DocumentWindow.h"
#include "EditorDocument.h"
#include "EditorWindowView.h"
#include "EncodingCommands.h"
#include "FindBar.h"
#include "TreeEditorView.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QTimer>
#include <QToolButton>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>
#include <utility>

namespace {

using namespace std::chrono_literals;
using Mode = EditorSession::Mode;
using Kind = EditorSession::NamePrompt::Kind;

constexpr QSize usualSize(1280, 820);
constexpr auto settling = 500ms; ///< For a filter's pause and its search, and for what is laid out later.

std::optional<Mode> modeNamed(const QString& name) {
    for (const Mode mode : EditorSession::allModes) {
        if (EditorSession::rawValue(mode) == name) {
            return mode;
        }
    }
    return std::nullopt;
}

/// "/0/2" as a path.
NodePath nodePath(const QString& description) {
    NodePath path;
    for (const QString& index : description.split(u'/', Qt::SkipEmptyParts)) {
        path.indices.push_back(index.toUInt());
    }
    return path;
}

std::optional<Kind> promptNamed(const QString& name) {
    const QStringList names = {QStringLiteral("addChild"), QStringLiteral("addSibling"), QStringLiteral("wrap")};
    const auto at = names.indexOf(name);
    return at < 0 ? std::nullopt : std::optional(static_cast<Kind>(at));
}

} // namespace

WindowPicture::WindowPicture(QString path, const QStringList& states, QObject* parent)
    : QObject(parent), m_path(std::move(path)) {
    for (const QString& state : states) {
        m_states.insert(state.section(u'=', 0, 0), state.section(u'=', 1));
    }
}

void WindowPicture::take(DocumentWindow* window) {
    if (m_window != nullptr) {
        return;
    }
    m_window = window;
    const QStringList size = m_states.value(QStringLiteral("size")).split(u'x');
    // No picture depends on the screen that it is taken on.
    window->resize(size.size() == 2 ? QSize(size[0].toInt(), size[1].toInt()) : usualSize);
    // Where nothing manages windows, none is active by itself.
    window->activateWindow();
    auto* const view = static_cast<EditorWindowView*>(window->view());
    const auto ready = [this, view] {
        // A menu keeps an event loop of its own.
        QTimer::singleShot(settling, this, &WindowPicture::shoot);
        setUp(*view);
    };
    connect(
        &view->session(), &EditorSession::treeChanged, this,
        [this, ready] { QTimer::singleShot(0, this, ready); }, Qt::SingleShotConnection);
}

void WindowPicture::setUp(EditorWindowView& view) {
    EditorSession& session = view.session();
    if (const auto mode = modeNamed(m_states.value(QStringLiteral("mode")))) {
        session.setMode(*mode);
    }
    if (m_states.contains(QStringLiteral("caret"))) {
        const auto caret = static_cast<Offset>(m_states.value(QStringLiteral("caret")).toUInt());
        view.codeEditor().select(SourceRange::empty(caret));
    }
    if (m_states.contains(QStringLiteral("select"))) {
        session.select(nodePath(m_states.value(QStringLiteral("select"))));
    }
    session.setFilter(m_states.value(QStringLiteral("filter")));
    if (const auto prompt = promptNamed(m_states.value(QStringLiteral("prompt")))) {
        session.requestNamePrompt(*prompt);
    }
    if (m_states.contains(QStringLiteral("rename")) && session.selection()) {
        session.rename(*session.selection(), m_states.value(QStringLiteral("rename")));
    }
    if (m_states.value(QStringLiteral("inspector")) == QStringLiteral("no")) {
        view.setShowInspector(false);
    }
    if (m_states.contains(QStringLiteral("find"))) {
        view.codeEditor().findBar().find();
        view.codeEditor().findBar().findChild<QLineEdit*>()->setText(m_states.value(QStringLiteral("find")));
    }
    openMenu(view, m_states.value(QStringLiteral("menu")));
    openDialog(m_states.value(QStringLiteral("dialog")));
}

void WindowPicture::openDialog(const QString& name) {
    EncodingCommands* const encoding = static_cast<EditorDocument*>(m_window->document())->encodingCommands();
    if (name == QStringLiteral("open")) {
        m_window->menu(DocumentWindow::Menu::file).actions().at(1)->trigger();
    } else if (name == QStringLiteral("saveAs")) {
        m_window->saveAs();
    } else if (name == QStringLiteral("reopen") && encoding != nullptr) {
        encoding->reopen();
    } else if (name == QStringLiteral("encoding") && encoding != nullptr) {
        encoding->save();
    }
}

void WindowPicture::openMenu(EditorWindowView& view, const QString& name) {
    if (name == QStringLiteral("problems")) {
        view.findChild<DiagnosticsBar*>()->findChild<QToolButton*>()->showMenu();
    } else if (name == QStringLiteral("node")) {
        QWidget* const viewport = view.treeEditor().outline().viewport();
        const QPoint middle = viewport->rect().center();
        QContextMenuEvent event(QContextMenuEvent::Keyboard, middle, viewport->mapToGlobal(middle));
        QApplication::sendEvent(viewport, &event);
    }
}

void WindowPicture::shoot() {
    QPixmap picture = m_window->grab();
    QPainter painter(&picture);
    for (QDialog* const dialog : m_window->findChildren<QDialog*>()) {
        if (dialog->isVisible()) {
            const QSize room = m_window->size() - dialog->size();
            const QPoint corner(room.width() / 2, room.height() / 3);
            painter.fillRect(m_window->rect(), QColor(0, 0, 0, 40));
            painter.drawPixmap(corner, dialog->grab());
            painter.setPen(m_window->palette().color(QPalette::Mid));
            painter.drawRect(QRect(corner, dialog->size()).adjusted(-1, -1, 0, 0));
        }
    }
    for (QMenu* const menu : m_window->findChildren<QMenu*>()) {
        if (menu->isVisible()) {
            // Where the screen ends, the picture may go on.
            const QPoint corner = m_window->mapFromGlobal(menu->pos());
            painter.drawPixmap(corner.x(), std::min(corner.y(), m_window->height() - menu->height()), menu->grab());
        }
    }
    painter.end();
    const bool saved = picture.save(m_path);
    if (!saved) {
        std::fprintf(stderr, "tamo: No se pudo guardar “%s”.\n", qUtf8Printable(m_path));
    }
    QCoreApplication::exit(saved ? EXIT_SUCCESS : EXIT_FAILURE);
}
