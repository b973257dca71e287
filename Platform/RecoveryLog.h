#pragma once

#include "RecoveryRecord.h"

#include <QString>

#include <cstdint>
#include <expected>
#include <future>
#include <optional>
#include <span>
#include <utility>
#include <vector>

/// The file in which the unsaved text of one document is kept, as it is written: first what the text is, then
/// what became of it. `RecoveryRecord` has its format.
///
/// What was committed is never touched again, so that a crash while writing leaves it whole. It outlives
/// the program from `commit` on, and a loss of power once a `sync` is done, provided the disk tells the
/// truth.
class RecoveryLog {
public:
    /// Starts a log in a new file, which only the user may read.
    static std::expected<RecoveryLog, FileFailure> create(const QString& path, RecoveryLineage lineage);

    RecoveryLog(RecoveryLog&& other) noexcept;
    RecoveryLog& operator=(RecoveryLog&& other) noexcept;
    ~RecoveryLog();

    /// Each adds to what the next commit makes count. Failures show there.
    void add(const RecoveryFacts& facts);
    void add(std::span<const RecoveryEdit> edits);

    /// The same with at most `longestReplacement` units.
    void add(SourceRange range, std::u16string_view units);

    /// Makes what was added count, as the text of `textSize` units at `moment`. When that fails, nothing of
    /// it was added, and the next try may do better.
    std::expected<void, FileFailure> commit(const RecoveryMoment& moment, Offset textSize);

    /// Has the disk take all that was committed, on another thread, while more is added. After a failure
    /// nobody knows what the disk has, and the text is to be written to a new file.
    std::future<std::expected<void, FileFailure>> sync() const;

    /// Whether another commit would be found. When not, a new file has to be written.
    bool isUsable() const { return m_isUsable; }

    /// How many bytes were committed.
    std::uint64_t size() const { return m_committed.size; }

private:
    /// Where the next record goes.
    struct End {
        std::uint64_t size = 0;
        RecoveryRecord::Position position;
    };

    explicit RecoveryLog(int number) : m_number(number) {}

    void write();
    void giveUpUncommitted();

    int m_number;
    std::uint64_t m_salt = 0;
    RecoveryRecord::ByteString m_waiting; ///< Added, but not in the file yet.
    End m_end;
    End m_committed;
    std::optional<FileFailure> m_failure; ///< The first since the last commit.
    bool m_isUsable = true;
};
