#include "Rope.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <ranges>
#include <vector>

namespace {

using namespace std::string_literals;

/// The offsets at which the lines of `text` start, found the plain way.
std::vector<Offset> lineStarts(const std::u16string& text) {
    std::vector<Offset> starts = {0};
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'\n') {
            starts.push_back(static_cast<Offset>(i + 1));
        }
    }
    return starts;
}

Offset outsidePrintableASCII(std::u16string_view units) {
    return static_cast<Offset>(
        std::ranges::count_if(units, [](char16_t unit) { return unit < u' ' || unit > u'~'; }));
}

/// Compares every answer about the whole text.
void expectHolds(const Rope& rope, const std::u16string& text) {
    ASSERT_EQ(rope.size(), text.size());
    EXPECT_EQ(rope.isEmpty(), text.empty());
    EXPECT_TRUE(rope.units(rope.fullRange()) == text);
    EXPECT_EQ(rope.unitsOutsidePrintableASCII(), outsidePrintableASCII(text));
    const std::vector<Offset> starts = lineStarts(text);
    EXPECT_EQ(rope.lineCount(), starts.size());
    Offset longest = 0;
    for (std::size_t line = 0; line < starts.size(); ++line) {
        const auto end = static_cast<Offset>(line + 1 < starts.size() ? starts[line + 1] - 1 : text.size());
        longest = std::max(longest, end - starts[line]);
    }
    EXPECT_EQ(rope.longestLine(), longest);
}

/// Compares the answers about one place and one range.
void expectHoldsAt(const Rope& rope, const std::u16string& text, Offset at, SourceRange range) {
    const std::vector<Offset> starts = lineStarts(text);
    const auto line = static_cast<std::size_t>(std::ranges::upper_bound(starts, at) - starts.begin() - 1);
    EXPECT_EQ(rope.line(at), line);
    EXPECT_EQ(rope.lineStart(line), starts[line]);
    const SourceRange lineRange(starts[line],
                                line + 1 < starts.size() ? starts[line + 1] - 1 : std::int64_t(text.size()));
    EXPECT_EQ(rope.lineRange(line), lineRange);
    if (at < text.size()) {
        EXPECT_EQ(rope.unit(at), text[at]);
    }
    const std::u16string part = text.substr(range.lower, range.length());
    EXPECT_TRUE(rope.units(range) == part);
    std::u16string copied(range.length(), u'?');
    rope.copyTo(range, copied.data());
    EXPECT_TRUE(copied == part);
    EXPECT_EQ(rope.unitsOutsidePrintableASCII(range), outsidePrintableASCII(part));
}

/// No chunk of a text of several is less than half full, so that little memory goes to the tree.
void expectFullChunks(const Rope& rope) {
    for (const std::u16string_view chunk : rope.chunks()) {
        EXPECT_LE(chunk.size(), 2048);
        if (rope.size() > 2048) {
            EXPECT_GE(chunk.size(), 1024);
        }
    }
}

std::u16string repeated(std::u16string_view part, std::size_t count) {
    std::u16string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += part;
    }
    return text;
}

class Random {
public:
    explicit Random(unsigned seed) : m_engine(seed) {}

    Offset upTo(std::size_t most) {
        return static_cast<Offset>(std::uniform_int_distribution<std::size_t>(0, most)(m_engine));
    }
    SourceRange range(std::size_t in) {
        const Offset first = upTo(in);
        const Offset second =
            upTo(5) == 0 ? upTo(in) : std::min<Offset>(static_cast<Offset>(in), first + upTo(40));
        return {std::min(first, second), std::max(first, second)};
    }
    std::u16string text() {
        static constexpr char16_t alphabet[] = {u'a', u'<',   u'\n',  u'\r',  0,
                                                u' ', 0xD83D, 0xDE00, 0x2028, u'é'};
        std::u16string text(upTo(upTo(9) == 0 ? 9000 : 12), u'x');
        for (char16_t& unit : text) {
            unit = upTo(2) == 0 ? alphabet[upTo(std::size(alphabet) - 1)] : u'x';
        }
        return text;
    }

private:
    std::mt19937 m_engine;
};

TEST(Rope, IsEmptyAtFirst) {
    expectHolds(Rope(), u"");
    expectHolds(Rope(u""), u"");
    expectHoldsAt(Rope(), u"", 0, {});
    EXPECT_EQ(Rope(), Rope(u""));
    EXPECT_TRUE(Rope().chunks().begin() == Rope().chunks().end());
}

TEST(Rope, KeepsEveryUnit) {
    for (const std::u16string& text :
         {u"\r"s, u"\r\n"s, u"\0"s, u"a\0b"s, u"\xD800"s, u"\xDC00\xD800"s, u"\u2028\u2029\u0085\v\f"s}) {
        expectHolds(Rope(text), text);
        expectHolds(Rope(u"()"s).replaced({1, 1}, text), u"(" + text + u")");
    }
}

TEST(Rope, ReplacesRanges) {
    const struct {
        std::u16string text;
        SourceRange range;
        std::u16string units;
        std::u16string expected;
    } rows[] = {
        {u"", {0, 0}, u"", u""},         {u"", {0, 0}, u"a", u"a"},
        {u"a", {0, 1}, u"", u""},        {u"abc", {0, 0}, u"x", u"xabc"},
        {u"abc", {3, 3}, u"x", u"abcx"}, {u"abc", {1, 2}, u"xyz", u"axyzc"},
        {u"abc", {0, 3}, u"x", u"x"},    {u"a\r\nb", {2, 3}, u"", u"a\rb"},
        {u"abc", {1, 1}, u"", u"abc"},
    };
    for (const auto& row : rows) {
        expectHolds(Rope(row.text).replaced(row.range, row.units), row.expected);
    }
}

TEST(Rope, ReplacesAtTheSeamsOfChunksAndNodes) {
    const std::u16string text = repeated(u"0123456\n", 20'000);
    const Rope rope(text);
    const Offset size = rope.size();
    Offset seam = 0;
    for (const std::u16string_view chunk : rope.chunks()) {
        seam += static_cast<Offset>(chunk.size());
        const SourceRange ranges[] = {
            {seam - 1, seam}, {seam - 1, std::min(seam + 1, size)}, {seam, seam}, {0, seam}, {seam, size}};
        for (const SourceRange range : ranges) {
            const Rope edited = rope.replaced(range, u"xy");
            std::u16string expected = text;
            expected.replace(range.lower, range.length(), u"xy");
            EXPECT_TRUE(edited.units(edited.fullRange()) == expected);
            EXPECT_EQ(edited.lineCount(), lineStarts(expected).size());
            expectFullChunks(edited);
        }
    }
    EXPECT_EQ(seam, size);
}

TEST(Rope, LeavesOldVersionsAsTheyWere) {
    const std::u16string text = repeated(u"line\n", 30'000);
    std::vector<std::pair<Rope, std::u16string>> versions = {{Rope(text), text}};
    for (const SourceRange range :
         {SourceRange(5, 9), SourceRange(0, 100'000), SourceRange(20'000, 20'000)}) {
        std::u16string next = versions.back().second;
        next.replace(range.lower, range.length(), u"<new/>");
        const Rope rope = versions.back().first.replaced(range, u"<new/>");
        versions.emplace_back(rope, next);
    }
    for (const auto& [rope, expected] : versions) {
        expectHolds(rope, expected);
    }
}

TEST(Rope, SharesTheUnitsOfTheTextItWasMadeFrom) {
    const SourceText text(repeated(u"line\n", 10'000));
    const Rope rope(text);
    const Rope edited = rope.replaced({25'000, 25'000}, u"x");
    EXPECT_EQ(rope.contiguous().units().data(), text.units().data());
    EXPECT_EQ(rope.contiguous(), text);
    EXPECT_EQ(edited.contiguous().storage(), nullptr);
    const auto isOfText = [&](std::u16string_view chunk) {
        return std::less_equal<>()(text.units().data(), chunk.data()) &&
               std::less<>()(chunk.data(), text.units().data() + text.count());
    };
    std::size_t copied = 0;
    for (const std::u16string_view chunk : edited.chunks()) {
        copied += isOfText(chunk) ? 0 : chunk.size();
    }
    EXPECT_GT(copied, 0);
    EXPECT_LE(copied, 3 * 2048);
}

TEST(Rope, KeepsTheTextItWasMadeFromAlive) {
    auto text = std::make_unique<SourceText>(repeated(u"line\n", 10'000));
    const std::u16string units(text->units());
    Rope rope(*text);
    text.reset();
    expectHolds(rope, units);
    const Rope::Chunks chunks = rope.chunks();
    rope = Rope();
    std::u16string seen;
    for (const std::u16string_view chunk : chunks) {
        seen += chunk;
    }
    EXPECT_TRUE(seen == units);
}

TEST(Rope, ComparesUnitsHoweverTheyAreStored) {
    const std::u16string text = repeated(u"some text\n", 5'000);
    const Rope rope(text);
    const Rope there = rope.replaced({30'000, 30'000}, u"x");
    const Rope back = there.replaced({30'000, 30'001}, u"");
    EXPECT_EQ(rope, rope);
    EXPECT_EQ(rope, Rope(text));
    EXPECT_EQ(back, rope);
    EXPECT_FALSE(there == rope);
    EXPECT_FALSE(rope.replaced({30'001, 30'002}, u"X") == rope);
    EXPECT_FALSE(rope == Rope());
}

TEST(Rope, FillsItsChunksWhateverItsHistory) {
    Rope typed;
    Rope typedBackwards;
    for (Offset i = 0; i < 50'000; ++i) {
        typed = typed.replaced({i, i}, u"x");
        typedBackwards = typedBackwards.replaced({0, 0}, u"x");
    }
    expectFullChunks(typed);
    expectFullChunks(typedBackwards);
    EXPECT_EQ(typed, typedBackwards);

    Rope thinned(std::u16string(300'000, u'x'));
    for (Offset at = 0; at + 900 < thinned.size(); at += 100) {
        thinned = thinned.replaced({at, at + 900}, u"");
    }
    expectFullChunks(thinned);

    const Rope cut = Rope(std::u16string(3'000'000, u'x')).replaced({5, 2'999'990}, u"");
    expectHolds(cut, std::u16string(15, u'x'));
}

TEST(Rope, CutsAndJoinsPartsOfAnySize) {
    const std::u16string text = repeated(u"0123456\n", 60'000);
    const Rope rope(text);
    for (unsigned seed = 1; seed <= 100; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Random random(seed);
        const SourceRange from =
            seed % 2 == 0 ? random.range(text.size()) : SourceRange(0, random.upTo(text.size()));
        const SourceRange range = random.range(text.size());
        const Rope part = rope.part(from);
        const std::u16string partText = text.substr(from.lower, from.length());
        expectHolds(part, partText);
        expectFullChunks(part);
        std::u16string expected = text;
        expected.replace(range.lower, range.length(), partText);
        const Rope edited = rope.replaced(range, part);
        expectHolds(edited, expected);
        expectFullChunks(edited);
    }
}

TEST(Rope, SharesTheChunksOfAnInsertedRope) {
    const SourceText text(repeated(u"line\n", 20'000));
    const Rope edited = Rope(u"()").replaced({1, 1}, Rope(text));
    std::size_t shared = 0;
    for (const std::u16string_view chunk : edited.chunks()) {
        const bool isOfText = std::less_equal<>()(text.units().data(), chunk.data()) &&
                              std::less<>()(chunk.data(), text.units().data() + text.count());
        shared += isOfText ? chunk.size() : 0;
    }
    EXPECT_GE(shared, text.count() - 4 * 2048);
}

TEST(Rope, KeepsJoinedPiecesOfOneTextInOneArray) {
    const SourceText text(repeated(u"line\n", 30'000));
    constexpr std::size_t pieces = 7;
    Rope joined;
    for (std::size_t i = 0; i < pieces; ++i) {
        const SourceRange range(text.count() * i / pieces, text.count() * (i + 1) / pieces);
        joined = joined.joined(
            Rope(SourceText({text.storage(), text.units().data() + range.lower}, range.length())));
    }
    EXPECT_EQ(joined.contiguous().units().data(), text.units().data());
    EXPECT_EQ(joined.contiguous(), text);
    EXPECT_EQ(Rope().joined(joined).joined(Rope()), joined);
}

TEST(Rope, AnswersAsAPlainStringDoes) {
    for (unsigned seed = 1; seed <= 30; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Random random(seed);
        std::u16string text = repeated(random.text(), random.upTo(40));
        Rope rope(text);
        for (int step = 0; step < 150; ++step) {
            const SourceRange range = random.range(text.size());
            const std::u16string units = random.text();
            text.replace(range.lower, range.length(), units);
            rope = random.upTo(1) == 0 ? rope.replaced(range, units) : rope.replaced(range, Rope(units));
            ASSERT_NO_FATAL_FAILURE(
                expectHoldsAt(rope, text, random.upTo(text.size()), random.range(text.size())));
        }
        expectHolds(rope, text);
        expectFullChunks(rope);
        EXPECT_EQ(rope, Rope(text));
        if (HasFailure()) {
            break;
        }
    }
}

TEST(Rope, MovesToAnotherArray) {
    for (const std::size_t size : {0, 1, 2048, 2049, 100'000, 3'000'000}) {
        SCOPED_TRACE(testing::Message() << size << " units");
        std::u16string text(size, u'x');
        for (std::size_t at = 7; at < size; at += 1000) {
            text[at] = at % 3 == 0 ? u'\n' : u'é';
        }
        // Pieces of two arrays, one of which nothing holds afterwards.
        auto first = std::make_shared<char16_t[]>(size + 1);
        const std::weak_ptr<char16_t[]> old = first;
        std::ranges::copy(text, first.get());
        const SourceText to(text);
        Rope moved;
        {
            Rope rope(SourceText(std::move(first), size));
            rope = rope.replaced(SourceRange::empty(rope.size() / 2), u"y");
            rope = rope.replaced(SourceRange::at(rope.size() / 2, 1), u"");
            moved = rope.movedTo(to);
        }
        expectHolds(moved, text);
        EXPECT_TRUE(old.expired());
        EXPECT_EQ(moved.contiguous().units().data(), size > 0 ? to.units().data() : nullptr);
    }
}

TEST(RopeDeathTest, StopsOutsideTheText) {
    const Rope rope(u"a\nb");
    EXPECT_DEATH(rope.unit(3), "inside the text");
    EXPECT_DEATH(rope.units({1, 4}), "inside the text");
    EXPECT_DEATH(rope.replaced({4, 4}, u""), "inside the text");
    EXPECT_DEATH(rope.line(4), "inside the text");
    EXPECT_DEATH(rope.lineStart(2), "has that line");
    EXPECT_DEATH(rope.unitsOutsidePrintableASCII({3, 4}), "inside the text");
}

} // namespace
