#include "DocumentOutlineView.h"

#include "TreeParser.h"

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace {

DocumentTree parse(std::u16string_view text) { return TreeParser::parse(SourceText(text)); }

} // namespace

TEST(DocumentOutlineView, OpensTheRootAtFirst) {
    const DocumentTree tree = parse(u"<?xml version='1.0'?><a><b><c/></b></a>");
    DocumentOutlineView view;
    view.setTree(tree);
    const QModelIndex root = view.model()->index(1, 0);
    EXPECT_TRUE(view.isExpanded(root));
    EXPECT_FALSE(view.isExpanded(view.model()->index(0, 0, root)));
}

TEST(DocumentOutlineView, KeepsOpenWhatTheUserOpened) {
    const DocumentTree before = parse(u"<a><b><c/></b><d><e/></d></a>");
    const DocumentTree after = parse(u"<a><b>texto<c/></b><d><e/></d><f/></a>");
    DocumentOutlineView view;
    view.setTree(before);
    const auto at = [&](int row) { return view.model()->index(row, 0, view.model()->index(0, 0)); };
    view.expand(at(1));
    view.setCurrentIndex(at(0));

    QSignalSpy chosen(&view, &DocumentOutlineView::nodeChosen);
    view.setTree(after);
    EXPECT_TRUE(view.isExpanded(view.model()->index(0, 0)));
    EXPECT_FALSE(view.isExpanded(at(0)));
    EXPECT_TRUE(view.isExpanded(at(1)));
    EXPECT_EQ(view.currentIndex(), at(0));
    EXPECT_EQ(chosen.count(), 0);
}

TEST(DocumentOutlineView, KeepsClosedWhatTheUserClosed) {
    const DocumentTree tree = parse(u"<a><b/></a>");
    DocumentOutlineView view;
    view.setTree(tree);
    view.collapse(view.model()->index(0, 0));
    view.setTree(tree);
    EXPECT_FALSE(view.isExpanded(view.model()->index(0, 0)));
}

TEST(DocumentOutlineView, TellsWhichNodeTheUserChose) {
    const DocumentTree tree = parse(u"<a><b/><c/></a>");
    DocumentOutlineView view;
    view.setTree(tree);
    view.resize(200, 200);
    view.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    QSignalSpy chosen(&view, &DocumentOutlineView::nodeChosen);
    const QModelIndex second = view.model()->index(1, 0, view.model()->index(0, 0));
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.visualRect(second).center());
    ASSERT_EQ(chosen.count(), 1);
    EXPECT_EQ(tree.name(chosen.front().front().value<NodeID>()), u"c");
    QTest::keyClick(&view, Qt::Key_Up);
    ASSERT_EQ(chosen.count(), 2);
    EXPECT_EQ(tree.name(chosen.back().front().value<NodeID>()), u"b");
}

TEST(DocumentOutlineView, OpensADeepBranchByOneKey) {
    std::u16string text;
    for (int each = 0; each < 200'000; ++each) {
        text += u"<a>";
    }
    const DocumentTree tree = parse(text);
    DocumentOutlineView view;
    view.setTree(tree);
    const QModelIndex root = view.model()->index(0, 0);
    view.setCurrentIndex(root);
    QTest::keyClick(&view, Qt::Key_Asterisk);

    int opened = 0;
    for (QModelIndex row = root; view.isExpanded(row); row = view.model()->index(0, 0, row)) {
        ++opened;
    }
    EXPECT_EQ(opened, 500);
}

TEST(DocumentOutlineView, OpensAllOfASmallBranchByOneKey) {
    const DocumentTree tree = parse(u"<a><b><c><d/></c></b><e><f/></e></a>");
    DocumentOutlineView view;
    view.setTree(tree);
    const QModelIndex root = view.model()->index(0, 0);
    view.setCurrentIndex(view.model()->index(0, 0, root));
    QTest::keyClick(&view, Qt::Key_Asterisk);
    EXPECT_TRUE(view.isExpanded(view.model()->index(0, 0, root)));
    EXPECT_TRUE(view.isExpanded(view.model()->index(0, 0, view.model()->index(0, 0, root))));
    EXPECT_FALSE(view.isExpanded(view.model()->index(1, 0, root)));
}
