#include "DiagnosticFinder.h"

#include "TreeParser.h"

#include <gtest/gtest.h>
#include <string>

namespace {

struct Source {
    DocumentTree tree;
    EditedSpan edits;

    explicit Source(std::u16string_view text) : tree(TreeParser::parse(SourceText(text))) {}

    DiagnosticFinder finder() const { return {tree.diagnostics, edits}; }
    std::vector<SourceRange> touching(SourceRange range) const { return ranges(finder().touching(range)); }
    std::vector<SourceRange> startingIn(SourceRange range) const {
        return ranges(finder().startingIn(range, ProblemStarts(tree.diagnostics, tree.text)));
    }

    static std::vector<SourceRange> ranges(const std::vector<DiagnosticFinder::Found>& found) {
        std::vector<SourceRange> ranges;
        for (const auto& diagnostic : found) {
            ranges.push_back(diagnostic.range);
        }
        return ranges;
    }
};

using Ranges = std::vector<SourceRange>;

} // namespace

TEST(DiagnosticFinder, FindsWhatTouchesARange) {
    const Source source(u"<a>&--&---&</a>"); // At 3, 6 and 10.
    ASSERT_EQ(source.tree.diagnostics.size(), 3U);
    EXPECT_EQ(source.touching({0, 15}), (Ranges{{3, 4}, {6, 7}, {10, 11}}));
    EXPECT_EQ(source.touching({4, 6}), (Ranges{{3, 4}, {6, 7}}));
    EXPECT_EQ(source.touching({5, 5}), Ranges());
    EXPECT_EQ(source.touching({7, 7}), (Ranges{{6, 7}}));
    EXPECT_EQ(source.touching({3, 3}), (Ranges{{3, 4}}));
    EXPECT_EQ(source.touching({12, 15}), Ranges());
}

TEST(DiagnosticFinder, FindsWhatStartsBeforeARangeAndReachesIntoIt) {
    const Source source(u"<a></abc></a>");
    ASSERT_EQ(source.tree.diagnostics.range(0), SourceRange(3, 9));
    EXPECT_EQ(source.touching({6, 7}), (Ranges{{3, 9}}));
    EXPECT_EQ(source.startingIn({6, 7}), Ranges());
    EXPECT_EQ(source.startingIn({3, 4}), (Ranges{{3, 9}}));
}

TEST(DiagnosticFinder, TakesTheEndOfARangeForTheEndOfALine) {
    const Source source(u"<a>\n&\n</a>");
    EXPECT_EQ(source.startingIn({0, 3}), Ranges());
    EXPECT_EQ(source.startingIn({4, 5}), (Ranges{{4, 5}}));
    EXPECT_EQ(source.startingIn({6, 10}), Ranges());
    // Text outside the root and a lone ampersand, both in the last line.
    EXPECT_EQ(Source(u"<a/>\n&").startingIn({5, 6}), (Ranges{{4, 6}, {5, 6}}));
}

TEST(DiagnosticFinder, TakesWhiteSpaceAtTheStartOfARangeForNoStart) {
    Source source(u"<a/>\n\nuno");
    ASSERT_EQ(source.tree.diagnostics.range(0), SourceRange(4, 9));
    EXPECT_EQ(source.startingIn({0, 4}), Ranges());
    EXPECT_EQ(source.startingIn({5, 5}), Ranges());
    EXPECT_EQ(source.startingIn({6, 9}), (Ranges{{4, 9}}));
    source.edits.add({0, 0}, 10);
    EXPECT_EQ(source.startingIn({10, 14}), Ranges());
    EXPECT_EQ(source.startingIn({16, 19}), (Ranges{{14, 19}}));
}

TEST(DiagnosticFinder, FollowsEditsSinceTheParse) {
    Source source(u"<a>&--&</a>");
    source.edits.add({4, 4}, 10);
    EXPECT_EQ(source.touching({0, 21}), (Ranges{{3, 4}, {16, 17}}));
    EXPECT_EQ(source.touching({6, 7}), Ranges());
    source.edits.add({2, 5}, 0); // Takes the first one away.
    EXPECT_EQ(source.touching({0, 18}), (Ranges{{13, 14}}));
}

TEST(DiagnosticFinder, FindsOnlySomeOfVeryMany) {
    std::u16string text = u"<a>";
    text.append(5000, u'&');
    Source source(text);
    const auto found = source.touching({3, 5003});
    ASSERT_EQ(found.size(), DiagnosticFinder::most);
    EXPECT_EQ(found.front(), SourceRange(3, 4));
    EXPECT_EQ(source.touching({2000, 2000}), (Ranges{{1999, 2000}, {2000, 2001}}));
}
