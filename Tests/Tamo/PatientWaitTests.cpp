#include "PatientWait.h"

#include <gtest/gtest.h>

#include <future>
#include <new>
#include <thread>

namespace {

using namespace std::chrono_literals;

TEST(PatientWait, RunsTheWorkOnAnotherThreadToItsEnd) {
    std::thread::id worker;
    int slow = 0;
    runPatiently([&] { worker = std::this_thread::get_id(); }, 60s, [&] { ++slow; });
    EXPECT_NE(worker, std::thread::id());
    EXPECT_NE(worker, std::this_thread::get_id());
    EXPECT_EQ(slow, 0);
}

TEST(PatientWait, TellsOnceAndHereThatTheWorkIsSlow) {
    std::promise<void> goOn;
    std::thread::id teller;
    int slow = 0;
    bool isDone = false;
    runPatiently(
        [&] {
            goOn.get_future().wait();
            isDone = true;
        },
        1ms,
        [&] {
            ++slow;
            teller = std::this_thread::get_id();
            EXPECT_FALSE(isDone);
            goOn.set_value();
        });
    EXPECT_TRUE(isDone);
    EXPECT_EQ(slow, 1);
    EXPECT_EQ(teller, std::this_thread::get_id());
}

TEST(PatientWait, ThrowsHereWhatTheWorkThrows) {
    const auto work = [] { throw std::bad_alloc(); };
    EXPECT_THROW(runPatiently(work, 60s, [] {}), std::bad_alloc);
}

} // namespace
