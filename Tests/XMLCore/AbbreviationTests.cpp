#include "Abbreviation.h"

#include <gtest/gtest.h>

namespace {

using Element = AbbreviatedElement;
using Elements = AbbreviationReader::Elements;

std::optional<Elements> read(std::u16string_view text) { return AbbreviationReader(text).elements(0); }

} // namespace

TEST(Abbreviation, ReadsElements) {
    EXPECT_EQ(read(u"a"), (Elements{{.name = u"a"}}));
    EXPECT_EQ(read(u"a+b"), (Elements{{.name = u"a"}, {.name = u"b"}}));
    EXPECT_EQ(read(u"a>b+c"),
              (Elements{{.name = u"a", .hasChildren = true}, {.name = u"b"}, {.name = u"c"}}));
    EXPECT_EQ(read(u"x:a-1.\xE9"), (Elements{{.name = u"x:a-1.\xE9"}}));
    EXPECT_EQ(read(u"a*3"), (Elements{{.name = u"a", .count = 3}}));
    EXPECT_EQ(read(u"a*0003"), (Elements{{.name = u"a", .count = 3}}));
    EXPECT_EQ(read(u"a/"), (Elements{{.name = u"a", .selfClosing = true}}));
    EXPECT_EQ(read(u"a[b]*2/"),
              (Elements{{.name = u"a", .attributes = {{u"b", u""}}, .count = 2, .selfClosing = true}}));
    EXPECT_EQ(read(u"a/+b"), (Elements{{.name = u"a", .selfClosing = true}, {.name = u"b"}}));
}

TEST(Abbreviation, ReadsAttributes) {
    using Attributes = std::vector<Element::Attribute>;
    struct Row {
        std::u16string_view text;
        Attributes expected;
    };
    const Row rows[] = {
        {u"a[]", {}},
        {u"a[  ]", {}},
        {u"a[b]", {{u"b", u""}}},
        {u"a[ b  c ]", {{u"b", u""}, {u"c", u""}}},
        {u"a[b=]", {{u"b", u""}}},
        {u"a[b= c]", {{u"b", u""}, {u"c", u""}}},
        {u"a[b=c d]", {{u"b", u"c"}, {u"d", u""}}},
        {u"a[b=c>d/*+[=\"']", {{u"b", u"c>d/*+[=\"'"}}},
        {u"a[b=\"c d\" e='f]']", {{u"b", u"c d"}, {u"e", u"f]"}}},
        {u"a[b='']", {{u"b", u""}}},
        {u"a[b=\"it's\"]", {{u"b", u"it's"}}},
        {u"a[b=c\td]", {{u"b", u"c\td"}}},
    };
    for (const Row& row : rows) {
        const auto elements = read(row.text);
        ASSERT_TRUE(elements) << ::testing::PrintToString(row.text);
        EXPECT_EQ(elements->front().attributes, row.expected) << ::testing::PrintToString(row.text);
    }
}

TEST(Abbreviation, RefusesEverythingElse) {
    for (const std::u16string_view text : {u"",        u"1a",        u"-a",
                                           u"a b",     u"a>",        u">a",
                                           u"a+",      u"+a",        u"a>>b",
                                           u"a++b",    u"a>+b",      u"a/>b",
                                           u"a//",     u"a/*2",      u"a*",
                                           u"a*0",     u"a*501",     u"a*-1",
                                           u"a*1*1",   u"a*1x",      u"a*x",
                                           u"a[",      u"a[b",       u"a]",
                                           u"a[b][c]", u"a[b=\"c]",  u"a[b='c\"]",
                                           u"a[1]",    u"a[=b]",     u"a[b\tc]",
                                           u"a[b>]",   u"a[b='c'd]", u"a[b='c'=d]",
                                           u"a*2[b]",  u"a=b",       u"a\"",
                                           u"'a",      u"a\nb",      u"a*99999999999999999999",
                                           u"a[b c",   u"a[b=",      u"!",
                                           u"a>!",     u"a,b",       u"a<b",
                                           u"a*\u0661"}) {
        EXPECT_EQ(read(text), std::nullopt) << ::testing::PrintToString(text);
    }
}

TEST(Abbreviation, CountsTo500) {
    EXPECT_EQ(read(u"p*500")->front().count, 500U);
    EXPECT_EQ(read(u"p*1")->front().count, 1U);
    EXPECT_EQ(read(u"p*501"), std::nullopt);
}

TEST(Abbreviation, ReadsFromLaterOn) {
    const std::u16string_view text = u"1>a[b=>c]>d";
    AbbreviationReader reader(text);
    EXPECT_EQ(reader.elements(0), std::nullopt);
    EXPECT_EQ(reader.elements(2),
              (Elements{{.name = u"a", .attributes = {{u"b", u">c"}}, .hasChildren = true}, {.name = u"d"}}));
}

TEST(Abbreviation, RemembersWhatFailed) {
    const std::u16string_view text = u"a>b[x=>c y]>d!";
    AbbreviationReader reader(text);
    for (std::size_t from = 0; from <= text.size(); ++from) {
        EXPECT_EQ(reader.elements(from), std::nullopt) << from;
        EXPECT_EQ(reader.elements(from), read(text.substr(from))) << from;
    }
}
