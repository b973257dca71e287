#pragma once

#include <chrono>
#include <functional>

/// Runs `work` on another thread and waits until it is done. Calls `becomesSlow` on this one meanwhile, once,
/// when that takes longer than `patience`.
void runPatiently(const std::function<void()>& work, std::chrono::milliseconds patience,
                  const std::function<void()>& becomesSlow);
