#include "Postbox.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <new>
#include <system_error>
#include <thread>

namespace {

/// Threads that are started as they are needed and end when nothing was to do for a while, but for one. Where
/// the system gives no more of them, the steps wait for those that there are.
class FileThreads {
public:
    void run(std::function<void()> step) {
        std::unique_lock lock(m_mutex);
        m_steps.push_back(std::move(step));
        if (m_steps.size() <= m_idle || m_count == mostAtOnce) {
            m_changed.notify_one();
            return;
        }
        try {
            std::thread([this] { work(); }).detach();
            ++m_count;
        } catch (const std::system_error&) {
            if (m_count == 0) {
                std::function<void()> now = std::move(m_steps.back());
                m_steps.pop_back();
                lock.unlock();
                perform(now);
            }
        }
    }

private:
    static constexpr std::size_t mostAtOnce = 32;
    static constexpr std::chrono::seconds patience{30};

    void work() {
        std::unique_lock lock(m_mutex);
        for (;;) {
            ++m_idle;
            const bool hasStep = m_changed.wait_for(lock, patience, [this] { return !m_steps.empty(); });
            --m_idle;
            if (hasStep) {
                std::function<void()> step = std::move(m_steps.front());
                m_steps.pop_front();
                lock.unlock();
                perform(step);
                step = nullptr;
                lock.lock();
            } else if (m_count > 1) {
                --m_count;
                return;
            }
        }
    }

    static void perform(const std::function<void()>& step) {
        try {
            step();
        } catch (const std::bad_alloc&) {
            // Nothing is posted: as with a disk that does not answer.
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_steps;
    std::size_t m_count = 0;
    std::size_t m_idle = 0;
};

} // namespace

void runOnFileThread(std::function<void()> step) {
    // Never destroyed: its end would wait for a disk that hangs.
    static auto* const threads = new FileThreads;
    threads->run(std::move(step));
}
