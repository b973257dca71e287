#pragma once

/// Reports `message` on the error stream and stops the program.
[[noreturn]] void preconditionFailed(const char* message);

/// Stops the program, in every build, unless `holds`. For broken promises between pieces of the program,
/// never for input.
constexpr void precondition(bool holds, const char* message) {
    if (!holds) [[unlikely]] {
        preconditionFailed(message);
    }
}
