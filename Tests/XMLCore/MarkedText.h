#pragma once

#include "SourceText.h"
#include "TextEdit.h"

#include <span>
#include <string>
#include <string_view>

/// A text with a caret or a selection, as tests write it: `<a|` has its caret at the end, `|<a|>` selects
/// `<a`.
struct MarkedText {
    SourceText text;
    SourceRange selection;

    /// Reads a text with one or two `|`.
    explicit MarkedText(std::u16string_view marked);

    Offset caret() const { return selection.lower; }
};

/// `text` with one `|` at a caret, or two around a selection.
std::u16string marked(std::u16string text, SourceRange selection);

/// `text` after `edits`, with `selection`, a range of the result, marked.
std::u16string marked(const SourceText& text, std::span<const TextEdit> edits, SourceRange selection);
