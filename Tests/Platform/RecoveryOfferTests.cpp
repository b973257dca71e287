#include "RecoveryOffer.h"

#include "DocumentDesk.h"
#include "RecoveryDialog.h"

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
