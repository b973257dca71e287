#pragma once

class QMainWindow;
class QMenu;

/// The menu "Ayuda": a page of all shortcuts, and what program this is.
namespace HelpMenu {

/// Adds its commands to the menu of a window, over which their dialogs stand.
void fill(QMenu& menu, QMainWindow& window);

} // namespace HelpMenu
