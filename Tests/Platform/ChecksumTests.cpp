#include "Checksum.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

TEST(Checksum, IsTheSameOnEveryMachine) {
    // Logs that an older version wrote are read by a newer one.
    EXPECT_EQ(checksum(bytesOf("recovery"), 7), 9982325973647959094U);
}

TEST(Checksum, DependsOnEveryBit) {
    const std::string text = "nine bytes and some more of them";
    std::set<std::uint64_t> sums{checksum(bytesOf(text), 1)};
    for (std::size_t i = 0; i < text.size(); ++i) {
        for (int bit = 0; bit < 8; ++bit) {
            std::string changed = text;
            changed[i] = static_cast<char>(changed[i] ^ (1 << bit));
            EXPECT_TRUE(sums.insert(checksum(bytesOf(changed), 1)).second) << i << ' ' << bit;
        }
    }
}

TEST(Checksum, DependsOnLengthAndSeed) {
    std::set<std::uint64_t> sums;
    for (std::size_t length = 0; length < 40; ++length) {
        for (std::uint64_t seed = 0; seed < 4; ++seed) {
            EXPECT_TRUE(sums.insert(checksum(bytesOf(std::string(length, '\0')), seed)).second)
                << length << ' ' << seed;
        }
    }
}
