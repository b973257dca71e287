#include "NameSimilarity.h"

#include "Random.h"
#include "Repeated.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

namespace {

/// The number of typing errors, computed by dynamic programming: one letter too many, missing or wrong, or
/// two exchanged.
std::size_t slips(std::u16string_view first, std::u16string_view second) {
    std::vector<std::vector<std::size_t>> table(first.size() + 1,
                                                std::vector<std::size_t>(second.size() + 1));
    for (std::size_t i = 0; i <= first.size(); ++i) {
        for (std::size_t j = 0; j <= second.size(); ++j) {
            if (i == 0 || j == 0) {
                table[i][j] = i + j;
                continue;
            }
            const std::size_t wrong = table[i - 1][j - 1] + (first[i - 1] == second[j - 1] ? 0 : 1);
            table[i][j] = std::min({wrong, table[i - 1][j] + 1, table[i][j - 1] + 1});
            if (i > 1 && j > 1 && first[i - 1] == second[j - 2] && first[i - 2] == second[j - 1]) {
                table[i][j] = std::min(table[i][j], table[i - 2][j - 2] + 1);
            }
        }
    }
    return table[first.size()][second.size()];
}

TEST(NameSimilarity, ForgivesFewSlips) {
    struct Row {
        std::u16string_view first, second;
        bool areClose;
    };
    for (const Row& row : {
             Row{u"item", u"item", true},
             Row{u"item", u"itme", true},
             Row{u"item", u"itm", true},
             Row{u"item", u"items", true},
             Row{u"item", u"iten", true},
             Row{u"item", u"tiems", false},
             Row{u"chapter", u"chpater", true},
             Row{u"chapter", u"hcpater", true},
             Row{u"chapter", u"chapel", true},
             Row{u"chapter", u"charts", false},
             Row{u"a", u"b", false},
             Row{u"li", u"ol", false},
             Row{u"a", u"A", true},
             Row{u"Item", u"iTEM", true},
             Row{u"", u"", true},
             Row{u"a", u"", false},
         }) {
        EXPECT_EQ(NameSimilarity::areClose(row.first, row.second), row.areClose);
        EXPECT_EQ(NameSimilarity::areClose(row.second, row.first), row.areClose);
    }
}

TEST(NameSimilarity, CountsAsTheTextbookDoes) {
    constexpr std::array<char32_t, 3> alphabet = {U'a', U'b', U'c'};
    Random random;
    for (int round = 0; round < 20'000; ++round) {
        const std::u16string first = random.text(alphabet, 10);
        std::u16string second = first;
        for (std::size_t slip = random.below(4); slip > 0; --slip) {
            const std::size_t at = random.below(second.size() + 1);
            second.replace(at, std::min<std::size_t>(random.below(2), second.size() - at),
                           random.text(alphabet, 1));
        }
        const std::size_t longer = std::max(first.size(), second.size());
        const std::size_t allowed = longer <= 2 ? 0 : longer <= 5 ? 1 : 2;
        EXPECT_EQ(NameSimilarity::areClose(first, second), slips(first, second) <= allowed);
    }
}

TEST(NameSimilarity, ReadsHugeNamesAFewTimes) {
    const std::u16string name = repeated(u"n", 10'000'000);
    EXPECT_TRUE(NameSimilarity::areClose(name, name + u"x"));
    EXPECT_FALSE(NameSimilarity::areClose(name, u"x" + repeated(u"nnnnnnnnny", 1'000'000)));
}

} // namespace
