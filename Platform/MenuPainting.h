#pragma once

#include <QSize>

class QPainter;
class QStyleOptionMenuItem;

/// The rows of menus: a column for checks and symbols where the menu has any, the text, the shortcut.
namespace MenuPainting {

/// The size of a row whose text, without its shortcut, is as large as `text`.
QSize size(const QStyleOptionMenuItem& option, const QSize& text);

void draw(QPainter& painter, const QStyleOptionMenuItem& option);

} // namespace MenuPainting
