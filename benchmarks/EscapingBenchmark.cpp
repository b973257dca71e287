#include "Escaping.h"
#include "GraphemeBreaker.h"

#include <benchmark/benchmark.h>
#include <string>
#include <vector>

namespace {

std::u16string repeated(std::u16string_view piece, std::size_t units) {
    std::u16string text;
    while (text.size() < units) {
        text += piece;
    }
    return text;
}

struct Sample {
    const char* name;
    std::u16string_view piece;
};

constexpr std::size_t sampleUnits = 1 << 20;

/// Prose without markup in three scripts, prose with markup, and texts designed to take long.
const Sample samples[] = {
    {"ascii", u"The quick brown fox jumps over the lazy dog, twice a day. "},
    {"spanish", u"El pingüino Wenceslao hizo kilómetros bajo exhaustiva lluvia y frío; añoraba a su niña. "},
    {"emoji", u"\U0001F468\u200D\U0001F469\u200D\U0001F467 \U0001F1EA\U0001F1F8 "
              u"\u2764\uFE0F\U0001F44D\U0001F3FD hola "},
    {"han", u"\u6F22\u5B57\u4E26\u3073\u306B\u4EEE\u540D\u3002"},
    {"markup", u"if (a < b && c > d) \"quoted\", it's fine.\n"},
    {"references", u"a &lt; b &amp;&amp; c &gt; d, &#x1F600; &nbsp; "},
    {"ampersands", u"&"},
    {"flags", u"\U0001F1EA"},
};

/// A text of huge characters: every second ampersand is followed by 2^18 combining marks.
std::u16string hugeCharacters() {
    return repeated(u"&a" + std::u16string(1 << 18, u'\u0301') + u"&" + std::u16string(1 << 18, u'\u0301') +
                        u";",
                    sampleUnits);
}

void setUnits(benchmark::State& state, std::size_t units) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * units * sizeof(char16_t)));
    state.counters["units/s"] =
        benchmark::Counter(static_cast<double>(state.iterations() * units), benchmark::Counter::kIsRate);
}

void walkForward(benchmark::State& state, const std::u16string& text) {
    for (auto _ : state) {
        std::size_t characters = 0;
        for (const std::u16string_view character : GraphemeBreaker::Characters(text)) {
            characters += character.size() > 0 ? 1 : 0;
        }
        benchmark::DoNotOptimize(characters);
    }
    setUnits(state, text.size());
}

void walkBackward(benchmark::State& state, const std::u16string& text) {
    for (auto _ : state) {
        for (std::size_t at = text.size(); at > 0;) {
            at = GraphemeBreaker::previousBoundary(text, at);
        }
    }
    setUnits(state, text.size());
}

void escapeText(benchmark::State& state, const std::u16string& text) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(Escaping::escapeText(text));
    }
    setUnits(state, text.size());
}

void escapeAttribute(benchmark::State& state, const std::u16string& text) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(Escaping::escapeAttribute(text, u'"'));
    }
    setUnits(state, text.size());
}

void unescape(benchmark::State& state, const std::u16string& text) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(Escaping::unescape(text));
    }
    setUnits(state, text.size());
}

/// The baseline of escaping and unescaping: copying the text.
void copy(benchmark::State& state, const std::u16string& text) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::u16string(text));
    }
    setUnits(state, text.size());
}

using Measurement = void (*)(benchmark::State&, const std::u16string&);

void add(const char* operation, Measurement measure, const char* sample, const std::u16string& text) {
    const std::string name = std::string(operation) + "/" + sample;
    benchmark::RegisterBenchmark(name.c_str(),
                                 [measure, text](benchmark::State& state) { measure(state, text); });
}

const bool isRegistered = [] {
    add("Escaping/copy", copy, "ascii", repeated(samples[0].piece, sampleUnits));
    const auto addAll = [](const char* sample, const std::u16string& text) {
        add("GraphemeBreaker/forward", walkForward, sample, text);
        add("Escaping/escapeText", escapeText, sample, text);
        add("Escaping/escapeAttribute", escapeAttribute, sample, text);
        add("Escaping/unescape", unescape, sample, text);
        // Each step back over a run of flags reads the whole run. No code iterates over a text in this way.
        if (std::string_view(sample) != "flags") {
            add("GraphemeBreaker/backward", walkBackward, sample, text);
        }
    };
    for (const Sample& sample : samples) {
        addAll(sample.name, repeated(sample.piece, sampleUnits));
    }
    addAll("huge", hugeCharacters());
    return true;
}();

} // namespace
