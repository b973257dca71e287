#include "ReflowTrace.h"

#include "MarkedText.h"
#include "PrettyPrinter.h"
#include "RandomDocument.h"
#include "TreeParser.h"
#include "UnitScan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <numeric>

namespace {

constexpr IndentStyle twoSpaces = IndentStyle::spaces(2);

DocumentTree parsed(std::u16string_view text) { return TreeParser::parse(SourceText(text)); }

/// The formatted text, with the selection at its new place.
std::u16string formatted(std::u16string_view markedText) {
    const MarkedText before(markedText);
    const std::array places = {before.selection.lower, before.selection.upper};
    const auto made = PrettyPrinter::format(parsed(before.text.units()), twoSpaces, places);
    return marked(made.edit.replacement, {made.places[0], made.places[1]});
}

TEST(ReflowTrace, KeepsThePlaceInTheContent) {
    struct Row {
        std::u16string_view text, after;
    };
    for (const Row& row : {
             Row{u"|<a><b>x</b></a>", u"|<a>\n  <b>x</b>\n</a>\n"},
             Row{u"<a><b>x|</b></a>", u"<a>\n  <b>x|</b>\n</a>\n"},
             Row{u"<a>|<b>x</b></a>", u"<a>\n  |<b>x</b>\n</a>\n"},
             Row{u"<a>\n|\n     <b/></a>", u"<a>\n  |<b/>\n</a>\n"},
             Row{u"<a>  |  <b/></a>", u"<a>|\n  <b/>\n</a>\n"},
             Row{u"<a>\n      |\n</a>", u"<a>|</a>\n"},
             Row{u"<a>  t |u  </a>", u"<a>t |u</a>\n"},
             Row{u"<a b='|1'   c='2'/>", u"<a b='|1'   c='2'/>\n"},
             Row{u"<a><b/></a|>", u"<a>\n  <b/>\n</a|>\n"},
             Row{u"<a><b/></a>|", u"<a>\n  <b/>\n</a>|\n"},
             Row{u"<a><b/></a>\n\n\n|", u"<a>\n  <b/>\n</a>\n|"},
             Row{u"<a>|<b/><c>|x</c></a>", u"<a>\n  |<b/>\n  <c>|x</c>\n</a>\n"},
             Row{u"<a><b>x|", u"<a>\n  <b>x|</b>\n</a>\n"},
             Row{u"<a><b/>|", u"<a>\n  <b/>|\n</a>\n"},
             Row{u"|", u"|\n"},
         }) {
        EXPECT_EQ(formatted(row.text), row.after);
    }
}

TEST(ReflowTrace, KeepsThePlaceOnOneLine) {
    const std::array<Offset, 3> places = {15, 3, 8};
    const auto made = PrettyPrinter::minify(parsed(u"<a>\n  <b>x</b>\n  <c/>\n</a>\n"), places);
    EXPECT_EQ(made.edit.replacement, u"<a><b>x</b><c/></a>");
    EXPECT_EQ(made.places, (std::vector<Offset>{11, 3, 5}));
}

TEST(ReflowTrace, PassesAsMuchOfTheContentAsBefore) {
    Random random;
    for (int round = 0; round < 500; ++round) {
        const std::u16string text = RandomDocument::wellFormed(random);
        const DocumentTree tree = parsed(text);
        std::vector<Offset> places(text.size() + 1);
        std::iota(places.begin(), places.end(), Offset{0});
        const auto isContent = [](char16_t unit) { return !UnitScan::isWhitespace(unit); };
        for (const auto& made :
             {PrettyPrinter::format(tree, twoSpaces, places), PrettyPrinter::minify(tree, places)}) {
            const std::u16string& after = made.edit.replacement;
            ASSERT_TRUE(std::ranges::is_sorted(made.places));
            std::size_t contentBefore = 0;
            std::size_t contentAfter = 0;
            Offset counted = 0;
            for (const Offset place : places) {
                contentBefore += place > 0 && isContent(text[place - 1]) ? 1 : 0;
                for (; counted < made.places[place]; ++counted) {
                    contentAfter += isContent(after[counted]) ? 1 : 0;
                }
                ASSERT_EQ(contentAfter, contentBefore);
            }
        }
        EXPECT_EQ(PrettyPrinter::format(tree, twoSpaces, places).edit,
                  PrettyPrinter::format(tree, twoSpaces));
        EXPECT_EQ(PrettyPrinter::minify(tree, places).edit, PrettyPrinter::minify(tree));
    }
}

TEST(ReflowTrace, TellsOfWhiteSpaceThatMayBeText) {
    struct Row {
        std::u16string_view text;
        bool onLines, onOne;
    };
    for (const Row& row : {
             Row{u"<a><b/></a>", false, false},
             Row{u"<a>  t  </a>", false, false},
             Row{u"<p>one <b>two</b> three</p>", true, true},
             Row{u"<p>one<b>two</b>three</p>", true, false},
             Row{u"<p>one<!--two--></p>", true, false},
             // The text is already formatted.
             Row{u"<p>\n  one\n  <b>two</b>\n</p>\n", false, true},
             // Only white space in elements without text changes.
             Row{u"<r>\n<p>one<b/></p></r>", true, false},
             Row{u"<r xml:space='preserve'><b/></r>", true, false},
             Row{u"<r xml:space='preserve'> <b/></r>", true, true},
             Row{u"<r xml:space='preserve'><b> x </b></r>", true, true},
             Row{u"<r xml:space='preserve'><b>x</b></r>", true, false},
             Row{u"<r> <p xml:space='preserve'>t</p> </r>", false, false},
             Row{u"<r> <p xml:space='preserve'>t </p> </r>", true, true},
             Row{u"<p xml:space='preserve'><r xml:space='default'> <b/> </r></p>", true, false},
             Row{u"<r xml:space='default'><b/></r>", false, false},
             Row{u"text <a/>", false, false},
             Row{u"", false, false},
         }) {
        const DocumentTree tree = parsed(row.text);
        EXPECT_EQ(PrettyPrinter::format(tree, twoSpaces, {}).changesTextSpace, row.onLines)
            << tree.text.count();
        EXPECT_EQ(PrettyPrinter::minify(tree, {}).changesTextSpace, row.onOne) << tree.text.count();
    }
}

} // namespace
