#include "TagMatcher.h"

#include "Lexer.h"
#include "MarkedText.h"
#include "Random.h"
#include "Repeated.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <map>
#include <vector>

namespace {

using TagMatcher::Context;
using Name = std::optional<std::u16string>;
using Range = std::optional<SourceRange>;

struct ContextRow {
    std::u16string_view marked;
    Context expected;
};

void checkContexts(const std::vector<ContextRow>& rows) {
    for (const auto& [marked, expected] : rows) {
        const MarkedText input(marked);
        EXPECT_EQ(TagMatcher::context(input.caret(), input.text), expected)
            << ::testing::PrintToString(marked);
    }
}

struct NameRow {
    std::u16string_view marked;
    Name expected;
};

template <class Operation>
void checkNames(Operation operation, const std::vector<NameRow>& rows) {
    for (const auto& [marked, expected] : rows) {
        const MarkedText input(marked);
        EXPECT_EQ(operation(input.caret(), input.text), expected) << ::testing::PrintToString(marked);
    }
}

/// The operation is called with the offset of the mark in `marked`; `expected` is the text with the returned
/// range marked, or empty if there is none.
struct RangeRow {
    std::u16string_view marked;
    std::u16string_view expected;
};

template <class Operation>
void checkRanges(Operation operation, const std::vector<RangeRow>& rows) {
    for (const RangeRow& row : rows) {
        const MarkedText input(row.marked);
        const Range range = operation(input.caret(), input.text);
        EXPECT_EQ(range ? marked(input.text.string(), *range) : u"", row.expected)
            << ::testing::PrintToString(row.marked);
    }
}

/// Plain models of the operations, which read one unit at a time.
namespace Model {

bool isNameStart(char16_t unit) {
    return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z') || unit == ':' || unit == '_' ||
           unit >= 128;
}

bool isName(char16_t unit) {
    return isNameStart(unit) || (unit >= '0' && unit <= '9') || unit == '-' || unit == '.';
}

std::u16string name(std::u16string_view text, std::size_t from) {
    std::size_t end = from;
    while (end < text.size() && isName(text[end])) {
        ++end;
    }
    return std::u16string(text.substr(from, end - from));
}

constexpr auto npos = std::u16string_view::npos;

bool isOpen(std::u16string_view before, std::u16string_view opener, std::u16string_view closer) {
    const std::size_t start = before.rfind(opener);
    const std::size_t end = before.rfind(closer);
    return start != npos && (end == npos || end < start + opener.size());
}

/// Whether `at` is in a closed construct. Marks the units of these constructs from the start of the text on.
bool isInClosedConstruct(std::size_t at, std::u16string_view before) {
    std::vector<bool> isInside(before.size());
    const std::size_t openers[] = {before.rfind(u"<!--"), before.rfind(u"<![CDATA["), before.rfind(u"<?")};
    for (std::size_t i = 0; i < before.size(); ++i) {
        const auto kind = std::ranges::find(openers, i) - std::begin(openers);
        if (kind == std::ssize(openers) || isInside[i]) {
            continue;
        }
        const std::size_t openerLength = std::array{4, 9, 2}[kind];
        const std::u16string_view closer = std::array{u"-->", u"]]>", u"?>"}[kind];
        const std::size_t end = before.find(closer, i + openerLength) + closer.size();
        std::fill(isInside.begin() + i, isInside.begin() + end, true);
    }
    return isInside[at];
}

Context context(std::u16string_view before) {
    if (isOpen(before, u"<!--", u"-->")) {
        return Context::comment;
    }
    if (isOpen(before, u"<![CDATA[", u"]]>")) {
        return Context::cdata;
    }
    if (isOpen(before, u"<?", u"?>")) {
        return Context::instruction;
    }
    const std::size_t start = before.rfind(u'<');
    if (start == npos) {
        return Context::content;
    }
    if (isInClosedConstruct(start, before)) {
        return Context::content;
    }
    const std::u16string_view markup = before.substr(start);
    char16_t quote = 0;
    for (const char16_t unit : markup) {
        if (quote != 0) {
            quote = unit == quote ? u'\0' : quote;
        } else if (unit == u'>') {
            return Context::content;
        } else if (unit == u'"' || unit == u'\'') {
            quote = unit;
        }
    }
    return quote != 0 ? Context::attributeValue : Context::tag;
}

/// The context according to the tokens of the text before a caret.
Context lexedContext(std::u16string_view before) {
    UnitIndex index;
    Lexer lexer(before, index);
    std::optional<Token> last;
    while (const auto token = lexer.next()) {
        last = token;
    }
    const std::u16string_view end = last ? before.substr(last->range.lower, last->range.length()) : u"";
    const auto isOpen = [&](std::u16string_view closer, std::size_t shortest) {
        return end.size() < shortest || !end.ends_with(closer);
    };
    if (last && last->kind == Token::Kind::comment) {
        return isOpen(u"-->", 7) ? Context::comment : Context::content;
    }
    if (last && last->kind == Token::Kind::cdata) {
        return isOpen(u"]]>", 12) ? Context::cdata : Context::content;
    }
    if (last && last->kind == Token::Kind::instruction) {
        return isOpen(u"?>", 4) ? Context::instruction : Context::content;
    }
    const bool isInDeclaration = last && last->kind == Token::Kind::doctype && isOpen(u">", 3);
    const bool isAtBracket = last && last->kind == Token::Kind::invalid && end == u"<";
    if (lexer.mode == Lexer::Mode::content) {
        return isInDeclaration || isAtBracket ? Context::tag : Context::content;
    }
    const bool isInValue = last->kind == Token::Kind::attributeValue && last->range.upper == before.size() &&
                           (end.size() < 2 || end.back() != end.front());
    return isInValue ? Context::attributeValue : Context::tag;
}

Name openTagName(std::size_t at, std::u16string_view text) {
    const std::u16string_view before = text.substr(0, at);
    const std::size_t start = before.rfind(u'<');
    if (context(before) != Context::tag || before.ends_with(u'/') || start + 1 >= text.size() ||
        !isNameStart(text[start + 1])) {
        return std::nullopt;
    }
    return name(text, start + 1);
}

Name unclosedElement(std::u16string_view text) {
    std::vector<std::u16string> closed;
    for (;;) {
        const std::size_t end = text.rfind(u'>');
        if (end == npos) {
            return std::nullopt;
        }
        text = text.substr(0, end + 1);
        const auto skip = [&](std::u16string_view opener, std::size_t closerLength) {
            const std::size_t start = text.substr(0, text.size() - closerLength).rfind(opener);
            text = start == npos ? text : text.substr(0, start);
            return start != npos;
        };
        if (text.ends_with(u"-->") || text.ends_with(u"]]>")) {
            if (!skip(text.ends_with(u"-->") ? u"<!--" : u"<![CDATA[", 3)) {
                return std::nullopt;
            }
            continue;
        }
        if (text.ends_with(u"?>") && skip(u"<?", 2)) {
            continue;
        }
        const std::size_t start = text.rfind(u'<');
        if (start == npos) {
            return std::nullopt;
        }
        const char16_t first = text[start + 1];
        if (first == u'/') {
            closed.push_back(name(text, start + 2));
        } else if (isNameStart(first) && text[text.size() - 2] != u'/') {
            const std::u16string found = name(text, start + 1);
            const auto match = std::find(closed.rbegin(), closed.rend(), found);
            if (match == closed.rend()) {
                return found;
            }
            closed.erase(match.base() - 1, closed.end());
        }
        text = text.substr(0, start);
    }
}

/// The names in matching start and end tags, by the offset of the `<` of the other tag, as one pass over all
/// tokens pairs them.
struct Pairs {
    std::map<Offset, SourceRange> closeNames;
    std::map<Offset, SourceRange> openNames;
};

Pairs pairs(const SourceText& text) {
    Pairs pairs;
    const std::vector<Token> tokens = Lexer::tokens(text);
    std::vector<std::size_t> open;
    bool isInStartTag = false;
    std::size_t start = 0;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        switch (tokens[i].kind) {
        case Token::Kind::openTagStart:
            isInStartTag = true;
            start = i;
            break;
        case Token::Kind::tagEnd:
            if (isInStartTag) {
                open.push_back(start);
            }
            isInStartTag = false;
            break;
        case Token::Kind::closeTagStart:
            isInStartTag = false;
            if (!open.empty()) {
                const bool hasName = i + 1 < tokens.size() && tokens[i + 1].kind == Token::Kind::tagName;
                if (hasName) {
                    pairs.closeNames[tokens[open.back()].range.lower] = tokens[i + 1].range;
                    pairs.openNames[tokens[i].range.lower] = tokens[open.back() + 1].range;
                }
                open.pop_back();
            }
            break;
        case Token::Kind::selfCloseEnd:
            isInStartTag = false;
            break;
        default:
            break;
        }
    }
    return pairs;
}

} // namespace Model

constexpr std::u16string_view pieces[] = {
    u"<a>",  u"<b>",       u"</a>", u"</b>",      u"<a",   u"</",   u"<",     u">",  u"/>", u"/",
    u"<!--", u"-->",       u"--",   u"-",         u"]",    u"]]>",  u"<?",    u"?>", u"?",  u"\"",
    u"'",    u"<![CDATA[", u"<!",   u"<!x ",      u"<b c", u"=\"d", u"='",    u" ",  u"a",  u"b",
    u"\n",   u"\xE9",      u"1",    u"<a c='>'>", u"<a/>", u"</a ", u"\xD800"};

std::u16string randomMarkup(Random& random, std::size_t longest) {
    std::u16string text;
    for (std::size_t left = random.below(longest + 1); left > 0; --left) {
        text += pieces[random.below(std::size(pieces))];
    }
    return text;
}

/// Complete tags, comments, sections and instructions in any order.
std::u16string randomTags(Random& random, std::size_t longest) {
    static constexpr std::u16string_view whole[] = {u"<a>",
                                                    u"<b c='>'>",
                                                    u"</a>",
                                                    u"</b >",
                                                    u"<c/>",
                                                    u"text",
                                                    u"<!-- <a> ' -->",
                                                    u"<!--<'-->",
                                                    u"<![CDATA[</a>]]>",
                                                    u"<![CDATA[<\"]]>",
                                                    u"<?x <b> ?>",
                                                    u"<?<'?>",
                                                    u"</>",
                                                    u" -> "};
    std::u16string text;
    for (std::size_t left = random.below(longest + 1); left > 0; --left) {
        text += whole[random.below(std::size(whole))];
    }
    return text;
}

} // namespace

TEST(TagMatcher, TellsTheContext) {
    checkContexts({
        {u"<a href=\"x>y|", Context::attributeValue},
        {u"<a href=\"x>y\"|", Context::tag},
        {u"<!--|", Context::comment},
        {u"<!-- a -->|", Context::content},
        {u"<?xml version=\"1.0\"?>|", Context::content},
        {u"|", Context::content},
        {u"|<a>", Context::content},
    });
}

TEST(TagMatcher, TellsTheContextInTags) {
    checkContexts({
        {u"text|", Context::content},
        {u"don't|", Context::content},
        {u"<|", Context::tag},
        {u"<|a>", Context::tag},
        {u"<a|>", Context::tag},
        {u"<a>|", Context::content},
        {u"</a|>", Context::tag},
        {u"</a>|", Context::content},
        {u"<a b|", Context::tag},
        {u"<a b=|", Context::tag},
        {u"<a b='|'>", Context::attributeValue},
        {u"<a b='\"|'>", Context::attributeValue},
        {u"<a b='\"'|>", Context::tag},
        {u"<a b=\"'\" c|>", Context::tag},
        {u"<a b='x'>don't|", Context::content},
        {u"<a b='x<y|'", Context::tag},
        {u"> x|", Context::content},
        {u"<a/|>", Context::tag},
        {u"<a/>|", Context::content},
        {u"< b|", Context::tag},
        {u"<!DOCTYPE a|>", Context::tag},
        {u"<!DOCTYPE a 'b|'>", Context::attributeValue},
        {u"<!DOCTYPE a>|", Context::content},
    });
}

TEST(TagMatcher, TellsTheContextInComments) {
    checkContexts({
        {u"<!-|-", Context::tag},
        {u"<!-- <a b='|'> -->", Context::comment},
        {u"<!-->|", Context::comment},
        {u"<!--->|", Context::comment},
        {u"<!---->|", Context::content},
        {u"<!-- a --|>", Context::comment},
        {u"<!-- don't -->|", Context::content},
        {u"<!-- don't --> it's \"|", Context::content},
        {u"<a><!-- x --><b|>", Context::tag},
        {u"<!-- a <!-- b -->|", Context::content},
        {u"<!-- a --> b -->|", Context::content},
        {u"<!-- a --> <!-- b|", Context::comment},
        {u"<![CDATA[ <!-- ]]>|", Context::comment},
    });
}

TEST(TagMatcher, TellsTheContextAfterWhateverWasClosed) {
    checkContexts({
        {u"<!--<'-->|", Context::content},
        {u"<!--<'-->text|", Context::content},
        {u"<!-- if a < b, don't -->ul>li|", Context::content},
        {u"<!-- \"a\" > b -->|", Context::content},
        {u"<![CDATA[<\"]]>|", Context::content},
        {u"<?<'?>|", Context::content},
        {u"<?x a<b ?> \"|", Context::content},
        {u"<!--<'--><b c='|", Context::attributeValue},
        {u"<!--<?'?>-->|", Context::content},
        {u"<!--<?x--><b c='?>|", Context::attributeValue}, // The comment hides the `<?`.
        {u"<!--<'--|>", Context::comment},
        {u"<![CDATA[<!--]]>|", Context::comment}, // The nearest opener counts, even inside another construct.
    });
}

TEST(TagMatcher, TellsTheContextInSectionsAndInstructions) {
    checkContexts({
        {u"<![CDATA[|]]>", Context::cdata},
        {u"<![CDATA|[]]>", Context::tag},
        {u"<![CDATA[]]|>", Context::cdata},
        {u"<![CDATA[ it's ]]>|", Context::content},
        {u"<![cdata[|]]>", Context::tag},
        {u"<![CDATA[ <a b='|' ]]>", Context::cdata},
        {u"<?|", Context::instruction},
        {u"<?>|", Context::instruction},
        {u"<?\?>|", Context::content},
        {u"<?x it's ?>|", Context::content},
        {u"<?x <!-- ?>|", Context::comment},
        {u"<?x <![CDATA[ |?>", Context::cdata},
        {u"<? <? ?>|", Context::content},
    });
}

TEST(TagMatcher, NamesTheTagToBeClosed) {
    checkNames(TagMatcher::openTagName, {
                                            {u"<item id=\"1\"|", u"item"},
                                            {u"<br/|", std::nullopt},
                                            {u"</item|", std::nullopt},
                                            {u"|", std::nullopt},
                                            {u"text|", std::nullopt},
                                            {u"<a>|", std::nullopt},
                                            {u"<|", std::nullopt},
                                            {u"<a|", u"a"},
                                            {u"<a|bc", u"abc"},
                                            {u"<|abc", u"abc"},
                                            {u"<x:y-z.1\xE9 |", u"x:y-z.1\xE9"},
                                            {u"<a\n  b='/'|", u"a"},
                                            {u"<a b='|", std::nullopt},
                                            {u"<a b=/|", std::nullopt},
                                            {u"<1|", std::nullopt},
                                            {u"<!DOCTYPE|", std::nullopt},
                                            {u"<?a|", std::nullopt},
                                            {u"<!-- <a|", std::nullopt},
                                            {u"<a <b|", u"b"},
                                            {u"<\xD800|", u"\xD800"},
                                        });
}

TEST(TagMatcher, NamesTheUnclosedElement) {
    checkNames(TagMatcher::unclosedElement, {
                                                {u"<a><b></b><c/>|", u"a"},
                                                {u"<a><b>|", u"b"},
                                                {u"<a></a>|", std::nullopt},
                                                {u"<a><!-- > -->|", u"a"},
                                                {u"|<a>", std::nullopt},
                                                {u"text|", std::nullopt},
                                                {u"a > b|", std::nullopt},
                                                {u"<a>x > y|", u"a"},
                                                {u"<a>|</a>", u"a"},
                                                {u"<a|>", std::nullopt},
                                                {u"<a b='>'>|", u"a"},
                                                {u"<a><!-- <b> -->|", u"a"},
                                                {u"<a><![CDATA[<b>]]>|", u"a"},
                                                {u"<a><?x <b> ?>|", u"a"},
                                                {u"<a><!DOCTYPE b>|", u"a"},
                                                {u"<a></>|", u"a"},
                                                {u"<a><>|", u"a"},
                                                {u"<a><1>|", u"a"},
                                                {u"<a></b></c>|", u"a"},
                                                {u"<a><b></c></b>|", u"a"},
                                                {u"<a><b></a>|", u"b"},
                                                {u"<x><a><b></a></b>|", u"a"},
                                                {u"<a></a ><a></ a>|", u"a"},
                                                {u"<a></A>|", u"a"},
                                                {u"<a> -->|", std::nullopt},
                                                {u"<a> ]]>|", std::nullopt},
                                                {u"<a> ?>|", u"a"},
                                                {u"<a>?> ?>|", u"a"},
                                                {u"<?x?><a> ?>|", std::nullopt},
                                                {u"<a><!-->|", std::nullopt},
                                                {u"<a><?>|", u"a"},
                                                {u"<a/ >|", u"a"},
                                            });
}

TEST(TagMatcher, FindsTheNameAroundTheCaret) {
    checkRanges(TagMatcher::startTagName, {
                                              {u"|<a>", u""},
                                              {u"<|ab>", u"<|ab|>"},
                                              {u"<a|b>", u"<|ab|>"},
                                              {u"<ab|>", u"<|ab|>"},
                                              {u"<ab |c>", u""},
                                              {u"<ab c|>", u""},
                                              {u"</a|b>", u""},
                                              {u"<|>", u""},
                                              {u"<1|a>", u""},
                                              {u"<|", u""},
                                              {u"a|b", u""},
                                              {u"<x:\xE9|-1.", u"<|x:\xE9-1.|"},
                                          });
    checkRanges(TagMatcher::endTagName, {
                                            {u"|</a>", u""},
                                            {u"<|/a>", u""},
                                            {u"</|ab>", u"</|ab|>"},
                                            {u"</a|b>", u"</|ab|>"},
                                            {u"</ab|", u"</|ab|"},
                                            {u"</ab |>", u""},
                                            {u"<a|b>", u""},
                                            {u"</|>", u""},
                                            {u"/a|", u""},
                                        });
}

TEST(TagMatcher, FindsTheMatchingEndTag) {
    checkRanges(TagMatcher::matchingCloseName, {
                                                   {u"|<a></a>", u"<a></|a|>"},
                                                   {u"x|<a>y</b>", u"x<a>y</|b|>"},
                                                   {u"|<a><a></a><b/></a></a>", u"<a><a></a><b/></|a|></a>"},
                                                   {u"<a>|<a></a><b/></a></a>", u"<a><a></|a|><b/></a></a>"},
                                                   {u"|<a b='>' c=\"/>\"></a>", u"<a b='>' c=\"/>\"></|a|>"},
                                                   {u"|<a b='</a>'></a>", u""},
                                                   {u"|<a><!-- </a> --><![CDATA[</a>]]><?x </a>?></a>",
                                                    u"<a><!-- </a> --><![CDATA[</a>]]><?x </a>?></|a|>"},
                                                   {u"|<a/></a>", u""},
                                                   {u"|<a>", u""},
                                                   {u"|<a", u""},
                                                   {u"|<a><b></b>", u""},
                                                   {u"|<a></>", u""},
                                                   {u"|<a></", u""},
                                                   {u"|<a></></a>", u""},
                                                   {u"|<a></ a>", u""},
                                                   {u"|<a <b></b></a>", u""},
                                                   {u"|<a </a>", u""},
                                                   {u"|<a <!-- --></a>", u""},
                                                   {u"|<a><b <c></c></a>", u"<a><b <c></c></|a|>"},
                                                   {u"|<a></a/>", u"<a></|a|/>"},
                                                   {u"|<a><b></b/></a>", u"<a><b></b/></|a|>"},
                                                   {u"|<a></a", u"<a></|a|"},
                                                   {u"<|a></a>", u""},
                                                   {u"|</a></a>", u""},
                                                   {u"|text</a>", u""},
                                                   {u"|<!-- --></a>", u""},
                                                   {u"<a></a>|", u""},
                                                   {u"<a></a><|", u""},
                                               });
}

TEST(TagMatcher, FindsTheMatchingStartTag) {
    checkRanges(TagMatcher::matchingOpenName,
                {
                    {u"<a>|</a>", u"<|a|></a>"},
                    {u"<b>y|</a>", u"<|b|>y</a>"},
                    {u"<a><a></a><b/>|</a></a>", u"<|a|><a></a><b/></a></a>"},
                    {u"<a><a></a><b/></a>|</a>", u""},
                    {u"<a><a>|</a><b/></a>", u"<a><|a|></a><b/></a>"},
                    {u"<a b='>'>|</a>", u"<|a| b='>'></a>"},
                    {u"<a><!-- <a> -->|</a>", u"<|a|><!-- <a> --></a>"},
                    {u"<a><![CDATA[<a>]]><?x <a>?>|</a>", u"<|a|><![CDATA[<a>]]><?x <a>?></a>"},
                    {u"<a> --> ]]> ?>|</a>", u"<|a|> --> ]]> ?></a>"},
                    {u"<!-- x --><a> --> ]]> ?>|</a>", u"<!-- x --><|a|> --> ]]> ?></a>"},
                    {u"<a b='-->'>|</a>", u"<|a| b='-->'></a>"},
                    {u"<a <b>|</b></a>", u"<a <|b|></b></a>"},
                    {u"<a <b></b>|</a>", u""},
                    {u"<a><b <c></c>|</a>", u"<|a|><b <c></c></a>"},
                    {u"<a/>|</a>", u""},
                    {u"|</a>", u""},
                    {u"<a>|</>", u""},
                    {u"<a>|</", u""},
                    {u"<a>|</ a>", u""},
                    {u"<a>|<b></a>", u""},
                    {u"<a></a>|", u""},
                    {u"<a></></b>|</c>", u""},
                    {u"<c><a></></b>|</c>", u""},
                    {u"<c><a></>|</c>", u"<|c|><a></></c>"},
                    {u"<a><!-- |</a>", u""},
                });
}

TEST(TagMatcher, AgreesWithSlowSearches) {
    Random random;
    for (int round = 0; round < 20'000; ++round) {
        const SourceText text(randomMarkup(random, 24));
        const auto at = static_cast<Offset>(random.below(text.count() + 1));
        const std::u16string_view before = text.units({0, at});
        const std::string shown = ::testing::PrintToString(std::u16string(before));
        ASSERT_EQ(TagMatcher::context(at, text), Model::context(before)) << shown;
        ASSERT_EQ(TagMatcher::openTagName(at, text), Model::openTagName(at, text.units())) << shown;
        ASSERT_EQ(TagMatcher::unclosedElement(at, text), Model::unclosedElement(before)) << shown;
    }
}

/// If no construct contains the opener of another one, the context is that of the tokens before the caret.
TEST(TagMatcher, TellsTheContextThatTheLexerTells) {
    Random random;
    std::map<Context, int> seen;
    for (int round = 0; round < 5'000; ++round) {
        const SourceText text(randomTags(random, 12));
        const auto at = static_cast<Offset>(random.below(text.count() + 1));
        const Context expected = Model::lexedContext(text.units({0, at}));
        ASSERT_EQ(TagMatcher::context(at, text), expected)
            << ::testing::PrintToString(std::u16string(text.units({0, at})));
        ++seen[expected];
    }
    EXPECT_EQ(seen.size(), 6U);
}

TEST(TagMatcher, PairsTagsAsOnePassOverTheTextDoes) {
    Random random;
    int matches = 0;
    for (int round = 0; round < 5'000; ++round) {
        const SourceText text(round % 2 == 0 ? randomTags(random, 24) : randomMarkup(random, 24));
        const std::string shown = ::testing::PrintToString(text.string());
        const Model::Pairs pairs = Model::pairs(text);
        for (const auto& [start, name] : pairs.closeNames) {
            ASSERT_EQ(TagMatcher::matchingCloseName(start, text), Range(name)) << start << " of " << shown;
            ++matches;
        }
        for (const Token& token : Lexer::tokens(text)) {
            const bool opens = token.kind == Token::Kind::openTagStart;
            if (opens && !pairs.closeNames.contains(token.range.lower)) {
                ASSERT_EQ(TagMatcher::matchingCloseName(token.range.lower, text), std::nullopt)
                    << token.range.lower << " of " << shown;
            }
        }
    }
    EXPECT_GT(matches, 1'000);
}

TEST(TagMatcher, FindsStartTagsOfUnbrokenMarkup) {
    Random random;
    int matches = 0;
    for (int round = 0; round < 5'000; ++round) {
        const SourceText text(randomTags(random, 24));
        const Model::Pairs pairs = Model::pairs(text);
        for (const Token& token : Lexer::tokens(text)) {
            if (token.kind == Token::Kind::closeTagStart) {
                const auto pair = pairs.openNames.find(token.range.lower);
                const Range expected = pair == pairs.openNames.end() ? Range() : Range(pair->second);
                ASSERT_EQ(TagMatcher::matchingOpenName(token.range.lower, text), expected)
                    << token.range.lower << " of " << ::testing::PrintToString(text.string());
                matches += expected ? 1 : 0;
            }
        }
    }
    EXPECT_GT(matches, 1'000);
}

TEST(TagMatcher, MatchesInBothDirectionsOrNotAtAll) {
    Random random;
    for (int round = 0; round < 20'000; ++round) {
        const SourceText text(randomMarkup(random, 24));
        for (Offset at = 0; at < text.count(); ++at) {
            const Range openName = TagMatcher::matchingOpenName(at, text);
            if (openName) {
                const Range closeName = TagMatcher::matchingCloseName(openName->lower - 1, text);
                ASSERT_TRUE(closeName && closeName->lower == at + 2)
                    << at << " of " << ::testing::PrintToString(text.string());
            }
        }
    }
}

TEST(TagMatcher, FindsWhatLiesFarBack) {
    for (int distance = 0; distance < 100; ++distance) {
        const std::u16string far(distance, u'x');
        const auto contextAfter = [&](const std::u16string& start) {
            const SourceText text(start + far);
            return TagMatcher::context(text.count(), text);
        };
        EXPECT_EQ(contextAfter(u"<!--"), Context::comment);
        EXPECT_EQ(contextAfter(u"y<![CDATA["), Context::cdata);
        EXPECT_EQ(contextAfter(u"yy<?"), Context::instruction);
        EXPECT_EQ(contextAfter(u"<a b='"), Context::attributeValue);
        const SourceText element(u"yyy<a>" + far);
        EXPECT_EQ(TagMatcher::unclosedElement(element.count(), element), u"a");
    }
}

TEST(TagMatcher, TellsTagsAfterALongOne) {
    const SourceText text(u"<a x=\"1\"><b y=\"" + std::u16string(1000, u'v') + u"\"></b></a>");
    EXPECT_EQ(TagMatcher::matchingOpenName(text.count() - 4, text), SourceRange(1, 2));
}

/// Each text would take hours if parts of it were read repeatedly.
TEST(TagMatcher, EndsOnHostileTexts) {
    constexpr int times = 300'000;
    const auto row = [](std::u16string_view start, std::u16string_view piece) {
        return ::testing::PrintToString(std::u16string(start).append(piece));
    };
    for (const std::u16string_view piece :
         {u"</b>",       u"<b>", u"?>",   u"-->",  u"]]>",    u"<!--",   u"<?",      u"<![CDATA[",
          u"<!-- -->",   u"<",   u">",    u"'",    u"<a b='", u"</",     u"<b></b>", u"<b></b>?>",
          u"--><b></b>", u"<!",  u"<!x[", u"x-->", u"<a ",    u"<b></c>"}) {
        for (const std::u16string_view start : {u"", u"<a>", u"<?x ?><!-- --><a>"}) {
            const SourceText text(std::u16string(start) + repeated(piece, times) + u"</a>");
            const Offset end = text.count() - 4;
            const std::u16string_view before = text.units({0, end});
            EXPECT_EQ(TagMatcher::context(end, text), Model::context(before)) << row(start, piece);
            EXPECT_EQ(TagMatcher::openTagName(end, text), Model::openTagName(end, text.units()))
                << row(start, piece);
            const Name unclosed = TagMatcher::unclosedElement(end, text);
            EXPECT_TRUE(!unclosed || unclosed == u"a" || unclosed == u"b") << row(start, piece);
            const Range open = TagMatcher::matchingOpenName(end, text);
            EXPECT_TRUE(!open ||
                        TagMatcher::matchingCloseName(open->lower - 1, text) == SourceRange::at(end + 2, 1))
                << row(start, piece);
            const Range close = TagMatcher::matchingCloseName(static_cast<Offset>(start.size()), text);
            EXPECT_TRUE(!close || TagMatcher::endTagName(close->lower, text) == close) << row(start, piece);
        }
    }
    const SourceText unmatched(u"<a><a></a>" + repeated(u"</b>", times));
    EXPECT_EQ(TagMatcher::unclosedElement(unmatched.count(), unmatched), u"a");
    const SourceText deep(repeated(u"<a>", times) + repeated(u"</a>", times));
    EXPECT_EQ(TagMatcher::matchingCloseName(0, deep), SourceRange::at(deep.count() - 2, 1));
    EXPECT_EQ(TagMatcher::matchingOpenName(deep.count() - 4, deep), SourceRange(1, 2));
}
