#include "UnicodeProperties.h"

#include "UnicodeData.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>

using UnicodeProperties::GraphemeBreak;

namespace {

constexpr char32_t scalarCount = 0x110000;

const std::map<std::string, GraphemeBreak> breaks = {
    {"CR", GraphemeBreak::carriageReturn},   {"LF", GraphemeBreak::lineFeed},
    {"Control", GraphemeBreak::control},     {"Extend", GraphemeBreak::extend},
    {"ZWJ", GraphemeBreak::zeroWidthJoiner}, {"Regional_Indicator", GraphemeBreak::regionalIndicator},
    {"Prepend", GraphemeBreak::prepend},     {"SpacingMark", GraphemeBreak::spacingMark},
    {"L", GraphemeBreak::hangulL},           {"V", GraphemeBreak::hangulV},
    {"T", GraphemeBreak::hangulT},           {"LV", GraphemeBreak::hangulLV},
    {"LVT", GraphemeBreak::hangulLVT},
};

} // namespace

TEST(UnicodeProperties, GivesEveryScalarTheBreakPropertyOfTheDatabase) {
    std::vector<GraphemeBreak> expected(scalarCount, GraphemeBreak::other);
    const auto assign = [&](const PropertyLine& line, GraphemeBreak value) {
        std::fill(expected.begin() + line.first, expected.begin() + line.last + 1, value);
    };
    for (const PropertyLine& line : propertyLines("auxiliary/GraphemeBreakProperty.txt")) {
        assign(line, breaks.at(line.value));
    }
    for (const PropertyLine& line : propertyLines("emoji/emoji-data.txt")) {
        if (line.value == "Extended_Pictographic") {
            assign(line, GraphemeBreak::pictographic);
        }
    }
    assign({.first = 0xD800, .last = 0xDFFF, .value = {}}, GraphemeBreak::control);
    for (char32_t scalar = 0; scalar < scalarCount; ++scalar) {
        ASSERT_EQ(UnicodeProperties::graphemeBreak(scalar), expected[scalar]) << std::hex << +scalar;
    }
}

TEST(UnicodeProperties, KnowsWhitespaceAsTheDatabaseDoes) {
    std::vector<bool> expected(scalarCount, false);
    for (const PropertyLine& line : propertyLines("PropList.txt")) {
        if (line.value == "White_Space") {
            std::fill(expected.begin() + line.first, expected.begin() + line.last + 1, true);
        }
    }
    for (char32_t scalar = 0; scalar < scalarCount; ++scalar) {
        ASSERT_EQ(UnicodeProperties::isWhitespace(scalar), expected[scalar]) << std::hex << +scalar;
    }
}

TEST(UnicodeProperties, TakesWhatIsNoCodePointForOther) {
    for (const char32_t scalar : {char32_t{0x110000}, char32_t{0xFFFFFFFF}}) {
        EXPECT_EQ(UnicodeProperties::graphemeBreak(scalar), GraphemeBreak::other);
        EXPECT_FALSE(UnicodeProperties::isWhitespace(scalar));
    }
}

TEST(UnicodeProperties, JudgesACharacterByItsFirstScalar) {
    EXPECT_TRUE(UnicodeProperties::isWhitespace(u" \u0301"));
    EXPECT_TRUE(UnicodeProperties::isWhitespace(u"\r\n"));
    EXPECT_TRUE(UnicodeProperties::isWhitespace(u"\u3000"));
    EXPECT_FALSE(UnicodeProperties::isWhitespace(u"a "));
    EXPECT_FALSE(UnicodeProperties::isWhitespace(u"\u200B"));
    EXPECT_FALSE(UnicodeProperties::isWhitespace(u"\U0001F600"));
    EXPECT_FALSE(UnicodeProperties::isWhitespace(u""));
}
