#include "NodePaste.h"

#include "TreeParser.h"

#include <gtest/gtest.h>

namespace {

using NodePaste::Origin;

NodeAddition::Result paste(std::u16string_view pasted, std::u16string_view before,
                           const std::optional<NodePath>& path, Origin origin = Origin::anywhere) {
    const DocumentTree tree = TreeParser::parse(SourceText(before));
    return NodePaste::plan(std::u16string(pasted), origin, path, tree, IndentStyle::spaces(2));
}

/// What `before` becomes.
std::u16string pasted(std::u16string_view pasted, std::u16string_view before,
                      const std::optional<NodePath>& path, Origin origin = Origin::anywhere) {
    const auto plan = paste(pasted, before, path, origin);
    return plan ? TextEdit::apply(plan->edits, before) : std::u16string(u"-");
}

} // namespace

TEST(NodePaste, PutsMarkupBehindTheNodeOrIntoAnEmptyElement) {
    const std::u16string_view text = u"<a>\n  <b>\n    <c/>\n  </b>\n  <d></d>\n</a>\n";
    EXPECT_EQ(pasted(u"<n/>", text, NodePath{{0, 0}}),
              u"<a>\n  <b>\n    <c/>\n  </b>\n  <n/>\n  <d></d>\n</a>\n");
    EXPECT_EQ(pasted(u"<n/>", text, NodePath{{0, 1}}),
              u"<a>\n  <b>\n    <c/>\n  </b>\n  <d>\n    <n/>\n  </d>\n</a>\n");
    EXPECT_EQ(pasted(u"\n <!-- n -->\n", u"<a><b>t</b></a>", NodePath{{0, 0, 0}}),
              u"<a><b>t<!-- n --></b></a>");
}

TEST(NodePaste, KeepsOneRoot) {
    const std::u16string_view text = u"<!-- c -->\n<a>\n  <b/>\n</a>\n";
    for (const auto& path : {std::optional<NodePath>(), std::optional(NodePath()),
                             std::optional(NodePath{{0}}), std::optional(NodePath{{1}})}) {
        EXPECT_EQ(pasted(u"<n/>", text, path), u"<!-- c -->\n<a>\n  <b/>\n  <n/>\n</a>\n");
    }
    EXPECT_EQ(pasted(u"<n/>", u"<a>uno</a>", NodePath{{0}}), u"<a>uno<n/></a>");
    EXPECT_EQ(pasted(u"<?n?>", text, NodePath{{0}}), u"<!-- c -->\n<?n?>\n<a>\n  <b/>\n</a>\n");
    EXPECT_EQ(pasted(u"<n/>", u"<!-- c -->", std::nullopt), u"<!-- c -->\n<n/>");
}

TEST(NodePaste, IndentsAnew) {
    EXPECT_EQ(pasted(u"<n>\n          <m/>\n      </n>", u"<a>\n  <b>\n    <c>t</c>\n  </b>\n</a>",
                     NodePath{{0, 0, 0}}),
              u"<a>\n  <b>\n    <c>t</c>\n    <n>\n        <m/>\n    </n>\n  </b>\n</a>");
    EXPECT_EQ(pasted(u"<n>\n  <m/>\n</n>", u"<a>\n  <b/>\n</a>", NodePath{{0, 0}}),
              u"<a>\n  <b>\n    <n>\n      <m/>\n    </n>\n  </b>\n</a>");
}

TEST(NodePaste, EndsLinesAsTheDocumentDoes) {
    EXPECT_EQ(pasted(u"<n>\n</n>", u"<a>\r\n<b>t</b>\r\n</a>", NodePath{{0, 0}}),
              u"<a>\r\n<b>t</b>\r\n<n>\r\n</n>\r\n</a>");
    EXPECT_EQ(pasted(u"uno\r\ndos", u"<a>\n</a>", NodePath{{0}}), u"<a>uno\ndos</a>");
}

TEST(NodePaste, EscapesWhatIsNoMarkup) {
    const std::u16string_view text = u"<a><b/></a>";
    const NodePath path{{0, 0}};
    EXPECT_EQ(pasted(u"uno & dos", text, path), u"<a><b>uno &amp; dos</b></a>");
    EXPECT_EQ(pasted(u"a &amp; b", text, path), u"<a><b>a &amp;amp; b</b></a>");
    EXPECT_EQ(pasted(u"if (a<b && c>d)", text, path), u"<a><b>if (a&lt;b &amp;&amp; c&gt;d)</b></a>");
    EXPECT_EQ(pasted(u"<n><m></n>", text, path), u"<a><b>&lt;n&gt;&lt;m&gt;&lt;/n&gt;</b></a>");
    EXPECT_EQ(pasted(u"<!-- n", text, path), u"<a><b>&lt;!-- n</b></a>");
    EXPECT_EQ(pasted(u"</x><n/><x>", text, path), u"<a><b>&lt;/x&gt;&lt;n/&gt;&lt;x&gt;</b></a>");
    EXPECT_EQ(pasted(u"uno <n/> dos", text, path), u"<a><b>uno <n/> dos</b></a>")
        << "mixed content is markup";
    EXPECT_EQ(paste(u"uno", u"<a/>", std::nullopt).error(),
              NodeAddition::Failure(NodeAddition::TextOutsideRoot()));
}

TEST(NodePaste, TakesTheSourceOfANodeAsItIs) {
    const std::u16string_view text = u"<a><b/></a>";
    const NodePath path{{0, 0}};
    EXPECT_EQ(pasted(u"a &amp; b", text, path, Origin::node), u"<a><b>a &amp; b</b></a>");
    EXPECT_EQ(pasted(u"<n><m></n>", u"<a><b>t</b></a>", path, Origin::node), u"<a><b>t</b><n><m></n></a>");
}

TEST(NodePaste, TakesDeclarationsIntoAnEmptyDocumentOnly) {
    const std::u16string_view whole = u"<?xml version=\"1.0\"?>\n<!DOCTYPE n>\n<n/>\n";
    EXPECT_EQ(pasted(whole, u"", std::nullopt), whole);
    EXPECT_EQ(pasted(whole, u"<a><b/></a>", NodePath{{0}}), u"<a><b/><n/></a>");
}

TEST(NodePaste, SelectsWhatWasPasted) {
    const std::u16string_view text = u"<a>\n  <b>t</b>\n</a>";
    const auto plan = paste(u"<n/>", text, NodePath{{0, 0}});
    ASSERT_TRUE(plan.has_value());
    EXPECT_EQ(TextEdit::apply(plan->edits, text).substr(plan->selectOffset.value(), 4), u"<n/>");
}
