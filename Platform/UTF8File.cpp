#include "UTF8File.h"

#include "LargeArray.h"
#include "ThreadTeam.h"
#include "UTF8.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <limits>
#include <new>
#include <random>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t longestSequence = 4;
constexpr std::size_t longestText = std::numeric_limits<Offset>::max(); ///< In units.
constexpr std::size_t mostBytesPerUnit = 3;

constexpr bool isContinuation(std::uint8_t byte) { return (byte & 0xC0) == 0x80; }

/// How many bytes at the start of `bytes` continue a sequence that began before them.
std::size_t continuationCount(Bytes bytes) {
    const Bytes start = bytes.first(std::min(bytes.size(), longestSequence - 1));
    return static_cast<std::size_t>(std::ranges::find_if_not(start, isContinuation) - start.begin());
}

/// One decoding of a file. The place of a piece in the text is known once the units of all pieces before it
/// have been counted, which takes far less time than to decode them: so each thread reads and counts a piece,
/// tells where the next one starts, and then decodes its own.
class PieceDecoder {
public:
    PieceDecoder(const InputFile& file, std::size_t start, const UTF8File::PieceStep& decoded,
                 const std::stop_token& stop)
        : m_stop(stop), m_file(file), m_start(start), m_size(file.expectedSize() - start), m_decoded(decoded),
          m_pieceCount(UTF8File::pieceCount(file, start)), m_units(makeLargeArray<char16_t>(m_size)),
          m_unitStarts(m_pieceCount + 1) {
        std::ranges::fill(m_unitStarts, unknown);
        m_unitStarts[0] = 0;
    }

    std::optional<SourceText> decode() {
        runInParallel(parallelism(m_pieceCount), [this](unsigned) { decodePieces(); });
        if (m_hasFailed || m_unitStarts[m_pieceCount] > longestText) {
            return std::nullopt;
        }
        return SourceText(m_units, m_unitStarts[m_pieceCount]);
    }

private:
    static constexpr std::size_t unknown = std::numeric_limits<std::size_t>::max();

    void decodePieces() {
        std::vector<std::uint8_t> buffer(std::min(UTF8File::pieceSize, m_size) + longestSequence);
        for (std::size_t piece; (piece = m_nextPiece++) < m_pieceCount;) {
            if (!decodePiece(piece, buffer)) {
                m_hasFailed = true;
            }
        }
    }

    bool decodePiece(std::size_t piece, std::vector<std::uint8_t>& buffer) {
        const std::optional<Bytes> bytes = m_hasFailed ? std::nullopt : read(piece, buffer);
        const std::size_t count = bytes ? UTF8::unitCount(*bytes) : 0;
        // Also after a failure, so that no other thread waits for this one.
        const std::size_t start = unitStart(piece);
        setUnitStart(piece + 1, start + count);
        if (!bytes || !decodeInto(m_units.get() + start, *bytes, count)) {
            return false;
        }
        m_decoded(piece, SourceText({m_units, m_units.get() + start}, count));
        return true;
    }

    std::size_t byteStart(std::size_t piece) const { return m_size * piece / m_pieceCount; }

    /// The sequences that begin in the piece, whole.
    std::optional<Bytes> read(std::size_t piece, std::vector<std::uint8_t>& buffer) const {
        const std::size_t begin = byteStart(piece);
        const std::size_t end = byteStart(piece + 1);
        const std::size_t wanted = std::min(end + longestSequence - 1, m_size) - begin;
        const auto read = m_file.readAt(m_start + begin, {buffer.data(), wanted}, m_stop);
        if (read != wanted) {
            return std::nullopt;
        }
        const Bytes bytes(buffer.data(), wanted);
        const std::size_t first = piece == 0 ? 0 : continuationCount(bytes);
        const std::size_t last = end - begin + continuationCount(bytes.subspan(end - begin));
        return bytes.subspan(std::min(first, last), last - std::min(first, last));
    }

    std::size_t unitStart(std::size_t piece) {
        const std::atomic_ref<std::size_t> start(m_unitStarts[piece]);
        start.wait(unknown);
        return start.load();
    }
    void setUnitStart(std::size_t piece, std::size_t units) {
        const std::atomic_ref<std::size_t> start(m_unitStarts[piece]);
        start.store(units);
        start.notify_all();
    }

    /// The decoder stores sixteen units at once, some of them beyond the last one, where the next piece may
    /// stand already. So the end of each piece, which has more units than that, is copied to its place.
    static bool decodeInto(char16_t* to, Bytes bytes, std::size_t count) {
        constexpr std::size_t tailSize = 64;
        std::size_t headSize = bytes.size() - std::min(bytes.size(), tailSize);
        while (headSize > 0 && isContinuation(bytes[headSize])) {
            --headSize;
        }
        if (bytes.size() - headSize >= tailSize + longestSequence) {
            return false;
        }
        std::array<char16_t, tailSize + longestSequence> tail{};
        const auto head = UTF8::decode(bytes.first(headSize), to);
        const auto rest = UTF8::decode(bytes.subspan(headSize), tail.data());
        if (head.read + rest.read < bytes.size()) {
            return false;
        }
        std::copy_n(tail.begin(), rest.written, to + head.written);
        return head.written + rest.written == count;
    }

    const std::stop_token& m_stop;
    const InputFile& m_file;
    std::size_t m_start;
    std::size_t m_size;
    const UTF8File::PieceStep& m_decoded;
    std::size_t m_pieceCount;
    std::shared_ptr<char16_t[]> m_units;
    std::vector<std::size_t> m_unitStarts; ///< Of each piece, and the end; `unknown` until it was counted.
    std::atomic<std::size_t> m_nextPiece = 0;
    std::atomic<bool> m_hasFailed = false;
};

/// Whether the units at random places of the file leave no doubt that it has more than `longest`. By the
/// inequality of Hoeffding, with so many places the answer is wrong less than once in 10^17 files; one that
/// is close is no.
bool looksTooLong(const InputFile& file, std::size_t start, const std::stop_token& stop,
                  std::size_t longest) {
    constexpr std::size_t places = 2048;
    constexpr std::size_t placeSize = 4096;
    constexpr double certainty = 40;   // The exponent in the inequality.
    constexpr double tolerance = 0.01; // For the ends of stretches, where no place begins.
    const std::size_t size = file.expectedSize() - start;
    const std::size_t stretch = size / places;
    if (stretch < placeSize) {
        return false;
    }
    std::mt19937_64 random{std::random_device()()};
    std::vector<std::uint8_t> buffer(placeSize);
    std::size_t units = 0;
    for (std::size_t place = 0; place < places; ++place) {
        std::uniform_int_distribution<std::size_t> block(0, stretch / placeSize - 1);
        const auto read = file.readAt(start + place * stretch + block(random) * placeSize, buffer, stop);
        if (!read || *read < placeSize) {
            return false;
        }
        units += UTF8::unitCount(buffer);
    }
    const double unitsPerByte = static_cast<double>(units) / (places * placeSize);
    const double excess = unitsPerByte - static_cast<double>(longest) / static_cast<double>(size) - tolerance;
    return excess > 0 && 2 * places * excess * excess > certainty;
}

} // namespace

std::size_t UTF8File::pieceCount(const InputFile& file, std::size_t start) {
    const std::size_t size = file.expectedSize() - std::min(file.expectedSize(), start);
    return std::max<std::size_t>(1, (size + pieceSize - 1) / pieceSize);
}

std::optional<SourceText> UTF8File::decode(const InputFile& file, std::size_t start, const PieceStep& decoded,
                                           const std::stop_token& stop) {
    if (file.expectedSize() < start || file.expectedSize() - start > longestText * mostBytesPerUnit) {
        return std::nullopt;
    }
    try {
        return PieceDecoder(file, start, decoded, stop).decode();
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

bool UTF8File::isTooLong(const InputFile& file, std::size_t start, const std::stop_token& stop,
                         std::size_t longest) {
    const std::size_t size = file.expectedSize() - std::min(file.expectedSize(), start);
    if (size <= longest || size > longest * mostBytesPerUnit) {
        return size > longest;
    }
    if (looksTooLong(file, start, stop, longest)) {
        return !stop.stop_requested();
    }
    std::atomic<std::size_t> units = 0;
    std::atomic<std::size_t> nextPiece = 0;
    const std::size_t pieces = pieceCount(file, start);
    runInParallel(parallelism(pieces), [&](unsigned) {
        std::vector<std::uint8_t> buffer(pieceSize);
        for (std::size_t piece; (piece = nextPiece++) < pieces && units <= longest;) {
            // Each byte that continues no sequence begins one, wherever a piece divides it.
            const auto read = file.readAt(start + piece * pieceSize, buffer, stop);
            if (!read) {
                return;
            }
            units += UTF8::unitCount(Bytes(buffer).first(*read));
        }
    });
    return units > longest && !stop.stop_requested();
}
