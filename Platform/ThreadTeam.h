#pragma once

#include <cstddef>
#include <functional>

/// Calls `work` with the numbers from 0 to `count` - 1, each on a thread of its own but for 0, which runs on
/// the calling one, and returns when all calls have returned. Where the system gives no more threads, the
/// calls that lack one run one after the other. The first exception of a call is thrown again.
///
/// For pieces of one work that the caller waits for anyway; the shared pool may be full of such callers.
void runInParallel(unsigned count, const std::function<void(unsigned)>& work);

/// Starts all threads of the shared pool and keeps them: later there may be no memory for one, and what it was
/// to run would be lost.
void startSharedPool();

/// How many calls run at the same time here, at most as many as `useful`.
unsigned parallelism(std::size_t useful);
