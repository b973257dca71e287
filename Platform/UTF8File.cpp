#include "UTF8File.h"

#include "LargeArray.h"
#include "UTF8.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>
#include <vector>

namespace {

/// The longest start of a sequence that a piece can end in.
constexpr std::size_t longestStart = 3;

std::optional<SourceText> decodeInto(const std::shared_ptr<char16_t[]>& units, std::size_t capacity,
                                     Bytes start, InputFile& file) {
    std::vector<std::uint8_t> piece(longestStart + std::max(UTF8File::pieceSize, start.size()));
    std::size_t available = std::ranges::copy(start, piece.begin()).out - piece.begin();
    std::size_t taken = available;
    std::size_t count = 0;
    for (;;) {
        const auto progress = UTF8::decode({piece.data(), available}, units.get() + count);
        count += progress.written;
        const std::size_t rest = available - progress.read;
        if (rest > longestStart) {
            return std::nullopt;
        }
        std::copy_n(piece.begin() + static_cast<std::ptrdiff_t>(progress.read), rest, piece.begin());
        const auto added = file.read(std::span(piece).subspan(rest));
        taken += added.value_or(0);
        if (!added || taken > capacity) {
            return std::nullopt;
        }
        if (*added == 0) {
            return rest == 0 ? std::optional(SourceText(units, count)) : std::nullopt;
        }
        available = rest + *added;
    }
}

} // namespace

std::optional<SourceText> UTF8File::decode(Bytes start, InputFile& file) {
    const std::size_t capacity = std::max(file.expectedSize(), start.size());
    if (capacity > std::numeric_limits<Offset>::max()) {
        return std::nullopt;
    }
    try {
        return decodeInto(makeLargeArray<char16_t>(capacity), capacity, start, file);
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}
