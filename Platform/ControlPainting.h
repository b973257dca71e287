#pragma once

#include <QColor>
#include <QIcon>

class QPainter;
class QPalette;
class QRect;
class QStyleOption;
class QStyleOptionButton;
class QStyleOptionHeader;
class QStyleOptionMenuItem;
class QStyleOptionTab;

/// How the controls of the program are drawn: quiet boxes with round corners, one accent. Each takes state
/// and palette from its option, and fills the option's rectangle.
namespace ControlPainting {

/// The corners of controls, and of what stands inside others, in logical pixels.
inline constexpr int cornerRadius = 6;
inline constexpr int innerRadius = 4;

/// A box with a border one pixel wide, both of them opaque.
void drawBox(QPainter& painter, const QRectF& box, double radius, const QColor& fill, const QColor& border);

/// A veil of the colour of text: none, or for what is under the mouse, pressed, or on.
QColor veil(const QStyleOption& option);

void drawButton(QPainter& painter, const QStyleOptionButton& option);
void drawComboBox(QPainter& painter, const QStyleOption& option, const QRect& arrow);
void drawToolButton(QPainter& painter, const QStyleOption& option);
void drawField(QPainter& painter, const QStyleOption& option);
void drawFrame(QPainter& painter, const QStyleOption& option);
void drawFocusRing(QPainter& painter, const QStyleOption& option);
void drawCheckBox(QPainter& painter, const QStyleOption& option);
void drawRadioButton(QPainter& painter, const QStyleOption& option);
void drawBranch(QPainter& painter, const QStyleOption& option);
void drawHeaderSection(QPainter& painter, const QStyleOptionHeader& option);
void drawTab(QPainter& painter, const QStyleOptionTab& option);
void drawMenuBarItem(QPainter& painter, const QStyleOptionMenuItem& option);

/// A hairline along one edge of `rect`, sharp whatever the scale.
void drawHairline(QPainter& painter, const QRect& rect, Qt::Edge edge, const QPalette& palette);

/// The colour of the text of a button.
QColor buttonText(const QStyleOptionButton& option);

/// An icon with a text beside it, together in the middle of the option's rectangle.
void drawLabel(QPainter& painter, const QStyleOption& option, const QIcon& icon, const QSize& iconSize,
               const QString& text);

/// Between the two, in logical pixels.
inline constexpr int labelGap = 6;

} // namespace ControlPainting
