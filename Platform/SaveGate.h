#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <stop_token>

/// Settles between two threads whether a file is replaced: the worker that is about to replace it, and the
/// user who cancels. The first one wins, for good.
class SaveGate {
public:
    /// The user cancels. False when it is too late.
    bool cancel() {
        const bool isInTime = settle(State::cancelled);
        if (isInTime) {
            m_stop.request_stop();
        }
        return isInTime;
    }

    /// The worker is about to replace the file. False when the user cancelled before.
    bool pass() {
        const bool passes = settle(State::passed);
        if (passes && onPass) {
            onPass();
        }
        return passes;
    }

    /// Called on the worker when the user can cancel no more. Set before the work starts.
    std::function<void()> onPass;

    bool isOpen() const { return m_state == State::open; }

    /// Asks the worker to stop as soon as the user has cancelled.
    std::stop_token stop() const { return m_stop.get_token(); }

private:
    enum class State : std::uint8_t { open, passed, cancelled };

    bool settle(State state) {
        State expected = State::open;
        return m_state.compare_exchange_strong(expected, state) || expected == state;
    }

    std::atomic<State> m_state = State::open;
    std::stop_source m_stop;
};
