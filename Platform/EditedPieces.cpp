#include "EditedPieces.h"

#include <algorithm>

namespace {

using Piece = EditedPieces::Piece;

constexpr std::size_t mostPieces = 1000;
constexpr Offset longestSlide = 4096;

/// How far what stands behind `piece` has moved.
std::int64_t shiftBehind(const Piece& piece) {
    return std::int64_t(piece.now.upper) - std::int64_t(piece.then.upper);
}

Offset moved(Offset offset, std::int64_t distance) {
    return static_cast<Offset>(std::int64_t(offset) + distance);
}

/// How far to the left `changed`, all of a piece in the text that has it, may go to start with `first`; 0
/// when it cannot. `limit` is where the piece before ends.
Offset slide(char16_t first, SourceRange changed, Offset limit, std::u16string_view text) {
    const Offset most = std::min({changed.lower - limit, changed.length(), longestSlide});
    for (Offset steps = 0; steps <= most; ++steps) {
        if (text[changed.lower - steps] == first) {
            return steps;
        }
        if (steps == most || text[changed.lower - steps - 1] != text[changed.upper - steps - 1]) {
            break;
        }
    }
    return 0;
}

} // namespace

void EditedPieces::add(SourceRange edited, Offset length) {
    const std::int64_t delta = std::int64_t(length) - std::int64_t(edited.length());
    const auto first = std::ranges::partition_point(
        m_pieces, [&](const Piece& piece) { return piece.now.upper < edited.lower; });
    const auto end = std::partition_point(
        first, m_pieces.end(), [&](const Piece& piece) { return piece.now.lower <= edited.upper; });
    const std::int64_t before = first == m_pieces.begin() ? 0 : shiftBehind(*(first - 1));
    const std::int64_t through = end == m_pieces.begin() ? 0 : shiftBehind(*(end - 1));
    Piece added{SourceRange::unchecked(moved(edited.lower, -before), moved(edited.upper, -through)), edited};
    if (first != end) {
        const Piece& last = *(end - 1);
        added.then.lower = std::min(added.then.lower, first->then.lower);
        added.now.lower = std::min(added.now.lower, first->now.lower);
        if (last.now.upper >= edited.upper) {
            added.then.upper = last.then.upper;
            added.now.upper = last.now.upper;
        }
    }
    added.now.upper = moved(added.now.upper, delta);
    for (auto behind = end; behind != m_pieces.end(); ++behind) {
        behind->now = behind->now.shifted(delta);
    }
    // A whole range is rarely replaced: mostly the last piece grows, or one is put in.
    if (first != end) {
        *first = added;
        m_pieces.erase(first + 1, end);
    } else {
        m_pieces.insert(first, added);
    }
    if (m_pieces.size() > mostPieces) {
        mergeNeighbours();
    }
}

void EditedPieces::align(char16_t first, std::u16string_view then, std::u16string_view now) {
    Piece before;
    for (Piece& piece : m_pieces) {
        Offset steps = 0;
        if (piece.then.isEmpty() && !piece.now.isEmpty()) {
            steps = slide(first, piece.now, before.now.upper, now);
        } else if (piece.now.isEmpty() && !piece.then.isEmpty()) {
            steps = slide(first, piece.then, before.then.upper, then);
        }
        piece = {piece.then.shifted(-std::int64_t(steps)), piece.now.shifted(-std::int64_t(steps))};
        before = piece;
    }
}

/// Halves the number of pieces.
void EditedPieces::mergeNeighbours() {
    std::size_t kept = 0;
    for (std::size_t at = 0; at < m_pieces.size(); at += 2) {
        Piece piece = m_pieces[at];
        if (at + 1 < m_pieces.size()) {
            piece.then.upper = m_pieces[at + 1].then.upper;
            piece.now.upper = m_pieces[at + 1].now.upper;
        }
        m_pieces[kept++] = piece;
    }
    m_pieces.resize(kept);
}

std::optional<Offset> EditedPieces::now(Offset then) const {
    const auto behind =
        std::ranges::partition_point(m_pieces, [&](const Piece& piece) { return piece.then.lower <= then; });
    if (behind == m_pieces.begin()) {
        return then;
    }
    const Piece& piece = *(behind - 1);
    return then < piece.then.upper ? std::nullopt : std::optional(moved(then, shiftBehind(piece)));
}

std::optional<Offset> EditedPieces::then(Offset now) const {
    const auto behind =
        std::ranges::partition_point(m_pieces, [&](const Piece& piece) { return piece.now.lower <= now; });
    if (behind == m_pieces.begin()) {
        return now;
    }
    const Piece& piece = *(behind - 1);
    return now < piece.now.upper ? std::nullopt : std::optional(moved(now, -shiftBehind(piece)));
}
