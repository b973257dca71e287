#include "NodeSearch.h"

#include "Random.h"
#include "TreeParser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace {

/// The accented letters of Latin-1, and what each folds to.
const std::u16string accented = u"ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖ×ØÙÚÛÜÝÞßàáâãäåæçèéêëìíîïðñòóôõö÷øùúûüýþÿ";
const std::u16string plain = u"aaaaaaaceeeeiiiidnooooo×ouuuuyþsaaaaaaaceeeeiiiiðnooooo÷ouuuuyþy";

DocumentTree parse(std::u16string_view text) { return TreeParser::parse(SourceText(text)); }

/// The sources of the nodes that match, in order.
std::vector<std::u16string> found(std::u16string_view query, const DocumentTree& tree) {
    std::vector<std::u16string> sources;
    const std::vector<NodeID> nodes = NodeSearch::matches(query, tree);
    for (const NodeID node : nodes) {
        sources.emplace_back(tree.source(node));
    }
    for (NodeID node{0}; node.raw < tree.nodes.size(); ++node.raw) {
        EXPECT_EQ(NodeSearch::isMatch(node, query, tree), std::ranges::find(nodes, node) != nodes.end());
    }
    return sources;
}

bool textMatches(std::u16string_view query, std::u16string_view text) {
    return !found(query, parse(u"<_>" + std::u16string(text) + u"</_>")).empty();
}

struct Row {
    std::u16string query;
    std::u16string document;
    std::vector<std::u16string> expected;
};

void check(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        EXPECT_EQ(found(row.query, parse(row.document)), row.expected)
            << ::testing::PrintToString(row.query) << " in " << ::testing::PrintToString(row.document);
    }
}

/// A plain model of the search, one comparison after the other.
namespace Model {

char16_t fold(char16_t unit) {
    if (u'A' <= unit && unit <= u'Z') {
        return unit + 32;
    }
    const std::size_t at = accented.find(unit);
    return at == std::u16string::npos ? unit : plain[at];
}

std::u16string folded(std::u16string_view text) {
    std::u16string result(text);
    for (char16_t& unit : result) {
        unit = fold(unit);
    }
    return result;
}

bool occurs(std::u16string_view query, std::u16string_view text) {
    return folded(text).find(folded(query)) != std::u16string::npos;
}

} // namespace Model

} // namespace

TEST(NodeSearch, IgnoresAccentsAndCase) {
    check({
        {u"CAFE", u"<a>café</a>", {u"café"}},
        {u"CAFE", u"<Café/>", {u"<Café/>"}},
        {u"é", u"<a>E</a>", {u"E"}},
        {u"STRASE", u"<a>straße</a>", {u"straße"}},
    });
}

TEST(NodeSearch, FoldsLatin1AsItsTableSays) {
    ASSERT_EQ(accented.size(), 64U);
    ASSERT_EQ(plain.size(), 64U);
    for (std::size_t i = 0; i < accented.size(); ++i) {
        EXPECT_EQ(accented[i], 0xC0 + i);
        EXPECT_TRUE(textMatches(plain.substr(i, 1), accented.substr(i, 1))) << i;
    }
    EXPECT_TRUE(textMatches(accented, plain));
    EXPECT_TRUE(textMatches(plain, accented));
}

TEST(NodeSearch, FoldsNothingElse) {
    const std::map<std::u16string, std::u16string> different = {
        {u"ð", u"d"}, {u"ð", u"Ð"}, {u"×", u"x"}, {u"Ā", u"a"}, {u"Ω", u"ω"},
        {u"[", u"{"}, {u"@", u"`"}, {u"ÿ", u"Ÿ"}, {u"¿", u"?"},
    };
    for (const auto& [query, text] : different) {
        EXPECT_FALSE(textMatches(query, text)) << ::testing::PrintToString(query);
        EXPECT_FALSE(textMatches(text, query)) << ::testing::PrintToString(query);
        EXPECT_TRUE(textMatches(query, query)) << ::testing::PrintToString(query);
    }
}

TEST(NodeSearch, NormalizesNothing) {
    EXPECT_TRUE(textMatches(u"é", u"e\u0301"));
    EXPECT_FALSE(textMatches(u"e\u0301", u"é"));
}

TEST(NodeSearch, LooksAtNamesAttributesAndContents) {
    const std::u16string document = u"<?xml version='1'?><!DOCTYPE list><list><item id='7'>one</item>"
                                    u"<!-- two --><![CDATA[three]]><b class=\"four\"/></list>";
    check({
        {u"xml", document, {u"<?xml version='1'?>"}},
        {u"doctype", document, {u"<!DOCTYPE list>"}},
        {u"item", document, {u"<item id='7'>one</item>"}},
        {u"id", document, {u"<item id='7'>one</item>"}},
        {u"7", document, {u"<item id='7'>one</item>"}},
        {u"one", document, {u"one"}},
        {u"two", document, {u"<!-- two -->"}},
        {u"three", document, {u"<![CDATA[three]]>"}},
        {u"class", document, {u"<b class=\"four\"/>"}},
        {u"four", document, {u"<b class=\"four\"/>"}},
        {u"list", document, {u"<!DOCTYPE list>", document.substr(34)}},
        {u"cdata", document, {}},
        {u"--", document, {}},
        {u"<", document, {}},
        {u"?", document, {}},
    });
}

TEST(NodeSearch, NeverMatchesAcrossTwoRanges) {
    check({
        {u"aid", u"<a id='1'/>", {}},
        {u"a id", u"<a id='1'/>", {}},
        {u"id='1", u"<a id='1'/>", {}},
        {u"id=", u"<a id='1'/>", {}},
        {u"12", u"<a b='1' c='2'/>", {}},
        {u"xy", u"<a>x<b/>y</a>", {}},
    });
}

TEST(NodeSearch, LeavesReferencesAsTheyAre) {
    check({
        {u"&amp;", u"<a>x &amp; y</a>", {u"x &amp; y"}},
        {u"x & y", u"<a>x &amp; y</a>", {}},
    });
}

TEST(NodeSearch, FindsNothingForNothing) {
    EXPECT_TRUE(found(u"", parse(u"<a>text</a>")).empty());
    EXPECT_TRUE(found(u"a", DocumentTree::empty()).empty());
    EXPECT_TRUE(found(u" ", parse(u"  ")).empty());
}

TEST(NodeSearch, LooksAtTheStartOfLongContents) {
    const std::u16string filler(4093, u'.');
    EXPECT_TRUE(textMatches(u"end", filler + u"end"));
    EXPECT_FALSE(textMatches(u"end", filler + u".end"));
    EXPECT_TRUE(textMatches(std::u16string(4096, u'.'), std::u16string(5000, u'.')));
    EXPECT_FALSE(textMatches(std::u16string(4097, u'.'), std::u16string(5000, u'.')));
    check({
        {u"end", u"<a>" + filler + u"..end</a>", {}},
        {u"end", u"<!--" + filler + u"end-->", {u"<!--" + filler + u"end-->"}},
        {u"end", u"<!--" + filler + u".end-->", {}},
        {u"end", u"<a b='" + filler + u"...end'/>", {u"<a b='" + filler + u"...end'/>"}},
        {u"end",
         u"<" + std::u16string(5000, u'a') + u"end/>",
         {u"<" + std::u16string(5000, u'a') + u"end/>"}},
    });
}

TEST(NodeSearch, NeverFindsQueriesLongerThanTheText) {
    EXPECT_FALSE(textMatches(u"abc", u"ab"));
    EXPECT_TRUE(textMatches(u"abc", u"abc"));
    EXPECT_FALSE(textMatches(std::u16string(100'000, u'a'), std::u16string(99'999, u'a')));
}

TEST(NodeSearch, StopsWhenAsked) {
    std::stop_source source;
    const DocumentTree tree = parse(u"<a><b/></a>");
    EXPECT_EQ(NodeSearch::matches(u"a", tree, source.get_token()).size(), 1U);
    source.request_stop();
    EXPECT_TRUE(NodeSearch::matches(u"a", tree, source.get_token()).empty());
}

TEST(NodeSearch, SearchesRepetitiveTextInLinearTime) {
    const std::u16string value(5'000'000, u'a');
    std::u16string query(1'000'000, u'a');
    query.push_back(u'b');
    const DocumentTree tree = parse(u"<x y='" + value + u"'/>");
    EXPECT_TRUE(found(query, tree).empty());
    EXPECT_EQ(found(query.substr(0, query.size() - 1), tree).size(), 1U);
}

TEST(NodeSearch, AgreesWithItsDefinition) {
    static constexpr char32_t alphabet[] = {U'a', U'A', U'b', U'á', U'Æ', U'ß',   U's',         U'ð',
                                            U'D', U'Ð', U'Ā', U'0', U'×', 0xD800, U'\U0001F600'};
    Random random;
    for (int round = 0; round < 20'000; ++round) {
        const std::u16string text = random.text(alphabet, 40);
        std::u16string query(1, static_cast<char16_t>(alphabet[random.below(13)]));
        query.append(random.text(alphabet, 3));
        ASSERT_EQ(textMatches(query, text), Model::occurs(query, text))
            << ::testing::PrintToString(query) << " in " << ::testing::PrintToString(text);
    }
}

TEST(NodeSearch, TellsWhereAQueryOccurs) {
    using Ranges = std::vector<SourceRange>;
    EXPECT_EQ(NodeSearch::occurrences(u"É", u"Café, té y cafe", 10), (Ranges{{3, 4}, {7, 8}, {14, 15}}));
    EXPECT_EQ(NodeSearch::occurrences(u"aa", u"aaaaa", 10), (Ranges{{0, 2}, {2, 4}}));
    EXPECT_EQ(NodeSearch::occurrences(u"a", u"aaaaa", 2), (Ranges{{0, 1}, {1, 2}}));
    EXPECT_EQ(NodeSearch::occurrences(u"", u"aaa", 2), Ranges());
    EXPECT_EQ(NodeSearch::occurrences(u"b", u"aaa", 2), Ranges());
    EXPECT_EQ(NodeSearch::occurrences(u"largo", u"lar", 2), Ranges());
}
