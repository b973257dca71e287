#pragma once

#include "Bytes.h"
#include "RecoveryRecord.h"

#include <optional>
#include <vector>

/// The records of a log, found in its bytes whatever happened to them.
struct RecoveryScan {
    struct Record {
        RecoveryRecord::Head head;
        Bytes payload;        ///< As it was found. May be shorter than was written.
        bool isWhole = false; ///< Whether the payload is what was written.
    };

    RecoveryRecord::Header header;
    std::vector<Record> records; ///< In the order in which they were written, each once. They borrow the log.
    bool isDamaged = false;      ///< More is wrong with the log than that its end is cut off.

    /// Reads the records of `log`, in time that is linear in its length. Absent if the header is lost, and
    /// with it what tells the records of this log from other bytes.
    static std::optional<RecoveryScan> of(Bytes log);
};
