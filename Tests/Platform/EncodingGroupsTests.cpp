#include "EncodingName.h"

#include <gtest/gtest.h>

#include <set>

TEST(EncodingGroups, StartWithTheUsualOnes) {
    const auto& groups = encodingGroups();
    ASSERT_GT(groups.size(), 2U);
    EXPECT_EQ(groups.front().title, QStringLiteral("Habituales"));
    EXPECT_EQ(groups.front().encodings.front(), StringEncoding::utf8());
    EXPECT_EQ(groups[1].title, QStringLiteral("Unicode"));
    EXPECT_EQ(groups.back().title, QStringLiteral("Otras"));
}

TEST(EncodingGroups, HaveEachEncodingOnceBehindTheUsualOnes) {
    std::set<std::string_view> names;
    const auto& groups = encodingGroups();
    for (std::size_t group = 1; group < groups.size(); ++group) {
        EXPECT_FALSE(groups[group].encodings.empty()) << qUtf8Printable(groups[group].title);
        for (const StringEncoding& encoding : groups[group].encodings) {
            EXPECT_TRUE(names.insert(encoding.converterName()).second) << encoding.converterName();
            EXPECT_EQ(StringEncoding::named(encoding.converterName()), encoding);
        }
    }
    EXPECT_GT(names.size(), 80U);
    for (const StringEncoding& encoding : groups.front().encodings) {
        EXPECT_TRUE(names.contains(encoding.converterName())) << encoding.converterName();
    }
}
