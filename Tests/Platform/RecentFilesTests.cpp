#include "RecentFiles.h"

#include "BookmarkList.h"
#include "FilePath.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

#include <fstream>
#include <memory>

namespace {

class RecentFilesTest : public testing::Test {
protected:
    QString path(const QString& name) const { return m_folder.filePath(name); }
    QString list() const { return path(QStringLiteral("share/recently-used.xbel")); }

    QString create(const QString& name, const QByteArray& bytes = "<a/>") const {
        QDir(m_folder.path()).mkpath(QFileInfo(path(name)).path());
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return path(name);
    }

    QByteArray listed() const {
        QFile file(list());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
    }

    std::unique_ptr<RecentFiles> recentFiles() const {
        return std::make_unique<RecentFiles>(
            RecentFiles::Interest{
                .mimeTypes = {QStringLiteral("application/xml"), QStringLiteral("image/svg+xml")},
                .suffixes = {QStringLiteral("xml"), QStringLiteral("svg")},
                .program = QStringLiteral("Tamo"),
                .command = QStringLiteral("tamo %u")},
            list());
    }

    static QByteArray bookmark(const QString& path, const char* modified, const char* type = nullptr) {
        const QByteArray url = QUrl::fromLocalFile(path).toEncoded().replace('&', "&amp;");
        const QByteArray mime =
            type ? "<info><metadata><mime:mime-type type='" + QByteArray(type) + "'/></metadata></info>"
                 : QByteArray();
        return "<bookmark href='" + url + "' modified='" + modified + "'>" + mime + "</bookmark>";
    }

    void createList(const QByteArray& bookmarks, const QByteArray& end = "</xbel>") const {
        create(QStringLiteral("share/recently-used.xbel"),
               "<xbel xmlns:mime='http://www.freedesktop.org/standards/shared-mime-info'>" + bookmarks + end);
    }

    /// The files that are found on the disk.
    QStringList found() const {
        const auto recent = recentFiles();
        QSignalSpy changes(recent.get(), &RecentFiles::filesChanged);
        recent->refresh();
        EXPECT_TRUE(changes.wait());
        return recent->files();
    }

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(RecentFilesTest, FindsTheListWhereTheDesktopKeepsData) {
    const QByteArray before = qgetenv("XDG_DATA_HOME");
    const QString home = QDir::homePath() + QStringLiteral("/.local/share/recently-used.xbel");
    const std::pair<QByteArray, QString> rows[] = {
        {"/there", QStringLiteral("/there/recently-used.xbel")}, {"", home}, {"relative", home}};
    for (const auto& [variable, expected] : rows) {
        qputenv("XDG_DATA_HOME", variable);
        EXPECT_EQ(RecentFiles::defaultList(), expected);
    }
    before.isNull() ? qunsetenv("XDG_DATA_HOME") : qputenv("XDG_DATA_HOME", before);
}

TEST_F(RecentFilesTest, ShowsFilesOfInterestLatestFirstAndMissingOnesLast) {
    const QString older = create(QStringLiteral("older.XML"));
    const QString newer = create(QStringLiteral("ñ &%.svg"));
    const QString typed = create(QStringLiteral("typed"));
    const QString other = create(QStringLiteral("other.txt"));
    const QString missing = path(QStringLiteral("missing.xml"));
    createList(bookmark(older, "2024-01-01T00:00:00Z") + bookmark(newer, "2024-01-03T00:00:00Z") +
               bookmark(other, "2024-01-04T00:00:00Z", "text/plain") +
               bookmark(missing, "2024-01-05T00:00:00Z") +
               bookmark(typed, "2024-01-02T00:00:00.5Z", "application/xml") +
               "<bookmark href='https://example.org/a.xml' modified='2024-01-06T00:00:00Z'/>");
    EXPECT_EQ(found(), (QStringList{newer, typed, older, missing}));
}

TEST_F(RecentFilesTest, ShowsSoManyAtMost) {
    QByteArray all;
    for (int i = 0; i < 50; ++i) {
        all += bookmark(create(QStringLiteral("%1.xml").arg(i)), "2024-01-01T00:00:00Z");
    }
    createList(all);
    EXPECT_EQ(found().size(), RecentFiles::mostFiles);
}

TEST_F(RecentFilesTest, ShowsWhatStandsBeforeABreak) {
    const QString file = create(QStringLiteral("a.xml"));
    createList(bookmark(file, "2024-01-01T00:00:00Z"), "<broken");
    EXPECT_EQ(found(), QStringList{file});
}

TEST_F(RecentFilesTest, NotesVisitsForOtherPrograms) {
    const QString first = create(QStringLiteral("a ñ.xml"));
    const QString second = create(QStringLiteral("b.svg"));
    const auto recent = recentFiles();
    QSignalSpy changes(recent.get(), &RecentFiles::filesChanged);
    recent->note(first);
    ASSERT_TRUE(changes.wait());
    EXPECT_EQ(recent->files(), QStringList{first});
    recent->note(second);
    ASSERT_TRUE(changes.wait());
    EXPECT_EQ(recent->files(), (QStringList{second, first}));
    const auto bookmarks = BookmarkList::read(listed());
    ASSERT_EQ(bookmarks.size(), 2U);
    EXPECT_EQ(QUrl(bookmarks[0].url).toLocalFile(), first);
    EXPECT_TRUE(bookmarks[0].url.startsWith(QStringLiteral("file:///")));
    EXPECT_EQ(bookmarks[0].mimeType, QStringLiteral("application/xml"));
    EXPECT_EQ(bookmarks[1].mimeType, QStringLiteral("image/svg+xml"));
    EXPECT_EQ(QFileInfo(list()).permissions() & (QFile::ReadGroup | QFile::ReadOther), 0);
    recent->note(first);
    ASSERT_TRUE(changes.wait());
    EXPECT_EQ(recent->files(), (QStringList{first, second}));
    EXPECT_EQ(found().size(), 2);
}

TEST_F(RecentFilesTest, NotesNamesThatAreNotUTF8) {
    const QString file = FilePath::of(QFileInfo(path(QStringLiteral("a"))).path().toUtf8() + "/caf\xE9.xml");
    std::ofstream(FilePath::bytes(file).toStdString()) << "<a/>";
    const auto recent = recentFiles();
    QSignalSpy changes(recent.get(), &RecentFiles::filesChanged);
    recent->note(file);
    ASSERT_TRUE(changes.wait());
    EXPECT_EQ(recent->files(), QStringList{file});
    EXPECT_TRUE(listed().contains("/caf%E9.xml"));
    EXPECT_EQ(found(), QStringList{file}) << "another run finds it in the list";
}

TEST_F(RecentFilesTest, KeepsTheFilesOfThisRunWhenTheListIsBroken) {
    createList("", "<broken");
    const QByteArray before = listed();
    const QString file = create(QStringLiteral("a.xml"));
    const auto recent = recentFiles();
    QSignalSpy changes(recent.get(), &RecentFiles::filesChanged);
    recent->note(file);
    ASSERT_TRUE(changes.wait());
    EXPECT_EQ(recent->files(), QStringList{file});
    EXPECT_EQ(listed(), before);
}

TEST_F(RecentFilesTest, KeepsTheFilesOfThisRunWhenThereIsNoPlaceForAList) {
    create(QStringLiteral("share"), "no folder");
    const QString file = create(QStringLiteral("a.xml"));
    const auto recent = recentFiles();
    QSignalSpy changes(recent.get(), &RecentFiles::filesChanged);
    recent->note(file);
    ASSERT_TRUE(changes.wait());
    EXPECT_EQ(recent->files(), QStringList{file});
}

TEST_F(RecentFilesTest, ManyVisitsAtOnceAreAllNoted) {
    const auto recent = recentFiles();
    for (int i = 0; i < 20; ++i) {
        recent->note(create(QStringLiteral("%1.xml").arg(i)));
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return BookmarkList::read(listed()).size() == 20; }, 10'000));
    EXPECT_TRUE(QTest::qWaitFor([&] { return recent->files().size() == RecentFiles::mostFiles; }));
    EXPECT_EQ(recent->files().front(), path(QStringLiteral("19.xml")));
}
