#include "TextStorage.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

/// Writes down what a storage tells.
class Listener {
public:
    explicit Listener(TextStorage& storage) {
        QObject::connect(&storage, &TextStorage::editProcessed, &m_context,
                         [this, &storage](SourceRange range, std::int64_t change) {
                             m_heard.push_back(range.description() + " by " + std::to_string(change) +
                                               " of " + std::to_string(storage.text().size()));
                         });
        QObject::connect(&storage, &TextStorage::editingEnded, &m_context,
                         [this] { m_heard.emplace_back("end"); });
    }

    const std::vector<std::string>& heard() const { return m_heard; }

private:
    QObject m_context;
    std::vector<std::string> m_heard;
};

using Heard = std::vector<std::string>;

TEST(TextStorage, TellsOfEachReplacementWithTheTextAfterIt) {
    TextStorage storage(Rope(u"abcdef"));
    const Listener listener(storage);
    storage.replaceCharacters({1, 3}, u"xyz");
    storage.replaceCharacters({7, 7}, Rope(u"!"));
    storage.replaceCharacters({0, 8}, u"");
    EXPECT_EQ(storage.text(), Rope());
    EXPECT_EQ(listener.heard(),
              (Heard{"1..<4 by 1 of 7", "end", "7..<8 by 1 of 8", "end", "0..<0 by -8 of 0", "end"}));
}

TEST(TextStorage, EndsABatchOnceHoweverDeep) {
    TextStorage storage(Rope(u"abcdef"));
    const Listener listener(storage);
    storage.beginEditing();
    storage.replaceCharacters({4, 5}, u"");
    storage.beginEditing();
    storage.replaceCharacters({0, 1}, u"A");
    storage.endEditing();
    storage.endEditing();
    EXPECT_EQ(storage.text(), Rope(u"Abcdf"));
    EXPECT_EQ(listener.heard(), (Heard{"4..<4 by -1 of 5", "0..<1 by 0 of 5", "end"}));
}

TEST(TextStorage, IsSilentWhenNothingChanges) {
    TextStorage storage(Rope(u"abc"));
    const Listener listener(storage);
    storage.beginEditing();
    storage.replaceCharacters({2, 2}, u"");
    storage.endEditing();
    EXPECT_TRUE(listener.heard().empty());
}

TEST(TextStorageDeathTest, StopsOnMisuse) {
    TextStorage storage(Rope(u"abc"));
    EXPECT_DEATH(storage.replaceCharacters({2, 4}, u""), "inside the text");
    EXPECT_DEATH(storage.endEditing(), "ends only once");
    QObject::connect(&storage, &TextStorage::editProcessed, &storage,
                     [&] { storage.replaceCharacters({0, 1}, u""); });
    EXPECT_DEATH(storage.replaceCharacters({0, 0}, u"x"), "not answered");
}

TEST(TextStorage, MovesWithoutAChange) {
    const SourceText other(u"abcdef");
    TextStorage storage(Rope(u"abcdef").replaced({3, 3}, u""));
    const Listener listener(storage);
    int moves = 0;
    QObject::connect(&storage, &TextStorage::textMoved, &storage, [&] { ++moves; });
    const Rope before = storage.moveTo(storage.text().movedTo(other));
    EXPECT_EQ(before, Rope(u"abcdef"));
    EXPECT_EQ(storage.text(), before);
    EXPECT_EQ(storage.text().contiguous().units().data(), other.units().data());
    EXPECT_EQ(moves, 1);
    EXPECT_EQ(listener.heard(), Heard());
}

} // namespace
