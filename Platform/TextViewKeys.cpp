#include "TextViewKeys.h"

#include "EditingKeys.h"
#include "TextNavigation.h"
#include "TextView.h"

#include <QKeyEvent>

#include <algorithm>
#include <utility>

bool TextViewKeys::press(const QKeyEvent& event) {
    if (handleMove(event) || handleErasure(event) || handleStandardKey(event) || handleCommand(event)) {
        return true;
    }
    if (EditingKeys::isTyping(event)) {
        m_view.insertText(event.text().toStdU16String());
        return true;
    }
    return false;
}

bool TextViewKeys::handleMove(const QKeyEvent& event) {
    const auto anchor = [](bool selects) {
        return selects ? TextView::Anchor::stays : TextView::Anchor::moves;
    };
    if (const auto motion = EditingKeys::motion(event)) {
        const bool isStep = motion->target == TextNavigation::nextCharacter ||
                            motion->target == TextNavigation::previousCharacter;
        if (isStep && !motion->selects && !m_view.selection().isEmpty()) {
            // A step out of what is selected ends at its side.
            const bool goesOn = motion->target == TextNavigation::nextCharacter;
            m_view.moveTo(goesOn ? m_view.selection().upper : m_view.selection().lower,
                          TextView::Anchor::moves);
        } else {
            m_view.moveTo(motion->target(m_view.caret(), m_view.text()), anchor(motion->selects));
        }
    } else if (const auto lineMotion = EditingKeys::lineMotion(event)) {
        const int page = std::max(1, m_view.viewport()->height() / m_view.lineHeight() - 1);
        m_view.moveByLines(lineMotion->lines + lineMotion->pages * page, anchor(lineMotion->selects));
    } else {
        return false;
    }
    return true;
}

bool TextViewKeys::handleErasure(const QKeyEvent& event) {
    const auto target = EditingKeys::erasure(event);
    if (target != nullptr) {
        m_view.erase(target(m_view.caret(), m_view.text()));
    }
    return target != nullptr;
}

bool TextViewKeys::handleStandardKey(const QKeyEvent& event) {
    using Operation = void (TextView::*)();
    static constexpr std::pair<QKeySequence::StandardKey, Operation> operations[] = {
        {QKeySequence::Cut, &TextView::cut},
        {QKeySequence::Paste, &TextView::paste},
        {QKeySequence::SelectAll, &TextView::selectAll},
        {QKeySequence::Undo, &TextView::undo},
        {QKeySequence::Redo, &TextView::redo},
    };
    for (const auto& [key, operation] : operations) {
        if (event.matches(key)) {
            (m_view.*operation)();
            return true;
        }
    }
    if (event.matches(QKeySequence::Copy)) {
        m_view.copy();
    } else if (event.matches(QKeySequence::Deselect)) {
        m_view.moveTo(m_view.caret(), TextView::Anchor::moves);
    } else if (EditingKeys::isCompletion(event)) {
        m_view.complete();
    } else {
        return false;
    }
    return true;
}

bool TextViewKeys::handleCommand(const QKeyEvent& event) {
    const auto command = EditingKeys::command(event);
    if (!command) {
        return false;
    }
    if (m_view.m_delegate != nullptr && m_view.m_delegate->doCommand(*command)) {
        return true;
    }
    switch (*command) {
    case TextCommand::insertTab:
        m_view.insertText(u"\t");
        return true;
    case TextCommand::insertNewline:
        m_view.insertText(TextNavigation::lineEnding(m_view.text()));
        return true;
    case TextCommand::insertBacktab:
        return true;
    case TextCommand::cancelOperation:
        return false;
    }
    return false;
}
