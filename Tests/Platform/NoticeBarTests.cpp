#include "NoticeBar.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace {

/// A bar above a field that has the focus.
struct Desk {
    QWidget window;
    NoticeBar* bar = new NoticeBar;
    QLineEdit* field = new QLineEdit;

    Desk() {
        auto* const layout = new QVBoxLayout(&window);
        layout->addWidget(bar);
        layout->addWidget(field);
        bar->tell(QStringLiteral("Guardando…"), true);
        bar->offer(QStringLiteral("Cancelar"), [this] { ++pressed; });
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        field->setFocus();
    }
    /// Shows another text without buttons.
    void tell(const QString& text) const {
        bar->tell(text);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    QPushButton* button() const { return bar->findChild<QPushButton*>(); }
    /// Types a key as a user does, to whatever has the focus.
    void type(char key) const {
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        QTest::keyClick(QApplication::focusWidget(), key);
    }

    int pressed = 0;
};

} // namespace

TEST(NoticeBar, LeavesTheFocusWhereItIsWhenAButtonIsClicked) {
    Desk desk;
    QTest::mouseClick(desk.button(), Qt::LeftButton);
    EXPECT_EQ(desk.pressed, 1);
    EXPECT_TRUE(desk.bar->isHidden());
    desk.type('a');
    EXPECT_EQ(desk.field->text(), QStringLiteral("a"));
}

TEST(NoticeBar, GivesTheFocusBackThatAButtonTookWithTheTabKey) {
    enum class End { pressed, dismissed, withdrawn };
    for (const End end : {End::pressed, End::dismissed, End::withdrawn}) {
        Desk desk;
        QTest::keyClick(desk.field, Qt::Key_Backtab);
        ASSERT_EQ(QApplication::focusWidget(), desk.button());
        if (end == End::pressed) {
            QTest::keyClick(desk.button(), Qt::Key_Space);
        } else if (end == End::dismissed) {
            desk.bar->dismiss();
        } else {
            desk.bar->withdrawOffers();
        }
        EXPECT_EQ(desk.pressed, end == End::pressed ? 1 : 0);
        desk.type('a');
        EXPECT_EQ(desk.field->text(), QStringLiteral("a"));
    }
}

TEST(NoticeBar, KeepsItsTextWithoutOffers) {
    Desk desk;
    desk.bar->withdrawOffers();
    EXPECT_EQ(desk.bar->text(), QStringLiteral("Guardando…"));
    EXPECT_TRUE(desk.bar->isBusy());
    EXPECT_FALSE(desk.window.findChild<QPushButton*>() != nullptr &&
                 desk.window.findChild<QPushButton*>()->isVisible());
}

TEST(NoticeBar, StaysWhereAButtonLeavesIt) {
    Desk desk;
    int pressed = 0;
    desk.tell(QStringLiteral("Aviso"));
    desk.bar->offer(QStringLiteral("Probar"), [&] { ++pressed; }, NoticeBar::Press::leaves);
    for (int press = 1; press <= 2; ++press) {
        QTest::mouseClick(desk.button(), Qt::LeftButton);
        EXPECT_EQ(pressed, press);
        EXPECT_EQ(desk.bar->text(), QStringLiteral("Aviso"));
    }
}

TEST(NoticeBar, PutsItsButtonsBelowATextThatHasNoRoomBesideThem) {
    Desk desk;
    desk.tell(QString(20, u'n') + u' ' + QString(20, u'n') + u' ' + QString(20, u'n'));
    desk.bar->offer(QString(25, u'n'), [] {});
    QLabel* const label = desk.bar->findChild<QLabel*>();
    struct Row {
        int width;
        bool isBeside;
    };
    for (const Row& row : {Row{1200, true}, Row{400, false}, Row{1200, true}}) {
        desk.window.resize(row.width, 320);
        EXPECT_TRUE(QTest::qWaitFor([&] {
            return (desk.button()->y() < label->geometry().bottom()) == row.isBeside &&
                   label->height() >= label->heightForWidth(label->width());
        })) << row.width;
    }
}
