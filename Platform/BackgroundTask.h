#pragma once

#include <QCoreApplication>
#include <QThreadPool>

#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <stop_token>
#include <utility>

/// Work off the main thread whose result is delivered on it. A new start, `cancel` and the end of the task
/// all see to it that an earlier result is not delivered, even when it is ready; nobody waits for a worker.
///
/// Lives on the main thread.
template <class Value>
class BackgroundTask {
public:
    using Work = std::function<Value(std::stop_token)>;
    using Delivery = std::function<void(Value)>;
    using LackOfMemory = std::function<void()>;

    BackgroundTask() = default;
    BackgroundTask(const BackgroundTask&) = delete;
    BackgroundTask& operator=(const BackgroundTask&) = delete;
    ~BackgroundTask() { cancel(); }

    bool isRunning() const { return m_current != nullptr; }

    /// Runs `work` on a worker, then `deliver` on this thread; `lackMemory` in its place where the memory was
    /// too short for the work.
    void start(Work work, Delivery deliver, LackOfMemory lackMemory) {
        cancel();
        m_current = std::make_shared<Run>(std::move(work), std::move(deliver), std::move(lackMemory));
        // The answer goes through the application, which outlives every worker; the task may be gone then.
        QThreadPool::globalInstance()->start(
            [run = m_current, current = &m_current, application = QCoreApplication::instance()] {
                try {
                    run->result = run->work(run->stop.get_token());
                } catch (const std::bad_alloc&) {
                    // There is no result.
                }
                QMetaObject::invokeMethod(
                    application, [run, current] { finish(run, current); }, Qt::QueuedConnection);
            });
    }

    void cancel() {
        if (m_current != nullptr) {
            m_current->stop.request_stop();
            m_current->deliver = nullptr;
            m_current->lackMemory = nullptr;
            m_current.reset();
        }
    }

private:
    struct Run {
        Work work;
        // The main thread's; none once cancelled.
        Delivery deliver;
        LackOfMemory lackMemory;
        std::stop_source stop = {};
        std::optional<Value> result = {};
    };

    /// `current` is read only where the run was not cancelled: then the task is still there.
    static void finish(const std::shared_ptr<Run>& run, std::shared_ptr<Run>* current) {
        if (run->stop.stop_requested()) {
            QThreadPool::globalInstance()->start([run] { run->result.reset(); });
            return;
        }
        current->reset();
        // May start the task again or end it.
        if (run->result) {
            run->deliver(std::move(*run->result));
        } else {
            run->lackMemory();
        }
    }

    std::shared_ptr<Run> m_current;
};
