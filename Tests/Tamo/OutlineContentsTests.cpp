#include "OutlineContents.h"

#include "TreeParser.h"

#include <gtest/gtest.h>

namespace {

DocumentTree parse(std::u16string_view text) { return TreeParser::parse(SourceText(text)); }

/// The names of the rows' elements, indented.
std::u16string names(const TreeOutline::Rows& rows, const DocumentTree& tree) {
    std::u16string names;
    for (const TreeOutline::Row& row : rows) {
        names.append(row.depth, u' ').append(tree.name(row.node)).append(u"\n");
    }
    return names;
}

TEST(OutlineContents, BeginWithAnExpansionOfTheirOwn) {
    const DocumentTree tree = parse(u"<a><b><c/></b></a>");
    const OutlineContents contents = OutlineContents::make({}, tree, {}, {});
    EXPECT_EQ(names(contents.rows, tree), u"a\n b\n  c\n");
    ASSERT_NE(contents.request.outline, nullptr);
    EXPECT_TRUE(contents.request.outline->expanded.contains(NodePath{{0, 0}}));
}

TEST(OutlineContents, ShowWhatIsExpandedOrWhatMatches) {
    const DocumentTree tree = parse(u"<a><b><c/></b><d/></a>");
    const auto outline = std::make_shared<TreeOutline>();
    outline->expanded.insert({{0}});
    EXPECT_EQ(names(OutlineContents::make({outline}, tree, {}, {}).rows, tree), u"a\n b\n d\n");
    const OutlineContents filtered = OutlineContents::make({outline, QStringLiteral("C")}, tree, {}, {});
    EXPECT_EQ(names(filtered.rows, tree), u"a\n b\n  c\n");
    EXPECT_EQ(filtered.request.filter, QStringLiteral("C"));
    EXPECT_EQ(filtered.request.outline, outline);
}

TEST(OutlineContents, TellWhetherTheSelectionIsThere) {
    const DocumentTree tree = parse(u"<a><b/></a>");
    const auto found = [&](std::optional<NodePath> selection) {
        return OutlineContents::make({{}, {}, std::move(selection), {}}, tree, {}, {}).selection;
    };
    EXPECT_EQ(found(std::nullopt), std::nullopt);
    EXPECT_EQ(found(NodePath{{0, 0}}), (NodePath{{0, 0}}));
    EXPECT_EQ(found(NodePath()), NodePath());
    EXPECT_EQ(found(NodePath{{0, 1}}), std::nullopt);
}

TEST(OutlineContents, CarryWhatWasOfTheDocumentBefore) {
    const auto before = ParsedDocument::make();
    before->tree = parse(u"<a><b><c/></b></a>");
    const auto outline = std::make_shared<TreeOutline>();
    outline->expanded.insert({{0}});
    outline->expanded.insert({{0, 0}});
    EditedPieces edits;
    edits.add({0, 0}, 8);
    const DocumentTree tree = parse(u"<!--x--><a><b><c/></b></a>");
    const OutlineContents contents =
        OutlineContents::make({outline, {}, NodePath{{0, 0, 0}}, {}, before, edits}, tree, {}, {});
    EXPECT_EQ(contents.selection, (NodePath{{1, 0, 0}}));
    EXPECT_EQ(contents.rows.size(), 4U);
    EXPECT_EQ(contents.request.before, nullptr);
    EXPECT_TRUE(contents.request.outline->expanded.contains(NodePath{{1, 0}}));
    EXPECT_TRUE(outline->expanded.contains(NodePath{{0, 0}}));
}

TEST(OutlineContents, CountTheMatches) {
    const DocumentTree tree = parse(u"<a><b><c/></b><c/></a>");
    EXPECT_EQ(OutlineContents::make({{}, QStringLiteral("C"), {}, {}}, tree, {}, {}).matchCount, 2U);
    EXPECT_EQ(OutlineContents::make({}, tree, {}, {}).matchCount, 0U);
}

TEST(OutlineContents, FindTheNodeToSelect) {
    const DocumentTree tree = parse(u"<a><b>t</b></a>\n");
    const auto found = [&](std::optional<Offset> offset) {
        return OutlineContents::make({{}, {}, {}, offset}, tree, {}, {}).toSelect;
    };
    EXPECT_FALSE(found(std::nullopt).has_value());
    EXPECT_EQ(found(0)->path, NodePath({{0}}));
    EXPECT_EQ(found(3)->path, NodePath({{0, 0}}));
    EXPECT_EQ(found(6)->path, NodePath({{0, 0, 0}}));
    EXPECT_EQ(found(15)->path, NodePath());
    EXPECT_EQ(found(3)->node, NodeID{2});
}

} // namespace
