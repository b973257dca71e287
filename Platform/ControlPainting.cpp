#include "ControlPainting.h"

#include "Symbol.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyleOption>

namespace {

constexpr int hoverVeil = 14; // Of 255.
constexpr int onVeil = 26;
constexpr int pressedVeil = 34;

constexpr double checkSide = 16;
constexpr double disabledOpacity = 0.5;

bool has(const QStyleOption& option, QStyle::StateFlag state) { return option.state.testFlag(state); }
bool isEnabled(const QStyleOption& option) { return has(option, QStyle::State_Enabled); }

bool isHovered(const QStyleOption& option) {
    return isEnabled(option) && has(option, QStyle::State_MouseOver);
}

QColor faint(QColor color, int alpha) {
    color.setAlpha(alpha);
    return color;
}

QRectF square(const QRect& within, double side) {
    QRectF square(0, 0, side, side);
    square.moveCenter(QRectF(within).center());
    square.moveTopLeft(square.topLeft().toPoint());
    return square;
}

/// Whether the button is what Return does, so that it stands out.
bool isDefault(const QStyleOptionButton& option) {
    return option.features.testFlag(QStyleOptionButton::DefaultButton) && isEnabled(option);
}

/// Prepares for smooth shapes and puts the painter back afterwards.
class Smoothly {
public:
    explicit Smoothly(QPainter& painter) : m_painter(painter) {
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
    }
    ~Smoothly() { m_painter.restore(); }
    Q_DISABLE_COPY_MOVE(Smoothly)

private:
    QPainter& m_painter;
};

void fillRounded(QPainter& painter, const QRectF& box, double radius, const QColor& color) {
    const Smoothly smoothly(painter);
    painter.setBrush(color);
    painter.drawRoundedRect(box, radius, radius);
}

/// A line two pixels wide along the middle of which `box` runs.
void drawRing(QPainter& painter, const QRectF& box, double radius, const QColor& color) {
    const Smoothly smoothly(painter);
    painter.setPen(QPen(color, 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(box, radius, radius);
}

} // namespace

void ControlPainting::drawBox(QPainter& painter, const QRectF& box, double radius, const QColor& fill,
                              const QColor& border) {
    const Smoothly smoothly(painter);
    painter.setBrush(border);
    painter.drawRoundedRect(box, radius, radius);
    painter.setBrush(fill);
    painter.drawRoundedRect(box.adjusted(1, 1, -1, -1), radius - 1, radius - 1);
}

QColor ControlPainting::veil(const QStyleOption& option) {
    const QColor text = color(SystemColor::textColor, option.palette);
    if (isEnabled(option) && has(option, QStyle::State_Sunken)) {
        return faint(text, pressedVeil);
    }
    if (has(option, QStyle::State_On)) {
        return faint(text, isHovered(option) ? pressedVeil : onVeil);
    }
    return isHovered(option) ? faint(text, hoverVeil) : QColor(Qt::transparent);
}

QColor ControlPainting::buttonText(const QStyleOptionButton& option) {
    return isDefault(option) ? color(SystemColor::textOnAccent, option.palette)
                             : option.palette.color(QPalette::ButtonText);
}

void ControlPainting::drawButton(QPainter& painter, const QStyleOptionButton& option) {
    const QRectF box(option.rect);
    if (isDefault(option)) {
        fillRounded(painter, box, cornerRadius, color(SystemColor::accent, option.palette));
    } else if (!option.features.testFlag(QStyleOptionButton::Flat)) {
        painter.save();
        painter.setOpacity(isEnabled(option) ? 1 : disabledOpacity);
        drawBox(painter, box, cornerRadius, color(SystemColor::control, option.palette),
                color(SystemColor::separator, option.palette));
        painter.restore();
    }
    fillRounded(painter, box, cornerRadius, veil(option));
    if (has(option, QStyle::State_HasFocus) && has(option, QStyle::State_KeyboardFocusChange)) {
        const bool isFilled = isDefault(option);
        const double inset = isFilled ? 3 : 1; // Inside the accent, where it can be seen.
        drawRing(painter, box.adjusted(inset, inset, -inset, -inset), cornerRadius - inset,
                 color(isFilled ? SystemColor::textOnAccent : SystemColor::accent, option.palette));
    }
}

void ControlPainting::drawLabel(QPainter& painter, const QStyleOption& option, const QIcon& icon,
                                const QSize& iconSize, const QString& text) {
    constexpr int flags = Qt::AlignVCenter | Qt::AlignLeft | Qt::TextShowMnemonic | Qt::TextSingleLine;
    const int textWidth = painter.fontMetrics().size(flags, text).width();
    const int width = iconSize.width() + labelGap + textWidth;
    QRect place(option.rect.x() + std::max(0, (option.rect.width() - width) / 2),
                option.rect.center().y() - iconSize.height() / 2 + 1, iconSize.width(), iconSize.height());
    icon.paint(&painter, place, Qt::AlignCenter, isEnabled(option) ? QIcon::Normal : QIcon::Disabled,
               has(option, QStyle::State_On) ? QIcon::On : QIcon::Off);
    painter.setPen(option.palette.color(QPalette::ButtonText));
    painter.drawText(option.rect.adjusted(place.right() + 1 + labelGap - option.rect.x(), 0, 0, 0), flags,
                     text);
}

void ControlPainting::drawComboBox(QPainter& painter, const QStyleOption& option, const QRect& arrow) {
    QStyleOptionButton face;
    static_cast<QStyleOption&>(face) = option;
    drawButton(painter, face);
    Symbol::draw(painter, square(arrow, 12), u"chevron.down",
                 isEnabled(option) ? color(SystemColor::secondaryLabel, option.palette)
                                   : option.palette.color(QPalette::ButtonText));
}

void ControlPainting::drawToolButton(QPainter& painter, const QStyleOption& option) {
    fillRounded(painter, option.rect, cornerRadius, veil(option));
}

void ControlPainting::drawField(QPainter& painter, const QStyleOption& option) {
    const bool isFocused = has(option, QStyle::State_HasFocus) && isEnabled(option);
    const QRectF box(option.rect);
    painter.save();
    painter.setOpacity(isEnabled(option) ? 1 : disabledOpacity);
    drawBox(painter, box, cornerRadius, option.palette.color(QPalette::Base),
            color(isFocused ? SystemColor::accent : SystemColor::separator, option.palette));
    painter.restore();
    if (isFocused) {
        drawRing(painter, box.adjusted(1, 1, -1, -1), cornerRadius - 1,
                 color(SystemColor::accent, option.palette));
    }
}

void ControlPainting::drawFrame(QPainter& painter, const QStyleOption& option) {
    for (const Qt::Edge edge : {Qt::TopEdge, Qt::LeftEdge, Qt::RightEdge, Qt::BottomEdge}) {
        drawHairline(painter, option.rect, edge, option.palette);
    }
}

void ControlPainting::drawFocusRing(QPainter& painter, const QStyleOption& option) {
    drawRing(painter, QRectF(option.rect).adjusted(1, 1, -1, -1), cornerRadius - 1,
             color(SystemColor::accent, option.palette));
}

void ControlPainting::drawCheckBox(QPainter& painter, const QStyleOption& option) {
    const QRectF box = square(option.rect, checkSide);
    const bool isOff = !has(option, QStyle::State_On) && !has(option, QStyle::State_NoChange);
    const Smoothly smoothly(painter);
    painter.setOpacity(isEnabled(option) ? 1 : disabledOpacity);
    if (isOff) {
        drawBox(painter, box, innerRadius, color(SystemColor::control, option.palette),
                color(SystemColor::tertiaryLabel, option.palette));
    } else {
        fillRounded(painter, box, innerRadius, color(SystemColor::accent, option.palette));
        const QColor mark = color(SystemColor::textOnAccent, option.palette);
        if (has(option, QStyle::State_On)) {
            Symbol::draw(painter, box.adjusted(2, 2, -2, -2), u"checkmark", mark);
        } else {
            painter.fillRect(QRectF(box.x() + 4, box.y() + 7, 8, 2), mark);
        }
    }
    if (isHovered(option) || has(option, QStyle::State_Sunken)) {
        fillRounded(painter, box, innerRadius,
                    faint(color(SystemColor::textColor, option.palette), hoverVeil));
    }
}

void ControlPainting::drawRadioButton(QPainter& painter, const QStyleOption& option) {
    const QRectF box = square(option.rect, checkSide);
    const double radius = checkSide / 2;
    const Smoothly smoothly(painter);
    painter.setOpacity(isEnabled(option) ? 1 : disabledOpacity);
    if (has(option, QStyle::State_On)) {
        fillRounded(painter, box, radius, color(SystemColor::accent, option.palette));
        fillRounded(painter, box.adjusted(5, 5, -5, -5), radius - 5,
                    color(SystemColor::textOnAccent, option.palette));
    } else {
        drawBox(painter, box, radius, color(SystemColor::control, option.palette),
                color(SystemColor::tertiaryLabel, option.palette));
    }
    if (isHovered(option) || has(option, QStyle::State_Sunken)) {
        fillRounded(painter, box, radius, faint(color(SystemColor::textColor, option.palette), hoverVeil));
    }
}

void ControlPainting::drawBranch(QPainter& painter, const QStyleOption& option) {
    if (has(option, QStyle::State_Children)) {
        Symbol::draw(painter, square(option.rect, 12),
                     has(option, QStyle::State_Open) ? QStringView(u"chevron.down")
                                                     : QStringView(u"chevron.right"),
                     color(SystemColor::secondaryLabel, option.palette));
    }
}

void ControlPainting::drawHeaderSection(QPainter& painter, const QStyleOptionHeader& option) {
    painter.fillRect(option.rect, color(SystemColor::barBackground, option.palette));
    if (isHovered(option)) {
        painter.fillRect(option.rect, veil(option));
    }
    drawHairline(painter, option.rect, Qt::BottomEdge, option.palette);
    const bool isLast =
        option.position == QStyleOptionHeader::End || option.position == QStyleOptionHeader::OnlyOneSection;
    if (option.orientation == Qt::Horizontal && !isLast) {
        drawHairline(painter, option.rect.adjusted(0, 6, 0, -6), Qt::RightEdge, option.palette);
    }
}

void ControlPainting::drawTab(QPainter& painter, const QStyleOptionTab& option) {
    const bool isSelected = has(option, QStyle::State_Selected);
    if (isHovered(option) && !isSelected) {
        fillRounded(painter, QRectF(option.rect).adjusted(2, 3, -2, -3), cornerRadius, veil(option));
    }
    if (isSelected) {
        QRect line = option.rect.adjusted(8, 0, -8, 0);
        line.setTop(line.bottom() - 1);
        painter.fillRect(line, color(SystemColor::accent, option.palette));
    }
}

void ControlPainting::drawMenuBarItem(QPainter& painter, const QStyleOptionMenuItem& option) {
    const bool isOpen = has(option, QStyle::State_Selected);
    if (isOpen) {
        fillRounded(painter, QRectF(option.rect).adjusted(1, 2, -1, -2), innerRadius,
                    faint(color(SystemColor::textColor, option.palette), onVeil));
    }
    painter.setPen(option.palette.color(isEnabled(option) ? QPalette::Active : QPalette::Disabled,
                                        QPalette::WindowText));
    painter.drawText(option.rect, Qt::AlignCenter | Qt::TextShowMnemonic | Qt::TextSingleLine, option.text);
}

void ControlPainting::drawHairline(QPainter& painter, const QRect& rect, Qt::Edge edge,
                                   const QPalette& palette) {
    QRect line = rect;
    switch (edge) {
    case Qt::TopEdge:
        line.setHeight(1);
        break;
    case Qt::LeftEdge:
        line.setWidth(1);
        break;
    case Qt::RightEdge:
        line.setLeft(line.right());
        break;
    case Qt::BottomEdge:
        line.setTop(line.bottom());
        break;
    }
    painter.fillRect(line, color(SystemColor::separator, palette));
}
