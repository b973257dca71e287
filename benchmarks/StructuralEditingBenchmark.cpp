// Measures printing, planning and searching. Printing should reach at least a third of the parser's speed,
// measured in the same run on the same text. Planning should take less than 20 ms in addition to resolving
// the paths, in a document of 100 million units. Bytes are those of UTF-8: all texts are plain ASCII.

#include "MutationPlanner.h"
#include "NodeSearch.h"
#include "PrettyPrinter.h"
#include "TextShape.h"
#include "TreeParser.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace {

using Placement = TreeMutation::Placement;

constexpr TextShape minifiedRecords{"minified records", u"<?xml version=\"1.0\"?>\n<table>",
                                    u"<row id=\"4711\"><name>Ada Lovelace</name><year>1815</year></row>",
                                    u"</table>"};
constexpr TextShape oneLineOfRecords{"one line of records", u"<table>", minifiedRecords.record, u"</table>"};

constexpr TextShape shapes[] = {
    TextShapes::tinyElements, TextShapes::records, minifiedRecords,    oneLineOfRecords,
    TextShapes::attributes,   TextShapes::prose,   TextShapes::nested,
};

DocumentTree treeOf(const TextShape& shape, std::size_t units) {
    return TreeParser::parse(SourceText(shape.text(units)));
}

void setThroughput(benchmark::State& state, const DocumentTree& tree) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * tree.text.count()));
}

constexpr std::size_t printedUnits = 4'000'000;

void parse(benchmark::State& state, const TextShape& shape) {
    DocumentTree tree = treeOf(shape, printedUnits);
    const SourceText text = tree.text;
    for (auto iteration : state) {
        tree = TreeParser::parse(text, {}, std::move(tree));
        benchmark::DoNotOptimize(tree.nodes.data());
    }
    setThroughput(state, tree);
}

void format(benchmark::State& state, const TextShape& shape) {
    const DocumentTree tree = treeOf(shape, printedUnits);
    for (auto iteration : state) {
        benchmark::DoNotOptimize(PrettyPrinter::format(tree, IndentStyle::spaces(2)).replacement.data());
    }
    setThroughput(state, tree);
}

void minify(benchmark::State& state, const TextShape& shape) {
    const DocumentTree tree = treeOf(shape, printedUnits);
    for (auto iteration : state) {
        benchmark::DoNotOptimize(PrettyPrinter::minify(tree).replacement.data());
    }
    setThroughput(state, tree);
}

void search(benchmark::State& state, const TextShape& shape, std::u16string_view query) {
    const DocumentTree tree = treeOf(shape, printedUnits);
    for (auto iteration : state) {
        benchmark::DoNotOptimize(NodeSearch::matches(query, tree).size());
    }
    setThroughput(state, tree);
}

constexpr std::size_t plannedUnits = 100'000'000;

/// The large document of a shape. Only one is kept at a time.
const DocumentTree& largeTree(const TextShape& shape) {
    static const TextShape* kept = nullptr;
    static DocumentTree tree;
    if (kept != &shape) {
        tree = {};
        tree = treeOf(shape, plannedUnits);
        kept = &shape;
    }
    return tree;
}

/// The path of the last but one row of the table.
NodePath lateRow(const DocumentTree& tree) {
    NodePath path = tree.path(*tree.rootElement());
    path.indices.push_back(tree[*tree.rootElement()].childCount - 2);
    return path;
}

void resolve(benchmark::State& state, const TextShape& shape) {
    const DocumentTree& tree = largeTree(shape);
    const NodePath path = lateRow(tree);
    for (auto iteration : state) {
        benchmark::DoNotOptimize(tree.resolve(path));
    }
}

using MakeMutation = TreeMutation (*)(const NodePath& root, const NodePath& row);

void plan(benchmark::State& state, const TextShape& shape, MakeMutation make) {
    const DocumentTree& tree = largeTree(shape);
    const TreeMutation mutation = make(tree.path(*tree.rootElement()), lateRow(tree));
    for (auto iteration : state) {
        benchmark::DoNotOptimize(MutationPlanner::plan(mutation, tree, IndentStyle::spaces(2)));
    }
}

struct PlannedMutation {
    const char* name;
    MakeMutation make;
};

const PlannedMutation mutations[] = {
    {"rename a row",
     [](const NodePath&, const NodePath& row) -> TreeMutation { return TreeMutation::Rename{row, u"r"}; }},
    {"insert into the table",
     [](const NodePath& root, const NodePath&) -> TreeMutation {
         return TreeMutation::InsertElement{u"row", root, Placement::lastChild};
     }},
    {"insert into a row",
     [](const NodePath&, const NodePath& row) -> TreeMutation {
         return TreeMutation::InsertElement{u"row", row, Placement::firstChild};
     }},
    {"delete a row",
     [](const NodePath&, const NodePath& row) -> TreeMutation { return TreeMutation::Delete{row}; }},
    {"duplicate a row",
     [](const NodePath&, const NodePath& row) -> TreeMutation { return TreeMutation::Duplicate{row}; }},
    {"wrap a row",
     [](const NodePath&, const NodePath& row) -> TreeMutation { return TreeMutation::Wrap{row, u"rows"}; }},
    {"move a row into the first",
     [](const NodePath& root, const NodePath& row) -> TreeMutation {
         NodePath target = root;
         target.indices.push_back(0);
         return TreeMutation::Move{row, target, Placement::firstChild};
     }},
    {"move the first row to the end",
     [](const NodePath& root, const NodePath& row) -> TreeMutation {
         NodePath moved = root;
         moved.indices.push_back(0);
         return TreeMutation::Move{moved, row, Placement::after};
     }},
};

template <class Measurement>
void add(const std::string& name, Measurement measurement) {
    benchmark::RegisterBenchmark(name.c_str(), measurement)->Unit(benchmark::kMillisecond);
}

const bool isRegistered = [] {
    for (const TextShape& shape : shapes) {
        const std::string name = std::string("/") + shape.name;
        add("parse" + name, [&shape](benchmark::State& state) { parse(state, shape); });
        add("format" + name, [&shape](benchmark::State& state) { format(state, shape); });
        add("minify" + name, [&shape](benchmark::State& state) { minify(state, shape); });
        add("search, absent" + name, [&shape](benchmark::State& state) { search(state, shape, u"zebra"); });
        add("search, accents" + name, [&shape](benchmark::State& state) { search(state, shape, u"élove"); });
    }
    for (const TextShape* shape : {&TextShapes::records, &minifiedRecords, &oneLineOfRecords}) {
        const std::string name = std::string("/") + shape->name;
        add("resolve a row" + name, [shape](benchmark::State& state) { resolve(state, *shape); });
        for (const PlannedMutation& mutation : mutations) {
            add(mutation.name + name,
                [shape, &mutation](benchmark::State& state) { plan(state, *shape, mutation.make); });
        }
    }
    return true;
}();

} // namespace
