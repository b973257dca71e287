#include "TamoApp.h"

#include <QApplication>

#include <algorithm>
#include <string_view>

namespace {

/// Whether the command line only asks to be told something, for which no display is needed.
bool asksForWords(int argc, char** argv) {
    constexpr std::string_view options[] = {"-h", "--help", "--help-all", "-v", "--version"};
    return std::any_of(argv + 1, argv + argc,
                       [&](std::string_view argument) { return std::ranges::count(options, argument) != 0; });
}

int run(const QStringList& arguments) { return TamoApp().run(arguments); }

} // namespace

int main(int argc, char** argv) {
    if (asksForWords(argc, argv)) {
        const QCoreApplication application(argc, argv);
        return run(QCoreApplication::arguments());
    }
    const QApplication application(argc, argv);
    return run(QCoreApplication::arguments());
}
