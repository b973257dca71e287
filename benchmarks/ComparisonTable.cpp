#include "ComparisonTable.h"

#include "TreeNode.h"

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <string_view>

namespace {

using Cells = std::vector<std::string>;

void printTable(const std::vector<Cells>& lines, TableStyle style) {
    const bool isMarkdown = style == TableStyle::markdown;
    std::vector<std::size_t> widths(lines.front().size());
    for (const Cells& cells : lines) {
        for (std::size_t column = 0; column < cells.size(); ++column) {
            widths[column] = std::max(widths[column], cells[column].size());
        }
    }
    for (const Cells& cells : lines) {
        std::cout << std::left;
        for (std::size_t column = 0; column < cells.size(); ++column) {
            std::cout << (isMarkdown ? "| " : "") << std::setw(static_cast<int>(widths[column]))
                      << cells[column] << (isMarkdown ? " " : "  ") << std::right;
        }
        std::cout << (isMarkdown ? "|\n" : "\n");
        if (isMarkdown && &cells == &lines.front()) {
            std::cout << "|---";
            for (std::size_t column = 1; column < cells.size(); ++column) {
                std::cout << "|---:";
            }
            std::cout << "|\n";
        }
    }
    std::cout << '\n';
}

std::string fixed(double value, int decimals) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(decimals) << value;
    return text.str();
}

/// The time of the parser `of`; zero if the row has none.
double seconds(const ComparisonRow& row, std::string_view of, double ComparisonRow::Time::* time) {
    const auto found = row.times.find(of);
    return found == row.times.end() ? 0 : found->second.*time;
}

/// `first / second`, or an empty string if one of them was not measured.
std::string quotient(double first, double second, int decimals) {
    return first > 0 && second > 0 ? fixed(first / second, decimals) : std::string();
}

Cells speedCells(const ComparisonRow& row) {
    constexpr auto best = &ComparisonRow::Time::best;
    constexpr auto median = &ComparisonRow::Time::median;
    const double megabytes = static_cast<double>(row.bytes) / 1e6;
    const auto throughput = [&](std::string_view of) {
        return quotient(megabytes, seconds(row, of, best), 0);
    };
    return {row.name,
            std::to_string(row.documents),
            fixed(megabytes, 1),
            fixed(seconds(row, "ours", best) * 1e3, 2),
            throughput("ours"),
            throughput("pugixml"),
            throughput("pugixml-copy"),
            throughput("expat"),
            throughput("libxml2"),
            throughput("memchr"),
            throughput("roofline"),
            quotient(seconds(row, "pugixml", best), seconds(row, "ours", best), 2),
            quotient(seconds(row, "pugixml", median), seconds(row, "ours", median), 2),
            quotient(seconds(row, "damaged", best), seconds(row, "ours", best), 2)};
}

Cells memoryCells(const ComparisonRow& row) {
    const auto bytes = static_cast<double>(row.bytes);
    const auto nodes = static_cast<double>(row.nodes);
    const auto allocated = static_cast<double>(row.allocatedBytes);
    const double used =
        sizeof(TreeNode) * nodes + sizeof(AttributeSpan) * static_cast<double>(row.attributes);
    return {row.name,
            std::to_string(row.nodes),
            std::to_string(row.attributes),
            quotient(used, nodes, 1),
            quotient(allocated, nodes, 1),
            quotient(allocated, bytes, 2),
            quotient(allocated, used, 3)};
}

} // namespace

void printComparison(const std::vector<ComparisonRow>& rows, TableStyle style) {
    std::vector<Cells> speed = {{"MB/s of UTF-8", "files", "MB", "ours, ms", "ours", "pugixml",
                                 "pugixml-copy", "expat", "libxml2", "memchr", "roofline", "ours/pugixml",
                                 "by medians", "damaged/intact"}};
    std::vector<Cells> memory = {{"tree", "nodes", "attributes", "bytes a node", "with capacity",
                                  "bytes a byte of UTF-8", "allocated/used"}};
    for (const ComparisonRow& row : rows) {
        speed.push_back(speedCells(row));
        memory.push_back(memoryCells(row));
    }
    printTable(speed, style);
    printTable(memory, style);
    for (const ComparisonRow& row : rows) {
        for (const std::string& document : row.leftOut) {
            std::cout << row.name << ": left out " << document << '\n';
        }
    }
}
