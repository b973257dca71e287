#include "DocumentController.h"

#include "ChangesQuestion.h"
#include "DocumentKeeper.h"
#include "FileDialog.h"
#include "FilePath.h"
#include "OutsideChangeNotice.h"
#include "RecentFiles.h"
#include "RecentFilesMenu.h"
#include "RecoveryStore.h"
#include "ShownName.h"
#include "UndoManager.h"
#include "WindowPlacement.h"

#include <QFileInfo>
#include <QScreen>

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 200ms;

/// What is said of a recovered text that is not whole. `folder` keeps the texts.
QString damageNotice(RecoveryDamage damage, const QString& folder) {
    const QString why =
        damage == RecoveryDamage::cutOff
            ? QStringLiteral("A este texto recuperado le falta el final: el programa se interrumpió antes de "
                             "protegerlo entero.")
            : QStringLiteral("El disco no devolvió entero este texto recuperado: puede faltar una parte o "
                             "haber cambiado.");
    return QStringLiteral("%1 Compruébalo antes de guardarlo. Lo que había se conserva en “%2/damaged”.")
        .arg(why, shownPath(folder));
}

} // namespace

DocumentController::DocumentController(std::unique_ptr<DocumentType> type, QObject* parent)
    : QObject(parent), m_type(std::move(type)) {}

DocumentController::~DocumentController() {
    m_openings.clear();
    for (DocumentWindow* const window : windows()) {
        delete window;
    }
}

std::vector<DocumentWindow*> DocumentController::windows() const {
    std::vector<DocumentWindow*> open;
    for (const auto& window : m_windows) {
        if (window != nullptr) {
            open.push_back(window);
        }
    }
    return open;
}

std::unique_ptr<DocumentWindow> DocumentController::makeWindow() {
    return std::make_unique<DocumentWindow>(*this);
}

DocumentWindow* DocumentController::show(std::unique_ptr<DocumentWindow> window) {
    // From here on the window lives until it is closed.
    DocumentWindow* const shown = window.release();
    std::erase(m_windows, nullptr);
    if (!m_windows.empty()) {
        const DocumentWindow& last = *m_windows.back();
        const QSize frame = last.frameGeometry().size() - last.size();
        shown->move(
            WindowPlacement::cascaded(last.pos(), shown->size() + frame, last.screen()->availableGeometry()));
    }
    m_windows.emplace_back(shown);
    connect(shown, &DocumentWindow::aboutToClose, this, [this, shown] {
        std::erase(m_windows, shown);
        showTitles();
    });
    connect(shown, &DocumentWindow::documentChanged, this, &DocumentController::showTitles);
    showTitles();
    shown->show();
    return shown;
}

/// Names that were alone may have company now, or be alone again.
void DocumentController::showTitles() {
    for (DocumentWindow* const window : windows()) {
        window->showTitle();
    }
}

void DocumentController::setRecentFiles(RecentFiles* files) {
    m_recentFiles = files;
    files->refresh();
}

/// Gives a document, which its window just got, what follows it.
void DocumentController::equip(DocumentWindow& window, const QString& recovered) {
    if (m_store != nullptr) {
        window.addCompanion(std::make_unique<DocumentKeeper>(window, *m_store, recovered));
    }
    window.addCompanion(std::make_unique<OutsideChangeNotice>(window));
    connect(&window, &DocumentWindow::saved, this, [this, &window] { noteFile(window); });
    noteFile(window);
}

void DocumentController::noteFile(const DocumentWindow& window) {
    if (m_recentFiles != nullptr && !window.path().isEmpty()) {
        m_recentFiles->note(window.path());
    }
}

DocumentWindow* DocumentController::newDocument() {
    auto window = makeWindow();
    window->setDocument(m_type->makeUntitled(), {}, {});
    equip(*window);
    DocumentWindow* const shown = show(std::move(window));
    emit windowOpened(shown);
    return shown;
}

DocumentWindow* DocumentController::windowOf(const QString& path) const {
    const auto open = windows();
    const auto found = std::ranges::find_if(open, [&](const DocumentWindow* window) {
        return !window->path().isEmpty() && FilePath::canonical(window->path()) == path;
    });
    return found == open.end() ? nullptr : *found;
}

void DocumentController::raise(DocumentWindow& window) {
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.raise();
    window.activateWindow();
}

// Opening

void DocumentController::open(const QStringList& paths) {
    for (const QString& path : paths) {
        openFile(path);
    }
}

void DocumentController::openFile(const QString& path) {
    const QString absolute = FilePath::absolute(path);
    const QString file = FilePath::canonical(path);
    if (DocumentWindow* const window = windowOf(file)) {
        raise(*window);
        return;
    }
    const auto isSame = [&](const auto& each) { return FilePath::canonical(each->path) == file; };
    if (std::ranges::any_of(m_openings, isSame)) {
        return;
    }
    m_openings.push_back(std::make_unique<Opening>());
    Opening& opening = *m_openings.back();
    opening.path = absolute;
    opening.task.start([absolute, &type = *m_type](
                           std::stop_token stop) { return DocumentReading::of(type, absolute, stop); },
                       [this, &opening](DocumentReading reading) { finish(opening, std::move(reading)); },
                       [this, &opening] { finish(opening, DocumentReading::withoutMemory(opening.path)); });
    // Made while the file is being read.
    opening.window = makeWindow();
    opening.patience.setSingleShot(true);
    connect(&opening.patience, &QTimer::timeout, this, [this, &opening] { showOpening(opening); });
    opening.patience.start(patience);
}

void DocumentController::showOpening(Opening& opening) {
    opening.shown = show(std::move(opening.window));
    opening.shown->showOpening(opening.path, [window = opening.shown] { window->close(); });
    // Its timer stands for the opening, which may be over before the window closes.
    connect(opening.shown, &DocumentWindow::aboutToClose, &opening.patience,
            [this, &opening] { end(opening); });
}

void DocumentController::finish(Opening& opening, DocumentReading reading) {
    opening.patience.stop();
    if (!reading.contents) {
        const QString path = opening.path;
        DocumentWindow* const window = opening.shown;
        const QString message = reading.contents.error();
        end(opening);
        emit openingFailed(path, message);
        if (window != nullptr) {
            window->close();
        }
        return;
    }
    std::unique_ptr<DocumentWindow> hidden = std::move(opening.window);
    DocumentWindow* window = hidden != nullptr ? hidden.get() : opening.shown.get();
    const QString path = opening.path;
    end(opening);
    window->setDocument(m_type->makeDocument(std::move(*reading.contents)), path, reading.version);
    equip(*window);
    if (hidden != nullptr) {
        window = show(std::move(hidden));
    }
    emit windowOpened(window);
}

void DocumentController::end(Opening& opening) {
    std::erase_if(m_openings, [&](const auto& each) { return each.get() == &opening; });
}

void DocumentController::chooseAndOpen(DocumentWindow* from) {
    const QString folder = from->path().isEmpty() ? QString() : QFileInfo(from->path()).path();
    const QStringList paths = FileDialog::toOpen(folder, m_type->openFilters(), from)->choose();
    if (paths.isEmpty()) {
        return;
    }
    if (from->isPristine()) {
        connect(
            this, &DocumentController::windowOpened, from,
            [from] {
                if (from->isPristine()) {
                    from->close();
                }
            },
            Qt::SingleShotConnection);
    }
    open(paths);
}

void DocumentController::openFiles(const QList<QUrl>& files) {
    QStringList paths;
    for (const QUrl& file : files) {
        if (file.isLocalFile()) {
            paths += FilePath::of(file);
        }
    }
    open(paths);
}

DocumentWindow* DocumentController::openRecovered(const RecoveredText& text, const QString& id) {
    const QString path = FilePath::of(QByteArray::fromStdString(text.facts.origin));
    if (DocumentWindow* const other = path.isEmpty() ? nullptr : windowOf(FilePath::canonical(path));
        other != nullptr && !other->isWindowModified()) {
        // What is kept is newer than the file.
        other->close();
    }
    auto window = makeWindow();
    // A text that is not whole never takes the place of its file unasked.
    window->setDocument(m_type->makeDocument(text), path,
                        text.damage == RecoveryDamage::none ? text.facts.version : std::nullopt);
    window->document()->undoManager().resetClean();
    equip(*window, id);
    DocumentWindow* const shown = show(std::move(window));
    shown->document()->setTextSelection(TextSelection::of(text.moment.selection));
    if (text.damage != RecoveryDamage::none) {
        shown->addNotice(damageNotice(text.damage, m_store->folder()));
    }
    emit windowOpened(shown);
    return shown;
}

QMenu* DocumentController::makeRecentMenu(QWidget* parent) {
    return new RecentFilesMenu(
        m_recentFiles, [this](const QString& path) { open({path}); }, parent);
}

// Quitting

void DocumentController::quit() {
    if (!std::exchange(m_isQuitting, true)) {
        // The command may come from the menu of a window that closes while a save is waited for.
        QMetaObject::invokeMethod(this, &DocumentController::askAndClose, Qt::QueuedConnection);
    }
}

void DocumentController::askAndClose() {
    // A file that is being read has a window too, which closes with the others or stays with them.
    for (const auto& opening : m_openings) {
        if (opening->shown == nullptr) {
            opening->patience.stop();
            showOpening(*opening);
        }
    }
    const auto open = windows();
    const std::vector<QPointer<DocumentWindow>> leaving(open.begin(), open.end());
    const bool mayClose = ChangesQuestion::mayClose(leaving);
    m_isQuitting = false;
    if (mayClose) {
        for (const QPointer<DocumentWindow>& window : leaving) {
            if (window != nullptr) {
                window->closeUnasked();
            }
        }
    }
    if (hasOpenDocuments()) {
        emit quitRefused();
    } else {
        emit readyToQuit();
    }
}
