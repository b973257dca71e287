#pragma once

#include <QByteArray>

#include <chrono>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// Marks stretches of work for whoever looks at where the time goes. An interval fires the static probes
/// `tamo:interval_begin` and `tamo:interval_end`, which cost nothing while no tracer listens, and is recorded
/// when that was asked for. May be used from any thread.
class Signposter {
public:
    /// One interval as it was recorded.
    struct Record {
        const char* subsystem = nullptr;
        const char* category = nullptr;
        const char* name = nullptr;
        std::string message;
        std::chrono::steady_clock::time_point begin;
        std::chrono::steady_clock::duration duration{};
        std::uint64_t thread = 0; ///< Tells threads apart, nothing more.
    };

    /// Lasts from its making to the end of its scope.
    class Interval {
    public:
        Interval(const Interval&) = delete;
        Interval& operator=(const Interval&) = delete;
        ~Interval();

    private:
        friend Signposter;
        Interval(const Signposter& signposter, const char* name, std::string message);

        Record m_record;
        bool m_isRecorded;
    };

    /// `subsystem` is the application's identifier; both strings are literals, as are the names of intervals.
    constexpr Signposter(const char* subsystem, const char* category)
        : m_subsystem(subsystem), m_category(category) {}

    [[nodiscard]] Interval interval(const char* name, std::string message = {}) const;

    /// Whether intervals that begin from now on are recorded; at first they are not.
    static void setRecording(bool isRecording);

    /// What was recorded since the last call, in the order in which the intervals began.
    static std::vector<Record> takeRecords();

    /// The records as a trace that Chrome and Perfetto show, in JSON.
    static QByteArray trace(std::span<const Record> of);

private:
    const char* m_subsystem;
    const char* m_category;
};
