#pragma once

#include "SourceRange.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <string_view>

class QMenu;

/// What a key asks a text view to do, where its delegate may want something else.
enum class TextCommand : std::uint8_t {
    insertTab,       ///< Tab
    insertBacktab,   ///< Shift-Tab
    insertNewline,   ///< Return
    cancelOperation, ///< Escape
};

/// Knows what the text of a text view is about: asked before the user changes it, told afterwards. Offsets
/// count UTF-16 units of the text. Each operation answers what a plain text editor would.
class TextViewDelegate {
public:
    virtual ~TextViewDelegate() = default;

    /// Whether the units may take the place of `range`, which the user wants; the delegate may do something
    /// else instead and answer false. Asked for typed, pasted and erased text, not for dropped nor undone.
    virtual bool shouldChangeText(SourceRange range, std::u16string_view replacement) {
        static_cast<void>(range), static_cast<void>(replacement);
        return true;
    }

    /// Whether the delegate has carried out the command; otherwise the view does what it always does.
    virtual bool doCommand(TextCommand command) {
        static_cast<void>(command);
        return false;
    }

    /// What could stand in the place of the partial word before the caret, best first.
    virtual QStringList completions(SourceRange partialWord) {
        static_cast<void>(partialWord);
        return {};
    }

    /// The text has changed, whoever changed it; once for each batch of replacements.
    virtual void textDidChange() {}

    virtual void selectionDidChange() {}

    /// May add to the context menu of the text at `at`.
    virtual void contextMenuWillOpen(QMenu& menu, Offset at) { static_cast<void>(menu), static_cast<void>(at); }

    /// What to tell, as plain text, while the mouse rests on the text at `at`; nothing when empty.
    virtual QString toolTip(Offset at) {
        static_cast<void>(at);
        return {};
    }
};
