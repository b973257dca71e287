#pragma once

#include "SourceText.h"

#include <cstddef>

/// How the document type declaration of one text is read, decided once for all that read the text, so that
/// colours, tree and aids agree.
///
/// By the letter, an apostrophe in a comment of an internal subset opens a quote, which may hide the end of
/// the declaration and so the whole document. Where the first `<!DOCTYPE` before any start tag has no end by
/// the letter, the reading skips the comments and instructions inside its brackets, and keeps the end that
/// this finds.
struct DoctypeReading {
    /// The declaration, from its `<` to just after its `>`. Empty when there is none, when it has no end
    /// either way, and by default: then every declaration is read by the letter.
    SourceRange declaration;

    /// Linear in the text up to its first start tag.
    static DoctypeReading of(const SourceText& text);

    /// The reading of the same text without its first `units` units.
    DoctypeReading after(Offset units) const;

    bool operator==(const DoctypeReading&) const = default;
};
