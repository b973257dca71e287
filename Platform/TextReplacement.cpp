#include "TextReplacement.h"

#include "LargeArray.h"
#include "RopeFlattener.h"

#include <algorithm>
#include <new>
#include <string>

namespace {

/// Shorter stretches between two matches are copied.
constexpr Offset longestCopy = 4096;
/// Units put together before they become part of a rope, in an array of their own: the memory of large arrays
/// goes back to the system at once.
constexpr std::size_t fullBuffer = 2 * 1024 * 1024;

/// Puts the new text together, from its start to its end.
class Builder {
public:
    /// The units of a range of `text`.
    void append(const Rope& text, SourceRange range) {
        if (range.length() > longestCopy) {
            flush();
            m_text = m_text.joined(text.part(range));
        } else {
            const std::size_t size = m_buffer.size();
            m_buffer.resize(size + range.length());
            text.copyTo(range, m_buffer.data() + size);
        }
    }

    /// Where the next units go; whoever appends calls `flushWhenFull` then.
    std::u16string& buffer() { return m_buffer; }

    void flushWhenFull() {
        if (m_buffer.size() >= fullBuffer) {
            flush();
        }
    }

    std::uint64_t size() const { return std::uint64_t(m_text.size()) + m_buffer.size(); }

    Rope text() {
        flush();
        return m_text;
    }

private:
    void flush() {
        const auto units = makeLargeArray<char16_t>(m_buffer.size());
        std::ranges::copy(m_buffer, units.get());
        m_text = m_text.joined(Rope(SourceText(units, m_buffer.size())));
        m_buffer.clear();
    }

    Rope m_text;
    std::u16string m_buffer;
};

/// If most of the new text is new, stores all of it in one array. A parse reads the text in one piece and would
/// have to copy it otherwise, while memory still holds the old text, for undoing, and its tree.
void storeTogether(TextReplacement& replacement, const Rope& old) {
    constexpr Offset large = 4'000'000;
    const Offset kept = old.size() - replacement.range.length();
    if (replacement.text.size() < large || replacement.text.size() < kept) {
        return;
    }
    try {
        const Rope whole = old.replaced(replacement.range, replacement.text);
        replacement.text = whole.movedTo(RopeFlattener().flattened(whole));
        replacement.range = old.fullRange();
    } catch (const std::bad_alloc&) {
        // It is as good in pieces.
    }
}

} // namespace

TextReplacement TextReplacement::make(const TextSearch& search, SearchedText& text, SourceRange starts,
                                      const ReplacementTemplate& with, Offset caret,
                                      const std::stop_token& stop, Offset longest) {
    TextReplacement made;
    Builder builder;
    const Rope& old = text.rope();
    // Where the caret is from the last match before it.
    std::int64_t caretShift = 0;
    const SearchEnd end = search.visitMatches(text, starts, stop, [&](MatchGroups groups) {
        const SourceRange match = groups.front();
        if (made.count == 0) {
            made.range = SourceRange::empty(match.lower);
        }
        builder.append(old, {made.range.upper, match.lower});
        with.append(builder.buffer(), old, groups);
        made.range.upper = match.upper;
        ++made.count;
        const std::int64_t newUpper = made.range.lower + static_cast<std::int64_t>(builder.size());
        if (match.upper <= caret) {
            caretShift = newUpper - match.upper;
        } else if (match.lower < caret) {
            caretShift = newUpper - caret;
        }
        made.isTooLong = builder.size() + old.size() - made.range.length() > longest;
        if (!made.isTooLong) {
            builder.flushWhenFull();
        }
        return !made.isTooLong;
    });
    made.reason = end.reason;
    if (made.reason != SearchEnd::Reason::done) {
        return made;
    }
    made.text = builder.text();
    storeTogether(made, old);
    made.caret = static_cast<Offset>(caret + caretShift);
    return made;
}

TextReplacement TextReplacement::ofMatch(SourceRange match, const TextSearch& search, SearchedText& text,
                                         const ReplacementTemplate& with, const std::stop_token& stop) {
    const TextSearch::Found found = search.next(text, match.lower, stop);
    TextReplacement made;
    made.reason = found.reason;
    if (found.match() == match) {
        std::u16string units;
        with.append(units, text.rope(), found.groups);
        made.range = match;
        made.text = Rope(units);
        made.count = 1;
        made.caret = static_cast<Offset>(match.lower + units.size());
    }
    return made;
}
