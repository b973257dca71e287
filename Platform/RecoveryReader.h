#pragma once

#include "FileFailure.h"
#include "RecoveryState.h"

#include <QString>

#include <cstdint>
#include <expected>
#include <variant>

/// Reading a recovery log back. May run on any thread; takes the memory of the log and of its text.
namespace RecoveryReader {

/// Why a log gives no text.
struct Failure {
    enum class Kind : std::uint8_t {
        unreadable, ///< The disk does not give the file.
        empty,      ///< No text was ever begun: there is nothing to lose.
        unfinished, ///< A text was begun, but the writing stopped before all of it was there.
        damaged,    ///< Not what was written.
    };
    Kind kind = Kind::unreadable;
    FileFailure cause = FileFailure::other; ///< Of `unreadable`.
};

/// The text at the last moment that was wholly kept in the file at `path`.
std::expected<RecoveredText, Failure> read(const QString& path);

} // namespace RecoveryReader
