#include "BackgroundTask.h"

#include "WaitFor.h"

#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <new>
#include <semaphore>
#include <thread>
#include <vector>

namespace {

void failForMemory() { ADD_FAILURE() << "memory"; }

/// Runs the event loop until whatever was posted so far has arrived.
void settle() {
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
}

TEST(BackgroundTask, DeliversOnTheMainThread) {
    BackgroundTask<int> task;
    const QThread* worker = nullptr;
    const QThread* receiver = nullptr;
    int delivered = 0;
    task.start(
        [&](const std::stop_token& stop) {
            worker = QThread::currentThread();
            return stop.stop_requested() ? 0 : 7;
        },
        [&](int value) {
            receiver = QThread::currentThread();
            delivered = value;
            EXPECT_FALSE(task.isRunning());
        },
        failForMemory);
    EXPECT_TRUE(task.isRunning());
    ASSERT_TRUE(waitFor([&] { return delivered != 0; }));
    EXPECT_EQ(delivered, 7);
    EXPECT_EQ(receiver, qApp->thread());
    EXPECT_NE(worker, receiver);
}

TEST(BackgroundTask, DropsWhatWasCancelledEvenWhenItIsReady) {
    enum class How { cancel, startAgain, end };
    for (const How how : {How::cancel, How::startAgain, How::end}) {
        std::vector<int> delivered;
        const auto deliver = [&](int value) { delivered.push_back(value); };
        auto task = std::make_unique<BackgroundTask<int>>();
        task->start([](const std::stop_token&) { return 1; }, deliver, failForMemory);
        QThreadPool::globalInstance()->waitForDone();
        switch (how) {
        case How::cancel:
            task->cancel();
            break;
        case How::startAgain:
            task->start([](const std::stop_token&) { return 2; }, deliver, failForMemory);
            break;
        case How::end:
            task.reset();
            break;
        }
        settle();
        settle();
        EXPECT_EQ(delivered, how == How::startAgain ? std::vector{2} : std::vector<int>());
    }
}

TEST(BackgroundTask, TellsTheWorkToStop) {
    BackgroundTask<bool> task;
    std::binary_semaphore started{0};
    std::atomic<bool> hasSeenStop = false;
    task.start(
        [&](const std::stop_token& stop) {
            started.release();
            while (!stop.stop_requested()) {
                std::this_thread::yield();
            }
            hasSeenStop = true;
            return true;
        },
        [](bool) { ADD_FAILURE(); }, failForMemory);
    started.acquire();
    task.cancel();
    settle();
    EXPECT_TRUE(hasSeenStop);
}

TEST(BackgroundTask, MayBeStartedAgainOrEndedByItsDelivery) {
    auto task = std::make_unique<BackgroundTask<int>>();
    int deliveries = 0;
    const auto one = [](const std::stop_token&) { return 1; };
    const auto endTask = [&](int) {
        ++deliveries;
        task.reset();
    };
    const auto startAgain = [&](int) {
        ++deliveries;
        task->start(one, endTask, failForMemory);
    };
    task->start(one, startAgain, failForMemory);
    ASSERT_TRUE(waitFor([&] { return task == nullptr; }));
    EXPECT_EQ(deliveries, 2);
}

TEST(BackgroundTask, TellsThatTheMemoryIsTooShort) {
    BackgroundTask<int> task;
    const auto work = [](const std::stop_token&) -> int { throw std::bad_alloc(); };
    bool isTold = false;
    const QThread* receiver = nullptr;
    task.start(
        work, [](int) { ADD_FAILURE(); },
        [&] {
            isTold = true;
            receiver = QThread::currentThread();
            EXPECT_FALSE(task.isRunning());
        });
    ASSERT_TRUE(waitFor([&] { return isTold; }));
    EXPECT_EQ(receiver, qApp->thread());

    // Cancelled, it tells nothing.
    task.start(work, [](int) { ADD_FAILURE(); }, failForMemory);
    QThreadPool::globalInstance()->waitForDone();
    task.cancel();
    settle();
    settle();
}

} // namespace
