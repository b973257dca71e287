#include "TextSearch.h"

#include "../XMLCore/Random.h"
#include "CaseFolding.h"
#include "TextNavigation.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using Ranges = std::vector<SourceRange>;
using enum SearchPattern::Case;
using enum SearchPattern::Extent;
using enum SearchPattern::Syntax;

TextSearch made(const SearchPattern& pattern) {
    auto search = TextSearch::make(pattern);
    EXPECT_TRUE(search.has_value());
    return *std::move(search);
}

Ranges matches(const SearchPattern& pattern, const Rope& text, SourceRange starts) {
    SearchedText searched(text);
    Ranges found;
    const SearchEnd end = made(pattern).visitMatches(searched, starts, {}, [&](MatchGroups groups) {
        found.push_back(groups.front());
        return true;
    });
    EXPECT_EQ(end.reason, SearchEnd::Reason::done);
    EXPECT_GE(end.next, starts.upper);
    return found;
}

Ranges matches(const SearchPattern& pattern, const Rope& text) {
    return matches(pattern, text, text.fullRange());
}

/// A text with its matches between `«` and `»`.
struct Marked {
    std::u16string units;
    Ranges matches;

    explicit Marked(std::u16string_view marked) {
        Offset start = 0;
        for (const char16_t unit : marked) {
            const auto at = static_cast<Offset>(units.size());
            if (unit == u'«') {
                start = at;
            } else if (unit == u'»') {
                matches.push_back({start, at});
            } else {
                units += unit;
            }
        }
    }
};

void check(const SearchPattern& pattern, std::u16string_view marked) {
    const Marked expected(marked);
    EXPECT_EQ(matches(pattern, Rope(expected.units)), expected.matches)
        << testing::PrintToString(pattern.text) << " in " << testing::PrintToString(marked);
}

bool isInsideWord(std::u16string_view text, std::size_t at) {
    return 0 < at && at < text.size() && TextNavigation::isWordUnit(text[at - 1]) &&
           TextNavigation::isWordUnit(text[at]);
}

/// All matches of a plain pattern, place by place.
Ranges naiveMatches(const SearchPattern& pattern, std::u16string_view text) {
    const auto comparable = [&](std::u16string_view units) {
        return pattern.letterCase == ignored ? CaseFolding::folded(units) : std::u16string(units);
    };
    const std::u16string folded = comparable(text);
    const std::u16string wanted = comparable(pattern.text);
    Ranges found;
    for (std::size_t at = 0; at + wanted.size() <= text.size();) {
        const std::size_t end = at + wanted.size();
        const bool isMatch =
            folded.compare(at, wanted.size(), wanted) == 0 &&
            (pattern.extent == anywhere || (!isInsideWord(text, at) && !isInsideWord(text, end)));
        if (isMatch) {
            found.push_back({std::int64_t(at), std::int64_t(end)});
        }
        at = isMatch ? end : at + 1;
    }
    return found;
}

/// All matches of an expression, looked for in the whole of the text, which has no lone surrogate.
Ranges naiveMatches(const QString& expression, const std::u16string& text) {
    const QRegularExpression wanted(QStringLiteral("(*ANYCRLF)") + expression,
                                    QRegularExpression::MultilineOption |
                                        QRegularExpression::UseUnicodePropertiesOption);
    const QString subject = QString::fromStdU16String(text);
    Ranges found;
    qsizetype from = 0;
    while (from <= subject.size()) {
        const QRegularExpressionMatch match =
            wanted.match(subject, from, QRegularExpression::NormalMatch,
                         QRegularExpression::DontCheckSubjectStringMatchOption);
        if (!match.hasMatch()) {
            break;
        }
        found.push_back({match.capturedStart(), match.capturedEnd()});
        from = match.capturedEnd();
        if (match.capturedLength() == 0) {
            const bool isLong = QStringView(subject).mid(from).startsWith(u"\r\n") ||
                                (from < subject.size() && subject[from].isHighSurrogate());
            from += isLong ? 2 : 1;
        }
    }
    return found;
}

constexpr char32_t alphabet[] = {U'a',    U'A',  U'b',  U'B',      U'ñ',      U'Ñ',   U' ',
                                 U'_',    U'<',  U'.',  U'k',      0x212A,    0xD83D, 0xDE00,
                                 0x1F600, U'\r', U'\n', U'\u0301', U'\u2028', 0};
constexpr char32_t wellFormedAlphabet[] = {U'a', U'A',    U'b', U'ñ',  U' ',  U'_',
                                           U'<', 0x1F600, U'.', U'\r', U'\n', U'\u0301'};

/// The units in chunks of many sizes.
Rope choppedRope(std::u16string_view units, Random& random) {
    Rope rope;
    while (!units.empty()) {
        const std::size_t length = std::min(units.size(), 1 + random.below(3000));
        rope = rope.replaced(SourceRange::empty(rope.size()), units.substr(0, length));
        units.remove_prefix(length);
    }
    return rope;
}

std::u16string longText(std::span<const char32_t> of, Random& random) {
    std::u16string text;
    for (const std::size_t size = 60'000 + random.below(60'000); text.size() < size;) {
        text += random.text(of, 500);
    }
    return text;
}

} // namespace

TEST(TextSearch, FindsPlainText) {
    check({.text = u"uno"}, u"«uno» dos «uno»");
    check({.text = u"uno"}, u"«UNO» dos«Uno»");
    check({.text = u"uno", .letterCase = distinguished}, u"UNO dos «uno»");
    check({.text = u"a.b"}, u"axb «a.b»");
    check({.text = u"aa"}, u"«aa»«aa»a");
    check({.text = u"x"}, u"");
    check({.text = u"ab"}, u"b a b");
    check({.text = u" "}, u"a« »b« »c");
    check({.text = u"b\nc"}, u"a«b\nc»");
    check({.text = u"ab\r\n"}, u"«ab\r\n»ab\n");
}

TEST(TextSearch, IgnoresCaseInEveryScript) {
    check({.text = u"ÑANDÚ"}, u"«ñandú» «Ñandú»");
    check({.text = u"σίσυφος"}, u"«ΣΊΣΥΦΟΣ»");
    check({.text = u"kelvin"}, u"«\u212Aelvin»");
    check({.text = u"ß"}, u"ss «ẞ»");
    check({.text = u"Привет"}, u"«ПРИВЕТ»");
}

TEST(TextSearch, FindsNothingForAnEmptyPattern) {
    check({.text = u""}, u"uno");
    check({.text = u"", .syntax = regularExpression}, u"uno");
}

TEST(TextSearch, FindsHalvesOfPairs) {
    const Rope text(std::u16string{u'a', u'\xD83D', u'b', u'\xD83D', u'\xDE00'});
    EXPECT_EQ(matches({.text = std::u16string{u'\xD83D'}}, text), (Ranges{{1, 2}, {3, 4}}));
    EXPECT_EQ(matches({.text = u"😀"}, text), (Ranges{{3, 5}}));
}

TEST(TextSearch, FindsWholeWords) {
    const auto pattern = [](std::u16string text) {
        return SearchPattern{.text = std::move(text), .extent = wholeWords};
    };
    check(pattern(u"uno"), u"«uno» unos «uno» ninguno <«uno»>«uno»");
    check(pattern(u"uno"), u"_uno uno1 uno\u0301 ñuno «uno».«uno»");
    check(pattern(u"a b"), u"«a b» a bc xa b");
    check(pattern(u"<a"), u"x«<a»> <ab> «<a»");
    check(pattern(u"-"), u"a«-»b «-» «-»");
    check(pattern(u"aa"), u"aaa «aa» aaaa");
    check(pattern(u"😀"), u"a😀 «😀» 😀😀");
}

TEST(TextSearch, FindsExpressions) {
    const auto pattern = [](std::u16string text) {
        return SearchPattern{
            .text = std::move(text), .letterCase = distinguished, .syntax = regularExpression};
    };
    check(pattern(u"a+b"), u"«aab» b «ab»");
    check(pattern(u"^\\w+"), u"«uno» dos\n«tres» x\r\n«ñandú»");
    check(pattern(u"\\w+$"), u"uno «dos»\r\nx «tres»\nx «cuatro»");
    check(pattern(u"a.c"), u"«a😀c» a\nc a\r\nc «axc»");
    check(pattern(u"a\\s+c"), u"«a\n\r\nc»");
    check(pattern(u"(?s)b.*c"), u"a«b\n\nc»d");
    check(pattern(u"(?<=a)b"), u"a«b» b");
    check(pattern(u"b(?!c)"), u"bc «b»d");
    check(pattern(u"(\\w)\\1"), u"«aa»b«cc»");
    check(pattern(u"x*"), u"«»a«xx»«»b«»");
    check(pattern(u"$"), u"ab«»\r\nc«»\n«»");
    check(pattern(u"^"), u"«»ab\r\n«»c\n");
    check(pattern(u"(?=.)"), u"«»a«»😀");
    check(pattern(u"q"), u"");
    check(pattern(u"$"), u"«»");
}

TEST(TextSearch, IgnoresCaseAndKeepsWordsWholeInExpressions) {
    check({.text = u"u.o", .syntax = regularExpression}, u"«UNO» «uñO»");
    const SearchPattern words{.text = u"a|ab+", .extent = wholeWords, .syntax = regularExpression};
    check(words, u"«a» «abb» xa abc _a «a»<«a»");
    check({.text = u"\\d+", .extent = wholeWords, .syntax = regularExpression}, u"«12» a12 😀1 «3»");
}

TEST(TextSearch, SurvivesLoneSurrogatesInExpressions) {
    const std::u16string odd{u'a',      u'\xD83D', u'b',      u'\xDE00', u'\xD83D',
                             u'\xDE00', u'c',      u'\xDC00', u'\xD83D'};
    const Rope text(odd);
    EXPECT_EQ(matches({.text = u"a.b", .syntax = regularExpression}, text), (Ranges{{0, 3}}));
    EXPECT_EQ(matches({.text = u"😀c", .syntax = regularExpression}, text), (Ranges{{4, 7}}));
    EXPECT_EQ(matches({.text = u".", .syntax = regularExpression}, text),
              (Ranges{{0, 1}, {1, 2}, {2, 3}, {3, 4}, {4, 6}, {6, 7}, {7, 8}, {8, 9}}));
    EXPECT_EQ(matches({.text = u".", .syntax = regularExpression}, text, {5, 7}), (Ranges{{6, 7}}));
}

TEST(TextSearch, TellsGroups) {
    SearchedText text(Rope(u"a1 b"));
    const TextSearch search = made({.text = u"(\\w)(\\d)?(x)?", .syntax = regularExpression});
    std::vector<Ranges> found;
    search.visitMatches(text, {0, 4}, {}, [&](MatchGroups groups) {
        found.emplace_back(groups.begin(), groups.end());
        return true;
    });
    EXPECT_EQ(found, (std::vector<Ranges>{{{0, 2}, {0, 1}, {1, 2}}, {{3, 4}, {3, 4}}}));
}

TEST(TextSearch, ExplainsWhatIsNoExpression) {
    const struct {
        const char16_t* text;
        const char* error;
    } rows[] = {
        {u"a(b", "Falta un paréntesis de cierre (posición 4)"},
        {u"a)b", "Sobra un paréntesis de cierre (posición 2)"},
        {u"[a", "Falta un corchete de cierre (posición 3)"},
        {u"*a", "No hay nada que repetir (posición 1)"},
        {u"a{3,2}", "El intervalo de repeticiones está al revés (posición 6)"},
        {u"[z-a]", "El intervalo de caracteres está al revés (posición 4)"},
        {u"a\\", "Falta un carácter tras la barra inversa (posición 3)"},
        {u"(a)\\2", "Se hace referencia a un grupo que no existe (posición 5)"},
        {u"\\p{Nada}", "La propiedad de caracteres no existe (posición 9)"},
        {u"(?<=a+)b", "Lo que se comprueba hacia atrás debe tener una longitud fija (posición 1)"},
    };
    for (const auto& row : rows) {
        const auto search = TextSearch::make({.text = row.text, .syntax = regularExpression});
        ASSERT_FALSE(search.has_value()) << row.error;
        EXPECT_EQ(search.error().toStdString(), row.error);
    }
    EXPECT_FALSE(
        TextSearch::make({.text = std::u16string{u'\xD83D'}, .syntax = regularExpression}).has_value());
    EXPECT_FALSE(
        TextSearch::make({.text = u"a)(b", .extent = wholeWords, .syntax = regularExpression}).has_value());
}

TEST(TextSearch, GivesUpExpressionsThatTakeTooManySteps) {
    SearchedText exponential(Rope(std::u16string(60, u'a') + u"b"));
    const auto none = [](MatchGroups) { return true; };
    SearchEnd end = made({.text = u"(a|aa)+$", .syntax = regularExpression})
                        .visitMatches(exponential, exponential.rope().fullRange(), {}, none);
    EXPECT_EQ(end.reason, SearchEnd::Reason::tooCostly);
    // Every place would read all the rest.
    SearchedText quadratic(Rope(std::u16string(1'000'000, u'a')));
    end = made({.text = u"a.*?b", .syntax = regularExpression})
              .visitMatches(quadratic, quadratic.rope().fullRange(), {}, none);
    EXPECT_EQ(end.reason, SearchEnd::Reason::tooCostly);
}

TEST(TextSearch, FindsExpressionsLongerThanItsWindows) {
    std::u16string units(1'000'000, u'x');
    units[10] = u'<';
    units[999'990] = u'>';
    EXPECT_EQ(matches({.text = u"<.*>", .syntax = regularExpression}, Rope(units)), (Ranges{{10, 999'991}}));
    EXPECT_EQ(matches({.text = u"<[^>]*$", .syntax = regularExpression}, Rope(units)), Ranges());
    EXPECT_EQ(matches({.text = u"(?<=<x{20})x|>", .syntax = regularExpression}, Rope(units)),
              (Ranges{{31, 32}, {999'990, 999'991}}));
}

TEST(TextSearch, StopsWhenAskedOrHadEnough) {
    SearchedText text(Rope(u"uno uno uno"));
    for (const auto syntax : {plain, regularExpression}) {
        const TextSearch search = made({.text = u"uno", .syntax = syntax});
        int visited = 0;
        const SearchEnd end =
            search.visitMatches(text, {0, 11}, {}, [&](MatchGroups) { return ++visited < 2; });
        EXPECT_EQ(visited, 2);
        EXPECT_EQ(end.reason, SearchEnd::Reason::stopped);
        EXPECT_EQ(end.next, 7);
        std::stop_source stop;
        stop.request_stop();
        const SearchEnd cancelled = search.visitMatches(text, {0, 11}, stop.get_token(), [](MatchGroups) {
            ADD_FAILURE();
            return true;
        });
        EXPECT_EQ(cancelled.reason, SearchEnd::Reason::stopped);
    }
}

TEST(TextSearch, FindsTheNextAndThePreviousRoundTheText) {
    SearchedText text(Rope(u"ab ab ab"));
    for (const auto syntax : {plain, regularExpression}) {
        const TextSearch search = made({.text = u"ab", .syntax = syntax});
        const struct {
            Offset caret;
            SourceRange next, previous;
        } rows[] = {
            {0, {0, 2}, {6, 8}}, {1, {3, 5}, {0, 2}}, {3, {3, 5}, {0, 2}},
            {4, {6, 8}, {3, 5}}, {8, {0, 2}, {6, 8}},
        };
        for (const auto& row : rows) {
            EXPECT_EQ(search.next(text, row.caret, {}).match(), row.next) << row.caret;
            EXPECT_EQ(search.previous(text, row.caret, {}).match(), row.previous) << row.caret;
        }
        const TextSearch none = made({.text = u"x", .syntax = syntax});
        EXPECT_EQ(none.next(text, 3, {}).match(), std::nullopt);
        EXPECT_EQ(none.previous(text, 3, {}).match(), std::nullopt);
    }
    SearchedText lines(Rope(u"a\nb"));
    const TextSearch ends = made({.text = u"$", .syntax = regularExpression});
    EXPECT_EQ(ends.previous(lines, 3, {}).match(), SourceRange(1, 1));
    EXPECT_EQ(ends.previous(lines, 1, {}).match(), SourceRange(3, 3));
    EXPECT_EQ(ends.next(lines, 3, {}).match(), SourceRange(3, 3));
    SearchedText empty{Rope()};
    EXPECT_EQ(ends.next(empty, 0, {}).match(), SourceRange());
    EXPECT_EQ(made({.text = u"x"}).previous(empty, 0, {}).match(), std::nullopt);
}

TEST(TextSearch, FindsTheOnlyMatchFarAway) {
    std::u16string units(3'000'000, u'x');
    units[5] = u'y';
    SearchedText text{Rope(units)};
    for (const auto syntax : {plain, regularExpression}) {
        const TextSearch search = made({.text = u"y", .syntax = syntax});
        EXPECT_EQ(search.previous(text, 2'999'999, {}).match(), SourceRange(5, 6));
        EXPECT_EQ(search.previous(text, 5, {}).match(), SourceRange(5, 6));
        EXPECT_EQ(search.next(text, 6, {}).match(), SourceRange(5, 6));
    }
}

TEST(TextSearch, ReadsTextsThatRepeatThePatternAlmost) {
    std::u16string wanted(20'000, u'a');
    wanted[10'000] = u'b';
    std::u16string text(200'000, u'a');
    EXPECT_EQ(matches({.text = wanted}, Rope(text)), Ranges());
    text[150'000] = u'B';
    EXPECT_EQ(matches({.text = wanted}, Rope(text)), (Ranges{{140'000, 160'000}}));
    EXPECT_EQ(matches({.text = wanted, .letterCase = distinguished}, Rope(text)), Ranges());
}

TEST(TextSearch, FindsWhatANaiveSearchFinds) {
    Random random;
    for (int round = 0; round < 3000; ++round) {
        const std::u16string text = round % 300 == 0 ? longText(alphabet, random) : random.text(alphabet, 60);
        SearchPattern pattern{.text = random.text(alphabet, 1 + random.below(4)),
                              .letterCase = random.below(2) == 0 ? ignored : distinguished,
                              .extent = random.below(2) == 0 ? anywhere : wholeWords};
        if (random.below(4) == 0 && text.size() > 40) {
            pattern.text = text.substr(random.below(text.size() - 30), 1 + random.below(30));
        }
        if (pattern.text.empty()) {
            continue;
        }
        const Rope rope = choppedRope(text, random);
        ASSERT_EQ(matches(pattern, rope), naiveMatches(pattern, text))
            << testing::PrintToString(pattern.text) << " in " << testing::PrintToString(text.substr(0, 60));
    }
}

TEST(TextSearch, FindsExpressionsAsInOneWindow) {
    Random random;
    const char16_t* const expressions[] = {u"a+",     u"\\w+",  u"a.b",        u"(?s)a[^b]*b", u"^.",
                                           u"[^a]+$", u"a*",    u"\\bñ",       u"(?<=a)b",     u"a(?=b)",
                                           u"$",      u"^",     u".*",         u"\\s*\\R",     u"\\R",
                                           u"\\X",    u".{40}", u"(a|b|ñ| )+", u"\\b"};
    for (int round = 0; round < 30; ++round) {
        const std::u16string text = longText(wellFormedAlphabet, random);
        const Rope rope = choppedRope(text, random);
        const char16_t* expression = expressions[random.below(std::size(expressions))];
        const SearchPattern pattern{
            .text = expression, .letterCase = distinguished, .syntax = regularExpression};
        const Ranges found = matches(pattern, rope);
        const Ranges naive = naiveMatches(QString::fromUtf16(expression), text);
        ASSERT_TRUE(found == naive) << QString::fromUtf16(expression).toStdString() << ": " << found.size()
                                    << " and " << naive.size() << ", differ at "
                                    << (std::ranges::mismatch(found, naive).in1 - found.begin());
    }
}

TEST(TextSearch, GoesOnWhereItStopped) {
    Random random;
    for (int round = 0; round < 6; ++round) {
        const std::u16string text = longText(wellFormedAlphabet, random);
        const Rope rope = choppedRope(text, random);
        for (const SearchPattern& pattern :
             {SearchPattern{.text = u"aA"}, SearchPattern{.text = u"a*", .syntax = regularExpression},
              SearchPattern{.text = u"\\w+", .syntax = regularExpression}}) {
            const TextSearch search = made(pattern);
            SearchedText searched(rope);
            Ranges found;
            std::int64_t next = 0;
            while (next <= rope.size()) {
                const std::int64_t upper =
                    std::min<std::int64_t>(rope.size(), next + 1 + std::int64_t(random.below(9000)));
                const std::size_t enough = found.size() + 1 + random.below(300);
                const SearchEnd end =
                    search.visitMatches(searched, {next, upper}, {}, [&](MatchGroups groups) {
                        found.push_back(groups.front());
                        return found.size() < enough;
                    });
                if (end.reason == SearchEnd::Reason::done && upper == rope.size()) {
                    break;
                }
                next = end.next;
            }
            ASSERT_TRUE(found == matches(pattern, rope)) << testing::PrintToString(pattern.text);
        }
    }
}

TEST(TextSearch, StepsThroughTheMatchesInBothDirections) {
    Random random;
    for (int round = 0; round < 20; ++round) {
        const std::u16string text = longText(alphabet, random);
        SearchedText searched(choppedRope(text, random));
        const SearchPattern pattern{.text = u"ab"};
        const TextSearch search = made(pattern);
        const Ranges all = naiveMatches(pattern, text);
        ASSERT_FALSE(all.empty());
        for (int step = 0; step < 50; ++step) {
            const auto caret = static_cast<Offset>(random.below(text.size() + 1));
            const auto place = std::ranges::lower_bound(all, caret, {}, &SourceRange::lower);
            EXPECT_EQ(search.next(searched, caret, {}).match(), place == all.end() ? all.front() : *place);
            EXPECT_EQ(search.previous(searched, caret, {}).match(),
                      place == all.begin() ? all.back() : place[-1]);
        }
    }
}
