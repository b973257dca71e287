// What the checks of the standards take beside the parse: each document is parsed and checked in turn, round
// after round, on one core, the tree's memory warm. The ratio of the best rounds is what the budget speaks
// of.
//
// usage: standards_benchmark [--rounds N] [FILE…]

#include "BenchmarkDocument.h"
#include "Namespaces.h"
#include "StandardsCheck.h"
#include "TextShape.h"
#include "TreeParser.h"
#include "WellFormedness.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr std::size_t textLength = 16'000'000;

constexpr TextShape prefixed{
    "prefixed", u"<x:feed xmlns:x=\"urn:x\" xmlns:y=\"urn:y\">\n",
    u"  <x:entry y:id=\"4711\" x:kind=\"b\">\n    <y:title>Ada Lovelace</y:title>\n  </x:entry>\n",
    u"</x:feed>\n"};
constexpr TextShape references{"references", u"<r>", u"a &lt; b &amp;&amp; c &#62; d\n", u"</r>"};
constexpr TextShape japanese{"japanese", u"<本>\n",
                             u"<段落 種類=\"一\">吾輩は猫である。名前はまだ無い。どこで生れたか。</段落>\n",
                             u"</本>\n"};
constexpr TextShape shapes[] = {TextShapes::records,
                                TextShapes::attributes,
                                TextShapes::prose,
                                TextShapes::tinyElements,
                                prefixed,
                                references,
                                japanese};

double milliseconds(auto&& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

void measure(const std::string& name, const SourceText& text, int rounds) {
    const DoctypeReading reading = DoctypeReading::of(text);
    DocumentTree tree = TreeParser::parse(text, {}, {}, reading);
    double parse = 1e9;
    double check = 1e9;
    double wellFormedness = 1e9;
    double namespaces = 1e9;
    std::size_t violations = 0;
    for (int round = 0; round < rounds; ++round) {
        parse = std::min(parse,
                         milliseconds([&] { tree = TreeParser::parse(text, {}, std::move(tree), reading); }));
        check = std::min(check,
                         milliseconds([&] { violations = StandardsCheck::check(tree).violations.size(); }));
        wellFormedness = std::min(wellFormedness, milliseconds([&] { WellFormedness::check(tree); }));
        namespaces = std::min(namespaces, milliseconds([&] { Namespaces::check(tree); }));
    }
    std::printf("%-28s %10u %8.2f %8.2f %8.2f %8.2f %8.2f %8zu\n", name.c_str(), text.count(), parse, check,
                check / parse, wellFormedness / parse, namespaces / parse, violations);
}

} // namespace

int main(int argc, char** argv) {
    int rounds = 15;
    std::vector<std::string> files;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--rounds" && i + 1 < argc) {
            rounds = std::max(1, std::atoi(argv[++i]));
        } else {
            files.push_back(argument);
        }
    }
    std::printf("%-28s %10s %8s %8s %8s %8s %8s %8s\n", "document", "units", "parse/ms", "check/ms", "ratio",
                "of XML", "of names", "found");
    if (files.empty()) {
        for (const TextShape& shape : shapes) {
            measure(shape.name, SourceText(shape.text(textLength)), rounds);
        }
    }
    for (const std::string& file : files) {
        if (const auto document = loadDocument(file)) {
            measure(file.substr(file.find_last_of('/') + 1), document->text, rounds);
        }
    }
    return EXIT_SUCCESS;
}
