#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// The measurements of one group of documents.
struct ComparisonRow {
    /// Seconds for one parse of every document.
    struct Time {
        double best = 0;
        double median = 0;
    };

    std::string name;
    std::size_t documents = 0;
    std::vector<std::string> leftOut; ///< Documents that were not measured, each with the reason.
    std::uint64_t bytes = 0;          ///< The size of the documents in UTF-8.
    std::uint64_t nodes = 0;
    std::uint64_t attributes = 0;
    std::uint64_t allocatedBytes = 0; ///< The memory of the records, unused capacity included.
    std::map<std::string, Time, std::less<>> times;
};

enum class TableStyle : std::uint8_t { text, markdown };

/// Prints a table of throughputs, in MB of UTF-8 per second, and one of the memory of the trees.
void printComparison(const std::vector<ComparisonRow>& rows, TableStyle style);
