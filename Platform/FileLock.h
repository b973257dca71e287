#pragma once

#include "FileFailure.h"

#include <QString>

#include <expected>
#include <optional>

/// A file that is locked for as long as this object and this process live, however they end. Processes that
/// this one starts do not inherit it.
class FileLock {
public:
    /// Creates the file where it is missing. Nothing when another process holds the lock, `missing` when the
    /// folder went meanwhile.
    static std::expected<std::optional<FileLock>, FileFailure> take(const QString& path);

    FileLock(FileLock&& other) noexcept;
    FileLock& operator=(FileLock&&) = delete;
    ~FileLock();

private:
    explicit FileLock(int number) : m_number(number) {}

    int m_number;
};
