#include "ThreadTeam.h"

#include <QThread>
#include <QThreadPool>

#include <algorithm>
#include <exception>
#include <latch>
#include <memory>
#include <system_error>
#include <thread>
#include <vector>

void runInParallel(unsigned count, const std::function<void(unsigned)>& work) {
    std::vector<std::exception_ptr> failures(count);
    const auto run = [&](unsigned number) {
        try {
            work(number);
        } catch (...) {
            failures[number] = std::current_exception();
        }
    };
    std::vector<std::jthread> threads;
    threads.reserve(count);
    unsigned started = 1;
    try {
        for (; started < count; ++started) {
            threads.emplace_back(run, started);
        }
    } catch (const std::system_error&) {
        // The calls from `started` on have no thread.
    }
    if (count > 0) {
        run(0);
    }
    for (; started < count; ++started) {
        run(started);
    }
    threads.clear();
    const auto failure = std::ranges::find_if(failures, [](const auto& each) { return each != nullptr; });
    if (failure != failures.end()) {
        std::rethrow_exception(*failure);
    }
}

void startSharedPool() {
    constexpr int fewest = 2;
    constexpr int most = 8;
    QThreadPool* const pool = QThreadPool::globalInstance();
    pool->setMaxThreadCount(std::clamp(QThread::idealThreadCount(), fewest, most));
    pool->setExpiryTimeout(-1);
    // A thread that waits for the others takes no second step.
    const auto started = std::make_shared<std::latch>(pool->maxThreadCount());
    for (int i = 0; i < pool->maxThreadCount(); ++i) {
        pool->start([started] { started->arrive_and_wait(); });
    }
}

unsigned parallelism(std::size_t useful) {
    constexpr unsigned most = 8; // More would wait for the memory.
    const unsigned threads = std::clamp(std::thread::hardware_concurrency(), 1U, most);
    return static_cast<unsigned>(std::clamp<std::size_t>(useful, 1, threads));
}
