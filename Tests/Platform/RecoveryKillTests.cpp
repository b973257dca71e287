#include "Random.h"
#include "RecoveryStore.h"
#include "Typist.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr std::int64_t ticksPerSecond = 10; ///< Of the typist, which says how long its seconds last.

/// A new process has the locks of this one until its program starts, and another process would find them taken:
/// no store is open while one is started.
std::shared_mutex starts;

/// What a killed program said.
struct Life {
    std::vector<std::int64_t> changes; ///< When each change was made, in ticks.
    std::int64_t ticks = 0;            ///< When it was killed.
};

/// Starts the typist, kills it some time after its first change, and hears what it said.
std::optional<Life> killedTypist(const QString& folder, std::uint64_t seed, std::chrono::microseconds after) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        return std::nullopt;
    }
    // It must never wait for its output to be read.
    fcntl(ends[1], F_SETPIPE_SZ, 1 << 20);
    std::array arguments{std::string(TAMO_RECOVERY_TYPIST), folder.toStdString(), std::to_string(seed)};
    std::array<char*, 4> list{arguments[0].data(), arguments[1].data(), arguments[2].data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    pid_t process = 0;
    int error = 0;
    {
        const std::lock_guard guard(starts);
        error = posix_spawn(&process, list[0], &actions, nullptr, list.data(), environ);
    }
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    if (error != 0) {
        close(ends[0]);
        return std::nullopt;
    }
    pollfd output{.fd = ends[0], .events = POLLIN, .revents = 0};
    poll(&output, 1, -1);
    std::this_thread::sleep_for(after);
    Life life;
    kill(process, SIGKILL);
    int status = 0;
    waitpid(process, &status, 0);
    std::int64_t tick = 0;
    while (read(ends[0], &tick, sizeof tick) == sizeof tick) {
        if (tick < 0) {
            life.ticks = -tick;
        } else {
            life.changes.push_back(tick);
        }
    }
    close(ends[0]);
    return WIFSIGNALED(status) ? std::optional(std::move(life)) : std::nullopt;
}

/// Which of the states that the typist went through `text` is: the number of changes. Nothing when it is
/// none. It may have made one more change than it could say.
std::optional<std::size_t> stateOf(const Rope& text, const Rope& start, std::uint64_t seed,
                                   std::size_t changes) {
    TextStorage storage(start);
    Typist typist(seed);
    std::optional<std::size_t> found;
    for (std::size_t i = 0;; ++i) {
        // The latest state, when several are the same.
        if (storage.text().size() == text.size() && storage.text() == text) {
            found = i;
        }
        if (i > changes) {
            return found;
        }
        typist.change(storage);
    }
}

/// Kills one typist after another in one folder. Each goes on with what the one before left.
class Chain {
public:
    explicit Chain(std::uint64_t seed) : m_random(seed), m_text(Typist::startText()) {}

    void kill(int times) {
        for (int i = 0; i < times && m_complaint.empty(); ++i) {
            killOnce();
        }
    }

    const std::string& complaint() const { return m_complaint; }
    std::int64_t oldestLoss() const { return m_oldestLoss; }
    std::size_t changes() const { return m_changes; }
    int recoveries() const { return m_recoveries; }

private:
    void killOnce() {
        const std::uint64_t seed = m_random();
        const std::uint64_t longest = m_random() % 2 == 0 ? 300'000 : 2'300'000;
        const auto life =
            killedTypist(m_folder.path(), seed, std::chrono::microseconds(m_random() % longest));
        if (!life) {
            m_complaint = "the typist did not live until it was killed";
            return;
        }
        m_changes += life->changes.size();
        const std::shared_lock guard(starts);
        RecoveryStore store(m_folder.path());
        const Recoverables left = store.recoverable();
        // Only the first log of all is written where there is nothing better to recover.
        if (left.documents.size() > 1 || (m_isKept && (left.documents.empty() || !left.setAside.empty()))) {
            m_complaint = std::to_string(left.documents.size()) + " texts and " +
                          std::to_string(left.setAside.size()) + " unreadable ones";
            return;
        }
        if (left.documents.empty()) {
            checkState(0, *life);
            return;
        }
        const QString id = left.documents.front().id;
        const auto text = store.take(id);
        if (text && text->damage == RecoveryDamage::cutOff && !m_isKept) {
            // The kill came while the first log of all was written.
            store.discard(id);
            checkState(0, *life);
            return;
        }
        if (!text || text->damage != RecoveryDamage::none) {
            m_complaint = "the text is damaged";
            return;
        }
        const auto state = stateOf(text->text, m_text, seed, life->changes.size());
        if (!state) {
            m_complaint = "the text never was like that";
            return;
        }
        ++m_recoveries;
        checkState(*state, *life);
        m_text = text->text;
        m_isKept = true;
    }

    /// What was not kept of the life was done in its last second.
    void checkState(std::size_t kept, const Life& life) {
        if (kept < life.changes.size()) {
            const std::int64_t age = life.ticks - life.changes[kept];
            m_oldestLoss = std::max(m_oldestLoss, age);
            if (age > ticksPerSecond) {
                m_complaint = "a change of " + std::to_string(age) + " ticks before was lost";
            }
        }
    }

    /// In memory where that can be: a kill leaves what was written to the system in any case, and a disk that
    /// is busy with other work would only add its own delays. `TAMO_KILL_FOLDER` says otherwise.
    static QString place() {
        const QString memory = QStringLiteral("/dev/shm");
        const QString wanted = qEnvironmentVariable("TAMO_KILL_FOLDER", memory);
        return (QFileInfo(wanted).isWritable() ? wanted : QDir::tempPath()) + QStringLiteral("/kill-XXXXXX");
    }

    QTemporaryDir m_folder{place()};
    std::mt19937_64 m_random;
    Rope m_text;
    bool m_isKept = false; ///< Something was recovered from the folder before.
    std::string m_complaint;
    std::int64_t m_oldestLoss = 0;
    std::size_t m_changes = 0;
    int m_recoveries = 0;
};

} // namespace

/// `TAMO_KILLS` in the environment sets how many.
TEST(RecoveryKill, NothingIsLostButTheLastSecond) {
    const char* const wanted = std::getenv("TAMO_KILLS");
    const int kills = wanted != nullptr ? std::atoi(wanted) : 200;
    Random random;
    std::vector<std::unique_ptr<Chain>> chains;
    for (int i = 0; i < 8; ++i) {
        chains.push_back(std::make_unique<Chain>(random.below(1'000'000'000)));
    }
    {
        std::vector<std::jthread> threads;
        for (const auto& chain : chains) {
            threads.emplace_back([&] { chain->kill((kills + 7) / 8); });
        }
    }
    std::int64_t oldestLoss = 0;
    std::size_t changes = 0;
    int recoveries = 0;
    for (const auto& chain : chains) {
        EXPECT_EQ(chain->complaint(), "");
        oldestLoss = std::max(oldestLoss, chain->oldestLoss());
        changes += chain->changes();
        recoveries += chain->recoveries();
    }
    EXPECT_GT(recoveries, kills / 2);
    std::cout << chains.size() * ((kills + 7) / 8) << " kills, " << recoveries << " recoveries, " << changes
              << " changes, oldest change lost " << oldestLoss << " ticks before the kill\n";
}
