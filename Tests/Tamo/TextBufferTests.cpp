#include "TextBuffer.h"

#include <gtest/gtest.h>

#include <QString>

#include <algorithm>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

/// A buffer with all that belongs to it, and a count of its notices.
class Document {
public:
    explicit Document(std::u16string_view text)
        : mirror(std::make_shared<TextMirror>(Rope(text))), buffer(Rope(text), mirror) {
        buffer.setUndoManager(&undo);
        buffer.setOnChange([this] {
            ++changes;
            mirrorFollows = mirrorFollows && mirror->text() == buffer.text();
        });
    }

    std::u16string text() const { return buffer.text().units(buffer.text().fullRange()); }
    void type(std::u16string_view units) {
        for (const char16_t unit : units) {
            buffer.type(SourceRange::empty(buffer.text().size()), {&unit, 1});
        }
    }
    void deleteBackward() {
        const Offset size = buffer.text().size();
        buffer.type({size - 1, size}, u"");
    }

    UndoManager undo;
    std::shared_ptr<TextMirror> mirror;
    TextBuffer buffer;
    int changes = 0;
    bool mirrorFollows = true;
};

TEST(TextBuffer, UndoesAListOfEditsWithOneCommand) {
    Document document(u"<a><b/></a>");
    const std::vector<TextEdit> edits = {TextEdit::insert(u"x", 0), TextEdit::deleteRange({3, 7}),
                                         TextEdit{{9, 10}, u"long"}};
    document.buffer.apply(edits, QStringLiteral("Envolver"));
    EXPECT_EQ(document.text(), u"x<a></long>");
    EXPECT_EQ(document.undo.undoActionName(), QStringLiteral("Envolver"));
    document.undo.undo();
    EXPECT_EQ(document.text(), u"<a><b/></a>");
    EXPECT_FALSE(document.undo.canUndo());
    document.undo.redo();
    EXPECT_EQ(document.text(), u"x<a></long>");
    EXPECT_EQ(document.mirror->text(), document.buffer.text());
}

TEST(TextBuffer, ReplacesARangeByARope) {
    Document document(u"<a><b/></a>");
    document.buffer.replace({3, 7}, Rope(u"long"), QStringLiteral("Formatear"));
    EXPECT_EQ(document.text(), u"<a>long</a>");
    EXPECT_EQ(document.buffer.generation(), 1);
    EXPECT_EQ(document.changes, 1);
    EXPECT_EQ(document.undo.undoActionName(), QStringLiteral("Formatear"));
    document.undo.undo();
    EXPECT_EQ(document.text(), u"<a><b/></a>");
    EXPECT_FALSE(document.undo.canUndo());
    document.undo.redo();
    EXPECT_EQ(document.text(), u"<a>long</a>");
    EXPECT_TRUE(document.mirrorFollows);
}

TEST(TextBuffer, CountsEveryReplacement) {
    Document document(u"abc");
    EXPECT_EQ(document.buffer.generation(), 0);
    const std::vector<TextEdit> edits = {TextEdit::insert(u"x", 0), TextEdit::insert(u"y", 1),
                                         TextEdit::insert(u"z", 2)};
    document.buffer.apply(edits);
    EXPECT_EQ(document.buffer.generation(), 3);
    EXPECT_EQ(document.changes, 3);
    document.undo.undo();
    EXPECT_EQ(document.buffer.generation(), 6);
    document.buffer.type({0, 1}, u"q");
    EXPECT_EQ(document.buffer.generation(), 7);
    EXPECT_EQ(document.changes, 7);
    EXPECT_TRUE(document.mirrorFollows);
}

TEST(TextBuffer, DoesNothingForNoEdits) {
    Document document(u"abc");
    document.buffer.apply({}, QStringLiteral("Mover"));
    document.buffer.type({1, 1}, u"");
    EXPECT_FALSE(document.undo.canUndo());
    EXPECT_EQ(document.buffer.generation(), 0);
    EXPECT_EQ(document.changes, 0);
}

TEST(TextBuffer, ShowsASaveNoHalfOfABatch) {
    Document document(u"ab");
    std::vector<Rope> seen;
    QObject::connect(&document.buffer.storage(), &TextStorage::editProcessed, &document.buffer,
                     [&] { seen.push_back(document.mirror->text()); });
    const std::vector<TextEdit> edits = {TextEdit::insert(u"<", 0), TextEdit::insert(u">", 2)};
    document.buffer.apply(edits);
    EXPECT_EQ(seen, (std::vector<Rope>{Rope(u"ab"), Rope(u"ab")}));
    EXPECT_EQ(document.mirror->text(), Rope(u"<ab>"));
}

TEST(TextBuffer, TellsOthersOfAnEditWithItsGenerationCounted) {
    Document document(u"ab");
    std::vector<std::int64_t> seen;
    QObject::connect(&document.buffer.storage(), &TextStorage::editProcessed, &document.buffer,
                     [&] { seen.push_back(document.buffer.generation()); });
    const std::vector<TextEdit> edits = {TextEdit::insert(u"<", 0), TextEdit::insert(u">", 2)};
    document.buffer.apply(edits);
    EXPECT_EQ(seen, (std::vector<std::int64_t>{1, 2}));
}

TEST(TextBuffer, KeepsItsTextWithoutAnUndoManager) {
    Document document(u"abc");
    document.buffer.setUndoManager(nullptr);
    document.buffer.type({3, 3}, u"d");
    document.buffer.apply(std::vector<TextEdit>{TextEdit::insert(u"x", 0)});
    EXPECT_EQ(document.text(), u"xabcd");
    EXPECT_FALSE(document.undo.canUndo());
}

TEST(TextBuffer, MayGoBeforeItsHistory) {
    UndoManager undo;
    {
        TextBuffer buffer(Rope(u"a"), std::make_shared<TextMirror>());
        buffer.setUndoManager(&undo);
        buffer.type({0, 0}, u"b");
    }
    undo.undo();
    EXPECT_FALSE(undo.canUndo());
}

TEST(TextBuffer, PutsItsTextTogetherOnceAGeneration) {
    Document document(std::u16string(5000, u'x'));
    document.buffer.type({5, 5}, u"y");
    const SourceText first = document.buffer.sourceText();
    EXPECT_EQ(first.units().data(), document.buffer.sourceText().units().data());
    EXPECT_EQ(first, SourceText(document.text()));
    document.buffer.type({6, 6}, u"z");
    EXPECT_EQ(document.buffer.sourceText(), SourceText(document.text()));
    EXPECT_EQ(first.count(), 5001);
}

TEST(TextBuffer, StoresTheTextWhereItPutItTogether) {
    Document document(std::u16string(5000, u'x'));
    document.buffer.type({5, 5}, u"y");
    const SourceText together = document.buffer.sourceText();
    for (const Rope& text : {document.buffer.text(), document.mirror->text()}) {
        EXPECT_EQ(text.contiguous().units().data(), together.units().data());
    }
    const std::int64_t generation = document.buffer.generation();
    const SourceText elsewhere(together.units());
    EXPECT_EQ(document.buffer.moveTo(document.buffer.text().movedTo(elsewhere)), Rope(together));
    EXPECT_EQ(document.buffer.sourceText().units().data(), elsewhere.units().data());
    EXPECT_EQ(document.buffer.generation(), generation);
    EXPECT_TRUE(document.undo.canUndo());
}

/// Edits that do not overlap: insertions, several at one offset, and ranges that touch each other.
std::vector<TextEdit> randomEdits(std::mt19937& engine, Offset size) {
    const auto upTo = [&](std::size_t most) {
        return static_cast<Offset>(std::uniform_int_distribution<std::size_t>(0, most)(engine));
    };
    std::vector<TextEdit> edits;
    for (Offset at = 0; at <= size; at += upTo(upTo(3) == 0 ? 3000 : 3)) {
        for (Offset insertions = upTo(2); insertions > 0; --insertions) {
            edits.push_back(
                TextEdit::insert(std::u16string(upTo(3), static_cast<char16_t>(u'A' + upTo(25))), at));
        }
        const Offset end = std::min(size, at + upTo(upTo(9) == 0 ? 4000 : 4));
        if (end > at) {
            edits.push_back({{at, end}, std::u16string(upTo(3), static_cast<char16_t>(u'0' + upTo(9)))});
        }
        at = std::max(end, at + 1);
        if (edits.size() > 40) {
            break;
        }
    }
    std::ranges::shuffle(edits, engine);
    return edits;
}

TEST(TextBuffer, GoesBackAndForthThroughAnyEdits) {
    for (unsigned seed = 1; seed <= 100; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937 engine(seed);
        std::u16string text(
            std::uniform_int_distribution<std::size_t>(0, seed % 5 == 0 ? 20'000 : 60)(engine), u' ');
        for (char16_t& unit : text) {
            unit = static_cast<char16_t>('a' + engine() % 26);
        }
        Document document(text);
        std::vector<std::u16string> versions = {text};
        for (int step = 0; step < 8; ++step) {
            const std::vector<TextEdit> edits = randomEdits(engine, document.buffer.text().size());
            document.buffer.apply(edits);
            if (!edits.empty()) {
                versions.push_back(TextEdit::apply(edits, versions.back()));
            }
            ASSERT_EQ(document.text(), versions.back());
        }
        for (int round = 0; round < 2; ++round) {
            for (std::size_t i = versions.size() - 1; i > 0; --i) {
                document.undo.undo();
                ASSERT_EQ(document.text(), versions[i - 1]);
            }
            EXPECT_FALSE(document.undo.canUndo());
            for (std::size_t i = 1; i < versions.size(); ++i) {
                document.undo.redo();
                ASSERT_EQ(document.text(), versions[i]);
            }
        }
        EXPECT_TRUE(document.mirrorFollows);
        EXPECT_EQ(document.changes, document.buffer.generation());
    }
}

TEST(TextBufferDeathTest, StopsOnBrokenEdits) {
    Document document(u"abcdef");
    const auto apply = [&](std::vector<TextEdit> edits) { document.buffer.apply(edits); };
    EXPECT_DEATH(apply({TextEdit::deleteRange({0, 3}), TextEdit::deleteRange({2, 4})}), "overlap");
    EXPECT_DEATH(apply({TextEdit::deleteRange({0, 3}), TextEdit::deleteRange({0, 3})}), "overlap");
    EXPECT_DEATH(apply({TextEdit::deleteRange({0, 3}), TextEdit::insert(u"x", 2)}), "overlap");
    EXPECT_DEATH(apply({TextEdit::deleteRange({5, 7})}), "inside the text");
    EXPECT_DEATH(document.buffer.type({5, 7}, u""), "inside the text");
}

TEST(TextBufferDeathTest, StopsOnARangeOutsideTheText) {
    Document document(u"abc");
    EXPECT_DEATH(document.buffer.replace({2, 4}, Rope()), "inside the text");
}

TEST(TextBufferDeathTest, StopsOnAnotherThread) {
    EXPECT_DEATH(
        {
            Document document(u"abc");
            std::thread([&] { document.buffer.type({0, 0}, u"x"); }).join();
        },
        "its own thread");
}

} // namespace
