#include "TreeDropTarget.h"

#include "TreeParser.h"

#include <gtest/gtest.h>

namespace {

using Placement = TreeMutation::Placement;

/// Rows: 0 `a` expanded, 1 `b` collapsed, 2 a text, 3 `d`.
struct Outline {
    DocumentTree tree = TreeParser::parse(SourceText(u"<a><b><c/></b>texto<d/></a>"));
    TreeOutline::Rows rows;

    Outline() {
        TreeOutline outline;
        outline.expanded.insert({{0}});
        rows = outline.rows(tree);
    }
    TreeDropTarget at(std::size_t row, double fraction) const {
        return TreeDropTarget::at(row, fraction, rows, tree);
    }
};

} // namespace

TEST(TreeDropTarget, GoesIntoTheMiddleOfAnElement) {
    const Outline outline;
    EXPECT_EQ(outline.at(1, 0.5), (TreeDropTarget{1, Placement::lastChild}));
    EXPECT_TRUE(outline.at(1, 0.5).isInto());
    EXPECT_EQ(outline.at(3, 0.26), (TreeDropTarget{3, Placement::lastChild}));
}

TEST(TreeDropTarget, GoesBesideAnElementAtItsEdges) {
    const Outline outline;
    EXPECT_EQ(outline.at(1, 0.1), (TreeDropTarget{1, Placement::before}));
    EXPECT_EQ(outline.at(1, 0.9), (TreeDropTarget{1, Placement::after}));
    EXPECT_FALSE(outline.at(1, 0.1).isInto());
}

TEST(TreeDropTarget, GoesBeforeTheFirstChildThatIsShownBelowItsParent) {
    EXPECT_EQ(Outline().at(0, 0.9), (TreeDropTarget{0, Placement::firstChild}));
}

TEST(TreeDropTarget, NeverGoesIntoWhatHasNoChildren) {
    const Outline outline;
    EXPECT_EQ(outline.at(2, 0.4), (TreeDropTarget{2, Placement::before}));
    EXPECT_EQ(outline.at(2, 0.6), (TreeDropTarget{2, Placement::after}));
}

TEST(TreeDropTarget, RefusesToMoveANodeIntoItself) {
    const Outline outline;
    const auto accepts = [&](std::size_t dragged, std::size_t target, Qt::DropAction action) {
        return TreeDropTarget{target, Placement::after}.accepts(outline.rows[dragged].node, action,
                                                                outline.rows, outline.tree);
    };
    EXPECT_FALSE(accepts(0, 0, Qt::MoveAction));
    EXPECT_FALSE(accepts(0, 3, Qt::MoveAction));
    EXPECT_FALSE(accepts(1, 1, Qt::MoveAction));
    EXPECT_TRUE(accepts(1, 0, Qt::MoveAction));
    EXPECT_TRUE(accepts(1, 2, Qt::MoveAction));
    EXPECT_TRUE(accepts(3, 1, Qt::MoveAction));
    EXPECT_TRUE(accepts(0, 3, Qt::CopyAction));
}
