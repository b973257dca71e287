#include "GraphemeBreaker.h"

#include "Random.h"
#include "UnicodeData.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>
#include <vector>

namespace {

using Boundaries = std::vector<std::size_t>;

Boundaries forward(std::u16string_view text) {
    Boundaries boundaries = {0};
    for (std::size_t at = 0; at < text.size();) {
        at = GraphemeBreaker::nextBoundary(text, at);
        boundaries.push_back(at);
    }
    return boundaries;
}

Boundaries backward(std::u16string_view text) {
    Boundaries boundaries = {text.size()};
    for (std::size_t at = text.size(); at > 0;) {
        at = GraphemeBreaker::previousBoundary(text, at);
        boundaries.insert(boundaries.begin(), at);
    }
    return boundaries;
}

Boundaries judged(std::u16string_view text) {
    Boundaries boundaries;
    for (std::size_t at = 0; at <= text.size(); ++at) {
        if (GraphemeBreaker::isBoundary(text, at)) {
            boundaries.push_back(at);
        }
    }
    return boundaries;
}

Boundaries walked(std::u16string_view text) {
    Boundaries boundaries = {0};
    for (const std::u16string_view character : GraphemeBreaker::Characters(text)) {
        boundaries.push_back(boundaries.back() + character.size());
    }
    return boundaries;
}

Boundaries fed(std::u16string_view text) {
    Boundaries boundaries;
    GraphemeBreaker::BoundaryFinder finder;
    for (std::size_t at = 0; at < text.size();) {
        const char32_t scalar = UTF16::scalarAt(text.data() + at, text.data() + text.size());
        if (finder.startsCharacter(scalar)) {
            boundaries.push_back(at);
        }
        at += UTF16::length(scalar);
    }
    boundaries.push_back(text.size());
    return boundaries;
}

void check(std::u16string_view text, const Boundaries& expected) {
    EXPECT_EQ(forward(text), expected);
    EXPECT_EQ(backward(text), expected);
    EXPECT_EQ(judged(text), expected);
    EXPECT_EQ(walked(text), expected);
    EXPECT_EQ(fed(text), expected);
}

/// A few scalars of every property, and the surrogates that make or break pairs.
constexpr char32_t alphabet[] = {
    U'a',    U' ',    U'\r',   U'\n',   U'\t',   0xAD,   0xA9,     0x300,   0x301,  0x200D,
    0x200C,  0x1F1EA, 0x1F1F8, 0x600,   0x110BD, 0x903,  0x1D16D,  0x1100,  0x1160, 0x11A8,
    0xAC00,  0xAC01,  0x1F600, 0x1F468, 0x1F469, 0x2764, 0xFE0F,   0x1F3FD, 0x4E00, 0x20000,
    0xE0001, 0xE0020, 0xE0100, 0xD83D,  0xDE00,  0xD800, 0x10FFFF,
};

} // namespace

TEST(GraphemeBreaker, PassesTheConformanceTestOfTheStandard) {
    std::size_t cases = 0;
    for (const std::string& line : dataLines("auxiliary/GraphemeBreakTest.txt")) {
        SCOPED_TRACE(line);
        std::u16string text;
        Boundaries expected;
        std::istringstream words(line);
        for (std::string word; words >> word;) {
            if (word == "\u00F7") {
                expected.push_back(text.size());
            } else if (word != "\u00D7") {
                UTF16::append(text, static_cast<char32_t>(std::stoul(word, nullptr, 16)));
            }
        }
        check(text, expected);
        ++cases;
    }
    EXPECT_EQ(cases, 602U);
}

TEST(GraphemeBreaker, KeepsTogetherWhatReadersSeeAsOne) {
    struct Row {
        std::u16string text;
        Boundaries expected;
    };
    const Row rows[] = {
        {u"", {0}},
        {u"a", {0, 1}},
        {u"ab", {0, 1, 2}},
        {u"\r\n\r", {0, 2, 3}},
        {u"\n\r", {0, 1, 2}},
        {u"a\u0301b", {0, 2, 3}},
        {u"\n\u0301", {0, 1, 2}},
        {u"<\u0338", {0, 2}},
        {u"\U0001F1EA\U0001F1F8\U0001F1EA", {0, 4, 6}},
        {u"a\U0001F1EA\U0001F1F8\U0001F1EA\U0001F1F8", {0, 1, 5, 9}},
        {u"\U0001F468\u200D\U0001F469", {0, 5}},
        {u"\u2764\uFE0F\u0301\u200D\U0001F469", {0, 6}},
        {u"\U0001F468\u200D\u0301\U0001F469", {0, 4, 6}},
        {u"\U0001F468\u200D\u200D\U0001F469", {0, 4, 6}},
        {u"a\u200D\U0001F469", {0, 2, 4}},
        {u"\u200D\U0001F469", {0, 1, 3}},
        {u"\u0600<", {0, 2}},
        {u"\u0600\n", {0, 1, 2}},
        {u"\u1100\u1160\u11A8\u1100", {0, 3, 4}},
        {u"\uAC00\u11A8\uAC01\u1160", {0, 2, 3, 4}},
        {{0xD83D, 0x301}, {0, 1, 2}},
        {{0xDE00, 0xD83D}, {0, 1, 2}},
        {{0x600, 0xD83D, u'a'}, {0, 1, 2, 3}},
        {{0xD83D, 0xD83D, 0xDE00}, {0, 1, 3}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.text));
        check(row.text, row.expected);
    }
}

TEST(GraphemeBreaker, AnswersFromInsideOfACharacterToo) {
    const std::u16string family = u"a\U0001F468\u200D\U0001F469z";
    for (std::size_t at = 1; at < 6; ++at) {
        EXPECT_EQ(GraphemeBreaker::nextBoundary(family, at), 6U);
        EXPECT_EQ(GraphemeBreaker::previousBoundary(family, at + 1), 1U);
    }
    const std::u16string flags = u"\U0001F1EA\U0001F1F8\U0001F1EA\U0001F1F8";
    EXPECT_EQ(GraphemeBreaker::nextBoundary(flags, 2), 4U);
    EXPECT_EQ(GraphemeBreaker::previousBoundary(flags, 6), 4U);
}

TEST(GraphemeBreaker, StaysAtTheEndsOfTheText) {
    EXPECT_EQ(GraphemeBreaker::nextBoundary(u"ab", 2), 2U);
    EXPECT_EQ(GraphemeBreaker::previousBoundary(u"ab", 0), 0U);
    EXPECT_EQ(GraphemeBreaker::nextBoundary(u"", 0), 0U);
}

TEST(GraphemeBreaker, YieldsTheCharactersThemselves) {
    const std::u16string text = u"e\u0301\r\n\U0001F1EA\U0001F1F8.";
    const std::vector<std::u16string_view> expected = {u"e\u0301", u"\r\n", u"\U0001F1EA\U0001F1F8", u"."};
    const GraphemeBreaker::Characters characters(text);
    EXPECT_EQ(std::vector<std::u16string_view>(characters.begin(), characters.end()), expected);
    static_assert(std::forward_iterator<GraphemeBreaker::Characters::Iterator>);
}

TEST(GraphemeBreaker, FindsTheSameBoundariesEveryWay) {
    Random random;
    for (int round = 0; round < 4000; ++round) {
        const std::u16string text = random.text(alphabet, 24);
        const Boundaries expected = fed(text);
        ASSERT_EQ(forward(text), expected) << ::testing::PrintToString(text);
        ASSERT_EQ(backward(text), expected) << ::testing::PrintToString(text);
        ASSERT_EQ(judged(text), expected) << ::testing::PrintToString(text);
        ASSERT_EQ(walked(text), expected) << ::testing::PrintToString(text);
    }
}

TEST(GraphemeBreaker, AnswersFromAnywhereWithTheNearestBoundaries) {
    Random random;
    for (int round = 0; round < 500; ++round) {
        const std::u16string text = random.text(alphabet, 24);
        const Boundaries boundaries = fed(text);
        for (std::size_t at = 0; at <= text.size(); ++at) {
            const auto after = std::ranges::upper_bound(boundaries, at);
            const auto notBefore = std::ranges::lower_bound(boundaries, at);
            ASSERT_EQ(GraphemeBreaker::nextBoundary(text, at),
                      after == boundaries.end() ? text.size() : *after);
            ASSERT_EQ(GraphemeBreaker::previousBoundary(text, at),
                      notBefore == boundaries.begin() ? 0 : notBefore[-1]);
        }
    }
}

TEST(GraphemeBreakerDeathTest, StopsAtOffsetsBeyondTheText) {
    EXPECT_DEATH(GraphemeBreaker::isBoundary(u"ab", 3), "inside the text");
    EXPECT_DEATH(GraphemeBreaker::nextBoundary(u"ab", 3), "inside the text");
    EXPECT_DEATH(GraphemeBreaker::previousBoundary(u"ab", 3), "inside the text");
}
