#pragma once

#include "OutlineContents.h"
#include "ParsedDocument.h"
#include "RopeFlattener.h"

#include <QObject>
#include <QTimer>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <stop_token>
#include <vector>

/// Parses the text of one session off the main thread, after a delay, one parse at a time. A new request
/// supersedes the one before, whose result is then never delivered, even when it is ready.
///
/// Lives on the main thread, as do the steps that it calls. Its end cancels whatever is under way and waits
/// for nothing.
class ReparseScheduler : public QObject {
    Q_OBJECT

public:
    /// The text to parse, the buffer's generation at which it was taken, and what the outline shows.
    struct Snapshot {
        Rope text;
        std::int64_t generation = 0;
        OutlineContents::Request outline = {};
    };

    /// What a parse yields, whole: nothing of it is computed on the main thread.
    struct Result {
        std::shared_ptr<ParsedDocument> document; ///< Null where the memory was too short for it.
        OutlineContents outline;
    };

    /// Is given the text of a snapshot in one array, in which the parse reads it, before the parse is over.
    using MoveStep = std::function<void(const Rope& same, std::int64_t generation)>;

    using SnapshotStep = std::function<Snapshot()>;
    using DeliveryStep = std::function<void(Result)>;

    explicit ReparseScheduler(QObject* parent = nullptr);
    ~ReparseScheduler() override;

    /// From now on, `onMove` is called each time a parse had to copy the text. The document can then use the
    /// copy, so that the memory of its old storage is freed.
    void setOnMove(MoveStep onMove) { m_onMove = std::move(onMove); }

    /// Has `snapshot` asked for the text once `delay` is over, later than this call even for no delay, and
    /// `deliver` given the result; neither if another request arrives first.
    void schedule(std::chrono::milliseconds delay, SnapshotStep snapshot, DeliveryStep deliver);

    /// Parses at once and answers with the result; the parse itself is given to `run`, which calls it before
    /// it returns, on whatever thread. What was requested before is not delivered any more.
    Result parseNow(Snapshot snapshot, const std::function<void(const std::function<void()>&)>& run);

    /// Takes a result that its owner needs no more: a large one is neither freed on the main thread nor
    /// wasted: the next parse writes into its storage, unless that is still shared. After a rest without a
    /// parse it is freed.
    void recycle(Result old);

    /// Frees `text` on a worker.
    static void free(Rope text);

private:
    struct Job;

    Job job(Snapshot snapshot);
    void cancel();
    void start();
    void finish(Job& job);
    void freeUnused();
    void requireThread() const;

    QTimer m_timer;
    SnapshotStep m_snapshot;
    DeliveryStep m_deliver;
    MoveStep m_onMove;
    QTimer m_rest; ///< Since the last parse.
    std::stop_source m_task;  ///< Of the latest request.
    bool m_isParsing = false; ///< A parse is under way, cancelled or not.
    bool m_isDue = false;     ///< The latest request waits for a cancelled parse to end.

    /// What the next parse uses again; the worker's while it parses.
    std::shared_ptr<RopeFlattener> m_flattener;
    std::vector<Result> m_old;
};
