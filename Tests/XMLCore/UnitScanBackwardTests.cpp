#include "UnitScanBackward.h"

#include "Random.h"

#include <gtest/gtest.h>

namespace {

using UnitScanBackward::nowhere;
using UnitScanBackward::Position;

} // namespace

TEST(UnitScanBackward, FindsNothingInEmptyStretches) {
    const std::u16string text = u"<!<!";
    EXPECT_EQ(UnitScanBackward::findLastAny(text.data(), 0, 0, u'<'), nowhere);
    EXPECT_EQ(UnitScanBackward::findLastAny(text.data(), 2, 2, u'<'), nowhere);
    EXPECT_EQ(UnitScanBackward::findLastPair(text.data(), 0, 0, u'<', u'!'), nowhere);
    EXPECT_EQ(UnitScanBackward::findLastPair(text.data(), 2, 3, u'<', u'!'), nowhere);
    EXPECT_EQ(UnitScanBackward::findLastSequence(text.data(), 0, 0, u"<!"), nowhere);
}

TEST(UnitScanBackward, AgreesWithTheStandardSearches) {
    static constexpr char32_t alphabet[] = {U'<', U'!', U'-', U'x', U'x', U'x', U'x', U'x'};
    Random random;
    for (int round = 0; round < 20'000; ++round) {
        const std::u16string text = random.text(alphabet, round % 2 == 0 ? 12 : 120);
        const Position from = static_cast<Position>(random.below(text.size() + 1));
        const Position end = from + static_cast<Position>(random.below(text.size() - from + 1));
        // A view that starts at `from` keeps the standard search from reading units before it too.
        const std::u16string_view stretch = std::u16string_view(text).substr(from, end - from);
        const auto expected = [from](std::size_t found) {
            return found == std::u16string_view::npos ? nowhere : from + static_cast<Position>(found);
        };
        const char16_t* const units = text.data();
        ASSERT_EQ(UnitScanBackward::findLastAny(units, from, end, u'<'), expected(stretch.rfind(u'<')));
        ASSERT_EQ(UnitScanBackward::findLastAny(units, from, end, u'<', u'!'),
                  expected(stretch.find_last_of(u"<!")));
        ASSERT_EQ(UnitScanBackward::findLastPair(units, from, end, u'<', u'!'),
                  expected(stretch.rfind(u"<!")));
        for (const std::u16string_view sequence : {u"<!", u"<<", u"<!-", u"<<!", u"--<"}) {
            ASSERT_EQ(UnitScanBackward::findLastSequence(units, from, end, sequence),
                      expected(stretch.rfind(sequence)));
        }
    }
}
