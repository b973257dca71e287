#include "Application.h"
#include "FilePath.h"
#include "TamoApp.h"

#include <QThreadPool>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string_view>

namespace {

/// Whether the command line only asks to be told something, for which no display is needed.
bool asksForWords(int argc, char** argv) {
    constexpr std::string_view options[] = {"-h", "--help", "-v", "--version"};
    return std::any_of(argv + 1, argv + argc,
                       [&](std::string_view argument) { return std::ranges::count(options, argument) != 0; });
}

/// Whether there is a display to open windows on, or Qt was told to do with something else.
bool hasDisplay() {
    constexpr const char* variables[] = {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"};
    return std::ranges::any_of(variables,
                               [](const char* name) { return !qEnvironmentVariableIsEmpty(name); });
}

/// Runs with the arguments that the toolkit has left, whatever bytes they are.
int run(int argc, char** argv) {
    QStringList arguments;
    std::transform(argv, argv + argc, std::back_inserter(arguments),
                   [](const char* argument) { return FilePath::of(QByteArray(argument)); });
    return TamoApp().run(arguments);
}

/// Ends the program. Workers that still wait for a disk are left behind: no window wants their results.
int end(int code) {
    constexpr int patience = 300;
    if (!QThreadPool::globalInstance()->waitForDone(patience)) {
        std::fflush(nullptr);
        std::_Exit(code);
    }
    return code;
}

} // namespace

int main(int argc, char** argv) {
    if (asksForWords(argc, argv)) {
        const QCoreApplication application(argc, argv);
        return run(argc, argv);
    }
    if (!hasDisplay()) {
        std::fputs("tamo: No hay ninguna pantalla en la que abrir ventanas.\n", stderr);
        return EXIT_FAILURE;
    }
    // A limit on the size of files fails the write instead, which is told.
    std::signal(SIGXFSZ, SIG_IGN);
    const Application application(argc, argv);
    return end(run(argc, argv));
}
