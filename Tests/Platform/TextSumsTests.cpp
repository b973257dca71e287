#include "TextSums.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace std::string_literals;

TEST(TextSums, AddUpAStretch) {
    const struct {
        std::u16string stretch;
        TextSums sums;
    } rows[] = {
        {u"", {}},
        {u"abc", {.units = 3, .firstLine = 3, .lastLine = 3, .longestLine = 3}},
        {u"\n", {.units = 1, .lineFeeds = 1, .outsidePrintableASCII = 1}},
        {u"ab\ncdef\ng",
         {.units = 9,
          .lineFeeds = 2,
          .outsidePrintableASCII = 2,
          .firstLine = 2,
          .lastLine = 1,
          .longestLine = 4}},
        {u"a\r\nb",
         {.units = 4,
          .lineFeeds = 1,
          .outsidePrintableASCII = 2,
          .firstLine = 2,
          .lastLine = 1,
          .longestLine = 2}},
        {u"\u2028\u0000\xD800 ~\x7F\t"s,
         {.units = 7, .outsidePrintableASCII = 5, .firstLine = 7, .lastLine = 7, .longestLine = 7}},
        {u"0123456789\n0123456789é",
         {.units = 22,
          .lineFeeds = 1,
          .outsidePrintableASCII = 2,
          .firstLine = 10,
          .lastLine = 11,
          .longestLine = 11}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(TextSums::of(row.stretch), row.sums) << "units: " << row.stretch.size();
    }
}

TEST(TextSums, OfBothHalvesCombineIntoThoseOfTheWhole) {
    const std::u16string text = u"first\n\nthe third line is long\r\nñandú\nlast";
    const TextSums whole = TextSums::of(text);
    for (std::size_t cut = 0; cut <= text.size(); ++cut) {
        TextSums sums = TextSums::of(std::u16string_view(text).substr(0, cut));
        sums += TextSums::of(std::u16string_view(text).substr(cut));
        EXPECT_EQ(sums, whole) << cut;
    }
}

} // namespace
