#include "TreeNode.h"

#include "TreeParser.h"

#include <gtest/gtest.h>
#include <string>

namespace {

TreeNode firstNode(const std::u16string& units) { return TreeParser::parse(SourceText(units))[NodeID{1}]; }

} // namespace

TEST(NodeID, DescribesItself) {
    EXPECT_EQ(NodeID{0xFFFFFFFF}.description(), "#none");
    EXPECT_EQ(NodeID::none().description(), "#none");
    EXPECT_EQ(NodeID{3}.description(), "#3");
    EXPECT_EQ(NodeID::document().description(), "#0");
    EXPECT_TRUE(NodeID().isNone());
    EXPECT_FALSE(NodeID{0xFFFFFFFE}.isNone());
}

TEST(NodeID, ComparesByIndex) {
    EXPECT_EQ(NodeID{2}, NodeID{2});
    EXPECT_LT(NodeID{1}, NodeID{2});
    EXPECT_EQ(std::hash<NodeID>()(NodeID{2}), std::hash<NodeID>()(NodeID{2}));
}

TEST(TreeNode, KindsAndFlagsKeepTheirNumbers) {
    using enum TreeNode::Kind;
    int raw = 0;
    for (const TreeNode::Kind kind : {document, element, text, comment, cdata, instruction, doctype}) {
        EXPECT_EQ(static_cast<int>(kind), raw++);
    }
    EXPECT_EQ(TreeNode::selfClosing.rawValue, 1);
    EXPECT_EQ(TreeNode::hasCloseTag.rawValue, 2);
    EXPECT_EQ(TreeNode::unterminated.rawValue, 4);
    EXPECT_EQ(TreeNode::unclosed.rawValue, 8);
    const TreeNode::Flags cutOff = TreeNode::selfClosing | TreeNode::unterminated;
    EXPECT_EQ(cutOff.rawValue, 5);
    EXPECT_TRUE(cutOff.contains(TreeNode::unterminated));
    EXPECT_FALSE(cutOff.contains(TreeNode::selfClosing | TreeNode::unclosed));
}

TEST(TreeNode, TellsItsTags) {
    const struct {
        std::u16string input;
        SourceRange startTag;
        std::optional<SourceRange> closeName;
    } rows[] = {
        {u"<ab>x</ab>", {0, 4}, SourceRange(7, 9)}, {u"<ab c='d'></ab  >", {0, 10}, SourceRange(12, 14)},
        {u"<ab/>", {0, 5}, std::nullopt},           {u"<ab c", {0, 5}, std::nullopt},
        {u"<ab> ", {0, 4}, std::nullopt},           {u" x ", {0, 3}, std::nullopt},
        {u"<!--x-->", {0, 8}, std::nullopt},        {u"<![CDATA[]]>", {0, 12}, std::nullopt},
    };
    for (const auto& row : rows) {
        const TreeNode node = firstNode(row.input);
        EXPECT_EQ(node.startTagRange(), row.startTag);
        EXPECT_EQ(node.closeNameRange(), row.closeName);
    }
}

TEST(TreeNode, TellsElementsAndChildren) {
    EXPECT_TRUE(firstNode(u"<a>x</a>").isElement());
    EXPECT_TRUE(firstNode(u"<a>x</a>").hasChildren());
    EXPECT_FALSE(firstNode(u"<a> </a>").hasChildren());
    EXPECT_FALSE(firstNode(u"x").isElement());
}

TEST(TreeNode, ComparesAllFields) {
    const TreeNode node = firstNode(u"<a>x</a>");
    TreeNode other = node;
    EXPECT_EQ(node, other);
    EXPECT_EQ(std::hash<TreeNode>()(node), std::hash<TreeNode>()(other));
    other.childCount = 7;
    EXPECT_NE(node, other);
    const AttributeSpan attribute{{0, 5}, {0, 1}, {3, 4}, u'"'};
    AttributeSpan otherAttribute = attribute;
    EXPECT_EQ(attribute, otherAttribute);
    EXPECT_EQ(std::hash<AttributeSpan>()(attribute), std::hash<AttributeSpan>()(otherAttribute));
    otherAttribute.quote = u'\'';
    EXPECT_NE(attribute, otherAttribute);
}
