#include "PatientWait.h"

#include <future>
#include <system_error>

void runPatiently(const std::function<void()>& work, std::chrono::milliseconds patience,
                  const std::function<void()>& becomesSlow) {
    std::future<void> done;
    try {
        done = std::async(std::launch::async, work);
    } catch (const std::system_error&) {
        // The system has no thread to spare.
        becomesSlow();
        work();
        return;
    }
    if (done.wait_for(patience) == std::future_status::timeout) {
        becomesSlow();
    }
    done.get();
}
