#include "AtomicFile.h"

#include <QFile>

#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

/// The file that a chain of links leads to, whether it exists or not; `path` itself when it is no link.
std::expected<fs::path, FileFailure> linkTarget(fs::path path) {
    constexpr int longestChain = 40;
    for (int i = 0; i < longestChain; ++i) {
        std::error_code error;
        if (!fs::is_symlink(fs::symlink_status(path, error))) {
            return path;
        }
        const fs::path next = fs::read_symlink(path, error);
        if (error) {
            return std::unexpected(fileFailure(error.value()));
        }
        path = path.parent_path() / next;
    }
    return std::unexpected(FileFailure::other);
}

/// Why the file at `path`, of that `status`, cannot be replaced; nothing when it can.
std::optional<FileFailure> obstacle(const fs::path& path, const struct stat* status) {
    if (status && S_ISDIR(status->st_mode)) {
        return FileFailure::folder;
    }
    if (status && !S_ISREG(status->st_mode)) {
        return FileFailure::notRegular;
    }
    const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
    if (faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) != 0 ||
        (status && faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0)) {
        return fileFailure(errno);
    }
    return std::nullopt;
}

/// Copies the extended attributes that the user may set; access lists are among them.
void copyExtendedAttributes(const fs::path& from, int to) {
    const ssize_t listSize = listxattr(from.c_str(), nullptr, 0);
    std::vector<char> names(listSize > 0 ? listSize : 0);
    const ssize_t size = names.empty() ? 0 : listxattr(from.c_str(), names.data(), names.size());
    for (std::string_view rest(names.data(), size > 0 ? size : 0); !rest.empty();) {
        const std::string name(rest.substr(0, rest.find('\0')));
        rest.remove_prefix(name.size() + 1);
        const ssize_t valueSize = getxattr(from.c_str(), name.c_str(), nullptr, 0);
        std::vector<char> value(valueSize > 0 ? valueSize : 0);
        const ssize_t read = getxattr(from.c_str(), name.c_str(), value.data(), value.size());
        if (read >= 0) {
            fsetxattr(to, name.c_str(), value.data(), read, 0);
        }
    }
}

/// Makes `file` accessible to whom the file at `from`, of that `status`, is.
void copyAccess(const fs::path& from, const struct stat& status, int file) {
    // Only the superuser gives files away; a group may be set by its members.
    if (fchown(file, status.st_uid, status.st_gid) != 0 && fchown(file, -1, status.st_gid) != 0) {
        errno = 0;
    }
    copyExtendedAttributes(from, file);
    // Last, since giving a file away clears some of its mode.
    fchmod(file, status.st_mode & 07777);
}

} // namespace

std::expected<AtomicFile, FileFailure> AtomicFile::open(const QString& path) {
    const auto target = linkTarget(fs::path(QFile::encodeName(path).toStdString()));
    if (!target) {
        return std::unexpected(target.error());
    }
    struct stat status{};
    const bool exists = stat(target->c_str(), &status) == 0;
    if (!exists && errno != ENOENT) {
        return std::unexpected(fileFailure(errno));
    }
    if (const auto failure = obstacle(*target, exists ? &status : nullptr)) {
        return std::unexpected(*failure);
    }
    auto file = std::make_unique<QSaveFile>(QFile::decodeName(target->c_str()));
    errno = 0;
    // Unbuffered: an error while emptying a buffer of QSaveFile's is lost when it commits.
    if (!file->open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        return std::unexpected(fileFailure(errno));
    }
    if (exists) {
        copyAccess(*target, status, file->handle());
    }
    return AtomicFile(std::move(file));
}

void AtomicFile::write(Bytes bytes) {
    if (m_failure) {
        return;
    }
    errno = 0;
    const auto size = static_cast<qint64>(bytes.size());
    if (m_file->write(reinterpret_cast<const char*>(bytes.data()), size) != size) {
        m_failure = fileFailure(errno);
    }
}

std::expected<void, FileFailure> AtomicFile::commit() {
    // Some disks tell only now that they are full. Those that cannot tell at all say EINVAL.
    if (!m_failure && fsync(m_file->handle()) != 0 && errno != EINVAL) {
        m_failure = fileFailure(errno);
    }
    if (m_failure) {
        m_file->cancelWriting();
        return std::unexpected(*m_failure);
    }
    errno = 0;
    if (!m_file->commit()) {
        return std::unexpected(fileFailure(errno));
    }
    return {};
}
