#include "NodeErrors.h"

#include "RandomDocument.h"
#include "Repeated.h"
#include "TreeParser.h"

#include <gtest/gtest.h>

#include <set>

namespace {

std::set<std::uint32_t> nodesWithErrors(const DocumentTree& tree) {
    const NodeErrors errors(tree);
    std::set<std::uint32_t> nodes;
    for (std::uint32_t raw = 0; raw < tree.nodes.size(); ++raw) {
        if (errors.contains({raw})) {
            nodes.insert(raw);
        }
    }
    EXPECT_EQ(errors.isEmpty(), nodes.empty());
    return nodes;
}

TEST(NodeErrors, HoldTheInnermostNodeAndAllAroundIt) {
    struct Row {
        std::u16string_view text;
        std::set<std::uint32_t> nodes;
    };
    for (const Row& row : {
             Row{u"", {}},
             Row{u"<a><b/></a>", {}},
             Row{u"<a>", {0, 1}},
             Row{u"<a><b/><c><d></c></a>", {0, 1, 3, 4}},
             Row{u"<a><b/>x & y</a>", {0, 1, 3}},
             Row{u"<a x='' x=''/>", {0, 1}},
             Row{u"hola", {0, 1}},
             Row{u"<a/><b/>", {0, 2}},
             Row{u"<a><b></a></b>", {0, 1, 2, 3}},
         }) {
        EXPECT_EQ(nodesWithErrors(TreeParser::parse(SourceText(row.text))), row.nodes);
    }
}

TEST(NodeErrors, AreEqualForEqualNodes) {
    const auto errors = [](std::u16string_view text) {
        return NodeErrors(TreeParser::parse(SourceText(text)));
    };
    EXPECT_EQ(errors(u"<a><b></a>"), errors(u"<a><c></a>"));
    EXPECT_NE(errors(u"<a><b></a>"), errors(u"<a><b/></a>"));
    EXPECT_EQ(errors(u"<a/>"), NodeErrors());
}

TEST(NodeErrors, KnowNoOtherNodes) {
    const NodeErrors errors(TreeParser::parse(SourceText(u"<a>")));
    EXPECT_FALSE(errors.contains({64}));
    EXPECT_FALSE(errors.contains(NodeID::none()));
}

TEST(NodeErrors, AreThoseFoundOneByOne) {
    Random random;
    for (int round = 0; round < 300; ++round) {
        const DocumentTree tree = TreeParser::parse(SourceText(RandomDocument::broken(random)));
        std::set<std::uint32_t> expected;
        for (std::size_t index = 0; index < tree.diagnostics.size(); ++index) {
            for (NodeID node = tree.innermostNode(tree.diagnostics.range(index).lower); !node.isNone();
                 node = tree[node].parent) {
                expected.insert(node.raw);
            }
        }
        EXPECT_EQ(nodesWithErrors(tree), expected);
    }
}

TEST(NodeErrors, ManageDeepDocuments) {
    // Each problem at the end would climb all of the million levels if it started at the last node.
    const std::u16string text =
        repeated(u"<a>", 1'000'000) + repeated(u"</a>", 999'000) + repeated(u"&", 100'000);
    const DocumentTree tree = TreeParser::parse(SourceText(text));
    const NodeErrors errors(tree);
    EXPECT_TRUE(errors.contains({1'000}));
    EXPECT_FALSE(errors.contains({1'001}));
}

} // namespace
