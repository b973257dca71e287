#include "ProblemStarts.h"

#include "TreeParser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Starts = std::vector<Offset>;

ProblemStarts problemStarts(const SourceText& text, const std::vector<SourceRange>& ranges) {
    RecordArray<DiagnosticRecord> records;
    for (const SourceRange range : ranges) {
        records.append({range, 0, DiagnosticRecord::Rule::textOutsideRoot});
    }
    return {DiagnosticList(text, std::move(records)), text};
}

Starts starts(std::u16string_view units, const std::vector<SourceRange>& ranges) {
    const ProblemStarts found = problemStarts(SourceText(units), ranges);
    Starts offsets;
    for (std::size_t index = 0; index < ranges.size(); ++index) {
        offsets.push_back(found.start(index));
    }
    return offsets;
}

} // namespace

TEST(ProblemStarts, AreNoneAtFirst) {
    EXPECT_TRUE(ProblemStarts().isEmpty());
    EXPECT_EQ(ProblemStarts().first(0), std::nullopt);
}

TEST(ProblemStarts, LieBehindTheWhiteSpaceOfARange) {
    EXPECT_EQ(starts(u"ab cd", {{0, 2}}), Starts{0});
    EXPECT_EQ(starts(u"\r\n\t ab", {{0, 6}}), Starts{4});
    EXPECT_EQ(starts(u"\u00A0ab", {{0, 3}}), Starts{0});
}

TEST(ProblemStarts, OfARangeWithoutAnythingElseAreItsOwn) {
    EXPECT_EQ(starts(u"   ", {{1, 3}}), Starts{1});
    EXPECT_EQ(starts(u"   a", {{1, 3}}), Starts{1});
    EXPECT_EQ(starts(u"  a", {{0, 0}}), Starts{0});
    EXPECT_EQ(starts(u"", {{0, 0}}), Starts{0});
}

TEST(ProblemStarts, TellOverlappingRangesApart) {
    //              0123456789
    EXPECT_EQ(starts(u"     a   b", {{0, 2}, {0, 10}, {1, 3}, {2, 10}, {3, 6}, {6, 8}, {6, 10}, {9, 10}}),
              (Starts{0, 5, 1, 5, 5, 6, 9, 9}));
}

TEST(ProblemStarts, AreFoundInTheOrderOfTheText) {
    const SourceText text(u"\n\nuno");
    const ProblemStarts found(TreeParser::parse(text).diagnostics, text);
    EXPECT_EQ(found.start(0), 2U); // The text outside of the root.
    EXPECT_EQ(found.start(1), 0U); // No root.
    EXPECT_EQ(found.first(0), 0U);
    EXPECT_EQ(found.first(1), 2U);
    EXPECT_EQ(found.first(3), std::nullopt);
}

TEST(ProblemStarts, ReadTheSameWhiteSpaceOnce) {
    // A million ranges over a million blanks: quadratic work would never end.
    constexpr std::int64_t count = 1'000'000;
    const std::u16string blanks(count, u' ');
    const SourceText text(blanks + u'a');
    std::vector<SourceRange> ranges;
    for (std::int64_t at = 0; at < count; ++at) {
        ranges.emplace_back(at, count + 1);
    }
    const ProblemStarts found = problemStarts(text, ranges);
    EXPECT_EQ(found.start(0), count);
    EXPECT_EQ(found.start(count - 1), count);
    EXPECT_EQ(found.first(1), count);
}
