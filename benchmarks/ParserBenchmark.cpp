// Measures parsing, and what is computed from the text together with it, for texts of several shapes. Bytes
// are those of UTF-8: all texts are plain ASCII.

#include "IndentStyle.h"
#include "Lexer.h"
#include "LineIndex.h"
#include "TextShape.h"
#include "TreeParser.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t textLength = 4'000'000;

constexpr TextShape shapes[] = {
    TextShapes::tinyElements,
    TextShapes::records,
    TextShapes::attributes,
    TextShapes::prose,
    TextShapes::nested,
    {"comments", u"<r>", u"<!-- one comment of an ordinary length -->\n", u"</r>"},
    {"references", u"<r>", u"a &lt; b &amp;&amp; c &#62; d\n", u"</r>"},
};

void setThroughput(benchmark::State& state, const SourceText& text) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.units().size()));
}

void parse(benchmark::State& state, const TextShape& shape) {
    const SourceText text(shape.text(textLength));
    DocumentTree tree = TreeParser::parse(text);
    for (auto iteration : state) {
        tree = TreeParser::parse(text, {}, std::move(tree));
        benchmark::DoNotOptimize(tree.nodes.data());
    }
    setThroughput(state, text);
    state.counters["nodes"] = static_cast<double>(tree.nodes.size());
}

/// Parses without a tree to recycle, as when a document is opened.
void parseFirst(benchmark::State& state, const TextShape& shape) {
    const SourceText text(shape.text(textLength));
    for (auto iteration : state) {
        const DocumentTree tree = TreeParser::parse(text);
        benchmark::DoNotOptimize(tree.nodes.data());
    }
    setThroughput(state, text);
}

void lex(benchmark::State& state, const TextShape& shape) {
    const SourceText text(shape.text(textLength));
    for (auto iteration : state) {
        UnitIndex index;
        Lexer lexer(text.units(), index);
        std::size_t count = 0;
        while (lexer.next()) {
            ++count;
        }
        benchmark::DoNotOptimize(count);
    }
    setThroughput(state, text);
}

void lineIndex(benchmark::State& state, const TextShape& shape) {
    const SourceText text(shape.text(textLength));
    for (auto iteration : state) {
        benchmark::DoNotOptimize(LineIndex(text));
    }
    setThroughput(state, text);
}

void lineOfOffset(benchmark::State& state, const TextShape& shape) {
    const SourceText text(shape.text(textLength));
    const LineIndex index(text);
    constexpr std::uint32_t stride = 2'654'435'761;
    Offset at = 0;
    for (auto iteration : state) {
        at += stride;
        benchmark::DoNotOptimize(index.line(at % text.count()));
    }
}

void indentStyle(benchmark::State& state, const TextShape& shape) {
    constexpr int linesThatTheEditorLooksAt = 2000;
    const SourceText text(shape.text(textLength));
    for (auto iteration : state) {
        benchmark::DoNotOptimize(IndentStyle::detect(text, linesThatTheEditorLooksAt));
    }
}

} // namespace

int main(int argc, char** argv) {
    for (const TextShape& shape : shapes) {
        const auto add = [&](std::string name, void (*measure)(benchmark::State&, const TextShape&)) {
            benchmark::RegisterBenchmark((name + "/" + shape.name).c_str(), measure, shape)
                ->Unit(benchmark::kMicrosecond);
        };
        add("TreeParser", parse);
        add("TreeParser, first parse", parseFirst);
        add("Lexer", lex);
        add("LineIndex", lineIndex);
        add("LineIndex::line", lineOfOffset);
        add("IndentStyle", indentStyle);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
