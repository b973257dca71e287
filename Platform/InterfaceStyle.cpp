#include "InterfaceStyle.h"

#include "ControlPainting.h"
#include "MenuPainting.h"
#include "ScrollBarPainting.h"
#include "Symbol.h"
#include "SystemFont.h"

#include <QAbstractItemView>
#include <QAbstractScrollArea>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QStyleOption>
#include <QTableView>
#include <QTextEdit>

namespace {

constexpr int controlHeight = 28;
constexpr int rowHeight = 28;
constexpr int groupTitleHeight = 24;
constexpr int fieldPadding = 6;
constexpr int textFieldFrame = 3; // So much of a round corner is empty.

template <class Option>
const Option* cast(const QStyleOption* option) {
    return qstyleoption_cast<const Option*>(option);
}

/// Whether what is selected in the view is where the keyboard is.
bool hasKeyboard(const QWidget* view) {
    const QWidget* const focused = view->window()->focusWidget();
    return view->isActiveWindow() && focused != nullptr && (focused == view || view->isAncestorOf(focused));
}

/// The option with the colours of a selection where the keyboard is not, if it is not in `widget`.
QStyleOptionViewItem withFocusGroup(const QStyleOptionViewItem& option, const QWidget* widget) {
    QStyleOptionViewItem adjusted = option;
    if (const auto* const view = qobject_cast<const QAbstractItemView*>(widget)) {
        adjusted.state.setFlag(QStyle::State_Active, hasKeyboard(view));
    }
    return adjusted;
}

/// Whether an item needs no ring, since its whole row is drawn as the one that the keyboard is at.
bool isShownBySelection(const QStyleOption& option, const QWidget* widget) {
    return option.state.testFlag(QStyle::State_Selected) &&
           qobject_cast<const QAbstractItemView*>(widget) != nullptr &&
           qobject_cast<const QTableView*>(widget) == nullptr;
}

/// What a scroll bar lies on.
QColor groundBelow(const QWidget* bar, const QPalette& palette) {
    for (const QWidget* each = bar; each != nullptr; each = each->parentWidget()) {
        if (const auto* const area = qobject_cast<const QAbstractScrollArea*>(each)) {
            const QWidget* const viewport = area->viewport();
            return viewport->palette().color(viewport->backgroundRole());
        }
    }
    return palette.color(QPalette::Window);
}

bool isInsideOtherControl(const QWidget* field) {
    const QWidget* const parent = field == nullptr ? nullptr : field->parentWidget();
    return qobject_cast<const QComboBox*>(parent) != nullptr ||
           qobject_cast<const QAbstractSpinBox*>(parent) != nullptr;
}

void drawGroupTitle(QPainter& painter, const QStyleOptionGroupBox& box, const QRect& label) {
    painter.setFont(SystemFont::semibold(SystemFont::caption()));
    painter.setPen(color(SystemColor::secondaryLabel, box.palette));
    painter.drawText(label, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextShowMnemonic,
                     box.text);
}

bool isLabelWithIcon(const QStyleOptionButton& button) {
    return !button.icon.isNull() && !button.text.isEmpty() &&
           !button.features.testFlag(QStyleOptionButton::HasMenu);
}

bool isLabelWithIcon(const QStyleOptionToolButton& button) {
    constexpr auto menus = QStyleOptionToolButton::HasMenu | QStyleOptionToolButton::Arrow;
    return !button.icon.isNull() && !button.text.isEmpty() &&
           button.toolButtonStyle == Qt::ToolButtonTextBesideIcon && !(button.features & menus);
}

/// Whether the area is a field to write in, rather than a pane.
bool isTextField(const QWidget* widget) {
    return qobject_cast<const QTextEdit*>(widget) != nullptr ||
           qobject_cast<const QPlainTextEdit*>(widget) != nullptr;
}

bool isPlainGroup(const QStyleOptionGroupBox* box) {
    return box != nullptr && !box->subControls.testFlag(QStyle::SC_GroupBoxCheckBox);
}

} // namespace

InterfaceStyle::InterfaceStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

void InterfaceStyle::polish(QWidget* widget) {
    QProxyStyle::polish(widget);
    if (qobject_cast<QLineEdit*>(widget) != nullptr) {
        widget->setAttribute(Qt::WA_Hover);
    }
}

void InterfaceStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                   const QWidget* widget) const {
    switch (element) {
    case PE_PanelButtonCommand:
        if (const auto* const button = cast<QStyleOptionButton>(option)) {
            return ControlPainting::drawButton(*painter, *button);
        }
        break;
    case PE_PanelButtonTool:
    case PE_IndicatorButtonDropDown:
        return ControlPainting::drawToolButton(*painter, *option);
    case PE_PanelLineEdit:
        if (const auto* const frame = cast<QStyleOptionFrame>(option);
            frame != nullptr && frame->lineWidth > 0 && !isInsideOtherControl(widget)) {
            return ControlPainting::drawField(*painter, *option);
        }
        break;
    case PE_Frame:
        if (isTextField(widget)) {
            return ControlPainting::drawField(*painter, *option);
        }
        return ControlPainting::drawFrame(*painter, *option);
    case PE_FrameLineEdit:
        return ControlPainting::drawField(*painter, *option);
    case PE_FrameFocusRect:
        if (option->state.testFlag(State_KeyboardFocusChange) && !isShownBySelection(*option, widget)) {
            ControlPainting::drawFocusRing(*painter, *option);
        }
        return;
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck:
        return ControlPainting::drawCheckBox(*painter, *option);
    case PE_IndicatorRadioButton:
        return ControlPainting::drawRadioButton(*painter, *option);
    case PE_IndicatorBranch:
        return ControlPainting::drawBranch(*painter, *option);
    case PE_IndicatorArrowDown:
        return Symbol::draw(*painter, option->rect, u"chevron.down",
                            option->palette.color(QPalette::ButtonText));
    case PE_IndicatorArrowUp:
        return Symbol::draw(*painter, option->rect, u"chevron.up",
                            option->palette.color(QPalette::ButtonText));
    case PE_IndicatorArrowLeft:
        return Symbol::draw(*painter, option->rect, u"chevron.left",
                            option->palette.color(QPalette::ButtonText));
    case PE_IndicatorArrowRight:
        return Symbol::draw(*painter, option->rect, u"chevron.right",
                            option->palette.color(QPalette::ButtonText));
    case PE_PanelItemViewItem:
    case PE_PanelItemViewRow:
        if (const auto* const item = cast<QStyleOptionViewItem>(option)) {
            const QStyleOptionViewItem adjusted = withFocusGroup(*item, widget);
            return QProxyStyle::drawPrimitive(element, &adjusted, painter, widget);
        }
        break;
    case PE_PanelMenu:
        return painter->fillRect(option->rect, color(SystemColor::control, option->palette));
    case PE_FrameMenu:
    case PE_PanelTipLabel:
        return ControlPainting::drawBox(*painter, option->rect, 1,
                                        color(SystemColor::control, option->palette),
                                        color(SystemColor::separator, option->palette));
    case PE_PanelScrollAreaCorner:
        return painter->fillRect(option->rect, groundBelow(widget, option->palette));
    case PE_FrameTabBarBase:
        return ControlPainting::drawHairline(*painter, option->rect, Qt::BottomEdge, option->palette);
    case PE_FrameTabWidget:
    case PE_FrameStatusBarItem:
    case PE_PanelStatusBar:
    case PE_FrameGroupBox:
        return;
    case PE_IndicatorToolBarSeparator: {
        const bool isHorizontal = option->state.testFlag(State_Horizontal);
        const QRect line =
            isHorizontal
                ? QRect(option->rect.center().x(), option->rect.y() + 6, 1, option->rect.height() - 12)
                : QRect(option->rect.x() + 6, option->rect.center().y(), option->rect.width() - 12, 1);
        return ControlPainting::drawHairline(*painter, line, isHorizontal ? Qt::LeftEdge : Qt::TopEdge,
                                             option->palette);
    }
    default:
        break;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void InterfaceStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                                 const QWidget* widget) const {
    switch (element) {
    case CE_PushButtonBevel:
        // The common style draws nothing at all for a flat one.
        if (const auto* const button = cast<QStyleOptionButton>(option);
            button != nullptr && button->features.testFlag(QStyleOptionButton::Flat)) {
            return ControlPainting::drawButton(*painter, *button);
        }
        break;
    case CE_PushButtonLabel:
        if (const auto* const button = cast<QStyleOptionButton>(option)) {
            QStyleOptionButton label = *button;
            label.palette.setColor(QPalette::ButtonText, ControlPainting::buttonText(*button));
            if (isLabelWithIcon(*button)) {
                return ControlPainting::drawLabel(*painter, label, label.icon, label.iconSize, label.text);
            }
            return QProxyStyle::drawControl(element, &label, painter, widget);
        }
        break;
    case CE_ToolButtonLabel:
        if (const auto* const button = cast<QStyleOptionToolButton>(option);
            button != nullptr && isLabelWithIcon(*button)) {
            painter->setFont(button->font);
            return ControlPainting::drawLabel(*painter, *button, button->icon, button->iconSize,
                                              button->text);
        }
        break;
    case CE_MenuItem:
        if (const auto* const item = cast<QStyleOptionMenuItem>(option)) {
            return MenuPainting::draw(*painter, *item);
        }
        break;
    case CE_MenuEmptyArea:
        return;
    case CE_MenuBarItem:
        if (const auto* const item = cast<QStyleOptionMenuItem>(option)) {
            painter->fillRect(option->rect, color(SystemColor::barBackground, option->palette));
            return ControlPainting::drawMenuBarItem(*painter, *item);
        }
        break;
    case CE_MenuBarEmptyArea:
        return painter->fillRect(option->rect, color(SystemColor::barBackground, option->palette));
    case CE_ToolBar:
        painter->fillRect(option->rect, color(SystemColor::barBackground, option->palette));
        return ControlPainting::drawHairline(*painter, option->rect, Qt::BottomEdge, option->palette);
    case CE_Splitter:
        return painter->fillRect(option->rect, color(SystemColor::separator, option->palette));
    case CE_HeaderSection:
        if (const auto* const header = cast<QStyleOptionHeader>(option)) {
            return ControlPainting::drawHeaderSection(*painter, *header);
        }
        break;
    case CE_HeaderEmptyArea:
        painter->fillRect(option->rect, color(SystemColor::barBackground, option->palette));
        return ControlPainting::drawHairline(*painter, option->rect, Qt::BottomEdge, option->palette);
    case CE_TabBarTabShape:
        if (const auto* const tab = cast<QStyleOptionTab>(option)) {
            return ControlPainting::drawTab(*painter, *tab);
        }
        break;
    case CE_TabBarTabLabel:
        if (const auto* const tab = cast<QStyleOptionTab>(option)) {
            QStyleOptionTab label = *tab;
            label.state.setFlag(State_HasFocus, false);
            QProxyStyle::drawControl(element, &label, painter, widget);
            if (tab->state.testFlag(State_HasFocus) && tab->state.testFlag(State_KeyboardFocusChange)) {
                label.rect.adjust(2, 3, -2, -3);
                ControlPainting::drawFocusRing(*painter, label);
            }
            return;
        }
        break;
    case CE_ItemViewItem:
        if (const auto* const item = cast<QStyleOptionViewItem>(option)) {
            const QStyleOptionViewItem adjusted = withFocusGroup(*item, widget);
            return QProxyStyle::drawControl(element, &adjusted, painter, widget);
        }
        break;
    default:
        break;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void InterfaceStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                        QPainter* painter, const QWidget* widget) const {
    if (const auto* const bar = cast<QStyleOptionSlider>(option); control == CC_ScrollBar && bar != nullptr) {
        return ScrollBarPainting::draw(*painter, *bar, groundBelow(widget, bar->palette));
    }
    if (const auto* const box = cast<QStyleOptionGroupBox>(option);
        control == CC_GroupBox && isPlainGroup(box)) {
        return drawGroupTitle(*painter, *box, subControlRect(control, option, SC_GroupBoxLabel, widget));
    }
    if (const auto* const box = cast<QStyleOptionComboBox>(option);
        control == CC_ComboBox && box != nullptr && !box->editable && box->frame) {
        ControlPainting::drawComboBox(*painter, *option,
                                      subControlRect(control, option, SC_ComboBoxArrow, widget));
        return;
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

int InterfaceStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    switch (metric) {
    case PM_DefaultFrameWidth:
        return isTextField(widget) ? textFieldFrame : 1;
    case PM_ScrollBarExtent:
        return ScrollBarPainting::extent;
    case PM_ScrollBarSliderMin:
        return ScrollBarPainting::shortestHandle;
    case PM_ScrollView_ScrollBarSpacing:
        return 0;
    // A splitter of one pixel is grabbed by five.
    case PM_SplitterWidth:
    case PM_DockWidgetSeparatorExtent:
    case PM_MenuPanelWidth:
        return 1;
    case PM_MenuVMargin:
    case PM_ToolBarItemSpacing:
    case PM_ToolBarItemMargin:
        return 4;
    case PM_MenuHMargin:
    case PM_MenuBarPanelWidth:
    case PM_MenuBarItemSpacing:
    case PM_ToolBarFrameWidth:
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
    case PM_TabBarTabShiftVertical:
    case PM_TabBarBaseOverlap:
    case PM_ButtonDefaultIndicator:
        return 0;
    case PM_MenuBarHMargin:
        return 4;
    case PM_MenuBarVMargin:
        return 0;
    case PM_ToolBarSeparatorExtent:
        return 17;
    case PM_ToolBarIconSize:
    case PM_SmallIconSize:
    case PM_ListViewIconSize:
    case PM_ButtonIconSize:
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
        return 16;
    case PM_LargeIconSize:
    case PM_MessageBoxIconSize:
        return 32;
    case PM_HeaderMargin:
    case PM_FocusFrameHMargin:
    case PM_CheckBoxLabelSpacing:
    case PM_RadioButtonLabelSpacing:
    case PM_LayoutHorizontalSpacing:
    case PM_LayoutVerticalSpacing:
        return 8;
    case PM_ToolTipLabelFrameWidth:
        return 6;
    case PM_LayoutLeftMargin:
    case PM_LayoutTopMargin:
    case PM_LayoutRightMargin:
    case PM_LayoutBottomMargin:
        return widget != nullptr && widget->isWindow() ? 16 : 8;
    case PM_TabBarTabHSpace:
        return 24;
    case PM_TabBarTabVSpace:
        return 12;
    case PM_TreeViewIndentation:
        return 16;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int InterfaceStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                              QStyleHintReturn* data) const {
    switch (hint) {
    case SH_ComboBox_Popup:
    case SH_DialogButtonBox_ButtonsHaveIcons:
    case SH_EtchDisabledText:
        return 0;
    case SH_ItemView_ShowDecorationSelected:
    case SH_Menu_Scrollable: // A menu in columns hides what is behind the edge of the screen.
        return 1;
    default:
        return QProxyStyle::styleHint(hint, option, widget, data);
    }
}

QSize InterfaceStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                       const QWidget* widget) const {
    if (const auto* const item = cast<QStyleOptionMenuItem>(option); item != nullptr && type == CT_MenuItem) {
        return MenuPainting::size(*item, size);
    }
    if (type == CT_MenuBarItem) {
        return QSize(size.width() + 20, controlHeight);
    }
    QSize grown = QProxyStyle::sizeFromContents(type, option, size, widget);
    switch (type) {
    case CT_PushButton:
        return QSize(grown.width() + 12, std::max(grown.height(), controlHeight));
    case CT_ToolButton: {
        const auto* const button = cast<QStyleOptionToolButton>(option);
        const int more = button != nullptr && isLabelWithIcon(*button) ? 10 : 0;
        return QSize(std::max(grown.width() + more, controlHeight), std::max(grown.height(), controlHeight));
    }
    case CT_ComboBox:
    case CT_SpinBox:
        return QSize(grown.width(), std::max(grown.height(), controlHeight));
    case CT_LineEdit: {
        const auto* const frame = cast<QStyleOptionFrame>(option);
        const bool isFramed = frame != nullptr && frame->lineWidth > 0;
        return isFramed ? QSize(grown.width() + 2 * fieldPadding, std::max(grown.height(), controlHeight))
                        : grown;
    }
    case CT_ItemViewItem:
    case CT_HeaderSection:
        return QSize(grown.width(), std::max(grown.height(), rowHeight));
    case CT_TabBarTab:
        return QSize(grown.width(), std::max(grown.height(), controlHeight));
    default:
        return grown;
    }
}

QRect InterfaceStyle::subElementRect(SubElement element, const QStyleOption* option,
                                     const QWidget* widget) const {
    const QRect rect = QProxyStyle::subElementRect(element, option, widget);
    if (element == SE_LineEditContents) {
        const auto* const frame = cast<QStyleOptionFrame>(option);
        const bool isFramed = frame != nullptr && frame->lineWidth > 0 && !isInsideOtherControl(widget);
        // The field itself leaves two pixels.
        return isFramed ? rect.adjusted(fieldPadding - 2, 0, 2 - fieldPadding, 0) : rect;
    }
    return rect;
}

QRect InterfaceStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                     SubControl part, const QWidget* widget) const {
    if (const auto* const bar = cast<QStyleOptionSlider>(option); control == CC_ScrollBar && bar != nullptr) {
        return visualRect(bar->direction, bar->rect, ScrollBarPainting::part(*bar, part));
    }
    if (const auto* const box = cast<QStyleOptionGroupBox>(option);
        control == CC_GroupBox && isPlainGroup(box)) {
        const int title = box->text.isEmpty() ? 0 : groupTitleHeight;
        switch (part) {
        case SC_GroupBoxLabel:
            return QRect(box->rect.x(), box->rect.y(), box->rect.width(), title);
        case SC_GroupBoxContents:
        case SC_GroupBoxFrame:
            return box->rect.adjusted(0, title, 0, 0);
        default:
            break;
        }
    }
    return QProxyStyle::subControlRect(control, option, part, widget);
}

QStyle::SubControl InterfaceStyle::hitTestComplexControl(ComplexControl control,
                                                         const QStyleOptionComplex* option, const QPoint& at,
                                                         const QWidget* widget) const {
    if (control == CC_ScrollBar) {
        for (const SubControl part : {SC_ScrollBarSlider, SC_ScrollBarSubPage, SC_ScrollBarAddPage}) {
            if (subControlRect(control, option, part, widget).contains(at)) {
                return part;
            }
        }
        return SC_None;
    }
    return QProxyStyle::hitTestComplexControl(control, option, at, widget);
}

QIcon InterfaceStyle::standardIcon(StandardPixmap pixmap, const QStyleOption* option,
                                   const QWidget* widget) const {
    switch (pixmap) {
    case SP_LineEditClearButton:
        return Symbol::icon(u"xmark.circle.fill", SystemColor::tertiaryLabel);
    case SP_ToolBarHorizontalExtensionButton: // Of menus too that have no room.
        return Symbol::icon(u"chevron.down");
    case SP_MessageBoxWarning:
        return Symbol::icon(u"exclamationmark.triangle.fill", SystemColor::systemOrange);
    case SP_MessageBoxCritical:
        return Symbol::icon(u"exclamationmark.circle.fill", SystemColor::systemRed);
    case SP_MessageBoxInformation:
        return Symbol::icon(u"exclamationmark.circle.fill", SystemColor::systemBlue);
    case SP_MessageBoxQuestion:
        return Symbol::icon(u"questionmark.circle.fill", SystemColor::accent);
    default:
        return QProxyStyle::standardIcon(pixmap, option, widget);
    }
}
