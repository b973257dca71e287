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

    /// The same selection after a replacement, which was not its own: `length` units now stand in the place
    /// of `replaced`. A bound before it stays, behind it moves along, inside it goes to its end; what is put in
    /// at the end of a selection is not selected.
    TextSelection carriedAlong(SourceRange replaced, Offset length) const {
        const auto carried = [&](Offset at) {
            const bool endsHere = !isEmpty() && replaced.isEmpty() && at == range().upper;
            if (at < replaced.upper || (endsHere && at == replaced.lower)) {
                return at <= replaced.lower ? at : replaced.lower + length;
            }
            return at - replaced.length() + length;
        };
        return {carried(anchor), carried(caret)};
    }

    bool operator==(const TextSelection&) const = default;
};
