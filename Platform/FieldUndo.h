#pragma once

class QLineEdit;
class QWidget;

/// Undo and redo in a field that stands beside a document, such as the one for what to look for: the field's
/// own steps come first, and where it has none the step is the document's.
namespace FieldUndo {

/// Leaves the keys of undo and redo to the window while `field` has no such step.
void shareWithDocument(QLineEdit& field);

/// Whether `slot`, "undo" or "redo", is for the document although `focus` has the keyboard.
bool isForDocument(const QWidget* focus, const char* slot);

} // namespace FieldUndo
