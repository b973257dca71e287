#include "KeyTable.h"

#include "EditingKeys.h"

#include <QAction>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>

#include <algorithm>

namespace {

using Keys = QList<QKeySequence>;
using StandardKey = QKeySequence::StandardKey;

void collect(const QMenu& menu, QList<KeyBinding>& bindings) {
    for (const QAction* const action : menu.actions()) {
        if (action->menu() != nullptr) {
            collect(*action->menu(), bindings);
        } else if (!action->shortcuts().isEmpty()) {
            bindings += {KeyTable::plainTitle(action->text()), action->shortcuts()};
        }
    }
}

bool isEditingKey(const QKeySequence& keys) {
    const QKeyCombination key = keys[0];
    return EditingKeys::isEditingKey(QKeyEvent(QEvent::KeyPress, key.key(), key.keyboardModifiers()));
}

/// What a text does with keys that the desktop has for it. Those that a text leaves to commands are left out.
QList<KeyBinding> textBindings() {
    struct {
        StandardKey key;
        QString meaning;
    } const standard[] = {
        {QKeySequence::MoveToNextChar, QStringLiteral("Carácter siguiente")},
        {QKeySequence::MoveToPreviousChar, QStringLiteral("Carácter anterior")},
        {QKeySequence::MoveToNextWord, QStringLiteral("Palabra siguiente")},
        {QKeySequence::MoveToPreviousWord, QStringLiteral("Palabra anterior")},
        {QKeySequence::MoveToNextLine, QStringLiteral("Línea siguiente")},
        {QKeySequence::MoveToPreviousLine, QStringLiteral("Línea anterior")},
        {QKeySequence::MoveToNextPage, QStringLiteral("Página siguiente")},
        {QKeySequence::MoveToPreviousPage, QStringLiteral("Página anterior")},
        {QKeySequence::MoveToStartOfLine, QStringLiteral("Principio de la línea")},
        {QKeySequence::MoveToEndOfLine, QStringLiteral("Final de la línea")},
        {QKeySequence::MoveToStartOfBlock, QStringLiteral("Principio del párrafo")},
        {QKeySequence::MoveToEndOfBlock, QStringLiteral("Final del párrafo")},
        {QKeySequence::MoveToStartOfDocument, QStringLiteral("Principio del documento")},
        {QKeySequence::MoveToEndOfDocument, QStringLiteral("Final del documento")},
        {QKeySequence::SelectNextChar, QStringLiteral("Seleccionar hasta el carácter siguiente")},
        {QKeySequence::SelectPreviousChar, QStringLiteral("Seleccionar hasta el carácter anterior")},
        {QKeySequence::SelectNextWord, QStringLiteral("Seleccionar hasta la palabra siguiente")},
        {QKeySequence::SelectPreviousWord, QStringLiteral("Seleccionar hasta la palabra anterior")},
        {QKeySequence::SelectNextLine, QStringLiteral("Seleccionar hasta la línea siguiente")},
        {QKeySequence::SelectPreviousLine, QStringLiteral("Seleccionar hasta la línea anterior")},
        {QKeySequence::SelectNextPage, QStringLiteral("Seleccionar hasta la página siguiente")},
        {QKeySequence::SelectPreviousPage, QStringLiteral("Seleccionar hasta la página anterior")},
        {QKeySequence::SelectStartOfLine, QStringLiteral("Seleccionar hasta el principio de la línea")},
        {QKeySequence::SelectEndOfLine, QStringLiteral("Seleccionar hasta el final de la línea")},
        {QKeySequence::SelectStartOfBlock, QStringLiteral("Seleccionar hasta el principio del párrafo")},
        {QKeySequence::SelectEndOfBlock, QStringLiteral("Seleccionar hasta el final del párrafo")},
        {QKeySequence::SelectStartOfDocument, QStringLiteral("Seleccionar hasta el principio del documento")},
        {QKeySequence::SelectEndOfDocument, QStringLiteral("Seleccionar hasta el final del documento")},
        {QKeySequence::Deselect, QStringLiteral("Quitar la selección")},
        {QKeySequence::Cut, QStringLiteral("Cortar")},
        {QKeySequence::Copy, QStringLiteral("Copiar")},
        {QKeySequence::Paste, QStringLiteral("Pegar")},
        {QKeySequence::Undo, QStringLiteral("Deshacer")},
        {QKeySequence::Redo, QStringLiteral("Rehacer")},
        {QKeySequence::Delete, QStringLiteral("Borrar el carácter siguiente o la selección")},
        {QKeySequence::DeleteStartOfWord, QStringLiteral("Borrar hasta el principio de la palabra")},
        {QKeySequence::DeleteEndOfWord, QStringLiteral("Borrar hasta el final de la palabra")},
        {QKeySequence::DeleteEndOfLine, QStringLiteral("Borrar hasta el final de la línea")},
        {QKeySequence::DeleteCompleteLine, QStringLiteral("Borrar la línea")},
        {QKeySequence::InsertParagraphSeparator, QStringLiteral("Línea nueva, con su sangría")},
        {QKeySequence::InsertLineSeparator, QStringLiteral("Línea nueva, con su sangría")},
    };
    QList<KeyBinding> bindings;
    for (const auto& [key, meaning] : standard) {
        Keys keys = QKeySequence::keyBindings(key);
        keys.removeIf([](const QKeySequence& each) { return !isEditingKey(each); });
        if (!keys.isEmpty()) {
            bindings += {meaning, keys};
        }
    }
    return bindings;
}

KeySection textSection() {
    QList<KeyBinding> bindings = textBindings();
    bindings += {QStringLiteral("Borrar el carácter anterior o la selección"),
                 {Qt::Key_Backspace, Qt::SHIFT | Qt::Key_Backspace}};
    bindings += {QStringLiteral("Sangrar, expandir una abreviatura o ir al hueco siguiente"), {Qt::Key_Tab}};
    bindings += {QStringLiteral("Quitar sangría o ir al hueco anterior"), {Qt::SHIFT | Qt::Key_Tab}};
    bindings += {QStringLiteral("Proponer nombres"), {Qt::CTRL | Qt::Key_Space}};
    bindings += {QStringLiteral("Corregir el problema"), {Qt::ALT | Qt::Key_Return, Qt::ALT | Qt::Key_Enter}};
    bindings += {QStringLiteral("Cerrar la lista de nombres o dejar los huecos"), {Qt::Key_Escape}};
    return {QStringLiteral("En el texto"), bindings};
}

KeySection treeSection() {
    return {QStringLiteral("En el árbol"),
            {{QStringLiteral("Nodo siguiente o anterior"), {Qt::Key_Down, Qt::Key_Up}},
             {QStringLiteral("Página siguiente o anterior"), {Qt::Key_PageDown, Qt::Key_PageUp}},
             {QStringLiteral("Primer o último nodo"), {Qt::Key_Home, Qt::Key_End}},
             {QStringLiteral("Expandir, o ir al primer hijo"), {Qt::Key_Right}},
             {QStringLiteral("Contraer, o ir al padre"), {Qt::Key_Left}},
             {QStringLiteral("Editar el nombre o el contenido"), {Qt::Key_Return, Qt::Key_Enter, Qt::Key_F2}},
             {QStringLiteral("Eliminar el nodo"), {Qt::Key_Delete}},
             {QStringLiteral("Menú del nodo"), {Qt::Key_Menu, Qt::SHIFT | Qt::Key_F10}},
             {QStringLiteral("Del filtro al árbol"), {Qt::Key_Down, Qt::Key_Return}},
             {QStringLiteral("Vaciar el filtro"), {Qt::Key_Escape}}}};
}

KeySection fieldSection() {
    return {QStringLiteral("En el inspector"),
            {{QStringLiteral("Aceptar lo escrito"), {Qt::Key_Return, Qt::Key_Enter}},
             {QStringLiteral("Línea nueva en el contenido"),
              {Qt::SHIFT | Qt::Key_Return, Qt::SHIFT | Qt::Key_Enter}},
             {QStringLiteral("Renunciar a lo escrito"), {Qt::Key_Escape}},
             {QStringLiteral("Campo siguiente o anterior"), {Qt::Key_Tab, Qt::SHIFT | Qt::Key_Tab}},
             {QStringLiteral("Quitar el atributo"), {Qt::Key_Delete}},
             {QStringLiteral("Pulsar el botón"), {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}}}};
}

KeySection findSection() {
    return {QStringLiteral("Al buscar"),
            {{QStringLiteral("Resultado siguiente, o reemplazar"), {Qt::Key_Return, Qt::Key_Enter}},
             {QStringLiteral("Resultado anterior"), {Qt::SHIFT | Qt::Key_Return, Qt::SHIFT | Qt::Key_Enter}},
             {QStringLiteral("Cerrar la barra"), {Qt::Key_Escape}}}};
}

} // namespace

QString KeyTable::plainTitle(const QString& menuText) {
    QString plain;
    for (qsizetype at = 0; at < menuText.size(); ++at) {
        if (menuText[at] == u'&' && at + 1 < menuText.size()) {
            ++at;
        }
        plain += menuText[at];
    }
    return plain;
}

QList<KeySection> KeyTable::ofMenus(const QMenuBar& menus) {
    QList<KeySection> sections;
    for (const QAction* const action : menus.actions()) {
        KeySection section{plainTitle(action->text()), {}};
        collect(*action->menu(), section.bindings);
        if (!section.bindings.isEmpty()) {
            sections += section;
        }
    }
    return sections;
}

QList<KeySection> KeyTable::ofViews() {
    return {textSection(), treeSection(), fieldSection(), findSection()};
}
