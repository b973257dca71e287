#include "EditComposition.h"

#include "Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace {

TEST(EditComposition, TellsNothingOfWhatDidNotChange) {
    EXPECT_TRUE(EditComposition(0).edits().empty());
    EditComposition changes(3);
    EXPECT_TRUE(changes.edits().empty());
    changes.add({});
    EXPECT_TRUE(changes.edits().empty());
}

TEST(EditComposition, TellsLaterEditsInTheFirstText) {
    EditComposition changes(6);
    changes.add(std::array{TextEdit{{1, 2}, u"xyz"}, TextEdit::insert(u"!", 6)});
    changes.add(std::array{TextEdit{{2, 3}, u""}, TextEdit{{5, 6}, u"?"}});
    const std::vector<TextEdit> expected{{{1, 2}, u"xz"}, {{3, 4}, u"?"}, {{6, 6}, u"!"}};
    EXPECT_EQ(changes.edits(), expected);
}

TEST(EditComposition, JoinsWhatTouches) {
    EditComposition changes(4);
    changes.add(std::array{TextEdit::insert(u"b", 2), TextEdit::insert(u"a", 2), TextEdit{{2, 3}, u""}});
    changes.add(std::array{TextEdit{{1, 2}, u""}});
    const std::vector<TextEdit> expected{{{1, 3}, u"ab"}};
    EXPECT_EQ(changes.edits(), expected);
}

TEST(EditComposition, DoesWhatTheEditsDoOneAfterTheOther) {
    constexpr std::array<char32_t, 4> alphabet = {U'a', U'b', U'c', U'd'};
    Random random;
    for (int round = 0; round < 2'000; ++round) {
        const std::u16string text = random.text(alphabet, 30);
        std::u16string expected = text;
        EditComposition changes(static_cast<Offset>(text.size()));
        for (std::size_t steps = random.below(5); steps > 0; --steps) {
            std::vector<TextEdit> edits;
            for (std::size_t at = random.below(6); at <= expected.size(); at += 1 + random.below(8)) {
                const std::size_t end = std::min(expected.size(), at + random.below(3));
                edits.push_back({{std::int64_t(at), std::int64_t(end)}, random.text(alphabet, 2)});
                at = end;
            }
            changes.add(edits);
            expected = TextEdit::apply(edits, expected);
        }
        const std::vector<TextEdit> edits = changes.edits();
        EXPECT_EQ(TextEdit::apply(edits, text), expected);
        for (std::size_t at = 1; at < edits.size(); ++at) {
            EXPECT_LT(edits[at - 1].range.upper, edits[at].range.lower);
        }
    }
}

} // namespace
