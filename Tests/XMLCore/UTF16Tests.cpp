#include "UTF16.h"

#include <gtest/gtest.h>
#include <initializer_list>

namespace {

constexpr char16_t high = 0xD83D;
constexpr char16_t low = 0xDE00;

} // namespace

TEST(UTF16, KnowsSurrogatesByTheirUnits) {
    for (int unit = 0; unit <= 0xFFFF; ++unit) {
        const auto value = static_cast<char16_t>(unit);
        ASSERT_EQ(UTF16::isHighSurrogate(value), 0xD800 <= unit && unit <= 0xDBFF);
        ASSERT_EQ(UTF16::isLowSurrogate(value), 0xDC00 <= unit && unit <= 0xDFFF);
        ASSERT_EQ(UTF16::isSurrogate(value), 0xD800 <= unit && unit <= 0xDFFF);
    }
}

TEST(UTF16, ReadsScalarsFromBothSides) {
    struct Row {
        std::u16string text;
        char32_t first;
        char32_t last;
    };
    const Row rows[] = {
        {{u'a'}, U'a', U'a'},
        {{high, low}, U'\U0001F600', U'\U0001F600'},
        {{high}, high, high},
        {{low}, low, low},
        {{low, high}, low, high},
        {{high, u'a'}, high, U'a'},
        {{high, high, low}, high, U'\U0001F600'},
        {{high, low, low}, U'\U0001F600', low},
        {{u'a', low}, U'a', low},
    };
    for (const Row& row : rows) {
        const char16_t* const begin = row.text.data();
        const char16_t* const end = begin + row.text.size();
        EXPECT_EQ(UTF16::scalarAt(begin, end), row.first);
        EXPECT_EQ(UTF16::scalarBefore(begin, end), row.last);
    }
}

TEST(UTF16, AppendsWhatItReads) {
    for (const char32_t scalar : {0x0U, 0x41U, 0xD800U, 0xDFFFU, 0xFFFFU, 0x10000U, 0x1F600U, 0x10FFFFU}) {
        std::u16string text;
        UTF16::append(text, scalar);
        EXPECT_EQ(text.size(), UTF16::length(scalar));
        EXPECT_EQ(UTF16::scalarAt(text.data(), text.data() + text.size()), scalar);
    }
}

TEST(UTF16, TellsHowLongATextIsInUTF8) {
    EXPECT_EQ(UTF16::utf8Length(u""), 0U);
    EXPECT_EQ(UTF16::utf8Length(u"a\u007F\u0080\u07FF\u0800\uFFFF"), 1U + 1 + 2 + 2 + 3 + 3);
    EXPECT_EQ(UTF16::utf8Length(u"\U0001F600"), 4U);
    EXPECT_EQ(UTF16::utf8Length(u"\xD800" u"a"), 3U);
}
