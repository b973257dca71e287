#include "Rope.h"

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <random>
#include <string>

namespace {

/// A text of lines of 64 units each.
std::u16string text(std::size_t units) {
    std::u16string text(units, u'x');
    for (std::size_t i = 63; i < units; i += 64) {
        text[i] = u'\n';
    }
    return text;
}

/// The number of bytes that the program has allocated on the heap.
double heapBytes() {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

/// A large text. It is created once for all benchmarks of its size, and freed when the next size begins.
const SourceText& sourceText(std::int64_t units) {
    static SourceText text;
    if (text.count() != units) {
        text = {};
        text = SourceText(::text(static_cast<std::size_t>(units)));
    }
    return text;
}

Offset randomOffset(std::mt19937_64& engine, Offset upTo) {
    return std::uniform_int_distribution<Offset>(0, upTo)(engine);
}

void open(benchmark::State& state) {
    const SourceText& text = sourceText(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(Rope(text));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0) * 2);
}

void openMemory(benchmark::State& state) {
    const SourceText& text = sourceText(state.range(0));
    double added = 0;
    for (auto _ : state) {
        const double before = heapBytes();
        const Rope rope(text);
        added = heapBytes() - before;
    }
    state.counters["overhead%"] = 100 * added / (2 * static_cast<double>(text.count()));
}

void randomInsert(benchmark::State& state) {
    std::mt19937_64 engine(1);
    Rope rope(sourceText(state.range(0)));
    // An open document always shares its chunks with the version that a save would write.
    Rope mirror = rope;
    for (auto _ : state) {
        const Offset at = randomOffset(engine, rope.size());
        rope = rope.replaced({at, at}, u"x");
        mirror = rope;
    }
    benchmark::DoNotOptimize(mirror);
}

void randomInsertFlat(benchmark::State& state) {
    std::mt19937_64 engine(1);
    std::u16string flat = text(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        flat.insert(randomOffset(engine, static_cast<Offset>(flat.size())), 1, u'x');
    }
}

void lineLookup(benchmark::State& state) {
    std::mt19937_64 engine(1);
    const Rope rope(sourceText(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(rope.line(randomOffset(engine, rope.size())));
    }
}

void lineStartLookup(benchmark::State& state) {
    std::mt19937_64 engine(1);
    const Rope rope(sourceText(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            rope.lineStart(randomOffset(engine, static_cast<Offset>(rope.lineCount() - 1))));
    }
}

void copy(benchmark::State& state) {
    const Rope rope(sourceText(state.range(0)));
    for (auto _ : state) {
        Rope copied = rope;
        benchmark::DoNotOptimize(copied);
    }
}

void flatten(benchmark::State& state) {
    const Rope rope = Rope(sourceText(state.range(0))).replaced({1000, 1000}, u"x");
    std::u16string flat(rope.size(), u' ');
    for (auto _ : state) {
        rope.copyTo(rope.fullRange(), flat.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * state.range(0) * 2);
}

/// A document that is typed unit by unit at its end; reports the memory beyond its text.
void typedMemory(benchmark::State& state) {
    double added = 0;
    for (auto _ : state) {
        const double before = heapBytes();
        Rope rope;
        for (Offset i = 0; i < state.range(0); ++i) {
            rope = rope.replaced({i, i}, i % 64 == 63 ? u"\n" : u"x");
        }
        added = heapBytes() - before - 2 * static_cast<double>(state.range(0));
    }
    state.counters["overhead%"] = 100 * added / (2 * static_cast<double>(state.range(0)));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// Creates and frees a text that shares no chunks.
void dropOwnChunks(benchmark::State& state) {
    const std::u16string_view units = sourceText(state.range(0)).units();
    for (auto _ : state) {
        state.PauseTiming();
        Rope rope = Rope().replaced({}, units);
        state.ResumeTiming();
        rope = Rope();
    }
}

constexpr std::int64_t million = 1'000'000;

// These are grouped by size, so that only one large text is in memory at a time.
BENCHMARK(typedMemory)->Arg(million)->Unit(benchmark::kMillisecond);
BENCHMARK(randomInsert)->Arg(10 * million);
BENCHMARK(randomInsertFlat)->Arg(10 * million);
BENCHMARK(open)->Arg(1024 * million)->Unit(benchmark::kMillisecond);
BENCHMARK(openMemory)->Arg(1024 * million)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(randomInsert)->Arg(1024 * million);
BENCHMARK(lineLookup)->Arg(1024 * million);
BENCHMARK(lineStartLookup)->Arg(1024 * million);
BENCHMARK(copy)->Arg(1024 * million);
BENCHMARK(flatten)->Arg(1024 * million)->Unit(benchmark::kMillisecond);
BENCHMARK(dropOwnChunks)->Arg(1024 * million)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(randomInsertFlat)->Arg(1024 * million)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

BENCHMARK_MAIN();
