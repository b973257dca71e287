#include "TypingAssistant.h"

#include "MarkedText.h"
#include "Random.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace {

using namespace TypingAssistant;

constexpr bool inSnippet = true;
constexpr bool noSnippet = false;
const IndentStyle twoSpaces = IndentStyle::spaces(2);
const IndentStyle fourSpaces = IndentStyle::spaces(4);

/// The text after the action, with its selection marked; "none" if there is no action, "next" and "previous"
/// for moves between placeholders.
std::u16string shown(const std::optional<Action>& action, const SourceText& text) {
    if (!action) {
        return u"none";
    }
    if (const Edit* const edit = std::get_if<Edit>(&*action)) {
        return marked(text, edit->edits, edit->selection);
    }
    return std::holds_alternative<NextPlaceholder>(*action) ? u"next" : u"previous";
}

struct Row {
    std::u16string_view before;
    std::u16string_view expected;
};

void check(const Input& input, const std::vector<Row>& rows, IndentStyle indent = twoSpaces,
           bool tracking = noSnippet) {
    for (const Row& row : rows) {
        const MarkedText state(row.before);
        EXPECT_EQ(shown(handle(input, state.text, state.selection, indent, tracking), state.text),
                  row.expected)
            << ::testing::PrintToString(row.before);
    }
}

void checkToggled(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        const MarkedText state(row.before);
        EXPECT_EQ(shown(toggleComment(state.text, state.selection), state.text), row.expected)
            << ::testing::PrintToString(row.before);
    }
}

Input typed(std::u16string_view string) { return Character{std::u16string(string)}; }

constexpr char32_t markup[] = {U'<', U'>',  U'/',  U'a',  U'b',      U'=',          U'"',  U'\'',
                               U' ', U'\t', U'\n', U'\r', U'!',      U'-',          U'-',  U'?',
                               U'[', U']',  U'*',  U'+',  U'\u00A0', U'\U0001F600', 0xD800};

struct State {
    SourceText text;
    SourceRange selection;
};

State randomState(Random& random) {
    const std::u16string text = random.text(markup, 30);
    const std::size_t first = random.below(text.size() + 1);
    const std::size_t second = random.below(2) == 0 ? first : random.below(text.size() + 1);
    const auto [lower, upper] = std::minmax(first, second);
    return {SourceText(text), {static_cast<std::int64_t>(lower), static_cast<std::int64_t>(upper)}};
}

} // namespace

TEST(TypingAssistant, ClosesStartTags) {
    check(typed(u">"), {
                           {u"<item id=\"1\"|", u"<item id=\"1\">|</item>"},
                           {u"<br/|", u"none"},
                           {u"<a|", u"<a>|</a>"},
                           {u"<a|>", u"<a>|</a>>"},
                           {u"<a>|", u"none"},
                           {u"</a|", u"none"},
                           {u"<a b='|'", u"none"},
                           {u"<!-- <a|", u"none"},
                           {u"|<a|", u"none"},
                           {u"|", u"none"},
                           {u"<\xD800|", u"<\xD800>|</\xD800>"},
                       });
}

TEST(TypingAssistant, WritesEndTags) {
    check(typed(u"/"), {
                           {u"<a><b>text<|", u"<a><b>text</b>|"},
                           {u"<a></a><|", u"none"},
                           {u"<!-- <a><|", u"none"},
                           {u"<a><!-- <|", u"none"},
                           {u"<a><![CDATA[<|", u"none"},
                           {u"<a><b></b><|</c>", u"<a><b></b></a>|</c>"},
                           {u"<a>|", u"none"},
                           {u"<a b=<|", u"none"},
                           {u"<a b='<|", u"none"},
                           {u"<|", u"none"},
                           {u"|", u"none"},
                           {u"<a>|<|", u"none"},
                       });
}

TEST(TypingAssistant, OpensValues) {
    check(typed(u"="), {
                           {u"<a href|", u"<a href=\"|\""},
                           {u"<a href|>", u"<a href=\"|\">"},
                           {u"a|", u"none"},
                           {u"<a |", u"none"},
                           {u"<a b='c|'", u"none"},
                           {u"<a b=|", u"none"},
                           {u"<!-- a|", u"none"},
                           {u"<?xml version|", u"none"},
                           {u"<a \xE9|", u"<a \xE9=\"|\""},
                           {u"<a b.|", u"<a b.=\"|\""},
                           {u"|<a b|", u"none"},
                           {u"|", u"none"},
                       });
}

TEST(TypingAssistant, StepsOverClosingQuotes) {
    check(typed(u"\""), {
                            {u"<a b=\"c|\"", u"<a b=\"c\"|"},
                            {u"<a b=\"|\">", u"<a b=\"\"|>"},
                            {u"<a b=|\"", u"none"},
                            {u"<a b='|'", u"none"},
                            {u"<a b=\"c|", u"none"},
                            {u"x|\"", u"none"},
                            {u"<a b=\"|c\"", u"none"},
                            {u"<!-- \"|\"", u"none"},
                            {u"<a b=\"|\"|", u"none"},
                            {u"<a b='|\"'", u"<a b='\"|'"},
                        });
    check(typed(u"'"), {
                           {u"<a b='c|'", u"<a b='c'|"},
                           {u"<a b=\"c|\"", u"none"},
                       });
}

TEST(TypingAssistant, LeavesOtherCharactersAlone) {
    for (const std::u16string_view string : {u"a", u"<", u" ", u"", u">>", u"=x", u"\U0001F600", u"\n"}) {
        check(typed(string), {{u"<a|", u"none"}, {u"<a b='|'", u"none"}, {u"<a><|", u"none"}});
    }
}

TEST(TypingAssistant, KeepsTheIndentationOnNewLines) {
    check(Newline(), {
                         {u"  <a>|</a>", u"  <a>\n    |\n  </a>"},
                         {u"|", u"\n|"},
                         {u"x|", u"x\n|"},
                         {u"  x|", u"  x\n  |"},
                         {u" \tx|y", u" \tx\n \t|y"},
                         {u"  |  x", u"  \n    |  x"},
                         {u"  x|yy\nz|w", u"  x\n  |w"},
                         {u"  <a>|", u"  <a>\n    |"},
                         {u"<a>|x", u"<a>\n  |x"},
                         {u"<a>|xyz|</a>", u"<a>\n  |\n</a>"},
                         {u"<a>| </a>", u"<a>\n  | </a>"},
                         {u"<a b='>|</a>", u"<a b='>\n|</a>"},
                         {u"<a b='>'>|</a>", u"<a b='>'>\n  |\n</a>"},
                         {u"</a>|</b>", u"</a>\n|</b>"},
                         {u"<a/>|</b>", u"<a/>\n|</b>"},
                         {u"<!-- <a>|</a>", u"<!-- <a>\n|</a>"},
                         {u"a\r\n <b>|</b>", u"a\r\n <b>\r\n   |\r\n </b>"},
                         {u"a\r\nb|", u"a\r\nb\r\n|"},
                     });
    check(Newline(), {{u"\t<a>|</a>", u"\t<a>\n\t\t|\n\t</a>"}}, IndentStyle::tabs());
    check(Newline(), {{u"x|", u"x\n|"}}, twoSpaces, inSnippet);
}

TEST(TypingAssistant, ExpandsAbbreviations) {
    check(Tab(), {
                     {u"ul>li*3|", u"<ul>\n  <li>|</li>\n  <li></li>\n  <li></li>\n</ul>"},
                     {u"<a ul|", u"<a ul  |"},
                     {u"<a b='ul|'", u"<a b='ul  |'"},
                     {u"<!-- ul|", u"<!-- ul  |"},
                     {u"img/|", u"<img/>|"},
                     {u"<p>\n  b|</p>", u"<p>\n  <b>|</b></p>"},
                     {u"x |", u"x   |"},
                     {u"|", u"  |"},
                     {u"ul>li|*3", u"<ul>\n  <li>|</li>\n</ul>*3"},
                     {u"?|", u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>|"},
                     {u"!|", u"<!-- | -->"},
                 });
}

TEST(TypingAssistant, HandsOutThePlaceholdersOfExpansions) {
    const MarkedText state(u"<p>a[b]|</p>");
    const auto action = handle(Tab(), state.text, state.selection, twoSpaces, noSnippet);
    ASSERT_TRUE(action);
    EXPECT_EQ(*action, Action(Edit{{{{3, 7}, u"<a b=\"\"></a>"}}, {9, 9}, {{9, 9}, {11, 11}, {15, 15}}}));
    const MarkedText image(u"img/|");
    EXPECT_EQ(handle(Tab(), image.text, image.selection, twoSpaces, noSnippet),
              Action(Edit{{{{0, 4}, u"<img/>"}}, {6, 6}, {}}));
}

TEST(TypingAssistant, GoesToTheNextPlaceholder) {
    check(Tab(),
          {
              {u"<p>name|</p>", u"next"},
              {u"<p>|</p>", u"next"},
              {u"<p>|name|</p>", u"next"},
              {u"<p>|two\nlines|</p>", u"next"},
              {u"<a b='|'", u"next"},
              {u"<a b='c>d|'", u"next"},
              {u"x 1a|", u"next"},
              {u"<p>1>b|</p>", u"next"},
              {u"<p>a>b|</p>", u"<p><a>\n  <b>|</b>\n</a></p>"},
              {u"<p>a+b|</p>", u"<p><a>|</a>\n<b></b></p>"},
              {u"<p>a*2|</p>", u"<p><a>|</a>\n<a></a></p>"},
              {u"<p>a[b]|</p>", u"<p><a b=\"|\"></a></p>"},
              {u"<p>a/|</p>", u"<p><a/>|</p>"},
              {u"<p>!|</p>", u"<p><!-- | --></p>"},
              {u"<p>!cdata|</p>", u"<p><![CDATA[|]]></p>"},
              {u"<p>?|</p>", u"<p><?|?></p>"},
          },
          twoSpaces, inSnippet);
    check(Backtab(), {{u"  x|", u"previous"}, {u"  |x\n  y|", u"previous"}}, twoSpaces, inSnippet);
}

TEST(TypingAssistant, IndentsWithTab) {
    check(Tab(), {
                     {u"<a |b>", u"<a   |b>"},
                     {u"x|yz|w", u"x  |w"},
                     {u"x|y\nz|w", u"  x|y\n  z|w"},
                 });
    check(Tab(), {{u"<a |b>", u"<a \t|b>"}, {u"x|y|", u"x\t|"}}, IndentStyle::tabs());
}

TEST(TypingAssistant, IndentsBlocks) {
    check(Tab(),
          {
              {u"on|e\ntwo\n|three", u"    on|e\n    two\n|three"},
              {u"|one\ntwo\n|", u"    |one\n    two\n|"},
              {u"a\nb|\n|c", u"a\n    b|\n|c"},
              {u"|a\n\nb|", u"    |a\n\n    b|"},
              {u"|a\r\n\r\nb|", u"    |a\r\n\r\n    b|"},
              {u"|a\n \nb|", u"    |a\n     \n    b|"},
              {u"|\n|a", u"none"},
              {u"|\n\n|", u"none"},
              {u"|\nab|", u"\n   | ab|"},
          },
          fourSpaces);
}

TEST(TypingAssistant, OutdentsBlocks) {
    check(Backtab(),
          {
              {u"   x|", u"x|"},
              {u"\tx|", u"x|"},
              {u"\t\tx|", u"\tx|"},
              {u"\t    x|", u"    x|"},
              {u"    \tx|", u"\tx|"},
              {u"      x|", u"  x|"},
              {u"x|", u"none"},
              {u"|", u"none"},
              {u"  |  x", u"|x"},
              {u" |   x", u"|x"},
              {u"a\n |   x", u"a\n|x"},
              {u"  a|\n    b\n|    c", u"a|\nb\n|    c"},
              {u"  |a\nb\n  c|", u"|a\nb\nc|"},
              {u"a|\n  b|", u"a|\nb|"},
              {u"    |a|", u"|a|"},
              {u" |   a|", u"|a|"},
              {u" | |  a", u"|a"},
              {u"  a\n|  \n|b", u"  a\n|\n|b"},
          },
          fourSpaces);
    check(Backtab(), {{u"  x|", u" x|"}, {u"\tx|", u"x|"}}, IndentStyle::tabs());
}

TEST(TypingAssistant, TogglesComments) {
    checkToggled({
        {u"ab|c", u"|<!-- abc -->|"},
        {u"  ab|c \t", u"  |<!-- abc -->| \t"},
        {u"a\n b|\nc|d\ne", u"a\n |<!-- b\ncd -->|\ne"},
        {u"|a\n|b", u"|<!-- a -->|\nb"},
        {u"a|\r\nb", u"|<!-- a -->|\r\nb"},
        {u"|a\r\n|b", u"|<!-- a -->|\r\nb"},
        {u"|a\n\n \u00A0\u2003|", u"|<!-- a -->|\n\n \u00A0\u2003"},
        {u"|\n\na|", u"|<!-- \n\na -->|"},
        {u"|", u"none"},
        {u"  \t|", u"none"},
        {u"|\n \n|", u"none"},
        {u"a\n|\nb", u"none"},
        {u"<!-- a --|>", u"|a|"},
        {u"  <!-- a -->|  ", u"  |a|  "},
        {u"<!--a-->|", u"|a|"},
        {u"<!-- a-->|", u"|a|"},
        {u"<!--a -->|", u"|a|"},
        {u"<!---->|", u"|"},
        {u"<!-- -->|", u"|"},
        {u"<!--  -->|", u"|"},
        {u"<!--   -->|", u"| |"},
        {u"<!--->|", u"|<!-- <!---> -->|"},
        {u"<!-- a|", u"|<!-- <!-- a -->|"},
        {u"a --|>", u"|<!-- a --> -->|"},
        {u"|<!-- a -->\nb\n<!-- c -->|", u"|a -->\nb\n<!-- c|"},
        {u"x <!-- |a -->", u"|<!-- x <!-- a --> -->|"},
    });
}

TEST(TypingAssistant, TogglesCommentsBack) {
    Random random;
    int toggled = 0;
    for (int round = 0; round < 20'000; ++round) {
        const auto [text, selection] = randomState(random);
        const auto first = toggleComment(text, selection);
        const Edit* const edit = first ? std::get_if<Edit>(&*first) : nullptr;
        // Only comments that were added: the delimiters of a removed comment may have been written
        // differently.
        if (edit != nullptr && edit->edits.front().range.isEmpty()) {
            const SourceText commented(TextEdit::apply(edit->edits, text.units()));
            const auto second = toggleComment(commented, edit->selection);
            ASSERT_TRUE(second);
            ASSERT_EQ(TextEdit::apply(std::get<Edit>(*second).edits, commented.units()), text.units());
            ++toggled;
        }
    }
    EXPECT_GT(toggled, 1'000);
}

TEST(TypingAssistant, OutdentsWhatItIndented) {
    Random random;
    int indented = 0;
    for (int round = 0; round < 20'000; ++round) {
        const auto [text, selection] = randomState(random);
        const std::u16string_view units = text.units(selection);
        const IndentStyle style = random.below(3) == 0 ? IndentStyle::tabs() : IndentStyle::spaces(3);
        const auto first = handle(Tab(), text, selection, style, noSnippet);
        if (units.find(u'\n') == std::u16string_view::npos || !first) {
            continue;
        }
        const Edit& edit = std::get<Edit>(*first);
        const auto lines = 1 + std::ranges::count(units.substr(0, units.size() - 1), u'\n');
        if (std::ssize(edit.edits) == lines) {
            const SourceText after(TextEdit::apply(edit.edits, text.units()));
            const auto second = handle(Backtab(), after, edit.selection, style, noSnippet);
            ASSERT_TRUE(second);
            ASSERT_EQ(TextEdit::apply(std::get<Edit>(*second).edits, after.units()), text.units())
                << ::testing::PrintToString(text.string());
            ++indented;
        }
    }
    EXPECT_GT(indented, 1'000);
}

TEST(TypingAssistant, PlansEditsThatApplyCleanly) {
    const Input inputs[] = {typed(u">"), typed(u"/"), typed(u"="), typed(u"\""), Tab(), Backtab(), Newline()};
    Random random;
    int edited = 0;
    for (int round = 0; round < 50'000; ++round) {
        const auto [text, selection] = randomState(random);
        const IndentStyle style = random.below(3) == 0 ? IndentStyle::tabs() : IndentStyle::spaces(2);
        const bool tracking = random.below(4) == 0;
        const auto action = random.below(10) == 0 ? toggleComment(text, selection)
                                                  : handle(inputs[random.below(std::size(inputs))], text,
                                                           selection, style, tracking);
        const Edit* const edit = action ? std::get_if<Edit>(&*action) : nullptr;
        if (edit != nullptr) {
            // Aborts if edits overlap or reach beyond the text.
            const std::u16string after = TextEdit::apply(edit->edits, text.units());
            ASSERT_LE(edit->selection.upper, after.size());
            for (const SourceRange placeholder : edit->placeholders) {
                ASSERT_LE(placeholder.upper, after.size());
            }
            ++edited;
        }
    }
    EXPECT_GT(edited, 1'000);
}

TEST(TypingAssistant, HashesInputsAndActions) {
    const std::hash<Input> hashInput;
    EXPECT_EQ(hashInput(typed(u"a")), hashInput(typed(u"a")));
    EXPECT_NE(hashInput(typed(u"a")), hashInput(typed(u"b")));
    EXPECT_NE(hashInput(Tab()), hashInput(Newline()));
    const std::hash<Action> hashAction;
    const Edit edit{{TextEdit::insert(u"x", 1)}, {2, 2}, {{2, 2}}};
    EXPECT_EQ(hashAction(edit), hashAction(Edit(edit)));
    EXPECT_NE(hashAction(edit), hashAction(Edit{{TextEdit::insert(u"y", 1)}, {2, 2}, {{2, 2}}}));
    EXPECT_NE(hashAction(NextPlaceholder()), hashAction(PreviousPlaceholder()));
}
