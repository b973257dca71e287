#include "ProblemFixes.h"

#include "RandomDocument.h"
#include "TreeParser.h"

#include <gtest/gtest.h>

namespace {

std::u16string fixed(std::u16string_view text) {
    const DocumentTree tree = TreeParser::parse(SourceText(text));
    return TextEdit::apply(ProblemFixes::edits(tree), text);
}

TEST(ProblemFixes, MendWhatCanBeMended) {
    struct Row {
        std::u16string_view text, after;
    };
    for (const Row& row : {
             Row{u"", u""},
             Row{u"<a/>", u"<a/>"},
             Row{u"hola", u"hola"},
             Row{u"<a><b><c>", u"<a><b><c></c></b></a>"},
             Row{u"<a><b></a>", u"<a><b></b></a>"},
             Row{u"<a>< & &amp;</a>", u"<a>&lt; &amp; &amp;</a>"},
             Row{u"<a x y='1' z>", u"<a x=\"\" y='1' z=\"\"></a>"},
             Row{u"<a x=\"1", u"<a x=\"1\">"},
             Row{u"<a><!-- b", u"<a><!-- b--></a>"},
             Row{u"<a></b></a>", u"<a></a>"},
             Row{u"<a></b>", u"<a></a>"},
             Row{u"<a></a", u"<a></a>"},
         }) {
        EXPECT_EQ(fixed(row.text), row.after);
    }
}

TEST(ProblemFixes, DoNotAddToWhatTheyRemove) {
    // The end tag has two problems: nothing to end, and no `>`. The first in the list is mended first.
    std::u16string text = u"<a></a></b";
    ASSERT_EQ(TreeParser::parse(SourceText(text)).diagnostics.range(0).lower, 7);
    EXPECT_EQ(TreeParser::parse(SourceText(text)).diagnostics.range(1).lower, 7);
    text = fixed(text);
    EXPECT_EQ(fixed(text), u"<a></a>");
}

TEST(ProblemFixes, NeverOverlapAndMergeIntoOneEdit) {
    Random random;
    for (int round = 0; round < 500; ++round) {
        const SourceText text(RandomDocument::broken(random));
        const std::vector<TextEdit> edits = ProblemFixes::edits(TreeParser::parse(text));
        // Stops the program when they overlap.
        const std::u16string after = TextEdit::apply(edits, text.units());
        if (!edits.empty()) {
            const TextEdit merged = ProblemFixes::merged(edits, text);
            EXPECT_EQ(TextEdit::apply({&merged, 1}, text.units()), after);
        }
    }
}

TEST(ProblemFixes, MergeWithinTheLeastRange) {
    const std::vector<TextEdit> edits{TextEdit::insert(u"x", 6), {{2, 4}, u""}};
    EXPECT_EQ(ProblemFixes::merged(edits, SourceText(u"01234567")), TextEdit({2, 6}, u"45x"));
}

} // namespace
