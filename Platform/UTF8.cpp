#include "UTF8.h"

#include "ByteVector.h"
#include "UTF16.h"

#include <algorithm>

namespace {

/// A character as it stands in the bytes; one of length 0 is illegal.
struct Sequence {
    char32_t character = 0;
    int length = 0;
};

constexpr bool isContinuation(std::uint8_t byte) { return (byte & 0xC0) == 0x80; }

/// The sequence at `at`, whose first byte is 0x80 or above.
inline Sequence sequence(const std::uint8_t* at, const std::uint8_t* end) {
    const std::ptrdiff_t available = end - at;
    const char32_t lead = at[0];
    if (lead >= 0xE0 && lead < 0xF0) {
        if (available >= 3 && isContinuation(at[1]) && isContinuation(at[2])) {
            const char32_t character = (lead & 0x0F) << 12 | (at[1] & 0x3Fu) << 6 | (at[2] & 0x3Fu);
            const bool isSurrogate = (character & 0xF800) == 0xD800;
            return character >= 0x800 && !isSurrogate ? Sequence{character, 3} : Sequence{};
        }
    } else if (lead >= 0xC2 && lead < 0xE0) {
        if (available >= 2 && isContinuation(at[1])) {
            return {(lead & 0x1F) << 6 | (at[1] & 0x3Fu), 2};
        }
    } else if (lead >= 0xF0 && lead < 0xF5) {
        if (available >= 4 && isContinuation(at[1]) && isContinuation(at[2]) && isContinuation(at[3])) {
            const char32_t character =
                (lead & 0x07) << 18 | (at[1] & 0x3Fu) << 12 | (at[2] & 0x3Fu) << 6 | (at[3] & 0x3Fu);
            return character >= 0x10000 && character <= 0x10FFFF ? Sequence{character, 4} : Sequence{};
        }
    }
    return {};
}

/// Takes the units one after the other. Never runs ahead of the bytes, so that where sixteen of these are
/// left there is room for sixteen units.
struct UnitWriter {
    char16_t* at;

    void ascii(ByteVector bytes, int count) {
        bytes.widen(at);
        at += count;
    }
    void ascii(std::uint8_t byte) { *at++ = byte; }
    void character(char32_t character) { at = UTF16::write(character, at); }
};

struct NoWriter {
    void ascii(ByteVector, int) {}
    void ascii(std::uint8_t) {}
    void character(char32_t) {}
};

/// Hands everything up to the first illegal sequence to `writer`; returns where that is, or the end.
template <class Writer>
inline const std::uint8_t* decodeInto(Writer& writer, Bytes bytes) {
    const std::uint8_t* at = bytes.data();
    const std::uint8_t* const end = at + bytes.size();
    while (at != end) {
        while (end - at >= ByteVector::lanes) {
            const ByteVector block = ByteVector::load(at);
            const int count = block.asciiPrefix();
            if (count < ByteVector::lanes) {
                writer.ascii(block, count);
                at += count;
                break;
            }
            // A constant step: the next block need not wait for the count of this one.
            writer.ascii(block, ByteVector::lanes);
            at += ByteVector::lanes;
        }
        if (at != end && *at < 0x80) {
            writer.ascii(*at++);
        }
        while (at != end && *at >= 0x80) {
            const Sequence next = sequence(at, end);
            if (next.length == 0) {
                return at;
            }
            writer.character(next.character);
            at += next.length;
        }
    }
    return at;
}

/// How many units from the first on are below 0x80.
inline std::ptrdiff_t asciiPrefix(UnitVector first, UnitVector second) {
    const UnitVector limit = UnitVector::all(0x7F);
    const UnitMask beyondInFirst = ~first.atMost(limit).mask();
    if (beyondInFirst.any()) {
        return beyondInFirst.first();
    }
    const UnitMask beyondInSecond = ~second.atMost(limit).mask();
    return UnitVector::lanes + (beyondInSecond.any() ? beyondInSecond.first() : UnitVector::lanes);
}

inline std::uint8_t* writeCharacter(char32_t character, std::uint8_t* to) {
    const auto continuation = [character](int shift) {
        return static_cast<std::uint8_t>(0x80 | (character >> shift & 0x3F));
    };
    if (character < 0x800) {
        *to++ = static_cast<std::uint8_t>(0xC0 | character >> 6);
    } else if (character < 0x10000) {
        *to++ = static_cast<std::uint8_t>(0xE0 | character >> 12);
        *to++ = continuation(6);
    } else {
        *to++ = static_cast<std::uint8_t>(0xF0 | character >> 18);
        *to++ = continuation(12);
        *to++ = continuation(6);
    }
    *to++ = continuation(0);
    return to;
}

} // namespace

UTF8::Progress UTF8::decode(Bytes bytes, char16_t* to) {
    UnitWriter writer{to};
    const std::uint8_t* const end = decodeInto(writer, bytes);
    return {static_cast<std::size_t>(end - bytes.data()), static_cast<std::size_t>(writer.at - to)};
}

std::size_t UTF8::unitCount(Bytes bytes) {
    // Counters of one byte are what the compiler counts sixteen at a time with.
    constexpr std::size_t mostCounted = 240;
    const std::size_t size = bytes.size();
    std::size_t count = 0;
    while (!bytes.empty()) {
        const Bytes block = bytes.first(std::min(bytes.size(), mostCounted));
        std::uint8_t sequences = 0;
        std::uint8_t pairs = 0;
        for (const std::uint8_t byte : block) {
            sequences = static_cast<std::uint8_t>(sequences + (isContinuation(byte) ? 0 : 1));
            pairs = static_cast<std::uint8_t>(pairs + (byte >= 0xF0 ? 1 : 0));
        }
        count += std::size_t(sequences) + pairs;
        bytes = bytes.subspan(block.size());
    }
    return std::min(count, size);
}

bool UTF8::isValid(Bytes bytes) {
    NoWriter writer;
    return decodeInto(writer, bytes) == bytes.data() + bytes.size();
}

UTF8::Progress UTF8::encode(std::u16string_view units, std::uint8_t* to) {
    const char16_t* at = units.data();
    const char16_t* const end = at + units.size();
    std::uint8_t* output = to;
    bool isLegal = true;
    while (at != end && isLegal) {
        while (end - at >= ByteVector::lanes) {
            const UnitVector first = UnitVector::load(at);
            const UnitVector second = UnitVector::load(at + UnitVector::lanes);
            const std::ptrdiff_t count = asciiPrefix(first, second);
            // What follows the prefix is written over at once.
            ByteVector::narrow(first, second).store(output);
            if (count < ByteVector::lanes) {
                output += count;
                at += count;
                break;
            }
            output += ByteVector::lanes;
            at += ByteVector::lanes;
        }
        if (at != end && *at < 0x80) {
            *output++ = static_cast<std::uint8_t>(*at++);
        }
        while (at != end && *at >= 0x80) {
            const char32_t character = UTF16::scalarAt(at, end);
            if (character < 0x10000 && UTF16::isSurrogate(*at)) {
                isLegal = false;
                break;
            }
            output = writeCharacter(character, output);
            at += UTF16::length(character);
        }
    }
    return {static_cast<std::size_t>(at - units.data()), static_cast<std::size_t>(output - to)};
}
