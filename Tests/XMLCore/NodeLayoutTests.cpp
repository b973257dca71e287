#include "NodeLayout.h"

#include "MarkedNode.h"
#include "RandomDocument.h"
#include "TreeParser.h"

#include <gtest/gtest.h>

namespace {

constexpr IndentStyle twoSpaces = IndentStyle::spaces(2);

DocumentTree parse(const std::u16string& text) { return TreeParser::parse(SourceText(text)); }

struct Row {
    std::u16string marked;
    bool startsLine;
    std::u16string lineIndentation;
    std::u16string childIndentation;
};

struct DeletionRow {
    std::u16string marked;
    std::u16string deleted;
};

struct ReindentRow {
    std::u16string source;
    std::u16string from;
    std::u16string to;
    std::u16string expected;
};

} // namespace

TEST(NodeLayout, TellsHowNodesStandOnTheirLines) {
    const std::vector<Row> rows = {
        {u"|<a/>", true, u"", u"  "},
        {u"  |<a/>", true, u"  ", u"    "},
        {u"\t |<a/>", true, u"\t ", u"\t   "},
        {u"<r>\n   |<a/></r>", true, u"   ", u"     "},
        {u" <r>|<a/></r>", false, u" ", u"   "},
        {u"<r/>\r   |<a/>", false, u"", u"  "},
        {u"  |text", false, u"  ", u"    "},
        {u"|<a>\n      <b/></a>", true, u"", u"      "},
        {u"|<a>text\n\t<b/></a>", true, u"", u"\t"},
        {u"|<a> <b/>\n      <c/></a>", true, u"", u"  "},
        {u"|<a>\n      text</a>", true, u"", u"  "},
        {u"|<a>\n      <!-- c --></a>", true, u"", u"      "},
    };
    for (const Row& row : rows) {
        const MarkedNode marked(row.marked);
        NodeLayout layout(marked.tree, twoSpaces);
        EXPECT_EQ(layout.startsLine(marked.node), row.startsLine) << ::testing::PrintToString(row.marked);
        EXPECT_EQ(layout.childIndentation(marked.node), row.childIndentation)
            << ::testing::PrintToString(row.marked);
        EXPECT_EQ(layout.lineIndentation(marked.node), row.lineIndentation)
            << ::testing::PrintToString(row.marked);
    }
}

TEST(NodeLayout, IndentsNothingInsideTheDocument) {
    const DocumentTree tree = parse(u"    <a/>");
    EXPECT_EQ(NodeLayout(tree, twoSpaces).childIndentation(NodeID::document()), u"");
}

TEST(NodeLayout, WritesTheDocumentsLineBreaks) {
    const std::vector<std::pair<std::u16string, std::u16string>> rows = {
        {u"", u"\n"},        {u"<a/>", u"\n"},      {u"\n", u"\n"},       {u"\r\n", u"\r\n"}, {u"a\r", u"\n"},
        {u"a\n\r\n", u"\n"}, {u"a\r\n\n", u"\r\n"}, {u"\r\r\n", u"\r\n"}, {u"\n\r\n", u"\n"}, {u"\r", u"\n"},
    };
    for (const auto& [text, lineBreak] : rows) {
        const DocumentTree tree = parse(text);
        EXPECT_EQ(NodeLayout(tree, twoSpaces).lineBreak(), lineBreak) << ::testing::PrintToString(text);
        EXPECT_EQ(tree.text.lineEnding(), lineBreak) << ::testing::PrintToString(text);
    }
}

TEST(NodeLayout, DeletesWholeLinesOrNodes) {
    const std::vector<DeletionRow> rows = {
        {u"<r>\n  |<a/> \t\n</r>", u"  <a/> \t\n"},
        {u"<r>\n  |<a/>\r\n</r>", u"  <a/>\r\n"},
        {u"<r>\n  |<a/>\r</r>", u"<a/>"},
        {u"<r>\n  |<a/>x</r>", u"<a/>"},
        {u"<r> |<a/>\n</r>", u"<a/>"},
        {u"<r/>\n  |<a/>  ", u"\n  <a/>  "},
        {u"<r/>\r\n|<a/>", u"\r\n<a/>"},
        {u"<r/>\n\r\n|<a/>", u"\r\n<a/>"},
        {u" |<a/>\t", u" <a/>\t"},
        {u" |<a>\n</a>\n", u" <a>\n</a>\n"},
    };
    for (const DeletionRow& row : rows) {
        const MarkedNode marked(row.marked);
        const SourceRange range = NodeLayout(marked.tree, twoSpaces).deletionRange(marked.node);
        EXPECT_EQ(marked.tree.text.units(range), row.deleted) << ::testing::PrintToString(row.marked);
    }
}

TEST(NodeLayout, RemembersLinesWithoutMixingThemUp) {
    Random random;
    for (int round = 0; round < 500; ++round) {
        const DocumentTree tree = parse(RandomDocument::broken(random));
        NodeLayout layout(tree, twoSpaces);
        for (int question = 0; question < 20; ++question) {
            const NodeID node{static_cast<std::uint32_t>(random.below(tree.nodes.size()))};
            const Offset start = tree[node].range.lower;
            const std::u16string indentation = tree.text.indentation(start);
            const bool startsLine = tree.text.lineStart(start) + indentation.size() == start;
            ASSERT_EQ(layout.lineIndentation(node), indentation)
                << ::testing::PrintToString(tree.text.units());
            ASSERT_EQ(layout.startsLine(node), startsLine) << ::testing::PrintToString(tree.text.units());
        }
    }
}

TEST(NodeLayout, Reindents) {
    const std::vector<ReindentRow> rows = {
        {u"<a/>", u"", u"  ", u"<a/>"},
        {u"<a>\n</a>", u"", u"  ", u"<a>\n  </a>"},
        {u"<a>\n\n</a>", u"", u"  ", u"<a>\n  \n  </a>"},
        {u"<a>\n  </a>", u"  ", u"", u"<a>\n</a>"},
        {u"  <a>\n    <b/>\n  </a>", u"  ", u"\t", u"  <a>\n\t  <b/>\n\t</a>"},
        {u"<a>\n odd\n  </a>", u"  ", u"\t", u"<a>\n odd\n\t</a>"},
        {u"<a>\r\n  </a>\r\n", u"  ", u" ", u"<a>\r\n </a>\r\n"},
        {u"<a>\n  </a>", u"  ", u"  ", u"<a>\n  </a>"},
        {u"a\n", u"", u" ", u"a\n "},
        {u"", u"", u" ", u""},
    };
    for (const ReindentRow& row : rows) {
        EXPECT_EQ(reindented(row.source, row.from, row.to), row.expected)
            << ::testing::PrintToString(row.source);
    }
}

TEST(NodeLayout, LeavesTextAloneThatIndentationWouldBlowUp) {
    const std::u16string lines(1'000'000, u'\n');
    const std::u16string absurd(1'000'000, u' ');
    EXPECT_TRUE(reindented(lines, u"", absurd) == lines);
    EXPECT_EQ(reindented(lines, u"", u"    ").size(), 5 * lines.size());
}
