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
        empty,      ///< Ends before its facts do: no text was ever begun.
        unfinished, ///< A text was begun, but the writing stopped before any of it was there.
        damaged,    ///< Not what was written, and no text is left in it.
        newer,      ///< A newer version of the program wrote it.
    };
    Kind kind = Kind::unreadable;
    FileFailure cause = FileFailure::other; ///< Of `unreadable`.
};

/// The text at the last moment that was wholly kept in the file at `path`, in any version of the format.
/// Damage costs the units that were damaged and is told of; see `RecoveryReplay`.
std::expected<RecoveredText, Failure> read(const QString& path);

} // namespace RecoveryReader
