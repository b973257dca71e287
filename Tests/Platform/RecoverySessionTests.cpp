#include "RecoverySession.h"

#include "OrdinaryUser.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <array>
#include <memory>

#include <sys/wait.h>
#include <unistd.h>

namespace {

class RecoverySessionTest : public testing::Test {
protected:
    QString root() const { return m_folder.filePath(QStringLiteral("state/tamo/recovery")); }
    QString above() const { return m_folder.path(); }

    static void create(const QString& path) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    }

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(RecoverySessionTest, MakesItsFolderWhenItIsNeeded) {
    RecoverySession session(root());
    EXPECT_FALSE(QFileInfo::exists(root()));
    const auto folder = session.folder();
    ASSERT_TRUE(folder);
    EXPECT_EQ(session.folder(), folder);
    EXPECT_EQ(RecoverySession::folders(root()), QStringList{*folder});
    EXPECT_EQ(QFileInfo(*folder).permissions() & (QFile::ReadGroup | QFile::ReadOther | QFile::ExeOther), 0);
}

TEST_F(RecoverySessionTest, LeavesNothingBehindWhenNothingIsKept) {
    { ASSERT_TRUE(RecoverySession(root()).folder()); }
    EXPECT_EQ(RecoverySession::folders(root()), QStringList());
}

TEST_F(RecoverySessionTest, LeavesWhatIsKept) {
    QString path;
    {
        RecoverySession session(root());
        path = session.pathForNewLog().value();
        EXPECT_NE(session.pathForNewLog().value(), path);
        create(path);
        EXPECT_EQ(session.logs(), QStringList{path});
    }
    const auto folders = RecoverySession::folders(root());
    ASSERT_EQ(folders.size(), 1);
    const auto adopted = RecoverySession::adopted(root(), folders.front());
    ASSERT_TRUE(adopted);
    EXPECT_EQ(adopted->logs(), QStringList{path});
    EXPECT_NE(adopted->pathForNewLog().value(), path);
}

TEST_F(RecoverySessionTest, IsAdoptedOnceAndOnlyWhenDead) {
    auto living = std::make_unique<RecoverySession>(root());
    create(living->pathForNewLog().value());
    const QString folder = living->folder().value();
    EXPECT_FALSE(RecoverySession::adopted(root(), folder));
    living.reset();
    auto adopted = RecoverySession::adopted(root(), folder);
    EXPECT_TRUE(adopted);
    EXPECT_FALSE(RecoverySession::adopted(root(), folder));
    adopted.reset();
    EXPECT_TRUE(RecoverySession::adopted(root(), folder));
    EXPECT_FALSE(RecoverySession::adopted(root(), root() + QStringLiteral("/run-never")));
}

TEST_F(RecoverySessionTest, IsDeadAsSoonAsItsProcessIs) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    const pid_t process = fork();
    ASSERT_GE(process, 0);
    if (process == 0) {
        RecoverySession session(root());
        const auto path = session.pathForNewLog();
        QFile file(path.value_or(QString()));
        const char isReady = path && file.open(QIODevice::WriteOnly) ? 'y' : 'n';
        if (write(ends[1], &isReady, 1) == 1) {
            pause();
        }
        _exit(1);
    }
    char isReady = 0;
    ASSERT_EQ(read(ends[0], &isReady, 1), 1);
    ASSERT_EQ(isReady, 'y');
    const auto folders = RecoverySession::folders(root());
    ASSERT_EQ(folders.size(), 1);
    EXPECT_FALSE(RecoverySession::adopted(root(), folders.front()));
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
    EXPECT_TRUE(RecoverySession::adopted(root(), folders.front()));
    close(ends[0]);
    close(ends[1]);
}

TEST_F(RecoverySessionTest, MakesItsFolderAgainWhenItWasCleanedAway) {
    RecoverySession session(root());
    ASSERT_TRUE(session.folder());
    ASSERT_TRUE(QDir(above() + QStringLiteral("/state")).removeRecursively());
    const auto path = session.pathForNewLog();
    ASSERT_TRUE(path);
    create(*path);
}

TEST_F(RecoverySessionTest, FailsWithTheCause) {
    {
        ASSERT_TRUE(QFile(above()).setPermissions(QFile::ReadOwner | QFile::ExeOwner));
        const OrdinaryUser user(above());
        EXPECT_EQ(RecoverySession(root()).folder().error(), FileFailure::noPermission);
        EXPECT_TRUE(RecoverySession::folders(root()).isEmpty());
        ASSERT_TRUE(QFile(above()).setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        RecoverySession session(root());
        EXPECT_TRUE(session.folder());
    }
    create(above() + QStringLiteral("/file"));
    EXPECT_EQ(RecoverySession(above() + QStringLiteral("/file")).folder().error(), FileFailure::missing);
}
