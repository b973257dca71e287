#include "FileWatcher.h"

#include "FilePath.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

class FileWatcherTest : public testing::Test {
protected:
    FileWatcherTest() {
        EXPECT_TRUE(QDir(m_folder.path()).mkpath(QStringLiteral("a/b")));
        write("first");
    }

    QString path(const char* name = "a/b/file.xml") const {
        return m_folder.filePath(QString::fromUtf8(name));
    }

    void write(const std::string& text, const char* name = "a/b/file.xml") const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(text.data(), static_cast<qint64>(text.size())), qint64(text.size()));
    }

    void rename(const char* from, const char* to) const {
        ASSERT_EQ(
            std::rename(QFile::encodeName(path(from)).constData(), QFile::encodeName(path(to)).constData()),
            0);
    }

    /// Replaces the file as careful programs do.
    void replace(const std::string& text) const {
        write(text, "a/b/file.xml.tmp");
        rename("a/b/file.xml.tmp", "a/b/file.xml");
    }

    void touch() const {
        const timespec times[2]{{1000, 0}, {1000, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, QFile::encodeName(path()).constData(), times, 0), 0);
    }

    FileIdentity identity() const { return FileIdentity::withContent(path()).value(); }

    /// Waits until all that happened so far has been looked at: by a change to another file, whose watcher
    /// started later, and takes as long.
    void settle() const {
        FileWatcher other;
        const QString name = path("a/other");
        write("x", "a/other");
        QSignalSpy changes(&other, &FileWatcher::changed);
        for (int round = 0; round < 2; ++round) {
            other.follow(name, FileIdentity{});
            ASSERT_TRUE(changes.wait());
        }
    }

    std::string heard() {
        std::string all;
        std::swap(all, m_heard);
        return all;
    }

    void follow() {
        QObject::connect(&m_watcher, &FileWatcher::changed, [this] { m_heard += "changed "; });
        QObject::connect(&m_watcher, &FileWatcher::removed, [this] { m_heard += "removed "; });
        QObject::connect(&m_watcher, &FileWatcher::restored, [this] { m_heard += "restored "; });
        m_watcher.follow(path(), identity());
        settle();
        EXPECT_EQ(heard(), "");
    }

    /// Waits for the next news.
    std::string next() {
        EXPECT_TRUE(QTest::qWaitFor([this] { return !m_heard.empty(); }, 10'000));
        return heard();
    }

    FileWatcher m_watcher;

private:
    QTemporaryDir m_folder;
    std::string m_heard;
};

} // namespace

TEST_F(FileWatcherTest, TellsOfChangesInPlace) {
    follow();
    write("second and longer");
    EXPECT_EQ(next(), "changed ");
    write("same size, longer");
    EXPECT_EQ(next(), "changed ");
    settle();
    EXPECT_EQ(heard(), "");
}

TEST_F(FileWatcherTest, TellsOfEveryReplacementByAnotherFile) {
    follow();
    for (const char* const text : {"other", "third", "and more"}) {
        replace(text);
        EXPECT_EQ(next(), "changed ") << text;
    }
    settle();
    EXPECT_EQ(heard(), "");
}

TEST_F(FileWatcherTest, TellsNothingOfTouchesAndOfTheSameBytesAgain) {
    follow();
    touch();
    settle();
    replace("first");
    settle();
    write("first");
    settle();
    EXPECT_EQ(heard(), "");
    write("again");
    EXPECT_EQ(next(), "changed ");
}

TEST_F(FileWatcherTest, TellsOfRemovalAndReturn) {
    follow();
    ASSERT_TRUE(QFile::remove(path()));
    EXPECT_EQ(next(), "removed ");
    write("first");
    EXPECT_EQ(next(), "restored ");
    ASSERT_TRUE(QFile::remove(path()));
    EXPECT_EQ(next(), "removed ");
    write("other");
    EXPECT_EQ(next(), "changed ");
    write("more to come");
    EXPECT_EQ(next(), "changed ");
}

TEST_F(FileWatcherTest, TellsOfMovesOfTheFileAndOfItsFolders) {
    follow();
    rename("a/b/file.xml", "a/b/moved.xml");
    EXPECT_EQ(next(), "removed ");
    rename("a/b/moved.xml", "a/b/file.xml");
    EXPECT_EQ(next(), "restored ");
    rename("a/b", "a/c");
    EXPECT_EQ(next(), "removed ");
    rename("a/c", "a/b");
    EXPECT_EQ(next(), "restored ");
    rename("a", "c");
    m_watcher.check();
    EXPECT_EQ(next(), "removed ");
    rename("c", "a");
    EXPECT_EQ(next(), "restored ");
    write("other");
    EXPECT_EQ(next(), "changed ");
}

TEST_F(FileWatcherTest, FollowsAPathThroughTheLossOfItsFolders) {
    follow();
    ASSERT_TRUE(QDir(path("a")).removeRecursively());
    EXPECT_EQ(next(), "removed ");
    ASSERT_TRUE(QDir(path("")).mkpath(QStringLiteral("a/b")));
    settle();
    write("first");
    EXPECT_EQ(next(), "restored ");
}

TEST_F(FileWatcherTest, IsSilentAboutAQuickReplacementInTwoSteps) {
    follow();
    ASSERT_TRUE(QFile::remove(path()));
    write("first");
    settle();
    EXPECT_EQ(heard(), "");
}

TEST_F(FileWatcherTest, TakesAFolderInThePlaceOfTheFileForItsLoss) {
    follow();
    ASSERT_TRUE(QFile::remove(path()));
    ASSERT_TRUE(QDir().mkdir(path()));
    EXPECT_EQ(next(), "removed ");
}

TEST_F(FileWatcherTest, FollowsLinksToWhereTheyLead) {
    rename("a/b/file.xml", "a/target.xml");
    ASSERT_TRUE(QFile::link(path("a/target.xml"), path()));
    follow();
    write("other", "a/target.xml");
    EXPECT_EQ(next(), "changed ");
    write("third", "a/temporary");
    rename("a/temporary", "a/target.xml");
    EXPECT_EQ(next(), "changed ");
    ASSERT_TRUE(QFile::remove(path("a/target.xml")));
    EXPECT_EQ(next(), "removed ");
}

TEST_F(FileWatcherTest, FollowsANameThatIsNotUTF8) {
    const QString name = FilePath::of(path("a/b").toUtf8() + "/caf\xE9.xml");
    const std::string there = FilePath::bytes(name).toStdString();
    std::ofstream(there) << "first";
    follow();
    m_watcher.follow(name, FileIdentity::withContent(name).value());
    write("second", "a/b/otro.xml");
    rename("a/b/otro.xml", "a/b/otro más.xml");
    ASSERT_EQ(std::rename(FilePath::bytes(path("a/b/otro más.xml")).constData(), there.c_str()), 0);
    EXPECT_EQ(next(), "changed ");
    ASSERT_EQ(std::remove(there.c_str()), 0);
    EXPECT_EQ(next(), "removed ");
}

TEST_F(FileWatcherTest, IgnoresOurOwnWriting) {
    follow();
    m_watcher.beginOwnWrite();
    replace("ours");
    settle();
    m_watcher.endOwnWrite(identity());
    settle();
    EXPECT_EQ(heard(), "");
    replace("theirs");
    EXPECT_EQ(next(), "changed ");
}

TEST_F(FileWatcherTest, TellsOfAForeignWriteRightAfterOurs) {
    follow();
    m_watcher.beginOwnWrite();
    replace("ours");
    const FileIdentity ours = identity();
    replace("theirs");
    m_watcher.endOwnWrite(ours);
    EXPECT_EQ(next(), "changed ");
}

TEST_F(FileWatcherTest, TellsWhatHappenedBeforeItBeganToFollow) {
    const FileIdentity read = identity();
    write("since then");
    QSignalSpy changes(&m_watcher, &FileWatcher::changed);
    m_watcher.follow(path(), read);
    ASSERT_TRUE(changes.wait());
    QSignalSpy removals(&m_watcher, &FileWatcher::removed);
    m_watcher.follow(path("a/never"), read);
    ASSERT_TRUE(removals.wait());
}

TEST_F(FileWatcherTest, FollowsAnotherPathOrNone) {
    follow();
    write("other", "a/b/other.xml");
    m_watcher.follow(path("a/b/other.xml"), FileIdentity::withContent(path("a/b/other.xml")).value());
    write("nobody's");
    settle();
    EXPECT_EQ(heard(), "");
    write("somebody's", "a/b/other.xml");
    EXPECT_EQ(next(), "changed ");
    m_watcher.follow(QString(), std::nullopt);
    write("nobody's", "a/b/other.xml");
    settle();
    EXPECT_EQ(heard(), "");
}

TEST_F(FileWatcherTest, MayGoWhileItLooks) {
    for (int i = 0; i < 20; ++i) {
        auto watcher = std::make_unique<FileWatcher>();
        watcher->follow(path(), FileIdentity{});
        // Its own timer is due first.
        QTimer::singleShot(150, [&watcher] { watcher.reset(); });
        ASSERT_TRUE(QTest::qWaitFor([&watcher] { return watcher == nullptr; }));
    }
}
