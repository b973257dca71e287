#include "FileContents.h"

#include "InputFile.h"
#include "LargeArray.h"

#include <new>
#include <utility>

namespace {

using Result = std::expected<FileContents, FileFailure>;

/// Reads `capacity` bytes at most.
Result readUpTo(std::size_t capacity, InputFile& file, const std::stop_token& stop) {
    auto storage = makeLargeArray<std::uint8_t>(capacity);
    const auto size = file.read({storage.get(), capacity}, stop);
    if (!size) {
        return std::unexpected(size.error());
    }
    return FileContents(std::move(storage), *size);
}

Result readAll(InputFile& file, const std::stop_token& stop) {
    constexpr std::size_t longestUnknown = std::size_t{16} << 20;
    if (file.expectedSize() > 0) {
        return readUpTo(file.expectedSize(), file, stop);
    }
    auto contents = readUpTo(longestUnknown + 1, file, stop);
    if (contents && contents->bytes().size() > longestUnknown) {
        return std::unexpected(FileFailure::tooLarge);
    }
    return contents;
}

} // namespace

std::expected<FileContents, FileFailure> FileContents::read(const QString& path,
                                                            const std::stop_token& stop) {
    auto file = InputFile::open(path);
    if (!file) {
        return std::unexpected(file.error());
    }
    try {
        return readAll(*file, stop);
    } catch (const std::bad_alloc&) {
        return std::unexpected(FileFailure::noMemory);
    }
}
