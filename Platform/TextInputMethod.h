#pragma once

#include "Rope.h"
#include "TextLayout.h"
#include "TextSelection.h"

#include <QVariant>

#include <optional>

class QInputMethodEvent;

/// What a text view and an input method tell each other. An input method sees a few hundred units around the
/// caret, never the whole text; its positions count from the start of those.
namespace TextInputMethod {

/// The units around `caret` that an input method sees: at most 256 on either side, no character cut in two.
SourceRange surroundings(Offset caret, const Rope& in);

/// What `event` is composing, with the looks that it wants; underlined where it wants none.
TextLayout::Preedit preedit(const QInputMethodEvent& event);

/// The range that the commit of `event` takes the place of when the caret is at `caret`, cut to the text.
SourceRange replacedRange(const QInputMethodEvent& event, Offset caret, const Rope& in);

/// What `event` wants to have selected; nothing when it leaves that alone.
std::optional<TextSelection> wantedSelection(const QInputMethodEvent& event, Offset caret, const Rope& in);

/// The answer to a question about the text; invalid for a question about anything else.
QVariant answer(Qt::InputMethodQuery query, TextSelection selection, const Rope& in);

} // namespace TextInputMethod
