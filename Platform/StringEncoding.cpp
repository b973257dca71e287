#include "StringEncoding.h"

#include "ByteVector.h"
#include "Converter.h"
#include "LargeArray.h"
#include "UTF8.h"
#include "UnitScan.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>
#include <string>
#include <utility>

namespace {

using Decoded = std::expected<SourceText, DecodeFailure>;
using Units = std::shared_ptr<char16_t[]>;

/// Character sets whose names stand on text of a larger one, by the names of their converters.
struct Superset {
    std::string_view name;
    std::string_view superset;
};
constexpr std::array supersets{
    Superset{"ibm-970_P110_P110-2006_U2", "windows-949-2000"}, // EUC-KR
    Superset{"ibm-1363_P11B-1998", "windows-949-2000"},        // KS_C_5601
    Superset{"ibm-1383_P110-1999", "gb18030"},                 // GB2312
    Superset{"ibm-5478_P100-1995", "gb18030"},                 // GB_2312-80
    Superset{"windows-936-2000", "gb18030"},                   // GBK
    Superset{"ibm-1386_P100-2001", "gb18030"},                 // GBK
    Superset{"ibm-943_P130-1999", "ibm-943_P15A-2003"},        // Shift_JIS with a yen sign for the backslash
    Superset{"UTF-32", "UTF-32BE"},                            // The byte order where no mark tells
};

std::unexpected<DecodeFailure> illegal(std::size_t offset) {
    return std::unexpected(DecodeFailure{DecodeFailure::Kind::illegal, offset});
}

Decoded text(Units units, std::size_t count) {
    if (count > std::numeric_limits<Offset>::max()) {
        return std::unexpected(DecodeFailure{DecodeFailure::Kind::tooLong, 0});
    }
    return SourceText(std::move(units), count);
}

std::unexpected<DecodeFailure> stopped() {
    return std::unexpected(DecodeFailure{DecodeFailure::Kind::stopped, 0});
}

/// How much is decoded between two looks at the request to stop.
constexpr std::size_t pieceLength = std::size_t{1} << 20;

/// Where the piece of UTF-8 ends that begins at `start`: no sequence is divided that may be legal.
std::size_t pieceEndUTF8(Bytes bytes, std::size_t start) {
    constexpr std::size_t longestSequence = 4;
    std::size_t end = std::min(bytes.size(), start + pieceLength);
    for (std::size_t back = 1; end < bytes.size() && back < longestSequence; ++back) {
        if ((bytes[end] & 0xC0) != 0x80) {
            break;
        }
        --end;
    }
    return end;
}

Decoded decodeUTF8(Bytes bytes, const std::stop_token& stop) {
    Units units = makeLargeArray<char16_t>(bytes.size());
    std::size_t count = 0;
    for (std::size_t at = 0; at < bytes.size();) {
        if (stop.stop_requested()) {
            return stopped();
        }
        const std::size_t end = pieceEndUTF8(bytes, at);
        const UTF8::Progress progress = UTF8::decode(bytes.subspan(at, end - at), units.get() + count);
        if (at + progress.read < end) {
            return illegal(at + progress.read);
        }
        count += progress.written;
        at = end;
    }
    return text(std::move(units), count);
}

Decoded decodeLatin1(Bytes bytes, const std::stop_token& stop) {
    static_assert(pieceLength % ByteVector::lanes == 0);
    Units units = makeLargeArray<char16_t>(bytes.size());
    std::size_t at = 0;
    for (; bytes.size() - at >= ByteVector::lanes; at += ByteVector::lanes) {
        if (at % pieceLength == 0 && stop.stop_requested()) {
            return stopped();
        }
        ByteVector::load(bytes.data() + at).widen(units.get() + at);
    }
    std::ranges::copy(bytes.subspan(at), units.get() + at);
    return text(std::move(units), bytes.size());
}

/// Writes the units of `bytes`, which are as many whole ones, at `to`; returns how many there are before the
/// first lone surrogate.
std::size_t decodeUTF16Piece(Bytes bytes, std::endian byteOrder, char16_t* to) {
    const std::size_t count = bytes.size() / 2;
    std::memcpy(to, bytes.data(), count * 2);
    if (byteOrder != std::endian::native) {
        std::ranges::transform(to, to + count, to,
                               [](char16_t unit) { return static_cast<char16_t>(unit << 8 | unit >> 8); });
    }
    return UnitScan::findLoneSurrogate(to, 0, static_cast<UnitScan::Position>(count));
}

Decoded decodeUTF16(Bytes bytes, std::endian byteOrder, const std::stop_token& stop) {
    const std::size_t count = bytes.size() / 2;
    Units units = makeLargeArray<char16_t>(count);
    for (std::size_t at = 0; at < count;) {
        if (stop.stop_requested()) {
            return stopped();
        }
        const std::size_t length = std::min(count - at, pieceLength);
        const std::size_t legal =
            decodeUTF16Piece(bytes.subspan(at * 2, length * 2), byteOrder, units.get() + at);
        // Half a pair at the end of a piece is read again with the next one.
        const bool isDivided = legal == length - 1 && at + length < count && length > 1;
        if (legal < length && !isDivided) {
            return illegal((at + legal) * 2);
        }
        at += legal;
    }
    if (bytes.size() % 2 != 0) {
        return illegal(count * 2);
    }
    return text(std::move(units), count);
}

/// Text of unknown length, written piece by piece.
class GrowingUnits {
public:
    explicit GrowingUnits(std::size_t capacity)
        : m_units(makeLargeArray<char16_t>(capacity)), m_capacity(capacity) {}

    char16_t* begin() const { return m_units.get() + m_count; }
    /// At most as far from the beginning as ICU takes in one call.
    char16_t* end() const { return begin() + std::min(m_capacity - m_count, std::size_t{1} << 28); }
    void setEnd(const char16_t* end) { m_count = end - m_units.get(); }

    void grow() {
        const std::size_t capacity = m_capacity + m_capacity / 2 + 64;
        Units units = makeLargeArray<char16_t>(capacity);
        std::copy_n(m_units.get(), m_count, units.get());
        m_units = std::move(units);
        m_capacity = capacity;
    }

    Decoded text() && { return ::text(std::move(m_units), m_count); }

private:
    Units m_units;
    std::size_t m_count = 0;
    std::size_t m_capacity;
};

/// How many bytes the converter has taken of the sequence that it stopped at.
std::size_t illegalLength(UConverter& converter) {
    std::array<char, 32> bytes{};
    auto length = static_cast<std::int8_t>(bytes.size());
    UErrorCode error = U_ZERO_ERROR;
    ucnv_getInvalidChars(&converter, bytes.data(), &length, &error);
    return U_SUCCESS(error) ? length : 0;
}

Decoded decodeWith(UConverter& converter, Bytes bytes, const std::stop_token& stop) {
    GrowingUnits units(bytes.size() + 16);
    const char* const begin = reinterpret_cast<const char*>(bytes.data());
    const char* const end = begin + bytes.size();
    const char* at = begin;
    for (;;) {
        if (stop.stop_requested()) {
            return stopped();
        }
        const char* const pieceEnd = at + std::min<std::size_t>(end - at, pieceLength);
        char16_t* target = units.begin();
        UErrorCode error = U_ZERO_ERROR;
        ucnv_toUnicode(&converter, &target, units.end(), &at, pieceEnd, nullptr, pieceEnd == end, &error);
        units.setEnd(target);
        if (error == U_BUFFER_OVERFLOW_ERROR) {
            units.grow();
        } else if (U_FAILURE(error)) {
            const std::size_t read = at - begin;
            return illegal(read - std::min(read, illegalLength(converter)));
        } else if (at == end) {
            return std::move(units).text();
        }
    }
}

} // namespace

std::optional<StringEncoding> StringEncoding::named(std::string_view name) {
    const Converter converter = name.empty() ? nullptr : openConverter(std::string(name));
    if (!converter) {
        return std::nullopt;
    }
    switch (ucnv_getType(converter.get())) {
    case UCNV_UTF8:
        return utf8();
    case UCNV_UTF16_LittleEndian:
        return utf16LittleEndian();
    case UCNV_UTF16_BigEndian:
        return utf16BigEndian();
    case UCNV_LATIN_1:
        return latin1();
    case UCNV_UTF16:
        return StringEncoding(Family::converter, plainUTF16);
    default:
        break;
    }
    UErrorCode error = U_ZERO_ERROR;
    const std::string_view canonical = ucnv_getName(converter.get(), &error);
    const auto* const known = std::ranges::find(supersets, canonical, &Superset::name);
    if (known != supersets.end()) {
        return StringEncoding(Family::converter, known->superset);
    }
    // The converter's own name goes with it; the alias table's stays.
    const char* const lasting = ucnv_getAlias(canonical.data(), 0, &error);
    return U_SUCCESS(error) && lasting ? std::optional(StringEncoding(Family::converter, lasting))
                                       : std::nullopt;
}

std::string_view StringEncoding::declaredName() const {
    for (const char* const standard : {"MIME", "IANA"}) {
        UErrorCode error = U_ZERO_ERROR;
        if (const char* const name = ucnv_getStandardName(m_name.data(), standard, &error)) {
            return name;
        }
    }
    return m_name;
}

Decoded StringEncoding::decode(Bytes bytes, const std::stop_token& stop) const {
    switch (m_family) {
    case Family::utf8:
        return decodeUTF8(bytes, stop);
    case Family::utf16LittleEndian:
        return decodeUTF16(bytes, std::endian::little, stop);
    case Family::utf16BigEndian:
        return decodeUTF16(bytes, std::endian::big, stop);
    case Family::latin1:
        return decodeLatin1(bytes, stop);
    case Family::converter:
        break;
    }
    const Converter converter = openConverter(m_name);
    precondition(converter != nullptr, "an encoding has its converter");
    return decodeWith(*converter, bytes, stop);
}

std::optional<unsigned> StringEncoding::mostBytesPerUnit() const {
    switch (m_family) {
    case Family::utf8:
        return 3;
    case Family::utf16LittleEndian:
    case Family::utf16BigEndian:
        return 2;
    case Family::latin1:
        return 1;
    case Family::converter:
        break;
    }
    const Converter converter = openConverter(m_name);
    precondition(converter != nullptr, "an encoding has its converter");
    switch (ucnv_getType(converter.get())) {
    case UCNV_SBCS:
    case UCNV_DBCS:
    case UCNV_MBCS:
    case UCNV_US_ASCII:
    case UCNV_UTF32_BigEndian:
    case UCNV_UTF32_LittleEndian:
        return static_cast<unsigned>(ucnv_getMaxCharSize(converter.get()));
    default:
        return std::nullopt;
    }
}
