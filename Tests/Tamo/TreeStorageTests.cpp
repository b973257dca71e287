#include "TreeStorage.h"

#include "Repeated.h"
#include "TreeParser.h"

#include <gtest/gtest.h>

TEST(TreeStorage, HasRoomForTheTreeOfAnEvenText) {
    const SourceText text(u"<r>" + repeated(u"<a b='c'>text &amp; text</a>\n<!-- note --><d/>", 100'000) +
                          u"</r>");
    TreeStorage storage(text);
    DocumentTree recycled = storage.take();
    const std::size_t nodes = recycled.nodes.capacity();
    const std::size_t attributes = recycled.attributes.capacity();
    const TreeNode* const begin = recycled.nodes.begin();
    storage.touch();
    const DocumentTree tree = TreeParser::parse(text, {}, std::move(recycled));
    EXPECT_EQ(tree.nodes.begin(), begin);
    EXPECT_LE(tree.nodes.size(), nodes);
    EXPECT_GE(tree.nodes.size(), nodes - nodes / 4);
    EXPECT_LE(tree.attributes.size(), attributes);
    EXPECT_GE(tree.attributes.size(), attributes - attributes / 4);
}

TEST(TreeStorage, TakesAnyText) {
    for (const std::u16string& units : {std::u16string(), std::u16string(u"<a/>"),
                                        std::u16string(1'000'000, u'<'), repeated(u"x='", 500'000)}) {
        const SourceText text(units);
        TreeStorage storage(text);
        const DocumentTree tree = TreeParser::parse(text, {}, storage.take());
        storage.touch();
        EXPECT_EQ(tree.nodes[0].range, text.fullRange());
    }
}
