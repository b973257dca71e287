#include "MenuPainting.h"

#include "ControlPainting.h"
#include "Symbol.h"

#include <QIcon>
#include <QPainter>
#include <QStyleOption>

namespace {

constexpr int rowHeight = 28;
constexpr int separatorHeight = 9;
constexpr int inset = 4;
constexpr int padding = 8;
constexpr int symbolSide = 16;
constexpr int shortcutGap = 32;
constexpr int arrowSide = 12;

bool hasColumn(const QStyleOptionMenuItem& option) {
    return option.menuHasCheckableItems || option.maxIconWidth > 0;
}

int columnWidth(const QStyleOptionMenuItem& option) { return hasColumn(option) ? symbolSide + padding : 0; }

void drawMark(QPainter& painter, const QStyleOptionMenuItem& option, const QRect& place, const QColor& ink) {
    const bool isEnabled = option.state.testFlag(QStyle::State_Enabled);
    if (option.checkType != QStyleOptionMenuItem::NotCheckable && option.icon.isNull()) {
        if (option.checked) {
            Symbol::draw(painter, place, u"checkmark", ink);
        }
    } else if (!option.icon.isNull()) {
        option.icon.paint(&painter, place, Qt::AlignCenter, isEnabled ? QIcon::Normal : QIcon::Disabled,
                          option.checked ? QIcon::On : QIcon::Off);
    }
}

} // namespace

QSize MenuPainting::size(const QStyleOptionMenuItem& option, const QSize& text) {
    if (option.menuItemType == QStyleOptionMenuItem::Separator) {
        return QSize(text.width(), separatorHeight);
    }
    int width = 2 * (inset + padding) + columnWidth(option) + text.width();
    if (option.text.contains(u'\t')) {
        width += shortcutGap;
    }
    if (option.menuItemType == QStyleOptionMenuItem::SubMenu) {
        width += padding + arrowSide;
    }
    return QSize(width, std::max(rowHeight, text.height()));
}

void MenuPainting::draw(QPainter& painter, const QStyleOptionMenuItem& option) {
    const bool isEnabled = option.state.testFlag(QStyle::State_Enabled);
    if (option.menuItemType == QStyleOptionMenuItem::Separator) {
        const QRect middle(option.rect.x() + inset + padding, option.rect.center().y(),
                           option.rect.width() - 2 * (inset + padding), 1);
        ControlPainting::drawHairline(painter, middle, Qt::TopEdge, option.palette);
        return;
    }
    const QRect row = option.rect.adjusted(inset, 0, -inset, 0);
    if (option.state.testFlag(QStyle::State_Selected) && isEnabled) {
        const QColor ground = color(SystemColor::selection, option.palette);
        ControlPainting::drawBox(painter, row, ControlPainting::innerRadius, ground, ground);
    }
    const auto group = isEnabled ? QPalette::Active : QPalette::Disabled;
    const QColor ink = option.palette.color(group, QPalette::WindowText);
    QRect inside = row.adjusted(padding, 0, -padding, 0);
    if (hasColumn(option)) {
        drawMark(painter, option,
                 QRect(inside.x(), row.center().y() - symbolSide / 2 + 1, symbolSide, symbolSide), ink);
        inside.setLeft(inside.x() + columnWidth(option));
    }
    painter.setFont(option.font);
    painter.setPen(ink);
    const qsizetype tab = option.text.indexOf(u'\t');
    constexpr int flags = Qt::AlignVCenter | Qt::TextShowMnemonic | Qt::TextSingleLine | Qt::TextDontClip;
    painter.drawText(inside, Qt::AlignLeft | flags, tab < 0 ? option.text : option.text.left(tab));
    if (tab >= 0) {
        painter.setPen(isEnabled ? color(SystemColor::secondaryLabel, option.palette) : ink);
        painter.drawText(inside, Qt::AlignRight | flags, option.text.mid(tab + 1));
    }
    if (option.menuItemType == QStyleOptionMenuItem::SubMenu) {
        Symbol::draw(
            painter,
            QRect(inside.right() - arrowSide + 1, row.center().y() - arrowSide / 2 + 1, arrowSide, arrowSide),
            u"chevron.right", ink);
    }
}
