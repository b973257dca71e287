#pragma once

#include "FileFailure.h"

#include <expected>
#include <filesystem>
#include <utility>

/// What a file holds, safe in a copy beside it while the file itself is written. The copy's name is the
/// file's with a suffix, so that the user finds it if the system ends meanwhile. No file is ever overwritten
/// by it.
class KeptCopy {
public:
    static constexpr const char* suffix = ".tamo-copia";

    /// Keeps what the file at `path` holds, which is open as `contents`. Returns when the disk has the copy.
    static std::expected<KeptCopy, FileFailure> of(const std::filesystem::path& path, int contents);

    /// The copy is needed no more.
    void remove() const;

    /// Puts what is kept back into the file, which is open for writing; false where that fails.
    bool putBack(int into) const;

    const std::filesystem::path& path() const { return m_path; }

private:
    explicit KeptCopy(std::filesystem::path path) : m_path(std::move(path)) {}

    std::filesystem::path m_path;
};
