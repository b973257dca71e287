#include "UnitClassifier.h"

#include "ByteVector.h"
#include "UnitScan.h"

#include <array>
#include <vector>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace {

/// The implementation with the vectors that every processor has.
inline UnitFlags flagsOfVectors(const char16_t* units) {
    const auto all = [](char byte) { return ByteVector::all(static_cast<std::uint8_t>(byte)); };
    std::uint64_t markup = 0;
    std::uint64_t name = 0;
    std::uint64_t valueEnd = 0;
    std::uint64_t whitespace = 0;
    for (int i = 0; i < UnitIndex::flagsLength; i += ByteVector::lanes) {
        const ByteVector bytes =
            ByteVector::clamp(UnitVector::load(units + i), UnitVector::load(units + i + UnitVector::lanes));
        const ByteVector lessThan = bytes == all('<');
        const ByteVector quote = (bytes == all('"')) | (bytes == all('\''));
        const ByteVector blank =
            (bytes == all(' ')) | (bytes == all('\t')) | (bytes == all('\n')) | (bytes == all('\r'));
        // One subtraction and one comparison per range; setting the bit 0x20 folds the case of letters. Only
        // the highest bit of each byte counts; bytes beyond ASCII have it set already.
        const ByteVector letter = ((bytes | all(0x20)) - all('a')).atMost(all('z' - 'a'));
        const ByteVector dashToColon = (bytes - all('-')).atMost(all(':' - '-'));
        const ByteVector mayBeName = bytes | letter | dashToColon | (bytes == all('_'));
        markup |= std::uint64_t{(lessThan | (bytes == all('&'))).highBits()} << i;
        name |= std::uint64_t{mayBeName.without(bytes == all('/')).highBits()} << i;
        valueEnd |= std::uint64_t{(lessThan | quote).highBits()} << i;
        whitespace |= std::uint64_t{blank.highBits()} << i;
    }
    return {markup, ~name, valueEnd, ~whitespace};
}

#if defined(__x86_64__)

/// The sets of bytes that are recognized by looking up both halves of a byte, one bit per set. In each set,
/// every upper half occurs with every lower half.
namespace ByteSet {
constexpr char lessThan = 1;
constexpr char ampersand = 2;
constexpr char quotes = 4;
constexpr char dashAndDot = 8;
constexpr char digitsAndUpToZ = 16; // 0 to :, P to Z, p to z
constexpr char underscore = 32;
constexpr char upToO = 64; // A to O, a to o
constexpr char name = dashAndDot | digitsAndUpToZ | underscore | upToO;
} // namespace ByteSet

[[gnu::target("avx2")]] inline std::uint64_t flagsOf(__m256i bytes) {
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes));
}

/// The flags of the bytes that are in none of the `wanted` sets.
[[gnu::target("avx2")]] inline std::uint64_t outside(__m256i sets, char wanted) {
    const __m256i common = _mm256_and_si256(sets, _mm256_set1_epi8(wanted));
    return flagsOf(_mm256_cmpeq_epi8(common, _mm256_setzero_si256()));
}

/// The implementation with AVX2, which looks up both halves of each byte.
[[gnu::target("avx2")]] inline UnitFlags flagsByHalves(const char16_t* units) {
    using namespace ByteSet;
    constexpr char a = digitsAndUpToZ | upToO;
    const __m256i byLowerHalf = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(digitsAndUpToZ, a, a | quotes, a, a, a, a | ampersand, a | quotes, a, a, a, upToO,
                      upToO | lessThan, upToO | dashAndDot, upToO | dashAndDot, upToO | underscore));
    const __m256i byUpperHalf = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 0, ampersand | quotes | dashAndDot, lessThan | digitsAndUpToZ, upToO,
                      digitsAndUpToZ | underscore, upToO, digitsAndUpToZ, 0, 0, 0, 0, 0, 0, 0, 0));
    const __m256i whitespaceByLowerHalf =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(' ', 0, 0, 0, 0, 0, 0, 0, 0, '\t', '\n', 0, 0, '\r', 0, 0));
    const __m256i highest = _mm256_set1_epi16(0xFF);
    const __m256i half = _mm256_set1_epi8(0x0F);
    std::uint64_t noMarkup = 0;
    std::uint64_t nameEnd = 0;
    std::uint64_t noValueEnd = 0;
    std::uint64_t blank = 0;
    for (int i = 0; i < UnitIndex::flagsLength; i += 32) {
        const auto* const at = reinterpret_cast<const __m256i*>(units + i);
        const __m256i first = _mm256_min_epu16(_mm256_loadu_si256(at), highest);
        const __m256i second = _mm256_min_epu16(_mm256_loadu_si256(at + 1), highest);
        constexpr int inOrder = 0b11'01'10'00;
        const __m256i bytes = _mm256_permute4x64_epi64(_mm256_packus_epi16(first, second), inOrder);
        const __m256i upperHalf = _mm256_and_si256(_mm256_srli_epi16(bytes, 4), half);
        const __m256i sets = _mm256_and_si256(_mm256_shuffle_epi8(byLowerHalf, bytes),
                                              _mm256_shuffle_epi8(byUpperHalf, upperHalf));
        const __m256i whitespace =
            _mm256_cmpeq_epi8(_mm256_shuffle_epi8(whitespaceByLowerHalf, bytes), bytes);
        noMarkup |= outside(sets, lessThan | ampersand) << i;
        nameEnd |= (outside(sets, ByteSet::name) & ~flagsOf(bytes)) << i;
        noValueEnd |= outside(sets, lessThan | quotes) << i;
        blank |= flagsOf(whitespace) << i;
    }
    return {~noMarkup, nameEnd, ~noValueEnd, ~blank};
}

/// One more set: everything except white space.
constexpr char otherThanBlank = static_cast<char>(128);

/// The sets of the ASCII characters, for looking up whole bytes. Here `ampersand` is the set of all markup,
/// and `quotes` that of all units that end a value.
constexpr std::array<char, 128> setsOfASCII = [] {
    std::array<char, 128> sets{};
    for (int unit = 0; unit < 128; ++unit) {
        const auto character = static_cast<char16_t>(unit);
        const bool isMarkup = character == u'<' || character == u'&';
        const bool endsValue = character == u'<' || character == u'"' || character == u'\'';
        sets[unit] =
            static_cast<char>((isMarkup ? ByteSet::ampersand : 0) | (endsValue ? ByteSet::quotes : 0) |
                              (UnitScan::isName(character) ? ByteSet::name : 0) |
                              (UnitScan::isWhitespace(character) ? 0 : otherThanBlank));
    }
    return sets;
}();

/// The implementation with AVX-512, which looks up whole bytes.
[[gnu::target("avx512bw,avx512vbmi")]] inline UnitFlags flagsByBytes(const char16_t* units) {
    // These are the masked forms, because the others read an undefined vector in this compiler's headers.
    constexpr __mmask32 allLanes = 0xFFFFFFFF;
    const __m256i first = _mm512_maskz_cvtusepi16_epi8(allLanes, _mm512_loadu_si512(units));
    const __m256i second = _mm512_maskz_cvtusepi16_epi8(allLanes, _mm512_loadu_si512(units + 32));
    const __m512i bytes = _mm512_maskz_inserti64x4(0xFF, _mm512_castsi256_si512(first), second, 1);
    const __m512i sets = _mm512_permutex2var_epi8(_mm512_loadu_si512(setsOfASCII.data()), bytes,
                                                  _mm512_loadu_si512(setsOfASCII.data() + 64));
    const __mmask64 isASCII = ~_mm512_movepi8_mask(bytes);
    const __m512i markup = _mm512_set1_epi8(ByteSet::ampersand);
    const __m512i valueEnd = _mm512_set1_epi8(ByteSet::quotes);
    const __m512i name = _mm512_set1_epi8(ByteSet::name);
    const __m512i content = _mm512_set1_epi8(otherThanBlank);
    return {_mm512_mask_test_epi8_mask(isASCII, sets, markup),
            _mm512_mask_testn_epi8_mask(isASCII, sets, name),
            _mm512_mask_test_epi8_mask(isASCII, sets, valueEnd),
            ~_mm512_mask_testn_epi8_mask(isASCII, sets, content)};
}

#endif

void classify(const char16_t* units, std::span<UnitFlags> flags) {
    for (UnitFlags& part : flags) {
        part = flagsOfVectors(units);
        units += UnitIndex::flagsLength;
    }
}

#if defined(__x86_64__)

[[gnu::target("avx2")]] void classifyByHalves(const char16_t* units, std::span<UnitFlags> flags) {
    for (UnitFlags& part : flags) {
        part = flagsByHalves(units);
        units += UnitIndex::flagsLength;
    }
}

[[gnu::target("avx512bw,avx512vbmi")]] void classifyByBytes(const char16_t* units,
                                                            std::span<UnitFlags> flags) {
    for (UnitFlags& part : flags) {
        part = flagsByBytes(units);
        units += UnitIndex::flagsLength;
    }
}

#endif

} // namespace

std::span<const UnitClassifier::Function> UnitClassifier::available() {
    static const std::vector<Function> functions = [] {
        std::vector<Function> all = {classify};
#if defined(__x86_64__)
        if (__builtin_cpu_supports("avx2")) {
            all.push_back(classifyByHalves);
        }
        if (__builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vbmi")) {
            all.push_back(classifyByBytes);
        }
#endif
        return all;
    }();
    return functions;
}

UnitClassifier::Function UnitClassifier::quickest() { return available().back(); }
