#pragma once

#include "RecoveryLog.h"
#include "RecoverySession.h"
#include "RecoveryState.h"

#include <QString>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

/// How soon and how sparingly unsaved texts are kept.
struct RecoveryPace {
    /// From the first change that is not kept to the writing of all that there are by then.
    std::chrono::milliseconds flushDelay{200};

    /// From a failure to the next try; doubles with each failure that follows, up to the longest.
    std::chrono::milliseconds retryDelay{1000};
    std::chrono::milliseconds longestRetryDelay{60'000};

    /// A log is written anew when the changes in it take more bytes than a quarter of the text that it starts
    /// with, but not below the one nor beyond the other of these.
    std::uint64_t leastChanges = std::uint64_t{256} << 10;
    std::uint64_t mostChanges = std::uint64_t{16} << 20;
};

/// Keeps the unsaved text of one document in a log, on a thread of its own, which it starts with the first
/// change. Whoever edits only leaves notes: no function here waits for the disk.
///
/// A change is in the log, and outlives the program, soon after the pace's delay. Right then the disk is told
/// to take it, and once that has answered, it outlives a loss of power as well; no later change waits for
/// that.
///
/// A new log is written beside the old one and takes its place when the disk has it. Until then the old one,
/// where it is good, goes on receiving what changes. A new text, for which there is no old log, is in no file
/// until it is wholly written, which for 100 MB takes part of a second.
class RecoveryWriter {
public:
    /// Hears of failures to keep the text, on the writer's thread.
    using FailureStep = std::function<void(FileFailure, const QString& folder)>;

    /// A log of the session, already there, that holds the text so far.
    struct Taken {
        QString path;
        RecoveryLineage lineage;
    };

    /// `taken` is absent for a text that no log holds yet.
    RecoveryWriter(std::shared_ptr<RecoverySession> session, const RecoveryPace& pace, RecoveryFacts facts,
                   const std::optional<Taken>& taken, FailureStep onFailure);

    /// Ends the thread soon, after it wrote what there is to write.
    ~RecoveryWriter();

    /// `edits` made `text` at `moment`. Without them the whole text is written.
    void add(std::optional<RecoveryEdits> edits, const Rope& text, const RecoveryMoment& moment);

    /// The text is stored elsewhere: `text` has the same units.
    void moveTo(const Rope& text);

    /// Goes with the next change.
    void setSelection(SourceRange selection);

    /// What the text is from now on. Where a text is kept, it is kept anew, with them.
    void setFacts(const RecoveryFacts& facts, const Rope& text, const RecoveryMoment& moment);

    /// What is kept is removed; the next change begins anew.
    void forget();

    /// Waits until there is nothing to write; answers whether that came before the time was over.
    bool waitUntilIdle(std::chrono::milliseconds timeout) const;

private:
    class Work;

    std::shared_ptr<Work> m_work;
};
