#include "FileContents.h"

#include "OrdinaryUser.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>

#include <sys/stat.h>

namespace {

std::string contents(const QString& path) {
    const auto file = FileContents::read(path);
    return file ? std::string(file->bytes().begin(), file->bytes().end()) : "failed";
}

std::optional<FileFailure> failure(const QString& path) {
    const auto file = FileContents::read(path);
    return file ? std::nullopt : std::optional(file.error());
}

} // namespace

TEST(FileContents, AreAllBytesOfAFile) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("año.xml"));
    for (const std::string& bytes :
         {std::string(), std::string("a\0\xFF\r\n", 5), std::string(5'000'000, 'x')}) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes.data(), static_cast<qint64>(bytes.size()));
        file.close();
        EXPECT_TRUE(contents(path) == bytes);
    }
}

TEST(FileContents, FollowLinks) {
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("file")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("text");
    file.close();
    ASSERT_TRUE(QFile::link(QStringLiteral("file"), folder.filePath(QStringLiteral("link"))));
    EXPECT_EQ(contents(folder.filePath(QStringLiteral("link"))), "text");
}

TEST(FileContents, ReachBeyondTheSizeThatTheSystemTells) {
    // Files of the kernel say that they are empty.
    EXPECT_NE(contents(QStringLiteral("/proc/self/status")).find("Name:"), std::string::npos);
}

TEST(FileContents, FailWithTheCause) {
    const QTemporaryDir folder;
    EXPECT_EQ(failure(folder.filePath(QStringLiteral("missing"))), FileFailure::missing);
    EXPECT_EQ(failure(folder.filePath(QStringLiteral("missing/file"))), FileFailure::missing);
    EXPECT_EQ(failure(folder.path()), FileFailure::folder);
    EXPECT_EQ(failure(QStringLiteral("/dev/null")), FileFailure::notRegular);
    const QString pipe = folder.filePath(QStringLiteral("pipe"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_EQ(failure(pipe), FileFailure::notRegular);
    const QString circle = folder.filePath(QStringLiteral("circle"));
    ASSERT_TRUE(QFile::link(circle, circle));
    EXPECT_EQ(failure(circle), FileFailure::other);
}

TEST(FileContents, NeedThePermission) {
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("secret")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    file.setPermissions({});
    const OrdinaryUser user(folder.path());
    EXPECT_EQ(failure(file.fileName()), FileFailure::noPermission);
}
