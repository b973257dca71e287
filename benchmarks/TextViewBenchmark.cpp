// Measures the time from a key, a turn of the wheel or a jump until painting is complete, in a real text view
// that receives real events.
//
//     text_view_benchmark [--rounds N] [NAME...]

#include "TextShape.h"

#include "TextHistory.h"
#include "TextView.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QWheelEvent>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string_view>
#include <vector>

namespace {

/// A text of at least `units` units that repeats `record`, in chunks that the repetitions share.
Rope repeated(std::u16string_view record, Offset units) {
    std::u16string first(record);
    while (first.size() < 2048 && first.size() < units) {
        first += record;
    }
    Rope text{std::u16string_view(first)};
    while (text.size() < units) {
        const Rope more = text.part({0, std::min(text.size(), units - text.size())});
        text = text.replaced(SourceRange::empty(text.size()), more);
    }
    return text;
}

/// Counts the paints of a widget.
class PaintCounter : public QObject {
public:
    int paints = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        paints += event->type() == QEvent::Paint;
        return false;
    }
};

class Desk {
public:
    explicit Desk(const Rope& text) : m_storage(text), m_history(m_storage) {
        m_history.setUndoManager(&m_undo);
        view.resize(1280, 820);
        view.setHistory(&m_history);
        view.show();
        view.activateWindow();
        view.setFocus();
        view.viewport()->installEventFilter(&m_counter);
        QApplication::processEvents();
    }

    /// The time, in milliseconds, from the event until all its effects are painted.
    double wait(const std::function<void()>& send) {
        QElapsedTimer timer;
        timer.start();
        const int before = m_counter.paints;
        send();
        // An event without a visible effect causes no paint, so do not wait longer.
        for (int i = 0; i < 3 && m_counter.paints == before; ++i) {
            QApplication::processEvents();
        }
        const double milliseconds = static_cast<double>(timer.nsecsElapsed()) / 1e6;
        QApplication::processEvents();
        return milliseconds;
    }

    void press(int key, Qt::KeyboardModifiers modifiers = {}, const QString& text = {}) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
        QApplication::sendEvent(&view, &event);
    }

    void turn(QPoint pixels) {
        QWheelEvent event({300, 300}, {300, 300}, pixels, pixels, Qt::NoButton, {}, Qt::NoScrollPhase, false);
        QApplication::sendEvent(view.viewport(), &event);
    }

    TextView view;

private:
    UndoManager m_undo;
    TextStorage m_storage;
    TextHistory m_history;
    PaintCounter m_counter;
};

void report(const char* text, const char* what, std::vector<double> times) {
    std::ranges::sort(times);
    const auto at = [&](double part) {
        return times[static_cast<std::size_t>(part * static_cast<double>(times.size() - 1))];
    };
    std::printf("| %-24s | %-10s | %6.2f | %6.2f | %6.2f |\n", text, what, at(0.5), at(0.99), times.back());
    std::fflush(stdout);
}

void measure(const char* name, const Rope& text, int rounds) {
    Desk desk(text);
    const auto series = [&](const char* what, const std::function<void(int)>& step) {
        std::vector<double> times;
        for (int i = 0; i < rounds; ++i) {
            times.push_back(desk.wait([&] { step(i); }));
        }
        report(name, what, std::move(times));
    };
    const auto middle = [&] {
        desk.view.select(SourceRange::empty(desk.view.text().size() / 2));
        desk.view.scrollToVisible(desk.view.selection());
        QApplication::processEvents();
    };
    middle();
    series("type", [&](int i) {
        i % 60 == 59 ? desk.press(Qt::Key_Return, {}, QStringLiteral("\r"))
                     : desk.press(Qt::Key_A, {}, i % 6 == 5 ? QStringLiteral(" ") : QStringLiteral("a"));
    });
    series("erase", [&](int) { desk.press(Qt::Key_Backspace); });
    series("walk", [&](int i) { desk.press(i % 2 == 0 ? Qt::Key_Down : Qt::Key_Right); });
    series("select", [&](int i) { desk.press(i % 8 == 7 ? Qt::Key_PageDown : Qt::Key_Right, Qt::ShiftModifier); });
    series("scroll", [&](int i) { desk.turn({0, i < rounds / 2 ? -51 : 51}); });
    series("scroll across", [&](int i) { desk.turn({i % 50 < 25 ? -7 : 7, 0}); });
    series("page", [&](int i) { desk.press(i < rounds / 2 ? Qt::Key_PageDown : Qt::Key_PageUp); });
    series("jump", [&](int i) {
        const auto place = static_cast<Offset>((i * 2654435761ULL) % desk.view.text().size());
        desk.view.select(SourceRange::empty(place));
        desk.view.scrollToVisible(desk.view.selection());
    });
    series("ends", [&](int i) { desk.press(i % 2 == 0 ? Qt::Key_End : Qt::Key_Home, Qt::ControlModifier); });
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const qsizetype option = arguments.indexOf(QStringLiteral("--rounds"));
    const int rounds = option > 0 ? arguments.value(option + 1).toInt() : 500;

    constexpr Offset megabyte = 1'000'000;
    const struct {
        const char* name;
        std::u16string_view record;
        Offset units;
    } texts[] = {
        {"10 MB of records", TextShapes::records.record, 10 * megabyte},
        {"10 MB of Chinese prose", u"<p>\u6797\u7F8E\u7A57\u6771\u4EAC\uFF0C\u00E9\u00F1 "
                                   u"\U0001F600\u0645\u0631\u062D\u0628\u0627 prosa</p>\n", 10 * megabyte},
        {"1 GB of records", TextShapes::records.record, 1000 * megabyte},
        {"ten million lines", u"<a/>\n", 50 * megabyte},
        {"one line of 50 MB", u"<item id=\"4711\">Ada Lovelace</item>", 50 * megabyte},
        {"one Chinese line", u"<i>\u6797\u7F8E\u7A57\u6771\u4EAC\U0001F600</i>", 50 * megabyte},
    };
    std::printf("| %-24s | %-10s | %6s | %6s | %6s |\n|---|---|---:|---:|---:|\n", "text", "ms", "p50", "p99",
                "max");
    for (const auto& text : texts) {
        if (option > 0 || argc == 1 || arguments.contains(QString::fromUtf8(text.name))) {
            measure(text.name, repeated(text.record, text.units), rounds);
        }
    }
    return 0;
}
