#include "NodeAddition.h"

#include "TreeParser.h"

#include <gtest/gtest.h>

namespace {

using NodeAddition::Failure;
using NodeAddition::Result;

struct Row {
    std::u16string_view before;
    NodePath path;
    std::u16string_view after;
};

template <class Add>
void check(const Row& row, std::u16string_view selected, Add add) {
    const DocumentTree tree = TreeParser::parse(SourceText(row.before));
    const Result plan = add(row.path, tree, IndentStyle::spaces(2));
    ASSERT_TRUE(plan.has_value());
    const std::u16string after = TextEdit::apply(plan->edits, row.before);
    EXPECT_EQ(after, row.after);
    EXPECT_EQ(after.substr(plan->selectOffset.value(), selected.size()), selected);
}

Result add(std::u16string_view before, const NodePath& path, bool isComment, std::u16string_view text) {
    const DocumentTree tree = TreeParser::parse(SourceText(before));
    return isComment ? NodeAddition::comment(text, path, tree, {})
                     : NodeAddition::text(std::u16string(text), path, tree, {});
}

} // namespace

TEST(NodeAddition, PutsTextWhereItIsReadAsItIs) {
    for (const Row& row : {
             Row{u"<a/>", {{0}}, u"<a>t</a>"},
             Row{u"<a></a>", {{0}}, u"<a>t</a>"},
             Row{u"<a>\n</a>", {{0}}, u"<a>t</a>"},
             Row{u"<a>uno</a>", {{0}}, u"<a>unot</a>"},
             Row{u"<a>uno</a>", {{0, 0}}, u"<a>unot</a>"},
             Row{u"<a><b/></a>", {{0}}, u"<a><b/>t</a>"},
             Row{u"<a>\n  <b/>\n</a>", {{0}}, u"<a>\n  <b/>\n  t\n</a>"},
             Row{u"<a><!--c--></a>", {{0, 0}}, u"<a><!--c-->t</a>"},
             Row{u"<a><![CDATA[x]]></a>", {{0}}, u"<a><![CDATA[x]]>t</a>"},
         }) {
        check(row, u"t", [](const NodePath& path, const DocumentTree& tree, IndentStyle indent) {
            return NodeAddition::text(u"t", path, tree, indent);
        });
    }
}

TEST(NodeAddition, PutsACommentIntoAnElementOrBehindAnotherNode) {
    for (const Row& row : {
             Row{u"<a/>", {{0}}, u"<a>\n  <!-- c -->\n</a>"},
             Row{u"<a>\n  <b/>\n</a>", {{0}}, u"<a>\n  <b/>\n  <!-- c -->\n</a>"},
             Row{u"<a>uno</a>", {{0}}, u"<a>uno<!-- c --></a>"},
             Row{u"<a>uno</a>", {{0, 0}}, u"<a>uno<!-- c --></a>"},
             Row{u"<?x?>\n<a/>", {{0}}, u"<?x?>\n<!-- c -->\n<a/>"},
             Row{u"<a/>", {}, u"<a/>\n<!-- c -->"},
         }) {
        check(row, u"<!-- c -->", [](const NodePath& path, const DocumentTree& tree, IndentStyle indent) {
            return NodeAddition::comment(u"c", path, tree, indent);
        });
    }
}

TEST(NodeAddition, FailsWithACause) {
    const Failure outside = NodeAddition::TextOutsideRoot();
    EXPECT_EQ(add(u"<a/>", {}, false, u"t").error(), outside);
    EXPECT_EQ(add(u"<!--c--><a/>", {{0}}, false, u"t").error(), outside);
    EXPECT_EQ(add(u"<a/>", {{0}}, true, u"x -- y").error(), Failure(NodeAddition::DoubleHyphen()));
    EXPECT_EQ(add(u"<a/>", {{0}}, true, u"-->").error(), Failure(NodeAddition::DoubleHyphen()));
    EXPECT_TRUE(add(u"<a/>", {{0}}, true, u"x - y -").has_value());
    const Failure missing = MutationPlanner::Failure(MutationPlanner::NodeNotFound());
    EXPECT_EQ(add(u"<a/>", {{3}}, true, u"c").error(), missing);
    EXPECT_EQ(add(u"<a/>", {{3}}, false, u"t").error(), missing);
    EXPECT_EQ(NodeAddition::message(outside),
              QStringLiteral("Fuera del elemento raíz no puede haber texto."));
    EXPECT_EQ(NodeAddition::message(missing), QStringLiteral("El nodo ya no existe."));
    EXPECT_TRUE(NodeAddition::message(NodeAddition::DoubleHyphen()).contains(QStringLiteral("“--”")));
}
