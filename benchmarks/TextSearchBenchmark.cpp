#include "TextReplacement.h"
#include "TextSearch.h"
#include "TextShape.h"

#include <benchmark/benchmark.h>

#include <algorithm>

namespace {

constexpr std::size_t units = 100'000'000;

/// A document of 100 MB in UTF-8. A few edits divide its storage, so that it is not in one array.
const Rope& document() {
    static const Rope rope = [] {
        Rope made{SourceText(TextShapes::records.text(units))};
        for (Offset at = 0; at < made.size(); at += 10'000'000) {
            made = made.replaced(SourceRange::empty(at), u"<!-- ñ -->");
        }
        return made;
    }();
    return rope;
}

using enum SearchPattern::Case;
using enum SearchPattern::Extent;
using enum SearchPattern::Syntax;

/// Searches the whole text, as for counting the matches.
void search(benchmark::State& state, const SearchPattern& pattern) {
    const TextSearch search = *TextSearch::make(pattern);
    std::size_t count = 0;
    for (auto _ : state) {
        SearchedText text(document());
        count = 0;
        const SearchEnd end = search.visitMatches(text, text.rope().fullRange(), {}, [&](MatchGroups) {
            ++count;
            return true;
        });
        if (end.reason != SearchEnd::Reason::done) {
            state.SkipWithError("the search was given up");
        }
    }
    state.counters["matches"] = static_cast<double>(count);
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(document().size()));
}

void replaceAll(benchmark::State& state, const SearchPattern& pattern, std::u16string_view with) {
    const TextSearch search = *TextSearch::make(pattern);
    const ReplacementTemplate replacement(with, pattern.syntax);
    for (auto _ : state) {
        SearchedText text(document());
        benchmark::DoNotOptimize(
            TextReplacement::make(search, text, text.rope().fullRange(), replacement, 0, {}));
    }
}

/// The work of the main thread for every key in the search field.
void make(benchmark::State& state, const SearchPattern& pattern) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(TextSearch::make(pattern));
    }
}

/// The last step, on the main thread: one edit, whatever the number of matches.
void applyReplacement(benchmark::State& state) {
    SearchedText text(document());
    const TextSearch search = *TextSearch::make({.text = u"row"});
    const auto made = TextReplacement::make(search, text, text.rope().fullRange(), {u"fila", plain}, 0, {});
    for (auto _ : state) {
        benchmark::DoNotOptimize(document().replaced(made.range, made.text));
    }
}

/// The baseline: copying all units into a buffer that fits into the cache, as every search does.
void readOnly(benchmark::State& state) {
    std::u16string buffer(32 * 1024, u' ');
    benchmark::DoNotOptimize(document());
    for (auto _ : state) {
        for (Offset at = 0; at < document().size(); at += static_cast<Offset>(buffer.size())) {
            const Offset end = std::min<Offset>(document().size(), at + static_cast<Offset>(buffer.size()));
            document().copyTo({at, end}, buffer.data());
            benchmark::ClobberMemory();
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(document().size()));
}

void add(const char* name, const SearchPattern& pattern) {
    benchmark::RegisterBenchmark(name, search, pattern)->Unit(benchmark::kMillisecond);
}

} // namespace

int main(int argc, char** argv) {
    benchmark::RegisterBenchmark("read only", readOnly)->Unit(benchmark::kMillisecond);
    add("plain, absent", {.text = u"Lovelock", .letterCase = distinguished});
    add("plain, 1.3 million", {.text = u"Lovelace", .letterCase = distinguished});
    add("plain, ignoring case, absent", {.text = u"lovelock"});
    add("plain, ignoring case, 1.3 million", {.text = u"LOVELACE"});
    add("plain, whole words", {.text = u"row", .extent = wholeWords});
    add("plain, one unit, 7.6 million", {.text = u"e"});
    add("expression, absent",
        {.text = u"Love(lock|less)", .letterCase = distinguished, .syntax = regularExpression});
    add("expression, 1.3 million",
        {.text = u"id=\"(\\d+)\"", .letterCase = distinguished, .syntax = regularExpression});
    add("expression, ignoring case", {.text = u"<(NAME|YEAR)>\\w+", .syntax = regularExpression});
    add("expression, whole words", {.text = u"[a-z]+=", .extent = wholeWords, .syntax = regularExpression});
    add("expression, every line", {.text = u"^.*$", .syntax = regularExpression});
    benchmark::RegisterBenchmark("replace all, plain, 2.5 million", replaceAll, SearchPattern{.text = u"row"},
                                 u"fila")
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("replace all, expression, 1.3 million", replaceAll,
                                 SearchPattern{.text = u"(\\w+) (\\w+)<", .syntax = regularExpression},
                                 u"\\2, \\1<")
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("apply a replacement", applyReplacement)->Unit(benchmark::kMicrosecond);
    for (const auto extent : {anywhere, wholeWords}) {
        const SearchPattern expression{
            .text = u"(\\w+)=\"\\d+", .extent = extent, .syntax = regularExpression};
        benchmark::RegisterBenchmark(
            extent == anywhere ? "make, expression" : "make, expression, whole words", make, expression)
            ->Unit(benchmark::kMicrosecond);
    }
    benchmark::RegisterBenchmark("make, plain", make, SearchPattern{.text = u"Lovelace"})
        ->Unit(benchmark::kMicrosecond);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
