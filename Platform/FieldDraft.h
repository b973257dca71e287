#pragma once

class QWidget;

/// What the user writes in a field before it is part of the document.
namespace FieldDraft {

/// Makes the draft in the field that has `focus` part of the document: the innermost widget from `focus`
/// outwards that has a slot `commitDraft` carries it out. What an input method still composes counts too.
/// Does nothing without such a widget. The field may give the focus to another widget.
void commit(QWidget* focus);

} // namespace FieldDraft
