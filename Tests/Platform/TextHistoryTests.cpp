#include "TextHistory.h"

#include "MemoryLimit.h"

#include <gtest/gtest.h>

#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <new>
#include <random>
#include <string>
#include <vector>

namespace {

/// A history over a text, and a selection that it keeps.
class Document {
public:
    explicit Document(std::u16string_view text) : storage(Rope(text)), history(storage) {
        history.setUndoManager(&undo);
        history.setSelectionKeeper(
            {[this] { return selection; }, [this](TextSelection restored) { selection = restored; }});
    }

    std::u16string text() const { return storage.text().units(storage.text().fullRange()); }
    void type(std::u16string_view units) {
        for (const char16_t unit : units) {
            history.type(SourceRange::empty(storage.text().size()), {&unit, 1});
        }
    }
    void deleteBackward() {
        const Offset size = storage.text().size();
        history.type({size - 1, size}, u"");
    }

    TextStorage storage;
    UndoManager undo;
    TextHistory history;
    TextSelection selection;
};

TEST(TextHistory, LeavesAGroupItsNameWithoutOneOfItsOwn) {
    Document document(u"ab");
    const TextEdit edit = TextEdit::insert(u"x", 1);
    document.undo.beginUndoGroup();
    document.undo.setActionName(QStringLiteral("Mover"));
    document.history.apply({&edit, 1});
    document.undo.endUndoGroup();
    EXPECT_EQ(document.undo.undoActionName(), QStringLiteral("Mover"));
}

TEST(TextHistory, TakesEditsInAnyOrderAndNestsInsertionsAtOneOffset) {
    Document document(u"abcdef");
    const std::vector<TextEdit> edits = {TextEdit::insert(u"</outer>", 3), TextEdit::deleteRange({5, 6}),
                                         TextEdit::insert(u"</inner>", 3), TextEdit{{3, 4}, u"D"},
                                         TextEdit::insert(u"!", 0)};
    document.history.apply(edits);
    EXPECT_EQ(document.text(), u"!abc</inner></outer>De");
    document.undo.undo();
    EXPECT_EQ(document.text(), u"abcdef");
    document.undo.redo();
    EXPECT_EQ(document.text(), u"!abc</inner></outer>De");
}

/// Types "ab", does `between`, types "cd", and counts the steps back to the first text.
template <class Between>
int stepsAround(Between between) {
    Document document(u"1234");
    document.type(u"ab");
    between(document);
    document.type(u"cd");
    int steps = 0;
    for (; document.undo.canUndo(); ++steps) {
        document.undo.undo();
    }
    EXPECT_EQ(document.text(), u"1234");
    for (int i = 0; i < steps; ++i) {
        document.undo.redo();
    }
    EXPECT_TRUE(document.text().ends_with(u"cd"));
    return steps;
}

TEST(TextHistory, JoinsWhatIsTypedInOneGo) {
    EXPECT_EQ(stepsAround([](Document&) {}), 1);
    EXPECT_EQ(stepsAround([](Document& document) { document.undo.breakUndoCoalescing(); }), 2);
    EXPECT_EQ(stepsAround([](Document& document) { document.undo.setClean(); }), 2);
    EXPECT_EQ(stepsAround([](Document& document) { document.type(u"\n"); }), 3);
    EXPECT_EQ(stepsAround([](Document& document) { document.type(u" "); }), 2);
    EXPECT_EQ(stepsAround([](Document& document) { document.history.breakUndoCoalescing(); }), 2);
    EXPECT_EQ(stepsAround([](Document& document) { document.history.selectionMoved(TextSelection::at(1)); }),
              2);
    EXPECT_EQ(stepsAround([](Document& document) { document.history.selectionMoved(TextSelection::at(6)); }),
              1);
    EXPECT_EQ(stepsAround([](Document& document) { document.history.type({0, 0}, u"x"); }), 3);
    EXPECT_EQ(stepsAround([](Document& document) {
                  document.history.apply(
                      std::vector<TextEdit>{TextEdit::insert(u"x", document.storage.text().size())});
              }),
              3);
    EXPECT_EQ(stepsAround([](Document& document) {
                  document.undo.undo();
                  document.undo.redo();
              }),
              2);
}

TEST(TextHistory, KeepsErasingApartFromTyping) {
    EXPECT_EQ(stepsAround([](Document& document) { document.deleteBackward(); }), 3);
    EXPECT_EQ(stepsAround([](Document& document) {
                  for (int i = 0; i < 5; ++i) {
                      document.deleteBackward();
                  }
              }),
              3);
    Document document(u"abcd");
    document.deleteBackward();
    document.deleteBackward();
    EXPECT_EQ(document.undo.undoActionName(), QStringLiteral("Eliminar"));
    document.undo.undo();
    EXPECT_EQ(document.text(), u"abcd");
    EXPECT_FALSE(document.undo.canUndo());
}

TEST(TextHistory, EndsAWordAtAPause) {
    Document document(u"");
    document.history.setLongestPause(std::chrono::milliseconds(0));
    document.type(u"ab");
    document.undo.undo();
    EXPECT_EQ(document.text(), u"a");
}

TEST(TextHistory, PutsTheSelectionBackAndTheCaretAfterWhatIsRedone) {
    Document document(u"uno dos");
    document.selection = {4, 7};
    document.history.type({4, 7}, u"x");
    document.selection = TextSelection::at(0);
    document.undo.undo();
    EXPECT_EQ(document.selection, (TextSelection{4, 7}));
    document.undo.redo();
    EXPECT_EQ(document.selection, TextSelection::at(5));
    document.selection = TextSelection::at(1);
    document.undo.undo();
    EXPECT_EQ(document.selection, (TextSelection{4, 7}));

    document.selection = TextSelection::at(7);
    document.history.apply(std::vector<TextEdit>{TextEdit::insert(u"<", 0), TextEdit::insert(u">>", 3)});
    document.undo.undo();
    EXPECT_EQ(document.selection, TextSelection::at(7));
    document.undo.redo();
    EXPECT_EQ(document.selection, TextSelection::at(6));
}

TEST(TextHistory, NamesTypingAndRestoresTheSavedState) {
    Document document(u"");
    document.type(u"ab");
    document.undo.setClean();
    document.type(u"c");
    EXPECT_EQ(document.undo.undoMenuTitle(), QStringLiteral("Deshacer Escribir"));
    EXPECT_FALSE(document.undo.isClean());
    document.undo.undo();
    EXPECT_TRUE(document.undo.isClean());
    EXPECT_EQ(document.text(), u"ab");
}

TEST(TextHistory, JoinsWhatIsTypedTogetherInSeveralPlaces) {
    Document document(u"a-a");
    const QString name = QStringLiteral("Cambiar");
    const auto typeTogether = [&](char16_t unit, Offset length) {
        const std::vector<TextEdit> edits{TextEdit::insert({unit}, length),
                                          TextEdit::insert({unit}, 2 * length + 1)};
        document.history.typeTogether(edits, length + 1, name);
        document.history.selectionMoved(document.selection);
    };
    document.selection = TextSelection::at(1);
    typeTogether(u'b', 1);
    typeTogether(u'c', 2);
    EXPECT_EQ(document.text(), u"abc-abc");
    EXPECT_EQ(document.selection, TextSelection::at(3));
    EXPECT_EQ(document.undo.undoActionName(), name);
    document.undo.undo();
    EXPECT_EQ(document.text(), u"a-a");
    EXPECT_EQ(document.selection, TextSelection::at(1));
    EXPECT_FALSE(document.undo.canUndo());
    document.undo.redo();
    EXPECT_EQ(document.text(), u"abc-abc");
    EXPECT_EQ(document.selection, TextSelection::at(3));
    document.undo.undo();
    EXPECT_EQ(document.text(), u"a-a");
}

TEST(TextHistory, KeepsApartWhatIsTypedTogetherAfterAnythingElse) {
    const auto steps = [](const std::function<void(Document&)>& between) {
        Document document(u"a-a");
        document.selection = TextSelection::at(1);
        for (const Offset length : {1, 2}) {
            const std::vector<TextEdit> edits{TextEdit::insert(u"b", length),
                                              TextEdit::insert(u"b", 2 * length + 1)};
            document.history.typeTogether(edits, length + 1, QStringLiteral("Cambiar"));
            if (length == 1) {
                between(document);
            }
        }
        int count = 0;
        for (; document.undo.canUndo(); ++count) {
            document.undo.undo();
        }
        EXPECT_EQ(document.text(), u"a-a");
        return count;
    };
    EXPECT_EQ(steps([](Document&) {}), 1);
    EXPECT_EQ(steps([](Document& document) { document.history.selectionMoved(TextSelection::at(0)); }), 2);
    EXPECT_EQ(steps([](Document& document) { document.history.breakUndoCoalescing(); }), 2);
    EXPECT_EQ(steps([](Document& document) { document.undo.setClean(); }), 2);
    EXPECT_EQ(
        steps([](Document& document) { document.history.setLongestPause(std::chrono::milliseconds(0)); }), 2);
    EXPECT_EQ(steps([](Document& document) {
                  document.type(u"x");
                  document.deleteBackward();
              }),
              4);
}

TEST(TextHistory, KeepsErasingTogetherApartFromTyping) {
    Document document(u"a-a");
    document.selection = TextSelection::at(1);
    const QString name = QStringLiteral("Cambiar");
    const std::vector<TextEdit> typed{TextEdit::insert(u"b", 1), TextEdit::insert(u"b", 3)};
    document.history.typeTogether(typed, 2, name);
    const std::vector<TextEdit> erased{TextEdit::deleteRange({1, 2}), TextEdit::deleteRange({4, 5})};
    document.history.typeTogether(erased, 1, name);
    EXPECT_EQ(document.text(), u"a-a");
    document.undo.undo();
    EXPECT_EQ(document.text(), u"ab-ab");
    document.undo.undo();
    EXPECT_EQ(document.text(), u"a-a");
    EXPECT_FALSE(document.undo.canUndo());
}

TEST(TextHistory, GoesBackAndForthThroughAnyTyping) {
    for (unsigned seed = 1; seed <= 100; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937 engine(seed);
        Document document(u"some text\nto type in\n");
        const auto upTo = [&](Offset most) { return static_cast<Offset>(engine() % (most + 1)); };
        for (int step = 0; step < 60; ++step) {
            const Offset size = document.storage.text().size();
            const Offset at = upTo(3) == 0 ? upTo(size) : size / 2;
            const Offset end = std::min(size, at + (upTo(2) == 0 ? upTo(3) : 0));
            document.history.type({at, end}, std::u16string(upTo(2), upTo(8) == 0 ? u'\n' : u'x'));
        }
        const std::u16string typed = document.text();
        while (document.undo.canUndo()) {
            document.undo.undo();
        }
        EXPECT_EQ(document.text(), u"some text\nto type in\n");
        while (document.undo.canRedo()) {
            document.undo.redo();
        }
        EXPECT_EQ(document.text(), typed);
    }
}

TEST(TextHistory, ChangesNothingWhereTheMemoryIsTooShort) {
    const std::u16string_view before = u"one two three";
    Document document(before);
    document.type(u"!");
    const std::u16string text = document.text();
    // More than what the tests before may have left free.
    const std::u16string large(150'000'000, u'x');
    const std::vector<TextEdit> edits = {TextEdit::insert(u"short", 12), TextEdit{{4, 7}, large}};
    {
        const MemoryLimit limit(std::size_t{16} << 20);
        EXPECT_THROW(document.history.apply(edits, QStringLiteral("Mover")), std::bad_alloc);
        EXPECT_EQ(document.text(), text);
        EXPECT_THROW(document.history.type({0, 3}, std::u16string_view(large)), std::bad_alloc);
        EXPECT_EQ(document.text(), text);
    }
    EXPECT_EQ(document.undo.undoActionName(), QStringLiteral("Escribir"));
    document.undo.undo();
    EXPECT_EQ(document.text(), before);
    EXPECT_FALSE(document.undo.canUndo());
    document.undo.redo();
    EXPECT_EQ(document.text(), text);
    document.history.apply(edits, QStringLiteral("Mover"));
    EXPECT_EQ(document.storage.text().size(), text.size() + large.size() + 2);
}

TEST(TextHistory, KeepsWhatIsReplacedInMemoryOfItsOwn) {
    const auto units = std::make_shared<char16_t[]>(1'000'000, u'x');
    TextStorage storage(Rope(SourceText(units, 1'000'000)));
    UndoManager undo;
    TextHistory history(storage);
    history.setUndoManager(&undo);
    const long before = units.use_count();
    const TextEdit edit{{300'000, 500'000}, u"y"};
    history.apply({&edit, 1});
    // What is left of the text holds the array, and nothing else does.
    EXPECT_LT(units.use_count(), before);
    storage.moveTo(storage.text().movedTo(SourceText(storage.text().units(storage.text().fullRange()))));
    EXPECT_EQ(units.use_count(), 1);
    undo.undo();
    EXPECT_EQ(storage.text(), Rope(std::u16string(1'000'000, u'x')));
}

} // namespace
