#include "LineBlock.h"

#include "MarkedText.h"

#include <gtest/gtest.h>

namespace {

struct Row {
    std::u16string_view before;
    std::u16string_view expected;
};

} // namespace

TEST(LineBlock, CoversTheLinesOfTheSelection) {
    for (const Row& row : {
             Row{u"|", u"|"},
             Row{u"a|b", u"|ab|"},
             Row{u"a\n|\nb", u"a\n|\nb"},
             Row{u"a\nb|\nc", u"a\n|b|\nc"},
             Row{u"a|\nb\n|c", u"|a\nb|\nc"},
             Row{u"a|\nb\nc|d", u"|a\nb\ncd|"},
             Row{u"a\r\nb|b\r\nc", u"a\r\n|bb|\r\nc"},
             Row{u"a\nb\n|", u"a\nb\n|"},
             Row{u"a\r|", u"|a|\r"},
         }) {
        const MarkedText state(row.before);
        EXPECT_EQ(marked(state.text.string(), LineBlock::lines(state.text, state.selection)), row.expected)
            << ::testing::PrintToString(row.before);
    }
}

TEST(LineBlock, EditsEachChangedLineOnce) {
    const MarkedText state(u"|a\n\n  b|");
    const auto indented = LineBlock::indent(state.text, state.selection, u"\t");
    ASSERT_TRUE(indented);
    EXPECT_EQ(*indented,
              (LineBlock::Change{{TextEdit::insert(u"\t", 0), TextEdit::insert(u"\t", 3)}, {1, 8}}));
    const auto outdented = LineBlock::outdent(state.text, state.selection, u"    ");
    ASSERT_TRUE(outdented);
    EXPECT_EQ(*outdented, (LineBlock::Change{{TextEdit::deleteRange({3, 5})}, {0, 4}}));
}

TEST(LineBlock, LeavesTheStartWhereTheFirstChangedLineIsALaterOne) {
    const MarkedText state(u"ab|c\n  d|");
    const auto outdented = LineBlock::outdent(state.text, state.selection, u"  ");
    ASSERT_TRUE(outdented);
    EXPECT_EQ(outdented->selection, SourceRange(2, 5));
}
