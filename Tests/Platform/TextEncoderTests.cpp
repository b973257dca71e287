#include "TextEncoder.h"

#include "UTF16.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>
#include <vector>

using namespace std::string_literals;

namespace {

StringEncoding encoding(std::string_view name) { return StringEncoding::named(name).value(); }

using Result = std::expected<std::string, UnencodableCharacter>;

Result encodedWhole(std::u16string_view units, std::string_view name) {
    return encoded(std::array{units}, encoding(name));
}

/// The same text in stretches of `length` units.
Result encodedInStretches(std::u16string_view units, std::string_view name, std::size_t length) {
    std::vector<std::u16string_view> stretches;
    for (std::size_t at = 0; at < units.size(); at += length) {
        stretches.push_back(units.substr(at, length));
        stretches.emplace_back();
    }
    return encoded(stretches, encoding(name));
}

Result encodedByICU(UConverter* converter, std::u16string_view units) {
    std::string bytes(units.size() * 8 + 1, '\0');
    UErrorCode error = U_ZERO_ERROR;
    const int count = ucnv_fromUChars(converter, bytes.data(), static_cast<int>(bytes.size()), units.data(),
                                      static_cast<int>(units.size()), &error);
    bytes.resize(U_SUCCESS(error) ? count : 0);
    return U_SUCCESS(error) ? Result(bytes) : std::unexpected(UnencodableCharacter{});
}

} // namespace

TEST(TextEncoder, WritesTheBytesOfAnEncoding) {
    const struct {
        const char* name;
        std::u16string units;
        std::string bytes;
    } cases[]{
        {"UTF-8", u"", ""},
        {"UTF-8", u"añ€\xD83D\xDE00", "a\xC3\xB1\xE2\x82\xAC\xF0\x9F\x98\x80"},
        {"UTF-16LE", u"a\xD83D\xDE00", "a\0\x3D\xD8\x00\xDE"s},
        {"UTF-16BE", u"a\xD83D\xDE00", "\0a\xD8\x3D\xDE\x00"s},
        {"ISO-8859-1", u"Espa\u00F1a \u0080\u00FF", "Espa\xF1"s + "a \x80\xFF"},
        {"windows-1252", u"5 €", "5 \x80"},
        {"Shift_JIS", u"ア\\~", "\x83\x41\\~"},
        {"EUC-KR", u"갂", "\x81\x41"},
        {"ISO-2022-JP", u"aア", "a\x1B$B%\"\x1B(B"},
        {"UTF-32", u"a", "\0\0\0a"s},
    };
    for (const auto& [name, units, bytes] : cases) {
        EXPECT_EQ(encodedWhole(units, name), bytes) << name;
        for (const std::size_t length : {1, 2, 3}) {
            EXPECT_EQ(encodedInStretches(units, name, length), bytes) << name << " by " << length;
        }
    }
}

TEST(TextEncoder, StopsAtTheFirstCharacterThatTheEncodingLacks) {
    const struct {
        const char* name;
        std::u16string units;
        UnencodableCharacter expected;
    } cases[]{
        {"ISO-8859-1", u"abc€d€", {3, U'€'}},
        {"ISO-8859-1", std::u16string(40'000, u'x') + u"\xD83D\xDE00z", {40'000, U'\U0001F600'}},
        {"US-ASCII", u"año", {1, U'ñ'}},
        {"Shift_JIS", u"ア\u00F1", {1, U'ñ'}},
        {"Shift_JIS", u"a\xD83D\xDE00", {1, U'\U0001F600'}},
        {"UTF-8", u"ab\xD83D", {2, 0xD83D}},
        {"UTF-8", u"ab\xDE00\xD83D", {2, 0xDE00}},
        {"UTF-8", u"\xD83D\xD83D\xDE00", {0, 0xD83D}},
        {"UTF-16LE", u"\xD83D\xDE00\xDE00", {2, 0xDE00}},
        {"UTF-16BE", u"\xD83D", {0, 0xD83D}},
        {"gb18030", u"a\xD83D", {1, 0xD83D}},
        {"gb18030", u"a\xDE00z", {1, 0xDE00}},
    };
    for (const auto& [name, units, expected] : cases) {
        EXPECT_EQ(encodedWhole(units, name), std::unexpected(expected)) << name;
        for (const std::size_t length : {1, 2, 3, 16384, 16385}) {
            EXPECT_EQ(encodedInStretches(units, name, length), std::unexpected(expected))
                << name << " by " << length;
        }
    }
}

TEST(TextEncoder, LeavesOutNoInvisibleCharacter) {
    for (const char16_t invisible : {u'\u200B', u'\uFEFF', u'\u2060', u'\u034F'}) {
        const std::u16string units{u'a', invisible, u'b'};
        EXPECT_EQ(encodedWhole(units, "Shift_JIS"), std::unexpected(UnencodableCharacter{1, invisible}));
        EXPECT_EQ(encodedWhole(units, "ISO-8859-15"), std::unexpected(UnencodableCharacter{1, invisible}));
        EXPECT_EQ(encodedWhole(units, "ISO-8859-1"), std::unexpected(UnencodableCharacter{1, invisible}));
    }
}

TEST(TextEncoder, TakesNoLookAlike) {
    // A full-width letter that the table of windows-1252 would write as a plain one.
    EXPECT_EQ(encodedWhole(u"\uFF21", "windows-1252"), std::unexpected(UnencodableCharacter{0, u'\uFF21'}));
}

TEST(TextEncoder, EncodesEveryUnitAsICU) {
    for (const char* const name : {"UTF-8", "UTF-16LE", "UTF-16BE", "ISO-8859-1"}) {
        const Converter converter = openConverter(name);
        for (unsigned unit = 0; unit < 0x10000; ++unit) {
            for (const std::u16string& units : {std::u16string(1, static_cast<char16_t>(unit)),
                                                std::u16string{u'\xD83D', static_cast<char16_t>(unit)},
                                                std::u16string(17, static_cast<char16_t>(unit))}) {
                const Result expected = encodedByICU(converter.get(), units);
                const Result actual = encodedWhole(units, name);
                ASSERT_EQ(actual.has_value(), expected.has_value()) << name << ' ' << unit;
                ASSERT_EQ(actual.value_or(""), expected.value_or("")) << name << ' ' << unit;
            }
        }
    }
}

TEST(TextEncoder, EncodesRandomTextsAsICUHoweverTheyAreCut) {
    constexpr unsigned seed = 99;
    std::mt19937 random(seed);
    const auto below = [&random](unsigned limit) { return static_cast<unsigned>(random() % limit); };
    for (const char* const name : {"UTF-8", "UTF-16LE", "UTF-16BE", "ISO-8859-1", "gb18030", "Shift_JIS"}) {
        const Converter converter = openConverter(name);
        for (int round = 0; round < 3000; ++round) {
            const unsigned limits[]{0x80, 0x100, 0x800, 0x10000};
            std::u16string units;
            for (unsigned count = below(60); count > 0; --count) {
                UTF16::append(units, below(50) == 0 ? 0x10000 + below(0x100000) : below(limits[below(4)]));
            }
            const Result expected = encodedByICU(converter.get(), units);
            const Result whole = encodedWhole(units, name);
            ASSERT_EQ(whole.has_value(), expected.has_value())
                << name << ", seed " << seed << ", round " << round;
            ASSERT_EQ(whole.value_or(""), expected.value_or(""));
            ASSERT_EQ(encodedInStretches(units, name, 1 + below(20)), whole);
        }
    }
}
