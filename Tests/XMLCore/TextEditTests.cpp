#include "TextEdit.h"

#include "Random.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <unordered_set>

namespace {

using Edits = std::vector<TextEdit>;

constexpr char32_t alphabet[] = {U'a', U'b', U'<', U'\n', 0x1F600, 0xD83D};

/// Up to seven edits of a text of `length` units, in ascending order. They do not overlap and start at
/// different offsets, but may touch.
Edits randomEdits(Random& random, std::size_t length) {
    Edits edits;
    for (std::size_t at = 0; edits.size() < 7;) {
        const std::size_t lower = at + random.below(6);
        const std::size_t upper = lower + random.below(4);
        if (upper > length) {
            break;
        }
        edits.push_back({SourceRange(static_cast<std::int64_t>(lower), static_cast<std::int64_t>(upper)),
                         random.text(alphabet, 3)});
        at = std::max(upper, lower + 1);
    }
    return edits;
}

void shuffle(Random& random, Edits& edits) {
    for (std::size_t left = edits.size(); left > 1; --left) {
        std::swap(edits[left - 1], edits[random.below(left)]);
    }
}

/// The edits that reverse `edits`, which are in ascending order. They are in the coordinates of the text
/// after `edits`.
Edits inverse(const Edits& edits, std::u16string_view before) {
    Edits back;
    std::int64_t shift = 0;
    for (const TextEdit& edit : edits) {
        const auto inserted = static_cast<std::int64_t>(edit.replacement.size());
        back.push_back({SourceRange::at(edit.range.lower + shift, inserted),
                        std::u16string(before.substr(edit.range.lower, edit.range.length()))});
        shift += edit.delta();
    }
    return back;
}

} // namespace

TEST(TextEdit, AppliesFromTheEnd) {
    const Edits edits = {TextEdit::insert(u"x", 2), TextEdit::deleteRange({0, 1})};
    EXPECT_EQ(TextEdit::apply(edits, u"abc"), u"bxc");
}

TEST(TextEdit, MapsOffsetsThroughEdits) {
    const Edits edits = {TextEdit::insert(u"x", 2), TextEdit::deleteRange({0, 1})};
    EXPECT_EQ(TextEdit::map(3, edits), 3);
    EXPECT_EQ(TextEdit::map(2, edits), 1);
    EXPECT_EQ(TextEdit::map(1, edits), 0);
    EXPECT_EQ(TextEdit::map(0, edits), 0);
    const Edits reversed(edits.rbegin(), edits.rend());
    for (Offset offset = 0; offset < 5; ++offset) {
        EXPECT_EQ(TextEdit::map(offset, reversed), TextEdit::map(offset, edits));
    }
}

TEST(TextEdit, LeavesOffsetsInsideAnEditInPlace) {
    const Edits edits = {{{2, 6}, u"longer than before"}};
    EXPECT_EQ(TextEdit::map(1, edits), 1);
    EXPECT_EQ(TextEdit::map(2, edits), 2);
    EXPECT_EQ(TextEdit::map(3, edits), 3);
    EXPECT_EQ(TextEdit::map(5, edits), 5);
    EXPECT_EQ(TextEdit::map(6, edits), 20);
    EXPECT_EQ(TextEdit::map(4294967295, edits), 4294967309);
    EXPECT_EQ(TextEdit::map(5, {}), 5);
}

TEST(TextEdit, MakesInsertionsAndDeletions) {
    EXPECT_EQ(TextEdit::insert(u"x", 2), (TextEdit{{2, 2}, u"x"}));
    EXPECT_EQ(TextEdit::deleteRange({1, 3}), (TextEdit{{1, 3}, u""}));
}

TEST(TextEdit, KnowsWhatItAddsToTheLength) {
    EXPECT_EQ(TextEdit::insert(u"\U0001F600", 2).delta(), 2);
    EXPECT_EQ(TextEdit::deleteRange({1, 3}).delta(), -2);
    EXPECT_EQ((TextEdit{{1, 3}, u"ab"}).delta(), 0);
    EXPECT_EQ(TextEdit::deleteRange({0, 4294967295}).delta(), -4294967295);
}

TEST(TextEdit, OrdersEditsFromTheHighestDown) {
    const TextEdit early{{0, 1}, u"a"};
    const TextEdit insertion{{2, 2}, u"b"};
    const TextEdit replacement{{2, 4}, u"c"};
    const TextEdit late{{5, 6}, u"d"};
    const Edits expected = {late, replacement, insertion, early};
    Edits edits = {early, insertion, replacement, late};
    const auto isBefore = [](const TextEdit& first, const TextEdit& second) {
        return first.replacement < second.replacement;
    };
    do {
        EXPECT_EQ(TextEdit::applicationOrder(edits), expected);
    } while (std::ranges::next_permutation(edits, isBefore).found);
    EXPECT_EQ(TextEdit::applicationOrder({}), Edits());
}

TEST(TextEdit, AppliesToWhatItIsGiven) {
    struct Row {
        Edits edits;
        std::u16string text;
        std::u16string expected;
    };
    const Row rows[] = {
        {{}, u"abc", u"abc"},
        {{}, u"", u""},
        {{TextEdit::insert(u"x", 0)}, u"", u"x"},
        {{TextEdit::insert(u"x", 3)}, u"abc", u"abcx"},
        {{TextEdit::deleteRange({0, 3})}, u"abc", u""},
        {{{{0, 1}, u"x"}, {{1, 2}, u"y"}, {{2, 3}, u"z"}}, u"abc", u"xyz"},
        // An insertion at the start of a replacement comes before it.
        {{{{1, 2}, u"y"}, TextEdit::insert(u"x", 1)}, u"abc", u"axyc"},
        // Of two insertions at one offset the first is applied first.
        {{TextEdit::insert(u"x", 1), TextEdit::insert(u"y", 1)}, u"ab", u"ayxb"},
        {{{{0, 1}, u""}, TextEdit::insert(u"x", 1)}, u"ab", u"xb"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(TextEdit::apply(row.edits, row.text), row.expected);
    }
}

TEST(TextEdit, AppliesInAnyOrderAsOneByOneFromTheEnd) {
    Random random;
    for (int round = 0; round < 2000; ++round) {
        const std::u16string text = random.text(alphabet, 40);
        Edits edits = randomEdits(random, text.size());
        std::u16string expected = text;
        for (auto edit = edits.rbegin(); edit != edits.rend(); ++edit) {
            expected.replace(edit->range.lower, edit->range.length(), edit->replacement);
        }
        shuffle(random, edits);
        ASSERT_EQ(TextEdit::apply(edits, text), expected) << ::testing::PrintToString(text);
    }
}

TEST(TextEdit, IsUndoneByItsInverse) {
    Random random;
    for (int round = 0; round < 2000; ++round) {
        const std::u16string text = random.text(alphabet, 40);
        const Edits edits = randomEdits(random, text.size());
        // Deletions that touch become insertions at one offset. To restore the text, the last must be given
        // first.
        Edits back = inverse(edits, text);
        std::ranges::reverse(back);
        ASSERT_EQ(TextEdit::apply(back, TextEdit::apply(edits, text)), text)
            << ::testing::PrintToString(text);
    }
}

TEST(TextEdit, MapsKeptUnitsToWhereTheyEndUp) {
    Random random;
    for (int round = 0; round < 2000; ++round) {
        const std::u16string text = random.text(alphabet, 40);
        Edits edits = randomEdits(random, text.size());
        shuffle(random, edits);
        const std::u16string edited = TextEdit::apply(edits, text);
        for (Offset offset = 0; offset < text.size(); ++offset) {
            const bool isKept = std::ranges::none_of(edits, [offset](const TextEdit& edit) {
                return edit.range.contains(offset) || edit.range.lower == offset;
            });
            if (isKept) {
                ASSERT_EQ(edited.at(static_cast<std::size_t>(TextEdit::map(offset, edits))), text[offset]);
            }
        }
    }
}

TEST(TextEdit, ComparesAndHashesByRangeAndReplacement) {
    const std::unordered_set<TextEdit> edits = {
        {{1, 2}, u"a"}, {{1, 2}, u"a"}, {{1, 2}, u"b"}, {{1, 3}, u"a"}};
    EXPECT_EQ(edits.size(), 3U);
}

TEST(TextEditDeathTest, StopsAtEditsThatOverlap) {
    const Edits overlapping = {{{0, 3}, u"x"}, {{2, 4}, u"y"}};
    EXPECT_DEATH(TextEdit::apply(overlapping, u"abcdef"), "do not overlap");
    const Edits same = {{{1, 2}, u"x"}, {{1, 2}, u"x"}};
    EXPECT_DEATH(TextEdit::apply(same, u"abcdef"), "do not overlap");
    const Edits inside = {{{1, 4}, u"x"}, TextEdit::insert(u"y", 2)};
    EXPECT_DEATH(TextEdit::apply(inside, u"abcdef"), "do not overlap");
}

TEST(TextEditDeathTest, StopsAtEditsBeyondTheText) {
    const Edits beyond = {{{2, 4}, u"x"}};
    EXPECT_DEATH(TextEdit::apply(beyond, u"abc"), "inside the text");
    const Edits behind = {TextEdit::insert(u"x", 4)};
    EXPECT_DEATH(TextEdit::apply(behind, u"abc"), "inside the text");
}
