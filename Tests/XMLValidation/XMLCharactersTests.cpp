#include "XMLCharacters.h"

#include <gtest/gtest.h>

namespace {

using enum XMLVersion;

TEST(XMLCharacters, KnowsTheEdgesOfTheClasses) {
    struct Row {
        char32_t scalar;
        bool isStart, isPart;
    };
    for (const Row& row : {
             Row{U':', true, true},       Row{U'_', true, true},     Row{U'A', true, true},
             Row{U'z', true, true},       Row{U'-', false, true},    Row{U'.', false, true},
             Row{U'9', false, true},      Row{U'/', false, false},   Row{U' ', false, false},
             Row{0xB6, false, false},     Row{0xB7, false, true},    Row{0xBF, false, false},
             Row{0xC0, true, true},       Row{0xD7, false, false},   Row{0xD8, true, true},
             Row{0xF7, false, false},     Row{0x2FF, true, true},    Row{0x300, false, true},
             Row{0x36F, false, true},     Row{0x370, true, true},    Row{0x37E, false, false},
             Row{0x1FFF, true, true},     Row{0x2000, false, false}, Row{0x200B, false, false},
             Row{0x200C, true, true},     Row{0x200E, false, false}, Row{0x203F, false, true},
             Row{0x2041, false, false},   Row{0x218F, true, true},   Row{0x2190, false, false},
             Row{0x2FEF, true, true},     Row{0x3000, false, false}, Row{0x3001, true, true},
             Row{0xD7FF, true, true},     Row{0xD800, false, false}, Row{0xDFFF, false, false},
             Row{0xE000, false, false},   Row{0xF900, true, true},   Row{0xFDCF, true, true},
             Row{0xFDD0, false, false},   Row{0xFFFD, true, true},   Row{0xFFFE, false, false},
             Row{0x10000, true, true},    Row{0xEFFFF, true, true},  Row{0xF0000, false, false},
             Row{0x10FFFF, false, false},
         }) {
        EXPECT_EQ(XMLCharacters::isNameStart(row.scalar), row.isStart)
            << std::hex << std::uint32_t{row.scalar};
        EXPECT_EQ(XMLCharacters::isName(row.scalar), row.isPart) << std::hex << std::uint32_t{row.scalar};
    }
}

TEST(XMLCharacters, AllowsByVersion) {
    struct Row {
        char32_t scalar;
        bool isAllowed1_0, isAllowed1_1, isReferable1_0, isReferable1_1;
    };
    for (const Row& row : {
             Row{0, false, false, false, false},
             Row{1, false, false, false, true},
             Row{U'\t', true, true, true, true},
             Row{0xB, false, false, false, true},
             Row{0x1F, false, false, false, true},
             Row{U' ', true, true, true, true},
             Row{0x7F, true, false, true, true},
             Row{0x85, true, true, true, true},
             Row{0x9F, true, false, true, true},
             Row{0xA0, true, true, true, true},
             Row{0xD7FF, true, true, true, true},
             Row{0xD800, false, false, false, false},
             Row{0xFFFD, true, true, true, true},
             Row{0xFFFE, false, false, false, false},
             Row{0x1FFFF, true, true, true, true},
             Row{0x10FFFF, true, true, true, true},
             Row{0x110000, false, false, false, false},
         }) {
        EXPECT_EQ(XMLCharacters::isAllowed(row.scalar, v1_0), row.isAllowed1_0);
        EXPECT_EQ(XMLCharacters::isAllowed(row.scalar, v1_1), row.isAllowed1_1);
        EXPECT_EQ(XMLCharacters::isReferable(row.scalar, v1_0), row.isReferable1_0);
        EXPECT_EQ(XMLCharacters::isReferable(row.scalar, v1_1), row.isReferable1_1);
    }
}

TEST(XMLCharacters, FindsWhatNoNameHolds) {
    EXPECT_EQ(XMLCharacters::findNonName(u""), 0);
    EXPECT_EQ(XMLCharacters::findNonName(u"añ-1"), 4);
    EXPECT_EQ(XMLCharacters::findNonName(u"1a"), 0);
    EXPECT_EQ(XMLCharacters::findNonName(u"1a", XMLCharacters::NamePart::rest), 2);
    EXPECT_EQ(XMLCharacters::findNonName(u"a\U00010000b c"), 4);
    EXPECT_EQ(XMLCharacters::findNonName(u"a\xD800"), 1);
    EXPECT_FALSE(XMLCharacters::isValidName(u""));
    EXPECT_TRUE(XMLCharacters::isValidName(u":"));
}

} // namespace
