#include "ExpansionCarry.h"

#include "Repeated.h"
#include "TreeOutline.h"
#include "TreeParser.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using ExpansionCarry::Absent;
using ExpansionCarry::Expansion;

/// A document that is edited, with what is expanded in it. Elements of attribute `e` are, to begin with.
class ExpansionCarryTest : public testing::Test {
protected:
    void open(std::u16string text) {
        m_text = std::move(text);
        m_tree = TreeParser::parse(SourceText(m_text));
        for (NodeID node{1}; node.raw < m_tree.nodes.size(); ++node.raw) {
            if (m_tree.attribute(u"e", node)) {
                m_now.expanded.insert(m_tree.path(node));
            }
        }
    }

    /// Replaces the first `old`, and carries.
    void replace(std::u16string_view old, std::u16string_view replacement) {
        edit(old, replacement);
        parse();
    }
    void edit(std::u16string_view old, std::u16string_view replacement) {
        const std::size_t at = m_text.find(old);
        m_text.replace(at, old.size(), replacement);
        m_edits.add(SourceRange::at(std::int64_t(at), std::int64_t(old.size())),
                    static_cast<Offset>(replacement.size()));
    }
    void parse() {
        DocumentTree tree = TreeParser::parse(SourceText(m_text));
        NodeCarry nodes(m_tree, tree, std::exchange(m_edits, {}));
        m_now = ExpansionCarry::carried(m_now.expanded, m_now.absent, nodes);
        m_tree = std::move(tree);
    }

    /// The names of the expanded elements, in document order.
    std::u16string expanded() const {
        std::u16string names;
        for (NodeID node{1}; node.raw < m_tree.nodes.size(); ++node.raw) {
            if (m_now.expanded.contains(m_tree.path(node))) {
                names += m_tree.name(node);
            }
        }
        return names;
    }

    std::u16string m_text;
    DocumentTree m_tree;
    EditedPieces m_edits;
    Expansion m_now;
};

TEST_F(ExpansionCarryTest, FollowsTheNodes) {
    open(u"<a e=''><b e=''><c/></b><d><f e=''/></d></a>");
    ASSERT_EQ(expanded(), u"abf");
    replace(u"<a ", u"<!-- hola --><a ");
    EXPECT_EQ(expanded(), u"abf");
    replace(u"<b ", u"<x/><y/><b ");
    EXPECT_EQ(expanded(), u"abf");
    replace(u"<x/><y/>", u"");
    EXPECT_EQ(expanded(), u"abf");
    replace(u"<d>", u"texto<d>");
    EXPECT_EQ(expanded(), u"abf");
}

TEST_F(ExpansionCarryTest, SurvivesACommentThatIsBeingTyped) {
    open(u"<a e=''><b e=''><c/></b><d e=''/></a>");
    // Put in at the start.
    replace(u"", u"<!--");
    EXPECT_EQ(expanded(), u"");
    EXPECT_EQ(m_now.absent.hidden.size(), 3U);
    replace(u"<!--", u"<!-- x");
    replace(u"<!-- x", u"<!-- x -->");
    EXPECT_EQ(expanded(), u"abd");
    EXPECT_TRUE(m_now.absent.hidden.empty());
}

TEST_F(ExpansionCarryTest, KnowsWhatIsPutBack) {
    open(u"<a e=''><b e=''><c e=''><x/></c></b><b><y/></b></a>");
    replace(u"<b e=''><c e=''><x/></c></b>", u"");
    EXPECT_EQ(expanded(), u"a");
    replace(u"<b><y/>", u"<z/><b><y/>");
    EXPECT_EQ(expanded(), u"a");
    replace(u"<z/>", u"<z/><b e=''><c e=''><x/></c></b>");
    EXPECT_EQ(expanded(), u"abc");
    EXPECT_TRUE(m_now.absent.deleted.empty());
}

TEST_F(ExpansionCarryTest, FollowsAMovedNodeWithAllInIt) {
    open(u"<a e=''><b e=''><c e=''><x/></c></b><d e=''><y/></d></a>");
    edit(u"<b e=''><c e=''><x/></c></b>", u"");
    edit(u"<y/>", u"<y/><b e=''><c e=''><x/></c></b>");
    parse();
    EXPECT_EQ(expanded(), u"adbc");
}

TEST_F(ExpansionCarryTest, ExpandsWhatIsPutAround) {
    open(u"<a e=''><b e=''><c/></b></a>");
    edit(u"<b ", u"<x><b ");
    edit(u"</b>", u"</b></x>");
    parse();
    EXPECT_EQ(expanded(), u"axb");
    edit(u"<x>", u"");
    edit(u"</x>", u"");
    parse();
    EXPECT_EQ(expanded(), u"ab");
}

TEST_F(ExpansionCarryTest, LeavesCollapsedWhatWasWhenAllIsReplaced) {
    open(u"<a><b e=''><c/></b></a>");
    const std::u16string all = m_text;
    replace(all, u"<a>\n  <b e=''>\n    <c/>\n  </b>\n</a>\n");
    EXPECT_EQ(expanded(), u"b");
    const std::u16string formatted = m_text;
    replace(formatted, u"<otro><p><q/></p></otro>");
    EXPECT_EQ(expanded(), u"p");
}

TEST_F(ExpansionCarryTest, CarriesPathsOfAnyDepthAndNumber) {
    constexpr std::size_t depth = 2000;
    open(u"<r>" + repeated(u"<a e=''>", depth) + repeated(u"</a>", depth) + repeated(u"<b e=''/>", 2001) +
         u"</r>");
    replace(u"<r>", u"<!--x--><r>");
    EXPECT_EQ(m_now.expanded.contains(NodePath{{1, 2000}}), true);
    NodePath deepest{std::vector<std::uint32_t>(depth + 1, 0)};
    deepest.indices[0] = 1;
    EXPECT_TRUE(m_now.expanded.contains(deepest));
}

} // namespace
