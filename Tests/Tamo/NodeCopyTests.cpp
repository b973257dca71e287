#include "NodeCopy.h"

#include "TreeParser.h"

#include <gtest/gtest.h>

namespace {

using Placement = TreeMutation::Placement;

TEST(NodeCopy, PutsACopyWhereAMoveWouldPutTheNode) {
    struct Row {
        Placement placement;
        std::u16string_view after;
        Offset selectOffset;
    };
    const std::u16string_view text = u"<a>\n  <b>\n    <x/>\n  </b>\n  <c>\n    <d/>\n  </c>\n</a>";
    const NodePath path{{0, 0}};
    for (
        const Row& row : {
            Row{Placement::firstChild,
                u"<a>\n  <b>\n    <x/>\n  </b>\n  <c>\n    <b>\n      <x/>\n    </b>\n    <d/>\n  </c>\n</a>",
                38},
            Row{Placement::lastChild,
                u"<a>\n  <b>\n    <x/>\n  </b>\n  <c>\n    <d/>\n    <b>\n      <x/>\n    </b>\n  </c>\n</a>",
                47},
            Row{Placement::before,
                u"<a>\n  <b>\n    <x/>\n  </b>\n  <b>\n    <x/>\n  </b>\n  <c>\n    <d/>\n  </c>\n</a>", 30},
            Row{Placement::after,
                u"<a>\n  <b>\n    <x/>\n  </b>\n  <c>\n    <d/>\n  </c>\n  <b>\n    <x/>\n  </b>\n</a>", 52},
        }) {
        const DocumentTree tree = TreeParser::parse(SourceText(text));
        const auto plan = NodeCopy::plan(path, {{0, 1}}, row.placement, tree, IndentStyle::spaces(2));
        ASSERT_TRUE(plan.has_value());
        const std::u16string after = TextEdit::apply(plan->edits, text);
        EXPECT_EQ(after, row.after);
        EXPECT_EQ(after.substr(plan->selectOffset.value(), 3), u"<b>");
    }
}

TEST(NodeCopy, FailsWhereNothingCanBeCopied) {
    struct Row {
        NodePath path, target;
        Placement placement;
        MutationPlanner::Failure failure;
    };
    const DocumentTree tree = TreeParser::parse(SourceText(u"<a>t<b/></a>"));
    for (const Row& row : {
             Row{{{0, 5}}, {{0}}, Placement::after, MutationPlanner::NodeNotFound()},
             Row{{{0}}, {{5}}, Placement::after, MutationPlanner::NodeNotFound()},
             Row{{}, {{0}}, Placement::after, MutationPlanner::InvalidTarget()},
             Row{{{0, 1}}, {{0, 0}}, Placement::firstChild, MutationPlanner::NotAnElement()},
         }) {
        const auto plan = NodeCopy::plan(row.path, row.target, row.placement, tree, {});
        ASSERT_FALSE(plan.has_value());
        EXPECT_EQ(plan.error(), row.failure);
    }
}

} // namespace
