#include "NodePath.h"

#include "MarkedNode.h"
#include "Repeated.h"
#include "TreeParser.h"

#include <gtest/gtest.h>
#include <unordered_set>

namespace {

DocumentTree parse(std::u16string_view text) { return TreeParser::parse(SourceText(text)); }

struct Row {
    std::u16string marked;
    std::u16string xpath;
    NodePath path;
};

void check(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        const MarkedNode marked(row.marked);
        EXPECT_EQ(marked.tree.xpath(marked.node), row.xpath) << ::testing::PrintToString(row.marked);
        EXPECT_EQ(marked.tree.path(marked.node), row.path) << ::testing::PrintToString(row.marked);
        EXPECT_EQ(marked.tree.resolve(row.path), marked.node) << ::testing::PrintToString(row.marked);
    }
}

} // namespace

TEST(NodePath, FindsNodesByTheirPlace) {
    check({
        {u"|<a/>", u"/a", {{0}}},
        {u"<?x?>|<a/>", u"/a", {{1}}},
        {u"|<?x?><a/>", u"/node()", {{0}}},
        {u"|<!DOCTYPE a><a/>", u"/node()", {{0}}},
        {u"<a>|<!-- c --></a>", u"/a/comment()", {{0, 0}}},
        {u"<a>|<![CDATA[c]]></a>", u"/a/text()", {{0, 0}}},
        {u"<a>|text</a>", u"/a/text()", {{0, 0}}},
        {u"<a>x<b/>|y</a>", u"/a/text()", {{0, 2}}},
        {u"<a>\n  <b/>\n  |<c/></a>", u"/a/c", {{0, 1}}},
        {u"<rss><channel><item/><item><title>|t</title></item></channel></rss>",
         u"/rss/channel/item[2]/title/text()",
         {{0, 0, 1, 0, 0}}},
    });
}

TEST(NodePath, NumbersSiblingsOfTheSameName) {
    check({
        {u"<a><b/>|<b/><b/></a>", u"/a/b[2]", {{0, 1}}},
        {u"<a>|<b/><b/><b/></a>", u"/a/b[1]", {{0, 0}}},
        {u"<a>|<b/></a>", u"/a/b", {{0, 0}}},
        {u"<a><c/><b/>x|<b/><c/></a>", u"/a/b[2]", {{0, 3}}},
        {u"<a><B/>|<b/></a>", u"/a/b", {{0, 1}}},
        {u"<a><bb/>|<b/></a>", u"/a/b", {{0, 1}}},
        {u"<a/>|<a/>", u"/a[2]", {{1}}},
        {u"<b><b/></b>|<c/>", u"/c", {{1}}},
    });
}

TEST(NodePath, ComparesNamesUnitByUnitButShowsThemRepaired) {
    const std::u16string high(1, 0xD800);
    const std::u16string other(1, 0xD801);
    check({
        {u"<a><" + high + u"/>|<" + high + u"/></a>", u"/a/\uFFFD[2]", {{0, 1}}},
        {u"<a><" + high + u"/>|<" + other + u"/></a>", u"/a/\uFFFD", {{0, 1}}},
    });
}

TEST(NodePath, IsEmptyForTheDocument) {
    const DocumentTree tree = DocumentTree::empty();
    EXPECT_EQ(tree.path(NodeID::document()), NodePath());
    EXPECT_EQ(tree.xpath(NodeID::document()), u"/");
    EXPECT_EQ(tree.resolve({}), NodeID::document());
}

TEST(NodePath, ResolvesToNothingBeyondTheChildren) {
    const DocumentTree tree = parse(u"<a><b/>x</a>");
    EXPECT_EQ(tree.resolve({{1}}), std::nullopt);
    EXPECT_EQ(tree.resolve({{0, 2}}), std::nullopt);
    EXPECT_EQ(tree.resolve({{0, 0, 0}}), std::nullopt);
    EXPECT_EQ(tree.resolve({{1, 0}}), std::nullopt);
    EXPECT_EQ(tree.resolve({{0xFFFFFFFF}}), std::nullopt);
    EXPECT_EQ(DocumentTree::empty().resolve({{0}}), std::nullopt);
}

TEST(NodePath, OrdersAsTheDocumentDoes) {
    const DocumentTree tree = parse(u"<?x?><a><b><c/>t</b><!-- --><d><e/></d></a><f/>");
    std::unordered_set<NodePath> paths;
    for (std::uint32_t raw = 0; raw < tree.nodes.size(); ++raw) {
        const NodePath path = tree.path({raw});
        EXPECT_EQ(tree.resolve(path), NodeID{raw});
        EXPECT_TRUE(paths.insert(path).second);
        if (raw > 0) {
            EXPECT_LT(tree.path({raw - 1}), path);
        }
    }
}

TEST(NodePath, ContainsThePathsBelowIt) {
    const NodePath path{{0, 2}};
    EXPECT_TRUE(path.contains({{0, 2, 0}}));
    EXPECT_TRUE(path.contains({{0, 2, 5, 1}}));
    EXPECT_FALSE(path.contains(path));
    EXPECT_FALSE(path.contains({{0}}));
    EXPECT_FALSE(path.contains({{0, 1, 0}}));
    EXPECT_TRUE(NodePath().contains(path));
    EXPECT_FALSE(NodePath().contains(NodePath()));
}

TEST(NodePath, IsDescribedWithSlashes) {
    EXPECT_EQ(NodePath().description(), "/");
    EXPECT_EQ(NodePath{{0}}.description(), "/0");
    EXPECT_EQ((NodePath{{0, 2, 1}}.description()), "/0/2/1");
    EXPECT_EQ((NodePath{{12, 4294967295}}.description()), "/12/4294967295");
}

TEST(NodePath, FollowsAMillionLevelsAndSiblings) {
    constexpr std::size_t many = 1'000'000;
    const DocumentTree deep = parse(repeated(u"<a>", many));
    const NodeID deepest{many};
    const NodePath path = deep.path(deepest);
    EXPECT_EQ(path, NodePath{std::vector<std::uint32_t>(many, 0)});
    EXPECT_EQ(deep.resolve(path), deepest);
    EXPECT_EQ(deep.xpath(deepest), repeated(u"/a", many));

    const DocumentTree wide = parse(u"<r>" + repeated(u"<a/>", many) + u"</r>");
    const NodeID last{many + 1};
    EXPECT_EQ(wide.path(last), (NodePath{{0, many - 1}}));
    EXPECT_EQ(wide.resolve(wide.path(last)), last);
    EXPECT_EQ(wide.xpath(last), u"/r/a[1000000]");
}

TEST(NodePath, CountsTheSiblingsOfEveryStepOnce) {
    // At every level of a deep tree, 1,000 siblings of the same name precede the element.
    constexpr std::size_t levels = 1000;
    const DocumentTree tree = parse(repeated(repeated(u"<a/>", 1000) + u"<a>", levels));
    const NodeID deepest{static_cast<std::uint32_t>(tree.nodes.size() - 1)};
    EXPECT_EQ(tree.xpath(deepest), repeated(u"/a[1001]", levels));
    EXPECT_EQ(tree.path(deepest), NodePath{std::vector<std::uint32_t>(levels, 1000)});
}
