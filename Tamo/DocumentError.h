#pragma once

#include "FileFailure.h"
#include "StringEncoding.h"

#include <QString>

#include <cstddef>
#include <variant>

/// The first character of a document that its encoding does not have.
struct UnencodableText {
    char32_t character = 0;
    std::size_t line = 1; ///< Counted from 1.
    StringEncoding encoding;

    bool operator==(const UnencodableText&) const = default;
};

/// Why a document could not be read from its file, or written to it.
struct DocumentError {
    enum class Action : std::uint8_t { read, write };

    Action action = Action::read;
    std::variant<FileFailure, DecodeFailure, UnencodableText> cause;

    bool operator==(const DocumentError&) const = default;
};

/// What to tell the user, in Spanish, about `error` with the file `path`: a sentence that names the file and
/// the cause.
QString message(const DocumentError& error, const QString& path);

/// The title of the button that has the document saved in UTF-8, where that would do away with `error`; else
/// empty.
QString remedyTitle(const DocumentError& error);
