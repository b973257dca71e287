#include "TagExpander.h"

#include "Abbreviation.h"
#include "MarkedText.h"
#include "Random.h"
#include "Repeated.h"
#include "TreeParser.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace {

constexpr bool atDocumentStart = true;
constexpr bool elsewhere = false;
constexpr std::u16string_view unit = u"  ";

/// The text of `snippet` with a `|` at each placeholder, all of which are empty and in order; "none" if there
/// is no snippet.
std::u16string shown(const std::optional<Snippet>& snippet) {
    if (!snippet) {
        return u"none";
    }
    std::u16string text = snippet->text;
    for (auto stop = snippet->placeholders.rbegin(); stop != snippet->placeholders.rend(); ++stop) {
        EXPECT_TRUE(stop->isEmpty());
        text.insert(stop->lower, 1, u'|');
    }
    return text;
}

struct Row {
    std::u16string_view abbreviation;
    std::u16string_view expected;
};

void checkExpanded(std::u16string_view indent, const std::vector<Row>& rows) {
    for (const auto& [abbreviation, expected] : rows) {
        EXPECT_EQ(shown(TagExpander::expand(abbreviation, indent, unit, elsewhere)), expected)
            << ::testing::PrintToString(abbreviation);
    }
}

/// The abbreviation before the caret at the end of `text`, and its expansion; "none" if there is no
/// abbreviation.
struct FoundRow {
    std::u16string text;
    std::u16string_view expectedAbbreviation;
    std::u16string_view expectedSnippet;
};

void checkFound(const std::vector<FoundRow>& rows) {
    for (const FoundRow& row : rows) {
        const SourceText text(row.text + u" tail>");
        const auto caret = static_cast<Offset>(row.text.size());
        const auto found = TagExpander::expansion(caret, text, unit);
        const std::string message = ::testing::PrintToString(row.text);
        ASSERT_EQ(found.has_value(), row.expectedSnippet != u"none") << message;
        if (found) {
            EXPECT_EQ(found->range.upper, caret) << message;
            EXPECT_EQ(text.units(found->range), row.expectedAbbreviation) << message;
            EXPECT_EQ(shown(found->snippet), row.expectedSnippet) << message;
        }
    }
}

/// A plain model of the search for an abbreviation, one attempt after the other.
std::optional<std::u16string> slowAbbreviation(std::u16string_view candidate) {
    for (;;) {
        if (TagExpander::expand(candidate, u"", unit, elsewhere)) {
            return std::u16string(candidate);
        }
        const std::size_t operation = candidate.find(u'>');
        if (operation == std::u16string_view::npos) {
            return std::nullopt;
        }
        candidate = candidate.substr(operation + 1);
    }
}

/// Where a candidate that ends with `text` starts; none if there cannot be one.
std::optional<Offset> slowCandidateStart(std::u16string_view text) {
    const auto offset = [](std::size_t at) { return static_cast<Offset>(at); };
    int brackets = 0;
    for (std::size_t at = text.size(); at > 0; --at) {
        const char16_t previous = text[at - 1];
        const bool isOutside = brackets == 0;
        if (previous == u'\n' ||
            (isOutside && (previous == u' ' || previous == u'\t' || previous == u'\r'))) {
            return offset(at);
        }
        if (isOutside && previous == u'<') {
            const std::size_t tagEnd = text.find(u'>', at);
            return tagEnd == std::u16string_view::npos ? std::nullopt : std::optional(offset(tagEnd + 1));
        }
        brackets += previous == u']' ? 1 : previous == u'[' && !isOutside ? -1 : 0;
    }
    return 0;
}

constexpr char32_t grammar[] = {U'a', U'b', U'a',  U'b', U'>', U'+', U'*', U'2', U'0', U'[',     U']',
                                U'=', U'"', U'\'', U'/', U'!', U'?', U'.', U'<', U'&', U'\u0301'};

} // namespace

TEST(TagExpander, ExpandsChildrenOnLinesOfTheirOwn) {
    checkExpanded(u"", {{u"ul>li*3", u"<ul>\n  <li>|</li>\n  <li>|</li>\n  <li>|</li>\n</ul>|"}});
}

TEST(TagExpander, ExpandsAttributes) {
    checkExpanded(u"", {
                           {u"a[href title=x]", u"<a href=\"|\" title=\"x\">|</a>|"},
                           {u"a[b='&\"<>']", u"<a b=\"&amp;&quot;&lt;>\">|</a>|"},
                           {u"a[b=\"it's\"]", u"<a b=\"it's\">|</a>|"},
                           {u"a[b=c\td]", u"<a b=\"c&#9;d\">|</a>|"},
                           {u"a[b]/", u"<a b=\"|\"/>|"},
                           {u"a[]", u"<a>|</a>|"},
                       });
}

TEST(TagExpander, ExpandsElementsThatCloseThemselves) {
    checkExpanded(u"", {
                           {u"img/", u"<img/>"},
                           {u"img/>b", u"none"},
                           {u"img*2/", u"<img/>\n<img/>"},
                           {u"a>img/", u"<a>\n  <img/>\n</a>"},
                       });
}

TEST(TagExpander, RefusesWhatIsNoAbbreviation) {
    for (const std::u16string_view abbreviation :
         {u"p*0", u"p*501", u"p*", u"1a", u"", u"a b", u"a>", u"!!", u"!cdata!", u"!CDATA", u"?x"}) {
        EXPECT_EQ(TagExpander::expand(abbreviation, u"", unit, elsewhere), std::nullopt)
            << ::testing::PrintToString(abbreviation);
    }
}

TEST(TagExpander, RepeatsUpTo500Times) {
    const auto snippet = TagExpander::expand(u"p*500", u"", unit, elsewhere);
    ASSERT_TRUE(snippet);
    EXPECT_EQ(snippet->placeholders.size(), 501U);
    EXPECT_EQ(snippet->text, repeated(u"<p></p>\n", 499) + u"<p></p>");
}

TEST(TagExpander, ExpandsTheSpecialOnes) {
    checkExpanded(u"  ", {
                             {u"!", u"<!-- | -->"},
                             {u"!cdata", u"<![CDATA[|]]>"},
                             {u"?", u"<?|?>"},
                         });
    EXPECT_EQ(shown(TagExpander::expand(u"?", u"", unit, atDocumentStart)),
              u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
    EXPECT_EQ(shown(TagExpander::expand(u"!", u"", unit, atDocumentStart)), u"<!-- | -->");
}

TEST(TagExpander, NestsAndIndents) {
    checkExpanded(u"",
                  {
                      {u"a", u"<a>|</a>|"},
                      {u"a+b", u"<a>|</a>\n<b>|</b>|"},
                      {u"a>b+c", u"<a>\n  <b>|</b>\n  <c>|</c>\n</a>|"},
                      {u"a>b>c", u"<a>\n  <b>\n    <c>|</c>\n  </b>\n</a>|"},
                      {u"a+b>c+d", u"<a>|</a>\n<b>\n  <c>|</c>\n  <d>|</d>\n</b>|"},
                      {u"a*2>b*2", u"<a>\n  <b>|</b>\n  <b>|</b>\n</a>\n<a>\n  <b>|</b>\n  <b>|</b>\n</a>|"},
                      {u"a>b*2>c/", u"<a>\n  <b>\n    <c/>\n  </b>\n  <b>\n    <c/>\n  </b>\n</a>"},
                  });
    checkExpanded(u"\t", {
                             {u"a", u"<a>|</a>|"},
                             {u"a+b", u"<a>|</a>\n\t<b>|</b>|"},
                             {u"a>b", u"<a>\n\t  <b>|</b>\n\t</a>|"},
                         });
    EXPECT_EQ(shown(TagExpander::expand(u"a>b", u"", u"", elsewhere)), u"<a>\n<b>|</b>\n</a>|");
}

TEST(TagExpander, RefusesWhatWouldBeWrong) {
    checkExpanded(u"", {
                           {u"a[b b]", u"none"},
                           {u"a[b=1 c b=2]", u"none"},
                           {u"a>c[b b]", u"none"},
                           {u"a[b B]", u"<a b=\"|\" B=\"|\">|</a>|"},
                           // With its mark it is another character, which is not escaped.
                           {u"a[b=<\u0301]", u"none"},
                           {u"a[b='\"\u0301']", u"none"},
                           {u"a[b=&\u0301]", u"<a b=\"&\u0301\">|</a>|"},
                       });
}

TEST(TagExpander, RefusesWhatWouldBeTooLarge) {
    EXPECT_TRUE(TagExpander::expand(u"a*200/+b*499>c*199/", u"", unit, elsewhere));
    const auto largest = TagExpander::expand(u"a*200/+b*400/+c*198>d*500/+e", u"", unit, elsewhere);
    ASSERT_TRUE(largest);
    EXPECT_EQ(std::ranges::count(largest->text, u'<'), 200 + 400 + 198 * (2 + 500 + 2));
    EXPECT_TRUE(TagExpander::expand(u"a*200>b*499/", u"", unit, elsewhere));
    EXPECT_FALSE(TagExpander::expand(u"a*200>b*500/", u"", unit, elsewhere));
    EXPECT_FALSE(TagExpander::expand(repeated(u"a*500>", 50) + u"b", u"", unit, elsewhere));
    // Few elements, each with a large indentation.
    EXPECT_TRUE(TagExpander::expand(repeated(u"a>", 2'000) + u"b", u"", unit, elsewhere));
    EXPECT_FALSE(TagExpander::expand(repeated(u"a>", 20'000) + u"b", u"", unit, elsewhere));
    EXPECT_TRUE(TagExpander::expand(repeated(u"a>", 20'000) + u"b", u"", u"", elsewhere));
    EXPECT_FALSE(TagExpander::expand(u"a*200>b*400/", std::u16string(1'000, u' '), unit, elsewhere));
}

/// The longest value that an element inside `outer` may have is exactly as long as its copies leave room for.
TEST(TagExpander, FillsItsLimitExactly) {
    Random random;
    for (int round = 0; round < 50; ++round) {
        std::u16string outer;
        std::size_t copies = 1;
        for (std::size_t left = 3 + random.below(3); left > 0; --left) {
            const std::size_t count = 1 + random.below(4);
            const bool hasChildren = random.below(3) != 0;
            outer.append(u"a*").append(1, u"01234"[count]).append(hasChildren ? u">" : u"+");
            copies *= hasChildren ? count : 1;
        }
        const auto withValue = [&](std::size_t length) {
            return TagExpander::expand(outer + u"b[c=" + std::u16string(length, u'v') + u"]*20", u"\t", unit,
                                       elsewhere);
        };
        const std::size_t others = withValue(0)->text.size();
        const std::size_t longest = (TagExpander::maximumUnits - others) / (copies * 20);
        EXPECT_TRUE(withValue(longest)) << ::testing::PrintToString(outer);
        EXPECT_FALSE(withValue(longest + 1)) << ::testing::PrintToString(outer);
    }
}

TEST(TagExpander, FindsTheAbbreviationBeforeTheCaret) {
    checkFound({
        {u"<p>ul>li", u"ul>li", u"<ul>\n  <li>|</li>\n</ul>|"},
        {u"?", u"?", u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>"},
        {u"\n\t ?", u"?", u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>"},
        {u"x ?", u"?", u"<?|?>"},
        {u"<a>?", u"?", u"<?|?>"},
        {u"a>?", u"?", u"<?|?>"},
        {u"", u"", u"none"},
        {u"a\n", u"", u"none"},
        {u"a ", u"", u"none"},
        {u"a\t", u"", u"none"},
        {u"a\r", u"", u"none"},
        {u"ab", u"ab", u"<ab>|</ab>|"},
        {u"x ab", u"ab", u"<ab>|</ab>|"},
        {u"x\tab", u"ab", u"<ab>|</ab>|"},
        {u"x\r\nab", u"ab", u"<ab>|</ab>|"},
        {u"  a>b", u"a>b", u"<a>\n    <b>|</b>\n  </a>|"},
        {u"  x a>b", u"a>b", u"<a>\n    <b>|</b>\n  </a>|"},
        {u"x a[b c='d e']", u"a[b c='d e']", u"<a b=\"|\" c=\"d e\">|</a>|"},
        {u"x a[b c='<d>']", u"a[b c='<d>']", u"<a b=\"|\" c=\"&lt;d>\">|</a>|"},
        {u"a[b\nc]", u"", u"none"},
        {u"a[b c", u"c", u"<c>|</c>|"},
        {u"<", u"", u"none"},
        {u"<a", u"", u"none"},
        {u"<a>", u"", u"none"},
        {u"<a b='>'>c", u"c", u"<c>|</c>|"},
        {u"<a>b", u"b", u"<b>|</b>|"},
        {u"</a>b/", u"b/", u"<b/>"},
        {u"x>1>a>b", u"a>b", u"<a>\n  <b>|</b>\n</a>|"},
        {u"x>1", u"", u"none"},
        {u"1>!", u"!", u"<!-- | -->"},
        {u"<a>!cdata", u"!cdata", u"<![CDATA[|]]>"},
        {u"a>!cdata", u"!cdata", u"<![CDATA[|]]>"},
        {u"img/>b", u"b", u"<b>|</b>|"},
        {u"a[b b]>c", u"c", u"<c>|</c>|"},
        {u"a*500>b*500>c", u"b*500>c", repeated(u"<b>\n  <c>|</c>\n</b>\n", 499) + u"<b>\n  <c>|</c>\n</b>|"},
        {u"a*500>b*500", u"b*500", repeated(u"<b>|</b>\n", 499) + u"<b>|</b>|"},
        {u"1[b=>c", u"c", u"<c>|</c>|"},
    });
}

TEST(TagExpander, FindsWhatOneAttemptAfterTheOtherFinds) {
    Random random;
    int found = 0;
    for (int round = 0; round < 100'000; ++round) {
        std::u16string candidate = random.text(grammar, 16);
        std::erase(candidate, u'<');
        const SourceText text(candidate);
        const auto expansion = TagExpander::expansion(text.count(), text, unit);
        const auto expected = slowAbbreviation(candidate);
        // An abbreviation that can be read but not expanded, because it repeats an attribute, ends the
        // search; the model continues inside its brackets.
        const bool repeatsAttributes = AbbreviationReader(candidate).elements(0).has_value() &&
                                       !TagExpander::expand(candidate, u"", unit, elsewhere);
        if (!repeatsAttributes && candidate != u"?") {
            ASSERT_EQ(expansion.has_value(), expected.has_value()) << ::testing::PrintToString(candidate);
            if (expansion) {
                ASSERT_EQ(text.units(expansion->range), *expected) << ::testing::PrintToString(candidate);
                ASSERT_EQ(expansion->snippet, TagExpander::expand(*expected, u"", unit, elsewhere));
                ++found;
            }
        }
    }
    EXPECT_GT(found, 1'000);
}

/// Compares with a model that goes back from the caret unit by unit and tries every possible abbreviation.
TEST(TagExpander, StartsWhereAWalkBackFromTheCaretEnds) {
    constexpr char32_t walked[] = {U'a', U'b', U'>', U'+', U'1', U'[', U']', U'=',  U'\'',
                                   U'/', U'<', U' ', U'!', U'?', U'a', U'>', U'\n', U'\t'};
    Random random;
    int found = 0;
    for (int round = 0; round < 100'000; ++round) {
        const SourceText text(random.text(walked, 14));
        const auto start = slowCandidateStart(text.units());
        std::optional<TagExpander::Expansion> expected;
        bool isReadOnly = false; // Some abbreviation can be read but not expanded, which ends the search.
        for (Offset from = start.value_or(text.count()); from < text.count() && !expected;) {
            const SourceRange candidate(from, text.count());
            auto snippet = TagExpander::expand(text.units(candidate), text.indentation(text.count()), unit,
                                               text.isWhitespace({0, from}));
            isReadOnly |= !snippet && AbbreviationReader(text.units(candidate)).elements(0).has_value();
            if (snippet) {
                expected = {candidate, *std::move(snippet)};
            }
            const std::size_t next = text.units().find(u'>', from);
            from = next == std::u16string_view::npos ? text.count() : static_cast<Offset>(next + 1);
        }
        if (!isReadOnly) {
            ASSERT_EQ(TagExpander::expansion(text.count(), text, unit), expected)
                << ::testing::PrintToString(text.string());
            found += expected ? 1 : 0;
        }
    }
    EXPECT_GT(found, 1'000);
}

TEST(TagExpander, WritesMarkupWithoutDiagnostics) {
    Random random;
    int expanded = 0;
    for (int round = 0; round < 100'000; ++round) {
        const std::u16string abbreviation = random.text(grammar, 14);
        const auto snippet = TagExpander::expand(abbreviation, u"  ", unit, elsewhere);
        if (snippet) {
            const std::u16string text = std::u16string(u"<root>").append(snippet->text).append(u"</root>");
            ASSERT_TRUE(TreeParser::parse(SourceText(text)).diagnostics.empty())
                << ::testing::PrintToString(text);
            ASSERT_TRUE(std::ranges::is_sorted(snippet->placeholders, {}, &SourceRange::lower));
            ++expanded;
        }
    }
    EXPECT_GT(expanded, 1'000);
}

/// Each text would take hours, or all memory, if every `>` started a new attempt or if it were expanded in
/// full.
TEST(TagExpander, EndsOnHostileAbbreviations) {
    constexpr int times = 400'000;
    for (const std::u16string_view piece :
         {u">", u"+", u"a>", u"a+", u"a*500>", u"*99999", u"a[b=>", u"a[b=\">", u"a[b='>a[b=\">", u"]", u"[",
          u"a[b]>", u"a/>", u"1>", u"a[b c='>'>", u"a[a=>a[ ", u"!>", u"a*9", u"<a>"}) {
        for (const std::u16string_view end :
             {u"", u"b", u"!!", u" b=1 c=2", u"]", u" x=1]", u"b*500>b*500>b*500"}) {
            const SourceText text(repeated(piece, times) + std::u16string(end) +
                                  std::u16string(2, end.empty() ? u'x' : u']'));
            const auto found = TagExpander::expansion(text.count(), text, unit);
            EXPECT_TRUE(!found || found->snippet.text.size() <= TagExpander::maximumUnits);
            EXPECT_FALSE(TagExpander::expand(text.units(), u"", unit, elsewhere));
        }
    }
    const SourceText deep(repeated(u"a>", times) + u"b");
    const auto expansion = TagExpander::expansion(deep.count(), deep, unit);
    ASSERT_TRUE(expansion);
    EXPECT_LE(expansion->snippet.text.size(), TagExpander::maximumUnits);
    EXPECT_GT(expansion->snippet.text.size(), TagExpander::maximumUnits * 99 / 100);
    const SourceText spaces(repeated(u"a[b=>", times / 10) + std::u16string(times, u' ') + u"!]");
    EXPECT_EQ(TagExpander::expansion(spaces.count(), spaces, unit), std::nullopt);
}
