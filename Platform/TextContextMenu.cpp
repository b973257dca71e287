#include "TextContextMenu.h"

#include "MenuText.h"
#include "TextMimeData.h"
#include "TextView.h"

#include <QClipboard>
#include <QGuiApplication>

namespace {

bool canPaste() {
    const QMimeData* copied = QGuiApplication::clipboard()->mimeData();
    return copied != nullptr && TextMimeData::hasUnits(*copied);
}

} // namespace

TextContextMenu::TextContextMenu(TextView& view) : QMenu(&view) {
    const auto add = [&](const QString& title, QKeySequence::StandardKey key, auto operation,
                         bool isEnabled) {
        QAction* action = addAction(title, &view, operation);
        action->setShortcut(key);
        action->setEnabled(isEnabled);
    };
    const bool hasSelection = !view.selection().isEmpty();
    const UndoManager* undo = view.history() != nullptr ? view.history()->undoManager() : nullptr;
    add(menuText(undo != nullptr ? undo->undoMenuTitle() : QStringLiteral("Deshacer")), QKeySequence::Undo,
        &TextView::undo, undo != nullptr && undo->canUndo());
    add(menuText(undo != nullptr ? undo->redoMenuTitle() : QStringLiteral("Rehacer")), QKeySequence::Redo,
        &TextView::redo, undo != nullptr && undo->canRedo());
    addSeparator();
    add(QStringLiteral("Cortar"), QKeySequence::Cut, &TextView::cut, hasSelection);
    add(QStringLiteral("Copiar"), QKeySequence::Copy, &TextView::copy, hasSelection);
    add(QStringLiteral("Pegar"), QKeySequence::Paste, &TextView::paste, canPaste());
    add(QStringLiteral("Eliminar"), QKeySequence::Delete, &TextView::eraseSelection, hasSelection);
    addSeparator();
    add(QStringLiteral("Seleccionar todo"), QKeySequence::SelectAll, &TextView::selectAll,
        !view.text().isEmpty());
}
