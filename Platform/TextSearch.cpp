#include "TextSearch.h"

#include "TextNavigation.h"

#include <algorithm>

namespace {

/// Units read at a time, so that they stay in the processor's cache.
constexpr std::size_t plainWindow = 32 * 1024;
/// Units searched first, going back from a caret.
constexpr Offset firstStepBack = 16 * 1024;
constexpr Offset longestStepBack = 1 << 30;

bool isInsideWord(std::u16string_view units, std::size_t at) {
    return 0 < at && at < units.size() && TextNavigation::isWordUnit(units[at - 1]) &&
           TextNavigation::isWordUnit(units[at]);
}

} // namespace

std::expected<TextSearch, QString> TextSearch::make(const SearchPattern& pattern) {
    if (pattern.text.empty()) {
        return TextSearch(pattern, std::monostate());
    }
    if (pattern.syntax == SearchPattern::Syntax::plain) {
        return TextSearch(pattern, UnitSearch(pattern.text, pattern.letterCase));
    }
    auto expression = ExpressionSearch::make(pattern);
    if (!expression) {
        return std::unexpected(std::move(expression.error()));
    }
    return TextSearch(pattern, *std::move(expression));
}

SearchEnd TextSearch::visitMatches(SearchedText& text, SourceRange starts, const std::stop_token& stop,
                                   const MatchVisitor& visit) const {
    if (const auto* const plain = std::get_if<UnitSearch>(&m_finder)) {
        return visitPlain(*plain, text.rope(), starts, stop, visit);
    }
    if (const auto* const expression = std::get_if<ExpressionSearch>(&m_finder)) {
        return expression->visitMatches(text.wellFormed(), starts, stop, visit);
    }
    return {SearchEnd::Reason::done, starts.upper};
}

SearchEnd TextSearch::visitPlain(const UnitSearch& finder, const Rope& text, SourceRange starts,
                                 const std::stop_token& stop, const MatchVisitor& visit) const {
    const std::size_t size = text.size();
    const std::size_t windowSize = std::max(plainWindow, 4 * finder.size());
    std::u16string buffer;
    std::size_t from = starts.lower;
    while (from < starts.upper) {
        if (stop.stop_requested()) {
            return {SearchEnd::Reason::stopped, static_cast<std::int64_t>(from)};
        }
        // The window's own starts, the rest of its last match, and a unit on either side.
        const std::size_t windowEnd = std::min<std::size_t>(starts.upper, from + windowSize);
        const std::size_t base = from - (from > 0);
        const std::size_t end = std::min(size, windowEnd + finder.size());
        buffer.resize(end - base);
        text.copyTo(SourceRange::unchecked(static_cast<Offset>(base), static_cast<Offset>(end)),
                    buffer.data());
        while (from < windowEnd) {
            const std::size_t start = finder.find(buffer, from - base);
            if (start == UnitSearch::npos || base + start >= windowEnd) {
                from = windowEnd;
            } else if (!isAllowed(buffer, start, start + finder.size())) {
                from = base + nextCandidate(buffer, start);
            } else {
                from = base + start + finder.size();
                const SourceRange match(static_cast<std::int64_t>(base + start),
                                        static_cast<std::int64_t>(from));
                if (!visit({&match, 1})) {
                    return {SearchEnd::Reason::stopped, static_cast<std::int64_t>(from)};
                }
            }
        }
    }
    return {SearchEnd::Reason::done, static_cast<std::int64_t>(from)};
}

bool TextSearch::isAllowed(std::u16string_view units, std::size_t start, std::size_t end) const {
    return m_pattern.extent == SearchPattern::Extent::anywhere ||
           (!isInsideWord(units, start) && !isInsideWord(units, end));
}

/// A match that starts with a word cannot start again before the word ends.
std::size_t TextSearch::nextCandidate(std::u16string_view units, std::size_t after) const {
    if (!TextNavigation::isWordUnit(units[after])) {
        return after + 1;
    }
    const auto end = std::ranges::find_if_not(units.substr(after),
                                              [](char16_t unit) { return TextNavigation::isWordUnit(unit); });
    return static_cast<std::size_t>(end - units.begin());
}

TextSearch::Found TextSearch::next(SearchedText& text, Offset from, const std::stop_token& stop) const {
    const Offset size = text.rope().size();
    Found found = first(text, {std::min(from, size), size}, stop);
    const bool isOver = !found.groups.empty() || found.reason != SearchEnd::Reason::done;
    return isOver || from == 0 ? found : first(text, {0, std::min(from, size)}, stop);
}

TextSearch::Found TextSearch::previous(SearchedText& text, Offset before, const std::stop_token& stop) const {
    const Offset size = text.rope().size();
    Found found = last(text, {0, std::min(before, size)}, before, stop);
    const bool isOver = !found.groups.empty() || found.reason != SearchEnd::Reason::done;
    return isOver ? found : last(text, {std::min(before, size), size}, std::int64_t(size) + 1, stop);
}

TextSearch::Found TextSearch::first(SearchedText& text, SourceRange starts,
                                    const std::stop_token& stop) const {
    Found found;
    const SearchEnd end = visitMatches(text, starts, stop, [&](MatchGroups groups) {
        found.groups.assign(groups.begin(), groups.end());
        return false;
    });
    found.reason = found.groups.empty() ? end.reason : SearchEnd::Reason::done;
    return found;
}

/// The last match of those that start in `starts` and before `limit`.
TextSearch::Found TextSearch::last(SearchedText& text, SourceRange starts, std::int64_t limit,
                                   const std::stop_token& stop) const {
    Found found;
    Offset upper = starts.upper;
    for (Offset step = firstStepBack; found.groups.empty(); step = std::min(step, longestStepBack / 2) * 2) {
        const Offset lower = upper - std::min(upper - starts.lower, step);
        const SearchEnd end = visitMatches(text, {lower, upper}, stop, [&](MatchGroups groups) {
            if (groups.front().lower < limit) {
                found.groups.assign(groups.begin(), groups.end());
            }
            return true;
        });
        found.reason = end.reason;
        upper = lower;
        if (end.reason != SearchEnd::Reason::done || lower == starts.lower) {
            break;
        }
    }
    return found;
}
