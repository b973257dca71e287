#include "OutsideChangeNotice.h"

#include "DocumentDesk.h"

#include <QDir>

namespace {

/// The bar of the window that shows.
NoticeBar* shownBar(DocumentWindow* window) {
    for (NoticeBar* const bar : window->findChildren<NoticeBar*>()) {
        if (bar->isVisible() && !bar->isBusy()) {
            return bar;
        }
    }
    return nullptr;
}

bool waitForBar(DocumentWindow* window, const QString& start) {
    return QTest::qWaitFor([&] {
        const NoticeBar* const bar = shownBar(window);
        return bar != nullptr && bar->text().startsWith(start);
    });
}

void press(DocumentWindow* window, const QString& title) {
    for (QPushButton* const button : shownBar(window)->findChildren<QPushButton*>()) {
        if (button->text() == title) {
            QTest::mouseClick(button, Qt::LeftButton);
            return;
        }
    }
    FAIL() << "no such button";
}

struct Desk : DocumentDesk {
    DocumentWindow* window = open(write(QStringLiteral("a.txt"), "hola"));
    Note& note = DocumentDesk::note(window);

    bool hasText(const QString& text) const {
        return QTest::qWaitFor([&] { return note.text() == text; });
    }
};

} // namespace

TEST(OutsideChangeNotice, ReadsTheFileAgainWhereThereAreNoChanges) {
    Desk desk;
    desk.write(QStringLiteral("a.txt"), "de otro");
    ASSERT_TRUE(desk.hasText(QStringLiteral("de otro")));
    EXPECT_FALSE(desk.window->isWindowModified());
    EXPECT_EQ(shownBar(desk.window), nullptr);
    desk.note.undoManager().undo();
    EXPECT_EQ(desk.note.text(), QStringLiteral("hola"));
    EXPECT_TRUE(desk.window->isWindowModified());
    desk.note.undoManager().redo();
    EXPECT_FALSE(desk.window->isWindowModified());
    QSignalSpy saved(desk.window, &DocumentWindow::saved);
    desk.note.type(QStringLiteral("mío"));
    desk.window->save();
    ASSERT_TRUE(saved.wait(10'000)) << "without a question: it is the version that was read";
    EXPECT_EQ(desk.read(QStringLiteral("a.txt")), QByteArray("mío"));
}

TEST(OutsideChangeNotice, TellsWhereThereAreChanges) {
    Desk desk;
    desk.note.type(QStringLiteral("mío"));
    desk.write(QStringLiteral("a.txt"), "de otro");
    ASSERT_TRUE(waitForBar(desk.window, QStringLiteral("“a.txt” ha cambiado en el disco")));
    const QString text = shownBar(desk.window)->text();
    EXPECT_TRUE(text.contains(QStringLiteral("En el disco ahora: 7 bytes, "))) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("Cuando se abrió o guardó: 4 bytes, "))) << text.toStdString();
    EXPECT_EQ(desk.note.text(), QStringLiteral("mío"));
    press(desk.window, QStringLiteral("Volver a cargar"));
    ASSERT_TRUE(desk.hasText(QStringLiteral("de otro")));
    EXPECT_FALSE(desk.window->isWindowModified());
    EXPECT_EQ(shownBar(desk.window), nullptr);
    desk.note.undoManager().undo();
    EXPECT_EQ(desk.note.text(), QStringLiteral("mío")) << "nothing is lost";
}

TEST(OutsideChangeNotice, KeepsWhatTheUserHas) {
    Desk desk;
    desk.note.type(QStringLiteral("mío"));
    desk.write(QStringLiteral("a.txt"), "de otro");
    ASSERT_TRUE(waitForBar(desk.window, QStringLiteral("“a.txt” ha cambiado en el disco")));
    press(desk.window, QStringLiteral("Conservar lo mío"));
    EXPECT_EQ(shownBar(desk.window), nullptr);
    EXPECT_TRUE(desk.window->isWindowModified());
    QSignalSpy saved(desk.window, &DocumentWindow::saved);
    desk.window->save();
    ASSERT_TRUE(saved.wait(10'000)) << "it was asked already";
    EXPECT_EQ(desk.read(QStringLiteral("a.txt")), QByteArray("mío"));
}

TEST(OutsideChangeNotice, TellsThatTheFileIsGone) {
    Desk desk;
    const QString elsewhere = desk.folder.filePath(QStringLiteral("b.txt"));
    ASSERT_TRUE(QFile::rename(desk.window->path(), elsewhere));
    ASSERT_TRUE(waitForBar(desk.window, QStringLiteral("“a.txt” se ha borrado o movido")));
    EXPECT_TRUE(desk.window->isWindowModified()) << "no file has the text";
    ASSERT_TRUE(QFile::rename(elsewhere, desk.window->path()));
    EXPECT_TRUE(QTest::qWaitFor([&] { return shownBar(desk.window) == nullptr; }));
    EXPECT_FALSE(desk.window->isWindowModified());
}

TEST(OutsideChangeNotice, SavesAFileAnewThatIsGone) {
    Desk desk;
    ASSERT_TRUE(QFile::remove(desk.window->path()));
    ASSERT_TRUE(waitForBar(desk.window, QStringLiteral("“a.txt” se ha borrado o movido")));
    QSignalSpy ended(desk.window, &DocumentWindow::savingEnded);
    desk.window->save();
    ASSERT_TRUE(ended.wait(10'000));
    EXPECT_EQ(desk.read(QStringLiteral("a.txt")), QByteArray("hola"));
    EXPECT_EQ(shownBar(desk.window), nullptr);
    EXPECT_FALSE(desk.window->isWindowModified());
}
