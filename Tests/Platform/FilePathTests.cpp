#include "FilePath.h"

#include "Random.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QByteArray fromHex(const char* digits) { return QByteArray::fromHex(digits); }

} // namespace

TEST(FilePath, GivesEveryByteBack) {
    struct Row {
        QByteArray bytes;
        QString path;
    };
    for (const Row& row : {
             Row{"", QString()},
             Row{"/a/cañón €.xml", QStringLiteral("/a/cañón €.xml")},
             Row{"a\xFF.xml", QStringLiteral("a\xDCFF.xml")},
             Row{"caf\xE9", QStringLiteral("caf\xDCE9")},
             Row{"\xF0\x9F\x98\x80", QStringLiteral("\xD83D\xDE00")},
             // Cut off, overlong, a surrogate, and beyond the last character.
             Row{"\xE2\x82", QStringLiteral("\xDCE2\xDC82")},
             Row{fromHex("c080"), QStringLiteral("\xDCC0\xDC80")},
             Row{fromHex("eda080"), QStringLiteral("\xDCED\xDCA0\xDC80")},
             Row{fromHex("f4908080"), QStringLiteral("\xDCF4\xDC90\xDC80\xDC80")},
             Row{fromHex("efbbbf61"), QStringLiteral("\xFEFF\x61")},
         }) {
        EXPECT_EQ(FilePath::of(row.bytes), row.path) << row.bytes.toHex().constData();
        EXPECT_EQ(FilePath::bytes(row.path), row.bytes) << row.bytes.toHex().constData();
    }
}

TEST(FilePath, GivesRandomBytesBack) {
    Random random;
    for (int round = 0; round < 2000; ++round) {
        QByteArray bytes;
        for (auto count = random.below(12); count > 0; --count) {
            const QByteArray pieces[] = {"a", "\xC3\xB1", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "%", "/"};
            const auto which = random.below(12);
            bytes += which < 6 ? pieces[which] : QByteArray(1, static_cast<char>(1 + random.below(255)));
        }
        const QString path = FilePath::of(bytes);
        EXPECT_EQ(FilePath::bytes(path), bytes) << bytes.toHex().constData();
        EXPECT_EQ(FilePath::isUnicode(path), QString::fromUtf8(bytes).toUtf8() == bytes)
            << bytes.toHex().constData();
        EXPECT_EQ(FilePath::bytes(FilePath::of(FilePath::url(u'/' + path))), '/' + bytes)
            << bytes.toHex().constData();
    }
}

TEST(FilePath, GoesThroughURLs) {
    const QString path = FilePath::of(QByteArray("/a b/caf\xE9 %41#?\xC3\xB1.xml"));
    EXPECT_EQ(FilePath::url(path).toEncoded(), QByteArray("file:///a%20b/caf%E9%20%2541%23%3F%C3%B1.xml"));
    EXPECT_EQ(FilePath::of(FilePath::url(path)), path);
    EXPECT_EQ(FilePath::of(QUrl(QStringLiteral("file:///tmp/a%FF.xml"))),
              FilePath::of(QByteArray("/tmp/a\xFF.xml")));
    EXPECT_EQ(FilePath::of(QUrl(QStringLiteral("file:///tmp/año.xml"))), QStringLiteral("/tmp/año.xml"));
    EXPECT_FALSE(FilePath::bytes(FilePath::of(QUrl(QStringLiteral("file:///a%00b")))).contains('\0'));
    EXPECT_EQ(FilePath::of(QUrl(QStringLiteral("https://example.org/a.xml"))), QString());
}

TEST(FilePath, FindsFilesWhoseNamesAreNotUnicode) {
    const QTemporaryDir folder;
    const QString path = FilePath::of(folder.path().toUtf8() + "/caf\xE9.xml");
    EXPECT_FALSE(FilePath::isRegularFile(path));
    EXPECT_EQ(FilePath::canonical(path), path);
    const int number = open(FilePath::bytes(path).constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_GE(number, 0);
    close(number);
    EXPECT_TRUE(FilePath::isRegularFile(path));
    EXPECT_FALSE(FilePath::isFolder(path));
    EXPECT_TRUE(FilePath::isFolder(folder.path()));
    const QString link = folder.filePath(QStringLiteral("enlace.xml"));
    ASSERT_EQ(symlink("caf\xE9.xml", FilePath::bytes(link).constData()), 0);
    EXPECT_EQ(FilePath::canonical(link), FilePath::canonical(path));
    unlink(FilePath::bytes(path).constData());
}

TEST(FilePath, BecomesAbsolute) {
    EXPECT_EQ(FilePath::absolute(QStringLiteral("/a/./b/../c//d")), QStringLiteral("/a/c/d"));
    const QTemporaryDir folder;
    const QByteArray place = folder.path().toUtf8() + "/caf\xE9";
    ASSERT_EQ(mkdir(place.constData(), 0700), 0);
    const int before = open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(chdir(place.constData()), 0);
    EXPECT_EQ(FilePath::bytes(FilePath::absolute(QStringLiteral("a.xml"))), place + "/a.xml");
    EXPECT_EQ(fchdir(before), 0);
    close(before);
    rmdir(place.constData());
}
