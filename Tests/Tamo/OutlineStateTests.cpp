#include "OutlineState.h"

#include "Repeated.h"
#include "TreeParser.h"
#include "WaitFor.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

namespace {

class OutlineStateTest : public testing::Test {
protected:
    static std::shared_ptr<ParsedDocument> parsed(std::u16string_view text) {
        auto document = ParsedDocument::make();
        document->tree = TreeParser::parse(SourceText(text));
        return document;
    }

    /// Gives the state a new tree, with contents that a worker made for `request`.
    void take(std::u16string_view text, OutlineContents::Request request) {
        const auto document = parsed(text);
        state.take(document, OutlineContents::make(std::move(request), document->tree, {}, {}));
        tree = &document->tree;
        keep = document;
    }
    void take(std::u16string_view text) { take(text, state.request()); }

    std::u16string rows() const {
        std::u16string rows;
        for (const TreeOutline::Row& row : state.rows()) {
            rows.append(row.depth, u' ').append(tree->name(row.node)).append(u"\n");
        }
        return rows;
    }

    OutlineState state{ParsedDocument::make()};
    QSignalSpy changes{&state, &OutlineState::rowsChanged};
    const DocumentTree* tree = nullptr;
    std::shared_ptr<const ParsedDocument> keep;
};

TEST_F(OutlineStateTest, TakesTreesSilently) {
    EXPECT_EQ(state.request().outline, nullptr);
    take(u"<a><b><c/></b></a>");
    EXPECT_EQ(rows(), u"a\n b\n  c\n");
    EXPECT_NE(state.request().outline, nullptr);
    EXPECT_EQ(changes.count(), 0);
}

TEST_F(OutlineStateTest, ChoosesWhatIsExpandedInTheFirstTreeThatHasNodes) {
    take(u"");
    EXPECT_EQ(state.request().outline, nullptr);
    take(u"<a><b><c/></b></a>");
    EXPECT_EQ(rows(), u"a\n b\n  c\n");
    state.setExpanded({{0}}, false);
    take(u"<a><b><c/></b></a>");
    EXPECT_EQ(rows(), u"a\n");
}

TEST_F(OutlineStateTest, GivesTheOldRowsBack) {
    take(u"<a><b/></a>");
    const auto document = parsed(u"<c/>");
    const OutlineContents old =
        state.take(document, OutlineContents::make(state.request(), document->tree, {}, {}));
    EXPECT_EQ(old.rows.size(), 2U);
}

TEST_F(OutlineStateTest, ShowsWhatWasExpandedWhileAWorkerWasAtIt) {
    take(u"<a><b><c/></b></a>");
    const OutlineContents::Request early = state.request();
    state.setExpanded({{0, 0}}, false);
    EXPECT_TRUE(early.outline->expanded.contains(NodePath{{0, 0}}));
    take(u"<a><b><c/><d/></b></a>", early);
    EXPECT_EQ(rows(), u"a\n b\n");
}

TEST_F(OutlineStateTest, ShowsItLaterInALargeTree) {
    const std::u16string text = u"<a><b><c/></b>" + repeated(u"<x/>", 60'000) + u"</a>";
    take(text);
    const OutlineContents::Request early = state.request();
    state.setExpanded({{0, 0}}, true);
    state.setExpanded({{0}}, true);
    take(text, early);
    EXPECT_EQ(state.rows().size(), 1U);
    EXPECT_EQ(changes.count(), 1);
    ASSERT_TRUE(changes.wait());
    EXPECT_EQ(state.rows().size(), 60'003U);
}

TEST_F(OutlineStateTest, ExpandsWhatHidesANode) {
    for (const std::size_t depth : {2, 5, 40}) {
        take(repeated(u"<a>", depth) + u"<b/>" + repeated(u"</a>", depth));
        for (std::size_t length = depth; length > 0; --length) {
            state.setExpanded(NodePath{std::vector<std::uint32_t>(length, 0)}, false);
        }
        ASSERT_EQ(rows(), u"a\n");
        changes.clear();
        const NodePath path{std::vector<std::uint32_t>(depth + 1, 0)};
        const NodeID node = *tree->resolve(path);
        EXPECT_EQ(state.path(node), path);
        EXPECT_EQ(state.resolve(path), node);
        state.showAncestors(path, node);
        EXPECT_EQ(state.rows().size(), depth + 1);
        EXPECT_EQ(changes.count(), 1);
        state.showAncestors(path, node);
        EXPECT_EQ(changes.count(), 1);
        EXPECT_EQ(state.path(node), path);
        EXPECT_EQ(state.resolve(path), node);
    }
    EXPECT_EQ(state.path(NodeID::document()), NodePath());
    EXPECT_EQ(state.resolve({}), NodeID::document());
    EXPECT_FALSE(state.resolve({{1}}).has_value());
}

TEST_F(OutlineStateTest, SearchesForTheLastFilterOnly) {
    take(u"<a><b/><c/></a>");
    state.setFilter(QStringLiteral("b"));
    state.setFilter(QStringLiteral("c"));
    EXPECT_EQ(state.shownFilter(), QString());
    ASSERT_TRUE(changes.wait());
    EXPECT_EQ(state.shownFilter(), QStringLiteral("c"));
    EXPECT_EQ(rows(), u"a\n c\n");
    EXPECT_EQ(state.request().filter, QStringLiteral("c"));
    state.setFilter(QStringLiteral("b"));
    state.setFilter({});
    EXPECT_EQ(rows(), u"a\n b\n c\n");
    EXPECT_FALSE(changes.wait(300));
}

} // namespace
