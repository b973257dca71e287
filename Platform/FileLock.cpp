#include "FileLock.h"

#include <QFile>

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Whether the path still leads to the open file: its folder may have been removed before it was locked.
bool isStillThere(int number, const QByteArray& path) {
    struct stat open {};
    struct stat there {};
    return fstat(number, &open) == 0 && stat(path.constData(), &there) == 0 && open.st_ino == there.st_ino &&
           open.st_dev == there.st_dev;
}

} // namespace

std::expected<std::optional<FileLock>, FileFailure> FileLock::take(const QString& path) {
    constexpr mode_t readableByUser = 0600;
    const QByteArray name = QFile::encodeName(path);
    FileLock lock(open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, readableByUser));
    if (lock.m_number < 0) {
        return std::unexpected(fileFailure(errno));
    }
    if (flock(lock.m_number, LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK) {
            return std::nullopt;
        }
        return std::unexpected(fileFailure(errno));
    }
    if (!isStillThere(lock.m_number, name)) {
        return std::unexpected(FileFailure::missing);
    }
    return lock;
}

FileLock::FileLock(FileLock&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}

FileLock::~FileLock() {
    if (m_number >= 0) {
        close(m_number);
    }
}
