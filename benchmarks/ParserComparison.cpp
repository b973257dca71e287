// Our parser beside others, on the same documents in the same run.

#include "BenchmarkDocument.h"
#include "ComparisonTable.h"
#include "ParserContender.h"
#include "TreeParser.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <malloc.h>
#include <span>
#include <string>
#include <string_view>
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

/// The files of the group, directories walked, in a stable order.
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
    explicit Stopwatch(ParserContender& contender) : m_contender(contender) {}

    std::string_view name() const { return m_contender.name(); }

    /// Warms up and chooses how often a round parses; false when the contender gives up on the document.
    bool prepare(const BenchmarkDocument& document) {
        constexpr double shortestRound = 0.001;
        constexpr double mostRepetitions = 1000;
        m_contender.parse(document);
        const std::optional<double> seconds = m_contender.parse(document);
        if (!seconds) {
            return false;
        }
        m_repetitions =
            static_cast<int>(std::clamp(std::ceil(shortestRound / *seconds), 1.0, mostRepetitions));
        return true;
    }

    void round(const BenchmarkDocument& document) {
        double sum = 0;
        for (int i = 0; i < m_repetitions; ++i) {
            sum += m_contender.parse(document).value();
        }
        m_rounds.push_back(sum / m_repetitions);
    }

    /// The seconds of one parse.
    ComparisonRow::Time time() {
        std::ranges::sort(m_rounds);
        return {m_rounds.front(), m_rounds[m_rounds.size() / 2]};
    }

private:
    ParserContender& m_contender;
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
        std::uintmax_t groupSize = 0;
        for (const std::filesystem::path& path : paths) {
            groupSize += std::filesystem::file_size(path);
        }
        if (!m_options.eachDocument) {
            addRow(group.name);
        }
        for (const std::filesystem::path& path : paths) {
            if (m_options.eachDocument) {
                addRow(path.filename().string());
            }
            const auto size = static_cast<double>(std::filesystem::file_size(path));
            const double share = m_options.seconds * size / static_cast<double>(groupSize);
            if (const std::optional<BenchmarkDocument> document = loadDocument(path)) {
                measure(*document, share);
            } else {
                m_rows.back().leftOut.push_back(path.filename().string() + ": cannot be decoded");
            }
        }
    }

    const std::vector<ComparisonRow>& rows() const { return m_rows; }

private:
    void addRow(const std::string& name) {
        m_rows.emplace_back();
        m_rows.back().name = name;
    }

    void leaveOut(const BenchmarkDocument& document, const std::string& reason) {
        m_rows.back().leftOut.push_back(std::filesystem::path(document.name).filename().string() + ": " +
                                        reason);
    }

    void measure(const BenchmarkDocument& document, double seconds) {
        std::vector<Stopwatch> stopwatches;
        for (const auto& contender : m_contenders) {
            stopwatches.emplace_back(*contender);
            if (!stopwatches.back().prepare(document)) {
                leaveOut(document, std::string(contender->name()) + " refuses it");
                return;
            }
        }
        if (const ElementCounts counts = elementCounts(document); counts.ours != counts.pugixml) {
            leaveOut(document, "ours finds " + std::to_string(counts.ours) + " elements, pugixml " +
                                   std::to_string(counts.pugixml));
            return;
        }
        const auto start = std::chrono::steady_clock::now();
        const std::chrono::duration<double> limit(seconds);
        for (int round = 0; round < m_options.rounds; ++round) {
            if (round > 0 && std::chrono::steady_clock::now() - start > limit) {
                break;
            }
            for (Stopwatch& stopwatch : stopwatches) {
                stopwatch.round(document);
            }
        }
        add(document, stopwatches);
    }

    void add(const BenchmarkDocument& document, std::vector<Stopwatch>& stopwatches) {
        ComparisonRow& row = m_rows.back();
        for (Stopwatch& stopwatch : stopwatches) {
            const ComparisonRow::Time time = stopwatch.time();
            ComparisonRow::Time& sum = row.times[std::string(stopwatch.name())];
            sum.best += time.best;
            sum.median += time.median;
        }
        const DocumentTree tree = TreeParser::parse(document.text);
        ++row.documents;
        row.bytes += document.utf8.size();
        row.nodes += tree.nodes.size();
        row.attributes += tree.attributes.size();
        row.allocatedBytes +=
            tree.nodes.capacity() * sizeof(TreeNode) + tree.attributes.capacity() * sizeof(AttributeSpan);
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
    // What a parser frees stays with the process, so that all find a warm heap.
    constexpr int mostBytesKept = 2'000'000'000;
    mallopt(M_TRIM_THRESHOLD, mostBytesKept);
    mallopt(M_MMAP_MAX, 0);

    Comparison comparison(options);
    for (const Group& group : options.groups) {
        comparison.measure(group);
    }
    printComparison(comparison.rows(), options.style);
}
