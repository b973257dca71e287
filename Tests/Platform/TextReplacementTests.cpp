#include "TextReplacement.h"

#include "../XMLCore/Random.h"

#include <gtest/gtest.h>

namespace {

using enum SearchPattern::Syntax;

TextReplacement made(const SearchPattern& pattern, const Rope& text, std::u16string_view with,
                     Offset caret = 0) {
    SearchedText searched(text);
    return TextReplacement::make(*TextSearch::make(pattern), searched, text.fullRange(),
                                 {with, pattern.syntax}, caret, {});
}

std::u16string result(const TextReplacement& replacement, const Rope& text) {
    const Rope replaced = text.replaced(replacement.range, replacement.text);
    return replaced.units(replaced.fullRange());
}

} // namespace

TEST(TextReplacement, ReplacesAllMatches) {
    const Rope text(u"uno dos uno tres Uno.");
    const TextReplacement replacement = made({.text = u"uno"}, text, u"1");
    EXPECT_EQ(replacement.count, 3U);
    EXPECT_EQ(replacement.range, SourceRange(0, 20));
    EXPECT_EQ(result(replacement, text), u"1 dos 1 tres 1.");
}

TEST(TextReplacement, FillsGroupsIn) {
    const Rope text(u"ana=1, eva=22");
    EXPECT_EQ(result(made({.text = u"(\\w+)=(\\d+)", .syntax = regularExpression}, text, u"\\2:\\1"), text),
              u"1:ana, 22:eva");
    EXPECT_EQ(result(made({.text = u"^", .syntax = regularExpression}, Rope(u"a\nb"), u"- "), Rope(u"a\nb")),
              u"- a\n- b");
}

TEST(TextReplacement, ReplacesNothingWithoutMatches) {
    const TextReplacement replacement = made({.text = u"x"}, Rope(u"uno"), u"y", 2);
    EXPECT_EQ(replacement.count, 0U);
    EXPECT_TRUE(replacement.range.isEmpty());
    EXPECT_TRUE(replacement.text.isEmpty());
    EXPECT_EQ(replacement.caret, 2U);
}

TEST(TextReplacement, FollowsTheCaret) {
    const Rope text(u"ab-ab-ab");
    // Inside a match it goes to the end of what takes its place.
    const Offset expected[] = {0, 4, 4, 5, 9, 9, 10, 14, 14};
    for (Offset caret = 0; caret <= text.size(); ++caret) {
        EXPECT_EQ(made({.text = u"ab"}, text, u"1234", caret).caret, expected[caret]) << caret;
    }
}

TEST(TextReplacement, SharesTheLongStretchesBetween) {
    Random random;
    constexpr char32_t alphabet[] = {U'a', U'b', 0xD83D, U'\r', U'\n', 0x1F600};
    for (int round = 0; round < 30; ++round) {
        std::u16string units;
        std::u16string expected;
        for (std::size_t part = 0; part < 40; ++part) {
            const std::u16string stretch = random.below(4) == 0
                                               ? std::u16string(5000 + random.below(5000), u'z')
                                               : random.text(alphabet, 300);
            const std::u16string with(random.below(2) == 0 ? 0 : 1, u'#');
            units += stretch + with;
            expected += stretch + (with.empty() ? u"" : u"<#>");
        }
        const Rope text(units);
        const TextReplacement replacement = made({.text = u"#", .syntax = regularExpression}, text, u"<\\0>");
        ASSERT_TRUE(result(replacement, text) == expected);
    }
}

TEST(TextReplacement, GivesUpTextsThatWouldBeTooLong) {
    SearchedText text(Rope(u"--aaa--"));
    const TextSearch search = *TextSearch::make({.text = u"a"});
    const ReplacementTemplate with(u"bbbb", plain);
    EXPECT_EQ(TextReplacement::make(search, text, text.rope().fullRange(), with, 0, {}, 16).count, 3U);
    const TextReplacement replacement =
        TextReplacement::make(search, text, text.rope().fullRange(), with, 0, {}, 15);
    EXPECT_TRUE(replacement.isTooLong);
    EXPECT_NE(replacement.reason, SearchEnd::Reason::done);
    EXPECT_TRUE(replacement.text.isEmpty());
}

TEST(TextReplacement, ReplacesOneMatchWhileItIsOne) {
    SearchedText text(Rope(u"uno dos"));
    const TextSearch search = *TextSearch::make({.text = u"\\w(\\w+)", .syntax = regularExpression});
    const ReplacementTemplate with(u"\\1", regularExpression);
    const TextReplacement replacement = TextReplacement::ofMatch({4, 7}, search, text, with, {});
    EXPECT_EQ(replacement.count, 1U);
    EXPECT_EQ(replacement.caret, 6U);
    EXPECT_EQ(result(replacement, text.rope()), u"uno os");
    EXPECT_EQ(TextReplacement::ofMatch({4, 6}, search, text, with, {}).count, 0U);
}
