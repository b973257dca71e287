// Measures colouring during typing and scrolling: a run of the highlighter over the part in the middle of a
// large document that a view of 1600 by 1000 pixels shows. The budget is 3 ms.

#include "SyntaxHighlighter.h"
#include "SystemFont.h"
#include "TextBuffer.h"
#include "TextShape.h"
#include "TextView.h"
#include "TreeParser.h"

#include <QApplication>

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

namespace {

constexpr std::size_t documentLength = 100'000'000;
constexpr std::size_t longLineLength = 50'000'000;

constexpr TextShape oneLine{
    "one line", u"<svg>", u"<rect x=\"10\" y=\"20\" width=\"300\" class=\"box wide\" id=\"r1\"/>", u"</svg>"};
constexpr TextShape farAbove{"a comment that began far above", u"<r><!--",
                             u"\nsome words <b>of</b> a comment", u"--></r>"};

/// Lines of 30,000 units, the longest that are coloured completely.
std::u16string longLines(std::size_t units) {
    std::u16string line;
    while (line.size() < 30'000) {
        line += oneLine.record;
    }
    line += u'\n';
    std::u16string text(u"<svg>\n");
    while (text.size() < units) {
        text += line;
    }
    return text + u"</svg>\n";
}

/// A document in a view, scrolled to the middle.
struct Desk {
    SourceText text;
    DocumentTree tree;
    std::shared_ptr<TextMirror> mirror;
    TextBuffer buffer;
    TextView view;

    explicit Desk(std::u16string units)
        : text(std::move(units)), tree(TreeParser::parse(text)),
          mirror(std::make_shared<TextMirror>(Rope(text))), buffer(Rope(text), mirror) {
        view.setFont(SystemFont::monospaced());
        view.resize(1600, 1000);
        view.setHistory(&buffer.history());
        view.show();
        view.scrollToVisible(SourceRange::empty(text.count() / 2));
    }
    ~Desk() { view.setHistory(nullptr); }

    Offset visibleUnits() {
        Offset count = 0;
        for (const SourceRange stretch : view.visibleStretches()) {
            count += stretch.length();
        }
        return count;
    }
};

void runs(benchmark::State& state, Desk& desk) {
    const auto stretches = desk.view.visibleStretches();
    for (auto iteration : state) {
        benchmark::DoNotOptimize(SyntaxHighlighter::runs(desk.buffer.text(), stretches, &desk.tree));
    }
    state.counters["units"] = desk.visibleUnits();
}

void highlight(benchmark::State& state, Desk& desk) {
    for (auto iteration : state) {
        SyntaxHighlighter::highlight(desk.view, desk.buffer, &desk.tree);
    }
    state.counters["units"] = desk.visibleUnits();
}

/// Each run colours a part that has not been coloured before.
void highlightAfterScroll(benchmark::State& state, Desk& desk) {
    const Offset count = desk.text.count();
    Offset at = count / 3;
    for (auto iteration : state) {
        state.PauseTiming();
        at = (at + 1'234'567) % count;
        desk.view.scrollToVisible(SourceRange::empty(at));
        state.ResumeTiming();
        SyntaxHighlighter::highlight(desk.view, desk.buffer, &desk.tree);
    }
}

void add(const std::string& name, std::u16string (*text)()) {
    const auto measure = [&](const char* what, void (*operation)(benchmark::State&, Desk&)) {
        benchmark::RegisterBenchmark((std::string(what) + "/" + name).c_str(), [text, operation](
                                                                                   benchmark::State& state) {
            Desk desk(text());
            operation(state, desk);
        })->Unit(benchmark::kMicrosecond);
    };
    measure("runs", runs);
    measure("highlight", highlight);
    measure("highlightAfterScroll", highlightAfterScroll);
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    add("records", [] { return TextShapes::records.text(documentLength); });
    add("attributes", [] { return TextShapes::attributes.text(documentLength); });
    add("prose", [] { return TextShapes::prose.text(documentLength); });
    add("one line", [] { return oneLine.text(longLineLength); });
    add("lines of 30,000 units", [] { return longLines(documentLength / 10); });
    // From the middle of the comment, its start is only just near enough to be found.
    add("a long comment", [] { return farAbove.text(2 * SyntaxHighlighter::longestLookBack - 10'000); });
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
