#include "OpenFile.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

OpenFile::OpenFile(const std::filesystem::path& path, int flags, mode_t mode)
    : m_number(open(path.c_str(), flags | O_CLOEXEC, mode)) {}

OpenFile::~OpenFile() {
    if (m_number >= 0) {
        const int error = errno;
        close(m_number);
        errno = error;
    }
}

std::filesystem::path folderOf(const std::filesystem::path& file) {
    return file.has_parent_path() ? file.parent_path() : std::filesystem::path(".");
}

bool syncFile(int file) { return fsync(file) == 0 || errno == EINVAL; }

bool writeAll(int file, Bytes bytes, off_t at) {
    while (!bytes.empty()) {
        const ssize_t count = pwrite(file, bytes.data(), bytes.size(), at);
        if (count < 0 && errno != EINTR) {
            return false;
        }
        bytes = bytes.subspan(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        at += std::max<ssize_t>(count, 0);
    }
    return true;
}

bool copyContents(int from, int to) {
    std::vector<std::uint8_t> piece(std::size_t{1} << 20);
    off_t at = 0;
    for (;;) {
        const ssize_t count = pread(from, piece.data(), piece.size(), at);
        if (count == 0) {
            return ftruncate(to, at) == 0 && syncFile(to);
        }
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0 || !writeAll(to, Bytes(piece).first(static_cast<std::size_t>(count)), at)) {
            return false;
        }
        at += count;
    }
}
