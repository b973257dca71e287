#pragma once

#include "Bytes.h"
#include "FileFailure.h"

#include <QSaveFile>
#include <QString>

#include <expected>
#include <memory>
#include <optional>

/// A file that is written whole or not at all: until `commit` succeeds, what was there stays as it was, and
/// it does when this object goes without it.
///
/// A link is followed to the file that it leads to, which is created when it is missing. The new file takes
/// over the mode, the owner, the group and the extended attributes, access lists among them, as far as the
/// user may set them. Other hard links to the old file keep its old contents.
class AtomicFile {
public:
    /// Writes nothing yet.
    static std::expected<AtomicFile, FileFailure> open(const QString& path);

    /// Adds `bytes`. A failure shows when committing.
    void write(Bytes bytes);

    /// Puts what was written in the place of the file. The object is spent.
    std::expected<void, FileFailure> commit();

private:
    explicit AtomicFile(std::unique_ptr<QSaveFile> file) : m_file(std::move(file)) {}

    std::unique_ptr<QSaveFile> m_file;
    std::optional<FileFailure> m_failure; ///< The first of a write.
};
