#include "ShortcutsDialog.h"

#include <QHeaderView>
#include <QTest>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace {

/// A page with long orders and long names of keys.
struct Desk {
    ShortcutsDialog page{{{QStringLiteral("Sección"),
                           {{QStringLiteral("Una orden"), {Qt::CTRL | Qt::SHIFT | Qt::Key_Z, Qt::CTRL | Qt::Key_Y}},
                            {QString(120, u'n'), {Qt::Key_Space, Qt::Key_Return, Qt::Key_Space}},
                            {QString(40, u'n'),
                             {Qt::CTRL | Qt::ALT | Qt::SHIFT | Qt::Key_PageDown,
                              Qt::CTRL | Qt::META | Qt::SHIFT | Qt::Key_PageDown}}}}},
                         nullptr};
    QTreeWidget& list = *page.findChild<QTreeWidget*>();

    Desk() {
        page.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&page));
    }
    QTreeWidgetItem& line(int at) const { return *list.topLevelItem(0)->child(at); }
};

} // namespace

TEST(ShortcutsDialog, ShowsAllKeysWhole) {
    Desk desk;
    for (const int width : {desk.page.width(), 400}) {
        desk.page.resize(width, 400);
        QCoreApplication::sendPostedEvents();
        for (int at = 0; at < 3; ++at) {
            const QModelIndex index = desk.list.indexFromItem(&desk.line(at), 1);
            EXPECT_GE(desk.list.visualRect(index).width(), desk.list.sizeHintForIndex(index).width())
                << qUtf8Printable(desk.line(at).text(1));
            EXPECT_LE(desk.list.visualRect(index).right(), desk.list.viewport()->width());
        }
    }
}

TEST(ShortcutsDialog, ListsKeysOfOneNameOnce) {
    const Desk desk;
    const QString space = QKeySequence(Qt::Key_Space).toString(QKeySequence::NativeText);
    const QString enter = QKeySequence(Qt::Key_Return).toString(QKeySequence::NativeText);
    EXPECT_EQ(desk.line(1).text(1), space + QStringLiteral(", ") + enter);
}

TEST(ShortcutsDialog, FitsOnTheScreen) {
    const Desk desk;
    EXPECT_TRUE(desk.page.screen()->availableGeometry().contains(desk.page.geometry()));
}
