#include "RecordArray.h"

#include "SourceRange.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <numeric>
#include <vector>

namespace {

RecordArray<int> counting(int count) {
    RecordArray<int> array;
    for (int i = 0; i < count; ++i) {
        array.append(i);
    }
    return array;
}

void expectCounting(const RecordArray<int>& array, int count) {
    std::vector<int> expected(static_cast<std::size_t>(count));
    std::iota(expected.begin(), expected.end(), 0);
    EXPECT_TRUE(std::ranges::equal(array, expected));
    EXPECT_EQ(array.size(), expected.size());
}

} // namespace

TEST(RecordArray, StartsEmpty) {
    const RecordArray<int> array;
    EXPECT_TRUE(array.empty());
    EXPECT_EQ(array.size(), 0U);
    EXPECT_EQ(array.capacity(), 0U);
    EXPECT_EQ(array.begin(), array.end());
}

TEST(RecordArray, KeepsWhatIsAppended) {
    for (const int count : {1, 15, 16, 17, 1000, 100'000}) {
        const RecordArray<int> array = counting(count);
        expectCounting(array, count);
        EXPECT_FALSE(array.empty());
        EXPECT_GE(array.capacity(), array.size());
    }
}

TEST(RecordArray, GrowsByDoubling) {
    RecordArray<int> array;
    std::size_t growths = 0;
    for (int i = 0; i < 100'000; ++i) {
        const std::size_t capacity = array.capacity();
        array.append(i);
        growths += array.capacity() != capacity ? 1 : 0;
    }
    EXPECT_EQ(growths, 14U);
}

TEST(RecordArray, AppendsItsOwnRecords) {
    RecordArray<SourceRange> array;
    array.append({3, 7});
    while (array.size() < 1000) {
        array.append(array[0]);
    }
    EXPECT_TRUE(std::ranges::all_of(array, [](SourceRange range) { return range == SourceRange(3, 7); }));
}

TEST(RecordArray, HandsOutRecordsToAssign) {
    RecordArray<int> array;
    for (int i = 0; i < 100; ++i) {
        array.append() = i;
    }
    expectCounting(array, 100);
}

TEST(RecordArray, RemovesTheLastRecord) {
    RecordArray<int> array = counting(3);
    const std::size_t capacity = array.capacity();
    array.removeLast();
    expectCounting(array, 2);
    array.append(2);
    expectCounting(array, 3);
    EXPECT_EQ(array.capacity(), capacity);
}

TEST(RecordArray, GivesAccessToItsRecords) {
    RecordArray<int> array = counting(3);
    array[1] = 10;
    array.back() = 20;
    *array.begin() = 5;
    const RecordArray<int>& constant = array;
    EXPECT_EQ((std::vector<int>(constant.begin(), constant.end())), (std::vector<int>{5, 10, 20}));
    EXPECT_EQ(constant[1], 10);
    EXPECT_EQ(constant.data(), constant.begin());
    EXPECT_EQ(array.end() - array.begin(), 3);
}

TEST(RecordArray, ReservesWithoutMovingLater) {
    RecordArray<int> array;
    array.reserve(1000);
    EXPECT_EQ(array.capacity(), 1000U);
    const int* const records = array.data();
    for (int i = 0; i < 1000; ++i) {
        array.append(i);
    }
    EXPECT_EQ(array.data(), records);
    array.reserve(10);
    EXPECT_EQ(array.capacity(), 1000U);
    expectCounting(array, 1000);
    array.reserve(2000);
    expectCounting(array, 1000);
}

TEST(RecordArray, KeepsItsCapacityWhenCleared) {
    RecordArray<int> array = counting(1000);
    const std::size_t capacity = array.capacity();
    array.clear();
    EXPECT_TRUE(array.empty());
    EXPECT_EQ(array.capacity(), capacity);
    array.append(0);
    expectCounting(array, 1);
}

TEST(RecordArray, TrimsWhatExceedsAQuarter) {
    RecordArray<int> array = counting(100);
    array.reserve(125);
    const std::size_t capacity = array.capacity();
    EXPECT_EQ(capacity, 128U);
    array.trim();
    EXPECT_EQ(array.capacity(), 100U);
    expectCounting(array, 100);

    RecordArray<int> snug;
    snug.reserve(125);
    for (int i = 0; i < 100; ++i) {
        snug.append(i);
    }
    snug.trim();
    EXPECT_EQ(snug.capacity(), 125U);
}

TEST(RecordArray, TrimsToNothingWhenEmpty) {
    RecordArray<int> array = counting(100);
    array.clear();
    array.trim();
    EXPECT_EQ(array.capacity(), 0U);
    array.append(0);
    expectCounting(array, 1);
}

TEST(RecordArray, MovesItsStorage) {
    RecordArray<int> source = counting(100);
    const int* const records = source.data();
    RecordArray<int> moved = std::move(source);
    EXPECT_EQ(moved.data(), records);
    expectCounting(moved, 100);

    RecordArray<int> assigned = counting(7);
    assigned = std::move(moved);
    EXPECT_EQ(assigned.data(), records);
    expectCounting(assigned, 100);
}

TEST(RecordArray, IsEmptyAndUsableAfterBeingMovedFrom) {
    RecordArray<int> array = counting(100);
    const RecordArray<int> taken = std::move(array);
    array.clear(); // An array that was moved from can be used again.
    EXPECT_EQ(array.capacity(), 0U);
    array.append(0);
    expectCounting(array, 1);
    expectCounting(taken, 100);
}
