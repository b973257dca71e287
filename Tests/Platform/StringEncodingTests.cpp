#include "StringEncoding.h"

#include "Converter.h"
#include "TextEncoder.h"
#include "UTF16.h"

#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <random>
#include <stop_token>
#include <string>

using namespace std::string_literals;

namespace {

std::string nameOf(std::string_view name) {
    const std::optional<StringEncoding> encoding = StringEncoding::named(name);
    return encoding ? std::string(encoding->converterName()) : "none";
}

StringEncoding encoding(std::string_view name) { return StringEncoding::named(name).value(); }

/// What ICU makes of `bytes`; nothing when it stops.
std::optional<std::u16string> decodedByICU(UConverter* converter, std::string_view bytes) {
    std::u16string units(bytes.size() + 1, u'\0');
    UErrorCode error = U_ZERO_ERROR;
    const int count = ucnv_toUChars(converter, units.data(), static_cast<int>(units.size()), bytes.data(),
                                    static_cast<int>(bytes.size()), &error);
    units.resize(U_SUCCESS(error) ? count : 0);
    return U_SUCCESS(error) ? std::optional(units) : std::nullopt;
}

std::optional<std::u16string> decoded(const StringEncoding& encoding, std::string_view bytes) {
    const auto text = encoding.decode(bytesOf(bytes));
    return text ? std::optional(std::u16string(text->units())) : std::nullopt;
}

} // namespace

TEST(StringEncoding, IsFoundByNamesAsFilesWriteThem) {
    const struct {
        const char* name;
        const char* expected;
    } cases[]{
        {"UTF-8", "UTF-8"},
        {"utf8", "UTF-8"},
        {"Utf_8", "UTF-8"},
        {"UTF-16LE", "UTF-16LE"},
        {"utf-16be", "UTF-16BE"},
        {"ISO-8859-1", "ISO-8859-1"},
        {"ISO8859-1", "ISO-8859-1"},
        {"iso_8859_1", "ISO-8859-1"},
        {"latin1", "ISO-8859-1"},
        {"us-ascii", "US-ASCII"},
        {"ISO-8859-15", "ibm-923_P100-1998"},
        {"windows-1252", "ibm-5348_P100-1997"},
        {"Windows_1252", "ibm-5348_P100-1997"},
        {"KOI8-R", "ibm-878_P100-1996"},
        {"EUC-JP", "euc-jp-2007"},
        {"iso-2022-jp", "ISO_2022,locale=ja,version=0"},
        {"Big5", "windows-950-2000"},
        {"cp037", "ibm-37_P100-1995"},
        {"no-such-encoding", "none"},
        {"", "none"},
        {"8", "none"},
        {"x-a-name-that-is-longer-than-any-encoding-could-ever-have-been-called", "none"},
    };
    for (const auto& [name, expected] : cases) {
        EXPECT_EQ(nameOf(name), expected) << name;
    }
}

TEST(StringEncoding, IsTheSupersetWhereNamesAreUsedForIt) {
    const struct {
        const char* name;
        const char* expected;
        const char* onlyInSuperset;
    } cases[]{
        {"Shift_JIS", "ibm-943_P15A-2003", "\x87\x40"},  {"windows-31j", "ibm-943_P15A-2003", "\x87\x40"},
        {"EUC-KR", "windows-949-2000", "\x81\x41"},      {"ks_c_5601-1987", "windows-949-2000", "\x81\x41"},
        {"windows-949", "windows-949-2000", "\x81\x41"}, {"GB2312", "gb18030", "\x81\x40"},
        {"GBK", "gb18030", "\x81\x30\x81\x30"},          {"gb18030", "gb18030", "\x81\x30\x81\x30"},
    };
    for (const auto& [name, expected, onlyInSuperset] : cases) {
        EXPECT_EQ(nameOf(name), expected) << name;
        EXPECT_TRUE(decoded(encoding(name), onlyInSuperset)) << name;
    }
}

TEST(StringEncoding, TellsPlainUTF16FromTheOthers) {
    for (const char* const name : {"UTF-16", "utf16", "UTF_16", "ISO-10646-UCS-2", "csUnicode"}) {
        EXPECT_TRUE(encoding(name).isPlainUTF16()) << name;
    }
    for (const char* const name : {"UTF-16LE", "UTF-16BE", "UTF-8", "UTF-32"}) {
        EXPECT_FALSE(encoding(name).isPlainUTF16()) << name;
    }
}

TEST(StringEncoding, DeclaresItselfByACommonName) {
    for (const char* const name : {"UTF-8", "ISO-8859-1", "UTF-16LE", "Shift_JIS", "ISO-8859-15",
                                   "windows-1252", "KOI8-R", "Big5", "GB18030", "EUC-JP", "US-ASCII"}) {
        EXPECT_EQ(encoding(name).declaredName(), name);
    }
}

TEST(StringEncoding, KnowsEveryConverterByItsOwnName) {
    for (int i = 0; i < ucnv_countAvailable(); ++i) {
        const std::optional<StringEncoding> found = StringEncoding::named(ucnv_getAvailableName(i));
        ASSERT_TRUE(found) << ucnv_getAvailableName(i);
        EXPECT_EQ(found, StringEncoding::named(found->converterName()));
        EXPECT_FALSE(found->declaredName().empty());
    }
}

TEST(StringEncoding, DecodesNothing) {
    for (int i = 0; i < ucnv_countAvailable(); ++i) {
        EXPECT_EQ(decoded(encoding(ucnv_getAvailableName(i)), ""), u"");
    }
}

TEST(StringEncoding, StopsAtTheFirstIllegalSequence) {
    const struct {
        const char* name;
        std::string bytes;
        std::size_t offset;
    } cases[]{
        {"UTF-8", "ab\xC0\x80", 2},
        {"UTF-8", "ab\xED\xA0\x80", 2},
        {"UTF-8", "ab\xF4\x90\x80\x80", 2},
        {"UTF-8", "ab\xE2\x82", 2},
        {"UTF-16LE", "a\0\x00\xD8"s, 2},
        {"UTF-16LE",
         "a\0\x00\xDC"s
         "b\0"s,
         2},
        {"UTF-16BE", "\0a\0"s, 2},
        {"UTF-16LE", "\x3D\xD8\x00\xDE\x3D\xD8"s, 4},
        {"US-ASCII", "abc\xE9", 3},
        {"Shift_JIS", "ab\x83", 2},
        {"Shift_JIS", "\x83\x41\xFFz", 2},
        {"EUC-JP", "ab\xA4\xA2\xA4 ", 4},
        {"gb18030", "ab\x81\x30\x81", 2},
        {"windows-1253", "a\xD2", 1},
    };
    for (const auto& [name, bytes, offset] : cases) {
        const auto text = encoding(name).decode(bytesOf(bytes));
        ASSERT_FALSE(text) << name;
        EXPECT_EQ(text.error(), (DecodeFailure{DecodeFailure::Kind::illegal, offset})) << name;
    }
}

TEST(StringEncoding, KeepsByteOrderMarksAsCharacters) {
    for (const char* const name :
         {"UTF-8", "UTF-16LE", "UTF-16BE", "UTF-32", "UTF-32LE", "UTF-32BE", "gb18030"}) {
        const std::array stretches{std::u16string_view(u"\xFEFF<a>\xFEFF</a>")};
        const auto bytes = encoded(stretches, encoding(name));
        ASSERT_TRUE(bytes) << name;
        EXPECT_EQ(decoded(encoding(name), *bytes), stretches[0]) << name;
    }
}

TEST(StringEncoding, DecodesAcrossThePiecesOfAConversion) {
    // Two bytes and then one, so that pieces of any even length end within a character somewhere.
    std::string bytes = "a";
    std::u16string units = u"a";
    for (int i = 0; i < 800'000; ++i) {
        bytes += "\x83\x41";
        units += u'\u30A2';
    }
    EXPECT_EQ(decoded(encoding("Shift_JIS"), bytes), units);
    EXPECT_EQ(decoded(encoding("Shift_JIS"), bytes + '\x83'), std::nullopt);
}

TEST(StringEncoding, DecodesUTF16AndLatin1AsICU) {
    constexpr unsigned seed = 7;
    std::mt19937 random(seed);
    for (const char* const name : {"UTF-16LE", "UTF-16BE", "ISO-8859-1"}) {
        const Converter converter = openConverter(name);
        for (int round = 0; round < 20'000; ++round) {
            std::string bytes(random() % 80, '\0');
            for (char& byte : bytes) {
                // Surrogates and their neighbours, often enough to pair up.
                constexpr std::array bytesOfSurrogates{'\xD7', '\xD8', '\xDB', '\xDC', '\xDF', '\xE0', '\0'};
                byte = random() % 4 == 0 ? bytesOfSurrogates[random() % bytesOfSurrogates.size()]
                                         : static_cast<char>(random());
            }
            ASSERT_EQ(decoded(encoding(name), bytes), decodedByICU(converter.get(), bytes))
                << name << ", seed " << seed << ", round " << round;
        }
    }
}

TEST(StringEncoding, DecodesEveryUnitOfUTF16AsICU) {
    for (const char* const name : {"UTF-16LE", "UTF-16BE"}) {
        const Converter converter = openConverter(name);
        for (unsigned unit = 0; unit < 0x10000; ++unit) {
            std::string bytes{static_cast<char>(unit), static_cast<char>(unit >> 8)};
            ASSERT_EQ(decoded(encoding(name), bytes), decodedByICU(converter.get(), bytes)) << unit;
            bytes = "\xDC\xDC" + bytes + "\xDC\xDC";
            ASSERT_EQ(decoded(encoding(name), bytes), decodedByICU(converter.get(), bytes)) << unit;
        }
    }
}

TEST(StringEncoding, DecodesLongTextsAsItDecodesShortOnes) {
    // Characters of each length lie across the pieces in which a text is decoded.
    constexpr std::size_t pieceLength = std::size_t{1} << 20;
    const struct {
        std::string bytes;
        std::u16string units;
    } characters[]{{"x", u"x"}, {"é", u"é"}, {"€", u"€"}, {"\U0001F600", u"\U0001F600"}};
    for (const auto& character : characters) {
        for (std::size_t shift = 0; shift < 4; ++shift) {
            std::string bytes(shift, '.');
            std::u16string units(shift, u'.');
            while (bytes.size() < pieceLength + 70) {
                bytes += character.bytes;
                units += character.units;
            }
            EXPECT_TRUE(decoded(StringEncoding::utf8(), bytes) == units) << character.bytes << shift;
            while (units.size() < pieceLength + 7) {
                units += units.substr(shift);
            }
            const std::string wide(reinterpret_cast<const char*>(units.data()), units.size() * 2);
            EXPECT_TRUE(decoded(StringEncoding::utf16LittleEndian(), wide) == units)
                << character.bytes << shift;
        }
    }
}

TEST(StringEncoding, TellsWhereALongTextIsIllegal) {
    constexpr std::size_t pieceLength = std::size_t{1} << 20;
    for (std::size_t before = pieceLength - 5; before < pieceLength + 5; ++before) {
        for (const char* const illegal :
             {"\x80", "\xE2\x82", "\xF0\x9F\x98", "\x80\x80\x80\x80\x80", "\xE2\x82x"}) {
            for (const std::size_t after : {std::size_t{0}, pieceLength}) {
                const std::string bytes = std::string(before, 'x') + illegal + std::string(after, 'x');
                const auto text = StringEncoding::utf8().decode(bytesOf(bytes));
                ASSERT_FALSE(text.has_value());
                EXPECT_EQ(text.error(), (DecodeFailure{DecodeFailure::Kind::illegal, before})) << before;
            }
        }
        for (const char16_t lone : {u'\xD83D', u'\xDE00'}) {
            for (const std::size_t after : {std::size_t{0}, std::size_t{9}}) {
                const std::u16string units =
                    std::u16string(before, u'x') + lone + std::u16string(after, u'x');
                const std::string bytes(reinterpret_cast<const char*>(units.data()), units.size() * 2);
                const auto text = StringEncoding::utf16LittleEndian().decode(bytesOf(bytes));
                ASSERT_FALSE(text.has_value());
                EXPECT_EQ(text.error(), (DecodeFailure{DecodeFailure::Kind::illegal, before * 2})) << before;
            }
        }
    }
}

TEST(StringEncoding, StopsDecodingWhenItIsAskedTo) {
    std::stop_source stop;
    stop.request_stop();
    for (const char* const name : {"UTF-8", "UTF-16LE", "UTF-16BE", "ISO-8859-1", "windows-1252"}) {
        const auto text = encoding(name).decode(bytesOf(std::string(100, 'x')), stop.get_token());
        ASSERT_FALSE(text.has_value()) << name;
        EXPECT_EQ(text.error().kind, DecodeFailure::Kind::stopped) << name;
    }
}

TEST(StringEncoding, KnowsHowManyBytesAUnitHasAtMost) {
    const struct {
        const char* name;
        std::optional<unsigned> most;
    } cases[]{
        {"UTF-8", 3},    {"UTF-16LE", 2},     {"ISO-8859-1", 1}, {"windows-1252", 1},
        {"US-ASCII", 1}, {"Shift_JIS", 2},    {"GB18030", 4},    {"UTF-32BE", 4},
        {"EUC-JP", 3},   {"ISO-2022-JP", {}}, {"UTF-7", {}},     {"HZ-GB-2312", {}},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(encoding(each.name).mostBytesPerUnit(), each.most) << each.name;
    }
}
