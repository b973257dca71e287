#include "ExpressionSearch.h"

#include "GroupedNumber.h"
#include "SearchedText.h"
#include "UTF16.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace {

/// A match is looked for in so many units at a time: a step cannot be interrupted. One that reaches their
/// end gets twice as many.
constexpr std::size_t firstWindow = 16 * 1024;
/// All those longer windows together may be so many times the text.
constexpr std::size_t mostTexts = 8;
constexpr std::size_t leastAllowance = 16 * 1024 * 1024;

QString verbs() { return QStringLiteral("(*ANYCRLF)(*LIMIT_MATCH=10000000)"); }

/// Holds where a word neither starts nor ends inside; words are those of `TextNavigation`. With the case
/// ignored the library would look at the case of every scalar of the long range, for milliseconds.
QString wordBoundary() {
    return QStringLiteral("(?-i:(?<!W)|(?!W))")
        .replace(u'W', QStringLiteral("[\\p{L}\\p{N}\\p{M}_\\x{%1}\\x{10000}-\\x{10FFFF}]")
                           .arg(ushort(SearchedText::substitute), 0, 16));
}

QRegularExpression expression(const QString& text, SearchPattern::Case letterCase) {
    QRegularExpression::PatternOptions options =
        QRegularExpression::MultilineOption | QRegularExpression::UseUnicodePropertiesOption;
    options.setFlag(QRegularExpression::CaseInsensitiveOption, letterCase == SearchPattern::Case::ignored);
    return QRegularExpression(verbs() + text, options);
}

/// What is wrong with `expression`, for the user; the library's own words are English.
QString explanation(const QRegularExpression& expression) {
    static constexpr std::pair<const char*, const char16_t*> reasons[] = {
        {"missing closing parenthesis", u"Falta un paréntesis de cierre"},
        {"unmatched closing parenthesis", u"Sobra un paréntesis de cierre"},
        {"missing terminating ]", u"Falta un corchete de cierre"},
        {"quantifier does not follow", u"No hay nada que repetir"},
        {"numbers out of order", u"El intervalo de repeticiones está al revés"},
        {"number too big in {}", u"El número de repeticiones es demasiado grande"},
        {"range out of order", u"El intervalo de caracteres está al revés"},
        {"invalid range", u"El intervalo de caracteres no es válido"},
        {"\\ at end of pattern", u"Falta un carácter tras la barra inversa"},
        {"unrecognized character follows \\", u"La barra inversa precede a un carácter que no la admite"},
        {"unrecognized character after (?", u"El carácter que sigue a “(?” no es válido"},
        {"reference to non-existent", u"Se hace referencia a un grupo que no existe"},
        {"lookbehind assertion is not fixed",
         u"Lo que se comprueba hacia atrás debe tener una longitud fija"},
        {"unknown property", u"La propiedad de caracteres no existe"},
        {"POSIX named classes", u"Las clases con nombre solo valen entre corchetes"},
        {"unknown POSIX class", u"La clase de caracteres no existe"},
        {"too large", u"La expresión es demasiado grande"},
        {"too complicated", u"La expresión es demasiado complicada"},
    };
    const QString error = expression.errorString();
    const auto isAbout = [&](const auto& reason) { return error.contains(QLatin1String(reason.first)); };
    const auto known = std::ranges::find_if(reasons, isAbout);
    const QString reason = known == std::end(reasons) ? QStringLiteral("La expresión no es válida")
                                                      : QString::fromUtf16(known->second);
    const qsizetype offset = std::max<qsizetype>(0, expression.patternErrorOffset() - verbs().size());
    return QStringLiteral("%1 (posición %2)")
        .arg(reason, groupedNumber(static_cast<std::uint64_t>(offset) + 1));
}

/// One scalar on, and past the whole of a CR LF.
std::int64_t afterCharacter(std::u16string_view text, std::int64_t at) {
    const auto isAt = [&](std::int64_t offset, auto test) {
        return offset < static_cast<std::int64_t>(text.size()) &&
               test(text[static_cast<std::size_t>(offset)]);
    };
    const bool isLong = (isAt(at, UTF16::isHighSurrogate) && isAt(at + 1, UTF16::isLowSurrogate)) ||
                        (isAt(at, [](char16_t unit) { return unit == u'\r'; }) &&
                         isAt(at + 1, [](char16_t unit) { return unit == u'\n'; }));
    return at + 1 + isLong;
}

/// `end`, or one more when a surrogate pair stands across it.
std::int64_t wholeCharacters(std::u16string_view text, std::int64_t end) {
    const bool isInside = 0 < end && end < static_cast<std::int64_t>(text.size()) &&
                          UTF16::isLowSurrogate(text[static_cast<std::size_t>(end)]);
    return end + isInside;
}

void readGroups(const QRegularExpressionMatch& match, std::vector<SourceRange>& groups) {
    groups.clear();
    for (int group = 0; group <= match.lastCapturedIndex(); ++group) {
        const qsizetype start = match.capturedStart(group);
        // `\K` can set the start of a match behind its end.
        groups.push_back(start < 0 ? SourceRange::empty(groups.front().lower)
                                   : SourceRange(start, std::max(start, match.capturedEnd(group))));
    }
}

} // namespace

std::expected<ExpressionSearch, QString> ExpressionSearch::make(const SearchPattern& pattern) {
    const QString text = QString::fromStdU16String(pattern.text);
    const QRegularExpression written = expression(text, pattern.letterCase);
    if (!written.isValid()) {
        return std::unexpected(explanation(written));
    }
    if (pattern.extent == SearchPattern::Extent::anywhere) {
        return ExpressionSearch(written);
    }
    const QRegularExpression words =
        expression(wordBoundary() + QStringLiteral("(?:") + text + u')' + wordBoundary(), pattern.letterCase);
    if (!words.isValid()) {
        return std::unexpected(QStringLiteral("La expresión no se puede limitar a palabras completas"));
    }
    return ExpressionSearch(words);
}

SearchEnd ExpressionSearch::visitMatches(std::u16string_view text, SourceRange starts,
                                         const std::stop_token& stop, const MatchVisitor& visit) const {
    const auto size = static_cast<std::int64_t>(text.size());
    const std::int64_t lastStart = starts.upper == size ? size : std::int64_t(starts.upper) - 1;
    const std::size_t allowance = std::max(leastAllowance, mostTexts * text.size());
    std::size_t spent = 0;
    std::size_t window = firstWindow;
    std::vector<SourceRange> groups;
    std::int64_t from = wholeCharacters(text, starts.lower);
    while (from <= lastStart) {
        if (stop.stop_requested()) {
            return {SearchEnd::Reason::stopped, from};
        }
        const std::int64_t end =
            wholeCharacters(text, std::min(size, from + static_cast<std::int64_t>(window)));
        const bool isWhole = end == size;
        // The longer windows are for the matches that start at `from` alone.
        const bool isAnchored = window > firstWindow;
        // The view begins where the text does, for what an expression looks back at.
        const QRegularExpressionMatch match = m_expression.match(
            QStringView(text.data(), end), from,
            isWhole ? QRegularExpression::NormalMatch : QRegularExpression::PartialPreferFirstMatch,
            (isAnchored ? QRegularExpression::AnchorAtOffsetMatchOption : QRegularExpression::NoMatchOption) |
                QRegularExpression::DontCheckSubjectStringMatchOption);
        if (!match.isValid()) {
            return {SearchEnd::Reason::tooCostly, from};
        }
        const bool isCut = !isWhole && (match.hasPartialMatch() || match.capturedEnd() >= end);
        if (isCut && match.capturedStart() > from) {
            from = match.capturedStart();
            window = firstWindow;
        } else if (isCut) {
            window *= 2;
            spent += window;
            if (spent > allowance) {
                return {SearchEnd::Reason::tooCostly, from};
            }
        } else if (match.hasMatch()) {
            readGroups(match, groups);
            if (groups.front().lower > lastStart) {
                break;
            }
            const bool isEmpty = groups.front().upper <= std::max<std::int64_t>(from, groups.front().lower);
            from = isEmpty ? afterCharacter(text, std::max<std::int64_t>(from, groups.front().lower))
                           : groups.front().upper;
            window = firstWindow;
            if (!visit(groups)) {
                return {SearchEnd::Reason::stopped, from};
            }
        } else {
            from = isAnchored ? afterCharacter(text, from) : (isWhole ? size + 1 : end);
            window = firstWindow;
        }
    }
    return {SearchEnd::Reason::done, std::max(from, lastStart + 1)};
}
