#include "FileWatcher.h"

#include "FilePath.h"

#include <QFileInfo>

#include <chrono>
#include <utility>

namespace {

using namespace std::chrono_literals;

/// Hints come in bursts; a file that is always written is looked at now and then all the same.
constexpr auto delay = 150ms;
constexpr auto longestDelay = 1000ms;

bool isGone(FileFailure failure) {
    return failure == FileFailure::missing || failure == FileFailure::folder ||
           failure == FileFailure::notRegular;
}

/// The folder of `path`, or the nearest one above that exists: it says when the next one comes back.
QString nearestFolder(const QString& path) {
    QString folder = QFileInfo(path).path();
    while (!FilePath::isFolder(folder)) {
        const QString above = QFileInfo(folder).path();
        if (above == folder) {
            break;
        }
        folder = above;
    }
    return folder;
}

} // namespace

FileWatcher::FileWatcher(QObject* parent) : QObject(parent), m_postbox(std::make_shared<Postbox>(this)) {
    m_delay.setSingleShot(true);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &FileWatcher::check);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &FileWatcher::check);
    connect(&m_delay, &QTimer::timeout, this, &FileWatcher::startLook);
}

FileWatcher::~FileWatcher() { m_postbox->close(); }

void FileWatcher::follow(const QString& path, const std::optional<FileIdentity>& identity) {
    m_path = path.isEmpty() ? QString() : FilePath::absolute(path);
    m_known = identity;
    m_isThere = identity.has_value();
    ++m_generation;
    watch();
    // Something may have happened since the file was read.
    check();
}

void FileWatcher::beginOwnWrite() {
    m_isWriting = true;
    ++m_generation;
    m_delay.stop();
}

void FileWatcher::endOwnWrite(const std::optional<FileIdentity>& identity) {
    m_isWriting = false;
    m_known = identity;
    m_isThere = identity.has_value();
    ++m_generation;
    watch();
    check();
}

void FileWatcher::check() {
    if (m_path.isEmpty() || m_isWriting) {
        return;
    }
    if (!m_delay.isActive()) {
        m_sinceHint.start();
    }
    if (!m_delay.isActive() || !m_sinceHint.hasExpired(std::chrono::milliseconds(longestDelay).count())) {
        m_delay.start(delay);
    }
}

/// What there is at `path`; contents are read only where nothing else tells whether they are those of
/// `known`.
FileWatcher::Look FileWatcher::look(const QString& path, const std::optional<FileIdentity>& known) {
    const Look found = FileIdentity::of(path);
    const bool mustRead =
        found && known && known->contentHash && !found->isUntouched(*known) && found->size == known->size;
    return mustRead ? FileIdentity::withContent(path) : found;
}

void FileWatcher::startLook() {
    if (m_isLooking || m_isWriting || m_path.isEmpty()) {
        return;
    }
    m_isLooking = true;
    // Before the look: what happens after it gives a new hint.
    watch();
    runOnFileThread([postbox = m_postbox, this, path = m_path, known = m_known, generation = m_generation] {
        const Look found = look(path, known);
        // Called only as long as this lives.
        postbox->post([this, found, generation] { finishLook(found, generation); });
    });
}

void FileWatcher::finishLook(const Look& found, std::uint64_t generation) {
    m_isLooking = false;
    if (generation != m_generation) {
        check();
        return;
    }
    if (found) {
        take(*found);
    } else if (isGone(found.error()) && m_isThere) {
        m_isThere = false;
        emit removed();
    }
}

void FileWatcher::take(const FileIdentity& found) {
    const bool isBack = !std::exchange(m_isThere, true);
    const bool isKnown = m_known && (found.isUntouched(*m_known) || found.hasSameContent(*m_known));
    if (isKnown) {
        const auto hash = m_known->contentHash;
        m_known = found;
        m_known->contentHash = hash;
        if (isBack) {
            emit restored();
        }
        return;
    }
    m_known = found;
    emit changed(found);
}

/// Watches the file, its folder and the folder of that, which says when it is moved; at the ends of links as
/// well. Watches end with what they watch, so that they are renewed before every look.
void FileWatcher::watch() {
    QStringList wanted;
    if (!m_path.isEmpty()) {
        const QString folder = nearestFolder(m_path);
        wanted += {folder, QFileInfo(folder).path()};
        if (FilePath::isRegularFile(m_path)) {
            wanted += {m_path, QFileInfo(FilePath::canonical(m_path)).path()};
        }
        wanted.removeDuplicates();
        // The toolkit would watch another file. What is hinted of the folders around stands in for the file.
        wanted.removeIf([](const QString& path) { return !FilePath::isUnicode(path); });
    }
    QStringList unwanted;
    for (const QString& path : m_watcher.files() + m_watcher.directories()) {
        // A file that was replaced at its path is another one.
        if (!wanted.contains(path) || path == m_path) {
            unwanted += path;
        }
    }
    if (!unwanted.isEmpty()) {
        m_watcher.removePaths(unwanted);
    }
    const QStringList watched = m_watcher.files() + m_watcher.directories();
    wanted.removeIf([&watched](const QString& path) { return watched.contains(path); });
    if (!wanted.isEmpty()) {
        m_watcher.addPaths(wanted);
    }
}
