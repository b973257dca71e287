#include "QuoteRepair.h"

#include "RandomDocument.h"
#include "RandomMarkup.h"
#include "TreeParser.h"

#include <gtest/gtest.h>

namespace {

std::u16string repaired(std::u16string_view text) {
    return TextEdit::apply(QuoteRepair::edits(TreeParser::parse(SourceText(text))), text);
}

TEST(QuoteRepair, FindsTheQuoteThatIsMissing) {
    struct Row {
        std::u16string_view text, after;
    };
    for (const Row& row : {
             // A `<` inside the value.
             Row{u"<a b=\"1 < 2\">t</a>", u"<a b=\"1 &lt; 2\">t</a>"},
             Row{u"<a b='x <i>y</i> z' c=\"d\"/>", u"<a b='x &lt;i>y&lt;/i> z' c=\"d\"/>"},
             // No closing quote.
             Row{u"<a b=\"x>t</a>", u"<a b=\"x\">t</a>"},
             Row{u"<a b='x/>\n<c d='e'/>", u"<a b='x'/>\n<c d='e'/>"},
             Row{u"<a b=\"x>t</a><c d=\"y\">", u"<a b=\"x\">t</a><c d=\"y\">"},
             Row{u"<a b=\"x c=\"y\">t</a>", u"<a b=\"x\" c=\"y\">t</a>"},
             Row{u"<a b=\"x c=\"1\" d=\"\">t</a>", u"<a b=\"x\" c=\"1\" d=\"\">t</a>"},
             Row{u"<a b=\"x c=\"\">t</a>", u"<a b=\"x\" c=\"\">t</a>"},
             // No opening quote.
             Row{u"<a b=x\">t</a>", u"<a b=\"x\">t</a>"},
             Row{u"<a b = x y' c=\"d\">t</a>", u"<a b = 'x y' c=\"d\">t</a>"},
             // No quotes.
             Row{u"<a b=x>t</a>", u"<a b=\"x\">t</a>"},
             Row{u"<a b=1 c=2/>", u"<a b=\"1\" c=\"2\"/>"},
             Row{u"<a href=http://x?y=z>", u"<a href=\"http://x?y=z\">"},
             // No value.
             Row{u"<a b=>t</a>", u"<a b=\"\">t</a>"},
             Row{u"<a b=c=\"d\"/>", u"<a b=\"\" c=\"d\"/>"},
             Row{u"<a b= c=\"d\"/>", u"<a b=\"\" c=\"d\"/>"},
             // The right repair is not clear.
             Row{u"<a b=\"x", u"<a b=\"x"},
             Row{u"<a \"b\">", u"<a \"b\">"},
             Row{u"<a b=\"x\">", u"<a b=\"x\">"},
             Row{u"<a b>", u"<a b>"},
         }) {
        EXPECT_EQ(repaired(row.text), row.after);
    }
}

TEST(QuoteRepair, LooksNoFartherThanAValueMayReach) {
    const std::u16string text = u"<a b=\"x < " + std::u16string(10'000, u'y') + u"\">t</a>";
    EXPECT_EQ(repaired(text), text);
}

TEST(QuoteRepair, OnlyAddsQuotesAndEscapes) {
    Random random;
    RandomMarkup markup(random);
    for (int round = 0; round < 3'000; ++round) {
        std::u16string text = RandomDocument::broken(random);
        if (round % 2 == 0) {
            markup.damage(text);
        }
        for (const TextEdit& edit : QuoteRepair::edits(TreeParser::parse(SourceText(text)))) {
            const std::u16string replaced = text.substr(edit.range.lower, edit.range.length());
            EXPECT_TRUE(replaced.empty() || (replaced == u"<" && edit.replacement == u"&lt;"));
            EXPECT_EQ(edit.replacement.find_first_not_of(replaced.empty() ? u"\"' " : u"&lt;"),
                      std::u16string::npos);
        }
    }
}

} // namespace
