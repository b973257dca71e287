#include "EditedPieces.h"

#include "Random.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Piece = EditedPieces::Piece;

std::vector<Piece> pieces(const EditedPieces& edits) {
    return {edits.pieces().begin(), edits.pieces().end()};
}

} // namespace

TEST(EditedPieces, KeepEditsApartThatAreApart) {
    EditedPieces edits;
    EXPECT_TRUE(edits.isEmpty());
    edits.add({10, 12}, 5);
    edits.add({20, 20}, 4);
    edits.add({2, 4}, 0);
    EXPECT_EQ(pieces(edits),
              (std::vector<Piece>{{{2, 4}, {2, 2}}, {{10, 12}, {8, 13}}, {{17, 17}, {18, 22}}}));
    EXPECT_EQ(edits.now(1), 1U);
    EXPECT_EQ(edits.now(2), std::nullopt);
    EXPECT_EQ(edits.now(4), 2U);
    EXPECT_EQ(edits.now(11), std::nullopt);
    EXPECT_EQ(edits.now(12), 13U);
    EXPECT_EQ(edits.now(17), 22U);
    EXPECT_EQ(edits.then(2), 4U);
    EXPECT_EQ(edits.then(8), std::nullopt);
    EXPECT_EQ(edits.then(13), 12U);
    EXPECT_EQ(edits.then(21), std::nullopt);
    EXPECT_EQ(edits.then(22), 17U);
}

TEST(EditedPieces, JoinEditsThatTouch) {
    EditedPieces edits;
    edits.add({5, 5}, 1);
    edits.add({6, 6}, 1);
    edits.add({4, 5}, 0);
    EXPECT_EQ(pieces(edits), (std::vector<Piece>{{{4, 5}, {4, 6}}}));
    edits.add({0, 20}, 3);
    EXPECT_EQ(pieces(edits), (std::vector<Piece>{{{0, 19}, {0, 3}}}));
}

TEST(EditedPieces, KnowWhereEveryUnitWent) {
    Random random;
    for (int round = 0; round < 300; ++round) {
        // Units of then by their numbers, those put in since as -1.
        std::vector<int> text(40);
        for (int at = 0; at < 40; ++at) {
            text[at] = at;
        }
        EditedPieces edits;
        for (int edit = 0; edit < 8; ++edit) {
            const auto lower = random.below(text.size() + 1);
            const auto upper = lower + random.below(std::min<std::size_t>(6, text.size() - lower + 1));
            const auto length = random.below(4);
            text.erase(text.begin() + lower, text.begin() + upper);
            text.insert(text.begin() + lower, length, -1);
            edits.add({std::int64_t(lower), std::int64_t(upper)}, static_cast<Offset>(length));
        }
        for (std::size_t at = 0; at < text.size(); ++at) {
            const auto then = edits.then(static_cast<Offset>(at));
            ASSERT_EQ(then, text[at] < 0 ? std::nullopt : std::optional<Offset>(text[at])) << round;
            if (then) {
                ASSERT_EQ(edits.now(*then), at) << round;
            }
        }
    }
}

TEST(EditedPieces, StayFewAndTrue) {
    EditedPieces edits;
    for (Offset at = 0; at < 3000; ++at) {
        edits.add(SourceRange::at(at * 3, 1), 2);
    }
    EXPECT_LE(edits.pieces().size(), 1000U);
    EXPECT_EQ(edits.now(8000), 11'000U);
    EXPECT_EQ(edits.then(11'000), 8000U);
}

TEST(EditedPieces, AlignWhatReadsTheSameFurtherLeft) {
    const std::u16string then = u"<a><b/></a>";
    const std::u16string now = u"<a><c/><b/></a>";
    EditedPieces put;
    put.add({4, 4}, 4);
    put.align(u'<', then, now);
    EXPECT_EQ(pieces(put), (std::vector<Piece>{{{3, 3}, {3, 7}}}));
    EditedPieces taken;
    taken.add({4, 8}, 0);
    taken.align(u'<', now, then);
    EXPECT_EQ(pieces(taken), (std::vector<Piece>{{{3, 7}, {3, 3}}}));
    EditedPieces typed;
    typed.add({7, 7}, 1);
    typed.align(u'<', u"<a>hola</a>", u"<a>holaa</a>");
    EXPECT_EQ(pieces(typed), (std::vector<Piece>{{{7, 7}, {7, 8}}}));
}
