#include "RecoverySession.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t userOnly = 0700;

QString lockPath(const QString& folder) { return folder + QStringLiteral("/lock"); }

/// Makes the folder at `path` and those above it, for the user only.
int makeFolders(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    if (mkdir(name.constData(), userOnly) == 0 || errno == EEXIST) {
        return 0;
    }
    const QString parent = QFileInfo(path).path();
    if (errno != ENOENT || parent == path) {
        return errno;
    }
    if (const int error = makeFolders(parent); error != 0) {
        return error;
    }
    return mkdir(name.constData(), userOnly) == 0 || errno == EEXIST ? 0 : errno;
}

} // namespace

void WorkCount::begin() {
    const std::lock_guard guard(m_mutex);
    ++m_count;
}

void WorkCount::end() {
    const std::lock_guard guard(m_mutex);
    --m_count;
    m_changed.notify_all();
}

bool WorkCount::waitForEnd(std::chrono::milliseconds timeout) {
    std::unique_lock guard(m_mutex);
    return m_changed.wait_for(guard, timeout, [this] { return m_count == 0; });
}

RecoverySession::~RecoverySession() {
    if (m_folder.isEmpty()) {
        return;
    }
    // The lock is held until the folder is gone. Where more than the lock is there, it stays for the next
    // start to find.
    const QStringList entries =
        QDir(m_folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    if (entries == QStringList{QStringLiteral("lock")}) {
        QFile::remove(lockPath(m_folder));
        rmdir(QFile::encodeName(m_folder).constData());
    }
}

std::expected<QString, FileFailure> RecoverySession::folder() {
    const std::lock_guard guard(m_mutex);
    if (!m_folder.isEmpty() && QFileInfo(m_folder).isDir()) {
        return m_folder;
    }
    if (const auto made = make(); !made) {
        return std::unexpected(made.error());
    }
    return m_folder;
}

std::expected<void, FileFailure> RecoverySession::make() {
    constexpr int tries = 3;
    m_folder.clear();
    m_lock.reset();
    if (const int error = makeFolders(m_root); error != 0) {
        return std::unexpected(fileFailure(error));
    }
    for (int i = 0; i < tries; ++i) {
        const QString folder = m_root + QStringLiteral("/run-") + QUuid::createUuid().toString(QUuid::Id128);
        if (mkdir(QFile::encodeName(folder).constData(), userOnly) != 0) {
            return std::unexpected(fileFailure(errno));
        }
        auto lock = FileLock::take(lockPath(folder));
        if (!lock && lock.error() != FileFailure::missing) {
            rmdir(QFile::encodeName(folder).constData());
            return std::unexpected(lock.error());
        }
        // Between the two calls another start may have taken the folder for a dead one's.
        if (lock && *lock) {
            m_folder = folder;
            m_lock.emplace(std::move(**lock));
            syncFolder(m_root);
            return {};
        }
    }
    return std::unexpected(FileFailure::other);
}

std::expected<QString, FileFailure> RecoverySession::pathForNewLog() {
    const auto place = folder();
    if (!place) {
        return std::unexpected(place.error());
    }
    const std::lock_guard guard(m_mutex);
    QString path;
    do {
        path = *place + QStringLiteral("/text-%1.log").arg(++m_logs);
    } while (QFileInfo::exists(path));
    return path;
}

std::unique_ptr<RecoverySession> RecoverySession::adopted(const QString& root, const QString& path) {
    auto lock = FileLock::take(lockPath(path));
    if (!lock || !*lock) {
        return nullptr;
    }
    auto session = std::make_unique<RecoverySession>(root);
    session->m_folder = path;
    session->m_lock.emplace(std::move(**lock));
    return session;
}

QStringList RecoverySession::folders(const QString& root) {
    QStringList paths;
    for (const QString& name : QDir(root).entryList({QStringLiteral("run-*")},
                                                    QDir::Dirs | QDir::NoSymLinks | QDir::NoDotAndDotDot)) {
        paths += root + QLatin1Char('/') + name;
    }
    return paths;
}

QStringList RecoverySession::logs() {
    const std::lock_guard guard(m_mutex);
    QStringList paths;
    if (m_folder.isEmpty()) {
        return paths;
    }
    for (const QString& name :
         QDir(m_folder).entryList({QStringLiteral("*.log")}, QDir::Files | QDir::NoSymLinks, QDir::Name)) {
        paths += m_folder + QLatin1Char('/') + name;
    }
    return paths;
}

void syncFolder(const QString& path) {
    const int number = open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (number >= 0) {
        fsync(number);
        close(number);
    }
}
