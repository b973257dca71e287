#include "CaseFolding.h"

#include <gtest/gtest.h>

#include <map>

TEST(CaseFolding, FoldsUnitByUnit) {
    EXPECT_EQ(CaseFolding::folded(u"AbÑ ÉΣςß1_"), u"abñ éσσß1_");
    EXPECT_EQ(CaseFolding::folded(u"\u212A\u017F\u1E9E"), u"ksß");
    const std::u16string odd{u'\0', u'\xD83D', u'\xDE00', u'\xDC00', u'\uFFFF'};
    EXPECT_EQ(CaseFolding::folded(odd), odd);
}

TEST(CaseFolding, KnowsAllUnitsThatFoldToOne) {
    EXPECT_EQ(CaseFolding::variants(u'k'), u"Kk\u212A");
    EXPECT_EQ(CaseFolding::variants(u's'), u"Ss\u017F");
    EXPECT_EQ(CaseFolding::variants(u'ñ'), u"Ññ");
    EXPECT_EQ(CaseFolding::variants(u'<'), u"<");
}

TEST(CaseFolding, HasNoMoreVariantsThanItTells) {
    std::map<char16_t, std::size_t> counts;
    for (char32_t unit = 0; unit < 0x10000; ++unit) {
        ++counts[CaseFolding::folded(static_cast<char16_t>(unit))];
    }
    for (const auto& [folded, count] : counts) {
        EXPECT_LE(count, CaseFolding::mostVariants) << "U+" << std::hex << unsigned(folded);
    }
}
