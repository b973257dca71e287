#include "Signposter.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>
#include <utility>

#if defined(TAMO_HAS_SDT)
#include <sys/sdt.h>
#else
#define DTRACE_PROBE4(provider, probe, first, second, third, fourth) ((void)0)
#endif

namespace {

/// A list that threads push to without waiting for each other; it is taken as a whole, never in part.
struct Entry {
    Signposter::Record record;
    Entry* next = nullptr;
};

std::atomic<bool> isRecording = false;
std::atomic<Entry*> latest = nullptr;

std::uint64_t currentThread() {
    static std::atomic<std::uint64_t> threads = 0;
    thread_local const std::uint64_t thread = ++threads;
    return thread;
}

} // namespace

Signposter::Interval::Interval(const Signposter& signposter, const char* name, std::string message)
    : m_record{signposter.m_subsystem, signposter.m_category, name, std::move(message), {}, {}, 0},
      m_isRecorded(isRecording.load(std::memory_order_relaxed)) {
    DTRACE_PROBE4(tamo, interval_begin, m_record.subsystem, m_record.category, m_record.name,
                  m_record.message.c_str());
    if (m_isRecorded) {
        m_record.thread = currentThread();
        m_record.begin = std::chrono::steady_clock::now();
    }
}

Signposter::Interval::~Interval() {
    DTRACE_PROBE4(tamo, interval_end, m_record.subsystem, m_record.category, m_record.name,
                  m_record.message.c_str());
    if (m_isRecorded) {
        m_record.duration = std::chrono::steady_clock::now() - m_record.begin;
        auto* const entry = new Entry{std::move(m_record), latest.load(std::memory_order_relaxed)};
        while (!latest.compare_exchange_weak(entry->next, entry, std::memory_order_release,
                                             std::memory_order_relaxed)) {
        }
    }
}

Signposter::Interval Signposter::interval(const char* name, std::string message) const {
    return {*this, name, std::move(message)};
}

void Signposter::setRecording(bool isRecordingNow) { isRecording = isRecordingNow; }

std::vector<Signposter::Record> Signposter::takeRecords() {
    std::vector<Record> records;
    for (Entry* entry = latest.exchange(nullptr, std::memory_order_acquire); entry != nullptr;) {
        const std::unique_ptr<Entry> taken(std::exchange(entry, entry->next));
        records.push_back(std::move(taken->record));
    }
    std::ranges::reverse(records);
    std::ranges::stable_sort(records, {}, &Record::begin);
    return records;
}

QByteArray Signposter::trace(std::span<const Record> of) {
    using Microseconds = std::chrono::duration<double, std::micro>;
    QJsonArray events;
    for (const Record& record : of) {
        QJsonObject arguments = {{QStringLiteral("subsystem"), QLatin1String(record.subsystem)}};
        if (!record.message.empty()) {
            arguments.insert(QStringLiteral("message"), QString::fromStdString(record.message));
        }
        events.append(QJsonObject{
            {QStringLiteral("ph"), QStringLiteral("X")},
            {QStringLiteral("name"), QLatin1String(record.name)},
            {QStringLiteral("cat"), QLatin1String(record.category)},
            {QStringLiteral("ts"), Microseconds(record.begin.time_since_epoch()).count()},
            {QStringLiteral("dur"), Microseconds(record.duration).count()},
            {QStringLiteral("pid"), QCoreApplication::applicationPid()},
            {QStringLiteral("tid"), static_cast<qint64>(record.thread)},
            {QStringLiteral("args"), arguments},
        });
    }
    return QJsonDocument(QJsonObject{{QStringLiteral("traceEvents"), events}}).toJson(QJsonDocument::Compact);
}
