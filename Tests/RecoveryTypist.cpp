#include "RecoveryStore.h"
#include "Typist.h"

#include <QCoreApplication>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include <time.h>
#include <unistd.h>

namespace {

std::int64_t now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return std::int64_t{1'000'000'000} * time.tv_sec + time.tv_nsec;
}

/// The text that was left behind in the store, or else a long one.
Rope startText(RecoveryStore& store, QString& taken) {
    const Recoverables left = store.recoverable();
    if (left.documents.empty()) {
        return Rope(Typist::startText());
    }
    taken = left.documents.front().id;
    const auto text = store.take(taken);
    if (!text) {
        std::exit(EXIT_FAILURE);
    }
    return text->text;
}

} // namespace

/// Recovers the text that an earlier run left in FOLDER, and goes on changing it at random until it is
/// killed. Says on its output when each change was made: a number of eight bytes, in nanoseconds of the
/// monotonic clock.
int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: RecoveryTypist FOLDER SEED\n");
        return 2;
    }
    const QCoreApplication application(argc, argv);
    const std::uint64_t seed = std::strtoull(argv[2], nullptr, 10);
    // A log is written anew all the time.
    RecoveryStore store(QString::fromLocal8Bit(argv[1]), {.leastChanges = 2048, .mostChanges = 4096});
    QString taken;
    TextStorage storage(startText(store, taken));
    const auto recovery = store.follow(storage, {.encoding = "UTF-8"}, taken);
    Typist typist(seed);
    std::mt19937_64 pace(seed);
    for (;;) {
        typist.change(storage);
        const std::int64_t time = now();
        if (write(STDOUT_FILENO, &time, sizeof time) != sizeof time) {
            return 1;
        }
        const auto pause = pace() % 100 == 0 ? pace() % 500'000 : pace() % 3000;
        std::this_thread::sleep_for(std::chrono::microseconds(pause));
    }
}
