#include "Breadcrumbs.h"

#include "MarkedNode.h"
#include "Repeated.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace {

TEST(Breadcrumbs, AreNamedByElementOrKind) {
    struct Row {
        std::u16string_view marked;
        QString title;
    };
    for (const Row& row : {
             Row{u"|<a:b/>", "a:b"},
             Row{u"<a>|text</a>", "Texto"},
             Row{u"<a>|<!--c--></a>", "Comentario"},
             Row{u"<a>|<![CDATA[c]]></a>", "CDATA"},
             Row{u"|<?xml-stylesheet href=''?><a/>", "Instrucción de procesamiento xml-stylesheet"},
             Row{u"|<?", "Instrucción de procesamiento"},
             Row{u"|<!DOCTYPE a><a/>", "DOCTYPE"},
         }) {
        const MarkedNode marked{std::u16string(row.marked)};
        EXPECT_EQ(Breadcrumbs::title(marked.node, marked.tree), row.title);
    }
    EXPECT_EQ(Breadcrumbs::title(NodeID::document(), DocumentTree::empty()), QStringLiteral("Documento"));
    EXPECT_EQ(Breadcrumbs::kindTitle(TreeNode::Kind::element), QStringLiteral("Elemento"));
}

TEST(Breadcrumbs, CutLongNames) {
    const MarkedNode marked(u"|<" + repeated(u"n", 1'000) + u"/>");
    EXPECT_EQ(Breadcrumbs::title(marked.node, marked.tree), QString(100, 'n') + QStringLiteral("…"));
}

TEST(Breadcrumbs, LeadFromTheDocumentToTheNode) {
    const MarkedNode marked(u"<?x?><a><b/><b>|t</b></a>");
    const auto steps = Breadcrumbs::steps(marked.node, marked.tree.path(marked.node), marked.tree);
    const std::vector<Breadcrumb> expected{
        {{}, "Documento", TreeNode::Kind::document},
        {{{1}}, "a", TreeNode::Kind::element},
        {{{1, 1}}, "b", TreeNode::Kind::element},
        {{{1, 1, 0}}, "Texto", TreeNode::Kind::text},
    };
    EXPECT_EQ(steps, expected);
    const auto document = Breadcrumbs::steps(NodeID::document(), {}, marked.tree);
    EXPECT_EQ(document, std::vector(expected.begin(), expected.begin() + 1));
}

TEST(Breadcrumbs, LeaveOutTheMiddleOfALongWay) {
    for (const std::size_t depth : {255, 256, 10'000}) {
        const MarkedNode marked(repeated(u"<a>", depth - 1) + u"|<b/>");
        const auto steps = Breadcrumbs::steps(marked.node, marked.tree.path(marked.node), marked.tree);
        EXPECT_EQ(steps.size(), 256U);
        EXPECT_EQ(steps[127].path.indices.size(), 127U);
        EXPECT_EQ(steps[128].path.indices.size(), depth - 127);
        EXPECT_EQ(steps[128].isAfterGap, depth > 255);
        EXPECT_EQ(std::ranges::count(steps, true, &Breadcrumb::isAfterGap), depth > 255 ? 1 : 0);
        EXPECT_EQ(steps.back().path, marked.tree.path(marked.node));
        EXPECT_EQ(steps.back().title, QStringLiteral("b"));
    }
}

TEST(Breadcrumbs, KeepThePathsOfADeepNodeFew) {
    for (const std::size_t depth : {100'000, 1'000'000}) {
        const MarkedNode marked(repeated(u"<a>", depth - 1) + u"|<b/>");
        const auto steps = Breadcrumbs::steps(marked.node, marked.tree.path(marked.node), marked.tree);
        std::size_t indices = 0;
        for (const Breadcrumb& step : steps) {
            indices += step.path.indices.size();
        }
        EXPECT_LE(indices, 4 * std::max<std::size_t>(depth, 500'000) + 128 * 128);
        EXPECT_GE(steps.size(), 128U + 4U);
        EXPECT_EQ(steps.back().path, marked.tree.path(marked.node));
        EXPECT_EQ(std::ranges::count(steps, true, &Breadcrumb::isAfterGap), 1);
    }
}

} // namespace
