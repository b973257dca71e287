#pragma once

#include "SourceText.h"

#include <cstddef>

/// Where the document type declaration of a text ends. This is decided once per text and passed to everything
/// that reads the text, so that colours, tree and typing aids agree.
///
///
/// According to the strict rule, an apostrophe in a comment of the internal subset opens a quoted string,
/// which may hide the end of the declaration and so the whole document. If the first `<!DOCTYPE` before any
/// start tag has no end by the strict rule, it is scanned again, and the comments and instructions inside its
/// brackets are skipped.
struct DoctypeReading {
    /// The declaration, from its `<` to just after its `>`. Empty if there is none, if neither scan finds its
    /// end, and by default: then the strict rule applies to every declaration.
    SourceRange declaration;

    /// Takes time linear in the text up to its first start tag or, if the strict rule finds no end of a
    /// declaration, in the whole text.
    static DoctypeReading of(const SourceText& text);

    /// The reading of the same text without its first `units` units; empty if the declaration starts in them.
    DoctypeReading after(Offset units) const;

    bool operator==(const DoctypeReading&) const = default;
};
