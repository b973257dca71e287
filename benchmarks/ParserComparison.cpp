// Compares our parser with others, on the same documents in the same run.

#include "BenchmarkDocument.h"
#include "ComparisonTable.h"
#include "ParserContender.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <malloc.h>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr std::string_view usage =
    R"(usage: parser_comparison [options] [PATH...] [--group NAME PATH...]...

Parses every document with every parser in turn, round after round, and prints
the best times as throughput in MB of UTF-8 a second. A directory stands for all
files in it. A path before the first --group makes a row of its own.

  --group NAME     the paths that follow make one row
  --each           one row a document instead
  --only A,B       only these of: ours, pugixml, pugixml-copy, expat, libxml2,
                   memchr, roofline, damaged (ours on a damaged document)
  --rounds N       rounds a document (default 9)
  --seconds S      at most about S seconds a row, though one round at least
  --min-size N     skips files of fewer bytes
  --markdown       tables for a document
)";

struct Group {
    std::string name;
    std::vector<std::filesystem::path> paths;
};

struct Options {
    std::vector<Group> groups;
    std::vector<std::string> only;
    int rounds = 9;
    double seconds = 1e9;
    std::uintmax_t minSize = 0;
    bool eachDocument = false;
    TableStyle style = TableStyle::text;
};

[[noreturn]] void stop(std::string_view reason) {
    std::cerr << "parser_comparison: " << reason << '\n' << usage;
    std::exit(2);
}

template <class Number>
Number number(std::string_view text) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
        stop("not a number: " + std::string(text));
    }
    return value;
}

std::vector<std::string> split(std::string_view list) {
    std::vector<std::string> parts;
    while (!list.empty()) {
        const std::size_t comma = std::min(list.find(','), list.size());
        parts.emplace_back(list.substr(0, comma));
        list.remove_prefix(std::min(comma + 1, list.size()));
    }
    return parts;
}

Options parseArguments(std::span<char*> arguments) {
    Options options;
    bool isInGroup = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        const auto value = [&]() -> std::string_view {
            if (i + 1 == arguments.size()) {
                stop("a value is missing");
            }
            return arguments[++i];
        };
        if (argument == "--group") {
            options.groups.push_back({std::string(value()), {}});
            isInGroup = true;
        } else if (argument == "--each") {
            options.eachDocument = true;
        } else if (argument == "--only") {
            options.only = split(value());
        } else if (argument == "--rounds") {
            options.rounds = std::max(1, number<int>(value()));
        } else if (argument == "--seconds") {
            options.seconds = number<double>(value());
        } else if (argument == "--min-size") {
            options.minSize = number<std::uintmax_t>(value());
        } else if (argument == "--markdown") {
            options.style = TableStyle::markdown;
        } else if (argument.starts_with("-")) {
            stop("unknown option " + std::string(argument));
        } else if (isInGroup) {
            options.groups.back().paths.emplace_back(argument);
        } else {
            options.groups.push_back({std::string(argument), {argument}});
        }
    }
    return options;
}

/// The files of the group, including those in its directories, in a stable order.
std::vector<std::filesystem::path> files(const Group& group, std::uintmax_t minSize) {
    std::vector<std::filesystem::path> files;
    const auto add = [&](const std::filesystem::path& path) {
        if (std::filesystem::is_regular_file(path) && std::filesystem::file_size(path) >= minSize) {
            files.push_back(path);
        }
    };
    for (const std::filesystem::path& path : group.paths) {
        if (std::filesystem::is_directory(path)) {
            for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
                add(entry.path());
            }
        } else if (std::filesystem::exists(path)) {
            add(path);
        } else {
            stop("no such file: " + path.string());
        }
    }
    std::ranges::sort(files);
    return files;
}

/// Times one contender on one document.
class Stopwatch {
public:
    /// Chooses how often a round parses. `isUsable` is false if the contender gave up on the document.
    Stopwatch(ParserContender& contender, const BenchmarkDocument& document)
        : m_contender(&contender), m_document(&document) {
        constexpr double shortestRound = 0.001;
        constexpr double mostRepetitions = 1000;
        m_contender->parse(document);
        const std::optional<double> seconds = m_contender->parse(document);
        isUsable = seconds.has_value();
        m_repetitions = static_cast<int>(
            std::clamp(std::ceil(shortestRound / seconds.value_or(shortestRound)), 1.0, mostRepetitions));
    }

    bool isUsable = false;

    std::string name() const { return std::string(m_contender->name()); }

    void round() {
        // The document before may have been smaller, so that there is not enough memory yet.
        m_contender->parse(*m_document);
        double sum = 0;
        for (int i = 0; i < m_repetitions; ++i) {
            sum += m_contender->parse(*m_document).value();
        }
        m_rounds.push_back(sum / m_repetitions);
    }

    /// The duration of one parse, in seconds.
    ComparisonRow::Time time() {
        std::ranges::sort(m_rounds);
        return {m_rounds.front(), m_rounds[m_rounds.size() / 2]};
    }

private:
    ParserContender* m_contender;
    const BenchmarkDocument* m_document;
    int m_repetitions = 1;
    std::vector<double> m_rounds;
};

class Comparison {
public:
    explicit Comparison(const Options& options) : m_options(options), m_contenders(parserContenders()) {
        for (const std::string& name : options.only) {
            if (std::ranges::find(m_contenders, name, &ParserContender::name) == m_contenders.end()) {
                stop("unknown parser " + name);
            }
        }
        std::erase_if(m_contenders, [&](const auto& contender) {
            return !options.only.empty() &&
                   std::ranges::find(options.only, contender->name()) == options.only.end();
        });
    }

    void measure(const Group& group) {
        const std::vector<std::filesystem::path> paths = files(group, m_options.minSize);
        if (m_options.eachDocument) {
            for (const std::filesystem::path& path : paths) {
                m_rows.push_back(row(path.filename().string(), {path}));
            }
        } else {
            m_rows.push_back(row(group.name, paths));
        }
    }

    const std::vector<ComparisonRow>& rows() const { return m_rows; }

private:
    ComparisonRow row(const std::string& name, const std::vector<std::filesystem::path>& paths) {
        ComparisonRow row;
        row.name = name;
        std::vector<std::unique_ptr<const BenchmarkDocument>> documents;
        std::vector<Stopwatch> stopwatches;
        for (const std::filesystem::path& path : paths) {
            std::optional<BenchmarkDocument> document = loadDocument(path);
            if (!document) {
                row.leftOut.push_back(path.filename().string() + ": cannot be decoded");
                continue;
            }
            documents.push_back(std::make_unique<const BenchmarkDocument>(std::move(*document)));
            add(*documents.back(), row, stopwatches);
        }
        time(stopwatches);
        for (Stopwatch& stopwatch : stopwatches) {
            const ComparisonRow::Time time = stopwatch.time();
            ComparisonRow::Time& sum = row.times[stopwatch.name()];
            sum.best += time.best;
            sum.median += time.median;
        }
        return row;
    }

    /// Adds the document's stopwatches, unless its times cannot be compared.
    void add(const BenchmarkDocument& document, ComparisonRow& row, std::vector<Stopwatch>& stopwatches) {
        const std::size_t peerCount = elementCountOfPugixml(document);
        std::vector<Stopwatch> added;
        for (const auto& contender : m_contenders) {
            added.emplace_back(*contender, document);
            if (!added.back().isUsable) {
                row.leftOut.push_back(document.name + ": " + added.back().name() + " refuses it");
                return;
            }
        }
        if (document.elementCount != peerCount) {
            row.leftOut.push_back(document.name + ": ours finds " + std::to_string(document.elementCount) +
                                  " elements, pugixml " + std::to_string(peerCount));
            return;
        }
        std::ranges::move(added, std::back_inserter(stopwatches));
        ++row.documents;
        row.bytes += document.utf8.size();
        row.nodes += document.nodeCount;
        row.attributes += document.attributeCount;
        row.allocatedBytes += document.allocatedBytes;
    }

    /// Measures all documents with all contenders in each round. So a time in which the machine is busy
    /// affects some rounds of many documents, not all rounds of one.
    void time(std::vector<Stopwatch>& stopwatches) const {
        const auto start = std::chrono::steady_clock::now();
        const std::chrono::duration<double> limit(m_options.seconds);
        for (int round = 0; round < m_options.rounds; ++round) {
            if (round > 0 && std::chrono::steady_clock::now() - start > limit) {
                return;
            }
            for (Stopwatch& stopwatch : stopwatches) {
                stopwatch.round();
            }
        }
    }

    const Options& m_options;
    std::vector<std::unique_ptr<ParserContender>> m_contenders;
    std::vector<ComparisonRow> m_rows;
};

} // namespace

int main(int argc, char** argv) {
    const Options options = parseArguments(std::span(argv, argc).subspan(1));
    if (options.groups.empty()) {
        stop("no documents");
    }
    // The process keeps the memory that a parser frees, so all contenders run with a warm heap.
    constexpr int mostBytesKept = 2'000'000'000;
    mallopt(M_TRIM_THRESHOLD, mostBytesKept);
    mallopt(M_MMAP_MAX, 0);

    Comparison comparison(options);
    for (const Group& group : options.groups) {
        comparison.measure(group);
    }
    printComparison(comparison.rows(), options.style);
}
