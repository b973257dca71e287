#include "UTF8.h"

#include "Converter.h"
#include "UTF16.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

/// What ICU makes of `bytes`; nothing when it stops.
std::optional<std::u16string> decodedByICU(std::string_view bytes) {
    static const Converter converter = openConverter("UTF-8");
    std::u16string units(bytes.size() + 1, u'\0');
    UErrorCode error = U_ZERO_ERROR;
    const int count = ucnv_toUChars(converter.get(), units.data(), static_cast<int>(units.size()),
                                    bytes.data(), static_cast<int>(bytes.size()), &error);
    units.resize(U_SUCCESS(error) ? count : 0);
    return U_SUCCESS(error) ? std::optional(units) : std::nullopt;
}

std::optional<std::string> encodedByICU(std::u16string_view units) {
    static const Converter converter = openConverter("UTF-8");
    std::string bytes(units.size() * 3 + 1, '\0');
    UErrorCode error = U_ZERO_ERROR;
    const int count = ucnv_fromUChars(converter.get(), bytes.data(), static_cast<int>(bytes.size()),
                                      units.data(), static_cast<int>(units.size()), &error);
    bytes.resize(U_SUCCESS(error) ? count : 0);
    return U_SUCCESS(error) ? std::optional(bytes) : std::nullopt;
}

std::optional<std::u16string> decoded(std::string_view bytes) {
    std::u16string units(bytes.size(), u'\0');
    const UTF8::Progress progress = UTF8::decode(bytesOf(bytes), units.data());
    units.resize(progress.written);
    return progress.read == bytes.size() ? std::optional(units) : std::nullopt;
}

std::optional<std::string> encoded(std::u16string_view units) {
    std::string bytes(units.size() * 3, '\0');
    const UTF8::Progress progress = UTF8::encode(units, reinterpret_cast<std::uint8_t*>(bytes.data()));
    bytes.resize(progress.written);
    return progress.read == units.size() ? std::optional(bytes) : std::nullopt;
}

/// `bytes` alone and behind ASCII of other lengths decode as ICU decodes them, and back.
void checkBytes(const std::string& bytes) {
    const std::optional<std::u16string> expected = decodedByICU(bytes);
    for (const std::size_t before : {0, 1, 15, 16}) {
        const std::string prefix(before, 'a');
        const std::optional<std::u16string> actual = decoded(prefix + bytes + "zz");
        ASSERT_EQ(UTF8::isValid(bytesOf(prefix + bytes + "zz")), actual.has_value());
        // What follows never makes a truncated sequence legal: it is ASCII.
        ASSERT_EQ(actual.has_value(), expected.has_value()) << testing::PrintToString(bytes);
        if (actual) {
            ASSERT_EQ(*actual, std::u16string(before, u'a') + *expected + u"zz");
            ASSERT_EQ(encoded(*actual), prefix + bytes + "zz");
        }
    }
    ASSERT_EQ(decoded(bytes), expected) << testing::PrintToString(bytes);
}

const std::vector<std::uint8_t> boundaryBytes{
    0x00, 0x41, 0x7F, 0x80, 0x81, 0x8F, 0x90, 0x9F, 0xA0, 0xA1, 0xBF, 0xC0, 0xC1, 0xC2, 0xC3, 0xDF,
    0xE0, 0xE1, 0xEC, 0xED, 0xEE, 0xEF, 0xF0, 0xF1, 0xF3, 0xF4, 0xF5, 0xF7, 0xF8, 0xFE, 0xFF};

} // namespace

TEST(UTF8, DecodesEveryOneAndTwoBytesAsICU) {
    for (unsigned first = 0; first < 256; ++first) {
        checkBytes({static_cast<char>(first)});
        for (unsigned second = 0; second < 256; ++second) {
            checkBytes({static_cast<char>(first), static_cast<char>(second)});
        }
    }
}

TEST(UTF8, DecodesThreeAndFourBytesAtTheBoundariesAsICU) {
    for (const std::uint8_t first : boundaryBytes) {
        for (const std::uint8_t second : boundaryBytes) {
            for (const std::uint8_t third : boundaryBytes) {
                const std::string three{static_cast<char>(first), static_cast<char>(second),
                                        static_cast<char>(third)};
                checkBytes(three);
                for (const char fourth : {'A', '\x80', '\xBF', '\xC2'}) {
                    checkBytes(three + fourth);
                }
            }
        }
    }
}

TEST(UTF8, EncodesEveryUnitAndEveryPlaneAsICU) {
    for (char32_t character = 0; character <= 0x10FFFF; character += character < 0x10000 ? 1 : 251) {
        std::u16string units = u"a";
        UTF16::append(units, character);
        units += u"b";
        const std::optional<std::string> bytes = encoded(units);
        ASSERT_EQ(bytes, encodedByICU(units)) << std::hex << static_cast<unsigned>(character);
        if (bytes) {
            ASSERT_EQ(decoded(*bytes), units);
        }
    }
}

TEST(UTF8, RefusesLoneSurrogates) {
    for (const std::u16string& units :
         {std::u16string(u"\xD800"), std::u16string(u"a\xDFFF"), std::u16string(u"\xDC00\xD800"),
          std::u16string(u"\xD83D\xD83D\xDE00"), std::u16string(20, u'a') + u"\xD83D"}) {
        EXPECT_EQ(encoded(units), std::nullopt);
        EXPECT_EQ(encodedByICU(units), std::nullopt);
    }
}

TEST(UTF8, StopsAtTheFirstIllegalByte) {
    const struct {
        std::string bytes;
        std::size_t read;
    } cases[]{
        {"\xFF", 0},
        {"ab\xC3", 2},
        {"\xC3\xB1\xE2\x82", 2},
        {std::string(40, 'x') + "\xED\xA0\x80" + std::string(40, 'x'), 40},
        {std::string(16, 'x') + "\xF0\x9F\x98\x80\x80", 20},
    };
    for (const auto& [bytes, read] : cases) {
        std::u16string units(bytes.size(), u'\0');
        EXPECT_EQ(UTF8::decode(bytesOf(bytes), units.data()).read, read);
    }
}

TEST(UTF8, ConvertsRandomTextsAsICU) {
    constexpr unsigned seed = 20240607;
    std::mt19937 random(seed);
    const auto below = [&random](unsigned limit) { return static_cast<unsigned>(random() % limit); };
    for (int round = 0; round < 20000; ++round) {
        std::u16string units;
        for (unsigned pieces = below(8); pieces > 0; --pieces) {
            units.append(below(40), static_cast<char16_t>(u' ' + below(90)));
            UTF16::append(units, below(4) == 0 ? 0x10000 + below(0x100000) : below(0x10000));
        }
        ASSERT_EQ(encoded(units), encodedByICU(units)) << "seed " << seed << ", round " << round;
        std::string bytes = encoded(units).value_or("");
        for (unsigned damages = below(3); damages > 0 && !bytes.empty(); --damages) {
            bytes[below(static_cast<unsigned>(bytes.size()))] = static_cast<char>(below(256));
        }
        ASSERT_EQ(decoded(bytes), decodedByICU(bytes)) << "seed " << seed << ", round " << round;
    }
}

TEST(UTF8, CountsUnitsWithoutDecoding) {
    const std::u16string pieces[] = {u"",  u"x",          u"é",
                                     u"€", u"\U0001F600", u"año 2024 \U0001F600\U0001F600 €"};
    for (const std::u16string& piece : pieces) {
        for (const std::size_t times : {1U, 15U, 16U, 17U, 239U, 240U, 241U, 1000U}) {
            std::u16string units;
            for (std::size_t i = 0; i < times; ++i) {
                units += piece;
            }
            EXPECT_EQ(UTF8::unitCount(bytesOf(*encoded(units))), units.size());
        }
    }
    EXPECT_EQ(UTF8::unitCount(bytesOf("\xF0\xF0\xF0")), 3U);
}
