#include "ErrorLines.h"

#include "TreeParser.h"

#include <gtest/gtest.h>
#include <set>

namespace {

struct Parsed {
    ProblemStarts starts;
    LineIndex lines;
};

ErrorLines errorLines(std::u16string_view text) {
    const SourceText source(text);
    const DocumentTree tree = TreeParser::parse(source);
    const auto parsed = std::make_shared<Parsed>(ProblemStarts(tree.diagnostics, source), LineIndex(source));
    return {std::shared_ptr<const ProblemStarts>(parsed, &parsed->starts),
            std::shared_ptr<const LineIndex>(parsed, &parsed->lines)};
}

std::set<std::size_t> contained(const ErrorLines& lines, std::size_t lineCount) {
    std::set<std::size_t> numbers;
    for (std::size_t line = 0; line < lineCount; ++line) {
        if (lines.contains(line)) {
            numbers.insert(line);
        }
    }
    return numbers;
}

using Lines = std::set<std::size_t>;

} // namespace

TEST(ErrorLines, AreNoneAtFirst) {
    EXPECT_TRUE(ErrorLines().isEmpty());
    EXPECT_FALSE(ErrorLines().contains(0));
    EXPECT_EQ(ErrorLines().first(0), std::nullopt);
}

TEST(ErrorLines, AreTheLinesWhereDiagnosticsStart) {
    const std::pair<std::u16string_view, Lines> rows[] = {
        {u"<a/>\n", {}},
        {u"<a>&x\n&y\n\n</a>", {0, 1}},
        {u"<a>&&&\n\nx&</a>", {0, 2}},
        {u"<a>\n&\n<b c=\"\" c=\"\"/>\n\n</a>", {1, 2}},
        {u"<a/>\nuno\n", {1}},
        {u"<a/>\n \n\r\n\tuno\n", {3}},
        {u"\n\nuno", {0, 2}},
    };
    for (const auto& [text, expected] : rows) {
        const ErrorLines lines = errorLines(text);
        EXPECT_EQ(lines.isEmpty(), expected.empty());
        EXPECT_EQ(contained(lines, 8), expected) << ::testing::PrintToString(text);
    }
}

TEST(ErrorLines, GoOnFromOneToTheNext) {
    const ErrorLines lines = errorLines(u"<a>\n&\n\n&&\n</a>");
    EXPECT_EQ(lines.first(0), 1U);
    EXPECT_EQ(lines.first(1), 1U);
    EXPECT_EQ(lines.first(2), 3U);
    EXPECT_EQ(lines.first(4), std::nullopt);
    EXPECT_EQ(lines.first(1'000'000), std::nullopt);
}
