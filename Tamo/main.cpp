#include "TamoApp.h"

#include <QApplication>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
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

int run(const QStringList& arguments) { return TamoApp().run(arguments); }

} // namespace

int main(int argc, char** argv) {
    if (asksForWords(argc, argv)) {
        const QCoreApplication application(argc, argv);
        return run(QCoreApplication::arguments());
    }
    if (!hasDisplay()) {
        std::fputs("tamo: No hay ninguna pantalla en la que abrir ventanas.\n", stderr);
        return EXIT_FAILURE;
    }
    // A limit on the size of files fails the write instead, which is told.
    std::signal(SIGXFSZ, SIG_IGN);
    const QApplication application(argc, argv);
    return run(QCoreApplication::arguments());
}
