#include "TextEncoder.h"

#include "ByteVector.h"
#include "Precondition.h"
#include "UTF16.h"
#include "UTF8.h"
#include "UnitScan.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

namespace {

/// What is encoded at a time.
constexpr std::size_t sliceLength = 16384;
constexpr std::size_t mostBytesOfSlice = sliceLength * 3;
/// What the sink gets at a time: so much that writing it costs more than calling the system, and little
/// enough for the processor's cache.
constexpr std::size_t bufferSize = 128 * 1024;

} // namespace

TextEncoder::TextEncoder(const StringEncoding& encoding, Sink sink)
    : m_family(encoding.family()), m_sink(std::move(sink)),
      m_buffer(std::make_unique_for_overwrite<std::uint8_t[]>(bufferSize)) {
    if (m_family == StringEncoding::Family::converter) {
        m_converter = openConverter(encoding.converterName());
        precondition(m_converter != nullptr, "an encoding has its converter");
        m_slice.reserve(sliceLength);
    }
}

TextEncoder::Result TextEncoder::append(std::u16string_view units) {
    return m_converter ? appendForConverter(units) : appendForOwnPath(units);
}

TextEncoder::Result TextEncoder::appendForConverter(std::u16string_view units) {
    while (!units.empty()) {
        const std::size_t count = std::min(units.size(), sliceLength - m_slice.size());
        m_slice.append(units.substr(0, count));
        units.remove_prefix(count);
        if (m_slice.size() == sliceLength) {
            if (Result result = convertSlice(MoreText::follows); !result) {
                return result;
            }
        }
    }
    return {};
}

TextEncoder::Result TextEncoder::appendForOwnPath(std::u16string_view units) {
    if (m_pendingHigh != 0 && !units.empty()) {
        const std::array pair{std::exchange(m_pendingHigh, u'\0'), units.front()};
        const bool isPair = UTF16::isLowSurrogate(pair[1]);
        units.remove_prefix(isPair ? 1 : 0);
        if (Result result = encode({pair.data(), isPair ? std::size_t{2} : 1}); !result) {
            return result;
        }
    }
    while (!units.empty()) {
        std::size_t length = std::min(units.size(), sliceLength);
        if (UTF16::isHighSurrogate(units[length - 1])) {
            --length;
            if (length + 1 == units.size()) {
                m_pendingHigh = units.back();
                units.remove_suffix(1);
            }
        }
        if (Result result = encode(units.substr(0, length)); !result) {
            return result;
        }
        units.remove_prefix(length);
    }
    return {};
}

TextEncoder::Result TextEncoder::finish() {
    if (m_converter) {
        if (Result result = convertSlice(MoreText::none); !result) {
            return result;
        }
    }
    if (const char16_t lone = std::exchange(m_pendingHigh, u'\0'); lone != 0) {
        return encode({&lone, 1});
    }
    flush();
    return {};
}

void TextEncoder::flush() {
    m_sink({m_buffer.get(), m_used});
    m_used = 0;
}

TextEncoder::Result TextEncoder::advance(std::u16string_view slice, std::size_t read) {
    m_offset += read;
    if (read < slice.size()) {
        const char32_t character = UTF16::scalarAt(slice.data() + read, slice.data() + slice.size());
        return std::unexpected(UnencodableCharacter{m_offset, character});
    }
    return {};
}

TextEncoder::Result TextEncoder::encode(std::u16string_view slice) {
    if (bufferSize - m_used < mostBytesOfSlice) {
        flush();
    }
    switch (m_family) {
    case StringEncoding::Family::utf8:
        return encodeUTF8(slice);
    case StringEncoding::Family::utf16LittleEndian:
    case StringEncoding::Family::utf16BigEndian:
        return encodeUTF16(slice);
    case StringEncoding::Family::latin1:
        return encodeLatin1(slice);
    case StringEncoding::Family::converter:
        break;
    }
    preconditionFailed("a converter takes its own slices");
}

TextEncoder::Result TextEncoder::encodeUTF8(std::u16string_view slice) {
    const UTF8::Progress progress = UTF8::encode(slice, m_buffer.get() + m_used);
    m_used += progress.written;
    return advance(slice, progress.read);
}

TextEncoder::Result TextEncoder::encodeUTF16(std::u16string_view slice) {
    const auto end = static_cast<UnitScan::Position>(slice.size());
    const std::size_t count = UnitScan::findLoneSurrogate(slice.data(), 0, end);
    const bool isBigEndian = m_family == StringEncoding::Family::utf16BigEndian;
    std::uint8_t* const to = m_buffer.get() + m_used;
    for (std::size_t i = 0; i < count; ++i) {
        const auto high = static_cast<std::uint8_t>(slice[i] >> 8);
        const auto low = static_cast<std::uint8_t>(slice[i]);
        to[2 * i] = isBigEndian ? high : low;
        to[2 * i + 1] = isBigEndian ? low : high;
    }
    m_used += count * 2;
    return advance(slice, count);
}

TextEncoder::Result TextEncoder::encodeLatin1(std::u16string_view slice) {
    std::uint8_t* const to = m_buffer.get() + m_used;
    std::size_t at = 0;
    for (; slice.size() - at >= ByteVector::lanes; at += ByteVector::lanes) {
        const UnitVector first = UnitVector::load(slice.data() + at);
        const UnitVector second = UnitVector::load(slice.data() + at + UnitVector::lanes);
        if ((~(first | second).atMost(UnitVector::all(0xFF)).mask()).any()) {
            break;
        }
        ByteVector::narrow(first, second).store(to + at);
    }
    for (; at < slice.size() && slice[at] <= 0xFF; ++at) {
        to[at] = static_cast<std::uint8_t>(slice[at]);
    }
    m_used += at;
    return advance(slice, at);
}

TextEncoder::Result TextEncoder::convertSlice(MoreText moreText) {
    const char16_t* at = m_slice.data();
    const char16_t* const end = at + m_slice.size();
    char* const begin = reinterpret_cast<char*>(m_buffer.get());
    UErrorCode error = U_BUFFER_OVERFLOW_ERROR;
    while (error == U_BUFFER_OVERFLOW_ERROR) {
        error = U_ZERO_ERROR;
        char* to = begin + m_used;
        ucnv_fromUnicode(m_converter.get(), &to, begin + bufferSize, &at, end, nullptr,
                         moreText == MoreText::none, &error);
        m_used = to - begin;
        if (error == U_BUFFER_OVERFLOW_ERROR) {
            flush();
        }
    }
    m_offset += at - m_slice.data();
    m_slice.clear();
    return U_SUCCESS(error) ? Result() : std::unexpected(refused());
}

UnencodableCharacter TextEncoder::refused() const {
    std::array<char16_t, 8> units{};
    auto length = static_cast<std::int8_t>(units.size());
    UErrorCode error = U_ZERO_ERROR;
    ucnv_getInvalidUChars(m_converter.get(), units.data(), &length, &error);
    precondition(U_SUCCESS(error) && length > 0, "the converter knows what it refused");
    return {m_offset - length, UTF16::scalarAt(units.data(), units.data() + length)};
}
