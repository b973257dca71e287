#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <span>
#include <utility>
#include <vector>

/// Sorts `records` by `key`, ascending and stable, with a natural merge sort. Takes linear time if the
/// records consist of a few ascending or descending runs, and O(n log n) otherwise. Reads and writes memory
/// sequentially.
template <class Record, class Key>
void sortByRuns(std::span<Record> records, Key key) {
    // The index at which each ascending run ends.
    std::vector<std::size_t> ends;
    for (std::size_t begin = 0; begin < records.size(); begin = ends.back()) {
        std::size_t end = begin + 1;
        if (end < records.size() && std::invoke(key, records[end]) < std::invoke(key, records[begin])) {
            while (end < records.size() &&
                   std::invoke(key, records[end]) < std::invoke(key, records[end - 1])) {
                ++end;
            }
            std::ranges::reverse(records.subspan(begin, end - begin));
        }
        while (end < records.size() &&
               !(std::invoke(key, records[end]) < std::invoke(key, records[end - 1]))) {
            ++end;
        }
        ends.push_back(end);
    }

    std::vector<Record> merged;
    while (ends.size() > 1) {
        merged.clear();
        merged.reserve(records.size());
        std::vector<std::size_t> mergedEnds;
        std::size_t begin = 0;
        for (std::size_t i = 0; i < ends.size(); i += 2) {
            const std::size_t middle = ends[i];
            const std::size_t end = i + 1 < ends.size() ? ends[i + 1] : middle;
            std::ranges::merge(records.subspan(begin, middle - begin), records.subspan(middle, end - middle),
                               std::back_inserter(merged), std::less(), key, key);
            mergedEnds.push_back(end);
            begin = end;
        }
        std::ranges::copy(merged, records.begin());
        ends = std::move(mergedEnds);
    }
}
