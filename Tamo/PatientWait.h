#pragma once

#include <chrono>
#include <functional>

/// Runs `work` on another thread and waits until it is done. Calls `becomesSlow` on this one meanwhile, once,
/// when that takes longer than `patience`. What `work` throws is thrown on this thread. Where the system gives
/// no other thread, `work` runs on this one.
void runPatiently(const std::function<void()>& work, std::chrono::milliseconds patience,
                  const std::function<void()>& becomesSlow);
