#pragma once

#include "FileFailure.h"

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>

/// A file in the folder of another one, the target, whose place it is to take. It has no name until shortly
/// before that where the disk can do so; then a kill leaves nothing behind.
///
/// A name tells the program and the target, and is short whatever the target's name is. The file is locked as
/// long as this object and this process live, so that one that is not locked is left over, and is removed by
/// the next save of the target.
class TemporaryFile {
public:
    enum class Naming : std::uint8_t { late, atOnce };

    /// Empty and open for writing; first removes what is left over for `target`, which is no link.
    static std::expected<TemporaryFile, FileFailure> create(const std::filesystem::path& target,
                                                            Naming naming = Naming::late);

    TemporaryFile(TemporaryFile&& other) noexcept;
    TemporaryFile& operator=(TemporaryFile&&) = delete;

    /// Removes the file unless it is in the target's place.
    ~TemporaryFile();

    int number() const { return m_number; }

    /// Gives the file a name if it has none. After that `takePlace` needs no more room on the disk.
    std::expected<void, FileFailure> giveName();

    /// Moves the file, which has a name, to the target's place.
    std::expected<void, FileFailure> takePlace();

    /// Removes the files that processes which are gone left for `target`.
    static void removeLeftOver(const std::filesystem::path& target);

private:
    TemporaryFile(int number, std::filesystem::path target) : m_number(number), m_target(std::move(target)) {}

    int m_number;
    std::filesystem::path m_target;
    std::optional<std::filesystem::path> m_name;
};
