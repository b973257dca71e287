#pragma once

#include "EditorSession.h"

class EditorWindowView;
class QMenu;
class QMenuBar;

/// The commands of the menus on the document of the focused window. They are never disabled: without such a
/// window, or without a selected node where one is needed, they do nothing.
struct AppCommands {
    /// The session of the focused window; null when no editor window has the focus.
    EditorSession* session = nullptr;

    /// As the windows stand now.
    static AppCommands focused();

    /// Adds the group of modes at the start of the menu of views, and what leads around a window behind it.
    static void addModes(QMenu& viewMenu);
    static void addPlaces(QMenu& viewMenu);

    /// The menus "Formato" and "Nodo".
    static QMenu* makeFormatMenu(QWidget* parent);
    static QMenu* makeNodeMenu(QWidget* parent);
};
