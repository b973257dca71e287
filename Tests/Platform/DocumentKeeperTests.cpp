#include "DocumentDesk.h"
#include "RecoveryStore.h"

namespace {

using namespace std::chrono_literals;

/// A run of the program that keeps what is unsaved, and ends like a crash: nobody closes anything.
struct Session {
    explicit Session(const QString& folder)
        : store(std::make_shared<RecoveryStore>(folder, RecoveryPace{.flushDelay = 1ms})) {
        desk.controller.setRecoveryStore(store);
    }

    std::shared_ptr<RecoveryStore> store;
    DocumentDesk desk;
};

struct Left {
    std::vector<RecoverableDocument> documents;
    QString text;
    RecoveredText first;
};

/// What a later start finds.
Left left(const QString& folder) {
    RecoveryStore store(folder);
    Left left{store.recoverable().documents, {}, {}};
    if (!left.documents.empty()) {
        left.first = store.take(left.documents.front().id).value_or(RecoveredText());
        left.text = QString::fromStdU16String(left.first.text.units(left.first.text.fullRange()));
    }
    return left;
}

} // namespace

TEST(DocumentKeeper, KeepsChangesOfANewDocument) {
    const QTemporaryDir folder;
    {
        Session run(folder.path());
        DocumentWindow* const window = run.desk.controller.newDocument();
        DocumentDesk::note(window).type(QStringLiteral("sin guardar"));
        window->document()->setTextSelection({2, 5});
        DocumentDesk::note(window).type(QStringLiteral("sin guardar aún"));
    }
    const Left found = left(folder.path());
    ASSERT_EQ(found.documents.size(), 1U);
    EXPECT_EQ(found.text, QStringLiteral("sin guardar aún"));
    EXPECT_EQ(found.first.facts.encoding, "UTF-8");
    EXPECT_EQ(found.first.facts.origin, "");
    EXPECT_EQ(found.first.moment.selection, (SourceRange{2, 5}));
}

TEST(DocumentKeeper, KeepsWhereADocumentCameFrom) {
    const QTemporaryDir folder;
    QString path;
    {
        Session run(folder.path());
        path = run.desk.write(QStringLiteral("a.txt"), "hola");
        DocumentDesk::note(run.desk.open(path)).type(QStringLiteral("adiós"));
    }
    const Left found = left(folder.path());
    ASSERT_EQ(found.documents.size(), 1U);
    EXPECT_EQ(found.first.facts.origin, path.toStdString());
    ASSERT_TRUE(found.first.facts.version.has_value());
    EXPECT_EQ(found.first.facts.version->size, 4U);
}

TEST(DocumentKeeper, KeepsNothingThatIsSavedOrGivenUp) {
    using Step = void (*)(Session&, DocumentWindow*);
    const Step steps[] = {
        [](Session&, DocumentWindow*) {},
        [](Session&, DocumentWindow* window) {
            DocumentDesk::note(window).type(QStringLiteral("adiós"));
            QSignalSpy saved(window, &DocumentWindow::saved);
            window->save();
            EXPECT_TRUE(saved.wait(10'000));
        },
        [](Session&, DocumentWindow* window) {
            DocumentDesk::note(window).type(QStringLiteral("adiós"));
            window->document()->undoManager().undo();
        },
        [](Session&, DocumentWindow* window) {
            DocumentDesk::note(window).type(QStringLiteral("adiós"));
            window->giveUpChanges();
        },
        [](Session&, DocumentWindow* window) {
            DocumentDesk::note(window).type(QStringLiteral("adiós"));
            const QPointer<DocumentWindow> closing = window;
            const Answer answer(discardButton);
            window->close();
            EXPECT_TRUE(isGone(closing));
        },
    };
    for (const Step step : steps) {
        const QTemporaryDir folder;
        {
            Session run(folder.path());
            step(run, run.desk.open(run.desk.write(QStringLiteral("a.txt"), "hola")));
        }
        EXPECT_EQ(left(folder.path()).documents.size(), 0U) << "step " << &step - steps;
    }
}

TEST(DocumentKeeper, KeepsWhatCouldNotBeSaved) {
    const QTemporaryDir folder;
    {
        Session run(folder.path());
        DocumentWindow* const window = run.desk.open(run.desk.write(QStringLiteral("a.txt"), "hola"));
        DocumentDesk::note(window).type(QStringLiteral("adiós"));
        ASSERT_TRUE(QFile::remove(window->path()));
        ASSERT_TRUE(QDir().mkdir(window->path())) << "nothing can be written there";
        QSignalSpy ended(window, &DocumentWindow::savingEnded);
        const Answer answer(QStringLiteral("OK"));
        window->save();
        ASSERT_TRUE(ended.wait(10'000));
        EXPECT_FALSE(ended.first().first().toBool());
        EXPECT_TRUE(window->isWindowModified());
    }
    EXPECT_EQ(left(folder.path()).text, QStringLiteral("adiós"));
}

TEST(DocumentKeeper, KeepsWhatIsTypedDuringASave) {
    const QTemporaryDir folder;
    {
        Session run(folder.path());
        DocumentWindow* const window = run.desk.open(run.desk.write(QStringLiteral("a.txt"), "hola"));
        DocumentDesk::note(window).type(QStringLiteral("uno"));
        QSignalSpy saved(window, &DocumentWindow::saved);
        run.desk.gate.close();
        window->save();
        DocumentDesk::note(window).type(QStringLiteral("dos"));
        run.desk.gate.open();
        ASSERT_TRUE(saved.wait(10'000));
        EXPECT_EQ(run.desk.read(QStringLiteral("a.txt")), QByteArray("uno"));
    }
    EXPECT_EQ(left(folder.path()).text, QStringLiteral("dos"));
}

TEST(DocumentKeeper, TellsInTheWindowThatNothingCanBeKept) {
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("archivo")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    Session run(file.fileName() + QStringLiteral("/recovery"));
    DocumentWindow* const window = run.desk.controller.newDocument();
    DocumentDesk::note(window).type(QStringLiteral("a"));
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return std::ranges::any_of(window->findChildren<NoticeBar*>(), [](const NoticeBar* bar) {
            return bar->text().startsWith(QStringLiteral("Los cambios sin guardar no se pueden proteger"));
        });
    }));
}
