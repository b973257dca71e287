#pragma once

#include "TextEdit.h"

#include <span>
#include <string>
#include <vector>

/// Composes several changes of a text, made one after the other, into one list of edits of the original text.
class EditComposition {
public:
    /// Starts with an unchanged text of `count` units.
    explicit EditComposition(Offset count);

    /// Adds a change. Its `edits`, in any order, are in the coordinates of the text after all changes added
    /// before. Takes time linear in everything added so far. Aborts if two of the edits overlap or one
    /// reaches beyond the text.
    void add(std::span<const TextEdit> edits);

    /// All changes together as edits of the original text, in ascending order. There is at least one unit
    /// between two edits.
    std::vector<TextEdit> edits() const;

private:
    /// A part of the current text: units kept from the original text, or units that a change inserted.
    struct Piece {
        SourceRange kept;
        std::u16string added; ///< Empty if the units were kept.

        std::size_t length() const { return added.empty() ? kept.length() : added.size(); }
        Piece part(std::size_t from, std::size_t count) const;
    };

    Offset m_count;
    std::vector<Piece> m_pieces; ///< In text order; none is empty.
};
