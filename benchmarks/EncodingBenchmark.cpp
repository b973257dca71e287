#include "Converter.h"
#include "LargeArray.h"
#include "StringEncoding.h"
#include "TextEncoder.h"
#include "TextEncodingDetector.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <string>

namespace {

constexpr std::size_t units = 32'000'000;

struct Kind {
    const char* name;
    std::u16string_view line;
};
constexpr Kind ascii{"ascii",
                     u"    <item id=\"4711\" class=\"plain\">The quick brown fox jumps over it</item>\r\n"};
constexpr Kind spanish{
    "spanish", u"    <párrafo>El niño comió maíz en la montaña y después salió de allí</párrafo>\r\n"};
constexpr Kind japanese{
    "japanese", u"    <段落>吾輩は猫である。名前はまだ無い。どこで生れたかとんと見当がつかぬ。</段落>\r\n"};

const SourceText& text(const Kind& kind) {
    static std::map<std::string, SourceText> texts;
    SourceText& text = texts[kind.name];
    if (text.count() == 0) {
        std::u16string string;
        string.reserve(units + kind.line.size());
        while (string.size() < units) {
            string += kind.line;
        }
        text = SourceText(string);
    }
    return text;
}

StringEncoding encoding(const char* name) { return StringEncoding::named(name).value(); }

/// The text in pieces as large as the chunks of a rope.
std::vector<std::u16string_view> stretches(const SourceText& text) {
    constexpr std::size_t length = 2048;
    std::vector<std::u16string_view> stretches;
    for (std::size_t at = 0; at < text.count(); at += length) {
        stretches.push_back(text.units().substr(at, length));
    }
    return stretches;
}

void setRate(benchmark::State& state, std::size_t bytes) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

void decode(benchmark::State& state, const Kind& kind, const char* name) {
    const std::string bytes = encoded(stretches(text(kind)), encoding(name)).value();
    for (auto _ : state) {
        benchmark::DoNotOptimize(encoding(name).decode(bytesOf(bytes)));
    }
    setRate(state, bytes.size());
}

/// The baseline: the converter of ICU alone, into fresh memory, in one call.
void decodeByICU(benchmark::State& state, const Kind& kind, const char* name) {
    const std::string bytes = encoded(stretches(text(kind)), encoding(name)).value();
    for (auto _ : state) {
        const Converter converter = openConverter(name);
        const auto storage = makeLargeArray<char16_t>(bytes.size());
        char16_t* target = storage.get();
        const char* source = bytes.data();
        UErrorCode error = U_ZERO_ERROR;
        ucnv_toUnicode(converter.get(), &target, target + bytes.size(), &source, source + bytes.size(),
                       nullptr, true, &error);
        benchmark::DoNotOptimize(target);
    }
    setRate(state, bytes.size());
}

/// Every byte of the output is read, as when it is written to a file.
void encode(benchmark::State& state, const Kind& kind, const char* name) {
    const auto parts = stretches(text(kind));
    std::size_t size = 0;
    for (auto _ : state) {
        size = 0;
        TextEncoder encoder(encoding(name), [&size](Bytes bytes) {
            benchmark::DoNotOptimize(bytes.data());
            size += bytes.size();
        });
        for (const std::u16string_view part : parts) {
            benchmark::DoNotOptimize(encoder.append(part));
        }
        benchmark::DoNotOptimize(encoder.finish());
    }
    setRate(state, size);
}

void encodeByICU(benchmark::State& state, const Kind& kind, const char* name) {
    const auto parts = stretches(text(kind));
    std::string buffer(16384 * 3, '\0');
    std::size_t size = 0;
    for (auto _ : state) {
        size = 0;
        const Converter converter = openConverter(name);
        for (const std::u16string_view part : parts) {
            char* target = buffer.data();
            const char16_t* source = part.data();
            UErrorCode error = U_ZERO_ERROR;
            ucnv_fromUnicode(converter.get(), &target, target + buffer.size(), &source, source + part.size(),
                             nullptr, false, &error);
            size += target - buffer.data();
        }
    }
    setRate(state, size);
}

void detect(benchmark::State& state, const Kind& kind) {
    const std::string bytes = encoded(stretches(text(kind)), StringEncoding::utf8()).value();
    for (auto _ : state) {
        benchmark::DoNotOptimize(TextEncodingDetector::detect(bytesOf(bytes)));
    }
    setRate(state, bytes.size());
}

void add(const Kind& kind, const char* name) {
    const auto add = [&](const char* what, auto* function) {
        benchmark::RegisterBenchmark((std::string(what) + '/' + kind.name + '/' + name).c_str(), function,
                                     kind, name)
            ->Unit(benchmark::kMillisecond);
    };
    add("decode", decode);
    add("decodeByICU", decodeByICU);
    add("encode", encode);
    add("encodeByICU", encodeByICU);
}

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    for (const char* const name : {"UTF-8", "UTF-16LE", "UTF-16BE", "ISO-8859-1", "Shift_JIS"}) {
        add(ascii, name);
    }
    for (const char* const name : {"UTF-8", "UTF-16LE", "ISO-8859-1", "windows-1252"}) {
        add(spanish, name);
    }
    for (const char* const name : {"UTF-8", "UTF-16LE", "Shift_JIS", "EUC-JP", "gb18030"}) {
        add(japanese, name);
    }
    for (const Kind* const kind : {&ascii, &spanish, &japanese}) {
        benchmark::RegisterBenchmark((std::string("detect/") + kind->name).c_str(), detect, *kind)
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::RunSpecifiedBenchmarks();
}
