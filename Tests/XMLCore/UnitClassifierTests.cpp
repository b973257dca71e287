#include "UnitClassifier.h"
#include "UnitIndex.h"
#include "UnitScan.h"

#include "Random.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace {

UnitFlags plainFlags(std::u16string_view units) {
    UnitFlags flags;
    for (std::size_t i = 0; i < units.size(); ++i) {
        const char16_t unit = units[i];
        const std::uint64_t bit = std::uint64_t{1} << i;
        flags.markup |= unit == u'<' || unit == u'&' ? bit : 0;
        flags.nameEnd |= UnitScan::isName(unit) ? 0 : bit;
        flags.valueEnd |= unit == u'"' || unit == u'\'' || unit == u'<' ? bit : 0;
        flags.content |= UnitScan::isWhitespace(unit) ? 0 : bit;
    }
    return flags;
}

void expectEqual(const UnitFlags& flags, const UnitFlags& expected) {
    EXPECT_EQ(flags.markup, expected.markup);
    EXPECT_EQ(flags.nameEnd, expected.nameEnd);
    EXPECT_EQ(flags.valueEnd, expected.valueEnd);
    EXPECT_EQ(flags.content, expected.content);
}

} // namespace

TEST(UnitClassifier, TellsEveryUnitApartOnEveryProcessor) {
    constexpr std::size_t allUnits = 0x10000;
    std::u16string units;
    for (std::size_t unit = 0; unit < allUnits; ++unit) {
        units.push_back(static_cast<char16_t>(unit));
    }
    for (const UnitClassifier::Function classify : UnitClassifier::available()) {
        std::vector<UnitFlags> flags(allUnits / UnitIndex::flagsLength);
        classify(units.data(), flags);
        for (std::size_t i = 0; i < flags.size(); ++i) {
            const auto part =
                std::u16string_view(units).substr(i * UnitIndex::flagsLength, UnitIndex::flagsLength);
            expectEqual(flags[i], plainFlags(part));
        }
    }
}

TEST(UnitClassifier, KeepsTheOrderOfUnits) {
    Random random;
    for (int round = 0; round < 200; ++round) {
        std::u16string units;
        while (units.size() < UnitIndex::flagsLength) {
            constexpr std::u16string_view alphabet = u"<&\"'/=> \t\n\ra:_-.9\u00E9\uFFFF\u3C3C\u2626";
            units.push_back(alphabet[random.below(alphabet.size())]);
        }
        for (const UnitClassifier::Function classify : UnitClassifier::available()) {
            std::array<UnitFlags, 1> flags;
            classify(units.data(), flags);
            expectEqual(flags[0], plainFlags(units));
        }
    }
}

TEST(UnitIndex, EndsEverythingAtTheEndOfTheText) {
    const std::u16string text((UnitIndex::capacity * UnitIndex::flagsLength) + 100, u'a');
    for (const std::ptrdiff_t end : {0, 1, 63, 64, 65, 100}) {
        UnitIndex index;
        index.move(text.data(), 0, end, UnitIndex::capacity);
        const std::ptrdiff_t position = end / UnitIndex::flagsLength;
        const std::uint64_t bit = std::uint64_t{1} << end % UnitIndex::flagsLength;
        for (std::ptrdiff_t whole = 0; whole < position; ++whole) {
            expectEqual(index.begin()[whole],
                        {.markup = 0, .nameEnd = 0, .valueEnd = 0, .content = ~std::uint64_t{0}});
        }
        EXPECT_EQ(index.begin()[position].markup & -index.begin()[position].markup, bit) << end;
        EXPECT_EQ(index.begin()[position].nameEnd & -index.begin()[position].nameEnd, bit) << end;
        EXPECT_EQ(index.begin()[position].valueEnd & -index.begin()[position].valueEnd, bit) << end;
        EXPECT_NE(index.begin()[position].content & bit, 0U) << end;
    }
}
