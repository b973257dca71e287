#include "TreeOutline.h"

#include "NodeSearch.h"
#include "RandomDocument.h"
#include "Repeated.h"
#include "TreeParser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace {

using Row = TreeOutline::Row;
using Rows = TreeOutline::Rows;

DocumentTree parse(std::u16string_view text) { return TreeParser::parse(SourceText(text)); }

TreeOutline expanded(std::initializer_list<NodePath> paths) {
    TreeOutline outline;
    for (const NodePath& path : paths) {
        outline.expanded.insert(path);
    }
    return outline;
}

/// One line a row: indentation, "+" collapsed, "-" expanded, "." both without children, path and source.
std::string text(const Rows& rows, const DocumentTree& tree) {
    std::string text;
    for (std::size_t at = 0; at < rows.size(); ++at) {
        const Row& row = rows[at];
        const std::u16string_view source = tree.source(row.node);
        text.append(2 * row.depth, ' ');
        text += !row.hasChildren ? '.' : row.isExpanded ? '-' : '+';
        text.append(" ").append(rows.path(at, tree).description()).append(" ");
        std::ranges::transform(source.substr(0, source.find(u'>') + 1), std::back_inserter(text),
                               [](char16_t unit) { return static_cast<char>(unit); });
        text += '\n';
    }
    return text;
}

/// The rows as their definition puts it: paths are kept, the walk recurses.
struct NaiveRow {
    NodePath path;
    Row row;
};

void addNaiveRows(std::vector<NaiveRow>& rows, const DocumentTree& tree, NodeID of, const NodePath& path,
                  const std::set<NodePath>& expanded, const std::set<NodeID>* kept) {
    std::uint32_t position = 0;
    for (const NodeID child : tree.children(of)) {
        NodePath childPath = path;
        childPath.indices.push_back(position);
        if (kept == nullptr || kept->contains(child)) {
            const bool isExpanded = kept != nullptr || expanded.contains(childPath);
            rows.push_back({childPath,
                            {child, position, static_cast<std::uint32_t>(path.indices.size()),
                             tree[child].childCount != 0, isExpanded}});
            if (isExpanded) {
                addNaiveRows(rows, tree, child, childPath, expanded, kept);
            }
        }
        ++position;
    }
}

std::vector<NaiveRow> naiveRows(const DocumentTree& tree, const std::set<NodePath>& expanded) {
    std::vector<NaiveRow> rows;
    addNaiveRows(rows, tree, NodeID::document(), {}, expanded, nullptr);
    return rows;
}

std::vector<NaiveRow> naiveRows(const DocumentTree& tree, const std::vector<NodeID>& matches) {
    std::set<NodeID> kept;
    for (NodeID node : matches) {
        for (; node != NodeID::document(); node = tree[node].parent) {
            kept.insert(node);
        }
    }
    std::vector<NaiveRow> rows;
    addNaiveRows(rows, tree, NodeID::document(), {}, {}, &kept);
    return rows;
}

/// Compares the rows and every answer that they give.
void expectHolds(const Rows& rows, const std::vector<NaiveRow>& expected, const DocumentTree& tree) {
    ASSERT_EQ(rows.size(), expected.size());
    for (std::size_t at = 0; at < rows.size(); ++at) {
        const NodePath& path = expected[at].path;
        ASSERT_EQ(rows[at], expected[at].row) << path.description();
        EXPECT_EQ(rows.path(at, tree), path);
        EXPECT_EQ(rows.row(rows[at].node), at);
        EXPECT_EQ(rows.row(path, tree), at) << path.description();
        const auto isInside = [&path](const NaiveRow& row) { return path.contains(row.path); };
        EXPECT_EQ(rows.subtreeEnd(at, tree) - at - 1, std::ranges::count_if(expected, isInside));
        const auto parent = rows.parent(at, tree);
        ASSERT_EQ(parent.has_value(), path.indices.size() > 1);
        if (parent) {
            EXPECT_EQ(expected[*parent].path.indices,
                      std::vector(path.indices.begin(), path.indices.end() - 1));
        }
    }
    for (NodeID node = NodeID::document(); node.raw < tree.nodes.size(); ++node.raw) {
        const auto isShown = std::ranges::any_of(rows, [node](const Row& row) { return row.node == node; });
        EXPECT_EQ(rows.row(node).has_value(), isShown);
        EXPECT_EQ(rows.row(tree.path(node), tree).has_value(), isShown);
    }
}

} // namespace

TEST(TreeOutline, ShowsTheChildrenOfTheDocument) {
    const DocumentTree tree = parse(u"<?p?><a><b/></a><!--c-->");
    EXPECT_EQ(text(TreeOutline().rows(tree), tree), ". /0 <?p?>\n+ /1 <a>\n. /2 <!--c-->\n");
}

TEST(TreeOutline, ShowsNothingOfAnEmptyDocument) {
    const DocumentTree tree = parse(u"");
    EXPECT_TRUE(TreeOutline().rows(tree).isEmpty());
    EXPECT_TRUE(TreeOutline::rows(tree, std::span<const NodeID>()).isEmpty());
    EXPECT_EQ(TreeOutline().rows(tree).row(NodePath(), tree), std::nullopt);
    EXPECT_EQ(TreeOutline().rows(tree).row(NodeID::document()), std::nullopt);
}

TEST(TreeOutline, DescendsIntoExpandedNodes) {
    const DocumentTree tree = parse(u"<a><b><c/></b><d><e/></d></a>");
    EXPECT_EQ(text(expanded({{{0}}, {{0, 1}}}).rows(tree), tree), "- /0 <a>\n"
                                                                  "  + /0/0 <b>\n"
                                                                  "  - /0/1 <d>\n"
                                                                  "    . /0/1/0 <e/>\n");
}

TEST(TreeOutline, HidesWhatIsExpandedInsideACollapsedNode) {
    const DocumentTree tree = parse(u"<a><b><c/></b></a>");
    EXPECT_EQ(text(expanded({{{0, 0}}}).rows(tree), tree), "+ /0 <a>\n");
}

TEST(TreeOutline, CountsAnExpandedPathWithoutChildrenAsExpanded) {
    const DocumentTree tree = parse(u"<a/>");
    const Rows rows = expanded({{{0}}}).rows(tree);
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_TRUE(rows[0].isExpanded);
    EXPECT_FALSE(rows[0].hasChildren);
}

TEST(TreeOutline, StaysExpandedAcrossAParse) {
    const TreeOutline outline = expanded({{{0}}, {{0, 1}}});
    const DocumentTree before = parse(u"<a><b/><d><e/></d></a>");
    const DocumentTree after = parse(u"<a><b><x/><y/></b><d>hola<e/></d></a>");
    EXPECT_EQ(text(outline.rows(before), before), "- /0 <a>\n"
                                                  "  . /0/0 <b/>\n"
                                                  "  - /0/1 <d>\n"
                                                  "    . /0/1/0 <e/>\n");
    EXPECT_EQ(text(outline.rows(after), after), "- /0 <a>\n"
                                                "  + /0/0 <b>\n"
                                                "  - /0/1 <d>\n"
                                                "    . /0/1/0 \n"
                                                "    . /0/1/1 <e/>\n");
}

TEST(TreeOutline, ShowsMatchesWithWhatLeadsToThem) {
    const DocumentTree tree = parse(u"<a><b><deep><match/></deep></b><c/><match><x/></match></a>");
    EXPECT_EQ(text(TreeOutline::rows(tree, NodeSearch::matches(u"match", tree)), tree),
              "- /0 <a>\n"
              "  - /0/0 <b>\n"
              "    - /0/0/0 <deep>\n"
              "      . /0/0/0/0 <match/>\n"
              "  - /0/2 <match>\n");
}

TEST(TreeOutline, MarksEveryMatchAsExpanded) {
    const DocumentTree tree = parse(u"<a><b/></a>");
    for (const Row& row : TreeOutline::rows(tree, NodeSearch::matches(u"b", tree))) {
        EXPECT_TRUE(row.isExpanded);
    }
}

TEST(TreeOutline, AddsAMatchInsideAnotherOnce) {
    const DocumentTree tree = parse(u"<x1><x2><x3/></x2></x1>");
    EXPECT_EQ(text(TreeOutline::rows(tree, NodeSearch::matches(u"x", tree)), tree), "- /0 <x1>\n"
                                                                                    "  - /0/0 <x2>\n"
                                                                                    "    . /0/0/0 <x3/>\n");
}

TEST(TreeOutline, ShowsNothingWithoutMatches) {
    const DocumentTree tree = parse(u"<a><b/></a>");
    EXPECT_TRUE(TreeOutline::rows(tree, NodeSearch::matches(u"z", tree)).isEmpty());
}

TEST(TreeOutline, ForgetsNothingWhileAFilterIsThere) {
    const DocumentTree tree = parse(u"<a><b><c/></b><d/></a>");
    const TreeOutline outline = expanded({{{0}}});
    const std::string before = text(outline.rows(tree), tree);
    EXPECT_EQ(outline.rows(tree, NodeSearch::matches(u"c", tree)).size(), 3U);
    EXPECT_EQ(text(outline.rows(tree), tree), before);
}

TEST(TreeOutline, UsesTheMemoryOfFormerRows) {
    const DocumentTree tree = parse(u"<a><b/></a>");
    TreeOutline outline = expanded({{{0}}});
    Rows rows = outline.rows(tree);
    const Row* const memory = rows.begin();
    rows = outline.rows(tree, std::move(rows));
    EXPECT_EQ(rows.begin(), memory);
    EXPECT_EQ(rows.size(), 2U);
}

TEST(TreeOutline, PutsRowsInAndOut) {
    const DocumentTree tree = parse(u"<a><b><c/>uno</b><d/></a>");
    TreeOutline outline = expanded({{{0}}});
    Rows rows = outline.rows(tree);
    const std::string collapsed = text(rows, tree);
    outline.expand(1, rows, tree);
    EXPECT_EQ(text(rows, tree), "- /0 <a>\n"
                                "  - /0/0 <b>\n"
                                "    . /0/0/0 <c/>\n"
                                "    . /0/0/1 \n"
                                "  . /0/1 <d/>\n");
    outline.expand(1, rows, tree);
    EXPECT_EQ(rows.size(), 5U);
    outline.collapse(1, rows, tree);
    EXPECT_EQ(text(rows, tree), collapsed);
    outline.collapse(1, rows, tree);
    EXPECT_EQ(text(rows, tree), collapsed);
    EXPECT_FALSE(outline.expanded.contains(NodePath{{0, 0}}));
}

TEST(TreeOutline, OpensTheRootAndAsManyLevelsAsFit) {
    const auto rowCount = [](std::u16string_view text) {
        const DocumentTree tree = parse(text);
        return TreeOutline{TreeOutline::defaultExpansion(tree)}.rows(tree).size();
    };
    const auto element = [](std::u16string_view content) {
        return std::u16string(u"<e>").append(content).append(u"</e>");
    };
    struct Case {
        std::u16string text;
        std::size_t rows;
    };
    const Case cases[] = {
        {u"", 0},
        {u"<!--sin raíz-->", 1},
        {u"<e/>", 1},
        {u"<?p?><e><a><b/></a>texto</e>", 5},
        {element(repeated(u"<a/>", 198)), 199},
        {element(repeated(u"<a/>", 500)), 501},
        {element(repeated(u"<a/>", 10'000)), 10'001},
        {element(repeated(u"<a/>", 10'001)), 1},
        {element(repeated(u"<a>x</a>", 99)), 199},
        {element(repeated(u"<a>x</a>", 100)), 101},
        {repeated(u"<a>", 1000), 199},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(rowCount(each.text), each.rows) << each.text.size();
    }
}

TEST(TreeOutline, AnswersAMillionLevelsDeep) {
    constexpr std::uint32_t levels = 1'000'000;
    const DocumentTree tree = parse(repeated(u"<a>", levels));
    TreeOutline outline;
    const NodePath deepest = tree.path({levels});
    outline.expanded.insertAncestors(deepest);
    Rows rows = outline.rows(tree);
    ASSERT_EQ(rows.size(), levels);
    EXPECT_EQ(rows[levels - 1].depth, levels - 1);
    EXPECT_EQ(rows.path(levels - 1, tree), deepest);
    EXPECT_EQ(rows.row(deepest, tree), levels - 1);
    outline.collapse(0, rows, tree);
    EXPECT_EQ(rows.size(), 1U);
    outline.expand(0, rows, tree);
    EXPECT_EQ(rows.size(), levels);
    EXPECT_EQ(TreeOutline::rows(tree, std::vector{NodeID{levels}}).size(), levels);
}

TEST(TreeOutline, FindsRowsInsideUnevenBranches) {
    // Each level has a leaf, an expanded branch and then the next level.
    const DocumentTree tree = parse(repeated(u"<a>x<b><c/><c/></b>", 2000));
    TreeOutline outline;
    for (NodeID node{1}; node.raw < tree.nodes.size(); ++node.raw) {
        outline.expanded.insertAncestors(tree.path(node));
    }
    const Rows rows = outline.rows(tree);
    ASSERT_EQ(rows.size(), tree.nodes.size() - 1);
    for (std::size_t row = 0; row < rows.size(); row += 97) {
        EXPECT_EQ(rows.row(rows.path(row, tree), tree), row);
    }
}

TEST(TreeOutline, AgreesWithItsDefinition) {
    Random random;
    for (int round = 0; round < 300; ++round) {
        const DocumentTree tree = parse(RandomDocument::broken(random));
        TreeOutline outline;
        std::set<NodePath> paths;
        for (NodeID node{1}; node.raw < tree.nodes.size(); ++node.raw) {
            if (random.below(3) != 0) {
                paths.insert(tree.path(node));
            }
        }
        for (const NodePath& path : paths) {
            outline.expanded.insert(path);
        }
        Rows rows = outline.rows(tree);
        expectHolds(rows, naiveRows(tree, paths), tree);

        for (int step = 0; step < 10 && !rows.isEmpty(); ++step) {
            const std::size_t row = random.below(rows.size());
            if (rows[row].isExpanded) {
                paths.erase(rows.path(row, tree));
                outline.collapse(row, rows, tree);
            } else {
                paths.insert(rows.path(row, tree));
                outline.expand(row, rows, tree);
            }
        }
        expectHolds(rows, naiveRows(tree, paths), tree);
        expectHolds(outline.rows(tree), naiveRows(tree, paths), tree);

        const std::vector<NodeID> matches = NodeSearch::matches(random.below(2) == 0 ? u"a" : u"b", tree);
        expectHolds(TreeOutline::rows(tree, matches), naiveRows(tree, matches), tree);
        if (HasFailure()) {
            return;
        }
    }
}
