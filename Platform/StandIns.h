#pragma once

#include <QFont>
#include <QString>
#include <QTextLayout>

#include <span>
#include <string_view>
#include <vector>

class QPainter;
class QRectF;

/// The stand-ins of a stretch of text. The program draws them itself, each in the place of a blank that is
/// one column wide: many fonts have no sign for them, or a wider one.
namespace StandIns {

/// Puts a blank in the place of each stand-in of `shown`, the display text of `units`; returns the offsets of
/// the blanks, ascending.
std::vector<int> blankOut(QString& shown, std::u16string_view units);

/// What makes the blanks at `offsets` as wide as a digit of `font`; empty when they are.
QList<QTextLayout::FormatRange> formats(std::span<const int> offsets, const QFont& font);

/// Draws a dotted frame in the colour of the painter's pen into `column`, which ends on the baseline.
void draw(QPainter& painter, const QRectF& column);

} // namespace StandIns
