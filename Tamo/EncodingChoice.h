#pragma once

#include "StringEncoding.h"
#include "TextEdit.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// How a text is written in bytes: in which encoding, and whether a byte-order mark stands in front.
struct EncodingChoice {
    StringEncoding encoding;
    bool hasMark = false; ///< Only where `canHaveMark`.

    /// With a mark where files need one to be read: in UTF-16.
    static EncodingChoice usual(const StringEncoding& encoding);

    /// What a document means that declares `name`; nothing for an unknown name.
    static std::optional<EncodingChoice> declared(std::u16string_view name);

    static bool canHaveMark(const StringEncoding& encoding);
    static bool needsMark(const StringEncoding& encoding);

    /// The bytes of the mark, which last as long as the program; empty without one.
    Bytes bom() const;

    /// The name to declare this by.
    std::u16string name() const;

    /// Whether a document that declares `name` may be written so.
    bool agrees(std::u16string_view name) const;

    /// Whether a file that is written so and starts with `start` is read so again. `start` is the start of a
    /// text, all of it or at least 256 units.
    bool isReadBack(std::u16string_view start) const;

    /// Whether a file that declares this is read so again. There are encodings whose declaration shows only
    /// to those who know it already.
    bool canBeDeclared() const;

    /// The edit after which the text that starts with `start` declares this; nothing where it needs none: it
    /// declares this already, or this is what goes without saying. A new line ends with `lineEnding`.
    std::optional<TextEdit> declaration(std::u16string_view start, std::u16string_view lineEnding) const;

    bool operator==(const EncodingChoice&) const = default;
};

/// What keeps a file from being read as it would be written.
struct EncodingConflict {
    std::u16string declared; ///< The name as the text has it; empty where it declares none.
    EncodingChoice choice;   ///< How the file would be written.

    /// Nothing where all is well with a text that starts with `start`, at most `XMLDeclaration::longest`
    /// units.
    static std::optional<EncodingConflict> of(std::u16string_view start, const EncodingChoice& choice);

    /// How the file would be written if the declaration held; nothing where its name is unknown. Without a
    /// declaration that is UTF-8.
    std::optional<EncodingChoice> asDeclared() const;

    /// How the file would be written if its encoding held.
    EncodingChoice asWritten() const;

    bool operator==(const EncodingConflict&) const = default;
};
