#pragma once

#include "Bytes.h"
#include "FileFailure.h"
#include "FileReplacement.h"
#include "TemporaryFile.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <stop_token>
#include <utility>

/// A file that is written whole or not at all: until `commit` succeeds, what was there stays as it was, and
/// it does when this object goes without it.
///
/// A link is followed to the file that it leads to, which is created when it is missing. The new file takes
/// over the mode, the owner, the group and the extended attributes, access lists among them, as far as the
/// user may set them.
class AtomicFile {
public:
    /// Writes nothing yet. Once `stop` is requested, nothing more is written, and committing fails.
    static std::expected<AtomicFile, FileFailure> open(const QString& path, std::stop_token stop = {});

    /// Adds `bytes`. A failure shows when committing.
    void write(Bytes bytes);

    /// Has the disk take what was written, then puts it in the place of the file as `how` says. The object is
    /// spent. `stopped` when `how` does not let it; then nothing has changed.
    ///
    /// A file that all its names are to share is no longer written whole or not at all: what it held is kept
    /// in a copy beside it until the disk has the new bytes, and put back after a failure. If that fails,
    /// too, or the system ends meanwhile, the copy stays (`KeptCopy`).
    std::expected<void, FileFailure> commit(const FileReplacement& how = {});

    /// How many names the file at `path` has, hard links; 0 where there is no file.
    static std::size_t nameCount(const QString& path);

    /// Waits until the disk has the name of the file at `path`: only then does a committed file outlast a
    /// failure of the system. Disks that cannot tell count as having it.
    static std::expected<void, FileFailure> syncName(const QString& path);

private:
    AtomicFile(TemporaryFile file, std::filesystem::path target, std::stop_token stop)
        : m_file(std::move(file)), m_target(std::move(target)), m_stop(std::move(stop)) {}

    void writePiece(Bytes piece);
    void pace();
    void push(std::int64_t from, std::int64_t to, unsigned flags);
    std::expected<void, FileFailure> replace(const FileReplacement& how);
    std::expected<TemporaryFile, FileFailure> namedCopy() const;
    std::expected<void, FileFailure> writeThrough(const FileReplacement& how);

    TemporaryFile m_file;
    std::filesystem::path m_target;
    std::stop_token m_stop;
    std::int64_t m_size = 0;
    std::int64_t m_paced = 0;             ///< Up to here the disk was asked to take it.
    std::optional<FileFailure> m_failure; ///< The first of a write.
};
