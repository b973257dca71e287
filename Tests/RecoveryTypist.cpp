#include "RecoveryStore.h"
#include "Typist.h"

#include <QCoreApplication>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <stop_token>
#include <thread>

#include <unistd.h>

namespace {

/// Says `number` in eight bytes. False when nothing listens.
bool say(std::int64_t number) { return write(STDOUT_FILENO, &number, sizeof number) == sizeof number; }

/// Counts tenths of a second as a thread that sleeps meets them: on a busy machine they last longer, for this
/// thread as for the one that writes the log.
class Ticks {
public:
    std::int64_t count() const { return m_count; }

private:
    void run(const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            say(-++m_count);
        }
    }

    std::atomic<std::int64_t> m_count = 0;
    std::jthread m_thread{[this](const std::stop_token& stop) { run(stop); }};
};

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
/// killed. Says on its output when each change was made, the number of the ticks so far, and each tick
/// itself, its number negative.
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
    const Ticks ticks;
    for (;;) {
        typist.change(storage);
        if (!say(ticks.count())) {
            return 1;
        }
        const auto pause = pace() % 100 == 0 ? pace() % 500'000 : pace() % 3000;
        std::this_thread::sleep_for(std::chrono::microseconds(pause));
    }
}
