#include "NodeCarry.h"

#include "TreeParser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

/// A replacement in a text: the first place where `old` stands.
struct Edit {
    std::u16string_view old;
    std::u16string_view replacement;
    std::size_t offset = 0; ///< Into `old`, of what is replaced.
    std::size_t length = std::u16string_view::npos;
};

/// Replaces all of `old`.
Edit replace(std::u16string_view old, std::u16string_view replacement) {
    return {old, replacement, 0, old.size()};
}
Edit insertBefore(std::u16string_view place, std::u16string_view inserted) { return {place, inserted, 0, 0}; }

struct Step {
    DocumentTree from;
    DocumentTree to;
    EditedPieces edits;

    Step(std::u16string_view text, const std::vector<Edit>& all) : from(TreeParser::parse(SourceText(text))) {
        std::u16string now(text);
        for (const Edit& edit : all) {
            const std::size_t at = now.find(edit.old) + edit.offset;
            now.replace(at, edit.length, edit.replacement);
            edits.add(SourceRange::at(std::int64_t(at), std::int64_t(edit.length)),
                      static_cast<Offset>(edit.replacement.size()));
        }
        to = TreeParser::parse(SourceText(now));
    }

    /// What the node that starts at `source` has become: its source, or "-".
    std::u16string carried(std::u16string_view source) const {
        NodeCarry nodes(from, to, edits);
        const auto at = static_cast<Offset>(from.text.units().find(source));
        const auto path = nodes.carried(from.path(from.node(at)));
        return path ? std::u16string(to.source(*to.resolve(*path))) : u"-";
    }
};

} // namespace

TEST(NodeCarry, FindsNodesBehindWhatWasTyped) {
    const std::u16string_view text = u"<a><b>uno</b><c/><!--x--><?p q?></a>";
    const Step comment(text, {insertBefore(u"<a>", u"<!-- hola -->")});
    EXPECT_EQ(comment.carried(u"<b>"), u"<b>uno</b>");
    EXPECT_EQ(comment.carried(u"uno"), u"uno");
    EXPECT_EQ(comment.carried(u"<!--x"), u"<!--x-->");
    EXPECT_EQ(comment.carried(u"<?p"), u"<?p q?>");
    const Step sibling(text, {insertBefore(u"<c/>", u"<c/>")});
    EXPECT_EQ(sibling.to.path(NodeID{4}), (NodePath{{0, 1}}));
    NodeCarry nodes(sibling.from, sibling.to, sibling.edits);
    EXPECT_EQ(nodes.carried(NodePath{{0, 1}}), (NodePath{{0, 2}}));
}

TEST(NodeCarry, KnowsARenamedNode) {
    EXPECT_EQ(Step(u"<a><b/><c/></a>", {replace(u"b", u"libro")}).carried(u"<b"), u"<libro/>");
    EXPECT_EQ(Step(u"<a><b/><c/></a>", {insertBefore(u"b/", u"x")}).carried(u"<b"), u"<xb/>");
    EXPECT_EQ(Step(u"<a><libro/><c/></a>", {replace(u"l", u"")}).carried(u"<libro"), u"<ibro/>");
    EXPECT_EQ(Step(u"<a><c/><b/></a>", {replace(u"c/><", u"")}).carried(u"<c"), u"-");
}

TEST(NodeCarry, KnowsATextThatIsTypedInto) {
    EXPECT_EQ(Step(u"<a>uno</a>", {insertBefore(u"uno", u"x")}).carried(u"uno"), u"xuno");
    EXPECT_EQ(Step(u"<a>uno</a>", {replace(u"un", u"")}).carried(u"uno"), u"o");
    EXPECT_EQ(Step(u"<a>uno</a>", {replace(u"uno", u"otra cosa")}).carried(u"uno"), u"otra cosa");
}

TEST(NodeCarry, GivesNothingForWhatWasDeleted) {
    const Step deleted(u"<a><b/><c/></a>", {replace(u"<b/>", u"")});
    EXPECT_EQ(deleted.carried(u"<b/>"), u"-");
    EXPECT_EQ(deleted.carried(u"<c/>"), u"<c/>");
    EXPECT_EQ(Step(u"<a><b/><b/></a>", {replace(u"<b/>", u"")}).carried(u"<b/>"), u"-");
}

TEST(NodeCarry, KnowsNeighboursThatAnEditReadsTheSameAs) {
    // A comparison of two versions of a file finds the difference behind what they have in common.
    const Step put(u"<a><b n='0'/></a>", {insertBefore(u"0'", u"1'/><b n='")});
    EXPECT_EQ(put.to.text.units(), u"<a><b n='1'/><b n='0'/></a>");
    EXPECT_EQ(put.carried(u"<b"), u"<b n='0'/>");
}

TEST(NodeCarry, FollowsWhatWasMoved) {
    const Step moved(u"<a><b>uno</b><c/><d/></a>",
                     {replace(u"<b>uno</b>", u""), insertBefore(u"</a>", u"<b>uno</b>")});
    EXPECT_EQ(moved.carried(u"<b>"), u"<b>uno</b>");
    EXPECT_EQ(moved.carried(u"uno"), u"uno");
    EXPECT_EQ(moved.carried(u"<c/>"), u"<c/>");
    const Step into(
        u"<a>\n  <b>uno</b>\n  <c>\n    <e/>\n  </c>\n</a>",
        {replace(u"  <b>uno</b>\n", u""), insertBefore(u"  </c>", u"    <b>\n      uno\n    </b>\n")});
    EXPECT_EQ(into.carried(u"<b>"), u"<b>\n      uno\n    </b>");
}

TEST(NodeCarry, FindsAllOfAFormattedDocument) {
    const std::u16string_view text = u"<a><b><c/></b><b><d>x</d></b><b/></a>";
    const Step formatted(
        text, {replace(text, u"<a>\n  <b>\n    <c/>\n  </b>\n  <b>\n    <d>x</d>\n  </b>\n  <b/>\n</a>")});
    NodeCarry nodes(formatted.from, formatted.to, formatted.edits);
    for (NodeID node{0}; node.raw < formatted.from.nodes.size(); ++node.raw) {
        const NodePath path = formatted.from.path(node);
        EXPECT_EQ(nodes.carried(path), path);
    }
}

TEST(NodeCarry, FindsRenamedNodesOfAReplacedStretch) {
    const std::u16string_view text = u"<a><b><c/></b><b><d>x</d></b></a>";
    const Step renamed(text, {replace(text, u"<a><z><c/></z><z><d>x</d></z></a>")});
    EXPECT_EQ(renamed.carried(u"<b><d>"), u"<z><d>x</d></z>");
}

TEST(NodeCarry, PassesThePathOnToWhatStandsThereInstead) {
    EXPECT_EQ(Step(u"<a><b/></a>", {replace(u"<a><b/></a>", u"<x><y/><z/></x>")}).carried(u"<b/>"), u"<y/>");
}

TEST(NodeCarry, KnowsWhatWasAdded) {
    const Step step(u"<a><b/></a>", {replace(u"<b/>", u"<c/><b/><d/>")});
    NodeCarry nodes(step.from, step.to, step.edits);
    std::u16string added;
    for (NodeID node{0}; node.raw < step.to.nodes.size(); ++node.raw) {
        if (nodes.isAdded(node)) {
            added += step.to.source(node);
        }
    }
    EXPECT_EQ(added, u"<c/><d/>");
    EXPECT_EQ(nodes.newNodes().size(), 3U);
}
