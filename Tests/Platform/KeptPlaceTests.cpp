#include "KeptPlace.h"

#include "Random.h"
#include "TextDifference.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace {

/// The offset of `|` in `marked`, which is taken out.
Offset taken(std::u16string& marked) {
    const std::size_t at = marked.find(u'|');
    marked.erase(at, 1);
    return static_cast<Offset>(at);
}

Offset keptPlace(Offset at, const std::u16string& before, const TextEdit& edit) {
    return ::keptPlace(at, Rope(before), edit.range, Rope(edit.replacement));
}

/// `after` with a `|` where that of `before` is found.
std::u16string kept(std::u16string before, std::u16string after) {
    const Offset at = taken(before);
    const auto difference = textDifference(Rope(before), Rope(after));
    return after.insert(difference ? keptPlace(at, before, *difference) : at, 1, u'|');
}

TEST(KeptPlace, StaysWithWhatIsAroundIt) {
    struct Row {
        std::u16string before, after;
    };
    for (const Row& row : {
             // Before, behind and outside of the change.
             Row{u"a|bcd", u"a|bxd"},
             Row{u"abc|d", u"axxc|d"},
             Row{u"abc|", u"abc|"},
             // White space only.
             Row{u"<a><b>x|</b></a>", u"<a>\n  <b>x|</b>\n</a>\n"},
             Row{u"<a>\n  |<b/>\n  <c/>\n</a>", u"<a>|<b/><c/></a>"},
             Row{u"<a><b>|<c/></b></a>", u"<a>\n <b>|\n  <c/>\n </b>\n</a>"},
             // All that stands before it, or all that follows.
             Row{u"<a> <b>|x y</b>", u"<a>\n<b>|z</b>"},
             Row{u"1 <a> <b>|</b> </c>", u"2 <a><b>|</b></c>"},
             // Its line, between other changes.
             Row{u"one\ntwo\nth|ree\nfour\n", u"1\n2\n2.5\nth|ree\n4\n"},
             Row{u"x1\n<i/>\ny1\n<|i/>\nz1\n", u"x2\n<i/>\ny2\n<|i/>\nz2\n"},
             // Nothing like it.
             Row{u"1abc|d2", u"3xyz|w4"},
             Row{u"1abcdef|g2", u"34|"},
         }) {
        std::u16string after = row.after;
        taken(after);
        EXPECT_EQ(kept(row.before, after), row.after);
    }
}

TEST(KeptPlace, LiesInsideTheText) {
    constexpr std::array<char32_t, 4> alphabet = {U'a', U'b', U' ', U'\n'};
    Random random;
    for (int round = 0; round < 5'000; ++round) {
        const std::u16string before = random.text(alphabet, 20);
        const std::u16string after = random.text(alphabet, 20);
        const auto at = static_cast<Offset>(random.below(before.size() + 1));
        if (const auto difference = textDifference(Rope(before), Rope(after))) {
            EXPECT_LE(keptPlace(at, before, *difference), after.size());
        }
    }
}

TEST(KeptPlace, FindsALineFarFromTheStart) {
    std::u16string before = u"1\n";
    std::u16string after = u"2\nmore\n";
    for (int line = 0; line < 60'000; ++line) {
        const std::string number = std::to_string(line);
        const std::u16string text = u"line " + std::u16string(number.begin(), number.end()) + u" of it\n";
        before += text;
        after += text;
    }
    const std::u16string_view wanted = u"line 50000 of";
    const auto at = static_cast<Offset>(before.find(wanted));
    const auto difference = textDifference(Rope(before + u"1"), Rope(after + u"2"));
    ASSERT_TRUE(difference);
    EXPECT_EQ(keptPlace(at, before + u"1", *difference), after.find(wanted));
}

} // namespace
