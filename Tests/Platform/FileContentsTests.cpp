#include "FileContents.h"

#include "InputFile.h"
#include "OrdinaryUser.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <fstream>
#include <stop_token>
#include <string>
#include <thread>

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

TEST(FileContents, EndWhereAGrowingFileEndedWhenItWasOpened) {
    const QTemporaryDir folder;
    const std::string path = folder.filePath(QStringLiteral("a.xml")).toStdString();
    const std::string piece(1'000'000, 'x');
    std::ofstream(path) << piece;
    std::atomic<std::size_t> size = piece.size();
    // Grows faster than it can be read, so that its end is never met.
    const std::jthread writer([&](const std::stop_token& stop) {
        std::ofstream file(path, std::ios::app);
        while (!stop.stop_requested() && size < 1'000'000'000) {
            size += piece.size();
            (file << piece).flush();
        }
    });
    const auto contents = FileContents::read(QString::fromStdString(path));
    ASSERT_TRUE(contents);
    EXPECT_GE(contents->bytes().size(), piece.size());
    const auto file = InputFile::open(QString::fromStdString(path));
    EXPECT_LE(contents->bytes().size(), file->expectedSize());
    EXPECT_EQ(std::ranges::count(contents->bytes(), 'x'),
              static_cast<std::ptrdiff_t>(contents->bytes().size()));
}

TEST(FileContents, StopWhenTheyAreAskedTo) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.xml"));
    std::ofstream(path.toStdString()) << "text";
    std::stop_source stop;
    EXPECT_TRUE(FileContents::read(path, stop.get_token()).has_value());
    stop.request_stop();
    EXPECT_EQ(FileContents::read(path, stop.get_token()).error(), FileFailure::stopped);
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
