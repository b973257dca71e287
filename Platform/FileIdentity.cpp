#include "FileIdentity.h"

#include "Checksum.h"
#include "FilePath.h"
#include "InputFile.h"

#include <algorithm>
#include <cerrno>
#include <span>
#include <vector>

#include <sys/stat.h>

namespace {

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

/// Of `file` up to the size that it had when it was opened. Pieces have one size whatever is read, so that
/// the hash is that of the bytes.
std::expected<std::uint64_t, FileFailure> hash(InputFile& file, const std::stop_token& stop) {
    constexpr std::size_t pieceSize = std::size_t{1} << 18;
    std::vector<std::uint8_t> piece(pieceSize);
    std::uint64_t result = 0;
    for (std::size_t left = file.expectedSize();;) {
        const auto size = file.read(std::span(piece).first(std::min(piece.size(), left)), stop);
        if (!size) {
            return std::unexpected(size.error());
        }
        result = checksum(Bytes(piece).first(*size), result);
        left -= *size;
        if (*size < piece.size()) {
            return result;
        }
    }
}

} // namespace

std::expected<FileIdentity, FileFailure> FileIdentity::of(const QString& path) {
    struct stat status {};
    if (stat(FilePath::bytes(path).constData(), &status) != 0) {
        return std::unexpected(fileFailure(errno));
    }
    if (!S_ISREG(status.st_mode)) {
        return std::unexpected(S_ISDIR(status.st_mode) ? FileFailure::folder : FileFailure::notRegular);
    }
    return FileIdentity{.device = status.st_dev,
                        .inode = status.st_ino,
                        .size = static_cast<std::uint64_t>(status.st_size),
                        .modified = status.st_mtim.tv_sec * nanosecondsPerSecond + status.st_mtim.tv_nsec,
                        .contentHash = std::nullopt};
}

std::expected<FileIdentity, FileFailure> FileIdentity::withContent(const QString& path,
                                                                   const std::stop_token& stop) {
    constexpr int tries = 3;
    auto before = of(path);
    for (int i = 0; i < tries && before; ++i) {
        auto file = InputFile::open(path);
        if (!file) {
            return std::unexpected(file.error());
        }
        const auto found = hash(*file, stop);
        if (!found) {
            return std::unexpected(found.error());
        }
        const auto after = of(path);
        if (after && after->isUntouched(*before)) {
            before->contentHash = *found;
            return before;
        }
        before = after;
    }
    return before;
}

bool FileIdentity::isUntouched(const FileIdentity& since) const {
    return device == since.device && inode == since.inode && size == since.size && modified == since.modified;
}

bool FileIdentity::hasSameContent(const FileIdentity& as) const {
    return size == as.size && contentHash && contentHash == as.contentHash;
}
