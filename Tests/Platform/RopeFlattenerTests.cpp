#include "RopeFlattener.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

namespace {

const std::u16string units = std::u16string(10'000, u'x') + u"\r\n" + std::u16string(10'000, u'y');

Rope edited(std::u16string_view with) { return Rope(units).replaced({5000, 5000}, with); }

TEST(RopeFlattener, PutsEveryUnitIntoOneArray) {
    RopeFlattener flattener;
    std::u16string expected = units;
    expected.insert(5000, u"<new/>");
    EXPECT_EQ(flattener.flattened(edited(u"<new/>")), SourceText(expected));
    EXPECT_EQ(flattener.flattened(Rope()), SourceText());
}

TEST(RopeFlattener, CopiesNothingOfAnUnchangedText) {
    const SourceText text(units);
    RopeFlattener flattener;
    EXPECT_EQ(flattener.flattened(Rope(text)).units().data(), text.units().data());
}

TEST(RopeFlattener, UsesAnArrayAgainOnceItsTextIsGone) {
    RopeFlattener flattener;
    const char16_t* first = nullptr;
    {
        const SourceText text = flattener.flattened(edited(u"a"));
        first = text.units().data();
    }
    EXPECT_EQ(flattener.flattened(edited(u"bc")).units().data(), first);
}

TEST(RopeFlattener, LeavesTextsInUseAsTheyAre) {
    RopeFlattener flattener;
    std::vector<SourceText> texts;
    for (char16_t unit = u'a'; unit < u'f'; ++unit) {
        texts.push_back(flattener.flattened(edited(std::u16string(1, unit))));
    }
    for (std::size_t i = 0; i < texts.size(); ++i) {
        EXPECT_EQ(texts[i].units()[5000], u'a' + i);
        EXPECT_EQ(texts[i].count(), units.size() + 1);
    }
}

TEST(RopeFlattener, GivesALargeArrayUpForASmallText) {
    RopeFlattener flattener;
    std::weak_ptr<const char16_t[]> large;
    {
        const SourceText text = flattener.flattened(edited(std::u16string(1'000'000, u'x')));
        large = text.storage();
    }
    EXPECT_FALSE(large.expired());
    flattener.flattened(edited(u"x"));
    flattener.flattened(edited(u"x"));
    EXPECT_TRUE(large.expired());
}

TEST(RopeFlattener, GivesAwayOnlyArraysThatNoTextIsIn) {
    RopeFlattener flattener;
    std::optional<SourceText> unused = flattener.flattened(edited(u"a"));
    const SourceText used = flattener.flattened(edited(u"b"));
    const std::weak_ptr<const char16_t[]> first = unused->storage();
    const std::weak_ptr<const char16_t[]> second = used.storage();
    unused.reset();
    flattener.takeFree();
    EXPECT_TRUE(first.expired());
    EXPECT_FALSE(second.expired());
    EXPECT_EQ(used.units()[5000], u'b');
}

} // namespace
