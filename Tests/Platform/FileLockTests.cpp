#include "FileLock.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>

#include <unistd.h>

namespace {

class FileLockTest : public testing::Test {
protected:
    QString path() const { return m_folder.filePath(QStringLiteral("lock")); }

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(FileLockTest, IsHeldByOneAtATime) {
    std::optional<FileLock> first = std::move(FileLock::take(path()).value());
    ASSERT_TRUE(first);
    EXPECT_FALSE(FileLock::take(path()).value());
    FileLock moved = std::move(*first);
    first.reset();
    EXPECT_FALSE(FileLock::take(path()).value());
    { const FileLock gone = std::move(moved); }
    EXPECT_TRUE(FileLock::take(path()).value());
}

TEST_F(FileLockTest, IsForTheUserOnly) {
    const auto lock = FileLock::take(path());
    ASSERT_TRUE(lock && *lock);
    EXPECT_EQ(QFileInfo(path()).permissions() & (QFile::ReadGroup | QFile::ReadOther | QFile::WriteOther), 0);
}

TEST_F(FileLockTest, IsAnotherOneAfterItsFileWasRemoved) {
    const auto lock = FileLock::take(path());
    ASSERT_TRUE(lock && *lock);
    ASSERT_TRUE(QFile::remove(path()));
    EXPECT_TRUE(FileLock::take(path()).value());
}

TEST_F(FileLockTest, FollowsNoLink) {
    ASSERT_TRUE(QFile::link(path() + QStringLiteral("target"), path()));
    EXPECT_FALSE(FileLock::take(path()));
    EXPECT_FALSE(QFileInfo::exists(path() + QStringLiteral("target")));
}

TEST_F(FileLockTest, FailsWithTheCause) {
    EXPECT_EQ(FileLock::take(path() + QStringLiteral("/none")).error(), FileFailure::missing);
    EXPECT_EQ(FileLock::take(QStringLiteral("/proc")).error(), FileFailure::folder);
}
