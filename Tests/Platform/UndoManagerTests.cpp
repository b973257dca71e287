#include "UndoManager.h"

#include <gtest/gtest.h>

#include <string>

namespace {

/// A word that is changed undoably.
class Word {
public:
    explicit Word(UndoManager& undo) : m_undo(undo) {}

    void set(const std::string& word) {
        m_undo.registerUndo([this, old = m_word] { set(old); });
        m_word = word;
    }
    const std::string& word() const { return m_word; }

private:
    UndoManager& m_undo;
    std::string m_word;
};

TEST(UndoManager, TakesStepsBackAndForth) {
    UndoManager undo;
    Word word(undo);
    EXPECT_FALSE(undo.canUndo());
    word.set("one");
    word.set("two");
    undo.undo();
    EXPECT_EQ(word.word(), "one");
    EXPECT_TRUE(undo.canRedo());
    undo.undo();
    EXPECT_EQ(word.word(), "");
    EXPECT_FALSE(undo.canUndo());
    undo.undo();
    undo.redo();
    undo.redo();
    EXPECT_EQ(word.word(), "two");
    EXPECT_FALSE(undo.canRedo());
    undo.redo();
    undo.undo();
    word.set("three");
    EXPECT_FALSE(undo.canRedo());
    undo.undo();
    EXPECT_EQ(word.word(), "one");
}

TEST(UndoManager, UndoesAGroupAsOneStepInReverse) {
    UndoManager undo;
    std::string log;
    undo.beginUndoGroup();
    undo.registerUndo([&] { log += "a"; });
    undo.beginUndoGroup();
    undo.registerUndo([&] { log += "b"; });
    undo.endUndoGroup();
    EXPECT_FALSE(undo.canUndo());
    undo.registerUndo([&] { log += "c"; });
    undo.endUndoGroup();
    undo.undo();
    EXPECT_EQ(log, "cba");
    EXPECT_FALSE(undo.canUndo());
}

TEST(UndoManager, RedoesAGroupInItsOwnOrder) {
    UndoManager undo;
    Word word(undo);
    undo.beginUndoGroup();
    word.set("one");
    word.set("two");
    undo.endUndoGroup();
    for (int round = 0; round < 3; ++round) {
        undo.undo();
        EXPECT_EQ(word.word(), "");
        undo.redo();
        EXPECT_EQ(word.word(), "two");
    }
}

TEST(UndoManager, MakesNoStepOfAnEmptyGroup) {
    UndoManager undo;
    undo.beginUndoGroup();
    undo.setActionName(QStringLiteral("Mover"));
    undo.endUndoGroup();
    EXPECT_FALSE(undo.canUndo());
    EXPECT_TRUE(undo.isClean());
}

TEST(UndoManager, NamesItsSteps) {
    UndoManager undo;
    EXPECT_EQ(undo.undoMenuTitle(), QStringLiteral("Deshacer"));
    EXPECT_EQ(undo.redoMenuTitle(), QStringLiteral("Rehacer"));
    Word word(undo);
    undo.beginUndoGroup();
    word.set("one");
    undo.setActionName(QStringLiteral("Escribir"));
    undo.endUndoGroup();
    word.set("two");
    EXPECT_EQ(undo.undoMenuTitle(), QStringLiteral("Deshacer"));
    undo.undo();
    EXPECT_EQ(undo.undoMenuTitle(), QStringLiteral("Deshacer Escribir"));
    EXPECT_EQ(undo.undoActionName(), QStringLiteral("Escribir"));
    undo.undo();
    EXPECT_EQ(undo.redoMenuTitle(), QStringLiteral("Rehacer Escribir"));
    EXPECT_EQ(undo.redoActionName(), QStringLiteral("Escribir"));
}

TEST(UndoManager, KnowsWhetherTheDocumentIsAsItWasSaved) {
    UndoManager undo;
    Word word(undo);
    int changes = 0;
    QObject::connect(&undo, &UndoManager::cleanChanged, &undo, [&] { ++changes; });
    EXPECT_TRUE(undo.isClean());
    word.set("one");
    EXPECT_FALSE(undo.isClean());
    undo.setClean();
    EXPECT_TRUE(undo.isClean());
    undo.undo();
    EXPECT_FALSE(undo.isClean());
    undo.redo();
    EXPECT_TRUE(undo.isClean());
    EXPECT_EQ(changes, 4);
}

TEST(UndoManager, TakesAStateThatIsPastForTheCleanOne) {
    UndoManager undo;
    Word word(undo);
    word.set("one");
    const std::uint64_t saved = undo.state();
    word.set("two");
    undo.setClean(saved);
    EXPECT_FALSE(undo.isClean());
    undo.undo();
    EXPECT_TRUE(undo.isClean());
    undo.undo();
    EXPECT_FALSE(undo.isClean()) << "the state before was saved no longer";
}

TEST(UndoManager, ComesBackToNoStateThatAnotherStepReplaced) {
    UndoManager undo;
    Word word(undo);
    word.set("one");
    const std::uint64_t saved = undo.state();
    undo.undo();
    word.set("two");
    undo.setClean(saved);
    EXPECT_FALSE(undo.isClean());
    undo.undo();
    EXPECT_FALSE(undo.isClean());
    undo.redo();
    EXPECT_FALSE(undo.isClean());
    undo.setClean();
    EXPECT_TRUE(undo.isClean());
    undo.resetClean();
    EXPECT_FALSE(undo.isClean());
}

TEST(UndoManager, ChangesItsMarkWithWhateverEndsCoalescing) {
    UndoManager undo;
    Word word(undo);
    std::uint64_t mark = undo.coalescingMark();
    const auto hasChanged = [&] {
        return undo.coalescingMark() != std::exchange(mark, undo.coalescingMark());
    };
    EXPECT_FALSE(hasChanged());
    word.set("one");
    EXPECT_TRUE(hasChanged());
    undo.setClean();
    EXPECT_TRUE(hasChanged());
    undo.undo();
    EXPECT_TRUE(hasChanged());
    undo.redo();
    EXPECT_TRUE(hasChanged());
    undo.breakUndoCoalescing();
    EXPECT_TRUE(hasChanged());
}

TEST(UndoManager, TellsOfItsHistory) {
    UndoManager undo;
    Word word(undo);
    int changes = 0;
    QObject::connect(&undo, &UndoManager::historyChanged, &undo, [&] { ++changes; });
    word.set("one");
    undo.undo();
    undo.redo();
    EXPECT_EQ(changes, 3);
}

TEST(UndoManagerDeathTest, StopsOnMisuse) {
    UndoManager undo;
    EXPECT_DEATH(undo.endUndoGroup(), "ends only once");
    undo.beginUndoGroup();
    EXPECT_DEATH(undo.undo(), "inside a group");
}

} // namespace
