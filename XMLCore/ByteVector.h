#pragma once

#include "UnitVector.h"

#include <bit>
#include <cstddef>
#include <cstdint>

/// A SIMD vector of sixteen bytes, with conversions from and to UTF-16 units. As in `UnitVector`, all
/// operators work lane by lane.
struct ByteVector {
    static constexpr int lanes = 16;

    /// Reads sixteen bytes from `at`, which may have any alignment; `store` and `widen` write in the same
    /// way.
    static ByteVector load(const std::uint8_t* at);
    static ByteVector all(std::uint8_t byte);
    void store(std::uint8_t* at) const;

    /// Writes the bytes as sixteen units.
    void widen(char16_t* to) const;

    /// The low bytes of sixteen units. For a unit of 0x100 or above the byte is unspecified.
    static ByteVector narrow(UnitVector first, UnitVector second);

    /// Sixteen units as bytes; a unit above 0xFF becomes 0xFF.
    static ByteVector clamp(UnitVector first, UnitVector second);

    ByteVector operator==(ByteVector other) const;
    ByteVector operator|(ByteVector other) const;
    ByteVector operator-(ByteVector other) const;
    /// The bits that are set here and not in `other`.
    ByteVector without(ByteVector other) const;
    /// Sets all bits of each lane whose byte, as an unsigned number, is at most that of `other`; clears the
    /// others.
    ByteVector atMost(ByteVector other) const;

    /// The highest bits of the sixteen lanes as a mask; the lowest bit is that of the first lane.
    std::uint32_t highBits() const;

    /// The number of bytes below 0x80 before the first other byte: 0 to 16.
    int asciiPrefix() const {
        constexpr std::uint32_t pastTheLast = 1u << lanes;
        return std::countr_zero(highBits() | pastTheLast);
    }

#if defined(__SSE2__) && !defined(TAMO_PLAIN_UNIT_VECTOR)
    __m128i bytes;
#elif defined(__ARM_NEON) && !defined(TAMO_PLAIN_UNIT_VECTOR)
    uint8x16_t bytes;
#else
    std::uint8_t bytes[lanes];

private:
    template <class Lane>
    static ByteVector make(Lane lane) {
        ByteVector vector;
        for (int i = 0; i < lanes; ++i) {
            vector.bytes[i] = static_cast<std::uint8_t>(lane(i));
        }
        return vector;
    }
#endif
};

#if defined(__SSE2__) && !defined(TAMO_PLAIN_UNIT_VECTOR)

inline ByteVector ByteVector::load(const std::uint8_t* at) {
    return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(at))};
}

inline ByteVector ByteVector::all(std::uint8_t byte) { return {_mm_set1_epi8(static_cast<char>(byte))}; }

inline void ByteVector::store(std::uint8_t* at) const {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(at), bytes);
}

inline void ByteVector::widen(char16_t* to) const {
    const __m128i zero = _mm_setzero_si128();
    auto* const target = reinterpret_cast<__m128i*>(to);
    _mm_storeu_si128(target, _mm_unpacklo_epi8(bytes, zero));
    _mm_storeu_si128(target + 1, _mm_unpackhi_epi8(bytes, zero));
}

inline ByteVector ByteVector::narrow(UnitVector first, UnitVector second) {
    return {_mm_packus_epi16(first.units, second.units)};
}

inline ByteVector ByteVector::clamp(UnitVector first, UnitVector second) {
    const auto atMost255 = [](__m128i units) {
        return _mm_sub_epi16(units, _mm_subs_epu16(units, _mm_set1_epi16(0xFF)));
    };
    return {_mm_packus_epi16(atMost255(first.units), atMost255(second.units))};
}

inline ByteVector ByteVector::operator==(ByteVector other) const {
    return {_mm_cmpeq_epi8(bytes, other.bytes)};
}
inline ByteVector ByteVector::operator|(ByteVector other) const { return {_mm_or_si128(bytes, other.bytes)}; }
inline ByteVector ByteVector::operator-(ByteVector other) const { return {_mm_sub_epi8(bytes, other.bytes)}; }
inline ByteVector ByteVector::without(ByteVector other) const {
    return {_mm_andnot_si128(other.bytes, bytes)};
}
inline ByteVector ByteVector::atMost(ByteVector other) const {
    return {_mm_cmpeq_epi8(_mm_min_epu8(bytes, other.bytes), bytes)};
}
inline std::uint32_t ByteVector::highBits() const {
    return static_cast<std::uint32_t>(_mm_movemask_epi8(bytes));
}

#elif defined(__ARM_NEON) && !defined(TAMO_PLAIN_UNIT_VECTOR)

inline ByteVector ByteVector::load(const std::uint8_t* at) { return {vld1q_u8(at)}; }

inline ByteVector ByteVector::all(std::uint8_t byte) { return {vdupq_n_u8(byte)}; }

inline void ByteVector::store(std::uint8_t* at) const { vst1q_u8(at, bytes); }

inline void ByteVector::widen(char16_t* to) const {
    auto* const target = reinterpret_cast<std::uint16_t*>(to);
    vst1q_u16(target, vmovl_u8(vget_low_u8(bytes)));
    vst1q_u16(target + UnitVector::lanes, vmovl_u8(vget_high_u8(bytes)));
}

inline ByteVector ByteVector::narrow(UnitVector first, UnitVector second) {
    return {vcombine_u8(vmovn_u16(first.units), vmovn_u16(second.units))};
}

inline ByteVector ByteVector::clamp(UnitVector first, UnitVector second) {
    return {vcombine_u8(vqmovn_u16(first.units), vqmovn_u16(second.units))};
}

inline ByteVector ByteVector::operator==(ByteVector other) const { return {vceqq_u8(bytes, other.bytes)}; }
inline ByteVector ByteVector::operator|(ByteVector other) const { return {vorrq_u8(bytes, other.bytes)}; }
inline ByteVector ByteVector::operator-(ByteVector other) const { return {vsubq_u8(bytes, other.bytes)}; }
inline ByteVector ByteVector::without(ByteVector other) const { return {vbicq_u8(bytes, other.bytes)}; }
inline ByteVector ByteVector::atMost(ByteVector other) const { return {vcleq_u8(bytes, other.bytes)}; }
inline std::uint32_t ByteVector::highBits() const {
    constexpr std::uint8_t weights[] = {1, 2, 4, 8, 16, 32, 64, 128, 1, 2, 4, 8, 16, 32, 64, 128};
    const uint8x16_t isHigh = vcgeq_u8(bytes, vdupq_n_u8(0x80));
    const uint8x16_t flags = vandq_u8(isHigh, vld1q_u8(weights));
    return vaddv_u8(vget_low_u8(flags)) | static_cast<std::uint32_t>(vaddv_u8(vget_high_u8(flags))) << 8;
}

#else

inline ByteVector ByteVector::load(const std::uint8_t* at) {
    return make([at](int i) { return at[i]; });
}

inline ByteVector ByteVector::all(std::uint8_t byte) {
    return make([byte](int) { return byte; });
}

inline void ByteVector::store(std::uint8_t* at) const {
    for (int i = 0; i < lanes; ++i) {
        at[i] = bytes[i];
    }
}

inline void ByteVector::widen(char16_t* to) const {
    for (int i = 0; i < lanes; ++i) {
        to[i] = bytes[i];
    }
}

inline ByteVector ByteVector::narrow(UnitVector first, UnitVector second) {
    return make(
        [&](int i) { return i < UnitVector::lanes ? first.units[i] : second.units[i - UnitVector::lanes]; });
}

inline ByteVector ByteVector::clamp(UnitVector first, UnitVector second) {
    return make([&](int i) {
        const char16_t unit = i < UnitVector::lanes ? first.units[i] : second.units[i - UnitVector::lanes];
        return unit < 0xFF ? unit : 0xFF;
    });
}

inline ByteVector ByteVector::operator==(ByteVector other) const {
    return make([&](int i) { return bytes[i] == other.bytes[i] ? 0xFF : 0; });
}
inline ByteVector ByteVector::operator|(ByteVector other) const {
    return make([&](int i) { return bytes[i] | other.bytes[i]; });
}
inline ByteVector ByteVector::operator-(ByteVector other) const {
    return make([&](int i) { return bytes[i] - other.bytes[i]; });
}
inline ByteVector ByteVector::without(ByteVector other) const {
    return make([&](int i) { return bytes[i] & ~other.bytes[i]; });
}
inline ByteVector ByteVector::atMost(ByteVector other) const {
    return make([&](int i) { return bytes[i] <= other.bytes[i] ? 0xFF : 0; });
}
inline std::uint32_t ByteVector::highBits() const {
    std::uint32_t bits = 0;
    for (int i = 0; i < lanes; ++i) {
        bits |= static_cast<std::uint32_t>(bytes[i] >> 7) << i;
    }
    return bits;
}

#endif
