#pragma once

#include "SourceRange.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

/// The edits made to a text since a certain moment, as the pieces of it that they replaced: finer than
/// `EditedSpan`, for what has to be found again between two edits far apart.
///
/// Pieces ascend and neither overlap nor touch. There are at most 1,000: beyond that, neighbours become one
/// piece with what lies between them.
class EditedPieces {
public:
    /// A stretch of the text of then, and the stretch of the text of now that stands in its place.
    struct Piece {
        SourceRange then;
        SourceRange now;

        bool operator==(const Piece&) const = default;
    };

    /// Adds an edit of the text of now: `edited` was replaced by `length` units.
    void add(SourceRange edited, Offset length);

    /// An insertion or deletion next to equal units reads the same some units further left: `<c/>` put in
    /// before `<b/>` may be known as `c/><` put in behind the `<`. Moves such pieces to where what was put in
    /// or taken out starts with `first`, if they can start so. `then` and `now` are the two texts.
    void align(char16_t first, std::u16string_view then, std::u16string_view now);

    bool isEmpty() const { return m_pieces.empty(); }
    std::span<const Piece> pieces() const { return m_pieces; }

    /// Where the unit at `then` is now; nothing when it was replaced. What was inserted right before a unit
    /// moves it.
    std::optional<Offset> now(Offset then) const;

    /// Where the unit at `now` was then; nothing when it was put in since.
    std::optional<Offset> then(Offset now) const;

private:
    void mergeNeighbours();

    std::vector<Piece> m_pieces;
};
