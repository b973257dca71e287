#include "ThreadTeam.h"

#include "MemoryLimit.h"

#include <QThreadPool>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <stdexcept>
#include <thread>

TEST(ThreadTeam, RunsEachCallAtTheSameTime) {
    std::array<std::thread::id, 3> threads;
    std::atomic<int> arrived = 0;
    runInParallel(3, [&](unsigned number) {
        threads.at(number) = std::this_thread::get_id();
        // Each call waits for the others.
        ++arrived;
        while (arrived < 3) {
            std::this_thread::yield();
        }
    });
    EXPECT_EQ(threads[0], std::this_thread::get_id());
    EXPECT_NE(threads[1], threads[0]);
    EXPECT_NE(threads[2], threads[0]);
    EXPECT_NE(threads[2], threads[1]);
}

TEST(ThreadTeam, RunsNothingForNobody) {
    runInParallel(0, [](unsigned) { ADD_FAILURE(); });
}

TEST(ThreadTeam, WaitsForAllBeforeItPassesAnExceptionOn) {
    for (unsigned thrower = 0; thrower < 3; ++thrower) {
        std::atomic<int> done = 0;
        EXPECT_THROW(runInParallel(3,
                                   [&](unsigned number) {
                                       ++done;
                                       if (number == thrower) {
                                           throw std::runtime_error("failed");
                                       }
                                   }),
                     std::runtime_error);
        EXPECT_EQ(done, 3);
    }
}

TEST(ThreadTeam, KnowsHowManyCallsAreUseful) {
    EXPECT_EQ(parallelism(0), 1U);
    EXPECT_EQ(parallelism(1), 1U);
    EXPECT_GE(parallelism(1000), 1U);
    EXPECT_LE(parallelism(2), 2U);
}

TEST(ThreadTeam, HasAllThreadsOfTheSharedPoolBeforeMemoryIsShort) {
    startSharedPool();
    QThreadPool* const pool = QThreadPool::globalInstance();
    pool->waitForDone();
    const MemoryLimit limit(std::size_t{1} << 20); // Less than the stack of a thread.
    std::atomic<int> arrived = 0;
    for (int i = 0; i < pool->maxThreadCount(); ++i) {
        pool->start([&arrived, all = pool->maxThreadCount()] {
            ++arrived;
            while (arrived < all) {
                std::this_thread::yield();
            }
        });
    }
    pool->waitForDone();
    EXPECT_EQ(arrived, pool->maxThreadCount());
}
