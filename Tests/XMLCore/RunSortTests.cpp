#include "RunSort.h"

#include "Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

struct Record {
    int key = 0;
    int order = 0;

    bool operator==(const Record&) const = default;
};

std::vector<Record> recordsOf(const std::vector<int>& keys) {
    std::vector<Record> records;
    for (const int key : keys) {
        records.push_back({key, static_cast<int>(records.size())});
    }
    return records;
}

void check(const std::vector<int>& keys) {
    std::vector<Record> records = recordsOf(keys);
    std::vector<Record> expected = records;
    std::ranges::stable_sort(expected, {}, &Record::key);
    sortByRuns(std::span(records), &Record::key);
    EXPECT_EQ(records, expected);
}

} // namespace

TEST(RunSort, SortsStretchesOfEveryKind) {
    const std::vector<int> cases[] = {
        {},
        {1},
        {1, 2, 3},
        {3, 2, 1},
        {1, 1, 1},
        {2, 2, 1, 1},
        {1, 3, 5, 2, 4, 6},
        {5, 4, 4, 3},
        {1, 2, 1, 2, 1},
        {3, 2, 1, 3, 2, 1, 3},
    };
    for (const std::vector<int>& keys : cases) {
        check(keys);
    }
}

TEST(RunSort, EqualsAnyStableSort) {
    Random random;
    for (int round = 0; round < 500; ++round) {
        std::vector<int> keys(random.below(200));
        const std::size_t range = 1 + random.below(50);
        for (int& key : keys) {
            key = static_cast<int>(random.below(range));
        }
        check(keys);
    }
}
