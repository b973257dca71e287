#include "UTF8Length.h"

#include "Random.h"
#include "Repeated.h"
#include "UTF16.h"

#include <gtest/gtest.h>

TEST(UTF8Length, IsThatOfUnitByUnit) {
    constexpr char16_t units[] = {u'\0',  u'a',   u'\x7F', u'\x80', u'\x7FF', 0x800, 0xD7FF,
                                  0xD800, 0xDBFF, 0xDC00,  0xDFFF,  0xE000,   0xFFFF};
    Random random;
    for (int round = 0; round < 2000; ++round) {
        std::u16string text;
        for (std::size_t length = random.below(70); length > 0; --length) {
            text.push_back(units[random.below(std::size(units))]);
        }
        ASSERT_EQ(utf8LengthOfText(text), UTF16::utf8Length(text));
    }
}

TEST(UTF8Length, CountsLongTexts) {
    constexpr std::size_t many = 1'000'003;
    EXPECT_EQ(utf8LengthOfText(repeated(u"a", many)), many);
    EXPECT_EQ(utf8LengthOfText(repeated(u"€", many)), 3 * many);
    EXPECT_EQ(utf8LengthOfText(repeated(u"\U0001F600", many)), 4 * many);
}
