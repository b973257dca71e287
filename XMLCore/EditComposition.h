#pragma once

#include "TextEdit.h"

#include <span>
#include <string>
#include <vector>

/// Several changes of a text, made one after the other, told as one list of edits of the text before all of
/// them.
class EditComposition {
public:
    /// Of a text of `count` units, not changed yet.
    explicit EditComposition(Offset count);

    /// Adds `edits`, in any order, of the text as it is after everything that was added before. Takes time
    /// linear in all that was added. Stops the program when two of them overlap or reach beyond the text.
    void add(std::span<const TextEdit> edits);

    /// All changes as edits of the text at the beginning, in ascending order. Between two of them there is at
    /// least one unit.
    std::vector<TextEdit> edits() const;

private:
    /// A stretch of the text: units of the text at the beginning, or units that were put in.
    struct Piece {
        SourceRange kept;
        std::u16string added; ///< Empty where units were kept.

        std::size_t length() const { return added.empty() ? kept.length() : added.size(); }
        Piece part(std::size_t from, std::size_t count) const;
    };

    Offset m_count;
    std::vector<Piece> m_pieces; ///< None of them empty.
};
