#pragma once

#include "Document.h"
#include "FileIdentity.h"

#include <QString>

#include <expected>
#include <memory>
#include <optional>
#include <stop_token>

/// What a file held when it was read, and which version of the file that was.
struct DocumentReading {
    std::expected<std::unique_ptr<DocumentContents>, QString> contents; ///< Or why not, for the user.
    std::optional<FileIdentity> version;                                ///< Without the hash.

    /// What a reading of the file at `path` gives for which there is too little memory.
    static DocumentReading withoutMemory(const QString& path);

    /// Reads the file at `path`, on any thread. A file that is changed meanwhile counts as changed since.
    static DocumentReading of(const DocumentType& type, const QString& path, const std::stop_token& stop);

    /// The same, and gets the contents ready for a document whose `preparation` that is.
    static DocumentReading of(const DocumentType& type, const QString& path,
                              const Document::Preparation& preparation, const std::stop_token& stop);
};
