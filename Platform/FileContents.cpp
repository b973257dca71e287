#include "FileContents.h"

#include "LargeArray.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <new>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// An open file of the system; closes it.
class FileDescriptor {
public:
    explicit FileDescriptor(int number) : m_number(number) {}
    ~FileDescriptor() {
        if (m_number >= 0) {
            close(m_number);
        }
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    int number() const { return m_number; }

private:
    int m_number;
};

/// `storage` with room for more bytes.
std::shared_ptr<std::uint8_t[]> enlarged(const std::shared_ptr<std::uint8_t[]>& storage, std::size_t size,
                                         std::size_t capacity) {
    auto larger = makeLargeArray<std::uint8_t>(capacity);
    std::copy_n(storage.get(), size, larger.get());
    return larger;
}

/// Reads to the end, which need not be where `expectedSize` says: the file may be growing, and some files
/// do not know their size.
std::expected<FileContents, FileFailure> readAll(int file, std::size_t expectedSize) {
    // One byte more, so that the end shows without a second round.
    std::size_t capacity = expectedSize + 1;
    auto storage = makeLargeArray<std::uint8_t>(capacity);
    std::size_t size = 0;
    for (;;) {
        if (size == capacity) {
            capacity += capacity / 2 + 4096;
            storage = enlarged(storage, size, capacity);
        }
        const ssize_t count = ::read(file, storage.get() + size, capacity - size);
        if (count == 0) {
            return FileContents(std::move(storage), size);
        }
        if (count < 0 && errno != EINTR) {
            return std::unexpected(fileFailure(errno));
        }
        size += std::max<ssize_t>(count, 0);
    }
}

} // namespace

std::expected<FileContents, FileFailure> FileContents::read(const QString& path) {
    const FileDescriptor file(open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status{};
    if (file.number() < 0 || fstat(file.number(), &status) != 0) {
        return std::unexpected(fileFailure(errno));
    }
    if (S_ISDIR(status.st_mode)) {
        return std::unexpected(FileFailure::folder);
    }
    if (!S_ISREG(status.st_mode)) {
        return std::unexpected(FileFailure::notRegular);
    }
    try {
        return readAll(file.number(), static_cast<std::size_t>(status.st_size));
    } catch (const std::bad_alloc&) {
        return std::unexpected(FileFailure::tooLarge);
    }
}
