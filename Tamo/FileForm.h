#pragma once

#include "DocumentError.h"
#include "EncodingChoice.h"
#include "FileContents.h"
#include "FileReplacement.h"
#include "Rope.h"

#include <QString>

#include <expected>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>

/// How the text of a document is written as a file, and what was read there. A value: copies share text and
/// bytes, and may be used on any thread.
struct FileForm {
    EncodingChoice choice;
    bool isChosen = false; ///< By the user, whatever the file declares: it is read so again.

    /// As the file had it; empty for a new document, and from `forgetReadText` on.
    SourceText readText;
    /// What was read, where encoding `readText` gives other bytes: some encodings spell one character in
    /// several ways. Empty otherwise.
    FileContents readBytes;
    EncodingChoice readChoice; ///< How `readBytes` were decoded.

    /// Puts the bytes of `snapshot` in the place of the file `path`, whole or not at all. A text that is
    /// still the one that was read gives the bytes that were read wherever they are legal in the encoding.
    /// `stopped` where `how` says so; the file is as it was then.
    std::expected<void, DocumentError> write(const Rope& snapshot, const QString& path,
                                             const FileReplacement& how = {}) const;

    /// The same bytes in memory.
    std::expected<std::string, DocumentError> encode(const Rope& snapshot) const;

    /// Lets go of `readText`, which takes as much memory as the document, unless `readBytes` need it.
    void forgetReadText() {
        if (readBytes.bytes().empty()) {
            readText = {};
        }
    }

    /// Whether encoding `readText` gives `bytes` again. False after a request to stop.
    bool givesBack(Bytes bytes, const std::stop_token& stop = {}) const;

    /// The first character of `text` that `encoding` does not have; nothing where it has all, or after a
    /// request to stop.
    static std::optional<UnencodableText> unencodable(const Rope& text, const StringEncoding& encoding,
                                                      const std::stop_token& stop = {});

private:
    using Sink = std::function<void(Bytes)>;
    std::expected<void, DocumentError> encodeInto(const Rope& snapshot, const Sink& sink,
                                                  const std::stop_token& stop = {}) const;
};
