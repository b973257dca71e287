#pragma once

#include <QObject>

#include <functional>
#include <memory>
#include <mutex>
#include <utility>

/// Lets other threads have an object do something on its own thread, though it may go meanwhile: they hold
/// the box, not the object.
class Postbox {
public:
    explicit Postbox(QObject* receiver) : m_receiver(receiver) {}

    /// From now on what is posted is dropped. The last that the receiver does.
    void close() {
        const std::lock_guard guard(m_mutex);
        m_receiver = nullptr;
    }

    /// Calls `step` from the receiver's event loop, if it lives then.
    void post(std::function<void()> step) {
        const std::lock_guard guard(m_mutex);
        if (m_receiver != nullptr) {
            QMetaObject::invokeMethod(m_receiver, std::move(step), Qt::QueuedConnection);
        }
    }

private:
    std::mutex m_mutex;
    QObject* m_receiver;
};

/// Calls `step` on a thread that may wait for a disk as long as that takes: nothing else waits for it,
/// neither the parser nor the end of the program.
void runOnFileThread(std::function<void()> step);
