#include "EditComposition.h"

#include <algorithm>
#include <cstddef>
#include <ranges>
#include <utility>

EditComposition::Piece EditComposition::Piece::part(std::size_t from, std::size_t count) const {
    if (!added.empty()) {
        return {{}, added.substr(from, count)};
    }
    return {SourceRange::at(kept.lower + static_cast<std::int64_t>(from), static_cast<std::int64_t>(count)),
            {}};
}

EditComposition::EditComposition(Offset count) : m_count(count) {
    if (count > 0) {
        m_pieces.push_back({{0, count}, {}});
    }
}

void EditComposition::add(std::span<const TextEdit> edits) {
    std::vector<Piece> result;
    result.reserve(m_pieces.size() + 2 * edits.size());
    std::size_t piece = 0;
    std::size_t inPiece = 0;
    std::size_t at = 0;
    // Moves forward to offset `until` of the current text, and copies the units on the way to `result` if
    // `keeps`.
    const auto advance = [&](std::size_t until, bool keeps) {
        precondition(at <= until, "edits do not overlap");
        while (at < until) {
            precondition(piece < m_pieces.size(), "an edit lies inside the text");
            const std::size_t count = std::min(m_pieces[piece].length() - inPiece, until - at);
            if (keeps) {
                result.push_back(m_pieces[piece].part(inPiece, count));
            }
            at += count;
            inPiece += count;
            if (inPiece == m_pieces[piece].length()) {
                ++piece;
                inPiece = 0;
            }
        }
    };
    for (TextEdit& edit : TextEdit::applicationOrder(edits) | std::views::reverse) {
        advance(edit.range.lower, true);
        if (!edit.replacement.empty()) {
            result.push_back({{}, std::move(edit.replacement)});
        }
        advance(edit.range.upper, false);
    }
    std::size_t end = at;
    for (std::size_t rest = piece; rest < m_pieces.size(); ++rest) {
        end += m_pieces[rest].length() - (rest == piece ? inPiece : 0);
    }
    advance(end, true);
    m_pieces = std::move(result);
}

std::vector<TextEdit> EditComposition::edits() const {
    std::vector<TextEdit> edits;
    Offset kept = 0;
    std::u16string added;
    const auto closeAt = [&](Offset lower) {
        if (lower != kept || !added.empty()) {
            edits.push_back({{kept, lower}, std::exchange(added, {})});
        }
    };
    for (const Piece& piece : m_pieces) {
        if (piece.added.empty()) {
            closeAt(piece.kept.lower);
            kept = piece.kept.upper;
        } else {
            added += piece.added;
        }
    }
    closeAt(m_count);
    return edits;
}
