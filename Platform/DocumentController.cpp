#include "DocumentController.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 200ms;
constexpr int cascade = 28; ///< Pixels that a window is moved from the one before.

/// The one path of a file, whatever links lead to it.
QString canonical(const QString& path) {
    const QFileInfo file(path);
    const QString found = file.canonicalFilePath();
    return found.isEmpty() ? file.absoluteFilePath() : found;
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
        shown->move(m_windows.back()->pos() + QPoint(cascade, cascade));
    }
    m_windows.emplace_back(shown);
    connect(shown, &DocumentWindow::aboutToClose, this, [this, shown] {
        std::erase(m_windows, shown);
        if (m_isQuitting) {
            QMetaObject::invokeMethod(this, &DocumentController::closeNext, Qt::QueuedConnection);
        }
    });
    connect(shown, &DocumentWindow::closingRefused, this, [this] {
        if (std::exchange(m_isQuitting, false)) {
            emit quitRefused();
        }
    });
    shown->show();
    return shown;
}

DocumentWindow* DocumentController::newDocument() {
    auto window = makeWindow();
    window->setDocument(m_type->makeUntitled(), {}, {});
    DocumentWindow* const shown = show(std::move(window));
    emit windowOpened(shown);
    return shown;
}

DocumentWindow* DocumentController::windowOf(const QString& path) const {
    const auto open = windows();
    const auto found = std::ranges::find_if(open, [&](const DocumentWindow* window) {
        return !window->path().isEmpty() && canonical(window->path()) == path;
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
    const QString absolute = QFileInfo(path).absoluteFilePath();
    if (DocumentWindow* const window = windowOf(canonical(path))) {
        raise(*window);
        return;
    }
    const auto isSame = [&](const auto& each) { return canonical(each->path) == canonical(path); };
    if (std::ranges::any_of(m_openings, isSame)) {
        return;
    }
    m_openings.push_back(std::make_unique<Opening>());
    Opening& opening = *m_openings.back();
    opening.path = absolute;
    opening.task.start(
        [absolute, &type = *m_type](std::stop_token stop) {
            // First what the disk knows of the file: it may change while it is read, and then counts as
            // changed.
            const auto version = FileIdentity::of(absolute);
            Reading reading{type.read(absolute, stop), std::nullopt};
            if (version) {
                reading.version = *version;
            }
            return reading;
        },
        [this, &opening](Reading reading) { finish(opening, std::move(reading)); });
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
    connect(opening.shown, &DocumentWindow::aboutToClose, &opening.patience, [this, &opening] { end(opening); });
}

void DocumentController::finish(Opening& opening, Reading reading) {
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
    const QStringList paths = QFileDialog::getOpenFileNames(from, QStringLiteral("Abrir"), folder,
                                                            m_type->openFilters().join(QStringLiteral(";;")));
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

QMenu* DocumentController::makeRecentMenu(QWidget* parent) {
    auto* menu = new QMenu(QStringLiteral("Abrir &reciente"), parent);
    menu->setEnabled(false);
    return menu;
}

// Quitting

void DocumentController::quit() {
    m_isQuitting = true;
    closeNext();
}

void DocumentController::closeNext() {
    if (!m_isQuitting) {
        return;
    }
    const auto open = windows();
    if (open.empty()) {
        m_isQuitting = false;
        emit readyToQuit();
        return;
    }
    // The window tells when it has closed, or that the user does not want it to.
    open.back()->close();
}
