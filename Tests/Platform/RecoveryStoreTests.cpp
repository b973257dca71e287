#include "RecoveryStore.h"

#include "OrdinaryUser.h"
#include "RecoveryReader.h"
#include "Typist.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <optional>
#include <string>

#include <sys/mount.h>
#include <sys/resource.h>

using namespace std::chrono_literals;

namespace {

const RecoveryFacts facts{.encoding = "ISO-8859-1", .origin = "/home/a.xml"};

class RecoveryStoreTest : public testing::Test {
protected:
    QString root() const { return m_folder.filePath(QStringLiteral("recovery")); }
    QString above() const { return m_folder.path(); }

    std::unique_ptr<RecoveryStore> store(RecoveryPace pace = {.flushDelay = 10ms, .retryDelay = 20ms}) const {
        return std::make_unique<RecoveryStore>(root(), pace);
    }

    /// The files that are kept, whole or not.
    QStringList files() const {
        QStringList paths;
        for (QDirIterator all(root(), QDir::Files, QDirIterator::Subdirectories); all.hasNext();) {
            const QString path = all.next();
            if (!path.endsWith(QStringLiteral("/lock"))) {
                paths += path;
            }
        }
        return paths;
    }

    /// The only text that a start now would find; nothing unless there is exactly one.
    std::optional<RecoveredText> found() const {
        const auto next = store();
        const auto left = next->recoverable();
        EXPECT_EQ(left.setAside, QStringList());
        return left.documents.size() == 1 ? next->take(left.documents.front().id) : std::nullopt;
    }

    /// Leaves `text` behind as a crash does.
    void leave(std::u16string_view text) const {
        const auto dead = store();
        TextStorage storage((Rope()));
        const auto recovery = dead->follow(storage, facts);
        storage.replaceCharacters({0, 0}, text);
        EXPECT_TRUE(recovery->waitUntilKept(10s));
    }

private:
    QTemporaryDir m_folder;
};

/// Files that the process writes get no larger while it lives.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &m_limit);
        const rlimit small{.rlim_cur = bytes, .rlim_max = m_limit.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &m_limit);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    void (*m_handler)(int);
    rlimit m_limit{};
};

} // namespace

TEST_F(RecoveryStoreTest, FindsItsFolderWhereTheDesktopKeepsStates) {
    const QByteArray before = qgetenv("XDG_STATE_HOME");
    const std::pair<QByteArray, QString> rows[] = {
        {"/there/state", QStringLiteral("/there/state/tamo/recovery")},
        {"/there/state/", QStringLiteral("/there/state/tamo/recovery")},
        {"", QDir::homePath() + QStringLiteral("/.local/state/tamo/recovery")},
        {"relative", QDir::homePath() + QStringLiteral("/.local/state/tamo/recovery")},
    };
    for (const auto& [variable, folder] : rows) {
        qputenv("XDG_STATE_HOME", variable);
        EXPECT_EQ(RecoveryStore::defaultFolder(), folder);
    }
    before.isNull() ? qunsetenv("XDG_STATE_HOME") : qputenv("XDG_STATE_HOME", before);
}

TEST_F(RecoveryStoreTest, KeepsWhatChangedWithAllThatBelongsToIt) {
    const auto living = store();
    const RecoveryFacts all{.encoding = "UTF-16LE",
                            .bom = {0xFF, 0xFE},
                            .origin = "/home/\xFF.xml",
                            .version = FileIdentity{1, 2, 3, 4, 5}};
    TextStorage storage(Rope(u"<a>one</a>"));
    auto recovery = living->follow(storage, all);
    const auto before = QDateTime::currentMSecsSinceEpoch();
    storage.replaceCharacters({3, 6}, u"\xD83D");
    recovery->setSelection({4, 5});
    storage.replaceCharacters({0, 0}, u"two");
    recovery->setSelection({3, 3});
    ASSERT_TRUE(recovery->waitUntilKept(10s));
    EXPECT_EQ(recovery->generation(), 2U);
    const QStringList logs = files();
    ASSERT_EQ(logs.size(), 1);
    const auto text = RecoveryReader::read(logs.front());
    ASSERT_TRUE(text);
    EXPECT_EQ(text->text, Rope(u"two<a>\xD83D</a>"));
    EXPECT_EQ(text->facts, all);
    EXPECT_EQ(text->moment.selection, SourceRange(3, 3));
    EXPECT_EQ(text->moment.generation, 2U);
    EXPECT_GE(text->moment.changed, before);
    EXPECT_LE(text->moment.changed, QDateTime::currentMSecsSinceEpoch());
}

TEST_F(RecoveryStoreTest, WritesNothingForAnUntouchedDocument) {
    const auto living = store();
    TextStorage storage(Rope(u"<a/>"));
    auto recovery = living->follow(storage, facts);
    recovery->setSelection({1, 2});
    recovery->setFacts(facts);
    recovery->forget();
    EXPECT_TRUE(recovery->waitUntilKept(0s));
    EXPECT_FALSE(QFileInfo::exists(root()));
}

TEST_F(RecoveryStoreTest, WritesOnlyWhatChanged) {
    const auto living = store();
    TextStorage storage(Rope(std::u16string(1'000'000, u'x')));
    const auto recovery = living->follow(storage, facts);
    storage.replaceCharacters({5, 6}, u"first");
    ASSERT_TRUE(recovery->waitUntilKept(10s));
    const qint64 size = QFileInfo(files().front()).size();
    for (int i = 0; i < 100; ++i) {
        storage.replaceCharacters({500'000, 500'000}, u"!");
    }
    ASSERT_TRUE(recovery->waitUntilKept(10s));
    EXPECT_LT(QFileInfo(files().front()).size() - size, 20'000);
    EXPECT_EQ(RecoveryReader::read(files().front())->text, storage.text());
}

TEST_F(RecoveryStoreTest, KeepsABatchWholeOrNotAtAll) {
    const auto living = store({.flushDelay = 0ms});
    TextStorage storage(Rope(u"ab"));
    const auto recovery = living->follow(storage, facts);
    storage.replaceCharacters({0, 0}, u"1");
    ASSERT_TRUE(recovery->waitUntilKept(10s));
    storage.beginEditing();
    storage.replaceCharacters({0, 1}, u"");
    EXPECT_TRUE(recovery->waitUntilKept(10s));
    EXPECT_EQ(RecoveryReader::read(files().front())->text, Rope(u"1ab"));
    storage.replaceCharacters({0, 0}, u"2");
    storage.endEditing();
    ASSERT_TRUE(recovery->waitUntilKept(10s));
    EXPECT_EQ(RecoveryReader::read(files().front())->text, Rope(u"2ab"));
}

TEST_F(RecoveryStoreTest, LogsAreWrittenAnewBeforeTheyGrowLong) {
    const auto living = store({.flushDelay = 1ms, .leastChanges = 500, .mostChanges = 1000});
    TextStorage storage((Rope()));
    const auto recovery = living->follow(storage, facts);
    Typist typist(1);
    for (int i = 0; i < 500; ++i) {
        typist.change(storage);
        if (i % 5 == 0) {
            ASSERT_TRUE(recovery->waitUntilKept(10s));
        }
    }
    ASSERT_TRUE(recovery->waitUntilKept(10s));
    ASSERT_EQ(files().size(), 1);
    EXPECT_EQ(RecoveryReader::read(files().front())->text, storage.text());
    EXPECT_LT(QFileInfo(files().front()).size(), 4 * qint64(storage.text().size()) + 5000);
}

TEST_F(RecoveryStoreTest, KeepsAnyNumberOfChangesAtOnce) {
    const auto living = store();
    TextStorage storage(Rope(std::u16string(200'000, u'x')));
    const auto recovery = living->follow(storage, facts);
    storage.replaceCharacters({0, 0}, u"!");
    ASSERT_TRUE(recovery->waitUntilKept(10s));
    storage.beginEditing();
    for (Offset at = storage.text().size(); at > 1; at -= 2) {
        storage.replaceCharacters({at - 1, at}, u"yz");
    }
    storage.endEditing();
    ASSERT_TRUE(recovery->waitUntilKept(10s));
    EXPECT_EQ(RecoveryReader::read(files().front())->text, storage.text());
}

TEST_F(RecoveryStoreTest, ASavedOrClosedDocumentLeavesNothing) {
    const auto living = store();
    TextStorage storage((Rope()));
    auto recovery = living->follow(storage, facts);
    for (const char16_t* const text : {u"one", u"two"}) {
        storage.replaceCharacters({0, 0}, text);
        ASSERT_TRUE(recovery->waitUntilKept(10s));
        EXPECT_EQ(files().size(), 1);
        recovery->forget();
        ASSERT_TRUE(recovery->waitUntilKept(10s));
        EXPECT_EQ(files(), QStringList());
    }
    // Not even what was noted just before.
    storage.replaceCharacters({0, 0}, u"three");
    recovery->forget();
    recovery.reset();
    EXPECT_EQ(store()->recoverable().documents.size(), 0U);
}

TEST_F(RecoveryStoreTest, ARunThatEndsWellLeavesNoFolder) {
    {
        const auto living = store();
        TextStorage storage((Rope()));
        const auto recovery = living->follow(storage, facts);
        storage.replaceCharacters({0, 0}, u"text");
        recovery->forget();
    }
    EXPECT_EQ(RecoverySession::folders(root()), QStringList());
}

TEST_F(RecoveryStoreTest, NewFactsAreKeptWithAKeptTextOnly) {
    const auto living = store();
    TextStorage storage((Rope()));
    const auto recovery = living->follow(storage, facts);
    storage.replaceCharacters({0, 0}, u"text");
    ASSERT_TRUE(recovery->waitUntilKept(10s));
    RecoveryFacts moved = facts;
    moved.origin = "/home/b.xml";
    recovery->setFacts(moved);
    ASSERT_TRUE(recovery->waitUntilKept(10s));
    EXPECT_EQ(RecoveryReader::read(files().front())->facts, moved);
    recovery->forget();
    recovery->setFacts(facts);
    ASSERT_TRUE(recovery->waitUntilKept(10s));
    EXPECT_EQ(files(), QStringList());
    storage.replaceCharacters({0, 0}, u"more");
    ASSERT_TRUE(recovery->waitUntilKept(10s));
    EXPECT_EQ(RecoveryReader::read(files().front())->facts, facts);
}

TEST_F(RecoveryStoreTest, OffersWhatDeadRunsLeftAndNotWhatLivingOnesKeep) {
    leave(u"dead");
    const auto living = store();
    TextStorage storage((Rope()));
    const auto recovery = living->follow(storage, facts);
    storage.replaceCharacters({0, 0}, u"living");
    ASSERT_TRUE(recovery->waitUntilKept(10s));

    const auto next = store();
    const auto left = next->recoverable();
    ASSERT_EQ(left.documents.size(), 1U);
    EXPECT_EQ(left.documents[0].facts, facts);
    EXPECT_EQ(left.documents[0].size, 4U);
    EXPECT_EQ(left.documents[0].damage, RecoveryDamage::none);
    EXPECT_EQ(next->recoverable().documents.size(), 1U);
    // Two starts at once do not both offer it.
    EXPECT_EQ(store()->recoverable().documents.size(), 0U);
    EXPECT_EQ(next->take(left.documents[0].id)->text, Rope(u"dead"));
    EXPECT_EQ(next->recoverable().documents.size(), 0U);
}

TEST_F(RecoveryStoreTest, OffersTheLatestFirst) {
    leave(u"first");
    QTest::qWait(2);
    leave(u"second");
    const auto left = store()->recoverable();
    ASSERT_EQ(left.documents.size(), 2U);
    EXPECT_EQ(left.documents[0].size, 6U);
    EXPECT_EQ(left.documents[1].size, 5U);
}

TEST_F(RecoveryStoreTest, WhatIsTakenStaysKeptUntilItIsForgotten) {
    leave(u"dead");
    for (const std::u16string units : {u"", u"un", u"and "}) {
        const auto next = store();
        const auto left = next->recoverable();
        ASSERT_EQ(left.documents.size(), 1U);
        const auto text = next->take(left.documents[0].id);
        ASSERT_TRUE(text);
        TextStorage storage(text->text);
        const auto recovery = next->follow(storage, text->facts, left.documents[0].id);
        storage.replaceCharacters({0, 0}, units);
    }
    EXPECT_EQ(found()->text, Rope(u"and undead"));
    EXPECT_EQ(files().size(), 1);
    {
        const auto next = store();
        const auto id = next->recoverable().documents.at(0).id;
        TextStorage storage(next->take(id)->text);
        const auto recovery = next->follow(storage, facts, id);
        recovery->forget();
    }
    EXPECT_EQ(files(), QStringList());
    EXPECT_EQ(RecoverySession::folders(root()), QStringList());
}

TEST_F(RecoveryStoreTest, WhatIsDiscardedIsGone) {
    leave(u"one");
    leave(u"two");
    const auto next = store();
    const auto left = next->recoverable();
    ASSERT_EQ(left.documents.size(), 2U);
    next->discard(left.documents[0].id);
    EXPECT_EQ(next->take(left.documents[0].id), std::nullopt);
    EXPECT_EQ(next->recoverable().documents.size(), 1U);
    EXPECT_EQ(files().size(), 1);
}

TEST_F(RecoveryStoreTest, AnUnfinishedNewLogHarmsNothing) {
    leave(u"text");
    const QString log = files().front();
    QFile unfinished(log + QStringLiteral(".new"));
    ASSERT_TRUE(unfinished.open(QIODevice::WriteOnly));
    unfinished.write("TamoRec2saltsalt and no more");
    unfinished.close();
    EXPECT_EQ(found()->text, Rope(u"text"));
    EXPECT_EQ(files(), QStringList{log});
}

TEST_F(RecoveryStoreTest, ANewLogIsFoundWhereTheOldOneIsLost) {
    leave(u"text");
    const QString log = files().front();
    ASSERT_TRUE(QFile::rename(log, log + QStringLiteral(".new")));
    {
        QFile broken(log);
        ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
        broken.write("no log");
    }
    const auto next = store();
    const auto left = next->recoverable();
    EXPECT_EQ(left.setAside.size(), 1);
    ASSERT_EQ(left.documents.size(), 1U);
    EXPECT_EQ(next->take(left.documents[0].id)->text, Rope(u"text"));
}

TEST_F(RecoveryStoreTest, SetsAsideWhatItCannotRead) {
    leave(u"bad");
    const QString bad = files().front();
    {
        QFile file(bad);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("no log");
    }
    leave(u"good");
    const auto left = store()->recoverable();
    ASSERT_EQ(left.documents.size(), 1U);
    EXPECT_EQ(left.documents[0].size, 4U);
    ASSERT_EQ(left.setAside.size(), 1);
    QFile kept(left.setAside[0]);
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), "no log");
    EXPECT_FALSE(QFileInfo::exists(bad));
    EXPECT_TRUE(store()->recoverable().setAside.isEmpty());
}

TEST_F(RecoveryStoreTest, ADamagedTextIsOfferedAndACopySetAside) {
    const QByteArray damaged = [&] {
        leave(u"text");
        QFile file(files().front());
        EXPECT_TRUE(file.open(QIODevice::ReadWrite));
        file.seek(file.size());
        file.write(QByteArray(100, '\0'));
        file.seek(0);
        return file.readAll();
    }();
    const auto next = store();
    const auto left = next->recoverable();
    ASSERT_EQ(left.documents.size(), 1U);
    EXPECT_EQ(left.documents[0].damage, RecoveryDamage::damaged);
    next->discard(left.documents[0].id);
    ASSERT_EQ(files().size(), 1);
    QFile copy(files().front());
    ASSERT_TRUE(copy.open(QIODevice::ReadOnly));
    EXPECT_EQ(copy.readAll(), damaged);
}

TEST_F(RecoveryStoreTest, ADamagedLogIsSetAsideOnce) {
    leave(u"text");
    {
        QFile file(files().front());
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        file.seek(file.size());
        file.write(QByteArray(100, '\0'));
    }
    for (int start = 0; start < 3; ++start) {
        EXPECT_EQ(store()->recoverable().documents.size(), 1U);
        EXPECT_EQ(files().size(), 2);
    }
}

TEST_F(RecoveryStoreTest, LeavesALogOfANewerVersionWhereItIsAndSaysSo) {
    leave(u"text");
    const QString log = files().front();
    {
        QFile file(log);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("TamoRec3 and what only a later version understands");
    }
    for (int start = 0; start < 2; ++start) {
        const auto left = store()->recoverable();
        EXPECT_EQ(left.documents.size(), 0U);
        EXPECT_EQ(left.setAside, QStringList());
        EXPECT_EQ(left.newer, QStringList{log});
        EXPECT_EQ(files(), QStringList{log});
    }
}

TEST_F(RecoveryStoreTest, OffersATextOnceThatTwoLogsHave) {
    leave(u"text");
    const QString old = files().front();
    QFile::copy(old, old + QStringLiteral(".kept"));
    {
        const auto next = store();
        const auto id = next->recoverable().documents.at(0).id;
        TextStorage storage(next->take(id)->text);
        const auto recovery = next->follow(storage, facts, id);
        storage.replaceCharacters({4, 4}, u" and more");
        EXPECT_TRUE(recovery->waitUntilKept(10s));
    }
    const QString second = QFileInfo(old).path() + QStringLiteral("/text-9.log");
    ASSERT_TRUE(QFile::rename(old, second));
    ASSERT_TRUE(QFile::rename(old + QStringLiteral(".kept"), old));
    EXPECT_EQ(found()->text, Rope(u"text and more"));
    EXPECT_EQ(files(), QStringList{second});
}

TEST_F(RecoveryStoreTest, TakesTheNewLogWhereItHasMore) {
    leave(u"text");
    const QString log = files().front();
    QFile::copy(log, log + QStringLiteral(".old"));
    QTest::qWait(2);
    {
        const auto next = store();
        const auto id = next->recoverable().documents.at(0).id;
        TextStorage storage(next->take(id)->text);
        const auto recovery = next->follow(storage, facts, id);
        storage.replaceCharacters({4, 4}, u" and more");
        EXPECT_TRUE(recovery->waitUntilKept(10s));
    }
    ASSERT_TRUE(QFile::rename(log, log + QStringLiteral(".new")));
    ASSERT_TRUE(QFile::rename(log + QStringLiteral(".old"), log));
    EXPECT_EQ(found()->text, Rope(u"text and more"));
    EXPECT_EQ(files(), QStringList{log});
}

TEST_F(RecoveryStoreTest, SaysOnceThatItCannotKeepAndTriesAgain) {
    const auto living = store();
    QSignalSpy failures(living.get(), &RecoveryStore::keepingFailed);
    TextStorage storage((Rope()));
    std::unique_ptr<DocumentRecovery> recovery;
    ASSERT_TRUE(QFile(above()).setPermissions(QFile::ReadOwner | QFile::ExeOwner));
    const OrdinaryUser user(above());
    recovery = living->follow(storage, facts);
    storage.replaceCharacters({0, 0}, u"text");
    ASSERT_TRUE(failures.wait());
    EXPECT_EQ(failures.at(0).at(0).toString(),
              QStringLiteral("Los cambios sin guardar no se pueden proteger en “%1”: no tienes permiso para "
                             "escribir en esa carpeta. Si el programa se interrumpe, se perderán. Guarda los "
                             "documentos con frecuencia.")
                  .arg(root()));
    storage.replaceCharacters({4, 4}, u" and more");
    EXPECT_FALSE(recovery->waitUntilKept(100ms));
    QCoreApplication::processEvents();
    EXPECT_EQ(failures.size(), 1);
    ASSERT_TRUE(QFile(above()).setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    ASSERT_TRUE(recovery->waitUntilKept(10s));
    ASSERT_EQ(files().size(), 1);
    EXPECT_EQ(RecoveryReader::read(files().front())->text, Rope(u"text and more"));
}

TEST_F(RecoveryStoreTest, KeepsTheLastGoodCopyWhenNothingMoreFits) {
    const auto living = store();
    QSignalSpy failures(living.get(), &RecoveryStore::keepingFailed);
    TextStorage storage((Rope()));
    const auto recovery = living->follow(storage, facts);
    storage.replaceCharacters({0, 0}, u"good");
    ASSERT_TRUE(recovery->waitUntilKept(10s));
    {
        const FileSizeLimit limit(static_cast<rlim_t>(QFileInfo(files().front()).size()) + 10);
        storage.replaceCharacters({4, 4}, u" and too much");
        ASSERT_TRUE(failures.wait());
        EXPECT_EQ(RecoveryReader::read(files().front())->text, Rope(u"good"));
        storage.replaceCharacters({0, 0}, std::u16string(1'000'000, u'x'));
        EXPECT_FALSE(recovery->waitUntilKept(100ms));
        EXPECT_EQ(RecoveryReader::read(files().front())->text, Rope(u"good"));
    }
    ASSERT_TRUE(recovery->waitUntilKept(10s));
    EXPECT_EQ(files().size(), 1);
    EXPECT_EQ(RecoveryReader::read(files().front())->text, storage.text());
}

TEST_F(RecoveryStoreTest, KeepsTheLastGoodCopyOnAFullDisk) {
    ASSERT_TRUE(QDir().mkpath(root()));
    const QByteArray place = QFile::encodeName(root());
    if (mount("none", place.constData(), "tmpfs", 0, "size=256k") != 0) {
        GTEST_SKIP() << "nothing can be mounted here";
    }
    {
        const auto living = store();
        QSignalSpy failures(living.get(), &RecoveryStore::keepingFailed);
        TextStorage storage((Rope()));
        const auto recovery = living->follow(storage, facts);
        storage.replaceCharacters({0, 0}, u"good");
        EXPECT_TRUE(recovery->waitUntilKept(10s));
        const std::u16string tooMuch(1'000'000, u'x');
        storage.replaceCharacters({4, 4}, tooMuch);
        EXPECT_TRUE(failures.wait());
        EXPECT_TRUE(
            failures.value(0).value(0).toString().contains(QStringLiteral("no queda espacio en el disco")));
        EXPECT_EQ(RecoveryReader::read(files().value(0))->text, Rope(u"good"));
        storage.replaceCharacters(SourceRange::at(4, std::int64_t(tooMuch.size())), u" again");
        EXPECT_TRUE(recovery->waitUntilKept(10s));
        EXPECT_EQ(RecoveryReader::read(files().value(0))->text, Rope(u"good again"));
    }
    EXPECT_EQ(umount(place.constData()), 0);
}

TEST_F(RecoveryStoreTest, BeginsAnewWhenItsFolderIsCleanedAway) {
    const auto living = store();
    TextStorage storage((Rope()));
    const auto recovery = living->follow(storage, facts);
    storage.replaceCharacters({0, 0}, u"text");
    ASSERT_TRUE(recovery->waitUntilKept(10s));
    ASSERT_TRUE(QDir(root()).removeRecursively());
    storage.replaceCharacters({0, 0}, u"new ");
    ASSERT_TRUE(recovery->waitUntilKept(10s));
    ASSERT_EQ(files().size(), 1);
    EXPECT_EQ(RecoveryReader::read(files().front())->text, Rope(u"new text"));
}

TEST_F(RecoveryStoreTest, KeepsManyDocumentsApart) {
    {
        const auto living = store();
        std::vector<std::unique_ptr<TextStorage>> storages;
        std::vector<std::unique_ptr<DocumentRecovery>> recoveries;
        for (int i = 0; i < 20; ++i) {
            storages.push_back(std::make_unique<TextStorage>(Rope()));
            recoveries.push_back(living->follow(*storages.back(), facts));
            storages.back()->replaceCharacters({0, 0}, std::u16string(i + 1, u'x'));
        }
        recoveries[4]->forget();
    }
    const auto left = store()->recoverable();
    std::vector<Offset> sizes;
    for (const auto& document : left.documents) {
        sizes.push_back(document.size);
    }
    std::ranges::sort(sizes);
    std::vector<Offset> expected;
    for (Offset size = 1; size <= 20; ++size) {
        if (size != 5) {
            expected.push_back(size);
        }
    }
    EXPECT_EQ(sizes, expected);
}
