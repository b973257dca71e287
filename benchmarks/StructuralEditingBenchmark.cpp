// Printing, planning and searching. Printing is to run at no less than a third of the parser's speed,
// measured beside it on the same text; planning is to take less than 20 ms on top of resolving the paths of a
// document of 100 million units. Bytes are those of UTF-8: all texts are plain ASCII.

#include "MutationPlanner.h"
#include "NodeSearch.h"
#include "PrettyPrinter.h"
#include "TreeParser.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace {

using Placement = TreeMutation::Placement;

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
    {"minified records", u"<?xml version=\"1.0\"?>\n<table>",
     u"<row id=\"4711\"><name>Ada Lovelace</name><year>1815</year></row>", u"</table>"},
    {"one line of records", u"<table>", u"<row id=\"4711\"><name>Ada Lovelace</name><year>1815</year></row>",
     u"</table>"},
    {"attributes", u"<svg>\n",
     u"  <rect x=\"10\" y=\"20\" width=\"300\" height=\"400\" rx=\"5\" class=\"box wide\" id=\"r1\"/>\n",
     u"</svg>\n"},
    {"prose", u"<book>\n",
     u"<para>It was the best of times, it was the worst of times, it was the age of <em>wisdom</em>, it was "
     u"the age of foolishness, it was the epoch of belief &amp; it was the epoch of incredulity, it was the "
     u"season of Light, it was the season of Darkness.</para>\n",
     u"</book>\n"},
    {"nested", u"", u"<level>\n", u""},
};
constexpr const Shape& records = shapes[1];
constexpr const Shape& minifiedRecords = shapes[2];
constexpr const Shape& oneLineOfRecords = shapes[3];

DocumentTree treeOf(const Shape& shape, std::size_t units) {
    std::u16string text(shape.opening);
    while (text.size() < units) {
        text += shape.record;
    }
    return TreeParser::parse(SourceText(text += shape.closing));
}

void setThroughput(benchmark::State& state, const DocumentTree& tree) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * tree.text.count()));
}

constexpr std::size_t printedUnits = 4'000'000;

void parse(benchmark::State& state, const Shape& shape) {
    DocumentTree tree = treeOf(shape, printedUnits);
    const SourceText text = tree.text;
    for (auto iteration : state) {
        tree = TreeParser::parse(text, {}, std::move(tree));
        benchmark::DoNotOptimize(tree.nodes.data());
    }
    setThroughput(state, tree);
}

void format(benchmark::State& state, const Shape& shape) {
    const DocumentTree tree = treeOf(shape, printedUnits);
    for (auto iteration : state) {
        benchmark::DoNotOptimize(PrettyPrinter::format(tree, IndentStyle::spaces(2)).replacement.data());
    }
    setThroughput(state, tree);
}

void minify(benchmark::State& state, const Shape& shape) {
    const DocumentTree tree = treeOf(shape, printedUnits);
    for (auto iteration : state) {
        benchmark::DoNotOptimize(PrettyPrinter::minify(tree).replacement.data());
    }
    setThroughput(state, tree);
}

void search(benchmark::State& state, const Shape& shape, std::u16string_view query) {
    const DocumentTree tree = treeOf(shape, printedUnits);
    for (auto iteration : state) {
        benchmark::DoNotOptimize(NodeSearch::matches(query, tree).size());
    }
    setThroughput(state, tree);
}

constexpr std::size_t plannedUnits = 100'000'000;

/// The large document of a shape; only one is kept at a time.
const DocumentTree& largeTree(const Shape& shape) {
    static const Shape* kept = nullptr;
    static DocumentTree tree;
    if (kept != &shape) {
        tree = {};
        tree = treeOf(shape, plannedUnits);
        kept = &shape;
    }
    return tree;
}

/// The last row but one of the table.
NodePath lateRow(const DocumentTree& tree) {
    NodePath path = tree.path(*tree.rootElement());
    path.indices.push_back(tree[*tree.rootElement()].childCount - 2);
    return path;
}

void resolve(benchmark::State& state, const Shape& shape) {
    const DocumentTree& tree = largeTree(shape);
    const NodePath path = lateRow(tree);
    for (auto iteration : state) {
        benchmark::DoNotOptimize(tree.resolve(path));
    }
}

using MakeMutation = TreeMutation (*)(const NodePath& root, const NodePath& row);

void plan(benchmark::State& state, const Shape& shape, MakeMutation make) {
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
    for (const Shape& shape : shapes) {
        const std::string name = std::string("/") + shape.name;
        add("parse" + name, [&shape](benchmark::State& state) { parse(state, shape); });
        add("format" + name, [&shape](benchmark::State& state) { format(state, shape); });
        add("minify" + name, [&shape](benchmark::State& state) { minify(state, shape); });
        add("search, absent" + name, [&shape](benchmark::State& state) { search(state, shape, u"zebra"); });
        add("search, accents" + name, [&shape](benchmark::State& state) { search(state, shape, u"élove"); });
    }
    for (const Shape* shape : {&records, &minifiedRecords, &oneLineOfRecords}) {
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
