#include "EditingKeys.h"

#include <QKeyEvent>

#include <gtest/gtest.h>

namespace {

QKeyEvent press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, const QString& text = {}) {
    return QKeyEvent(QEvent::KeyPress, key, modifiers, text);
}

} // namespace

TEST(EditingKeys, MovesAlongTheText) {
    const Rope text(u"uno dos\ntres");
    const struct {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        Offset target;
    } rows[] = {
        {Qt::Key_Left, Qt::NoModifier, 4},      {Qt::Key_Right, Qt::NoModifier, 6},
        {Qt::Key_Left, Qt::ControlModifier, 4}, {Qt::Key_Right, Qt::ControlModifier, 7},
        {Qt::Key_Home, Qt::NoModifier, 0},      {Qt::Key_End, Qt::NoModifier, 7},
        {Qt::Key_Home, Qt::ControlModifier, 0}, {Qt::Key_End, Qt::ControlModifier, 12},
    };
    for (const auto& row : rows) {
        const auto moves = EditingKeys::motion(press(row.key, row.modifiers));
        ASSERT_TRUE(moves) << row.key;
        EXPECT_EQ(moves->target(5, text), row.target);
        EXPECT_FALSE(moves->selects);
        const auto selects = EditingKeys::motion(press(row.key, row.modifiers | Qt::ShiftModifier));
        ASSERT_TRUE(selects) << row.key;
        EXPECT_EQ(selects->target(5, text), row.target);
        EXPECT_TRUE(selects->selects);
    }
    EXPECT_FALSE(EditingKeys::motion(press(Qt::Key_Down)));
}

TEST(EditingKeys, MovesByLinesAndPages) {
    const struct {
        Qt::Key key;
        int lines, pages;
    } rows[] = {{Qt::Key_Up, -1, 0}, {Qt::Key_Down, 1, 0}, {Qt::Key_PageUp, 0, -1}, {Qt::Key_PageDown, 0, 1}};
    for (const auto& row : rows) {
        for (const auto modifiers : {Qt::NoModifier, Qt::ShiftModifier}) {
            const auto motion = EditingKeys::lineMotion(press(row.key, modifiers));
            ASSERT_TRUE(motion) << row.key;
            EXPECT_EQ(motion->lines, row.lines);
            EXPECT_EQ(motion->pages, row.pages);
            EXPECT_EQ(motion->selects, modifiers == Qt::ShiftModifier);
        }
    }
    EXPECT_FALSE(EditingKeys::lineMotion(press(Qt::Key_Left)));
}

TEST(EditingKeys, Erases) {
    const Rope text(u"uno dos tres");
    const struct {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        Offset target;
    } rows[] = {
        {Qt::Key_Backspace, Qt::NoModifier, 5},      {Qt::Key_Backspace, Qt::ShiftModifier, 5},
        {Qt::Key_Backspace, Qt::ControlModifier, 4}, {Qt::Key_Delete, Qt::NoModifier, 7},
        {Qt::Key_Delete, Qt::ControlModifier, 7},
    };
    for (const auto& row : rows) {
        const auto target = EditingKeys::erasure(press(row.key, row.modifiers));
        ASSERT_NE(target, nullptr) << row.key;
        EXPECT_EQ(target(6, text), row.target);
    }
    EXPECT_EQ(EditingKeys::erasure(press(Qt::Key_A)), nullptr);
}

TEST(EditingKeys, TellsTypingFromCommands) {
    const QString letter = QStringLiteral("ñ");
    EXPECT_TRUE(EditingKeys::isTyping(press(Qt::Key_Ntilde, Qt::NoModifier, letter)));
    EXPECT_TRUE(EditingKeys::isTyping(press(Qt::Key_Ntilde, Qt::ShiftModifier, letter)));
    EXPECT_TRUE(EditingKeys::isTyping(press(Qt::Key_unknown, Qt::NoModifier, QStringLiteral("😀"))));
    EXPECT_FALSE(EditingKeys::isTyping(press(Qt::Key_Ntilde, Qt::ControlModifier, letter)));
    EXPECT_FALSE(EditingKeys::isTyping(press(Qt::Key_Ntilde, Qt::AltModifier, letter)));
    EXPECT_FALSE(EditingKeys::isTyping(press(Qt::Key_Escape, Qt::NoModifier, QStringLiteral("\x1B"))));
    EXPECT_FALSE(EditingKeys::isTyping(press(Qt::Key_Shift)));
}

TEST(EditingKeys, KeepsEditingFromShortcutsAndLeavesTheRest) {
    EXPECT_TRUE(EditingKeys::isEditingKey(press(Qt::Key_A, Qt::NoModifier, QStringLiteral("a"))));
    EXPECT_TRUE(EditingKeys::isEditingKey(press(Qt::Key_Backspace)));
    EXPECT_TRUE(EditingKeys::isEditingKey(press(Qt::Key_Left)));
    EXPECT_TRUE(EditingKeys::isEditingKey(press(Qt::Key_PageDown)));
    EXPECT_FALSE(EditingKeys::isEditingKey(press(Qt::Key_S, Qt::ControlModifier)));
    EXPECT_FALSE(EditingKeys::isEditingKey(press(Qt::Key_F1)));
}

TEST(EditingKeys, TellsCommandsThatADelegateMayWant) {
    const struct {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        std::optional<TextCommand> command;
    } rows[] = {
        {Qt::Key_Tab, Qt::NoModifier, TextCommand::insertTab},
        {Qt::Key_Backtab, Qt::ShiftModifier, TextCommand::insertBacktab},
        {Qt::Key_Tab, Qt::ShiftModifier, TextCommand::insertBacktab},
        {Qt::Key_Tab, Qt::ControlModifier, std::nullopt},
        {Qt::Key_Return, Qt::NoModifier, TextCommand::insertNewline},
        {Qt::Key_Enter, Qt::KeypadModifier, TextCommand::insertNewline},
        {Qt::Key_Return, Qt::ShiftModifier, TextCommand::insertNewline},
        {Qt::Key_Return, Qt::AltModifier, std::nullopt},
        {Qt::Key_Escape, Qt::NoModifier, TextCommand::cancelOperation},
        {Qt::Key_A, Qt::NoModifier, std::nullopt},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(EditingKeys::command(press(row.key, row.modifiers)), row.command) << row.key;
    }
}

TEST(EditingKeys, LeavesNoEditingKeyToShortcuts) {
    for (const Qt::Key key : {Qt::Key_C, Qt::Key_X, Qt::Key_V, Qt::Key_A, Qt::Key_Z, Qt::Key_Space}) {
        EXPECT_TRUE(EditingKeys::isEditingKey(press(key, Qt::ControlModifier))) << key;
    }
    for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Return, Qt::Key_Up, Qt::Key_Delete}) {
        EXPECT_TRUE(EditingKeys::isEditingKey(press(key))) << key;
    }
    EXPECT_FALSE(EditingKeys::isEditingKey(press(Qt::Key_Escape)));
    EXPECT_FALSE(EditingKeys::isEditingKey(press(Qt::Key_S, Qt::ControlModifier)));
    EXPECT_FALSE(EditingKeys::isEditingKey(press(Qt::Key_F3)));
}
