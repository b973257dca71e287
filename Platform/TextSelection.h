#pragma once

#include "SourceRange.h"

#include <algorithm>

/// What a text view has selected: from where the selection began to where the caret is, either of which may
/// be the lower end. Offsets count UTF-16 units of the text.
struct TextSelection {
    Offset anchor = 0;
    Offset caret = 0;

    static TextSelection at(Offset caret) { return {caret, caret}; }

    /// `range`, the caret at its end.
    static TextSelection of(SourceRange range) { return {range.lower, range.upper}; }

    bool isEmpty() const { return anchor == caret; }
    SourceRange range() const {
        return SourceRange::unchecked(std::min(anchor, caret), std::max(anchor, caret));
    }

    bool operator==(const TextSelection&) const = default;
};
