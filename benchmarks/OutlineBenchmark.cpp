// Measures the outline with a million visible rows: how long it takes to create the rows, to update them, to
// read them, and to paint frames of the list.

#include "TreeOutlineView.h"
#include "TreeParser.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QScrollBar>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t wantedRows = 1'000'000;

struct Shape {
    const char* name;
    std::u16string_view opening;
    std::u16string_view record; ///< Repeated until there are enough rows.
    std::size_t rowsPerRecord;
};

constexpr Shape shapes[] = {
    {"flat", u"<table>", u"<row id='4711'/>", 1},
    {"records", u"<table>", u"<row><name>Ada Lovelace</name><year>1815</year></row>", 5},
    {"deep", u"", u"<level>", 1},
};

/// A document whose nodes are all expanded.
struct Document {
    DocumentTree tree;
    TreeOutline outline;
    TreeOutline::Rows rows;

    explicit Document(const Shape& shape) : tree(parse(shape)) {
        expandAll();
        rows = outline.rows(tree);
    }

private:
    static DocumentTree parse(const Shape& shape) {
        std::u16string text(shape.opening);
        for (std::size_t rows = 0; rows < wantedRows; rows += shape.rowsPerRecord) {
            text += shape.record;
        }
        return TreeParser::parse(SourceText(text));
    }

    void expandAll() {
        NodePath path;
        std::vector<NodeID> around{NodeID::document()};
        for (NodeID node{1}; node.raw < tree.nodes.size(); ++node.raw) {
            const bool isFirstChild = around.back() == tree[node].parent;
            if (isFirstChild) {
                path.indices.push_back(0);
            } else {
                for (; around[around.size() - 2] != tree[node].parent; around.pop_back()) {
                    path.indices.pop_back();
                }
                around.pop_back();
                ++path.indices.back();
            }
            around.push_back(node);
            if (isFirstChild && !tree[node].hasChildren()) {
                outline.expanded.insertAncestors(path);
            }
        }
    }
};

/// The document of `shape`. The last one is kept, because creating it takes longer than measuring.
Document& document(const Shape& shape) {
    static const Shape* last = nullptr;
    static std::unique_ptr<Document> document;
    if (last != &shape) {
        last = &shape;
        document.reset();
        document = std::make_unique<Document>(shape);
    }
    return *document;
}

void makeRows(benchmark::State& state, const Shape& shape) {
    Document& made = document(shape);
    for (auto iteration : state) {
        made.rows = made.outline.rows(made.tree, std::move(made.rows));
    }
    state.counters["rows"] = static_cast<double>(made.rows.size());
}

void makeRowsAnew(benchmark::State& state, const Shape& shape) {
    const Document& made = document(shape);
    for (auto iteration : state) {
        benchmark::DoNotOptimize(made.outline.rows(made.tree));
    }
}

void makeFilteredRows(benchmark::State& state, const Shape& shape) {
    const Document& made = document(shape);
    std::vector<NodeID> matches;
    for (NodeID node{1}; node.raw < made.tree.nodes.size(); ++node.raw) {
        matches.push_back(node);
    }
    TreeOutline::Rows rows;
    for (auto iteration : state) {
        rows = TreeOutline::rows(made.tree, matches, std::move(rows));
    }
    state.counters["rows"] = static_cast<double>(rows.size());
}

/// Collapses and expands the first row with children after the root. It is near the top, so nearly all rows
/// move.
void toggleRow(benchmark::State& state, const Shape& shape) {
    Document& made = document(shape);
    for (auto iteration : state) {
        made.outline.collapse(1, made.rows, made.tree);
        made.outline.expand(1, made.rows, made.tree);
    }
}

void toggleRoot(benchmark::State& state, const Shape& shape) {
    Document& made = document(shape);
    for (auto iteration : state) {
        made.outline.collapse(0, made.rows, made.tree);
        made.outline.expand(0, made.rows, made.tree);
    }
}

void pathOfLastRow(benchmark::State& state, const Shape& shape) {
    const Document& made = document(shape);
    for (auto iteration : state) {
        benchmark::DoNotOptimize(made.rows.path(made.rows.size() - 1, made.tree));
    }
}

void rowOfLastPath(benchmark::State& state, const Shape& shape) {
    const Document& made = document(shape);
    const NodePath path = made.rows.path(made.rows.size() - 1, made.tree);
    for (auto iteration : state) {
        benchmark::DoNotOptimize(made.rows.row(path, made.tree));
    }
}

void defaultExpansion(benchmark::State& state, const Shape& shape) {
    const Document& made = document(shape);
    for (auto iteration : state) {
        benchmark::DoNotOptimize(TreeOutline::defaultExpansion(made.tree));
    }
}

/// A visible list of the size of a large pane.
class ShownView {
public:
    explicit ShownView(Document& shown) {
        view.setContents({&shown.tree, &shown.rows, [](NodeID node) { return node.raw % 10 == 0; }});
        view.resize(600, 1000);
        view.show();
        QApplication::processEvents();
    }

    TreeOutlineView view;
};

void paintNextPage(benchmark::State& state, const Shape& shape) {
    ShownView shown(document(shape));
    QScrollBar& bar = *shown.view.verticalScrollBar();
    for (auto iteration : state) {
        bar.setValue(bar.value() < bar.maximum() - 10'000 ? bar.value() + 997 : 0);
        shown.view.viewport()->repaint();
    }
}

void selectAndPaint(benchmark::State& state, const Shape& shape) {
    ShownView shown(document(shape));
    std::size_t row = 0;
    for (auto iteration : state) {
        row = (row + 377'777) % shown.view.rowCount();
        shown.view.choose(row);
        benchmark::DoNotOptimize(document(shape).rows.path(row, document(shape).tree));
        shown.view.viewport()->repaint();
    }
}

void toggleAndPaint(benchmark::State& state, const Shape& shape) {
    Document& made = document(shape);
    ShownView shown(made);
    const auto show = [&] { shown.view.setContents({&made.tree, &made.rows, {}}); };
    QObject::connect(&shown.view, &TreeOutlineView::collapseRequested, &shown.view, [&](std::size_t row) {
        made.outline.collapse(row, made.rows, made.tree);
        show();
    });
    QObject::connect(&shown.view, &TreeOutlineView::expansionRequested, &shown.view, [&](std::size_t row) {
        made.outline.expand(row, made.rows, made.tree);
        show();
    });
    for (auto iteration : state) {
        shown.view.toggle(1);
        shown.view.viewport()->repaint();
    }
    if (!made.rows[1].isExpanded) {
        shown.view.toggle(1);
    }
}

void typeAhead(benchmark::State& state, const Shape& shape) {
    const Document& made = document(shape);
    for (auto iteration : state) {
        TreeTypeAhead typed;
        benchmark::DoNotOptimize(typed.row("z", 0, made.rows, made.tree));
    }
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    for (const Shape& shape : shapes) {
        const auto add = [&shape](const char* name, auto* measure) {
            benchmark::RegisterBenchmark(
                (std::string(name) + '/' + shape.name).c_str(),
                [&shape, measure](benchmark::State& state) { measure(state, shape); })
                ->Unit(benchmark::kMillisecond);
        };
        add("makeRows", makeRows);
        add("makeRowsAnew", makeRowsAnew);
        add("makeFilteredRows", makeFilteredRows);
        add("toggleRow", toggleRow);
        add("toggleRoot", toggleRoot);
        add("pathOfLastRow", pathOfLastRow);
        add("rowOfLastPath", rowOfLastPath);
        add("defaultExpansion", defaultExpansion);
        add("paintNextPage", paintNextPage);
        add("selectAndPaint", selectAndPaint);
        add("toggleAndPaint", toggleAndPaint);
        add("typeAhead", typeAhead);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
