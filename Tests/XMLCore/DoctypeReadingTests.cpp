#include "DoctypeReading.h"

#include "Lexer.h"
#include "PrettyPrinter.h"
#include "Repeated.h"
#include "TagMatcher.h"
#include "TreeDump.h"
#include "TreeParser.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace {

/// A text and the declaration that its reading finds; empty if it finds none.
struct Row {
    std::u16string text;
    std::u16string declaration;
};

void check(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        const SourceText text(row.text);
        const DoctypeReading reading = DoctypeReading::of(text);
        EXPECT_EQ(asLiteral(text.units(reading.declaration)), asLiteral(row.declaration))
            << asLiteral(row.text);
    }
}

DocumentTree parsed(const std::u16string& units) {
    const SourceText text(units);
    return TreeParser::parse(text, {}, {}, DoctypeReading::of(text));
}

/// Whether the text has a root element and no diagnostics.
bool isIntact(const std::u16string& units) {
    const DocumentTree tree = parsed(units);
    return tree.diagnostics.empty() && tree.rootElement().has_value();
}

const std::u16string subset = u"<!DOCTYPE r [<!-- don't --><!ELEMENT r ANY>]>";

} // namespace

TEST(DoctypeReading, IsThatOfTheLetterWhereThatFindsAnEnd) {
    check({
        {u"", u""},
        {u"<r/>", u""},
        {u"<!DOCTYPE r><r/>", u"<!DOCTYPE r>"},
        {u"<?xml version='1.0'?>\n<!-- ' -->\n<!DOCTYPE r [<!ENTITY e '>'>]>\n<r/>",
         u"<!DOCTYPE r [<!ENTITY e '>'>]>"},
        // Two apostrophes enclose a quoted string, which hides the `]>` inside it.
        {u"<!DOCTYPE r [<!-- ' ]> ' -->]><r/>", u"<!DOCTYPE r [<!-- ' ]> ' -->]>"},
        {u"<!DOCTYPE r [<!-- ]> -->]><r/>", u"<!DOCTYPE r [<!-- ]>"},
    });
}

TEST(DoctypeReading, SkipsCommentsAndInstructionsWhereTheLetterFindsNoEnd) {
    check({
        {subset + u"<r/>", subset},
        {u"<!DOCTYPE r [<!-- 5\" disk -->]><r/>", u"<!DOCTYPE r [<!-- 5\" disk -->]>"},
        {u"<!DOCTYPE r [<?x don't?>]><r/>", u"<!DOCTYPE r [<?x don't?>]>"},
        {u"<!DOCTYPE r [<!-- don't ]> --> <?y ]>?>]><r/>", u"<!DOCTYPE r [<!-- don't ]> --> <?y ]>?>]>"},
        {u"<!DOCTYPE r [<!---'--->]><r/>", u"<!DOCTYPE r [<!---'--->]>"},
        {u"<!DOCTYPE r [<!ENTITY e '<!--'><!--'-->]><r/>", u"<!DOCTYPE r [<!ENTITY e '<!--'><!--'-->]>"},
    });
}

TEST(DoctypeReading, StaysWithTheLetterWhereNothingHelps) {
    check({
        {u"<!DOCTYPE", u""},
        {u"<!DOCTYPE r [", u""},
        {u"<!DOCTYPE r [<!-- don't ]><r/>", u""},
        {u"<!DOCTYPE r [<?x don't ]><r/>", u""},
        {u"<!DOCTYPE r <!-- don't --> ><r/>", u""}, // Outside the brackets, nothing is skipped.
        {u"<!DOCTYPE r [<!ENTITY e 'x>]><r/>", u""},
        {u"<!DOCTYPE r 'x><!DOCTYPE r [<!-- \" -->]><r/>", u""}, // Only the first declaration is read.
        {u"<!doctype r [<!-- don't -->]><r/>", u""},
        {u"<r/><!DOCTYPE r [<!-- don't -->]>", u""},
        {u"<r><!DOCTYPE r [<!-- don't -->]></r>", u""},
        {u"<!ELEMENT r 'x><!DOCTYPE r [<!-- don't -->]><r/>", u""},
    });
}

TEST(DoctypeReading, GivesTheDocumentItsRoot) {
    EXPECT_TRUE(isIntact(subset + u"<r a='b'>it's</r>"));
    EXPECT_TRUE(isIntact(u"<?xml version='1.0'?>\n<!DOCTYPE r [<?x don't?>]>\n<r>it's</r>\n"));
    EXPECT_FALSE(TreeParser::parse(SourceText(subset + u"<r/>")).rootElement().has_value());
}

TEST(DoctypeReading, CutsTheDeclarationInAPartOfTheText) {
    const SourceText text(u"\n\n" + subset + u"<r/>");
    const DoctypeReading reading = DoctypeReading::of(text);
    EXPECT_EQ(reading.after(2).declaration, SourceRange::at(0, std::ssize(subset)));
    EXPECT_EQ(reading.after(3), DoctypeReading());
    // If lexing ends inside the declaration, its token ends there too.
    const std::vector<Token> tokens = Lexer::tokens(text, {2, 10}, reading);
    EXPECT_EQ(tokens, (std::vector<Token>{{Token::Kind::doctype, {2, 10}}}));
}

TEST(DoctypeReading, KeepsTheDeclarationInFormattedAndMinifiedText) {
    const DocumentTree tree = parsed(subset + u"<r><a/><a>it's</a></r>");
    const std::u16string formatted = PrettyPrinter::format(tree, IndentStyle::spaces(2)).replacement;
    EXPECT_EQ(formatted, subset + u"\n<r>\n  <a/>\n  <a>it's</a>\n</r>\n");
    EXPECT_TRUE(isIntact(formatted));
    EXPECT_TRUE(isIntact(PrettyPrinter::minify(parsed(formatted)).replacement));
}

TEST(DoctypeReading, IsWhatTheMatcherOfTagsSeesToo) {
    const std::u16string units = subset + u"<r><a></a></r>";
    const SourceText text(units);
    const auto start = static_cast<Offset>(subset.size());
    EXPECT_EQ(TagMatcher::context(start, text), TagMatcher::Context::content);
    EXPECT_EQ(TagMatcher::context(start + 3, text), TagMatcher::Context::content);
    EXPECT_EQ(TagMatcher::unclosedElement(start + 6, text), u"a");
    const auto closeName = static_cast<Offset>(units.size() - 2);
    EXPECT_EQ(TagMatcher::matchingCloseName(start, text), SourceRange::at(closeName, 1));
    EXPECT_EQ(TagMatcher::matchingOpenName(closeName - 2, text), SourceRange::at(start + 1, 1));
}

TEST(DoctypeReading, ReadsHostileTextsOnce) {
    // Each text would take hours if parts of it were read repeatedly.
    constexpr std::size_t many = 1'000'000;
    check({{repeated(u"<!DOCTYPE", many), u""}, {repeated(u"<!DOCTYPE[<!--'-->", many), u""}});
    const std::u16string closed = u"<!DOCTYPE[<!--'-->]>";
    // By the strict rule, the second declaration closes the quote of the first, and both are one declaration.
    EXPECT_EQ(DoctypeReading::of(SourceText(repeated(closed, many))).declaration,
              SourceRange::at(0, 2 * std::ssize(closed)));
    const std::u16string large =
        u"<!DOCTYPE r [<!-- don't -->" + repeated(u"<!-- \" ]> --><?x ]>?><!ENTITY e \"<\">", many) + u"]>";
    EXPECT_EQ(DoctypeReading::of(SourceText(large + u"<r/>")).declaration,
              SourceRange::at(0, std::ssize(large)));
    const DocumentTree tree = parsed(repeated(closed, many + 1) + u"<r/>");
    EXPECT_GT(tree.nodes.size(), 2U);
}
