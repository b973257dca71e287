#include "FileIdentity.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

class FileIdentityTest : public testing::Test {
protected:
    QString path(const char* name = "file") const { return m_folder.filePath(QString::fromUtf8(name)); }

    void write(const std::string& text, const char* name = "file") const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(text.data(), static_cast<qint64>(text.size())), qint64(text.size()));
    }

    /// Sets the time of the last change: the disk's clock may stand still between two writes.
    void touch(int second, const char* name = "file") const {
        const timespec times[2]{{second, 0}, {second, 5}};
        ASSERT_EQ(utimensat(AT_FDCWD, QFile::encodeName(path(name)).constData(), times, 0), 0);
    }

    FileIdentity look(const char* name = "file") const {
        return FileIdentity::withContent(path(name)).value();
    }

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(FileIdentityTest, IsEqualForAnUntouchedFile) {
    write("text");
    touch(7);
    const FileIdentity identity = look();
    EXPECT_EQ(identity, look());
    EXPECT_EQ(identity.size, 4U);
    EXPECT_EQ(identity.modified, 7'000'000'005);
    const FileIdentity unread = FileIdentity::of(path()).value();
    EXPECT_EQ(unread.contentHash, std::nullopt);
    EXPECT_TRUE(unread.isUntouched(identity));
    EXPECT_FALSE(unread.hasSameContent(identity));
}

TEST_F(FileIdentityTest, TellsATouchFromAChange) {
    write("text");
    touch(1);
    const FileIdentity before = look();
    touch(2);
    EXPECT_FALSE(look().isUntouched(before));
    EXPECT_TRUE(look().hasSameContent(before));
    write("next");
    touch(1);
    EXPECT_FALSE(look().hasSameContent(before));
}

TEST_F(FileIdentityTest, TellsAReplacedFileFromAnUntouchedOne) {
    write("text");
    touch(1);
    const FileIdentity before = look();
    write("text", "other");
    touch(1, "other");
    ASSERT_EQ(
        std::rename(QFile::encodeName(path("other")).constData(), QFile::encodeName(path()).constData()), 0);
    EXPECT_FALSE(look().isUntouched(before));
    EXPECT_TRUE(look().hasSameContent(before));
}

TEST_F(FileIdentityTest, HashesFilesOfEverySize) {
    constexpr std::size_t piece = std::size_t{1} << 18;
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, piece - 1, piece, piece + 1, 3 * piece}) {
        std::string text(size, 'x');
        write(text);
        const FileIdentity before = look();
        EXPECT_TRUE(look().hasSameContent(before));
        if (size > 0) {
            text.back() = 'y';
            write(text);
            EXPECT_FALSE(look().hasSameContent(before)) << size;
        }
    }
}

TEST_F(FileIdentityTest, FollowsLinks) {
    write("text");
    ASSERT_TRUE(QFile::link(path(), path("link")));
    EXPECT_EQ(look("link"), look());
}

TEST_F(FileIdentityTest, FailsWithTheCause) {
    EXPECT_EQ(FileIdentity::of(path("missing")).error(), FileFailure::missing);
    EXPECT_EQ(FileIdentity::withContent(path("missing")).error(), FileFailure::missing);
    EXPECT_EQ(FileIdentity::of(QStringLiteral("/")).error(), FileFailure::folder);
    EXPECT_EQ(FileIdentity::of(QStringLiteral("/dev/null")).error(), FileFailure::notRegular);
    EXPECT_EQ(FileIdentity::withContent(QStringLiteral("/dev/null")).error(), FileFailure::notRegular);
}
