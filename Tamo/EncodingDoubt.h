#pragma once

#include "TextEncodingDetector.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <string>

/// What had to be assumed about the encoding of a file that was read.
struct EncodingDoubt {
    enum class Kind : std::uint8_t {
        illegal,       ///< Its bytes are illegal in its encoding; they were read as ISO Latin 1.
        unknownName,   ///< It declares a name that is unknown.
        undeclared,    ///< It declares none, and is not UTF-8; it was read as ISO Latin 1.
        unmarkedUTF16, ///< It seems to be UTF-16 without a mark.
    };
    enum class Legality : std::uint8_t { legal, illegal };

    Kind kind;
    std::string declared;    ///< As written in the file; empty where a mark told.
    StringEncoding encoding; ///< In which it is written when it is saved.

    /// Of a file that starts with `start` and was read as `detection` says, if it was legal so.
    static std::optional<EncodingDoubt> of(Bytes start, const Detection& detection, Legality legality);

    /// What the file seems to be written in; nothing where only the user can know.
    std::optional<StringEncoding> guess() const;

    /// What to tell the user of the file `name`: what was assumed, and what saving rewrites.
    QString message(const QString& name) const;

    bool operator==(const EncodingDoubt&) const = default;
};
