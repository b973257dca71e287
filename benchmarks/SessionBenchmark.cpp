// Measures how long a session occupies the main thread for a document of a given size: the longest event
// while a parse arrives after a key, and the commands that views call.

#include "EditorSession.h"
#include "UndoManager.h"

#include <QApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

namespace {

constexpr int rounds = 9;

double milliseconds(const std::function<void()>& work) {
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

/// Measures how long each event takes.
class TimedApplication : public QApplication {
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override {
        bool isTaken = false;
        longest = std::max(longest, milliseconds([&] { isTaken = QApplication::notify(receiver, event); }));
        return isTaken;
    }

    double longest = 0;
};

void report(const char* what, std::vector<double> times) {
    std::ranges::sort(times);
    std::printf("%-44s %8.2f %8.2f\n", what, times[times.size() / 2], times.back());
}

void measure(const char* what, const std::function<double()>& once) {
    std::vector<double> times(rounds);
    std::ranges::generate(times, once);
    report(what, std::move(times));
}

std::u16string records(std::size_t units) {
    std::u16string text = u"<records>\n";
    for (std::size_t number = 0; text.size() < units; ++number) {
        const std::u16string id = QString::number(number).toStdU16String();
        text += u"  <record id=\"" + id + u"\"><name>N" + id + u"</name><value>text " + id +
                u"</value></record>\n";
    }
    return text + u"</records>\n";
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    TimedApplication application(argc, argv);
    const std::size_t megaunits = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 100;
    const Rope text{SourceText(records(megaunits * 1'000'000))};
    TextBuffer buffer(text, std::make_shared<TextMirror>(text));
    UndoManager undoManager;
    buffer.setUndoManager(&undoManager);
    EditorSession session(buffer, {});

    const auto waitForTree = [&] {
        QElapsedTimer timer;
        timer.start();
        while (!session.isTreeCurrent()) {
            application.processEvents(QEventLoop::WaitForMoreEvents);
        }
        return double(timer.nsecsElapsed()) / 1e6;
    };
    session.start();
    std::printf("%zu million units; first tree after %.0f ms\n", megaunits, waitForTree());
    std::printf("%-44s %8s %8s\n", "ms", "median", "longest");
    const Offset middle = text.lineStart(text.lineCount() / 2) + 3;
    const auto type = [&] { buffer.type(SourceRange::empty(middle), u"x"); };
    const auto longestEvent = [&] {
        application.longest = 0;
        type();
        waitForTree();
        return application.longest;
    };
    const NodePath root{{0}};
    measure("delivery, root collapsed", longestEvent);
    measure("delay from key to tree", [&] {
        return milliseconds([&] {
            type();
            waitForTree();
        });
    });
    session.expand(root);
    while (session.rows().size() < 2) {
        application.processEvents(QEventLoop::WaitForMoreEvents);
    }
    std::printf("%zu rows\n", session.rows().size());
    session.select(NodePath{{0, std::uint32_t(session.rows().size() - 2)}});
    measure("delivery, root expanded, last node selected", longestEvent);
    session.setFilter(QStringLiteral("N77"));
    while (!session.areRowsFiltered()) {
        application.processEvents(QEventLoop::WaitForMoreEvents);
    }
    measure("delivery, filtered", longestEvent);
    session.setFilter({});
    while (session.areRowsFiltered()) {
        application.processEvents(QEventLoop::WaitForMoreEvents);
    }
    session.setMode(EditorSession::Mode::text);
    Offset caret = middle + 5;
    measure("following the caret", [&] {
        return milliseconds([&] {
            session.setTextSelection(SourceRange::empty(caret += 100));
            session.followCaret();
        });
    });
    measure("collapsing and expanding the root", [&] {
        return milliseconds([&] {
            session.collapse(root);
            session.expand(root);
        });
    });
    measure("a command on a tree of now", [&] {
        waitForTree();
        return milliseconds([&] { session.duplicate(); });
    });
    measure("a command on an old tree", [&] {
        type();
        return milliseconds([&] { session.duplicate(); });
    });
    measure("formatting", [&] {
        return milliseconds([&] {
                   session.format();
                   session.minify();
               }) /
               2;
    });
    measure("completing names", [&] {
        type();
        waitForTree();
        return milliseconds([&] { session.nameCompletions(QStringLiteral("r"), false); });
    });
    return 0;
}
