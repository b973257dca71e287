#pragma once

#include "Document.h"
#include "FileIdentity.h"
#include "SaveGate.h"

#include <QString>

#include <cstdint>
#include <expected>
#include <memory>
#include <optional>

/// One save of a document to its file, for a worker. Asks the user nothing: where only the user can decide,
/// nothing is written, and the outcome says what to ask.
struct FileSave {
    enum class Outcome : std::uint8_t {
        saved,
        unconfirmed, ///< Written, but the disk does not say that it has the file's name.
        failed,
        cancelled,
        changed,          ///< Not the known file is there.
        changedMeanwhile, ///< Another program changed the file while this one wrote.
        shared,           ///< The file has other names, and it is not said what is to become of them.
    };

    struct Result {
        Outcome outcome = Outcome::failed;
        std::optional<WriteFailure> failure; ///< Why it failed.
        std::optional<FileIdentity> version; ///< Of the file that was written.
    };

    QString path;
    Document::Write write;
    std::optional<FileIdentity> known; ///< The file that may be replaced; nothing for none.
    /// Whether the file that is there now may be replaced, known or not.
    bool replacesAny = false;
    std::optional<FileReplacement::Links> links; ///< What the user wants; nothing until there was a question.
    std::shared_ptr<SaveGate> gate;              ///< Where the user cancels.

    Result run() const;
};
