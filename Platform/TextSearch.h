#pragma once

#include "ExpressionSearch.h"
#include "SearchedText.h"
#include "UnitSearch.h"

#include <expected>
#include <optional>
#include <stop_token>
#include <variant>
#include <vector>

/// Finds the matches of a pattern in a text, from left to right, each behind the one before. A value that
/// any number of threads may use, each with a `SearchedText` of its own.
///
/// Text is compared unit by unit, lone surrogates included. Whole words are those of `TextNavigation`: a
/// match must not start or end between two units of a word. An empty pattern has no matches; an expression
/// may have empty ones, one at a place at most.
class TextSearch {
public:
    /// A search for `pattern`, or in Spanish why that is no regular expression.
    static std::expected<TextSearch, QString> make(const SearchPattern& pattern);

    const SearchPattern& pattern() const { return m_pattern; }

    /// Visits the matches that start in `starts`; they may reach beyond it. When `starts` reaches the end of
    /// the text, an empty match there counts too. Asks `stop` every few thousand units.
    SearchEnd visitMatches(SearchedText& text, SourceRange starts, const std::stop_token& stop,
                           const MatchVisitor& visit) const;

    /// One match and its groups, none if there is none, and how the search for it ended.
    struct Found {
        std::vector<SourceRange> groups;
        SearchEnd::Reason reason = SearchEnd::Reason::done;

        std::optional<SourceRange> match() const {
            return groups.empty() ? std::nullopt : std::optional(groups.front());
        }
    };

    /// The first match that starts at `from` or later, otherwise the first of the text.
    Found next(SearchedText& text, Offset from, const std::stop_token& stop) const;

    /// The last match that starts before `before`, otherwise the last of the text. Where matches could
    /// overlap it may be another than `visitMatches` finds.
    Found previous(SearchedText& text, Offset before, const std::stop_token& stop) const;

private:
    TextSearch(SearchPattern pattern, std::variant<std::monostate, UnitSearch, ExpressionSearch> finder)
        : m_pattern(std::move(pattern)), m_finder(std::move(finder)) {}

    SearchEnd visitPlain(const UnitSearch& finder, const Rope& text, SourceRange starts,
                         const std::stop_token& stop, const MatchVisitor& visit) const;
    bool isAllowed(std::u16string_view units, std::size_t start, std::size_t end) const;
    std::size_t nextCandidate(std::u16string_view units, std::size_t after) const;
    Found first(SearchedText& text, SourceRange starts, const std::stop_token& stop) const;
    Found last(SearchedText& text, SourceRange starts, std::int64_t limit, const std::stop_token& stop) const;

    SearchPattern m_pattern;
    std::variant<std::monostate, UnitSearch, ExpressionSearch> m_finder; ///< Nothing for the empty pattern.
};
