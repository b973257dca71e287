#include "FixPlanner.h"

#include "RandomDocument.h"
#include "RandomMarkup.h"
#include "Repeated.h"
#include "TreeParser.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

FixPlanner::Plan planned(std::u16string_view text) { return FixPlanner::plan(SourceText(text)).value(); }

std::u16string fixed(std::u16string_view text) { return TextEdit::apply(planned(text).edits, text); }

DocumentTree parsed(std::u16string_view units) {
    const SourceText text(units);
    return TreeParser::parse(text, {}, {}, DoctypeReading::of(text));
}

std::size_t errorsOf(std::u16string_view text) {
    return parsed(text).diagnostics.errorCount();
}

/// A random text, in most cases a malformed one.
std::u16string damagedText(Random& random, RandomMarkup& markup) {
    switch (random.below(5)) {
    case 0:
        return markup.tagSoup();
    case 1:
        return markup.pieces();
    case 2: {
        std::u16string text = markup.document();
        for (std::size_t places = 1 + random.below(5); places > 0; --places) {
            markup.damage(text);
        }
        return text;
    }
    default:
        return RandomDocument::broken(random);
    }
}

TEST(FixPlanner, MendsWhatCanBeMended) {
    struct Row {
        std::u16string_view text, after;
        std::size_t left = 0;
    };
    for (const Row& row : {
             Row{u"", u""},
             Row{u"<a/>", u"<a/>"},
             Row{u"hola", u"hola", 2},
             Row{u"<a><b><c>", u"<a><b><c></c></b></a>"},
             Row{u"<a><b></a>", u"<a><b></b></a>"},
             Row{u"<a>< & &amp;</a>", u"<a>&lt; &amp; &amp;</a>"},
             Row{u"<a x y='1' z>", u"<a x=\"\" y='1' z=\"\"></a>"},
             Row{u"<a x=\"1", u"<a x=\"1\"></a>"},
             Row{u"<a><!-- b", u"<a><!-- b--></a>"},
             Row{u"<a></b></a>", u"<a></a>"},
             Row{u"<a></b>", u"<a></a>"},
             Row{u"<a></a", u"<a></a>"},
             Row{u"<a></a></b", u"<a></a>"},
             Row{u"<r><item>x</itm><item>y</item></r>", u"<r><item>x</item><item>y</item></r>"},
             Row{u"<a x='1' x='2'>", u"<a x='1' x='2'></a>", 1},
         }) {
        EXPECT_EQ(fixed(row.text), row.after);
        EXPECT_EQ(planned(row.text).left, row.left);
        EXPECT_FALSE(planned(row.text).mayMendMore);
    }
}

TEST(FixPlanner, SeesWhatAStageMadeOfTheText) {
    struct Row {
        std::u16string_view text, after;
    };
    for (const Row& row : {
             // The end tag stays, because it matches once the start tag is repaired.
             Row{u"<a b=\"x>t</a>", u"<a b=\"x\">t</a>"},
             Row{u"<a b=\"1 < 2\">t</a>", u"<a b=\"1 &lt; 2\">t</a>"},
             Row{u"<a b=x\">t</a>", u"<a b=\"x\">t</a>"},
             Row{u"<a b t</a>", u"<a b=\"\" t=\"\"></a>"},
             Row{u"<a><b</a>", u"<a><b></b></a>"},
             // Closing the quote turns the rest of the value into content.
             Row{u"<a b=\"x>1 & 2 & 3 & 4 & 5</a>", u"<a b=\"x\">1 &amp; 2 &amp; 3 &amp; 4 &amp; 5</a>"},
         }) {
        EXPECT_EQ(fixed(row.text), row.after);
    }
}

TEST(FixPlanner, OffersRepairsBehindTheFix) {
    struct Row {
        std::u16string_view text;
        std::vector<std::u16string_view> titles;
    };
    for (const Row& row : {
             Row{u"<r></item></r>", {u"Eliminar cierre"}},
             Row{u"<item>x</itm>", {u"Cerrar <item>", u"Eliminar cierre", u"Cambiar por </item>"}},
             Row{u"<a b=x></a>", {u"Poner comillas", u"Añadir valor"}},
             Row{u"<a b=\"x>t", {u"Añadir >", u"Cerrar comilla", u"Cerrar comilla antes de >"}},
         }) {
        const DocumentTree tree = parsed(row.text);
        std::vector<std::u16string> titles;
        for (std::size_t index = 0; index < tree.diagnostics.size(); ++index) {
            for (const Diagnostic::Fix& fix : FixPlanner::fixes(tree, index)) {
                titles.push_back(fix.title);
            }
        }
        EXPECT_TRUE(std::ranges::equal(titles, row.titles)) << SourceText(row.text).count();
    }
}

TEST(FixPlanner, NeverLeavesMoreErrors) {
    Random random;
    RandomMarkup markup(random);
    for (int round = 0; round < 2'000; ++round) {
        const std::u16string text = damagedText(random, markup);
        const FixPlanner::Plan plan = planned(text);
        const std::u16string after = TextEdit::apply(plan.edits, text);
        const DocumentTree tree = parsed(after);
        EXPECT_LE(tree.diagnostics.errorCount(), errorsOf(text));
        EXPECT_EQ(plan.left, tree.diagnostics.size());
    }
}

TEST(FixPlanner, ChangesNothingMoreWhereNothingCanBeMended) {
    Random random;
    RandomMarkup markup(random);
    int mendedWhole = 0;
    for (int round = 0; round < 2'000; ++round) {
        const std::u16string text = damagedText(random, markup);
        const FixPlanner::Plan plan = planned(text);
        if (!plan.mayMendMore) {
            ++mendedWhole;
            EXPECT_TRUE(planned(TextEdit::apply(plan.edits, text)).edits.empty());
        }
    }
    EXPECT_GT(mendedWhole, 1'000);
}

TEST(FixPlanner, TouchesOnlyWhatItMends) {
    Random random;
    RandomMarkup markup(random);
    for (int round = 0; round < 2'000; ++round) {
        const std::u16string text = damagedText(random, markup);
        const FixPlanner::Plan plan = planned(text);
        Offset last = 0;
        for (const TextEdit& edit : plan.edits) {
            EXPECT_TRUE(last == 0 || last < edit.range.lower);
            last = edit.range.upper;
            // Edits replace only lone units, which are escaped, and end tags, which are removed or renamed.
            const std::u16string_view replaced =
                std::u16string_view(text).substr(edit.range.lower, edit.range.length());
            const bool isEscaped = replaced.find_first_not_of(u"<&") == std::u16string_view::npos;
            const bool isInEndTag = replaced.find(u"</") != std::u16string_view::npos ||
                                    text.rfind(u"</", edit.range.lower) != std::u16string::npos;
            EXPECT_TRUE(isEscaped || isInEndTag);
        }
    }
}

TEST(FixPlanner, LeavesSoundDocumentsAlone) {
    Random random;
    for (int round = 0; round < 500; ++round) {
        EXPECT_TRUE(planned(RandomDocument::wellFormed(random)).edits.empty());
    }
}

TEST(FixPlanner, StopsWhenAsked) {
    std::stop_source stop;
    stop.request_stop();
    EXPECT_FALSE(FixPlanner::plan(SourceText(u"<a>"), stop.get_token()));
}

TEST(FixPlanner, GetsThroughHostileTexts) {
    struct Row {
        std::u16string text;
        std::size_t left = 0;
    };
    for (const Row& row : {
             Row{repeated(u"<abcd>", 1'000'000)},
             Row{u"<r>" + repeated(u"</item>", 100'000) + u"</r>"},
             Row{u"<items>" + repeated(u"</item>", 100'000) + u"</items>"},
             Row{repeated(u"<item>", 100'000) + repeated(u"</itm>", 100'000)},
             Row{u"<" + repeated(u"n", 1'000'000) + u">" + repeated(u"</nnnn>", 100'000)},
             Row{u"<r>" + repeated(u"<a b=\"", 100'000)},
             Row{u"<a " + repeated(u"b=", 100'000), 199'999},
         }) {
        EXPECT_LE(planned(row.text).left, row.left);
    }
}

TEST(FixPlanner, MergesWithinTheLeastRange) {
    const std::vector<TextEdit> edits{TextEdit::insert(u"x", 6), {{2, 4}, u""}};
    EXPECT_EQ(FixPlanner::merged(edits, SourceText(u"01234567")), TextEdit({2, 6}, u"45x"));
}

TEST(FixPlanner, MergesWhatEditsDoTogether) {
    Random random;
    for (int round = 0; round < 500; ++round) {
        const SourceText text(RandomDocument::broken(random));
        const std::vector<TextEdit> edits = planned(text.units()).edits;
        if (!edits.empty()) {
            const TextEdit merged = FixPlanner::merged(edits, text);
            EXPECT_EQ(TextEdit::apply({&merged, 1}, text.units()), TextEdit::apply(edits, text.units()));
        }
    }
}

} // namespace
