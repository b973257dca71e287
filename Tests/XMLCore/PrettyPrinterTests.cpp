#include "PrettyPrinter.h"

#include "RandomDocument.h"
#include "Repeated.h"
#include "TreeParser.h"
#include "UnicodeProperties.h"
#include "UnitScan.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

constexpr IndentStyle twoSpaces = IndentStyle::spaces(2);

std::u16string format(const std::u16string& text, IndentStyle indent = twoSpaces) {
    const DocumentTree tree = TreeParser::parse(SourceText(text));
    const TextEdit edit = PrettyPrinter::format(tree, indent);
    EXPECT_EQ(edit.range, tree.text.fullRange());
    return edit.replacement;
}

std::u16string minify(const std::u16string& text) {
    const DocumentTree tree = TreeParser::parse(SourceText(text));
    const TextEdit edit = PrettyPrinter::minify(tree);
    EXPECT_EQ(edit.range, tree.text.fullRange());
    return edit.replacement;
}

struct Row {
    std::u16string text;
    std::u16string formatted;
    std::u16string minified;
};

void check(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        EXPECT_EQ(format(row.text), row.formatted) << ::testing::PrintToString(row.text);
        EXPECT_EQ(minify(row.text), row.minified) << ::testing::PrintToString(row.text);
    }
}

/// A plain, recursive model of the printer, for trees that are not deep.
class Model {
public:
    Model(const DocumentTree& tree, std::u16string_view lineBreak, std::u16string_view indentUnit)
        : m_tree(tree), m_lineBreak(lineBreak), m_indentUnit(indentUnit) {}

    std::u16string print() {
        printChildren(NodeID::document(), 0);
        return m_output;
    }

private:
    static std::u16string trimmed(std::u16string text) {
        const auto isBlack = [](char16_t unit) {
            return !UnicodeProperties::isWhitespace(static_cast<char32_t>(unit));
        };
        text.erase(text.begin(), std::ranges::find_if(text, isBlack));
        while (!text.empty() && !isBlack(text.back())) {
            text.pop_back();
        }
        return text;
    }

    std::u16string source(SourceRange range) const { return std::u16string(m_tree.text.units(range)); }

    void line(std::size_t depth, const std::u16string& text) {
        if (!m_output.empty()) {
            m_output += m_lineBreak;
        }
        m_output += repeated(m_indentUnit, depth);
        m_output += text;
    }

    void printChildren(NodeID parent, std::size_t depth) {
        for (const NodeID child : m_tree.children(parent)) {
            const TreeNode& node = m_tree[child];
            if (node.kind == TreeNode::Kind::text) {
                line(depth, trimmed(source(node.range)));
            } else if (!node.isElement() || node.flags.contains(TreeNode::selfClosing)) {
                line(depth, source(node.range));
            } else {
                printElement(child, depth);
            }
        }
    }

    void printElement(NodeID element, std::size_t depth) {
        const TreeNode& node = m_tree[element];
        const std::u16string startTag = source(node.startTagRange());
        const std::u16string endTag = node.flags.contains(TreeNode::hasCloseTag)
                                          ? source({node.contentRange.upper, node.range.upper})
                                          : u"</" + source(node.nameRange) + u">";
        if (m_tree.hasOnlyTextContent(element)) {
            line(depth, startTag + trimmed(source(node.contentRange)) + endTag);
        } else {
            line(depth, startTag);
            printChildren(element, depth + 1);
            line(depth, endTag);
        }
    }

    const DocumentTree& m_tree;
    std::u16string_view m_lineBreak;
    std::u16string_view m_indentUnit;
    std::u16string m_output;
};

IndentStyle randomIndent(Random& random) {
    const std::size_t width = random.below(5);
    return width == 0 ? IndentStyle::tabs() : IndentStyle::spaces(static_cast<int>(width));
}

} // namespace

TEST(PrettyPrinter, PutsElementsOnLinesOfTheirOwn) {
    check({
        {u"", u"\n", u""},
        {u" \n ", u"\n", u""},
        {u"<r><a>x</a><b/></r>", u"<r>\n  <a>x</a>\n  <b/>\n</r>\n", u"<r><a>x</a><b/></r>"},
        {u"<r>\n  <a>x</a>\n  <b/>\n</r>\n", u"<r>\n  <a>x</a>\n  <b/>\n</r>\n", u"<r><a>x</a><b/></r>"},
        {u"<a><b><c/></b></a>", u"<a>\n  <b>\n    <c/>\n  </b>\n</a>\n", u"<a><b><c/></b></a>"},
        {u"<a></a>", u"<a></a>\n", u"<a></a>"},
        {u"<a>\n</a>", u"<a></a>\n", u"<a></a>"},
        {u"<a  />", u"<a  />\n", u"<a  />"},
        {u"<a/><b/>", u"<a/>\n<b/>\n", u"<a/><b/>"},
    });
}

TEST(PrettyPrinter, TrimsText) {
    check({
        {u"<a>  hi  </a>", u"<a>hi</a>\n", u"<a>hi</a>"},
        {u"<a> a  b </a>", u"<a>a  b</a>\n", u"<a>a  b</a>"},
        {u"<a>\u00A0\u2003x\u0085\u2028\v\f</a>", u"<a>x</a>\n", u"<a>x</a>"},
        {u"<a>\u200Bx\uFEFF</a>", u"<a>\u200Bx\uFEFF</a>\n", u"<a>\u200Bx\uFEFF</a>"},
        {u"<a>\u00A0</a>", u"<a></a>\n", u"<a></a>"},
        {u"<a> one <b/> two\n three </a>", u"<a>\n  one\n  <b/>\n  two\n three\n</a>\n",
         u"<a>one<b/>two\n three</a>"},
    });
}

TEST(PrettyPrinter, LosesNoMarkThatStandsOnASpace) {
    check({
        {u"<a> \u0301x \u0301</a>", u"<a>\u0301x \u0301</a>\n", u"<a>\u0301x \u0301</a>"},
        {u"<a><b/>\u0301x</a>", u"<a>\n  <b/>\n  \u0301x\n</a>\n", u"<a><b/>\u0301x</a>"},
        {u"<a>\n  <b/>\n  \u0301x\n</a>\n", u"<a>\n  <b/>\n  \u0301x\n</a>\n", u"<a><b/>\u0301x</a>"},
    });
}

TEST(PrettyPrinter, GivesTextThatTrimsToNothingALine) {
    check({
        {u"<a><b/>\u00A0</a>", u"<a>\n  <b/>\n  \n</a>\n", u"<a><b/></a>"},
        {u"\u00A0<a/>", u"<a/>\n", u"<a/>"},
    });
}

TEST(PrettyPrinter, CopiesMarkupAsItStands) {
    check({
        {u"<a  b = '1'\n c=\"&lt;\" ><b k/></a >", u"<a  b = '1'\n c=\"&lt;\" >\n  <b k/>\n</a >\n",
         u"<a  b = '1'\n c=\"&lt;\" ><b k/></a >"},
        {u"<a>&amp;&#65;&nbsp;</a>", u"<a>&amp;&#65;&nbsp;</a>\n", u"<a>&amp;&#65;&nbsp;</a>"},
        {u"<a> <![CDATA[ x ]]> </a>", u"<a><![CDATA[ x ]]></a>\n", u"<a><![CDATA[ x ]]></a>"},
        {u"<a>t <![CDATA[ x ]]> <b/></a>", u"<a>\n  t\n  <![CDATA[ x ]]>\n  <b/>\n</a>\n",
         u"<a>t<![CDATA[ x ]]><b/></a>"},
        {u"<?xml version='1.0'?><!DOCTYPE r [\n]><!-- c\n  d --><r/>",
         u"<?xml version='1.0'?>\n<!DOCTYPE r [\n]>\n<!-- c\n  d -->\n<r/>\n",
         u"<?xml version='1.0'?><!DOCTYPE r [\n]><!-- c\n  d --><r/>"},
        {u"<a><!-- c --></a>", u"<a>\n  <!-- c -->\n</a>\n", u"<a><!-- c --></a>"},
        {u"<a><?go?></a>", u"<a>\n  <?go?>\n</a>\n", u"<a><?go?></a>"},
    });
}

TEST(PrettyPrinter, KeepsLoneSurrogates) {
    const std::u16string lone(1, 0xD800);
    check({{u"<" + lone + u">" + lone, u"<" + lone + u">" + lone + u"</" + lone + u">\n",
            u"<" + lone + u">" + lone + u"</" + lone + u">"}});
}

TEST(PrettyPrinter, ClosesElementsAndKeepsOtherDamage) {
    check({
        {u"<a><b>", u"<a>\n  <b></b>\n</a>\n", u"<a><b></b></a>"},
        {u"<a><b></a>", u"<a>\n  <b></b>\n</a>\n", u"<a><b></b></a>"},
        {u"<a><b>x<c/></a>", u"<a>\n  <b>\n    x\n    <c/>\n  </b>\n</a>\n", u"<a><b>x<c/></b></a>"},
        {u"<a></b></a>", u"<a></b></a>\n", u"<a></b></a>"},
        {u"<a><c/></b></a>", u"<a>\n  <c/>\n  </b>\n</a>\n", u"<a><c/></b></a>"},
        {u"<a><b <c/></a>", u"<a>\n  <b\n  <c/>\n</a>\n", u"<a><b<c/></a>"},
        {u"<a", u"<a\n", u"<a"},
        {u"<a></a", u"<a></a\n", u"<a></a"},
        {u"<!-- c", u"<!-- c\n", u"<!-- c"},
        {u"<!'x>", u"<!'x>\n", u"<!'x>"},
        {u"<a>x & y < z</a>", u"<a>x & y < z</a>\n", u"<a>x & y < z</a>"},
    });
}

TEST(PrettyPrinter, IndentsWithTheDocumentsUnit) {
    const std::u16string text = u"<a><b><c/></b></a>";
    EXPECT_EQ(format(text, IndentStyle::tabs()), u"<a>\n\t<b>\n\t\t<c/>\n\t</b>\n</a>\n");
    EXPECT_EQ(format(text, IndentStyle::spaces(4)), u"<a>\n    <b>\n        <c/>\n    </b>\n</a>\n");
}

TEST(PrettyPrinter, BreaksLinesAsTheDocumentDoes) {
    EXPECT_EQ(format(u"<a>\r\n<b/>\r\n</a>"), u"<a>\r\n  <b/>\r\n</a>\r\n");
    EXPECT_EQ(format(u"\r\n"), u"\r\n");
    EXPECT_EQ(format(u"<a>\r<b/></a>"), u"<a>\n  <b/>\n</a>\n");
}

TEST(PrettyPrinter, AgreesWithItsDefinition) {
    Random random;
    for (int round = 0; round < 3000; ++round) {
        const std::u16string text =
            round % 2 == 0 ? RandomDocument::faulty(random) : RandomDocument::broken(random);
        const DocumentTree tree = TreeParser::parse(SourceText(text));
        const std::u16string_view lineBreak = tree.text.lineEnding();
        const IndentStyle indent = randomIndent(random);
        ASSERT_EQ(format(text, indent), Model(tree, lineBreak, indent.unit()).print().append(lineBreak))
            << ::testing::PrintToString(text);
        ASSERT_EQ(minify(text), Model(tree, u"", u"").print()) << ::testing::PrintToString(text);
    }
}

TEST(PrettyPrinter, ChangesNothingWhenRepeated) {
    Random random;
    for (int round = 0; round < 3000; ++round) {
        const std::u16string text =
            round % 2 == 0 ? RandomDocument::wellFormed(random) : RandomDocument::faulty(random);
        const IndentStyle indent = randomIndent(random);
        const std::u16string formatted = format(text, indent);
        ASSERT_EQ(format(formatted, indent), formatted) << ::testing::PrintToString(text);
        ASSERT_EQ(minify(formatted), minify(text)) << ::testing::PrintToString(text);
        const std::u16string minified = minify(text);
        ASSERT_EQ(minify(minified), minified) << ::testing::PrintToString(text);
    }
}

TEST(PrettyPrinter, ChangesOnlyTheSpaceBetweenNodes) {
    const auto withoutSpace = [](std::u16string text) {
        std::erase_if(text, [](char16_t unit) { return UnitScan::isWhitespace(unit); });
        return text;
    };
    Random random;
    for (int round = 0; round < 2000; ++round) {
        const std::u16string text = RandomDocument::wellFormed(random);
        ASSERT_EQ(withoutSpace(format(text)), withoutSpace(text)) << ::testing::PrintToString(text);
        ASSERT_EQ(withoutSpace(minify(text)), withoutSpace(text)) << ::testing::PrintToString(text);
    }
}

TEST(PrettyPrinter, IndentsAThousandLevelsInFull) {
    constexpr std::size_t levels = 1000;
    std::u16string expected;
    for (std::size_t i = 0; i < levels; ++i) {
        expected += std::u16string(4 * i, u' ') + u"<a>\n";
    }
    expected += std::u16string(4 * levels, u' ') + u"<b/>\n";
    for (std::size_t i = levels; i-- > 0;) {
        expected += std::u16string(4 * i, u' ') + u"</a>\n";
    }
    const std::u16string text = repeated(u"<a>", levels) + u"<b/>" + repeated(u"</a>", levels);
    EXPECT_TRUE(format(text, IndentStyle::spaces(4)) == expected);
}

TEST(PrettyPrinter, PrintsAMillionNestedElements) {
    constexpr std::size_t levels = 1'000'000;
    const std::u16string text = repeated(u"<a>", levels);
    const std::u16string closed = repeated(u"<a>", levels) + repeated(u"</a>", levels);
    EXPECT_TRUE(minify(text) == closed);
    const std::u16string formatted = format(text);
    EXPECT_LT(formatted.size(), std::size_t{80'000'000});
    EXPECT_TRUE(formatted.starts_with(u"<a>\n  <a>\n    <a>\n      <a>\n"));
    EXPECT_TRUE(formatted.ends_with(u"\n    </a>\n  </a>\n</a>\n"));
    EXPECT_TRUE(format(formatted) == formatted);
    EXPECT_TRUE(minify(formatted) == closed);
}
