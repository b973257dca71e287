#pragma once

#include "Bytes.h"

#include <filesystem>

#include <sys/types.h>

/// A file that is open as long as this object lives, for the calls of the system, which leave why they failed
/// in `errno`. Processes that this one starts do not inherit it.
class OpenFile {
public:
    OpenFile(const std::filesystem::path& path, int flags, mode_t mode = 0);
    ~OpenFile();
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    /// Whether it could be opened.
    explicit operator bool() const { return m_number >= 0; }
    int number() const { return m_number; }

private:
    int m_number;
};

/// The folder that `file` is in.
std::filesystem::path folderOf(const std::filesystem::path& file);

/// Has the disk take what was written to the file or the folder. False with `errno` where that fails; disks
/// that cannot tell count as having it.
bool syncFile(int file);

/// Writes all of `bytes` from `at` on; false with `errno` where that fails.
bool writeAll(int file, Bytes bytes, off_t at);

/// Gives the file `to` the bytes of the file `from` and no others, and has the disk take them; false with
/// `errno` where that fails.
bool copyContents(int from, int to);
