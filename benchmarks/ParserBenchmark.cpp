// Parsing and what is computed beside it, by the shape of the text. Bytes are those of UTF-8: all texts are
// plain ASCII.

#include "IndentStyle.h"
#include "Lexer.h"
#include "LineIndex.h"
#include "TreeParser.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t textLength = 4'000'000;

struct Shape {
    const char* name;
    std::u16string_view opening;
    std::u16string_view record; ///< Repeated until the text is long enough.
    std::u16string_view closing;
};

constexpr Shape shapes[] = {
    {"tiny elements", u"<r>", u"<a/>", u"</r>"},
    {"records", u"<table>\n",
     u"  <row id=\"4711\">\n    <name>Ada Lovelace</name>\n    <year>1815</year>\n  </row>\n", u"</table>\n"},
    {"attributes", u"<svg>\n",
     u"  <rect x=\"10\" y=\"20\" width=\"300\" height=\"400\" rx=\"5\" class=\"box wide\" id=\"r1\"/>\n",
     u"</svg>\n"},
    {"prose", u"<book>\n",
     u"<para>It was the best of times, it was the worst of times, it was the age of <em>wisdom</em>, it was "
     u"the age of foolishness, it was the epoch of belief &amp; it was the epoch of incredulity, it was the "
     u"season of Light, it was the season of Darkness.</para>\n",
     u"</book>\n"},
    {"nested", u"", u"<level>\n", u""},
    {"comments", u"<r>", u"<!-- one comment of an ordinary length -->\n", u"</r>"},
    {"references", u"<r>", u"a &lt; b &amp;&amp; c &#62; d\n", u"</r>"},
};

std::u16string textOf(const Shape& shape) {
    std::u16string text(shape.opening);
    while (text.size() < textLength) {
        text += shape.record;
    }
    return text += shape.closing;
}

void setThroughput(benchmark::State& state, const SourceText& text) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.units().size()));
}

void parse(benchmark::State& state, const Shape& shape) {
    const SourceText text(textOf(shape));
    DocumentTree tree = TreeParser::parse(text);
    for (auto iteration : state) {
        tree = TreeParser::parse(text, {}, std::move(tree));
        benchmark::DoNotOptimize(tree.nodes.data());
    }
    setThroughput(state, text);
    state.counters["nodes"] = static_cast<double>(tree.nodes.size());
}

/// Without a tree to recycle, as when a document opens.
void parseFirst(benchmark::State& state, const Shape& shape) {
    const SourceText text(textOf(shape));
    for (auto iteration : state) {
        const DocumentTree tree = TreeParser::parse(text);
        benchmark::DoNotOptimize(tree.nodes.data());
    }
    setThroughput(state, text);
}

void lex(benchmark::State& state, const Shape& shape) {
    const SourceText text(textOf(shape));
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

void lineIndex(benchmark::State& state, const Shape& shape) {
    const SourceText text(textOf(shape));
    for (auto iteration : state) {
        benchmark::DoNotOptimize(LineIndex(text));
    }
    setThroughput(state, text);
}

void lineOfOffset(benchmark::State& state, const Shape& shape) {
    const SourceText text(textOf(shape));
    const LineIndex index(text);
    constexpr std::uint32_t stride = 2'654'435'761;
    Offset at = 0;
    for (auto iteration : state) {
        at += stride;
        benchmark::DoNotOptimize(index.line(at % text.count()));
    }
}

void indentStyle(benchmark::State& state, const Shape& shape) {
    constexpr int linesThatTheEditorLooksAt = 2000;
    const SourceText text(textOf(shape));
    for (auto iteration : state) {
        benchmark::DoNotOptimize(IndentStyle::detect(text, linesThatTheEditorLooksAt));
    }
}

} // namespace

int main(int argc, char** argv) {
    for (const Shape& shape : shapes) {
        const auto add = [&](std::string name, void (*measure)(benchmark::State&, const Shape&)) {
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
