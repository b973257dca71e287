#include "HiddenOpeners.h"

#include "MarkedText.h"
#include "Repeated.h"
#include "TagMatcher.h"
#include "TreeParser.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

using TagMatcher::Context;

struct Row {
    std::u16string_view marked;
    Context byText; ///< The context without a tree.
    Context byTree;
};

void check(const std::vector<Row>& rows) {
    for (const auto& [marked, byText, byTree] : rows) {
        const MarkedText input(marked);
        const DocumentTree tree = TreeParser::parse(input.text);
        const HiddenOpeners::Knowledge known{tree, 0, input.text.count()};
        const SourceText masked = HiddenOpeners::masked(input.text, input.caret(), known);
        EXPECT_EQ(masked.count(), input.text.count());
        EXPECT_EQ(TagMatcher::context(input.caret(), input.text), byText) << ::testing::PrintToString(marked);
        EXPECT_EQ(TagMatcher::context(input.caret(), masked), byTree) << ::testing::PrintToString(marked);
    }
}

} // namespace

TEST(HiddenOpeners, MisleadNoLookBack) {
    check({
        {u"<![CDATA[<!--]]>|", Context::comment, Context::content},
        {u"<!-- <? --><a|", Context::instruction, Context::tag},
        {u"<!-- <? --><a b='|", Context::instruction, Context::attributeValue},
        {u"<?x <![CDATA[ ?>|", Context::cdata, Context::content},
        {u"<![CDATA[<!--]]><!-- <? --><?x <![CDATA[?>|", Context::cdata, Context::content},
        {u"<![CDATA[<!-- <!-- <!-- <? ]]>|", Context::comment, Context::content},
        {u"<!DOCTYPE a [<!-- <? -->]>|", Context::instruction, Context::content},
    });
}

TEST(HiddenOpeners, StayWhereTheCaretStandsInsideToo) {
    check({
        {u"<![CDATA[<!--|]]>", Context::comment, Context::comment},
        {u"<!DOCTYPE a [<!-- it's |-->]>", Context::comment, Context::comment},
        {u"<!DOCTYPE a [<!-- it's |", Context::comment, Context::comment},
        {u"<!-- <? |", Context::comment, Context::comment},
    });
}

TEST(HiddenOpeners, LeaveATextAloneThatMisleadsNowhere) {
    const SourceText text(u"<a><!-- <b> --><![CDATA[</a>]]><?x y?></a>");
    const DocumentTree tree = TreeParser::parse(text);
    const SourceText masked = HiddenOpeners::masked(text, text.count(), {tree, 0, text.count()});
    EXPECT_EQ(masked.storage(), text.storage());
}

TEST(HiddenOpeners, AreKnownAsFarAsTheTreeSpeaksOfTheText) {
    const SourceText before(u"<a><![CDATA[<!--]]></a>");
    const SourceText now(u"<a><![CDATA[<!--]]><b</a>");
    const DocumentTree tree = TreeParser::parse(before);
    const Offset caret = 21;
    EXPECT_EQ(TagMatcher::context(caret, HiddenOpeners::masked(now, caret, {tree, 0, 19})), Context::tag);
    EXPECT_EQ(TagMatcher::context(caret, HiddenOpeners::masked(now, caret, {tree, 0, 18})), Context::comment);
}

TEST(HiddenOpeners, AreFoundInAPartOfTheText) {
    const SourceText whole(u"<a>text<![CDATA[<!--]]>");
    const DocumentTree tree = TreeParser::parse(whole);
    const SourceText part(whole.units({5, whole.count()}));
    const SourceText masked = HiddenOpeners::masked(part, part.count(), {tree, 5, whole.count()});
    EXPECT_EQ(TagMatcher::context(part.count(), masked), Context::content);
}

TEST(HiddenOpeners, EndOnHostileTexts) {
    for (const std::u16string_view piece : {u"<!--", u"<?", u"<![CDATA[", u"<![CDATA[<!--]]>", u"<!"}) {
        const SourceText text(u"<a><![CDATA[" + repeated(piece, 300'000) + u"]]><b");
        const DocumentTree tree = TreeParser::parse(text);
        const SourceText masked = HiddenOpeners::masked(text, text.count(), {tree, 0, text.count()});
        EXPECT_EQ(TagMatcher::context(text.count(), masked), Context::tag) << ::testing::PrintToString(piece);
    }
}
