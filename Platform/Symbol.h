#pragma once

#include "SystemColor.h"

#include <QIcon>
#include <QStringView>

class QPainter;
class QRectF;

/// Small drawings of one colour and one weight of line, known by name. A name that there is not stops the
/// program.
namespace Symbol {

bool has(QStringView name);

/// Draws the symbol in the largest square in the middle of `box`, on whole pixels of the device.
void draw(QPainter& painter, const QRectF& box, QStringView name, const QColor& color);

/// The symbol as an icon of any size. It takes its colour from the application's palette whenever it is
/// painted, paler when disabled; a `tint` of the colour of text turns into the accent where the icon is on.
QIcon icon(QStringView name, SystemColor tint = SystemColor::textColor);

} // namespace Symbol
