// Measures the layout of the text view: a window of 60 lines of 160 units in 30 colours each, and typing,
// scrolling and jumping in single lines of 50 million units. Paints into an image.

#include "TextLayout.h"

#include <QApplication>
#include <QFontDatabase>
#include <QImage>
#include <QPainter>
#include <QPalette>

#include <benchmark/benchmark.h>

#include <string>

namespace {

constexpr int lineCount = 60;
constexpr Offset lineUnits = 160;
constexpr Offset longUnits = 50'000'000;

QFont font() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPixelSize(14);
    return font;
}

std::u16string repeated(std::u16string_view record, std::size_t units) {
    std::u16string text;
    text.reserve(units + record.size());
    while (text.size() < units) {
        text += record;
    }
    text.resize(units);
    return text;
}

struct Window {
    TextLayout layout;
    QImage image{1400, 1200, QImage::Format_RGB32};

    explicit Window(const Rope& text) {
        layout.setFont(font());
        layout.setText(text);
    }

    void paint(double left = 0) {
        QPainter painter(&image);
        painter.fillRect(image.rect(), Qt::white);
        const std::size_t lines = std::min<std::size_t>(layout.text().lineCount(), lineCount);
        for (std::size_t line = 0; line < lines; ++line) {
            const QPointF origin(-left, double(line) * layout.lineHeight());
            layout.draw(painter, line, origin, left, left + image.width(), {}, QPalette());
        }
    }

    void type(Offset at, std::u16string_view units) {
        layout.edit(layout.text().replaced(SourceRange::empty(at), units),
                    SourceRange::at(at, std::int64_t(units.size())), std::int64_t(units.size()));
    }

    void color(std::size_t line, int shift) {
        const Offset start = layout.text().lineStart(line);
        for (Offset run = 0; run < 30; ++run) {
            const int hue = (int(run) + shift) % 5 * 60;
            layout.setTemporaryAttributes(SourceRange::at(start + run * 5, 4),
                                          {QColor::fromHsv(hue, 255, 180)});
        }
    }
};

Rope screen() {
    std::u16string text;
    for (int line = 0; line < lineCount; ++line) {
        std::u16string units = repeated(u"<name attribute=\"value\">some text</name> ", lineUnits);
        units.replace(0, 3, {char16_t(u'0' + line / 10), char16_t(u'0' + line % 10), u' '});
        text += units + u'\n';
    }
    return Rope(text);
}

void firstPaint(benchmark::State& state) {
    const Rope text = screen();
    for (auto _ : state) {
        state.PauseTiming();
        Window window(text);
        for (std::size_t line = 0; line < lineCount; ++line) {
            window.color(line, 0);
        }
        state.ResumeTiming();
        window.paint();
    }
}

void paintAgain(benchmark::State& state) {
    Window window(screen());
    for (std::size_t line = 0; line < lineCount; ++line) {
        window.color(line, 0);
    }
    for (auto _ : state) {
        window.paint();
    }
}

/// The baseline: the same glyphs in one colour.
void paintPlainAgain(benchmark::State& state) {
    Window window(screen());
    for (auto _ : state) {
        window.paint();
    }
}

void recolorAndPaintAgain(benchmark::State& state) {
    Window window(screen());
    int shift = 0;
    for (auto _ : state) {
        ++shift;
        for (std::size_t line = 0; line < lineCount; ++line) {
            window.color(line, shift);
        }
        window.paint();
    }
}

/// Paints only the line that changed.
void keyInOneLine(benchmark::State& state) {
    Window window(screen());
    window.color(0, 0);
    window.paint();
    QPainter painter(&window.image);
    for (auto _ : state) {
        window.type(5, u"x");
        window.layout.draw(painter, 0, {}, 0, 1400, {}, QPalette());
        state.PauseTiming();
        window.layout.edit(window.layout.text().replaced({5, 6}, u""), SourceRange::empty(5), -1);
        state.ResumeTiming();
    }
}

const Rope& longLine(bool isMixed) {
    static const Rope plain(repeated(u"<name attribute=\"value\">some text</name> ", longUnits));
    static const Rope mixed(
        repeated(u"<name>中文 texto español العربية 😀👩‍💻</name> ", longUnits));
    return isMixed ? mixed : plain;
}

void longFirst(benchmark::State& state) {
    const Rope& text = longLine(state.range(0) != 0);
    for (auto _ : state) {
        Window window(text);
        window.paint();
    }
}

void longKey(benchmark::State& state) {
    Window window(longLine(state.range(0) != 0));
    while (state.range(1) != 0 && window.layout.buildMore()) {
    }
    const Offset at = longUnits / 2 / 40 * 40;
    window.paint(window.layout.x(at) - 500);
    for (auto _ : state) {
        window.type(at, u"x");
        window.paint(window.layout.x(at + 1) - 500);
    }
}

void longScroll(benchmark::State& state) {
    Window window(longLine(state.range(0) != 0));
    while (state.range(1) != 0 && window.layout.buildMore()) {
    }
    double left = window.layout.width() / 3;
    for (auto _ : state) {
        left += 200;
        window.paint(left);
    }
}

void longJumpToEnd(benchmark::State& state) {
    const Rope& text = longLine(state.range(0) != 0);
    for (auto _ : state) {
        state.PauseTiming();
        Window window(text);
        window.paint();
        state.ResumeTiming();
        window.paint(window.layout.x(text.size()) - 1000);
    }
}

void longBuildSlice(benchmark::State& state) {
    Window window(longLine(true));
    window.paint();
    for (auto _ : state) {
        if (!window.layout.buildMore()) {
            state.SkipWithError("built");
            break;
        }
    }
}

BENCHMARK(firstPaint)->Unit(benchmark::kMillisecond);
BENCHMARK(paintAgain)->Unit(benchmark::kMillisecond);
BENCHMARK(paintPlainAgain)->Unit(benchmark::kMillisecond);
BENCHMARK(recolorAndPaintAgain)->Unit(benchmark::kMillisecond);
BENCHMARK(keyInOneLine)->Unit(benchmark::kMillisecond)->Iterations(2000);
BENCHMARK(longFirst)->ArgName("mixed")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(longKey)
    ->ArgNames({"mixed", "built"})
    ->Args({0, 0})
    ->Args({1, 0})
    ->Args({1, 1})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(500);
BENCHMARK(longScroll)
    ->ArgNames({"mixed", "built"})
    ->Args({0, 0})
    ->Args({1, 0})
    ->Args({1, 1})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(500);
BENCHMARK(longJumpToEnd)->ArgName("mixed")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(longBuildSlice)->Unit(benchmark::kMillisecond)->Iterations(1000);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
