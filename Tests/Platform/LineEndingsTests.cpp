#include "LineEndings.h"

#include <gtest/gtest.h>

#include <string>

namespace {

/// The text with other line ends, "same" where it has them already.
std::u16string converted(std::u16string_view text, std::u16string_view ending) {
    const auto found = LineEndings::converted(Rope(text), ending);
    return found ? found->units(found->fullRange()) : u"same";
}

} // namespace

TEST(LineEndings, ConvertsEveryLineEndAndNothingElse) {
    struct Row {
        std::u16string_view text;
        std::u16string_view lineFeeds;
        std::u16string_view pairs;
    };
    for (const Row& row : {
             Row{u"", u"same", u"same"},
             Row{u"a", u"same", u"same"},
             Row{u"a\nb\n", u"same", u"a\r\nb\r\n"},
             Row{u"a\r\nb\n", u"a\nb\n", u"a\r\nb\r\n"},
             Row{u"\r\n\r\n", u"\n\n", u"same"},
             Row{u"a\rb\n\r", u"same", u"a\rb\r\n\r"},
             Row{u"a\r\r\n", u"a\r\n", u"same"},
         }) {
        EXPECT_EQ(converted(row.text, u"\n"), row.lineFeeds);
        EXPECT_EQ(converted(row.text, u"\r\n"), row.pairs);
    }
}

TEST(LineEndings, ConvertsAcrossTheChunksOfARope) {
    std::u16string pairs;
    std::u16string lineFeeds;
    for (int line = 0; line < 5000; ++line) {
        pairs.append(static_cast<std::size_t>(line % 7), u'x').append(u"\r\n");
        lineFeeds.append(static_cast<std::size_t>(line % 7), u'x').append(u"\n");
    }
    EXPECT_EQ(converted(pairs, u"\n"), lineFeeds);
    EXPECT_EQ(converted(lineFeeds, u"\r\n"), pairs);
}
