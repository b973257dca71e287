#pragma once

#include "SearchPattern.h"
#include "TextMatch.h"

#include <QRegularExpression>
#include <QString>

#include <expected>
#include <stop_token>
#include <string_view>

/// Finds a regular expression (PCRE2, Unicode properties, `^` and `$` at every line) in one array of units.
/// LF, CR LF and CR all end a line here, so that `$` finds the ends of lines in files of every system.
///
/// Hostile expressions end: one that takes too many steps at a place, or looks too far ahead too often, is
/// given up with what was found until then.
class ExpressionSearch {
public:
    /// `pattern` as an expression, or in Spanish why it is none.
    static std::expected<ExpressionSearch, QString> make(const SearchPattern& pattern);

    /// As `TextSearch::visitMatches` does; `text` has no lone surrogate.
    SearchEnd visitMatches(std::u16string_view text, SourceRange starts, const std::stop_token& stop,
                           const MatchVisitor& visit) const;

private:
    explicit ExpressionSearch(QRegularExpression expression) : m_expression(std::move(expression)) {}

    QRegularExpression m_expression;
};
