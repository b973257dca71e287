#include "OutsideChangeNotice.h"

#include "DocumentController.h"
#include "DocumentWindow.h"
#include "GroupedNumber.h"
#include "NoticeBar.h"
#include "UndoManager.h"

#include <QDateTime>
#include <QEvent>

#include <utility>

namespace {

/// "1.234 bytes, 21/11/2026 20:41:07", to compare with another.
QString sizeAndTime(const FileIdentity& file) {
    constexpr std::int64_t nanosecondsPerMillisecond = 1'000'000;
    const auto time = QDateTime::fromMSecsSinceEpoch(file.modified / nanosecondsPerMillisecond);
    return QStringLiteral("%1, %2").arg(counted(file.size, QStringLiteral("byte"), QStringLiteral("bytes")),
                                        time.toString(QStringLiteral("dd/MM/yyyy HH:mm:ss")));
}

const QString reloadTitle = QStringLiteral("Volver a cargar");

} // namespace

OutsideChangeNotice::OutsideChangeNotice(DocumentWindow& window)
    : m_window(window), m_bar(*window.addNoticeBar()) {
    connect(&m_watcher, &FileWatcher::changed, this, &OutsideChangeNotice::takeChange);
    connect(&m_watcher, &FileWatcher::removed, this, &OutsideChangeNotice::takeRemoval);
    connect(&m_watcher, &FileWatcher::restored, this, &OutsideChangeNotice::takeReturn);
    connect(&window, &DocumentWindow::documentChanged, this, &OutsideChangeNotice::follow);
    connect(&window, &DocumentWindow::savingStarted, &m_watcher, &FileWatcher::beginOwnWrite);
    connect(&window, &DocumentWindow::savingEnded, this, &OutsideChangeNotice::endOwnWrite);
    window.installEventFilter(this);
    follow();
}

OutsideChangeNotice::~OutsideChangeNotice() = default;

bool OutsideChangeNotice::eventFilter(QObject* watched, QEvent* event) {
    // Some disks give no hints.
    if (event->type() == QEvent::WindowActivate) {
        m_watcher.check();
    }
    return QObject::eventFilter(watched, event);
}

/// Follows the window's file in the version that the window has.
void OutsideChangeNotice::follow() {
    m_seen = m_window.version();
    m_watcher.follow(m_window.path(), m_seen);
    learnContent();
}

void OutsideChangeNotice::endOwnWrite(bool hasSucceeded) {
    if (hasSucceeded) {
        m_seen = m_window.version();
        m_cleanMark.reset();
        m_bar.dismiss();
    }
    m_watcher.endOwnWrite(m_seen);
    if (hasSucceeded) {
        learnContent();
    }
}

/// Finds out the hash of the file in the version that the window has: with it, touching is no change.
void OutsideChangeNotice::learnContent() {
    const auto version = m_window.version();
    if (!version || version->contentHash) {
        return;
    }
    m_learning.start(
        [path = m_window.path()](std::stop_token stop) -> std::optional<FileIdentity> {
            const auto found = FileIdentity::withContent(path, stop);
            return found ? std::optional(*found) : std::nullopt;
        },
        [this, version](const std::optional<FileIdentity>& found) {
            if (found && found->isUntouched(*version) && m_window.version() == version) {
                m_window.setVersion(found);
                m_seen = found;
                m_watcher.follow(m_window.path(), found);
            }
        },
        [] {
            // Without the hash, touching the file counts as a change.
        });
}

void OutsideChangeNotice::takeChange(const FileIdentity& now) {
    m_seen = now;
    const bool wasRemoved =
        std::exchange(m_cleanMark, std::nullopt) == m_window.document()->undoManager().coalescingMark();
    if (!m_window.isWindowModified() || wasRemoved) {
        reload(false);
    } else {
        showChange(now);
    }
}

void OutsideChangeNotice::takeRemoval() {
    m_seen.reset();
    UndoManager& history = m_window.document()->undoManager();
    if (history.isClean() && !m_window.isSaving()) {
        // No file has the text any more.
        history.resetClean();
        m_cleanMark = history.coalescingMark();
    }
    m_bar.tell(
        QStringLiteral("“%1” se ha borrado o movido a otro lugar. El texto ya solo está en esta ventana.")
            .arg(m_window.documentName()));
    m_bar.offer(QStringLiteral("Guardar como…"), [this] { m_window.saveAs(); });
}

void OutsideChangeNotice::takeReturn() {
    m_seen = m_window.version();
    UndoManager& history = m_window.document()->undoManager();
    if (std::exchange(m_cleanMark, std::nullopt) == history.coalescingMark()) {
        history.setClean();
    }
    m_bar.dismiss();
}

/// Reads the file again. Changes of the user go only where that `isWanted`.
void OutsideChangeNotice::reload(bool isWanted) {
    m_reading.start(
        [path = m_window.path(), &type = m_window.type(), preparation = m_window.document()->preparation()](
            std::stop_token stop) { return DocumentReading::of(type, path, preparation, stop); },
        [this, isWanted,
         mark = m_window.document()->undoManager().coalescingMark()](DocumentReading reading) {
            const bool isSame = m_window.document()->undoManager().coalescingMark() == mark;
            finishReloading(std::move(reading), isWanted || isSame);
        },
        [this, isWanted] { finishReloading(DocumentReading::withoutMemory(m_window.path()), isWanted); });
}

void OutsideChangeNotice::finishReloading(DocumentReading reading, bool isWanted) {
    if (m_window.isSaving()) {
        return;
    }
    if (!reading.contents) {
        m_bar.tell(QStringLiteral("“%1” ha cambiado en el disco. %2")
                       .arg(m_window.documentName(), reading.contents.error()));
        m_bar.offer(reloadTitle, [this] { reload(true); });
    } else if (!isWanted && m_window.isWindowModified()) {
        showChange(m_seen.value_or(FileIdentity()));
    } else {
        m_bar.dismiss();
        m_window.takeOver(std::move(reading), reloadTitle);
        follow();
    }
}

void OutsideChangeNotice::showChange(const FileIdentity& now) {
    QString text =
        QStringLiteral(
            "“%1” ha cambiado en el disco, y aquí tienes cambios sin guardar.\nEn el disco ahora: %2.")
            .arg(m_window.documentName(), sizeAndTime(now));
    if (const auto& known = m_window.version()) {
        text += QStringLiteral("\nCuando se abrió o guardó: %1.").arg(sizeAndTime(*known));
    }
    m_bar.tell(text);
    m_bar.offer(reloadTitle, [this] { reload(true); });
    m_bar.offer(QStringLiteral("Conservar lo mío"), [this] { m_window.setVersion(m_seen); });
}
