#include "RecoveryOffer.h"

#include "DocumentDesk.h"
#include "MemoryLimit.h"
#include "RecoveryDialog.h"

#include <QDirIterator>
#include <QTreeWidget>

namespace {

using namespace std::chrono_literals;

/// Leaves texts in `folder` as a crash does.
void leave(const QString& folder, const QStringList& texts) {
    const auto store = std::make_shared<RecoveryStore>(folder, RecoveryPace{.flushDelay = 1ms});
    DocumentDesk desk;
    desk.controller.setRecoveryStore(store);
    for (const QString& text : texts) {
        DocumentWindow* const window = desk.controller.newDocument();
        DocumentDesk::note(window).type(text);
    }
}

/// Leaves a text of the file `origin` in `folder`, without the version of that file.
void leaveWithoutVersion(const QString& folder, const QString& origin, std::u16string_view text) {
    RecoveryStore store(folder, RecoveryPace{.flushDelay = 1ms});
    TextStorage storage{Rope()};
    const auto recovery =
        store.follow(storage, {.encoding = "UTF-8", .origin = origin.toStdString(), .version = {}});
    storage.replaceCharacters({0, 0}, text);
    ASSERT_TRUE(recovery->waitUntilKept(10s));
}

struct Start {
    explicit Start(const QString& folder) : store(std::make_shared<RecoveryStore>(folder)) {
        desk.controller.setRecoveryStore(store);
    }

    RecoveryDialog* offered() {
        offer.start();
        EXPECT_TRUE(QTest::qWaitFor([&] { return offer.dialog() != nullptr || !offer.isUnderWay(); }));
        return offer.dialog();
    }
    static void press(RecoveryDialog& dialog, const QString& title) {
        for (QPushButton* const button : dialog.findChildren<QPushButton*>()) {
            if (button->text().remove(u'&') == title) {
                QTest::mouseClick(button, Qt::LeftButton);
                return;
            }
        }
        FAIL() << "no such button";
    }
    bool waitUntilDone() {
        return QTest::qWaitFor([&] { return !offer.isUnderWay(); });
    }

    std::shared_ptr<RecoveryStore> store;
    DocumentDesk desk;
    RecoveryOffer offer{store, desk.controller};
};

std::size_t leftIn(const QString& folder) { return RecoveryStore(folder).recoverable().documents.size(); }

} // namespace

TEST(RecoveryOffer, AsksNothingWhereNothingIsLeft) {
    const QTemporaryDir folder;
    Start start(folder.path());
    EXPECT_EQ(start.offered(), nullptr);
}

TEST(RecoveryOffer, RecoversTheChosenTextsAsUnsavedDocuments) {
    const QTemporaryDir folder;
    leave(folder.path(), {QStringLiteral("uno"), QStringLiteral("dos")});
    {
        Start start(folder.path());
        const QPointer<DocumentWindow> untouched = start.desk.controller.newDocument();
        RecoveryDialog* const dialog = start.offered();
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(dialog->findChild<QTreeWidget*>()->topLevelItemCount(), 2);
        EXPECT_EQ(dialog->findChild<QTreeWidget*>()->topLevelItem(0)->text(2),
                  QStringLiteral("3 caracteres"));
        Start::press(*dialog, QStringLiteral("Recuperar"));
        ASSERT_TRUE(start.waitUntilDone());
        EXPECT_TRUE(isGone(untouched)) << "an untouched new document makes place";
        QStringList texts;
        for (DocumentWindow* const window : start.desk.controller.windows()) {
            EXPECT_TRUE(window->isWindowModified());
            texts += DocumentDesk::note(window).text();
        }
        texts.sort();
        EXPECT_EQ(texts, QStringList({QStringLiteral("dos"), QStringLiteral("uno")}));
    }
    EXPECT_EQ(leftIn(folder.path()), 2U) << "another crash loses nothing";
}

TEST(RecoveryOffer, AsksAgainLaterOrNeverAgain) {
    struct Row {
        QString button;
        std::size_t left;
    };
    for (const Row& row : {Row{QStringLiteral("Más tarde"), 1U}, Row{QStringLiteral("Descartar"), 0U}}) {
        const QTemporaryDir folder;
        leave(folder.path(), {QStringLiteral("uno")});
        {
            Start start(folder.path());
            RecoveryDialog* const dialog = start.offered();
            ASSERT_NE(dialog, nullptr);
            const Answer answer(QStringLiteral("Descartar"));
            Start::press(*dialog, row.button);
            ASSERT_TRUE(start.waitUntilDone());
            EXPECT_TRUE(start.desk.controller.windows().empty());
            QThreadPool::globalInstance()->waitForDone();
        }
        EXPECT_EQ(leftIn(folder.path()), row.left) << row.button.toStdString();
    }
}

TEST(RecoveryOffer, AsksBeforeATextReplacesAFileOfUnknownVersion) {
    const QTemporaryDir folder;
    Start start(folder.path());
    const QString file = start.desk.write(QStringLiteral("a.txt"), "de otro programa");
    leaveWithoutVersion(folder.path(), file, u"recuperado");
    RecoveryDialog* const dialog = start.offered();
    ASSERT_NE(dialog, nullptr);
    Start::press(*dialog, QStringLiteral("Recuperar"));
    ASSERT_TRUE(start.waitUntilDone());
    ASSERT_EQ(start.desk.controller.windows().size(), 1U);
    DocumentWindow* const window = start.desk.controller.windows().front();
    {
        Answer answer(QStringLiteral("Cancelar"));
        window->save();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !answer.question().isEmpty(); }));
        EXPECT_EQ(answer.question(),
                  QStringLiteral("No se sabe si “a.txt” ha cambiado en el disco desde que se abrió."));
    }
    EXPECT_EQ(start.desk.read(QStringLiteral("a.txt")), QByteArray("de otro programa"));
    QSignalSpy saved(window, &DocumentWindow::saved);
    const Answer answer(QStringLiteral("Guardar encima"));
    window->save();
    ASSERT_TRUE(saved.wait(10'000));
    EXPECT_EQ(start.desk.read(QStringLiteral("a.txt")), QByteArray("recuperado"));
}

TEST(RecoveryOffer, TellsOfTextsOfANewerVersionOfTheProgram) {
    const QTemporaryDir folder;
    leave(folder.path(), {QStringLiteral("uno")});
    QDirIterator files(folder.path(), {QStringLiteral("*.log")}, QDir::Files, QDirIterator::Subdirectories);
    const QString log = files.next();
    {
        QFile file(log);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("TamoRec9 in a form of its own");
    }
    Start start(folder.path());
    Answer answer(QStringLiteral("OK"));
    EXPECT_EQ(start.offered(), nullptr);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !answer.question().isEmpty(); }));
    EXPECT_EQ(answer.question(),
              QStringLiteral("Hay textos sin guardar de una versión más nueva del programa."));
    EXPECT_TRUE(QFile::exists(log));
}

TEST(RecoveryOffer, KeepsTextsForWhichTheMemoryIsTooShort) {
    const QTemporaryDir folder;
    leave(folder.path(), {QString(6'000'000, u'x')});
    Start start(folder.path());
    {
        const MemoryLimit limit(std::size_t{4} << 20);
        Answer answer(QStringLiteral("OK"));
        EXPECT_EQ(start.offered(), nullptr);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !answer.question().isEmpty(); }));
        EXPECT_EQ(answer.question(),
                  QStringLiteral("No hay memoria suficiente para buscar textos sin guardar."));
    }
    RecoveryDialog* const dialog = start.offered();
    ASSERT_NE(dialog, nullptr);
    {
        const MemoryLimit limit(std::size_t{4} << 20);
        Answer answer(QStringLiteral("OK"));
        Start::press(*dialog, QStringLiteral("Recuperar"));
        ASSERT_TRUE(QTest::qWaitFor([&] { return !answer.question().isEmpty(); }));
        EXPECT_EQ(answer.question(),
                  QStringLiteral("No hay memoria suficiente para recuperar uno de los textos."));
    }
    EXPECT_TRUE(start.waitUntilDone());
    EXPECT_EQ(leftIn(folder.path()), 0); // This run still has them.
    ASSERT_EQ(start.store->recoverable().documents.size(), 1);
    EXPECT_EQ(start.store->recoverable().documents.front().size, 6'000'000U);
}
