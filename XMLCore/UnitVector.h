#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>

#if defined(__SSE2__) && !defined(TAMO_PLAIN_UNIT_VECTOR)
#include <emmintrin.h>
#elif defined(__ARM_NEON) && !defined(TAMO_PLAIN_UNIT_VECTOR)
#include <arm_neon.h>
#endif

/// `UnitVector` is a SIMD vector of eight UTF-16 units. Together with `ByteVector` it wraps the vector
/// instructions that every processor of an architecture has; `UnitClassifier` uses some that only newer ones
/// have. All operators work lane by lane, and `mask` gathers their results in a `UnitMask`. For processors
/// without such instructions, and if `TAMO_PLAIN_UNIT_VECTOR` is defined, the same is written in plain C++.

/// One flag per lane, with as many bits per flag as the processor produces.
template <class Bits, unsigned bitsPerLane>
struct BasicUnitMask {
    Bits bits = 0;

    bool any() const { return bits != 0; }
    /// The index of the first lane whose flag is set. At least one must be set.
    std::ptrdiff_t first() const {
        if (bits == 0) {
            std::unreachable();
        }
        return static_cast<std::ptrdiff_t>(static_cast<unsigned>(std::countr_zero(bits)) / bitsPerLane);
    }
    void clearFirst() { bits &= ~(laneMask << (first() * bitsPerLane)); }
    BasicUnitMask operator~() const { return {static_cast<Bits>(~bits & allLanes)}; }
    /// The number of lanes whose flag is set.
    int count() const { return std::popcount(bits) / bitsPerLane; }
    /// Only the flags of the first `count` lanes, 0 to 7; the others are cleared.
    BasicUnitMask firstLanes(std::ptrdiff_t count) const {
        return {static_cast<Bits>(bits & ((Bits(1) << (count * bitsPerLane)) - 1))};
    }

private:
    static constexpr Bits laneMask = (Bits(1) << bitsPerLane) - 1;
    static constexpr Bits allLanes = static_cast<Bits>(~Bits(0)) >> (sizeof(Bits) * 8 - 8 * bitsPerLane);
};

#if defined(__SSE2__) && !defined(TAMO_PLAIN_UNIT_VECTOR)

using UnitMask = BasicUnitMask<std::uint32_t, 2>;

struct UnitVector {
    static constexpr int lanes = 8;
    __m128i units;

    static UnitVector load(const char16_t* at) {
        return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(at))};
    }
    static UnitVector all(char16_t unit) { return {_mm_set1_epi16(static_cast<short>(unit))}; }

    UnitVector operator==(UnitVector other) const { return {_mm_cmpeq_epi16(units, other.units)}; }
    UnitVector operator|(UnitVector other) const { return {_mm_or_si128(units, other.units)}; }
    UnitVector operator&(UnitVector other) const { return {_mm_and_si128(units, other.units)}; }
    /// The bits that are set here and not in `other`.
    UnitVector without(UnitVector other) const { return {_mm_andnot_si128(other.units, units)}; }
    UnitVector operator-(UnitVector other) const { return {_mm_sub_epi16(units, other.units)}; }
    /// Sets all bits of each lane whose unit is at most that of `other`; clears the others.
    UnitVector atMost(UnitVector other) const {
        return {_mm_cmpeq_epi16(_mm_subs_epu16(units, other.units), _mm_setzero_si128())};
    }
    /// The flags of the lanes. In each lane either all bits or no bits must be set.
    UnitMask mask() const { return {static_cast<std::uint32_t>(_mm_movemask_epi8(units))}; }
};

#elif defined(__ARM_NEON) && !defined(TAMO_PLAIN_UNIT_VECTOR)

using UnitMask = BasicUnitMask<std::uint64_t, 8>;

struct UnitVector {
    static constexpr int lanes = 8;
    uint16x8_t units;

    static UnitVector load(const char16_t* at) {
        return {vld1q_u16(reinterpret_cast<const std::uint16_t*>(at))};
    }
    static UnitVector all(char16_t unit) { return {vdupq_n_u16(unit)}; }

    UnitVector operator==(UnitVector other) const { return {vceqq_u16(units, other.units)}; }
    UnitVector operator|(UnitVector other) const { return {vorrq_u16(units, other.units)}; }
    UnitVector operator&(UnitVector other) const { return {vandq_u16(units, other.units)}; }
    UnitVector without(UnitVector other) const { return {vbicq_u16(units, other.units)}; }
    UnitVector operator-(UnitVector other) const { return {vsubq_u16(units, other.units)}; }
    UnitVector atMost(UnitVector other) const { return {vcleq_u16(units, other.units)}; }
    UnitMask mask() const { return {vget_lane_u64(vreinterpret_u64_u8(vshrn_n_u16(units, 4)), 0)}; }
};

#else

using UnitMask = BasicUnitMask<std::uint32_t, 1>;

struct UnitVector {
    static constexpr int lanes = 8;
    char16_t units[lanes];

    static UnitVector load(const char16_t* at) {
        return make([at](int i) { return at[i]; });
    }
    static UnitVector all(char16_t unit) {
        return make([unit](int) { return unit; });
    }

    UnitVector operator==(UnitVector other) const {
        return make([&](int i) { return units[i] == other.units[i] ? 0xFFFF : 0; });
    }
    UnitVector operator|(UnitVector other) const {
        return make([&](int i) { return units[i] | other.units[i]; });
    }
    UnitVector operator&(UnitVector other) const {
        return make([&](int i) { return units[i] & other.units[i]; });
    }
    UnitVector without(UnitVector other) const {
        return make([&](int i) { return units[i] & ~other.units[i]; });
    }
    UnitVector operator-(UnitVector other) const {
        return make([&](int i) { return units[i] - other.units[i]; });
    }
    UnitVector atMost(UnitVector other) const {
        return make([&](int i) { return units[i] <= other.units[i] ? 0xFFFF : 0; });
    }
    UnitMask mask() const {
        UnitMask mask;
        for (int i = 0; i < lanes; ++i) {
            mask.bits |= static_cast<std::uint32_t>(units[i] & 1) << i;
        }
        return mask;
    }

private:
    template <class Lane>
    static UnitVector make(Lane lane) {
        UnitVector vector;
        for (int i = 0; i < lanes; ++i) {
            vector.units[i] = static_cast<char16_t>(lane(i));
        }
        return vector;
    }
};

#endif
