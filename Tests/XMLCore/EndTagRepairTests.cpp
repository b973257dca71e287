#include "EndTagRepair.h"

#include "TreeParser.h"

#include <gtest/gtest.h>

namespace {

/// `text` after the first renaming of an end tag that is possible.
std::u16string renamed(std::u16string_view text) {
    const DocumentTree tree = TreeParser::parse(SourceText(text));
    for (std::size_t index = 0; index < tree.diagnostics.size(); ++index) {
        if (const auto renaming = EndTagRepair(tree).renaming(index)) {
            return TextEdit::apply({&renaming->edit, 1}, text);
        }
    }
    return std::u16string(text);
}

TEST(EndTagRepair, RenamesASlip) {
    struct Row {
        std::u16string_view text, after;
    };
    for (const Row& row : {
             Row{u"<r><item>x</itm></r>", u"<r><item>x</item></r>"},
             Row{u"<r><item>x</Item ></r>", u"<r><item>x</item ></r>"},
             Row{u"<r><item>x</></r>", u"<r><item>x</item></r>"},
             Row{u"<r><item>x</ item></r>", u"<r><item>x</item></r>"},
             Row{u"<item>x</itme>\n", u"<item>x</item>\n"},
             Row{u"<div><div><div>x</dib></div></div>", u"<div><div><div>x</div></div></div>"},
         }) {
        EXPECT_EQ(renamed(row.text), row.after);
    }
}

TEST(EndTagRepair, LeavesAloneWhatIsNone) {
    for (const std::u16string_view text : {
             u"<r><a>x</b></r>",                // The names are not similar.
             u"<r><item>x</itm></item></r>",    // The element has an end tag.
             u"<items><b/></item><c/></items>", // The element would end too early.
             u"<items><b/></item><c/>",         // The root would end too early.
             u"<r><item>x</itm y></r>",         // The tag contains more than a name.
             u"<r><item>x</itm",                // The tag has no end.
             u"</itm><item>",                   // The tag is outside all elements.
             u"<r></item></r>",
         }) {
        EXPECT_EQ(renamed(text), text);
    }
}

TEST(EndTagRepair, GivesAnElementOneEndTag) {
    const std::u16string_view text = u"<r><item></itm></itm></r>";
    const DocumentTree tree = TreeParser::parse(SourceText(text));
    ASSERT_EQ(tree.diagnostics.size(), 3U);
    EndTagRepair repair(tree);
    const auto first = repair.renaming(1);
    ASSERT_TRUE(first);
    EXPECT_TRUE(repair.renaming(2));
    repair.claim(first->unclosed);
    EXPECT_TRUE(repair.isClaimed(4));
    EXPECT_FALSE(repair.renaming(2));
}

} // namespace
