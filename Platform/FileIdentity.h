#pragma once

#include "FileFailure.h"

#include <QString>

#include <cstdint>
#include <expected>
#include <optional>
#include <stop_token>

/// Which file stood at a path, and in which version, when somebody looked.
///
/// Two looks at an untouched file are equal but for the hash, which a look need not take. Whoever changes a
/// file without changing its size twice in one tick of the disk's clock is found out by the hash only.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t size = 0;                   ///< In bytes.
    std::int64_t modified = 0;                ///< Nanoseconds since 1970 in UTC.
    std::optional<std::uint64_t> contentHash; ///< Of all bytes; nothing when nobody read them.

    /// A look at what the disk knows of the file, which `path` may lead to by a link. Reads none of it. Only
    /// regular files have an identity.
    static std::expected<FileIdentity, FileFailure> of(const QString& path);

    /// The same with the hash; reads the whole file. Without the hash when the file never holds still.
    /// `stopped` soon after a request to stop.
    static std::expected<FileIdentity, FileFailure> withContent(const QString& path,
                                                                const std::stop_token& stop = {});

    /// Whether the disk says that it is the same file, untouched. Hashes do not matter.
    bool isUntouched(const FileIdentity& since) const;

    /// Whether the contents are known to be the same, be it in another file.
    bool hasSameContent(const FileIdentity& as) const;

    bool operator==(const FileIdentity&) const = default;
};
