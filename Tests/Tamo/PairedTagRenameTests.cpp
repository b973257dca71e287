#include "PairedTagRename.h"

#include "MarkedText.h"
#include "RandomDocument.h"
#include "TreeParser.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <utility>

namespace {

struct Row {
    std::u16string_view before;      ///< The range to replace marked.
    std::u16string_view replacement; ///< What is typed.
    std::u16string_view expected;    ///< With the caret marked; empty where the change does not count.
};

std::u16string renamed(const MarkedText& before, std::u16string_view replacement) {
    const auto rename = PairedTagRename::rename(before.text, before.selection, replacement);
    return rename ? marked(before.text, rename->edits, SourceRange::empty(rename->caret)) : u"";
}

bool mayApply(const MarkedText& before, std::u16string_view replacement) {
    return PairedTagRename::mayApply(Rope(before.text), before.selection, replacement);
}

void check(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        const MarkedText before(row.before);
        EXPECT_EQ(renamed(before, row.replacement), row.expected) << ::testing::PrintToString(row.before);
        EXPECT_TRUE(row.expected.empty() || mayApply(before, row.replacement))
            << ::testing::PrintToString(row.before);
    }
}

} // namespace

TEST(PairedTagRename, ChangesTheEndTagWithTheStartTag) {
    check({
        {u"<it|em>x</item>", u"X", u"<itX|em>x</itXem>"},
        {u"<|item>x</item>", u"X", u"<X|item>x</Xitem>"},
        {u"<item|>x</item>", u"X", u"<itemX|>x</itemX>"},
        {u"<item| a=\"1\">x</item>", u"X", u"<itemX| a=\"1\">x</itemX>"},
        {u"<it|e|m>x</item>", u"", u"<it|m>x</itm>"},
        {u"<|item|>x</item>", u"p", u"<p|>x</p>"},
        {u"<|a|>x</a>", u"", u"<|>x</>"},
        {u"<a|><a></a></a>", u"b", u"<ab|><a></a></ab>"},
        {u"<a><a|></a></a>", u"b", u"<a><ab|></ab></a>"},
        {u"<a|><!-- </a> --><![CDATA[</a>]]></a>", u"b", u"<ab|><!-- </a> --><![CDATA[</a>]]></ab>"},
        {u"<\u00E1|>x</\u00E1>", u"\U0001F600", u"<\u00E1\U0001F600|>x</\u00E1\U0001F600>"},
        {u"<a|></a \n>", u".", u"<a.|></a. \n>"},
    });
}

TEST(PairedTagRename, ChangesTheStartTagWithTheEndTag) {
    check({
        {u"<item>x</it|em>", u"X", u"<itXem>x</itX|em>"},
        {u"<item>x</|item>", u"X", u"<Xitem>x</X|item>"},
        {u"<item>x</item|>", u"X", u"<itemX>x</itemX|>"},
        {u"<item a=\"1\">x</i|te|m>", u"", u"<im a=\"1\">x</i|m>"},
        {u"<a><b></b></a|>", u"b", u"<ab><b></b></ab|>"},
        {u"<a>x</|a|>", u"long", u"<long>x</long|>"},
    });
}

TEST(PairedTagRename, LeavesNamesWithoutASamePartnerAlone) {
    check({
        {u"<a|>", u"b", u""},        // No end tag.
        {u"<a|/>", u"b", u""},       // Closes itself.
        {u"</a|>", u"b", u""},       // No start tag.
        {u"<a|></b>", u"b", u""},    // Another name, so nobody meant them to be the same.
        {u"<a></b|>", u"b", u""},    // The same from the other end.
        {u"<a><b|></a>", u"c", u""}, // What closes is not this element.
        {u"<a|></A>", u"b", u""},    // Names differ in case.
        {u"<a|", u"b", u""},         // Not even a tag yet.
        {u"<a|></a", u"b", u""},     // An end tag that is being erased or typed.
        {u"<a></a|", u"b", u""},
        {u"<a></a|<b>", u"b", u""},
        {u"<a></a| b>", u"b", u""},
        {u"<|></>", u"b", u""}, // No name.
        {u"<a></a|></a>", u"b", u"<ab></ab|></a>"},
    });
}

TEST(PairedTagRename, LeavesEverythingElseAlone) {
    check({
        {u"<a| b=\"1\">x</a>", u" ", u""}, // A blank ends the name.
        {u"<a|>x</a>", u"b c", u""},
        {u"<a|>x</a>", u"/", u""},
        {u"<a|>x</a>", u">", u""},
        {u"<a|>x</a>", u"=", u""},
        {u"<a |b=\"1\">x</a>", u"c", u""}, // An attribute.
        {u"<a b=\"|1\">x</a>", u"c", u""},
        {u"<a>x|</a>", u"c", u""}, // Text.
        {u"<|a>|x</a>", u"", u""}, // Reaches out of the name.
        {u"|<a|>x</a>", u"", u""},
        {u"<a>x<|/|a>", u"", u""},
        {u"<a>x|</a|>", u"", u""},
        {u"<!-- <a|>x</a> -->", u"b", u""}, // Only looks like tags.
        {u"<![CDATA[<a|>x</a>]]>", u"b", u""},
        {u"<?p <a|>x</a> ?>", u"b", u""},
        {u"<!-- <a>x</a|> -->", u"b", u""},
        {u"<?a|?><a></a>", u"b", u""},
        {u"<!a|><a></a>", u"b", u""},
        {u"<1|></1>", u"b", u""}, // No name starts like that.
        {u"|", u"a", u""},
        {u"a|", u"a", u""},
    });
}

TEST(PairedTagRename, LeavesVeryLongNamesAlone) {
    const auto element = [](std::size_t length) {
        const std::u16string name(length, u'n');
        return u"<" + name + u"></" + name + u">";
    };
    for (const Offset at : {Offset{1}, Offset{500}, PairedTagRename::maximumName + 1}) {
        const SourceText longest(element(PairedTagRename::maximumName));
        EXPECT_TRUE(PairedTagRename::mayApply(Rope(longest), {at, at}, u"x")) << at;
        EXPECT_TRUE(PairedTagRename::rename(longest, {at, at}, u"x")) << at;
        const SourceText tooLong(element(PairedTagRename::maximumName + 1));
        EXPECT_FALSE(PairedTagRename::rename(tooLong, {at, at}, u"x")) << at;
    }
}

TEST(PairedTagRename, SeesWithoutTheWholeTextThatNoTagIsNear) {
    const std::pair<std::u16string_view, std::u16string_view> rows[] = {
        {u"<a>wo|rd</a>", u"x"}, {u"<a>|</a>", u"x"},  {u"<a |b></a>", u"x"}, {u"<a b=\"|\"></a>", u"x"},
        {u"<a>|<b/></a>", u"x"}, {u"<a|></a>", u" "},  {u"|", u"x"},          {u"<|", u"x"},
        {u"</|", u"x"},          {u"<|a></a|>", u"x"}, {u"<1|>", u"x"},       {u"<|-a>", u"x"},
    };
    for (const auto& [before, replacement] : rows) {
        EXPECT_FALSE(mayApply(MarkedText(before), replacement)) << ::testing::PrintToString(before);
    }
    const std::u16string word(100'000, u'w');
    EXPECT_FALSE(PairedTagRename::mayApply(Rope(u"<a>" + word + u"</a>"), {50'000, 50'000}, u"x"));
}

// In a well-formed document every name in a tag of an element that has two takes the other along, wherever in
// it something is typed, and nothing else does.
TEST(PairedTagRename, FollowsTheTreeOfAnyWellFormedDocument) {
    Random random;
    for (int round = 0; round < 300; ++round) {
        const SourceText text(RandomDocument::wellFormed(random));
        const DocumentTree tree = TreeParser::parse(text);
        ASSERT_TRUE(tree.diagnostics.empty());
        std::map<Offset, std::pair<SourceRange, SourceRange>> partners; // By each offset in a name.
        for (const TreeNode& node : tree.nodes) {
            if (!node.isElement() || node.flags.contains(TreeNode::selfClosing)) {
                continue;
            }
            const SourceRange close = SourceRange::at(node.contentRange.upper + 2, node.nameRange.length());
            for (Offset at = 0; at <= node.nameRange.length(); ++at) {
                partners[node.nameRange.lower + at] = {node.nameRange, close};
                partners[close.lower + at] = {close, node.nameRange};
            }
        }
        for (Offset at = 0; at <= text.count(); ++at) {
            const auto rename = PairedTagRename::rename(text, {at, at}, u"x");
            const auto found = partners.find(at);
            ASSERT_EQ(rename.has_value(), found != partners.end()) << at;
            if (rename) {
                const auto& [edited, partner] = found->second;
                ASSERT_TRUE(PairedTagRename::mayApply(Rope(text), {at, at}, u"x"));
                ASSERT_EQ(rename->edits.size(), 2U);
                const Offset there = partner.lower + (at - edited.lower);
                const auto [first, second] = std::minmax(at, there);
                ASSERT_EQ(rename->edits[0], TextEdit::insert(u"x", first));
                ASSERT_EQ(rename->edits[1], TextEdit::insert(u"x", second));
                ASSERT_EQ(rename->caret, at + (there < at ? 2 : 1));
            }
        }
    }
}
