#include "TextFinder.h"

#include "MemoryLimit.h"

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <optional>

namespace {

using Ranges = std::vector<SourceRange>;
using enum SearchPattern::Syntax;

/// A finder over a text, and what it answered last.
struct Desk {
    TextStorage storage;
    TextFinder finder;
    int answers = 0;
    bool wasCounted = false; ///< When the last answer came.
    std::optional<SourceRange> found;
    std::optional<TextReplacement> replacement;

    explicit Desk(std::u16string_view units) : storage(Rope(units)), finder(storage) {
        QObject::connect(&finder, &TextFinder::found, &finder, [this](SourceRange match) {
            ++answers;
            found = match;
            wasCounted = finder.isCountComplete();
        });
        QObject::connect(&finder, &TextFinder::notFound, &finder, [this] {
            ++answers;
            found.reset();
        });
        QObject::connect(&finder, &TextFinder::replacementFound, &finder,
                         [this](const TextReplacement& made) { replacement = made; });
    }

    void count(const SearchPattern& pattern) {
        finder.setCounting(true);
        finder.setPattern(pattern);
        waitForCount();
    }
    void waitForCount() {
        EXPECT_TRUE(QTest::qWaitFor([this] { return finder.isCountComplete(); }, 60'000));
    }
    std::optional<SourceRange> next(Offset from) {
        return answer([&] { finder.findNext(from); });
    }
    std::optional<SourceRange> previous(Offset before) {
        return answer([&] { finder.findPrevious(before); });
    }

private:
    template <class Ask>
    std::optional<SourceRange> answer(Ask ask) {
        const int before = answers;
        ask();
        EXPECT_TRUE(QTest::qWaitFor([&] { return answers > before; }, 60'000));
        EXPECT_EQ(answers, before + 1);
        return found;
    }
};

std::u16string repeated(std::u16string_view units, std::size_t times, std::u16string_view end = {}) {
    std::u16string text;
    for (std::size_t i = 0; i < times; ++i) {
        text += units;
    }
    text += end;
    return text;
}

} // namespace

TEST(TextFinder, CountsTheMatches) {
    Desk desk(u"uno dos uno");
    desk.count({.text = u"uno"});
    EXPECT_EQ(desk.finder.count(), 2U);
    EXPECT_EQ(desk.finder.index({8, 11}), 1U);
    EXPECT_EQ(desk.finder.index({4, 7}), std::nullopt);
    desk.count({.text = u"x"});
    EXPECT_EQ(desk.finder.count(), 0U);
}

TEST(TextFinder, CountsOnlyWhileAskedTo) {
    Desk desk(u"uno uno");
    desk.finder.setPattern({.text = u"uno"});
    EXPECT_EQ(desk.next(1), SourceRange(4, 7));
    EXPECT_EQ(desk.finder.count(), 0U);
    EXPECT_TRUE(desk.finder.visibleMatches({0, 7}).empty());
    desk.finder.setCounting(true);
    desk.waitForCount();
    EXPECT_EQ(desk.finder.count(), 2U);
    desk.finder.setCounting(false);
    EXPECT_EQ(desk.finder.count(), 0U);
    EXPECT_FALSE(desk.finder.isCountComplete());
}

TEST(TextFinder, FindsFromTheCaretOnWithAndWithoutACount) {
    for (const bool counts : {false, true}) {
        Desk desk(u"ab ab ab");
        desk.finder.setPattern({.text = u"AB"});
        if (counts) {
            desk.finder.setCounting(true);
            desk.waitForCount();
        }
        EXPECT_EQ(desk.next(0), SourceRange(0, 2));
        EXPECT_EQ(desk.next(1), SourceRange(3, 5));
        EXPECT_EQ(desk.next(7), SourceRange(0, 2));
        EXPECT_EQ(desk.previous(8), SourceRange(6, 8));
        EXPECT_EQ(desk.previous(3), SourceRange(0, 2));
        EXPECT_EQ(desk.previous(0), SourceRange(6, 8));
        desk.finder.setPattern({.text = u"x"});
        EXPECT_EQ(desk.next(0), std::nullopt);
        EXPECT_EQ(desk.previous(5), std::nullopt);
    }
}

TEST(TextFinder, AnswersAtOnceFromWhatItCounted) {
    Desk desk(u"uno dos uno");
    desk.count({.text = u"uno"});
    desk.finder.findNext(1);
    EXPECT_EQ(desk.found, SourceRange(8, 11));
    desk.finder.findPrevious(8);
    EXPECT_EQ(desk.found, SourceRange(0, 3));
}

TEST(TextFinder, AnswersWhileTheCountGoesOn) {
    const std::u16string text = repeated(u"ab ", 1'000'000, u"fin");
    Desk desk(text);
    desk.finder.setCounting(true);
    desk.finder.setPattern({.text = u"[a-z](b)", .syntax = regularExpression});
    EXPECT_EQ(desk.previous(static_cast<Offset>(text.size())),
              SourceRange(std::int64_t(text.size()) - 6, std::int64_t(text.size()) - 4));
    EXPECT_FALSE(desk.wasCounted);
    desk.waitForCount();
    EXPECT_EQ(desk.finder.count(), 1'000'000U);
}

TEST(TextFinder, AnswersTheLastRequestOnly) {
    Desk desk(repeated(u"x", 1'000'000, u"uno dos"));
    desk.finder.setPattern({.text = u"o"});
    desk.finder.findNext(0);
    desk.finder.findNext(0);
    EXPECT_EQ(desk.previous(1'000'007), SourceRange(1'000'005, 1'000'006));
    desk.finder.findNext(0);
    desk.finder.setPattern({.text = u"uno"});
    EXPECT_EQ(desk.next(0), SourceRange(1'000'000, 1'000'003));
}

TEST(TextFinder, KeepsSomeMatchesAndCountsTheOthers) {
    Desk desk(repeated(u"a", TextFinder::mostKept + 1000));
    desk.count({.text = u"a"});
    EXPECT_EQ(desk.finder.count(), TextFinder::mostKept + 1000);
    EXPECT_EQ(desk.finder.index({999'999, 1'000'000}), 999'999U);
    EXPECT_EQ(desk.finder.index({1'000'000, 1'000'001}), std::nullopt);
    EXPECT_EQ(desk.next(1'000'500), SourceRange(1'000'500, 1'000'501));
    EXPECT_EQ(desk.next(1'001'000), SourceRange(0, 1));
    EXPECT_EQ(desk.previous(0), SourceRange(1'000'999, 1'001'000));
    EXPECT_EQ(desk.previous(1'000'300), SourceRange(1'000'299, 1'000'300));
    EXPECT_EQ(desk.finder.visibleMatches({1'000'998, 1'001'000}),
              (Ranges{{1'000'998, 1'000'999}, {1'000'999, 1'001'000}}));
}

TEST(TextFinder, TellsTheMatchesThatAreVisible) {
    Desk desk(u"aa bb aa bb aa");
    for (const auto syntax : {plain, regularExpression}) {
        desk.count({.text = u"aa", .syntax = syntax});
        EXPECT_EQ(desk.finder.visibleMatches({0, 14}), (Ranges{{0, 2}, {6, 8}, {12, 14}}));
        EXPECT_EQ(desk.finder.visibleMatches({7, 12}), (Ranges{{6, 8}}));
        EXPECT_EQ(desk.finder.visibleMatches({2, 6}), Ranges());
        EXPECT_EQ(desk.finder.visibleMatches({0, 1000}).size(), 3U);
    }
}

TEST(TextFinder, MarksPlainMatchesJustAfterAnEdit) {
    Desk desk(u"aa bb aa");
    desk.count({.text = u"aa"});
    desk.storage.replaceCharacters({0, 0}, u"xaa ");
    EXPECT_FALSE(desk.finder.isCountComplete());
    EXPECT_EQ(desk.finder.visibleMatches({0, 12}), (Ranges{{1, 3}, {4, 6}, {10, 12}}));
    EXPECT_EQ(desk.finder.visibleMatches({2, 5}), (Ranges{{1, 3}, {4, 6}}));
}

TEST(TextFinder, MovesTheMarksOfExpressionsUntilTheyAreCountedAgain) {
    Desk desk(u"a1 bb a2 a3");
    desk.count({.text = u"a\\d", .syntax = regularExpression});
    desk.storage.replaceCharacters({3, 5}, u"largo");
    EXPECT_FALSE(desk.finder.isCountComplete());
    EXPECT_EQ(desk.finder.visibleMatches({0, 14}), (Ranges{{0, 2}, {9, 11}, {12, 14}}));
    desk.storage.replaceCharacters({10, 11}, u"");
    desk.storage.replaceCharacters({0, 0}, u"a4 ");
    EXPECT_EQ(desk.finder.visibleMatches({0, 16}), (Ranges{{14, 16}}));
    desk.waitForCount();
    EXPECT_EQ(desk.finder.visibleMatches({0, 16}), (Ranges{{0, 2}, {3, 5}, {14, 16}}));
}

TEST(TextFinder, CountsAgainAfterAnEdit) {
    Desk desk(u"uno dos");
    desk.count({.text = u"uno"});
    desk.storage.replaceCharacters({7, 7}, u" uno");
    EXPECT_FALSE(desk.finder.isCountComplete());
    desk.waitForCount();
    EXPECT_EQ(desk.finder.count(), 2U);
    desk.storage.replaceCharacters({0, 3}, u"");
    EXPECT_EQ(desk.next(0), SourceRange(5, 8));
    desk.waitForCount();
    EXPECT_EQ(desk.finder.count(), 1U);
}

TEST(TextFinder, DropsAnswersOfAnOlderText) {
    Desk desk(u"uno dos");
    desk.finder.setPattern({.text = u"dos"});
    desk.finder.findNext(0);
    desk.storage.replaceCharacters({0, 4}, u"");
    EXPECT_EQ(desk.next(0), SourceRange(0, 3));
    desk.finder.replaceAll({u"x", plain}, 0);
    EXPECT_TRUE(desk.finder.isReplacing());
    desk.storage.replaceCharacters({0, 0}, u"y");
    EXPECT_FALSE(desk.finder.isReplacing());
    EXPECT_EQ(desk.next(0), SourceRange(1, 4));
    EXPECT_FALSE(desk.replacement.has_value());
}

TEST(TextFinder, TellsWhyAPatternFails) {
    Desk desk(repeated(u"a", 40, u"b"));
    desk.finder.setCounting(true);
    desk.finder.setPattern({.text = u"(", .syntax = regularExpression});
    EXPECT_EQ(desk.finder.error(), QStringLiteral("Falta un paréntesis de cierre (posición 2)"));
    EXPECT_EQ(desk.next(0), std::nullopt);
    desk.count({.text = u"(a|aa)+$", .syntax = regularExpression});
    EXPECT_EQ(desk.finder.error(), QStringLiteral("La expresión necesita demasiados pasos"));
    desk.count({.text = u"b"});
    EXPECT_EQ(desk.finder.error(), QString());
    EXPECT_EQ(desk.finder.count(), 1U);
}

TEST(TextFinder, FindsNothingForAnEmptyPattern) {
    Desk desk(u"uno");
    desk.count({.text = u"uno"});
    desk.finder.setPattern({});
    EXPECT_EQ(desk.finder.count(), 0U);
    EXPECT_EQ(desk.next(0), std::nullopt);
    EXPECT_TRUE(desk.finder.visibleMatches({0, 3}).empty());
}

TEST(TextFinder, ReplacesOneMatchOrAll) {
    Desk desk(u"uno dos uno");
    desk.finder.setPattern({.text = u"u(n)o", .syntax = regularExpression});
    desk.finder.replace({8, 11}, {u"<\\1>", regularExpression});
    ASSERT_TRUE(QTest::qWaitFor([&] { return desk.replacement.has_value(); }));
    EXPECT_EQ(desk.replacement->range, SourceRange(8, 11));
    EXPECT_TRUE(desk.replacement->text == Rope(u"<n>"));
    desk.replacement.reset();
    desk.finder.replaceAll({u"1", regularExpression}, 11);
    ASSERT_TRUE(QTest::qWaitFor([&] { return desk.replacement.has_value(); }));
    EXPECT_TRUE(desk.replacement->text == Rope(u"1 dos 1"));
    EXPECT_EQ(desk.replacement->caret, 7U);
    EXPECT_FALSE(desk.finder.isReplacing());
}

TEST(TextFinder, CancelsReplacing) {
    Desk desk(repeated(u"uno dos\n", 500'000));
    desk.count({.text = u"uno"});
    desk.finder.replaceAll({u"1", plain}, 0);
    desk.finder.cancelReplacing();
    EXPECT_FALSE(desk.finder.isReplacing());
    EXPECT_EQ(desk.next(1), SourceRange(8, 11));
    desk.finder.setPattern({.text = u"dos"});
    EXPECT_EQ(desk.next(0), SourceRange(4, 7));
    EXPECT_FALSE(desk.replacement.has_value());
}

TEST(TextFinder, MayGoWhileItSearches) {
    TextStorage storage{Rope(repeated(u"ab ", 2'000'000))};
    {
        TextFinder finder(storage);
        finder.setCounting(true);
        finder.setPattern({.text = u"\\w+", .syntax = regularExpression});
        finder.findPrevious(0);
    }
    Desk desk(u"uno");
    desk.finder.setPattern({.text = u"n"});
    EXPECT_EQ(desk.next(0), SourceRange(1, 2));
}

TEST(TextFinder, TellsThatTheMemoryIsTooShort) {
    // An expression is searched in one array, which this text does not stand in.
    Desk desk(repeated(u"uno dos\n", 5'000'000));
    desk.storage.replaceCharacters({0, 1}, u"U");
    const QString shortage = QStringLiteral("No hay memoria suficiente para buscar.");
    {
        const MemoryLimit limit(std::size_t{32} << 20);
        desk.count({.text = u"d.s", .syntax = regularExpression});
        EXPECT_EQ(desk.finder.error(), shortage);
        EXPECT_EQ(desk.finder.count(), 0U);
        EXPECT_EQ(desk.next(0), std::nullopt);
        EXPECT_EQ(desk.finder.error(), shortage);
        desk.finder.replaceAll({u"tres", regularExpression}, 0);
        ASSERT_TRUE(QTest::qWaitFor([&] { return desk.replacement.has_value(); }, 60'000));
        EXPECT_EQ(desk.replacement->reason, SearchEnd::Reason::noMemory);
        EXPECT_EQ(desk.replacement->count, 0U);
        EXPECT_EQ(desk.finder.error(), QStringLiteral("No hay memoria suficiente para reemplazar."));
    }
    desk.count({.text = u"do.", .syntax = regularExpression});
    EXPECT_EQ(desk.finder.error(), QString());
    EXPECT_EQ(desk.finder.count(), 5'000'000U);
}
