#include "TypingMemory.h"

#include <gtest/gtest.h>

namespace {

/// After `=` was typed at `at`.
Typing withValue(Offset at) {
    Typing typing;
    typing.insertions.add(u'=', TextEdit::insert(u"=\"\"", at), at + 2);
    return typing;
}

} // namespace

TEST(TypingMemory, FindsWhatBelongedToTheText) {
    const Rope text(std::u16string_view(u"<a b=\"\""));
    TypingMemory memory;
    memory.note(text, 6, withValue(4));
    EXPECT_TRUE(memory.find(text, 6).has_value());
    EXPECT_FALSE(memory.find(text, 5).has_value());
    EXPECT_FALSE(memory.find(Rope(std::u16string_view(u"<a c=\"\"")), 6).has_value());
    EXPECT_FALSE(memory.find(Rope(std::u16string_view(u"<a b=\"\" ")), 6).has_value());
}

TEST(TypingMemory, ForgetsWhatDoesNotBelongToTheTextAnyMore) {
    const Rope text(std::u16string_view(u"<a b=\"\""));
    TypingMemory memory;
    memory.note(text, 6, withValue(4));
    memory.note(text, 6, {});
    EXPECT_FALSE(memory.find(text, 6).has_value());
}

TEST(TypingMemory, KeepsTheLastStates) {
    TypingMemory memory;
    const Rope text(std::u16string(TypingMemory::mostStates + 3, u'x'));
    for (Offset at = 2; at < TypingMemory::mostStates + 3; ++at) {
        memory.note(text, at, withValue(at - 2));
    }
    EXPECT_FALSE(memory.find(text, 2).has_value());
    EXPECT_TRUE(memory.find(text, 3).has_value());
}
