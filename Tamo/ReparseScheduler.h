#pragma once

#include "DocumentTree.h"
#include "IndentStyle.h"
#include "LineIndex.h"
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
    /// The text to parse, and the buffer's generation at which it was taken.
    struct Snapshot {
        Rope text;
        std::int64_t generation = 0;
    };

    /// What a parse yields, whole: nothing of it is computed on the main thread.
    struct Result {
        DocumentTree tree;
        LineIndex lines;
        IndentStyle indent;
        std::int64_t generation = 0; ///< That of the snapshot.
    };

    using SnapshotStep = std::function<Snapshot()>;
    using DeliveryStep = std::function<void(Result)>;

    explicit ReparseScheduler(QObject* parent = nullptr);
    ~ReparseScheduler() override;

    /// Has `snapshot` asked for the text once `delay` is over, later than this call even for no delay, and
    /// `deliver` given the result; neither if another request arrives first.
    void schedule(std::chrono::milliseconds delay, SnapshotStep snapshot, DeliveryStep deliver);

    /// Takes a result that nobody needs any more: a large one is neither freed on the main thread nor
    /// wasted, for the next parse writes into its storage.
    void recycle(Result old);

private:
    struct Job;

    void start();
    void finish(Job& job);
    void requireThread() const;

    QTimer m_timer;
    SnapshotStep m_snapshot;
    DeliveryStep m_deliver;
    std::stop_source m_task;  ///< Of the latest request.
    bool m_isParsing = false; ///< A parse is under way, cancelled or not.
    bool m_isDue = false;     ///< The latest request waits for a cancelled parse to end.

    /// What the next parse uses again; the worker's while it parses.
    std::shared_ptr<RopeFlattener> m_flattener;
    std::vector<Result> m_old;
};
