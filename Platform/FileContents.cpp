#include "FileContents.h"

#include "InputFile.h"
#include "LargeArray.h"

#include <algorithm>
#include <new>

namespace {

/// `storage` with room for more bytes.
std::shared_ptr<std::uint8_t[]> enlarged(const std::shared_ptr<std::uint8_t[]>& storage, std::size_t size,
                                         std::size_t capacity) {
    auto larger = makeLargeArray<std::uint8_t>(capacity);
    std::copy_n(storage.get(), size, larger.get());
    return larger;
}

/// Reads to the end, which need not be where the file expects it.
std::expected<FileContents, FileFailure> readAll(InputFile& file) {
    // One byte more, so that the end shows without a second round.
    std::size_t capacity = file.expectedSize() + 1;
    auto storage = makeLargeArray<std::uint8_t>(capacity);
    std::size_t size = 0;
    for (;;) {
        const auto count = file.read({storage.get() + size, capacity - size});
        if (!count) {
            return std::unexpected(count.error());
        }
        size += *count;
        if (size < capacity) {
            return FileContents(std::move(storage), size);
        }
        capacity += capacity / 2 + 4096;
        storage = enlarged(storage, size, capacity);
    }
}

} // namespace

std::expected<FileContents, FileFailure> FileContents::read(const QString& path) {
    auto file = InputFile::open(path);
    if (!file) {
        return std::unexpected(file.error());
    }
    try {
        return readAll(*file);
    } catch (const std::bad_alloc&) {
        return std::unexpected(FileFailure::tooLarge);
    }
}
