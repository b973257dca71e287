#pragma once

#include "Bytes.h"
#include "Converter.h"
#include "StringEncoding.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

/// The first character of a text that its encoding does not have.
struct UnencodableCharacter {
    std::uint64_t offset = 0; ///< Of its first unit, from the beginning of the text.
    char32_t character = 0;   ///< A surrogate when it stands alone.

    bool operator==(const UnencodableCharacter&) const = default;
};

/// Turns a text into bytes, stretch by stretch, so that nobody needs the whole of either. Strict: no
/// character is left out or replaced by another.
///
/// A stretch may end anywhere, between the two units of a pair too: the bytes depend on the text alone. A
/// failure may show stretches later; after it the encoder is spent.
class TextEncoder {
public:
    /// Takes the bytes, many at a time; keeps none of them.
    using Sink = std::function<void(Bytes)>;
    using Result = std::expected<void, UnencodableCharacter>;

    TextEncoder(const StringEncoding& encoding, Sink sink);

    Result append(std::u16string_view units);

    /// Ends the text: fails when it ends with half a pair.
    Result finish();

private:
    void flush();
    Result appendForConverter(std::u16string_view units);
    Result appendForOwnPath(std::u16string_view units);
    Result encode(std::u16string_view slice);
    Result encodeUTF8(std::u16string_view slice);
    Result encodeUTF16(std::u16string_view slice);
    Result encodeLatin1(std::u16string_view slice);
    enum class MoreText : std::uint8_t { follows, none };
    Result convertSlice(MoreText moreText);
    /// Counts `read` units of `slice` as done; a failure when they are not all.
    Result advance(std::u16string_view slice, std::size_t read);
    /// The character that the converter has just stopped at.
    UnencodableCharacter refused() const;

    StringEncoding::Family m_family;
    Sink m_sink;
    Converter m_converter;  ///< Null for an encoding with a path of its own.
    std::u16string m_slice; ///< What the converter takes next. Some compress, and look ahead in a slice.
    std::unique_ptr<std::uint8_t[]> m_buffer;
    std::size_t m_used = 0; ///< How many bytes of the buffer wait for the sink.
    std::uint64_t m_offset = 0;
    char16_t m_pendingHigh = 0; ///< The last unit so far, when the next may complete it.
};

/// The bytes of a text given as a range of stretches.
template <class Stretches>
std::expected<std::string, UnencodableCharacter> encoded(const Stretches& stretches,
                                                         const StringEncoding& encoding) {
    std::string bytes;
    TextEncoder encoder(encoding, [&bytes](Bytes more) { bytes += stringOf(more); });
    for (const std::u16string_view stretch : stretches) {
        if (const auto result = encoder.append(stretch); !result) {
            return std::unexpected(result.error());
        }
    }
    if (const auto result = encoder.finish(); !result) {
        return std::unexpected(result.error());
    }
    return bytes;
}
