#include "TreeParser.h"

#include "Lexer.h"
#include "Random.h"
#include "RandomMarkup.h"
#include "ReferenceParser.h"
#include "Repeated.h"
#include "TreeDump.h"

#include <gtest/gtest.h>
#include <utility>

namespace {

ReferenceParser::Result resultOf(const DocumentTree& tree) {
    return {{tree.nodes.begin(), tree.nodes.end()},
            {tree.attributes.begin(), tree.attributes.end()},
            {tree.diagnostics.begin(), tree.diagnostics.end()}};
}

/// Compares the lexer and the parser with the reference parser, by the strict rule and with the reading of
/// the document type declaration. The test fails if they differ. Each parse reuses the storage of the tree
/// before it, so that this is tested too.
class Comparison {
public:
    bool agrees(const std::u16string& units) {
        const SourceRange doctype = ReferenceParser::doctype(units);
        EXPECT_EQ(DoctypeReading::of(SourceText(units)).declaration, doctype) << asLiteral(units);
        return agrees(units, {}) && (doctype.isEmpty() || agrees(units, doctype));
    }

private:
    bool agrees(const std::u16string& units, SourceRange doctype) {
        const SourceText text(units);
        const auto expected = ReferenceParser::parse(units, ReferenceParser::Stop::notRequested, doctype);
        m_tree = TreeParser::parse(text, {}, std::move(m_tree), DoctypeReading{doctype});
        const ReferenceParser::Result actual = resultOf(m_tree);
        const bool isSameTree = m_tree.text == text && actual == expected;
        const bool isSameTokens = Lexer::tokens(text, text.fullRange(), DoctypeReading{doctype}) ==
                                  ReferenceParser::tokens(units, text.fullRange(), doctype);
        EXPECT_TRUE(isSameTokens) << asLiteral(units);
        EXPECT_TRUE(isSameTree) << asLiteral(units) << "\nexpected\n"
                                << treeDump(expected, units) << "\nactual\n"
                                << treeDump(actual, units);
        return isSameTree && isSameTokens;
    }

    DocumentTree m_tree;
};

/// Compares `prefix` followed by every string of up to `longest` units of `alphabet`.
void checkAllStrings(std::u16string_view alphabet, std::size_t longest, std::u16string_view prefix = u"") {
    Comparison comparison;
    std::vector<std::size_t> digits;
    while (digits.size() <= longest) {
        std::u16string units(prefix);
        for (const std::size_t digit : digits) {
            units.push_back(alphabet[digit]);
        }
        if (!comparison.agrees(units)) {
            return;
        }
        // Counts up by one; the first digit is the lowest.
        std::size_t place = 0;
        while (place < digits.size() && ++digits[place] == alphabet.size()) {
            digits[place++] = 0;
        }
        if (place == digits.size()) {
            digits.push_back(0);
        }
    }
}

void checkRandom(int rounds, std::u16string (RandomMarkup::*document)()) {
    Random random;
    RandomMarkup markup(random);
    Comparison comparison;
    for (int round = 0; round < rounds; ++round) {
        std::u16string units = (markup.*document)();
        ASSERT_TRUE(comparison.agrees(units)) << "round " << round;
        for (std::size_t damages = random.below(6); damages > 0; --damages) {
            markup.damage(units);
            ASSERT_TRUE(comparison.agrees(units)) << "damaged, round " << round;
        }
    }
}

} // namespace

TEST(TreeParser, AgreesWithReferenceOnAllShortStrings) { checkAllStrings(u"<>/a=\"'&;!-?[] ", 5); }

TEST(TreeParser, AgreesWithReferenceOnAllShortTags) {
    checkAllStrings(u"<>/ab=' ", 6);
    for (const char16_t* const prefix :
         {u"<a", u"<a ", u"<a b", u"<a b=", u"<a b='", u"</", u"</a", u"</a "}) {
        checkAllStrings(u"<>/a=\"'& \n", 4, prefix);
    }
    for (const char16_t* const prefix : {u"<a>", u"<a><b>", u"<a><b><a>", u"<a/>", u"</a>", u"<a>x</b>"}) {
        checkAllStrings(u"<>/ab ", 5, prefix);
    }
}

TEST(TreeParser, AgreesWithReferenceOnAllShortConstructs) {
    checkAllStrings(u"<!->a", 7);
    checkAllStrings(u"<!-> ", 6, u"<!--");
    checkAllStrings(u"<![]>", 6, u"<![CDATA[");
    checkAllStrings(u"<?>a ", 6, u"<?");
    checkAllStrings(u"<>[]\"'", 6, u"<!");
    checkAllStrings(u"&#;xaF1g-", 5);
    for (const char16_t* const prefix : {u"<!", u"<![", u"<![C", u"<![CDATA", u"<!-", u"<a><!", u"<a><?"}) {
        checkAllStrings(u"<!-[>CDA?", 4, prefix);
    }
}

TEST(TreeParser, AgreesWithReferenceOnAllShortSubsets) {
    for (const char16_t* const prefix : {u"<!DOCTYPE", u"<!DOCTYPE[<!--", u"<!DOCTYPE[<?", u"<!DOCTYPE['"}) {
        checkAllStrings(u"<!-[]>?'a", 5, prefix);
    }
    checkAllStrings(u"<!-]>?'a", 5, u"<!DOCTYPE a [<!--'");
}

TEST(TreeParser, AgreesWithReferenceAfterLongStretches) {
    // The lexer classifies 64 units at once, and up to sixteen times as many in one call.
    const std::pair<std::u16string_view, char16_t> stretches[] = {
        {u"", u'x'},        {u"", u' '},     {u"<", u'n'},   {u"<a ", u' '},       {u"<a b='", u'x'},
        {u"<a b=\"", u'>'}, {u"<!--", u'-'}, {u"<!x", u'['}, {u"<![CDATA[", u']'}, {u"</", u'n'}};
    for (const auto& [start, filling] : stretches) {
        for (const std::size_t length : {62U, 63U, 64U, 65U, 127U, 128U, 1022U, 1023U, 1024U, 1025U}) {
            std::u16string prefix(start);
            prefix.resize(length, filling);
            checkAllStrings(u"<>/a=' &", 3, prefix);
        }
    }
}

TEST(TreeParser, AgreesWithReferenceOnDocuments) { checkRandom(3000, &RandomMarkup::document); }

TEST(TreeParser, AgreesWithReferenceOnNestedTags) { checkRandom(1500, &RandomMarkup::tagSoup); }

TEST(TreeParser, AgreesWithReferenceOnManyAttributes) { checkRandom(1500, &RandomMarkup::attributeSoup); }

TEST(TreeParser, AgreesWithReferenceOnPieces) { checkRandom(30000, &RandomMarkup::pieces); }

TEST(TreeParser, StopsEvery16384Tokens) {
    std::stop_source source;
    source.request_stop();
    DocumentTree tree;
    for (const std::size_t times : {0U, 1U, 16382U, 16383U, 16384U, 40000U}) {
        for (const char16_t* const part : {u"<a>", u"<a></b>", u"</a><a x=1", u"x&lt;<b c='d'/>"}) {
            const std::u16string units = repeated(part, times / 4) + repeated(u"<b>", times - times / 4);
            tree = TreeParser::parse(SourceText(units), source.get_token(), std::move(tree));
            const auto expected = ReferenceParser::parse(units, ReferenceParser::Stop::requested);
            ASSERT_TRUE(resultOf(tree) == expected) << times << " " << asLiteral(part);
        }
    }
}

TEST(TreeParser, ReadsNoUnitBeyondItsText) {
    // Each text ends where its storage ends, so that the address sanitizer detects reads beyond it.
    Random random;
    RandomMarkup markup(random);
    for (int round = 0; round < 1000; ++round) {
        const std::u16string units = markup.pieces();
        for (std::size_t length = 0; length <= units.size(); ++length) {
            const std::u16string prefix = units.substr(0, length);
            const DocumentTree tree = TreeParser::parse(SourceText(prefix));
            ASSERT_TRUE(resultOf(tree) == ReferenceParser::parse(prefix)) << asLiteral(prefix);
        }
    }
}
