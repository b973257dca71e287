#include "EditingKeys.h"

#include "TextNavigation.h"

#include <QKeyEvent>
#include <QKeySequence>

#include <algorithm>

namespace {

using StandardKey = QKeySequence::StandardKey;

Offset lineStart(Offset caret, const Rope& text) { return text.lineStart(text.line(caret)); }
Offset lineEnd(Offset caret, const Rope& text) { return TextNavigation::lineEnd(text.line(caret), text); }
Offset textStart(Offset, const Rope&) { return 0; }
Offset textEnd(Offset, const Rope& text) { return text.size(); }

constexpr struct {
    StandardKey move;
    StandardKey select;
    EditingKeys::Target target;
} motions[] = {
    {QKeySequence::MoveToNextChar, QKeySequence::SelectNextChar, TextNavigation::nextCharacter},
    {QKeySequence::MoveToPreviousChar, QKeySequence::SelectPreviousChar, TextNavigation::previousCharacter},
    {QKeySequence::MoveToNextWord, QKeySequence::SelectNextWord, TextNavigation::nextWord},
    {QKeySequence::MoveToPreviousWord, QKeySequence::SelectPreviousWord, TextNavigation::previousWord},
    {QKeySequence::MoveToStartOfLine, QKeySequence::SelectStartOfLine, TextNavigation::lineHome},
    {QKeySequence::MoveToEndOfLine, QKeySequence::SelectEndOfLine, lineEnd},
    {QKeySequence::MoveToStartOfBlock, QKeySequence::SelectStartOfBlock, lineStart},
    {QKeySequence::MoveToEndOfBlock, QKeySequence::SelectEndOfBlock, lineEnd},
    {QKeySequence::MoveToStartOfDocument, QKeySequence::SelectStartOfDocument, textStart},
    {QKeySequence::MoveToEndOfDocument, QKeySequence::SelectEndOfDocument, textEnd},
};

constexpr struct {
    StandardKey move;
    StandardKey select;
    int lines;
    int pages;
} lineMotions[] = {
    {QKeySequence::MoveToNextLine, QKeySequence::SelectNextLine, 1, 0},
    {QKeySequence::MoveToPreviousLine, QKeySequence::SelectPreviousLine, -1, 0},
    {QKeySequence::MoveToNextPage, QKeySequence::SelectNextPage, 0, 1},
    {QKeySequence::MoveToPreviousPage, QKeySequence::SelectPreviousPage, 0, -1},
};

constexpr struct {
    StandardKey key;
    EditingKeys::Target target;
} erasures[] = {
    {QKeySequence::Delete, TextNavigation::nextCharacter},
    {QKeySequence::DeleteStartOfWord, TextNavigation::previousWord},
    {QKeySequence::DeleteEndOfWord, TextNavigation::nextWord},
};

/// Done by the view itself.
constexpr StandardKey commands[] = {
    QKeySequence::Cut,      QKeySequence::Copy, QKeySequence::Paste, QKeySequence::SelectAll,
    QKeySequence::Deselect, QKeySequence::Undo, QKeySequence::Redo,
};

} // namespace

std::optional<EditingKeys::Motion> EditingKeys::motion(const QKeyEvent& event) {
    for (const auto& each : motions) {
        const bool selects = event.matches(each.select);
        if (selects || event.matches(each.move)) {
            return Motion{each.target, selects};
        }
    }
    return std::nullopt;
}

std::optional<EditingKeys::LineMotion> EditingKeys::lineMotion(const QKeyEvent& event) {
    for (const auto& each : lineMotions) {
        const bool selects = event.matches(each.select);
        if (selects || event.matches(each.move)) {
            return LineMotion{each.lines, each.pages, selects};
        }
    }
    return std::nullopt;
}

EditingKeys::Target EditingKeys::erasure(const QKeyEvent& event) {
    // Backspace is no standard key everywhere, and with Shift means the same.
    if (event.key() == Qt::Key_Backspace && !(event.modifiers() & ~Qt::ShiftModifier)) {
        return TextNavigation::previousCharacter;
    }
    // Some desktops have letters erase too, such as Ctrl+D: those are for menus.
    const bool isErasingKey = event.key() == Qt::Key_Backspace || event.key() == Qt::Key_Delete;
    for (const auto& each : erasures) {
        if (isErasingKey && event.matches(each.key)) {
            return each.target;
        }
    }
    return nullptr;
}

std::optional<TextCommand> EditingKeys::command(const QKeyEvent& event) {
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (event.matches(QKeySequence::InsertParagraphSeparator) ||
        event.matches(QKeySequence::InsertLineSeparator)) {
        return TextCommand::insertNewline;
    }
    if (event.key() == Qt::Key_Tab && modifiers == Qt::NoModifier) {
        return TextCommand::insertTab;
    }
    const bool isBacktab = event.key() == Qt::Key_Backtab || event.key() == Qt::Key_Tab;
    if (isBacktab && modifiers == Qt::ShiftModifier) {
        return TextCommand::insertBacktab;
    }
    if (event.key() == Qt::Key_Escape && modifiers == Qt::NoModifier) {
        return TextCommand::cancelOperation;
    }
    return std::nullopt;
}

bool EditingKeys::isTyping(const QKeyEvent& event) {
    const QString text = event.text();
    const bool isCommand = event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    return !isCommand && !text.isEmpty() && (text.front().isPrint() || text.front().isSurrogate());
}

bool EditingKeys::isCompletion(const QKeyEvent& event) {
    return event.key() == Qt::Key_Space && event.modifiers() == Qt::ControlModifier;
}

bool EditingKeys::isEditingKey(const QKeyEvent& event) {
    const auto isMeant = [&](StandardKey key) { return event.matches(key); };
    const auto command = EditingKeys::command(event);
    // Escape may be wanted elsewhere: whether the text has a use for it is known only when it comes.
    return isTyping(event) || erasure(event) != nullptr || motion(event) || lineMotion(event) ||
           (command && *command != TextCommand::cancelOperation) || isCompletion(event) ||
           std::ranges::any_of(commands, isMeant);
}
