#include "TextDifference.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

struct Row {
    std::u16string before;
    std::u16string after;
    SourceRange range;
    std::u16string replacement;
};

std::u16string longText(std::size_t units) {
    std::u16string text;
    for (std::size_t at = 0; at < units; ++at) {
        text += static_cast<char16_t>(u'a' + at % 26);
    }
    return text;
}

} // namespace

TEST(TextDifference, FindsNoneInEqualTexts) {
    for (const std::u16string& text : {std::u16string(), std::u16string(u"abc"), longText(10'000)}) {
        EXPECT_FALSE(textDifference(Rope(text), Rope(text)));
    }
}

TEST(TextDifference, IsWhatStandsBetweenTheCommonEnds) {
    const Row rows[] = {
        {u"", u"abc", {0, 0}, u"abc"},
        {u"abc", u"", {0, 3}, u""},
        {u"abc", u"axc", {1, 2}, u"x"},
        {u"aa", u"aaa", {2, 2}, u"a"},
        {u"aaa", u"aa", {2, 3}, u""},
        {u"<a/>", u"<a></a>", {2, 3}, u"></a"},
        {u"x\U0001F600y", u"x\U0001F601y", {1, 3}, u"\U0001F601"},
        {u"x\U0001F600y", u"x\U0001FA00y", {1, 3}, u"\U0001FA00"},
        {u"a\r\nb", u"a\nb", {1, 3}, u"\n"},
        {u"a\r\nb", u"a\rb", {1, 3}, u"\r"},
    };
    for (const Row& row : rows) {
        const auto difference = textDifference(Rope(row.before), Rope(row.after));
        ASSERT_TRUE(difference);
        EXPECT_EQ(difference->range, row.range) << testing::PrintToString(row.before);
        EXPECT_EQ(difference->replacement, row.replacement);
    }
}

TEST(TextDifference, LeadsFromAnyTextToAnyOther) {
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    const auto upTo = [&engine](std::size_t most) {
        return std::uniform_int_distribution<std::size_t>(0, most)(engine);
    };
    for (int round = 0; round < 2000; ++round) {
        const std::u16string_view alphabet = u"ab\r\n\xD83D\xDE00";
        std::u16string before = upTo(3) == 0 ? longText(5000) : std::u16string();
        for (std::size_t count = upTo(12); count != 0; --count) {
            before += alphabet[upTo(alphabet.size() - 1)];
        }
        std::u16string after = before;
        for (std::size_t count = upTo(3); count != 0; --count) {
            const std::size_t at = upTo(after.size());
            after.replace(at, upTo(3), 1, alphabet[upTo(alphabet.size() - 1)]);
        }
        const auto difference = textDifference(Rope(before), Rope(after));
        ASSERT_EQ(difference.has_value(), before != after);
        if (difference) {
            before.replace(difference->range.lower, difference->range.length(), difference->replacement);
            ASSERT_EQ(before, after);
        }
    }
}
