#include "KeptReferences.h"

#include "Escaping.h"
#include "Random.h"
#include "TreeParser.h"

#include <gtest/gtest.h>

namespace {

using TM = TreeMutation;

std::u16string escapeText(std::u16string_view text) { return Escaping::escapeText(std::u16string(text)); }

/// `raw` after it was made to read `wanted`, with what was written between `[` and `]`; "-" where it is to be
/// written anew.
std::u16string edited(std::u16string_view raw, std::u16string_view wanted) {
    const auto edit = KeptReferences::edit(raw, wanted, escapeText);
    if (!edit) {
        return u"-";
    }
    std::u16string result(raw);
    return result.replace(edit->range.lower, edit->range.length(), u"[" + edit->replacement + u"]");
}

/// The document after `mutation`; "-" when it fails.
std::u16string after(const TM& mutation, std::u16string_view document) {
    const DocumentTree tree = TreeParser::parse(SourceText(document));
    const auto plan = KeptReferences::plan(mutation, tree, IndentStyle());
    return plan ? TextEdit::apply(plan->edits, document) : u"-";
}

} // namespace

TEST(KeptReferences, StayBeforeAndBehindTheChange) {
    struct Row {
        std::u16string raw;
        std::u16string wanted;
        std::u16string expected;
    };
    const Row rows[] = {
        {u"&marca; &amp; &#233;", u"&marca; & é x", u"&marca; &amp; &#233;[ x]"},
        {u"&marca; &amp; &#233;", u"x &marca; & é", u"[x ]&marca; &amp; &#233;"},
        {u"&marca; &amp; &#233;", u"&marca; y é", u"&marca; [y] &#233;"},
        {u"&marca; &amp; &#233;", u"& é", u"[]&amp; &#233;"},
        {u"&lt;b&gt;", u"<b></b>", u"&lt;b&gt;[&lt;/b&gt;]"},
        {u"&#x1F600;&#x1F601;", u"😀😂", u"&#x1F600;[😂]"},
        {u"tres", u"tres & uno", u"tres[ &amp; uno]"},
        {u"&#233;", u"é", u"&#233;[]"},
        {u"", u"", u"[]"},
        {u"&a;", u"", u"[]"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(edited(row.raw, row.wanted), row.expected);
    }
}

TEST(KeptReferences, AreWrittenAnewWhereTheyAreChanged) {
    EXPECT_EQ(edited(u"a &marca; b", u"a &marca2; b"), u"a [&amp;marca2;] b");
    EXPECT_EQ(edited(u"a &marca; b", u"a &marc b"), u"a [&amp;marc] b");
    EXPECT_EQ(edited(u"a & b", u"a &c; b"), u"-") << "no unit joins what stands beside it";
    EXPECT_EQ(edited(u"a & b", u"a &amp; b"), u"-");
    EXPECT_EQ(edited(u"a ]> b", u"a ]]> b"), u"-");
}

TEST(KeptReferences, StayInTextsElementsAndAttributes) {
    const NodePath root{{0}};
    const NodePath text{{0, 0}};
    struct Row {
        TM mutation;
        std::u16string document;
        std::u16string expected;
    };
    const Row rows[] = {
        {TM::SetText{text, u"&m; & é x"}, u"<r>&m; &amp; &#233;</r>", u"<r>&m; &amp; &#233; x</r>"},
        {TM::SetText{root, u"&m; & é x"}, u"<r>&m; &amp; &#233;</r>", u"<r>&m; &amp; &#233; x</r>"},
        {TM::SetText{root, u"&m; x"}, u"<r>&m; <b/></r>", u"<r>&amp;m; x</r>"},
        {TM::SetText{root, u"&m; x"}, u"<r/>", u"<r>&amp;m; x</r>"},
        {TM::SetText{text, u"&m; x"}, u"<r><!--&m;--></r>", u"<r><!--&m; x--></r>"},
        {TM::SetText{text, u"ab"}, u"<r><!--&#97;b--></r>", u"<r><!--ab--></r>"},
        {TM::SetText{text, u"ab"}, u"<r><![CDATA[&#97;b]]></r>", u"<r><![CDATA[ab]]></r>"},
        {TM::SetAttribute{root, u"a", u"&m;\n\"x"}, u"<r a=\"&m;&#10;\"/>", u"<r a=\"&m;&#10;&quot;x\"/>"},
        {TM::SetAttribute{root, u"a", u"'&m;"}, u"<r a='&m;'/>", u"<r a='&apos;&m;'/>"},
        {TM::SetAttribute{root, u"b", u"&m;"}, u"<r a='&m;'/>", u"<r a='&m;' b=\"&amp;m;\"/>"},
        {TM::SetAttribute{{{7}}, u"a", u"x"}, u"<r a='&m;'/>", u"-"},
        {TM::Rename{root, u"s"}, u"<r>&m;</r>", u"<s>&m;</s>"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(after(row.mutation, row.document), row.expected);
    }
}

TEST(KeptReferences, LeaveATextThatReadsAsWanted) {
    Random random;
    const std::u16string_view parts[] = {u"&amp;", u"&m;", u"&#233;", u"&#x1F600;", u"&", u";", u"a", u"amp",
                                         u"#", u"]", u">", u"\u0301", u"😀", u"\r\n", u" "};
    const auto text = [&] {
        std::u16string made;
        for (std::size_t count = random.below(8); count > 0; --count) {
            made += parts[random.below(std::size(parts))];
        }
        return made;
    };
    std::size_t kept = 0;
    for (int round = 0; round < 20'000; ++round) {
        const std::u16string raw = text();
        const std::u16string wanted = text();
        if (const auto edit = KeptReferences::edit(raw, wanted, escapeText)) {
            std::u16string result = raw;
            result.replace(edit->range.lower, edit->range.length(), edit->replacement);
            // White space alone would be no text.
            const DocumentTree tree = TreeParser::parse(SourceText(u"<_>x" + result + u"x</_>"));
            ASSERT_EQ(tree.textContent(NodeID{1}), u"x" + wanted + u"x")
                << ::testing::PrintToString(raw) << " became " << ::testing::PrintToString(result);
            ++kept;
        }
    }
    EXPECT_GT(kept, 10'000U) << "few have to be written anew";
}
