#pragma once

#include "RecoveryScan.h"
#include "RecoveryState.h"

#include <optional>

/// Makes a text of the records of a log, as far as it is safe.
///
/// Where a payload is damaged, the head still tells which range it replaces and by how many units: what can
/// be decoded takes its place, filled up with U+FFFD, and all that follows stands where it stood. Where
/// records are missing, the replay goes on only if nothing is unknown that later records depend on: a piece
/// of the text that the log starts with, or a commit. Else the text is the one of the last commit before.
class RecoveryReplay {
public:
    /// `scan` outlives the replay.
    explicit RecoveryReplay(const RecoveryScan& scan) : m_scan(scan) {}

    /// The text at the last commit that could be reached. Where there was none, what is left of the text that
    /// the log starts with. Absent if nothing of a text is there.
    std::optional<RecoveredText> text();

private:
    using Record = RecoveryScan::Record;

    bool bridge(const RecoveryRecord::Head& to);
    bool take(const Record& record);
    bool takeReplacement(const Record& record);
    bool takeCommit(const Record& record);
    void commit(const RecoveryMoment& moment);
    void fillUpTo(Offset size);

    const RecoveryScan& m_scan;
    RecoveryRecord::Position m_next; ///< Of the record that should come next.
    RecoveryFacts m_facts;
    Rope m_text;
    bool m_isDamaged = false;
    std::optional<RecoveredText> m_committed;
};
