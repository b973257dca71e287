#include "SyntaxHighlighter.h"

#include "Signposter.h"
#include "TextBuffer.h"
#include "TextView.h"
#include "TreeParser.h"

#include <QApplication>
#include <QImage>
#include <QPalette>

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <utility>

namespace {

using Kind = Token::Kind;
using Part = SyntaxHighlighter::Run;
using Runs = std::vector<Part>;
using Underline = TemporaryAttributes::Underline;

QPalette surroundings(QColor window) { return QPalette(window, window); }

const QPalette light = surroundings(Qt::white);
const QPalette dark = surroundings(QColor(0x20, 0x20, 0x20));

Runs runs(std::u16string_view text, SourceRange visible, const DocumentTree* tree = nullptr) {
    return SyntaxHighlighter::runs(Rope(text), std::array{visible}, tree);
}

Runs runsOfAll(std::u16string_view text) { return runs(text, {0, static_cast<std::int64_t>(text.size())}); }

/// The line, counted from 0, with its LF.
SourceRange line(std::u16string_view text, std::size_t number) {
    const Rope rope(text);
    return {rope.lineStart(number), number + 1 < rope.lineCount() ? rope.lineStart(number + 1) : rope.size()};
}

/// A view of a text in a font so large that the stems of its letters are wider than a pixel.
struct Desk {
    std::shared_ptr<TextMirror> mirror;
    TextBuffer buffer;
    UndoManager undoManager;
    TextView view;

    explicit Desk(std::u16string_view text, const QPalette& palette = light)
        : mirror(std::make_shared<TextMirror>(Rope(text))), buffer(Rope(text), mirror) {
        buffer.setUndoManager(&undoManager);
        QFont font = view.font();
        font.setPixelSize(48);
        view.setFont(font);
        view.setPalette(palette);
        view.resize(2400, 600);
        view.setHistory(&buffer.history());
        view.show();
    }
    ~Desk() { view.setHistory(nullptr); }

    void highlight(const DocumentTree* tree = nullptr) { SyntaxHighlighter::highlight(view, buffer, tree); }

    /// How many pixels of the line have the very colour.
    int pixels(SystemColor color, int ofLine = 0) {
        const QImage image = view.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
        const QRect rows = view.lineRect(static_cast<std::size_t>(ofLine)).toRect() & image.rect();
        const QRgb wanted = ::color(color, view.palette()).rgb();
        int count = 0;
        for (int y = rows.top(); y <= rows.bottom(); ++y) {
            for (int x = rows.left(); x <= rows.right(); ++x) {
                count += image.pixel(x, y) == wanted ? 1 : 0;
            }
        }
        return count;
    }
};

/// What is recorded in its scope.
struct Recording {
    Recording() {
        Signposter::takeRecords();
        Signposter::setRecording(true);
    }
    ~Recording() { Signposter::setRecording(false); }

    static std::vector<std::string> messages() {
        std::vector<std::string> messages;
        for (const Signposter::Record& record : Signposter::takeRecords()) {
            if (std::string_view(record.name) == "Highlight") {
                EXPECT_STREQ(record.category, "Highlight");
                EXPECT_STREQ(record.subsystem, "tamo");
                messages.push_back(record.message);
            }
        }
        return messages;
    }
};

} // namespace

TEST(SyntaxHighlighter, HasALookForEachKindOfToken) {
    struct Row {
        Kind kind;
        std::optional<SystemColor> color;
        Underline underline = Underline::none;
    };
    const Row rows[] = {
        {Kind::text, std::nullopt},
        {Kind::entity, SystemColor::systemBrown},
        {Kind::openTagStart, SystemColor::secondaryLabel},
        {Kind::closeTagStart, SystemColor::secondaryLabel},
        {Kind::tagName, SystemColor::systemBlue},
        {Kind::attributeName, SystemColor::systemOrange},
        {Kind::equals, SystemColor::secondaryLabel},
        {Kind::attributeValue, SystemColor::systemRed},
        {Kind::tagEnd, SystemColor::secondaryLabel},
        {Kind::selfCloseEnd, SystemColor::secondaryLabel},
        {Kind::comment, SystemColor::systemGray},
        {Kind::cdata, SystemColor::systemTeal},
        {Kind::instruction, SystemColor::systemPurple},
        {Kind::doctype, SystemColor::systemPurple},
        {Kind::invalid, SystemColor::systemRed, Underline::thick},
    };
    for (std::size_t kind = 0; kind < std::size(rows); ++kind) {
        const Row& row = rows[kind];
        ASSERT_EQ(static_cast<std::size_t>(row.kind), kind);
        const auto style = SyntaxHighlighter::style(row.kind);
        ASSERT_EQ(style.has_value(), row.color.has_value()) << kind;
        if (!style) {
            EXPECT_EQ(SyntaxHighlighter::attributes(row.kind, light), TemporaryAttributes());
            continue;
        }
        EXPECT_EQ(style->color, *row.color) << kind;
        EXPECT_EQ(style->underline, row.underline) << kind;
        for (const QPalette& palette : {light, dark}) {
            EXPECT_EQ(SyntaxHighlighter::attributes(row.kind, palette),
                      (TemporaryAttributes{color(*row.color, palette), row.underline}))
                << kind;
        }
        EXPECT_NE(color(*row.color, light), color(*row.color, dark)) << kind;
    }
}

TEST(SyntaxHighlighter, CutsTheTextIntoRuns) {
    EXPECT_EQ(runsOfAll(u""), Runs());
    EXPECT_EQ(runsOfAll(u"only text\n"), Runs());
    EXPECT_EQ(runsOfAll(u"<a b=\"c\">x&lt;</a><d/>"), (Runs{
                                                          {{0, 1}, Kind::openTagStart},
                                                          {{1, 2}, Kind::tagName},
                                                          {{3, 4}, Kind::attributeName},
                                                          {{4, 5}, Kind::equals},
                                                          {{5, 8}, Kind::attributeValue},
                                                          {{8, 9}, Kind::tagEnd},
                                                          {{10, 14}, Kind::entity},
                                                          {{14, 16}, Kind::closeTagStart},
                                                          {{16, 17}, Kind::tagName},
                                                          {{17, 18}, Kind::tagEnd},
                                                          {{18, 19}, Kind::openTagStart},
                                                          {{19, 20}, Kind::tagName},
                                                          {{20, 22}, Kind::selfCloseEnd},
                                                      }));
    EXPECT_EQ(runsOfAll(u"<?p?><!--c--><![CDATA[d]]><!DOCTYPE e>"), (Runs{
                                                                        {{0, 5}, Kind::instruction},
                                                                        {{5, 13}, Kind::comment},
                                                                        {{13, 26}, Kind::cdata},
                                                                        {{26, 38}, Kind::doctype},
                                                                    }));
    EXPECT_EQ(runsOfAll(u"a < b"), (Runs{{{2, 3}, Kind::invalid}}));
}

TEST(SyntaxHighlighter, ReadsAboveWhatShowsWithATree) {
    constexpr std::u16string_view text = u"<a><!-- one\ntwo <b>\nthree --><c\nd='1'/></a>\n";
    const DocumentTree tree = TreeParser::parse(SourceText(text));
    const SourceRange two = line(text, 1);
    EXPECT_EQ(runs(text, two, &tree), (Runs{{two, Kind::comment}}));
    const SourceRange three = line(text, 2);
    EXPECT_EQ(runs(text, three, &tree), (Runs{
                                            {{three.lower, three.lower + 9}, Kind::comment},
                                            {{three.lower + 9, three.lower + 10}, Kind::openTagStart},
                                            {{three.lower + 10, three.lower + 11}, Kind::tagName},
                                        }));
    const SourceRange four = line(text, 3);
    EXPECT_EQ(runs(text, four, &tree).front(), (Part{{four.lower, four.lower + 1}, Kind::attributeName}));
}

TEST(SyntaxHighlighter, TakesWhatShowsForContentWithoutATree) {
    constexpr std::u16string_view text = u"<a><!-- one\ntwo <b>\nthree --></a>\n";
    const SourceRange two = line(text, 1);
    EXPECT_EQ(runs(text, two), (Runs{
                                   {{two.lower + 4, two.lower + 5}, Kind::openTagStart},
                                   {{two.lower + 5, two.lower + 6}, Kind::tagName},
                                   {{two.lower + 6, two.lower + 7}, Kind::tagEnd},
                               }));
}

TEST(SyntaxHighlighter, EndsTheDeclarationWhereItsReadingDoes) {
    const std::u16string declaration = u"<!DOCTYPE r [\n<!-- don't -->\n]>";
    const std::u16string text = declaration + u"\n<r/>";
    const auto end = static_cast<std::int64_t>(declaration.size());
    const DoctypeReading reading = DoctypeReading::of(SourceText(text));
    const DocumentTree tree = TreeParser::parse(SourceText(text), {}, {}, reading);
    const Runs root = {{SourceRange::at(end + 1, 1), Kind::openTagStart},
                       {SourceRange::at(end + 2, 1), Kind::tagName},
                       {SourceRange::at(end + 3, 2), Kind::selfCloseEnd}};
    Runs all = root;
    all.insert(all.begin(), {{0, end}, Kind::doctype});
    const SourceRange whole(0, std::ssize(text));
    const SourceRange lastLines(line(text, 2).lower, whole.upper);
    Runs last = root;
    last.insert(last.begin(), {{lastLines.lower, end}, Kind::doctype});
    for (const DocumentTree* const known : {&tree, static_cast<const DocumentTree*>(nullptr)}) {
        EXPECT_EQ(SyntaxHighlighter::runs(Rope(text), std::array{whole}, known, reading), all);
        EXPECT_EQ(SyntaxHighlighter::runs(Rope(text), std::array{line(text, 3)}, known, reading), root);
    }
    EXPECT_EQ(SyntaxHighlighter::runs(Rope(text), std::array{lastLines}, &tree, reading), last);
}

TEST(SyntaxHighlighter, DoesNotLookBackTooFar) {
    // A comment whose start is as far above the visible line as may be, or one unit farther.
    for (const bool isTooFar : {false, true}) {
        const Offset length = SyntaxHighlighter::longestLookBack + (isTooFar ? 1 : 0);
        std::u16string text = u"<!--";
        text.append(length - 5, u'c').append(u"\n<b>-->");
        const DocumentTree tree = TreeParser::parse(SourceText(text));
        ASSERT_EQ(line(text, 1).lower, length);
        const Runs found = runs(text, line(text, 1), &tree);
        EXPECT_EQ(found.front().kind, isTooFar ? Kind::openTagStart : Kind::comment);
    }
}

TEST(SyntaxHighlighter, StartsAtTheLineInsideAnElementThatBeganFarAbove) {
    std::u16string text = u"<a b='\n";
    text.append(300'000, u'x').append(u"\n<b>'/>");
    const DocumentTree tree = TreeParser::parse(SourceText(text));
    const SourceRange last = line(text, 2);
    EXPECT_EQ(runs(text, last, &tree).front(), (Part{{last.lower, last.lower + 1}, Kind::openTagStart}));

    std::u16string content = u"<a>";
    content.append(300'000, u'x').append(u"\n<b/></a>");
    const DocumentTree contentTree = TreeParser::parse(SourceText(content));
    const SourceRange contentLast = line(content, 1);
    EXPECT_EQ(runs(content, contentLast, &contentTree).front(),
              (Part{{contentLast.lower, contentLast.lower + 1}, Kind::openTagStart}));
}

TEST(SyntaxHighlighter, ColoursWhatShows) {
    Desk desk(u"<name attribute='value'>text &amp; more<!-- comment --></name>\n<![CDATA[d]]><?pi?>");
    EXPECT_EQ(desk.pixels(SystemColor::systemBlue), 0);
    desk.highlight();
    for (const SystemColor color :
         {SystemColor::systemBlue, SystemColor::systemOrange, SystemColor::systemRed,
          SystemColor::systemBrown, SystemColor::systemGray, SystemColor::secondaryLabel}) {
        EXPECT_GT(desk.pixels(color), 0) << static_cast<int>(color);
    }
    EXPECT_EQ(desk.pixels(SystemColor::systemTeal), 0);
    EXPECT_GT(desk.pixels(SystemColor::systemTeal, 1), 0);
    EXPECT_GT(desk.pixels(SystemColor::systemPurple, 1), 0);
}

TEST(SyntaxHighlighter, UsesTheColoursOfDarkSurroundings) {
    QPalette palette = dark;
    palette.setColor(QPalette::Base, color(SystemColor::textBackground, dark));
    Desk desk(u"<name/>", palette);
    desk.highlight();
    EXPECT_GT(desk.pixels(SystemColor::systemBlue), 0);
}

TEST(SyntaxHighlighter, UnderlinesWhatIsInvalidThickly) {
    Desk desk(u"a < b");
    desk.highlight();
    const int invalid = desk.pixels(SystemColor::systemRed);
    Desk value(u"<a b='<'");
    EXPECT_GT(invalid, 0);
    // The line below is as wide as the character, and full.
    Desk plain(u"a < b");
    plain.view.setTemporaryAttributes({2, 3}, {color(SystemColor::systemRed, light), Underline::none});
    EXPECT_GT(invalid, plain.pixels(SystemColor::systemRed) + 10);
}

TEST(SyntaxHighlighter, TakesOldColoursAway) {
    Desk desk(u"<name>");
    desk.highlight();
    ASSERT_GT(desk.pixels(SystemColor::systemBlue), 0);
    desk.buffer.type({0, 1}, {});
    desk.highlight();
    EXPECT_EQ(desk.pixels(SystemColor::systemBlue), 0);
    EXPECT_EQ(desk.pixels(SystemColor::secondaryLabel), 0);
}

TEST(SyntaxHighlighter, LeavesTextAndHistoryAlone) {
    Desk desk(u"<a>&</a>");
    desk.highlight();
    EXPECT_EQ(desk.buffer.generation(), 0);
    EXPECT_EQ(desk.buffer.text(), Rope(u"<a>&</a>"));
    EXPECT_FALSE(desk.undoManager.canUndo());
    EXPECT_TRUE(desk.undoManager.isClean());
}

TEST(SyntaxHighlighter, TellsHowManyUnitsItColours) {
    Desk desk(u"<a>\n</a>\n");
    const Recording recording;
    desk.highlight();
    EXPECT_EQ(Recording::messages(), std::vector<std::string>{"9 units"});
}

TEST(SyntaxHighlighter, TellsNothingOfAnEmptyDocument) {
    Desk desk(u"");
    const Recording recording;
    desk.highlight();
    EXPECT_EQ(Recording::messages(), std::vector<std::string>());
}

TEST(SyntaxHighlighter, ColoursOnlyWhatShowsOfALongText) {
    std::u16string text;
    for (int number = 0; number < 10'000; ++number) {
        text += u"<name/>\n";
    }
    Desk desk(text);
    const Recording recording;
    desk.highlight();
    const auto messages = Recording::messages();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_LT(std::stoi(messages.front()), 30 * 8);
}

// A line that is not very long is read from its start, even where only a part of it is coloured.
TEST(SyntaxHighlighter, ReadsALineFromItsStart) {
    std::u16string text = u"text\n<a b='";
    text.append(10'000, u'v').append(u"<c>'/>\n");
    const SourceRange stretch(5'000, 10'018);
    const Runs found = runs(text, stretch);
    ASSERT_FALSE(found.empty());
    EXPECT_EQ(found.front(), (Part{{5'000, 10'011}, Kind::attributeValue}));

    std::u16string longer = u"text\n<a b='";
    longer.append(SyntaxHighlighter::longestLine, u'v').append(u"'/>");
    EXPECT_EQ(runs(longer, {5'000, 6'000}), Runs());
}

// What does not show of a long line still tells how the lines after it go on.
TEST(SyntaxHighlighter, ReadsOnThroughWhatDoesNotShowOfALine) {
    std::u16string text = u"<!--\n";
    text.append(5'000, u'c').append(u"\n<b>\n--><d>");
    const std::array visible{SourceRange(0, 5), SourceRange(5, 300), SourceRange(5'006, 5'016)};
    const Runs expected = {
        {{0, 5}, Kind::comment},         {{5, 300}, Kind::comment},
        {{5'006, 5'013}, Kind::comment}, {{5'013, 5'014}, Kind::openTagStart},
        {{5'014, 5'015}, Kind::tagName}, {{5'015, 5'016}, Kind::tagEnd},
    };
    const DocumentTree tree = TreeParser::parse(SourceText(text));
    EXPECT_EQ(SyntaxHighlighter::runs(Rope(text), visible, nullptr), expected);
    EXPECT_EQ(SyntaxHighlighter::runs(Rope(text), visible, &tree), expected);

    std::u16string shown = u"<!--\n";
    shown.append(5'000, u'c').append(u"\nname -->");
    Desk desk(shown);
    desk.highlight();
    EXPECT_GT(desk.pixels(SystemColor::systemGray, 2), 0);
}

TEST(SyntaxHighlighter, SkipsWhatIsTooLongToReadOnThrough) {
    for (const bool isTooLong : {false, true}) {
        // Between the stretches stands just as much as may be, or one unit more.
        const Offset gap = SyntaxHighlighter::longestLookBack + (isTooLong ? 1 : 0);
        std::u16string text = u"<!--";
        text.append(gap, u'c').append(u"<b>\n-->");
        const auto size = static_cast<Offset>(text.size());
        const std::array visible{SourceRange(0, 4), SourceRange(gap + 4, size)};
        const Runs found = SyntaxHighlighter::runs(Rope(text), visible, nullptr);
        ASSERT_GE(found.size(), 2U);
        EXPECT_EQ(found[1].kind, isTooLong ? Kind::openTagStart : Kind::comment);
    }
}

TEST(SyntaxHighlighter, StartsAnewWhereTheTreeTellsHow) {
    std::u16string text = u"<a><b c='";
    text.append(300'000, u'v').append(u"'/><d/>text</a>");
    const DocumentTree tree = TreeParser::parse(SourceText(text));
    const Offset second = 300'000 + 12; // The `<` of `<d/>`.
    const std::array visible{SourceRange(0, 5), SourceRange(second + 1, second + 4)};
    EXPECT_EQ(SyntaxHighlighter::runs(Rope(text), visible, &tree),
              (Runs{
                  {{0, 1}, Kind::openTagStart},
                  {{1, 2}, Kind::tagName},
                  {{2, 3}, Kind::tagEnd},
                  {{3, 4}, Kind::openTagStart},
                  {{4, 5}, Kind::tagName},
                  {{second + 1, second + 2}, Kind::tagName},
                  {{second + 2, second + 4}, Kind::selfCloseEnd},
              }));
}

// A stretch of a very long line is read as a line is: back to where the tree says, if that is near.
TEST(SyntaxHighlighter, ColoursInsideAVeryLongLine) {
    std::u16string text = u"<a>";
    while (text.size() < 2'000'000) {
        text += u"<name attribute='value'/>text";
    }
    text += u"</a>";
    const DocumentTree tree = TreeParser::parse(SourceText(text));
    const SourceRange stretch(1'000'007, 1'001'000);
    const Runs expected = runsOfAll(text);
    const auto first =
        std::ranges::find_if(expected, [&](const Part& run) { return run.range.upper > stretch.lower; });
    const Runs found = runs(text, stretch, &tree);
    ASSERT_GT(found.size(), 100U);
    for (std::size_t index = 0; index + 1 < found.size(); ++index) {
        Part wanted = first[static_cast<std::ptrdiff_t>(index)];
        wanted.range.lower = std::max(wanted.range.lower, stretch.lower);
        ASSERT_EQ(found[index], wanted) << index;
    }

    Desk desk(text);
    desk.view.select(SourceRange::empty(1'000'000));
    desk.view.scrollToVisible(SourceRange::empty(1'000'000));
    const Recording recording;
    desk.highlight(&tree);
    const auto messages = Recording::messages();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_LT(std::stoi(messages.front()), 2'000);
    EXPECT_GT(desk.pixels(SystemColor::systemBlue), 0);
}
