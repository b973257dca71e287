#pragma once

#include "ReplacementTemplate.h"
#include "TextSearch.h"

#include <cstdint>
#include <limits>

/// The matches of a text with something in their place, as one replacement: whatever their number, the text
/// is changed in one quick step.
struct TextReplacement {
    SourceRange range; ///< From the first match to the last, or all of the text of the search.
    Rope text;         ///< Takes the place of `range`; shares long stretches with the text of the search.
    std::uint64_t count = 0;                            ///< How many matches are replaced.
    Offset caret = 0;                                   ///< Where the caret of the search is in the new text.
    SearchEnd::Reason reason = SearchEnd::Reason::done; ///< Nothing is replaced but for `done`.
    bool isTooLong = false; ///< The new text would have more units than it may; nothing is replaced.

    /// The matches that start in `starts`, replaced; `caret` is an offset of the text. The new text may have
    /// `longest` units.
    static TextReplacement make(const TextSearch& search, SearchedText& text, SourceRange starts,
                                const ReplacementTemplate& with, Offset caret, const std::stop_token& stop,
                                Offset longest = std::numeric_limits<Offset>::max());

    /// `match` replaced, if it is still what the search finds there.
    static TextReplacement ofMatch(SourceRange match, const TextSearch& search, SearchedText& text,
                                   const ReplacementTemplate& with, const std::stop_token& stop);
};
