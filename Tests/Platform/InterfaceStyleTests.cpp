#include "InterfaceStyle.h"

#include "Appearance.h"
#include "SystemColor.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QSplitter>
#include <QStyleOptionSlider>
#include <QTabBar>
#include <QTest>

#include <gtest/gtest.h>

namespace {

/// Dresses one window and what is in it, and leaves the application as it is.
class InterfaceStyleTest : public testing::Test {
protected:
    template <class Widget, class... Arguments>
    Widget& dressed(Arguments&&... arguments) {
        auto* const widget = new Widget(std::forward<Arguments>(arguments)..., &m_window);
        dress(widget);
        return *widget;
    }

    void dress(QWidget* widget) {
        widget->setStyle(&m_style);
        widget->setPalette(palette(Appearance::light));
    }

    InterfaceStyle m_style;
    QWidget m_window;
};

/// How many pixels of the widget's picture have `color`.
qsizetype count(QWidget& widget, const QColor& color) {
    const QImage image = widget.grab().toImage();
    qsizetype count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            count += image.pixelColor(x, y) == color;
        }
    }
    return count;
}

QStyleOptionSlider option(const QScrollBar& bar) {
    QStyleOptionSlider option;
    option.initFrom(&bar);
    option.orientation = bar.orientation();
    option.minimum = bar.minimum();
    option.maximum = bar.maximum();
    option.pageStep = bar.pageStep();
    option.sliderPosition = bar.sliderPosition();
    option.sliderValue = bar.value();
    option.upsideDown = bar.invertedAppearance();
    option.subControls = QStyle::SC_All;
    return option;
}

QRect part(const QScrollBar& bar, QStyle::SubControl part) {
    const QStyleOptionSlider drawn = option(bar);
    return bar.style()->subControlRect(QStyle::CC_ScrollBar, &drawn, part, &bar);
}

} // namespace

TEST_F(InterfaceStyleTest, KeepsScrollHandlesInReach) {
    auto& bar = dressed<QScrollBar>(Qt::Vertical);
    bar.resize(bar.sizeHint().width(), 200);
    bar.setPageStep(1);
    for (const int maximum : {0, 1, 100, 2'000'000'000}) {
        bar.setRange(0, maximum);
        for (const int value : {0, maximum / 2, maximum}) {
            bar.setValue(value);
            const QRect handle = part(bar, QStyle::SC_ScrollBarSlider);
            EXPECT_TRUE(bar.rect().contains(handle)) << maximum;
            EXPECT_GE(handle.height(), 32) << maximum;
            EXPECT_GE(handle.width(), 12) << maximum;
        }
        EXPECT_EQ(part(bar, QStyle::SC_ScrollBarSlider).bottom(), bar.rect().bottom()) << maximum;
    }
    EXPECT_TRUE(part(bar, QStyle::SC_ScrollBarAddLine).isEmpty());
}

TEST_F(InterfaceStyleTest, ScrollsByItsHandleAndBesideIt) {
    auto& bar = dressed<QScrollBar>(Qt::Vertical);
    bar.setGeometry(0, 0, bar.sizeHint().width(), 200);
    bar.setRange(0, 900);
    bar.setPageStep(100);
    m_window.show();
    QTest::mouseClick(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(6, 190));
    EXPECT_EQ(bar.value(), 100);
    const QPoint held = part(bar, QStyle::SC_ScrollBarSlider).center();
    QTest::mousePress(&bar, Qt::LeftButton, Qt::NoModifier, held);
    QTest::mouseMove(&bar, held + QPoint(0, 500));
    QTest::mouseRelease(&bar, Qt::LeftButton, Qt::NoModifier, held + QPoint(0, 500));
    EXPECT_EQ(bar.value(), 900);
    QTest::mouseClick(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(6, 5));
    EXPECT_EQ(bar.value(), 800);
}

TEST_F(InterfaceStyleTest, ShowsSplittersAsHairlinesThatCanBeGrabbed) {
    auto& splitter = dressed<QSplitter>();
    splitter.addWidget(new QWidget);
    splitter.addWidget(new QWidget);
    splitter.resize(200, 100);
    m_window.show();
    EXPECT_EQ(splitter.handleWidth(), 1);
    EXPECT_GE(splitter.handle(1)->width(), 5);
    const QColor line = color(SystemColor::separator, palette(Appearance::light));
    EXPECT_EQ(count(splitter, line), 100);
}

TEST_F(InterfaceStyleTest, GivesControlsOneHeight) {
    EXPECT_EQ(dressed<QPushButton>(QStringLiteral("Aceptar")).sizeHint().height(), 28);
    EXPECT_EQ(dressed<QLineEdit>().sizeHint().height(), 28);
}

TEST_F(InterfaceStyleTest, GivesRowsRoom) {
    auto& list = dressed<QListWidget>();
    list.addItem(QStringLiteral("fila"));
    EXPECT_GE(list.sizeHintForRow(0), 28);
    QMenu menu;
    dress(&menu);
    const QAction* const action = menu.addAction(QStringLiteral("orden"));
    EXPECT_GE(menu.actionGeometry(const_cast<QAction*>(action)).height(), 28);
}

TEST_F(InterfaceStyleTest, MakesRoomForShortcutsInMenus) {
    QMenu plain;
    QMenu withShortcut;
    dress(&plain);
    dress(&withShortcut);
    plain.addAction(QStringLiteral("Formatear"));
    withShortcut.addAction(QStringLiteral("Formatear"))->setShortcut(Qt::CTRL | Qt::Key_F);
    EXPECT_GT(withShortcut.sizeHint().width(), plain.sizeHint().width() + 32);
}

TEST_F(InterfaceStyleTest, ScrollsMenusThatAreHigherThanTheScreen) {
    auto& menu = dressed<QMenu>();
    for (int at = 0; at < 100; ++at) {
        menu.addAction(QStringLiteral("Entrada %1").arg(at));
    }
    menu.popup(QPoint(0, 0));
    EXPECT_LE(menu.height(), menu.screen()->availableGeometry().height());
    EXPECT_EQ(menu.actionGeometry(menu.actions().front()).left(),
              menu.actionGeometry(menu.actions().back()).left())
        << "one column";
    QTest::keyClick(&menu, Qt::Key_Down);
    EXPECT_EQ(menu.activeAction(), menu.actions().front());
    QTest::keyClick(&menu, Qt::Key_Up);
    EXPECT_EQ(menu.activeAction(), menu.actions().back());
    const QRect active = menu.actionGeometry(menu.activeAction());
    EXPECT_TRUE(menu.rect().contains(active))
        << active.top() << " to " << active.bottom() << " of " << menu.height();
    menu.hide();
}

TEST_F(InterfaceStyleTest, FillsTheDefaultButtonWithTheAccent) {
    const QColor accent = color(SystemColor::accent, palette(Appearance::light));
    auto& button = dressed<QPushButton>(QStringLiteral("Aceptar"));
    button.resize(button.sizeHint());
    EXPECT_EQ(count(button, accent), 0);
    button.setDefault(true);
    EXPECT_GT(count(button, accent), button.width() * button.height() / 2);
    button.setEnabled(false);
    EXPECT_EQ(count(button, accent), 0);
}

TEST_F(InterfaceStyleTest, RingsWhatHasTheKeyboard) {
    const QColor accent = color(SystemColor::accent, palette(Appearance::light));
    auto& first = dressed<QPushButton>(QStringLiteral("Uno"));
    auto& second = dressed<QPushButton>(QStringLiteral("Dos"));
    first.setGeometry(0, 0, 80, 28);
    second.setGeometry(0, 40, 80, 28);
    first.setAutoDefault(false);
    second.setAutoDefault(false);
    m_window.show();
    m_window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_window));
    QTest::mouseClick(&first, Qt::LeftButton);
    EXPECT_TRUE(first.hasFocus());
    EXPECT_EQ(count(first, accent), 0);
    QTest::keyClick(&first, Qt::Key_Tab);
    EXPECT_TRUE(second.hasFocus());
    EXPECT_GT(count(second, accent), 100);
    EXPECT_EQ(count(first, accent), 0);
}

TEST_F(InterfaceStyleTest, RingsFlatButtonsAndTabs) {
    const QColor accent = color(SystemColor::accent, palette(Appearance::light));
    auto& button = dressed<QPushButton>(QStringLiteral("Plano"));
    auto& tabs = dressed<QTabBar>();
    button.setAutoDefault(false);
    button.setFlat(true);
    tabs.addTab(QStringLiteral("Uno"));
    button.setGeometry(0, 0, 80, 28);
    tabs.setGeometry(0, 40, 100, 28);
    m_window.show();
    m_window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_window));
    tabs.setFocus(Qt::MouseFocusReason);
    const qsizetype underline = count(tabs, accent);
    EXPECT_EQ(count(button, accent), 0);
    QTest::keyClick(&tabs, Qt::Key_Tab);
    EXPECT_TRUE(button.hasFocus());
    EXPECT_GT(count(button, accent), 100);
    EXPECT_EQ(count(tabs, accent), underline);
    QTest::keyClick(&button, Qt::Key_Tab);
    EXPECT_TRUE(tabs.hasFocus());
    EXPECT_GT(count(tabs, accent), underline + 50);
}

TEST_F(InterfaceStyleTest, RingsItemsThatAreNotSelected) {
    const QColor accent = color(SystemColor::accent, palette(Appearance::light));
    auto& list = dressed<QListWidget>();
    list.setGeometry(0, 0, 100, 100);
    list.addItem(QStringLiteral("fila"));
    m_window.show();
    m_window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_window));
    list.setFocus();
    list.setCurrentRow(0, QItemSelectionModel::NoUpdate);
    EXPECT_GT(count(list, accent), 100);
    list.setCurrentRow(0);
    EXPECT_EQ(count(list, accent), 0);
}

TEST_F(InterfaceStyleTest, RingsTheFieldThatIsWrittenIn) {
    const QColor accent = color(SystemColor::accent, palette(Appearance::light));
    auto& field = dressed<QLineEdit>();
    auto& area = dressed<QPlainTextEdit>();
    field.setGeometry(0, 0, 100, 28);
    area.setGeometry(0, 40, 100, 60);
    m_window.show();
    m_window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_window));
    field.setFocus();
    EXPECT_GT(count(field, accent), 100);
    EXPECT_EQ(count(area, accent), 0);
    area.setFocus();
    EXPECT_EQ(count(field, accent), 0);
    EXPECT_GT(count(area, accent), 100);
}

TEST_F(InterfaceStyleTest, QuietensTheSelectionWhereTheKeyboardIsNot) {
    const QPalette light = palette(Appearance::light);
    auto& list = dressed<QListWidget>();
    auto& field = dressed<QLineEdit>();
    list.setGeometry(0, 0, 100, 100);
    field.setGeometry(0, 110, 100, 28);
    list.addItem(QStringLiteral("fila"));
    list.setCurrentRow(0);
    m_window.show();
    m_window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_window));
    list.setFocus();
    EXPECT_GT(count(list, color(SystemColor::selection, light)), 1000);
    field.setFocus();
    EXPECT_EQ(count(list, color(SystemColor::selection, light)), 0);
    EXPECT_GT(count(list, color(SystemColor::quietSelection, light)), 1000);
}

TEST_F(InterfaceStyleTest, HeadsGroupsWithoutAFrame) {
    auto& group = dressed<QGroupBox>(QStringLiteral("Nombre"));
    auto* const layout = new QHBoxLayout(&group);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* const field = new QLineEdit(&group);
    layout->addWidget(field);
    group.resize(200, 60);
    m_window.show();
    EXPECT_EQ(field->x(), 0);
    EXPECT_GE(field->y(), 24);
}

TEST_F(InterfaceStyleTest, DrawsTheButtonForTheRestOfABarItself) {
    EXPECT_EQ(m_style.standardIcon(QStyle::SP_ToolBarHorizontalExtensionButton, nullptr, nullptr).name(),
              QStringLiteral("chevron.down"));
}

TEST_F(InterfaceStyleTest, DrawsTheIconsOfMessagesItself) {
    for (const auto icon : {QStyle::SP_MessageBoxQuestion, QStyle::SP_MessageBoxWarning,
                            QStyle::SP_MessageBoxCritical, QStyle::SP_MessageBoxInformation}) {
        EXPECT_TRUE(m_style.standardIcon(icon, nullptr, nullptr).name().endsWith(QStringLiteral(".fill")))
            << icon;
    }
    EXPECT_EQ(m_style.standardIcon(QStyle::SP_MessageBoxQuestion, nullptr, nullptr).name(),
              QStringLiteral("questionmark.circle.fill"));
}
