#pragma once

#include <QKeySequence>
#include <QList>
#include <QString>

class QMenuBar;

/// What some keys do.
struct KeyBinding {
    QString meaning;
    QList<QKeySequence> keys;
};

/// The keys of one menu or one view.
struct KeySection {
    QString title;
    QList<KeyBinding> bindings;
};

/// All keys that the program reacts to. Every one stands with a command of a menu or in the table of the
/// views.
namespace KeyTable {

/// The commands that have shortcuts, menu by menu, as they stand now; submenus count as part of their menu.
QList<KeySection> ofMenus(const QMenuBar& menus);

/// What the views do by themselves with keys that no menu has.
QList<KeySection> ofViews();

/// The title of a menu or a command without the mark of its mnemonic.
QString plainTitle(const QString& menuText);

} // namespace KeyTable
