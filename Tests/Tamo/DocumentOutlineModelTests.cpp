#include "DocumentOutlineModel.h"

#include "TreeParser.h"

#include <QAbstractItemModelTester>

#include <gtest/gtest.h>

namespace {

DocumentTree parse(std::u16string_view text) { return TreeParser::parse(SourceText(text)); }

QString label(const QModelIndex& index) { return index.data().toString(); }

} // namespace

TEST(DocumentOutlineModel, ShowsTheNodesAsRows) {
    const DocumentTree tree =
        parse(u"<?xml version=\"1.0\"?>\n<!-- nota -->\n<a><b>uno</b><![CDATA[x<y]]><c/></a>");
    DocumentOutlineModel model;
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    model.setTree(&tree);

    ASSERT_EQ(model.rowCount(), 3);
    EXPECT_EQ(label(model.index(0, 0)), QStringLiteral("?xml"));
    EXPECT_EQ(label(model.index(1, 0)), QStringLiteral("nota"));
    const QModelIndex root = model.index(2, 0);
    EXPECT_EQ(label(root), QStringLiteral("a"));
    ASSERT_EQ(model.rowCount(root), 3);
    EXPECT_EQ(label(model.index(0, 0, root)), QStringLiteral("b  uno"));
    EXPECT_EQ(label(model.index(1, 0, root)), QStringLiteral("CDATA x<y"));
    EXPECT_EQ(label(model.index(2, 0, root)), QStringLiteral("c"));
    EXPECT_FALSE(model.hasChildren(model.index(2, 0, root)));
}

TEST(DocumentOutlineModel, FindsRowsAndNodesBothWays) {
    const DocumentTree tree = parse(u"<a><b/><c><d/></c></a>");
    DocumentOutlineModel model;
    model.setTree(&tree);
    for (std::uint32_t raw = 1; raw < tree.nodes.size(); ++raw) {
        const QModelIndex index = model.index(NodeID{raw});
        EXPECT_EQ(model.node(index), NodeID{raw});
        EXPECT_EQ(model.node(model.parent(index)), tree[NodeID{raw}].parent);
        EXPECT_EQ(static_cast<std::size_t>(index.row()), tree.indexInParent(NodeID{raw}));
    }
    EXPECT_FALSE(model.index(NodeID::document()).isValid());
}

TEST(DocumentOutlineModel, ShowsNothingWithoutATree) {
    const DocumentTree tree = parse(u"<a/>");
    DocumentOutlineModel model;
    EXPECT_EQ(model.rowCount(), 0);
    model.setTree(&tree);
    EXPECT_EQ(model.rowCount(), 1);
    model.setTree(nullptr);
    EXPECT_EQ(model.rowCount(), 0);
}

TEST(DocumentOutlineModel, HandlesManySiblings) {
    std::u16string text = u"<a>";
    for (int child = 0; child < 200'000; ++child) {
        text += u"<b/>";
    }
    const DocumentTree tree = parse(text + u"</a>");
    DocumentOutlineModel model;
    model.setTree(&tree);
    const QModelIndex root = model.index(0, 0);
    ASSERT_EQ(model.rowCount(root), 200'000);
    // Each row found by position and each position by node: quadratic work would take minutes here.
    for (int row = 0; row < model.rowCount(root); ++row) {
        const QModelIndex index = model.index(row, 0, root);
        ASSERT_EQ(model.index(model.node(index)).row(), row);
    }
}

TEST(DocumentOutlineModel, ShowsTheStartOfAVeryLongName) {
    const std::u16string longest(200, u'n');
    const DocumentTree tree = parse(u"<a><" + longest + u"/><" + longest + u"n>x</" + longest + u"n></a>");
    DocumentOutlineModel model;
    model.setTree(&tree);
    const QModelIndex root = model.index(0, 0);
    const QString shown = QString::fromStdU16String(longest);
    EXPECT_EQ(label(model.index(0, 0, root)), shown);
    EXPECT_EQ(label(model.index(1, 0, root)), shown + QStringLiteral("…  x"));
}
