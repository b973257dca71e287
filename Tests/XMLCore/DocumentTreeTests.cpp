#include "DocumentTree.h"

#include "GraphemeBreaker.h"
#include "Lexer.h"
#include "Random.h"
#include "RandomMarkup.h"
#include "Repeated.h"
#include "TreeDump.h"
#include "TreeParser.h"
#include "UnicodeProperties.h"

#include <gtest/gtest.h>
#include <string>
#include <tuple>

namespace {

using Strings = std::vector<std::u16string>;

DocumentTree parse(const std::u16string& units) { return TreeParser::parse(SourceText(units)); }

NodeID nodeID(std::size_t index) { return {static_cast<std::uint32_t>(index)}; }

std::string literal(const std::optional<std::u16string>& text) { return text ? asLiteral(*text) : "none"; }

struct TextRow {
    std::u16string input;
    std::optional<std::u16string> expected;
};

/// Checks the `textContent` of the first node after the document.
void checkTextContent(const std::vector<TextRow>& rows) {
    for (const TextRow& row : rows) {
        EXPECT_EQ(literal(parse(row.input).textContent(nodeID(1))), literal(row.expected))
            << asLiteral(row.input);
    }
}

void checkPreview(std::size_t limit, const std::vector<TextRow>& rows) {
    for (const TextRow& row : rows) {
        EXPECT_EQ(literal(parse(row.input).preview(nodeID(1), limit)), literal(row.expected))
            << asLiteral(row.input);
    }
}

/// A plain model: computes the preview of an element from all of its text.
std::u16string plainPreview(const std::u16string& textContent, std::size_t limit) {
    std::vector<std::u16string> line;
    for (const std::u16string_view character : GraphemeBreaker::Characters(textContent)) {
        const bool isBlank = UnicodeProperties::isWhitespace(character);
        if (!isBlank) {
            line.emplace_back(character);
        } else if (!line.empty() && line.back() != u" ") {
            line.emplace_back(u" ");
        }
    }
    if (!line.empty() && line.back() == u" ") {
        line.pop_back();
    }
    std::u16string preview;
    for (std::size_t i = 0; i < std::min(limit, line.size()); ++i) {
        preview += line[i];
    }
    return line.size() >= limit ? preview + u"…" : preview;
}

} // namespace

TEST(DocumentTree, OfEmptyTextHasOnlyTheDocument) {
    for (const DocumentTree& tree : {DocumentTree::empty(), parse(u"")}) {
        ASSERT_EQ(tree.nodes.size(), 1U);
        EXPECT_EQ(tree.nodes[0], TreeNode());
        EXPECT_EQ(tree.rootElement(), std::nullopt);
        EXPECT_FALSE(tree.hasErrors());
        EXPECT_EQ(tree.node(0), NodeID::document());
        EXPECT_EQ(tree.innermostNode(7), NodeID::document());
        EXPECT_EQ(tree.lexStart(0), 0U);
        EXPECT_TRUE(tree.hasOnlyTextContent(NodeID::document()));
        EXPECT_EQ(literal(tree.textContent(NodeID::document())), "\"\"");
        EXPECT_EQ(tree.preview(NodeID::document(), 10), std::nullopt);
        EXPECT_TRUE(tree.vocabulary().elements.empty());
    }
}

TEST(DocumentTree, FindsTheRoot) {
    EXPECT_EQ(parse(u"<!-- --> <?x?><a><b/></a><c/>").rootElement(), nodeID(3));
    EXPECT_EQ(parse(u"x<!-- -->").rootElement(), std::nullopt);
    EXPECT_EQ(parse(u"<a").rootElement(), nodeID(1));
}

TEST(DocumentTree, TellsErrorsFromWarnings) {
    EXPECT_FALSE(parse(u"<a/>").hasErrors());
    EXPECT_FALSE(parse(u"hola").hasErrors());
    EXPECT_TRUE(parse(u"<a>").hasErrors());
    EXPECT_TRUE(parse(u"hola <a>").hasErrors());
}

TEST(DocumentTree, ReadsNamesAndSources) {
    const DocumentTree tree = parse(u"<año\xD800 b='1'>x&lt;<?xml y?></año\xD800>");
    EXPECT_EQ(tree.name(nodeID(1)), u"año\xFFFD");
    EXPECT_EQ(tree.source(nodeID(1)), tree.text.units());
    EXPECT_EQ(tree.name(nodeID(2)), u"");
    EXPECT_EQ(tree.source(nodeID(2)), u"x&lt;");
    EXPECT_EQ(tree.name(nodeID(3)), u"xml");
    EXPECT_EQ(tree.source(nodeID(3)), u"<?xml y?>");
    EXPECT_EQ(tree.name(NodeID::document()), u"");
    EXPECT_EQ(tree.source(NodeID::document()), tree.text.units());
}

TEST(DocumentTree, FindsAttributes) {
    const DocumentTree tree = parse(u"<a b='1' c='2' b='3' D><e/><f g=''/></a>");
    const auto value = [&](std::u16string_view named, NodeID of) {
        const auto attribute = tree.attribute(named, of);
        return attribute ? std::optional(tree.text.string(attribute->value)) : std::nullopt;
    };
    EXPECT_EQ(tree.attributesOf(nodeID(1)).size(), 4U);
    EXPECT_EQ(tree.attributesOf(nodeID(1)).data(), tree.attributes.begin());
    EXPECT_TRUE(tree.attributesOf(nodeID(2)).empty());
    EXPECT_EQ(tree.attributesOf(nodeID(3)).data(), tree.attributes.begin() + 4);
    EXPECT_TRUE(tree.attributesOf(NodeID::document()).empty());
    EXPECT_EQ(value(u"b", nodeID(1)), u"1");
    EXPECT_EQ(value(u"c", nodeID(1)), u"2");
    EXPECT_EQ(value(u"D", nodeID(1)), u"");
    EXPECT_EQ(value(u"d", nodeID(1)), std::nullopt);
    EXPECT_EQ(value(u"g", nodeID(1)), std::nullopt);
    EXPECT_EQ(value(u"", nodeID(1)), std::nullopt);
    EXPECT_EQ(value(u"g", nodeID(3)), u"");
    EXPECT_EQ(value(u"b", nodeID(2)), std::nullopt);
}

TEST(DocumentTree, WalksChildren) {
    const DocumentTree tree = parse(u"<a>x<b><c/></b><!----></a>");
    const auto children = [&](NodeID of) {
        std::vector<std::uint32_t> indices;
        for (const NodeID child : tree.children(of)) {
            indices.push_back(child.raw);
        }
        return indices;
    };
    using Indices = std::vector<std::uint32_t>;
    EXPECT_EQ(children(NodeID::document()), Indices{1});
    EXPECT_EQ(children(nodeID(1)), (Indices{2, 3, 5}));
    EXPECT_EQ(children(nodeID(3)), Indices{4});
    EXPECT_EQ(children(nodeID(5)), Indices{});
    const std::size_t positions[] = {0, 0, 0, 1, 0, 2};
    for (std::size_t i = 0; i < tree.nodes.size(); ++i) {
        EXPECT_EQ(tree.indexInParent(nodeID(i)), positions[i]);
    }
    EXPECT_EQ(tree.child(nodeID(1), 0), nodeID(2));
    EXPECT_EQ(tree.child(nodeID(1), 2), nodeID(5));
    EXPECT_EQ(tree.child(nodeID(1), 3), std::nullopt);
    EXPECT_EQ(tree.child(nodeID(5), 0), std::nullopt);
}

TEST(DocumentTree, FindsChildrenFromTheirEnd) {
    Random random;
    RandomMarkup markup(random);
    for (int round = 0; round < 500; ++round) {
        const DocumentTree tree = parse(round % 2 == 0 ? markup.tagSoup() : markup.document());
        for (std::size_t index = 0; index < tree.nodes.size(); ++index) {
            const NodeID parent = nodeID(index);
            std::optional<NodeID> previous;
            for (const NodeID child : tree.children(parent)) {
                ASSERT_EQ(tree.previousSibling(child), previous);
                previous = child;
            }
            ASSERT_EQ(tree.lastChild(parent), previous);
        }
    }
    const DocumentTree empty = DocumentTree::empty();
    EXPECT_EQ(empty.lastChild(NodeID::document()), std::nullopt);
    EXPECT_EQ(empty.previousSibling(NodeID::document()), std::nullopt);
}

TEST(DocumentTree, FindsNodesAtOffsets) {
    const DocumentTree tree = parse(u" <a>x<b/> <c>y</c></a> ");
    //                              0 1   45    9 1011
    const struct {
        Offset at;
        std::uint32_t node;
        std::uint32_t innermost;
    } rows[] = {{0, 0, 0},  {1, 1, 1},  {3, 1, 1},  {4, 2, 2},  {5, 3, 3},  {8, 3, 3},
                {9, 3, 1},  {10, 4, 4}, {13, 5, 5}, {14, 5, 4}, {17, 5, 4}, {18, 5, 1},
                {21, 5, 1}, {22, 5, 0}, {23, 5, 0}, {99, 5, 0}};
    for (const auto& row : rows) {
        EXPECT_EQ(tree.node(row.at).raw, row.node) << row.at;
        EXPECT_EQ(tree.innermostNode(row.at).raw, row.innermost) << row.at;
    }
}

TEST(DocumentTree, StartsLexingWhereContentIs) {
    const struct {
        std::u16string input;
        Offset before;
        Offset expected;
    } rows[] = {
        {u" <a>", 0, 0},
        {u"<!-- x --><a/>", 5, 0},
        {u"  <!-- x --><a/>", 5, 2},
        {u"<a b='c'>x</a>", 0, 0},
        {u" <a b='c'>x</a>", 1, 1},
        {u" <a b='c'>x</a>", 6, 1},
        {u" <a b='c'>x</a>", 10, 10},
        {u" <a b='c'>x</a>", 11, 11},
        {u" <a b='c'>x</a>", 13, 11},
        {u" <a b='c'> </a>", 10, 10},
        {u" <a/> ", 3, 1},
        {u" <a/> ", 5, 0},
        {u"<a><b c='", 6, 3},
        {u"<a> <b/> <c/> </a>", 8, 3},
        {u"<a> <b/> <c/> </a>", 13, 3},
        {u"<a> <b/> <c/> </a>", 14, 14},
        {u"<a><b>xy</a>", 7, 6},
        {u"<a><b>  </a>", 7, 6},
        {u"<a>x</b>y</a>", 6, 4},
        {u"<a>x", 4, 0},
        {u"<a/>", 4, 0},
        {u"<a/>", 99, 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(parse(row.input).lexStart(row.before), row.expected) << asLiteral(row.input) << row.before;
    }
}

TEST(DocumentTree, LexesFromWhereItStartsAsFromTheBeginning) {
    Random random;
    RandomMarkup markup(random);
    for (int round = 0; round < 1000; ++round) {
        std::u16string units = random.below(2) == 0 ? markup.document() : markup.pieces();
        for (std::size_t damages = random.below(3); damages > 0; --damages) {
            markup.damage(units);
        }
        const DocumentTree tree = parse(units);
        const std::vector<Token> tokens = Lexer::tokens(tree.text);
        for (int i = 0; i < 20; ++i) {
            const auto before = static_cast<Offset>(random.below(units.size() + 1));
            const Offset start = tree.lexStart(before);
            ASSERT_LE(start, before);
            const auto first = std::ranges::lower_bound(tokens, start, {},
                                                        [](const Token& token) { return token.range.lower; });
            std::vector<Token> expected(first, tokens.end());
            // Lexing may start inside a run of text; the tokens after this run must be the same.
            std::vector<Token> actual = Lexer::tokens(tree.text, {start, tree.text.count()});
            if (first != tokens.begin() && std::prev(first)->range.upper > start) {
                ASSERT_FALSE(actual.empty());
                actual.erase(actual.begin());
            }
            ASSERT_TRUE(actual == expected) << asLiteral(units) << " " << before << " " << start;
        }
    }
}

TEST(DocumentTree, StaysUsableWhenNestedAMillionDeep) {
    constexpr std::size_t depth = 1'000'000;
    const DocumentTree tree = parse(repeated(u"<a>", depth) + u"x" + repeated(u"</a>", depth));
    EXPECT_FALSE(tree.hasErrors());
    ASSERT_EQ(tree.nodes.size(), depth + 2);
    EXPECT_EQ(tree.innermostNode(3 * depth), nodeID(depth + 1));
    EXPECT_EQ(tree.innermostNode(3 * depth + 1), nodeID(depth));
    EXPECT_EQ(tree.innermostNode(7 * depth), nodeID(1));
    EXPECT_EQ(tree.lexStart(7 * depth), 7 * depth - 3);
    EXPECT_EQ(tree.textContent(nodeID(depth)), u"x");
    EXPECT_EQ(tree.textContent(nodeID(1)), u"");
    EXPECT_EQ(tree.preview(nodeID(1), 10), std::nullopt);
}

TEST(DocumentTree, TellsTextContentFromOther) {
    const struct {
        std::u16string input;
        bool expected;
    } rows[] = {{u"<a/>", true},
                {u"<a></a>", true},
                {u"<a>x</a>", true},
                {u"<a>x<![CDATA[]]>y</a>", true},
                {u"<a>x<b/></a>", false},
                {u"<a><!----></a>", false},
                {u"<a>x<?y?></a>", false},
                {u"<a><!y>x</a>", false},
                {u"x", true}};
    for (const auto& row : rows) {
        EXPECT_EQ(parse(row.input).hasOnlyTextContent(nodeID(1)), row.expected) << asLiteral(row.input);
    }
}

TEST(DocumentTree, ReadsTextContent) {
    checkTextContent({
        {u"<a/>", std::nullopt},
        {u"<a>  </a>", std::nullopt},
        {u"<a> x &lt;&#65; </a>", u" x <A "},
        {u"<a>x<b>y</b>z<!--c--><?d?><![CDATA[&lt;]]></a>", u"xz&lt;"},
        {u"<a><b>y</b></a>", u""},
        {u"<a>&am<![CDATA[p;]]></a>", u"&amp;"},
        {u"<a>x</b>&amp;</a>", u"x</b>&"},
        {u"x &amp; y", u"x & y"},
        {u"<!-- &amp; -->", u" &amp; "},
        {u"<?x &amp;?>", u"x &amp;"},
        {u"<!x &amp;>", u"x &amp;"},
        {u"<!--", u""},
        {u"<a>\xD800<![CDATA[\xDC00]]></a>", u"\xFFFD\xFFFD"},
        {u"<!--\xD800-->", u"\xFFFD"},
    });
    EXPECT_EQ(parse(u"<a>&amp;</a>").textContent(NodeID::document()), u"<a>&amp;</a>");
}

TEST(DocumentTree, PreviewsOnOneLine) {
    checkPreview(100, {
                          {u"<a> \n x \r\n y\t\tz&#10;&#32; </a>", u"x y z"},
                          {u"<a>x\u3000\u2028\u00A0\u0085y</a>", u"x y"},
                          {u"<a>x \u0301y</a>", u"x y"},
                          {u"<a>x\u200By</a>", u"x\u200By"},
                          {u"<a>x<![CDATA[ &lt; ]]>y</a>", u"x &lt; y"},
                          {u"<a><![CDATA[ ]]></a>", u""},
                          {u"<a/>", std::nullopt},
                          {u"<a> </a>", std::nullopt},
                          {u"<a>x<b/></a>", std::nullopt},
                          {u"<a>x<!----></a>", std::nullopt},
                          {u"x\n&lt;", u"x <"},
                          {u"<!-- x\n&lt; -->", u"x &lt;"},
                          {u"<?x y?>", u"x y"},
                          {u"<!DOCTYPE\nx>", u"DOCTYPE x"},
                          {u"<!---->", u""},
                          {u"<a>\xD800</a>", u"\xFFFD"},
                      });
    EXPECT_EQ(parse(u"x").preview(NodeID::document(), 10), std::nullopt);
}

TEST(DocumentTree, CutsPreviews) {
    checkPreview(3, {
                        {u"<a>xy</a>", u"xy"},
                        {u"<a>xyz</a>", u"xyz…"},
                        {u"<a>xyzw</a>", u"xyz…"},
                        {u"<a> x  y  z </a>", u"x y…"},
                        {u"<a>xy z</a>", u"xy …"},
                        {u"<a>xy </a>", u"xy"},
                        {u"<a>xyz </a>", u"xyz…"},
                        {u"<a>e\u0301\U0001F468\u200D\U0001F469\u200D\U0001F467\U0001F1EA\U0001F1F8!</a>",
                         u"e\u0301\U0001F468\u200D\U0001F469\u200D\U0001F467\U0001F1EA\U0001F1F8…"},
                        {u"<a>xy<![CDATA[\u0301]]></a>", u"xy\u0301"},
                        {u"<a>&lt;&gt;&amp;</a>", u"<>&…"},
                        {u"xyz", u"xyz…"},
                        {u"<!--xyz-->", u"xyz…"},
                    });
    checkPreview(0, {{u"<a>x</a>", u"…"}, {u"x", u"…"}, {u"<!---->", u"…"}, {u"<a/>", std::nullopt}});
    checkPreview(1, {{u"<a>x</a>", u"x…"}, {u"x", u"x…"}, {u"<!---->", u""}});
    checkPreview(std::numeric_limits<std::size_t>::max(), {{u"<a>x</a>", u"x"}, {u"x", u"x"}});
}

TEST(DocumentTree, PreviewsLookAtFourUnitsACharacterOfLeaves) {
    checkPreview(2, {
                        {u"<!--        x-->", u""},
                        {u"<!--       xy-->", u"x"},
                        {u"<!--      xyz-->", u"xy…"},
                        {u"x&#00000065;", u"x&…"},
                        {u"x\u0301\u0301\u0301\u0301\u0301\u0301\u0301y",
                         u"x\u0301\u0301\u0301\u0301\u0301\u0301\u0301"},
                        {u"<!--       \U0001F600-->", u"\xFFFD"},
                        {u"<!--      \U0001F600-->", u"\U0001F600"},
                        // The whole text of an element is read.
                        {u"<a>             xy</a>", u"xy…"},
                    });
}

TEST(DocumentTree, PreviewsElementsFromAsMuchTextAsTheyNeed) {
    Random random;
    constexpr char32_t scalars[] = {U'a',       U' ',      U'\n', U'\x301', U'\x1F600', U'\x200D',
                                    U'\x1F1E6', U'\xD800', U'é',  U';',     U'\x600'};
    for (int round = 0; round < 3000; ++round) {
        std::u16string units = u"<a>x";
        for (std::size_t left = random.below(12); left > 0; --left) {
            constexpr std::u16string_view references[] = {u"&amp;", u"&#x1F600;", u"&#0000000769;", u"&#769;",
                                                          u"&nbsp;"};
            units += random.text(scalars, random.below(4) == 0 ? 80 : 8);
            units += references[random.below(std::size(references))];
            if (random.below(3) == 0) {
                units += u"<![CDATA[";
                units += random.text(scalars, 20);
                units += u"]]>";
            }
        }
        units += u"</a>";
        const DocumentTree tree = parse(units);
        const std::u16string content = tree.textContent(nodeID(1)).value();
        for (const std::size_t limit : {1U, 2U, 5U, 20U, 60U, 200U}) {
            ASSERT_EQ(literal(tree.preview(nodeID(1), limit)), asLiteral(plainPreview(content, limit)))
                << asLiteral(units) << " " << limit;
        }
    }
}

TEST(DocumentTree, PreviewsHugeCharacters) {
    const std::u16string huge = u"x" + std::u16string(1'000'000, u'\u0301');
    EXPECT_EQ(parse(u"<a>" + huge + u"yz</a>").preview(nodeID(1), 2), huge + u"y…");
    EXPECT_EQ(parse(u"<a>" + std::u16string(1'000'000, u' ') + u"x</a>").preview(nodeID(1), 2), u"x");
}

TEST(DocumentTree, GathersNames) {
    const auto vocabulary =
        parse(u"<?pi?><b x=''><a y='' x=''><b/></a>text<A Y=''/></b><c \xD800=''>").vocabulary();
    EXPECT_EQ(vocabulary.elements, (Strings{u"b", u"a", u"A", u"c"}));
    EXPECT_EQ(vocabulary.attributes, (Strings{u"x", u"y", u"Y", u"\xFFFD"}));
}

TEST(DocumentTree, StopsTheProgramOnForeignNodes) {
    const DocumentTree tree = parse(u"<a/>");
    EXPECT_DEATH(std::ignore = tree[nodeID(2)], "the tree has that node");
    EXPECT_DEATH(std::ignore = tree.name(NodeID::none()), "the tree has that node");
    EXPECT_DEATH(std::ignore = tree.children(nodeID(2)), "the tree has that node");
    EXPECT_DEATH(std::ignore = tree.preview(NodeID::none(), 1), "the tree has that node");
}
