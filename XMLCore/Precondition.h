#pragma once

/// Writes `message` to the standard error stream and aborts.
[[noreturn]] void preconditionFailed(const char* message);

/// Aborts, in every build, unless `holds` is true. For errors in the program itself, never for wrong input.
constexpr void precondition(bool holds, const char* message) {
    if (!holds) [[unlikely]] {
        preconditionFailed(message);
    }
}
