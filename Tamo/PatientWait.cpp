#include "PatientWait.h"

#include <future>

void runPatiently(const std::function<void()>& work, std::chrono::milliseconds patience,
                  const std::function<void()>& becomesSlow) {
    std::future<void> done = std::async(std::launch::async, work);
    if (done.wait_for(patience) == std::future_status::timeout) {
        becomesSlow();
    }
    done.get();
}
