// Checks that the parser's time stays linear for documents that are designed to make it grow faster.

#include "HostileShapes.h"
#include "TreeParser.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <ctime>
#include <iomanip>
#include <iostream>
#include <limits>
#include <span>
#include <string_view>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

constexpr std::string_view usage = R"(usage: hostile_scaling [--max MIB] [--only PART-OF-NAME] [--list]

Doubles every hostile shape from 1 Mi units of text up to MIB Mi units (default 64),
prints the milliseconds of processor time of each parse and how many times those of
the half it took, and fails when any doubling took more than 2.3 times as long.
)";

constexpr double largestRatio = 2.3;
constexpr std::size_t mebi = 1024 * 1024;

struct Options {
    std::size_t largest = 64 * mebi;
    std::string_view only;
    bool isList = false;
};

[[noreturn]] void stopWithUsage() {
    std::cerr << usage;
    std::exit(2);
}

Options parseArguments(std::span<char*> arguments) {
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (argument == "--max" && hasValue) {
            const std::string_view value = arguments[++i];
            std::size_t mebis = 0;
            if (std::from_chars(value.data(), value.data() + value.size(), mebis).ec != std::errc() ||
                mebis == 0) {
                stopWithUsage();
            }
            options.largest = mebis * mebi;
        } else if (argument == "--only" && hasValue) {
            options.only = arguments[++i];
        } else if (argument == "--list") {
            options.isList = true;
        } else {
            stopWithUsage();
        }
    }
    return options;
}

/// The processor time of this thread, on which other programs have little influence.
double processorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// One text and the shortest time that parsing it has taken so far.
class Sample {
public:
    explicit Sample(const std::u16string& text) : m_text(text) {
        m_recycled = TreeParser::parse(m_text);
        measure();
    }

    /// Measures again, because another program may have disturbed earlier measurements.
    void measure() {
        constexpr double leastSeconds = 0.02;
        constexpr int leastParses = 2;
        double sum = 0;
        for (int i = 0; i < leastParses || sum < leastSeconds; ++i) {
            const double start = processorSeconds();
            m_recycled = TreeParser::parse(m_text, {}, std::move(m_recycled));
            const double seconds = processorSeconds() - start;
            m_best = std::min(m_best, seconds);
            sum += seconds;
        }
    }

    double seconds() const { return m_best; }

private:
    SourceText m_text;
    DocumentTree m_recycled;
    double m_best = std::numeric_limits<double>::infinity();
};

/// Whether every doubling of the shape stays below the limit. Prints the measurements.
bool scales(const HostileShape& shape, std::size_t largest) {
    constexpr int nameWidth = 48;
    constexpr int mostMeasurements = 4;
    std::cout << std::left << std::setw(nameWidth) << shape.name << std::right << std::fixed << std::flush;
    bool isLinear = true;
    Sample half(shape.make(mebi));
    std::cout << std::setprecision(2) << std::setw(8) << half.seconds() * 1e3;
    for (std::size_t size = 2 * mebi; size <= largest; size *= 2) {
        Sample whole(shape.make(size));
        const auto ratio = [&] { return whole.seconds() / half.seconds(); };
        for (int i = 0; i < mostMeasurements && ratio() > largestRatio; ++i) {
            whole.measure();
            half.measure();
        }
        isLinear = isLinear && ratio() <= largestRatio;
        std::cout << std::setprecision(1) << std::setw(9) << whole.seconds() * 1e3 << " x"
                  << std::setprecision(2) << ratio() << (ratio() > largestRatio ? "!" : " ") << std::flush;
        half = std::move(whole);
    }
    std::cout << '\n';
    return isLinear;
}

} // namespace

int main(int argc, char** argv) {
#if defined(__GLIBC__)
    // The program keeps freed memory at every size. Otherwise parses above the allocator's threshold would
    // also be charged for fresh pages, and smaller ones would not.
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, -1);
#endif
    const Options options = parseArguments(std::span(argv, argc).subspan(1));
    int failures = 0;
    for (const HostileShape& shape : hostileShapes()) {
        if (shape.name.find(options.only) == std::string_view::npos) {
            continue;
        }
        if (options.isList) {
            std::cout << shape.name << '\n';
        } else if (!scales(shape, options.largest)) {
            ++failures;
        }
    }
    if (failures != 0) {
        std::cout << failures << " shapes take more than " << largestRatio << " times as long when doubled\n";
    }
    return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
