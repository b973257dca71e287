// Measures the cost of a key in the source editor: the aids that search backwards from a caret at the end of
// a document of 100 million units, and texts designed to take long.

#include "TagExpander.h"
#include "TagMatcher.h"
#include "TypingAssistant.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <functional>
#include <numeric>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t documentLength = 100'000'000;

struct Shape {
    const char* name;
    std::u16string_view opening;
    std::u16string_view record; ///< Repeated until the text is long enough.
};

constexpr std::u16string_view plainRecord =
    u"  <row id=\"4711\">\n    <name>Ada Lovelace</name>\n    <year>1815</year>\n  </row>\n";

constexpr Shape documents[] = {
    {"plain", u"<table>\n", plainRecord},
    {"with a declaration", u"<?xml version=\"1.0\"?>\n<table>\n", plainRecord},
    {"comments", u"<table>\n", u"  <row id=\"4711\"/><!-- one comment of an ordinary length -->\n"},
    {"prose", u"<p>", u"It was the best of times, it was the worst of times, it was the age of wisdom. "},
    {"nested", u"", u"<level>\n"},
};

constexpr Shape hostileDocuments[] = {
    {"end tags", u"<a>", u"</b>"},       {"pairs", u"<a>", u"<b></b>"},   {"instruction ends", u"<a>", u"?>"},
    {"comment starts", u"<a>", u"<!--"}, {"declarations", u"<a>", u"<!"}, {"quotes", u"<a>", u"<b c='"},
};

std::u16string repeated(const Shape& shape, std::size_t length) {
    std::u16string text(shape.opening);
    while (text.size() < length) {
        text += shape.record;
    }
    return text;
}

/// The document of `shape`. The last one is kept, because creating it takes longer than measuring.
const SourceText& document(const Shape& shape, std::size_t length) {
    static const Shape* last = nullptr;
    static SourceText text;
    if (last != &shape) {
        last = &shape;
        text = SourceText();
        text = SourceText(repeated(shape, length));
    }
    return text;
}

void setThroughput(benchmark::State& state, std::size_t units) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * units * sizeof(char16_t)));
}

/// The baseline for searches back to the start of the text: reading all units once.
void readAll(benchmark::State& state, const Shape& shape, std::size_t length) {
    const SourceText& text = document(shape, length);
    for (auto iteration : state) {
        benchmark::DoNotOptimize(
            std::accumulate(text.units().begin(), text.units().end(), std::uint16_t{0}, std::bit_xor<>()));
    }
    setThroughput(state, text.count());
}

template <auto operation>
void atEnd(benchmark::State& state, const Shape& shape, std::size_t length) {
    const SourceText& text = document(shape, length);
    for (auto iteration : state) {
        benchmark::DoNotOptimize(operation(text.count(), text));
    }
    setThroughput(state, text.count());
}

/// Matches the start tag of the root, which is the last tag of the opening if there is an opening, with the
/// end of the text.
void matchForward(benchmark::State& state, const Shape& shape, std::size_t length) {
    const SourceText& text = document(shape, length);
    const std::size_t last = shape.opening.rfind(u'<');
    const Offset root = last == std::u16string_view::npos ? 0 : static_cast<Offset>(last);
    for (auto iteration : state) {
        benchmark::DoNotOptimize(TagMatcher::matchingCloseName(root, text));
    }
    setThroughput(state, text.count());
}

/// Matches the end tag of the root with its start tag.
void matchBackward(benchmark::State& state, const Shape& shape, std::size_t length) {
    const SourceText text(repeated(shape, length) + u"</table>");
    const Offset root = text.count() - 8;
    for (auto iteration : state) {
        benchmark::DoNotOptimize(TagMatcher::matchingOpenName(root, text));
    }
    setThroughput(state, text.count());
}

template <class Key>
void press(benchmark::State& state, const Shape& shape, std::size_t length) {
    const SourceText& text = document(shape, length);
    const SourceRange caret = SourceRange::empty(text.count());
    for (auto iteration : state) {
        benchmark::DoNotOptimize(TypingAssistant::handle(Key(), text, caret, IndentStyle::spaces(2), false));
    }
    setThroughput(state, text.count());
}

void expand(benchmark::State& state, std::u16string_view abbreviation) {
    const SourceText text(abbreviation);
    std::size_t written = 0;
    for (auto iteration : state) {
        const auto found = TagExpander::expansion(text.count(), text, u"  ");
        written += found ? found->snippet.text.size() : 0;
    }
    setThroughput(state, text.count());
    state.counters["written/s"] =
        benchmark::Counter(static_cast<double>(written), benchmark::Counter::kIsRate);
}

template <class Function>
void add(const std::string& name, Function function) {
    benchmark::RegisterBenchmark(name.c_str(), function)->Unit(benchmark::kMillisecond);
}

using Measurement = void (*)(benchmark::State&, const Shape&, std::size_t);

void addDocument(const Shape& shape, std::size_t length) {
    const auto addFor = [&](const char* operation, Measurement measure) {
        add(std::string(operation) + "/" + shape.name,
            [&shape, length, measure](benchmark::State& state) { measure(state, shape, length); });
    };
    addFor("readAll", readAll);
    addFor("context", atEnd<TagMatcher::context>);
    addFor("unclosedElement", atEnd<TagMatcher::unclosedElement>);
    addFor("matchingCloseName", matchForward);
    addFor("newline", press<TypingAssistant::Newline>);
    addFor("tab", press<TypingAssistant::Tab>);
}

void addAbbreviation(const std::string& name, const std::u16string& abbreviation) {
    add("expand/" + name, [abbreviation](benchmark::State& state) { expand(state, abbreviation); });
}

} // namespace

int main(int argc, char** argv) {
    for (const Shape& shape : documents) {
        addDocument(shape, documentLength);
    }
    add("matchingOpenName/plain",
        [](benchmark::State& state) { matchBackward(state, documents[0], documentLength); });
    for (const Shape& shape : hostileDocuments) {
        addDocument(shape, 1'000'000 * shape.record.size());
    }
    addAbbreviation("ul>li*3", u"ul>li*3");
    addAbbreviation("a*199>b*499", u"a*199>b*499");
    constexpr Shape hostileAbbreviations[] = {{"children", u"", u"a>"},
                                              {"siblings", u"", u"a+"},
                                              {"values", u"", u"a[b=>"},
                                              {"quotes", u"", u"a[b='>c[d=\">"},
                                              {"counts", u"", u"a*500>"}};
    for (const Shape& shape : hostileAbbreviations) {
        addAbbreviation(shape.name, repeated(shape, 900'000) + u"b");
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
