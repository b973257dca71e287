#include "RecentFilesMenu.h"

#include "DocumentDesk.h"
#include "RecentFiles.h"

#include <QMimeData>

namespace {

struct Desk : DocumentDesk {
    RecentFiles files{{{QStringLiteral("text/plain")},
                       {QStringLiteral("txt")},
                       QStringLiteral("Tamo"),
                       QStringLiteral("tamo %u")},
                      folder.filePath(QStringLiteral("recently-used.xbel"))};

    Desk() { controller.setRecentFiles(&files); }
};

QMenu* recentMenu(DocumentWindow* window) { return window->findChild<RecentFilesMenu*>(); }

bool hasActions(QMenu* menu, int count) {
    return QTest::qWaitFor([&] { return menu->actions().size() == count; });
}

} // namespace

TEST(RecentFilesMenu, ListsOpensAndForgets) {
    Desk desk;
    DocumentWindow* const untouched = desk.controller.newDocument();
    QMenu* const menu = recentMenu(untouched);
    ASSERT_NE(menu, nullptr);
    EXPECT_FALSE(menu->isEnabled());
    const QString path = desk.write(QStringLiteral("a & b.txt"), "hola");
    const QPointer<DocumentWindow> window = desk.open(path);
    ASSERT_TRUE(hasActions(menu, 3)) << "the file, a line, and how to forget it";
    EXPECT_TRUE(menu->isEnabled());
    EXPECT_TRUE(menu->actions().front()->text().startsWith(QStringLiteral("a && b.txt — ")));
    window->close();
    ASSERT_TRUE(isGone(window));
    desk.opened.clear();
    menu->actions().front()->trigger();
    ASSERT_TRUE(desk.opened.wait(10'000));
    EXPECT_EQ(desk.opened.first().first().value<DocumentWindow*>()->path(), path);
    EXPECT_EQ(menu->actions().back()->text(), QStringLiteral("Vaciar la lista"));
    menu->actions().back()->trigger();
    EXPECT_TRUE(hasActions(menu, 0));
    EXPECT_FALSE(menu->isEnabled());
    // Neither does it come back when the list is read again, unless the file is used again.
    QSignalSpy changed(&desk.files, &RecentFiles::filesChanged);
    desk.files.refresh();
    desk.files.note(desk.write(QStringLiteral("c.txt"), "hola"));
    ASSERT_TRUE(changed.wait(10'000));
    EXPECT_EQ(desk.files.files(), QStringList{desk.folder.filePath(QStringLiteral("c.txt"))});
    desk.files.note(path);
    ASSERT_TRUE(changed.wait(10'000));
    EXPECT_EQ(desk.files.files().size(), 2);
}

TEST(DocumentWindow, OpensFilesThatAreDroppedOnIt) {
    DocumentDesk desk;
    DocumentWindow* const window = desk.controller.newDocument();
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(desk.write(QStringLiteral("a.txt"), "hola")),
                   QUrl(QStringLiteral("https://ejemplo.invalid/b.txt"))});
    desk.opened.clear();
    QDragEnterEvent enter({9, 9}, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop({9, 9}, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window, &drop);
    ASSERT_TRUE(desk.opened.wait(10'000));
    EXPECT_EQ(desk.controller.windows().size(), 2U);
    // The same on its text.
    emit window->document()->filesDropped({QUrl::fromLocalFile(desk.write(QStringLiteral("c.txt"), "hola"))});
    ASSERT_TRUE(desk.opened.count() == 2 || desk.opened.wait(10'000));
    EXPECT_EQ(desk.controller.windows().size(), 3U);
}
