#include "TextWatch.h"

#include "ByteVector.h"
#include "UTF16.h"
#include "UnitVector.h"

#include <algorithm>
#include <bit>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace {

constexpr std::size_t blockLength = 64;

/// The lanes that may be watched. Lets no such unit pass; of those that only may be one there are few in most
/// texts: either half of a pair, a `]` alone, and of version 1.0 DEL and the controls after it, so that one
/// test does for both versions.
UnitVector mayBeWatched(UnitVector vector) {
    const auto all = [](char16_t unit) { return UnitVector::all(unit); };
    // U+FFFE, U+FFFF, and on from there over U+0000 to U+0008.
    UnitVector found = (vector - all(0xFFFE)).atMost(all(0x0A));
    found = found | (vector - all(0x0B)).atMost(all(0x1F - 0x0B)).without(vector == all(0x0D));
    found = found | (vector - all(0x7F)).atMost(all(0x9F - 0x7F));
    found = found | ((vector & all(0xF800)) == all(0xD800));
    return found | (vector == all(u'&')) | (vector == all(u']'));
}

/// The units of a block for which `test` sets the lane, a bit each.
std::uint64_t flagsOf(const char16_t* units, auto test) {
    std::uint64_t flags = 0;
    for (std::size_t at = 0; at < blockLength; at += ByteVector::lanes) {
        const UnitVector first = test(UnitVector::load(units + at));
        const UnitVector second = test(UnitVector::load(units + at + UnitVector::lanes));
        flags |= std::uint64_t{ByteVector::clamp(first, second).highBits()} << at;
    }
    return flags;
}

/// The first whole block from `from` on, of those before `end`, that may hold a watched unit; where no whole
/// block is left when none does.
std::size_t findBlockByVectors(const char16_t* units, std::size_t from, std::size_t end) {
    for (; end - from >= blockLength; from += blockLength) {
        UnitVector found = UnitVector::all(0);
        for (std::size_t at = 0; at < blockLength; at += UnitVector::lanes) {
            found = found | mayBeWatched(UnitVector::load(units + from + at));
        }
        if (found.mask().any()) {
            break;
        }
    }
    return from;
}

#if defined(__x86_64__)

[[gnu::target("avx2")]] inline __m256i inRange(__m256i units, char16_t first, char16_t last) {
    const __m256i above = _mm256_sub_epi16(units, _mm256_set1_epi16(static_cast<short>(first)));
    const __m256i limit = _mm256_set1_epi16(static_cast<short>(last - first));
    return _mm256_cmpeq_epi16(_mm256_min_epu16(above, limit), above);
}

/// Whether any of the 64 units at `units` is one that `mayBeWatched`, with vectors twice as wide.
[[gnu::target("avx2")]] inline bool mayHoldWatched(const char16_t* units) {
    constexpr std::size_t lanes = 16;
    const __m256i carriageReturn = _mm256_set1_epi16(u'\r');
    const __m256i ampersand = _mm256_set1_epi16(u'&');
    const __m256i bracket = _mm256_set1_epi16(u']');
    __m256i found = _mm256_setzero_si256();
    for (std::size_t at = 0; at < blockLength; at += lanes) {
        const __m256i vector = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(units + at));
        const __m256i isReturn = _mm256_cmpeq_epi16(vector, carriageReturn);
        found = _mm256_or_si256(found, inRange(vector, 0xFFFE, 0x08));
        found = _mm256_or_si256(found, _mm256_andnot_si256(isReturn, inRange(vector, 0x0B, 0x1F)));
        found = _mm256_or_si256(found, inRange(vector, 0x7F, 0x9F));
        found = _mm256_or_si256(found, inRange(vector, 0xD800, 0xDFFF));
        found = _mm256_or_si256(found, _mm256_cmpeq_epi16(vector, ampersand));
        found = _mm256_or_si256(found, _mm256_cmpeq_epi16(vector, bracket));
    }
    return _mm256_testz_si256(found, found) == 0;
}

/// The same as `findBlockByVectors`. Most blocks are dismissed by looking up the two halves of each unit,
/// those beyond Latin-1 all taken for the last of it: a bit of a table's entry for every set of bytes whose
/// halves can be combined freely.
[[gnu::target("avx2")]] std::size_t findBlockByHalves(const char16_t* units, std::size_t from,
                                                      std::size_t end) {
    constexpr char control = 1;   // 0x00 to 0x0F, but for tab and line ends
    constexpr char wholeRow = 2;  // 0x10 to 0x1F, 0x80 to 0x9F
    constexpr char ampersand = 4; // 0x26
    constexpr char bracket = 8;   // 0x5D
    constexpr char last = 16;     // 0x7F, 0xFF
    constexpr char c = control | wholeRow;
    const __m256i byLowerHalf = _mm256_broadcastsi128_si256(_mm_setr_epi8(
        c, c, c, c, c, c, c | ampersand, c, c, wholeRow, wholeRow, c, c, wholeRow | bracket, c, c | last));
    const __m256i byUpperHalf = _mm256_broadcastsi128_si256(_mm_setr_epi8(
        control, wholeRow, ampersand, 0, 0, bracket, 0, last, wholeRow, wholeRow, 0, 0, 0, 0, 0, last));
    const __m256i highest = _mm256_set1_epi16(0xFF);
    const __m256i half = _mm256_set1_epi8(0x0F);
    for (; end - from >= blockLength; from += blockLength) {
        __m256i found = _mm256_setzero_si256();
        for (std::size_t at = 0; at < blockLength; at += 32) {
            const auto* const vectors = reinterpret_cast<const __m256i*>(units + from + at);
            const __m256i bytes =
                _mm256_packus_epi16(_mm256_min_epu16(_mm256_loadu_si256(vectors), highest),
                                    _mm256_min_epu16(_mm256_loadu_si256(vectors + 1), highest));
            const __m256i lower = _mm256_shuffle_epi8(byLowerHalf, _mm256_and_si256(bytes, half));
            const __m256i upper =
                _mm256_shuffle_epi8(byUpperHalf, _mm256_and_si256(_mm256_srli_epi16(bytes, 4), half));
            found = _mm256_or_si256(found, _mm256_and_si256(lower, upper));
        }
        if (_mm256_testz_si256(found, found) == 0 && mayHoldWatched(units + from)) {
            break;
        }
    }
    return from;
}

#endif

std::size_t findBlock(const char16_t* units, std::size_t from, std::size_t end) {
#if defined(__x86_64__)
    static const bool hasWideVectors = __builtin_cpu_supports("avx2") != 0;
    if (hasWideVectors) {
        return findBlockByHalves(units, from, end);
    }
#endif
    return findBlockByVectors(units, from, end);
}

} // namespace

TextWatch::TextWatch(std::u16string_view units, XMLVersion version) : m_units(units), m_version(version) {}

bool TextWatch::isWatched(std::size_t at) const {
    const char16_t unit = m_units[at];
    if (unit == u'&') {
        return true;
    }
    if (unit == u']') {
        return at + 1 < m_units.size() && m_units[at + 1] == u']';
    }
    if (UTF16::isLowSurrogate(unit)) {
        return at == 0 || !UTF16::isHighSurrogate(m_units[at - 1]);
    }
    if (UTF16::isHighSurrogate(unit)) {
        return at + 1 == m_units.size() || !UTF16::isLowSurrogate(m_units[at + 1]);
    }
    return !XMLCharacters::isAllowed(unit, m_version);
}

/// Goes on to the next block that may hold something, or to what is left before `end`.
void TextWatch::loadCandidates(std::size_t end) {
    m_block = findBlock(m_units.data(), m_loaded, end);
    m_loaded = std::min(m_block + blockLength, end);
    if (m_loaded - m_block < blockLength) {
        // All of a rest.
        m_candidates = (std::uint64_t{1} << (m_loaded - m_block)) - 1;
        return;
    }
    const char16_t* const units = m_units.data() + m_block;
    m_candidates = flagsOf(units, mayBeWatched);
    const std::uint64_t low = m_candidates & flagsOf(units, [](UnitVector vector) {
                                  return (vector & UnitVector::all(0xFC00)) == UnitVector::all(0xDC00);
                              });
    if (low != 0) {
        // Pairs within the block; one that reaches beyond it is looked at unit by unit.
        const std::uint64_t high = flagsOf(units, [](UnitVector vector) {
            return (vector & UnitVector::all(0xFC00)) == UnitVector::all(0xD800);
        });
        const std::uint64_t paired = low & high << 1;
        m_candidates &= ~(paired | paired >> 1);
    }
}

std::size_t TextWatch::next(std::size_t end) {
    while (true) {
        while (m_candidates != 0) {
            const std::size_t at = m_block + static_cast<std::size_t>(std::countr_zero(m_candidates));
            m_candidates &= m_candidates - 1;
            if (isWatched(at)) {
                return at;
            }
        }
        if (m_loaded >= end) {
            return end;
        }
        loadCandidates(end);
    }
}
