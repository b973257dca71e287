#include "LargeArray.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <new>

TEST(LargeArray, IsWritableFromItsFirstElementToItsLast) {
    for (const std::size_t count : {std::size_t{1}, std::size_t{1000}, (std::size_t{2} << 20) - 1,
                                    std::size_t{2} << 20, std::size_t{5'000'001}}) {
        const auto array = makeLargeArray<char16_t>(count);
        array[0] = u'a';
        array[count - 1] = u'z';
        EXPECT_EQ(array[count - 1], u'z');
        EXPECT_EQ(array[0], count == 1 ? u'z' : u'a');
    }
}

TEST(LargeArray, TakesNoMemoryUntilItIsWritten) {
    // 64 GB.
    const auto array = makeLargeArray<std::uint8_t>(std::size_t{1} << 36);
    array[std::size_t{1} << 35] = 1;
    EXPECT_EQ(array[std::size_t{1} << 35], 1);
}

TEST(LargeArray, ThrowsWhenThereAreNotAsManyAddresses) {
    EXPECT_THROW(makeLargeArray<std::uint8_t>(std::numeric_limits<std::size_t>::max() / 2), std::bad_alloc);
}

TEST(LargeArray, KeepsWhatIsWrittenWhenItIsTouched) {
    constexpr std::size_t count = std::size_t{8} << 20;
    const auto array = makeLargeArray<std::uint8_t>(count);
    array[5] = 7;
    array[count / 2] = 9;
    adviseHugePages(array.get() + 3, count - 5);
    touchMemory(array.get() + 3, count - 5);
    touchMemory(array.get(), 0);
    touchMemory(array.get() + 1, 2);
    EXPECT_EQ(array[5], 7);
    EXPECT_EQ(array[count / 2], 9);
    EXPECT_EQ(array[count - 1], 0);
}
