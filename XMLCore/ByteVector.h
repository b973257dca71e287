#pragma once

#include "UnitVector.h"

#include <bit>
#include <cstddef>
#include <cstdint>

/// Sixteen bytes side by side, and the ways between them and two `UnitVector`s. Like there, everything works
/// lane by lane.
struct ByteVector {
    static constexpr int lanes = 16;

    static ByteVector load(const std::uint8_t* at);
    void store(std::uint8_t* at) const;

    /// How many bytes from the first on are below 0x80: 0 to 16.
    int asciiPrefix() const;

    /// Writes the sixteen bytes as sixteen units.
    void widen(char16_t* to) const;

    /// The low bytes of sixteen units. Where a unit is 0x100 or above, the byte may be any.
    static ByteVector narrow(UnitVector first, UnitVector second);

#if defined(__SSE2__)
    __m128i bytes;
#elif defined(__ARM_NEON)
    uint8x16_t bytes;
#else
    std::uint8_t bytes[lanes];
#endif
};

#if defined(__SSE2__)

inline ByteVector ByteVector::load(const std::uint8_t* at) {
    return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(at))};
}

inline void ByteVector::store(std::uint8_t* at) const {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(at), bytes);
}

inline int ByteVector::asciiPrefix() const {
    constexpr std::uint32_t pastTheLast = 1u << lanes;
    return std::countr_zero(static_cast<std::uint32_t>(_mm_movemask_epi8(bytes)) | pastTheLast);
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

#elif defined(__ARM_NEON)

inline ByteVector ByteVector::load(const std::uint8_t* at) { return {vld1q_u8(at)}; }

inline void ByteVector::store(std::uint8_t* at) const { vst1q_u8(at, bytes); }

inline int ByteVector::asciiPrefix() const {
    const uint8x16_t beyond = vcgeq_u8(bytes, vdupq_n_u8(0x80));
    const uint8x8_t nibbles = vshrn_n_u16(vreinterpretq_u16_u8(beyond), 4);
    return std::countr_zero(vget_lane_u64(vreinterpret_u64_u8(nibbles), 0)) / 4;
}

inline void ByteVector::widen(char16_t* to) const {
    auto* const target = reinterpret_cast<std::uint16_t*>(to);
    vst1q_u16(target, vmovl_u8(vget_low_u8(bytes)));
    vst1q_u16(target + UnitVector::lanes, vmovl_u8(vget_high_u8(bytes)));
}

inline ByteVector ByteVector::narrow(UnitVector first, UnitVector second) {
    return {vcombine_u8(vmovn_u16(first.units), vmovn_u16(second.units))};
}

#else

inline ByteVector ByteVector::load(const std::uint8_t* at) {
    ByteVector vector;
    for (int i = 0; i < lanes; ++i) {
        vector.bytes[i] = at[i];
    }
    return vector;
}

inline void ByteVector::store(std::uint8_t* at) const {
    for (int i = 0; i < lanes; ++i) {
        at[i] = bytes[i];
    }
}

inline int ByteVector::asciiPrefix() const {
    int count = 0;
    while (count < lanes && bytes[count] < 0x80) {
        ++count;
    }
    return count;
}

inline void ByteVector::widen(char16_t* to) const {
    for (int i = 0; i < lanes; ++i) {
        to[i] = bytes[i];
    }
}

inline ByteVector ByteVector::narrow(UnitVector first, UnitVector second) {
    ByteVector vector;
    for (int i = 0; i < UnitVector::lanes; ++i) {
        vector.bytes[i] = static_cast<std::uint8_t>(first.units[i]);
        vector.bytes[i + UnitVector::lanes] = static_cast<std::uint8_t>(second.units[i]);
    }
    return vector;
}

#endif
