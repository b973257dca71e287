#pragma once

#include "Rope.h"
#include "TextViewDelegate.h"

#include <optional>

class QKeyEvent;

/// What the keys mean that work on a text, by the conventions of the desktop.
namespace EditingKeys {

/// Where a key leads the caret.
using Target = Offset (*)(Offset caret, const Rope& text);

struct Motion {
    Target target;
    bool selects; ///< Rather than move the anchor along.
};

/// The motion along the text that the key asks for.
std::optional<Motion> motion(const QKeyEvent& event);

struct LineMotion {
    int lines; ///< Down; up when negative.
    int pages; ///< Likewise.
    bool selects;
};

/// The motion up or down that the key asks for.
std::optional<LineMotion> lineMotion(const QKeyEvent& event);

/// To where the key erases from the caret, when nothing is selected; null for a key that does not erase.
Target erasure(const QKeyEvent& event);

/// What the key asks for where a delegate may want something else.
std::optional<TextCommand> command(const QKeyEvent& event);

/// Whether the key inserts its own text.
bool isTyping(const QKeyEvent& event);

/// Whether the key asks for completions of the word before the caret.
bool isCompletion(const QKeyEvent& event);

/// Whether the key does any of this or another thing that every text can do, such as copy, so that no shortcut should take it away from a text.
bool isEditingKey(const QKeyEvent& event);

} // namespace EditingKeys
