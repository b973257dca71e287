#include "InputFile.h"

#include "FilePath.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Has `read` fill `room` piece by piece, up to the end of the file. A piece is what even a slow disk gives
/// in a moment.
template <class Read>
std::expected<std::size_t, FileFailure> fill(std::span<std::uint8_t> room, const std::stop_token& stop,
                                             Read read) {
    constexpr std::size_t pieceSize = std::size_t{1} << 20;
    std::size_t size = 0;
    while (size < room.size()) {
        if (stop.stop_requested()) {
            return std::unexpected(FileFailure::stopped);
        }
        const ssize_t count = read(room.data() + size, std::min(pieceSize, room.size() - size), size);
        if (count == 0) {
            break;
        }
        if (count < 0 && errno != EINTR) {
            return std::unexpected(fileFailure(errno));
        }
        size += static_cast<std::size_t>(count > 0 ? count : 0);
    }
    return size;
}

} // namespace

std::expected<InputFile, FileFailure> InputFile::open(const QString& path) {
    const int number = ::open(FilePath::bytes(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (number < 0) {
        return std::unexpected(fileFailure(errno));
    }
    InputFile file(number, 0);
    struct stat status {};
    if (fstat(number, &status) != 0) {
        return std::unexpected(fileFailure(errno));
    }
    if (S_ISDIR(status.st_mode)) {
        return std::unexpected(FileFailure::folder);
    }
    if (!S_ISREG(status.st_mode)) {
        return std::unexpected(FileFailure::notRegular);
    }
    file.m_expectedSize = static_cast<std::size_t>(status.st_size);
    return file;
}

InputFile::InputFile(InputFile&& other) noexcept
    : m_number(std::exchange(other.m_number, -1)), m_expectedSize(other.m_expectedSize) {}

InputFile::~InputFile() {
    if (m_number >= 0) {
        close(m_number);
    }
}

std::expected<std::size_t, FileFailure> InputFile::read(std::span<std::uint8_t> room,
                                                        const std::stop_token& stop) {
    return fill(room, stop, [this](std::uint8_t* to, std::size_t size, std::size_t) {
        return ::read(m_number, to, size);
    });
}

std::expected<std::size_t, FileFailure> InputFile::readAt(std::size_t offset, std::span<std::uint8_t> room,
                                                          const std::stop_token& stop) const {
    return fill(room, stop, [this, offset](std::uint8_t* to, std::size_t size, std::size_t done) {
        return ::pread(m_number, to, size, static_cast<off_t>(offset + done));
    });
}
