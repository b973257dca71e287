#include "AtomicFile.h"

#include "FilePath.h"
#include "KeptCopy.h"
#include "OpenFile.h"

#include <algorithm>
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

/// The file that a chain of links leads to, whether it exists or not; `of` itself when it is no link.
std::expected<fs::path, FileFailure> linkTarget(const QString& of) {
    fs::path path = FilePath::bytes(of).toStdString();
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
    if (faccessat(AT_FDCWD, folderOf(path).c_str(), W_OK | X_OK, AT_EACCESS) != 0 ||
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

std::unexpected<FileFailure> failureNow() { return std::unexpected(fileFailure(errno)); }

} // namespace

std::expected<AtomicFile, FileFailure> AtomicFile::open(const QString& path, std::stop_token stop) {
    const auto target = linkTarget(path);
    if (!target) {
        return std::unexpected(target.error());
    }
    struct stat status {};
    const bool exists = stat(target->c_str(), &status) == 0;
    if (!exists && errno != ENOENT) {
        return failureNow();
    }
    if (const auto failure = obstacle(*target, exists ? &status : nullptr)) {
        return std::unexpected(*failure);
    }
    auto file = TemporaryFile::create(*target);
    if (!file) {
        return std::unexpected(file.error());
    }
    if (exists) {
        copyAccess(*target, status, file->number());
    }
    return AtomicFile(std::move(*file), *target, std::move(stop));
}

void AtomicFile::write(Bytes bytes) {
    constexpr std::size_t pieceSize = std::size_t{1} << 20;
    while (!bytes.empty() && !m_failure) {
        const Bytes piece = bytes.first(std::min(bytes.size(), pieceSize));
        writePiece(piece);
        bytes = bytes.subspan(piece.size());
    }
}

void AtomicFile::writePiece(Bytes piece) {
    if (m_stop.stop_requested()) {
        m_failure = FileFailure::stopped;
    } else if (!writeAll(m_file.number(), piece, m_size)) {
        m_failure = fileFailure(errno);
    }
    m_size += static_cast<std::int64_t>(piece.size());
    pace();
}

/// Keeps the disk busy with what was written and waits for what was written long before, so that not all of
/// it is left for the end, which nothing can interrupt.
void AtomicFile::pace() {
    constexpr std::int64_t distance = std::int64_t{8} << 20;
    constexpr unsigned begin = SYNC_FILE_RANGE_WRITE;
    constexpr unsigned wait =
        SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER;
    if (m_failure || m_size - m_paced < distance) {
        return;
    }
    push(std::max<std::int64_t>(0, m_paced - distance), m_paced, wait);
    push(m_paced, m_size, begin);
    m_paced = m_size;
}

/// Has the disk take the bytes between two places as `flags` say. What fails here is not told again at the
/// end.
void AtomicFile::push(std::int64_t from, std::int64_t to, unsigned flags) {
    const bool hasFailed = from < to && sync_file_range(m_file.number(), from, to - from, flags) != 0;
    if (hasFailed && (errno == EIO || errno == ENOSPC || errno == EDQUOT)) {
        m_failure = fileFailure(errno);
    }
}

std::expected<void, FileFailure> AtomicFile::commit(const FileReplacement& how) {
    const auto isStopped = [&] { return m_stop.stop_requested() || how.stop.stop_requested(); };
    if (!m_failure && isStopped()) {
        m_failure = FileFailure::stopped;
    }
    // Some disks tell only now that they are full.
    if (!m_failure && !syncFile(m_file.number())) {
        m_failure = fileFailure(errno);
    }
    if (!m_failure && isStopped()) {
        m_failure = FileFailure::stopped;
    }
    if (m_failure) {
        return std::unexpected(*m_failure);
    }
    struct stat status {};
    const bool isShared = stat(m_target.c_str(), &status) == 0 && status.st_nlink > 1;
    return isShared && how.links == FileReplacement::Links::written ? writeThrough(how) : replace(how);
}

std::expected<void, FileFailure> AtomicFile::replace(const FileReplacement& how) {
    const auto named = m_file.giveName();
    // Some disks have files without a name but give them none later.
    auto copy =
        named ? std::expected<TemporaryFile, FileFailure>(std::unexpected(FileFailure::other)) : namedCopy();
    if (!named && !copy) {
        return named;
    }
    if (!how.mayReplace()) {
        return std::unexpected(FileFailure::stopped);
    }
    return (copy ? *copy : m_file).takePlace();
}

/// A file with a name that has all that was written.
std::expected<TemporaryFile, FileFailure> AtomicFile::namedCopy() const {
    auto copy = TemporaryFile::create(m_target, TemporaryFile::Naming::atOnce);
    struct stat status {};
    if (copy && stat(m_target.c_str(), &status) == 0) {
        copyAccess(m_target, status, copy->number());
    }
    if (copy && !copyContents(m_file.number(), copy->number())) {
        return failureNow();
    }
    return copy;
}

std::expected<void, FileFailure> AtomicFile::writeThrough(const FileReplacement& how) {
    const OpenFile file(m_target, O_RDWR | O_NOFOLLOW);
    if (!file) {
        return failureNow();
    }
    auto copy = KeptCopy::of(m_target, file.number());
    if (!copy) {
        return std::unexpected(copy.error());
    }
    if (!how.mayReplace()) {
        copy->remove();
        return std::unexpected(FileFailure::stopped);
    }
    if (copyContents(m_file.number(), file.number())) {
        copy->remove();
        return {};
    }
    const auto failure = failureNow();
    if (!copy->putBack(file.number())) {
        return std::unexpected(FileFailure::halfWritten);
    }
    copy->remove();
    return failure;
}

std::size_t AtomicFile::nameCount(const QString& path) {
    struct stat status {};
    const bool isFile = stat(FilePath::bytes(path).constData(), &status) == 0 && S_ISREG(status.st_mode);
    return isFile ? status.st_nlink : 0;
}

std::expected<void, FileFailure> AtomicFile::syncName(const QString& path) {
    const auto target = linkTarget(path);
    if (!target) {
        return std::unexpected(target.error());
    }
    const OpenFile folder(folderOf(*target), O_RDONLY | O_DIRECTORY);
    // A folder that may be written but not read cannot be asked.
    if (folder ? !syncFile(folder.number()) : errno != EACCES) {
        return failureNow();
    }
    return {};
}
