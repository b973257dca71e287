#include "AtomicFile.h"

#include "FilePath.h"
#include "OrdinaryUser.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <string>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

class AtomicFileTest : public testing::Test {
protected:
    QString path(const char* name) const { return m_folder.filePath(QString::fromUtf8(name)); }
    QString folder() const { return m_folder.path(); }

    void create(const char* name, const char* text) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    std::string contents(const char* name) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "missing";
    }

    unsigned mode(const char* name) const {
        struct stat status {};
        EXPECT_EQ(stat(QFile::encodeName(path(name)).constData(), &status), 0);
        return status.st_mode & 07777;
    }

    void linkTo(const char* name, const char* other) const {
        ASSERT_EQ(link(QFile::encodeName(path(name)).constData(), QFile::encodeName(path(other)).constData()),
                  0);
    }

    QStringList entries() const {
        return QDir(m_folder.path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

private:
    QTemporaryDir m_folder;
};

std::optional<FileFailure> save(const QString& path, std::string_view text, const FileReplacement& how = {}) {
    auto file = AtomicFile::open(path);
    if (!file) {
        return file.error();
    }
    file->write(bytesOf(text.substr(0, text.size() / 2)));
    file->write(bytesOf(text.substr(text.size() / 2)));
    const auto result = file->commit(how);
    return result ? std::nullopt : std::optional(result.error());
}

} // namespace

TEST_F(AtomicFileTest, CreatesAFile) {
    EXPECT_EQ(save(path("new.xml"), "text"), std::nullopt);
    EXPECT_EQ(contents("new.xml"), "text");
    const mode_t mask = umask(0);
    umask(mask);
    EXPECT_EQ(mode("new.xml"), 0666 & ~mask);
}

TEST_F(AtomicFileTest, ReplacesAFileAndKeepsItsMode) {
    for (const mode_t kept : {0600u, 0640u, 0755u, 0666u, 0604u, 02660u}) {
        create("file", "old and longer");
        ASSERT_EQ(chmod(QFile::encodeName(path("file")).constData(), kept), 0);
        EXPECT_EQ(save(path("file"), "new"), std::nullopt);
        EXPECT_EQ(contents("file"), "new");
        EXPECT_EQ(mode("file"), kept);
    }
    EXPECT_EQ(entries(), QStringList{QStringLiteral("file")});
}

TEST_F(AtomicFileTest, KeepsExtendedAttributes) {
    create("file", "old");
    const QByteArray name = QFile::encodeName(path("file"));
    ASSERT_EQ(setxattr(name.constData(), "user.origin", "here", 4, 0), 0);
    EXPECT_EQ(save(path("file"), "new"), std::nullopt);
    char value[8]{};
    EXPECT_EQ(getxattr(name.constData(), "user.origin", value, sizeof value), 4);
    EXPECT_STREQ(value, "here");
}

TEST_F(AtomicFileTest, FollowsLinksToTheirTarget) {
    ASSERT_TRUE(QDir(folder()).mkdir(QStringLiteral("there")));
    create("there/file", "old");
    ASSERT_EQ(chmod(QFile::encodeName(path("there/file")).constData(), 0640), 0);
    ASSERT_TRUE(QFile::link(QStringLiteral("file"), path("there/link")));
    ASSERT_TRUE(QFile::link(QStringLiteral("there/link"), path("chain")));
    ASSERT_TRUE(QFile::link(path("chain"), path("absolute")));
    EXPECT_EQ(save(path("absolute"), "new"), std::nullopt);
    EXPECT_EQ(contents("there/file"), "new");
    EXPECT_EQ(mode("there/file"), 0640u);
    for (const char* const link : {"absolute", "chain", "there/link"}) {
        EXPECT_TRUE(QFileInfo(path(link)).isSymLink()) << link;
        EXPECT_EQ(contents(link), "new");
    }
}

TEST_F(AtomicFileTest, FollowsALinkUpwardsFromWhereItsFolderReallyIs) {
    ASSERT_TRUE(QDir(folder()).mkpath(QStringLiteral("a/b")));
    ASSERT_TRUE(QFile::link(QStringLiteral("a/b"), path("shortcut")));
    ASSERT_TRUE(QFile::link(QStringLiteral("../file"), path("a/b/link")));
    EXPECT_EQ(save(path("shortcut/link"), "text"), std::nullopt);
    EXPECT_EQ(contents("a/file"), "text");
    EXPECT_EQ(contents("file"), "missing");
}

TEST_F(AtomicFileTest, CreatesTheTargetOfABrokenLink) {
    ASSERT_TRUE(QFile::link(QStringLiteral("target"), path("link")));
    EXPECT_EQ(save(path("link"), "text"), std::nullopt);
    EXPECT_TRUE(QFileInfo(path("link")).isSymLink());
    EXPECT_EQ(contents("target"), "text");
}

TEST_F(AtomicFileTest, LeavesOtherHardLinksTheirContents) {
    create("file", "old");
    ASSERT_EQ(link(QFile::encodeName(path("file")).constData(), QFile::encodeName(path("other")).constData()),
              0);
    EXPECT_EQ(save(path("file"), "new"), std::nullopt);
    EXPECT_EQ(contents("file"), "new");
    EXPECT_EQ(contents("other"), "old");
}

TEST_F(AtomicFileTest, LeavesTheFileAloneUntilCommitted) {
    create("file", "old");
    {
        auto file = AtomicFile::open(path("file"));
        ASSERT_TRUE(file);
        file->write(bytesOf(std::string(1'000'000, 'x')));
        EXPECT_EQ(contents("file"), "old");
    }
    EXPECT_EQ(contents("file"), "old");
    EXPECT_EQ(entries(), QStringList{QStringLiteral("file")});
}

TEST_F(AtomicFileTest, LeavesTheFileAloneWhenWritingFails) {
    create("file", "old");
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    const rlimit small{.rlim_cur = 4096, .rlim_max = limit.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const auto failure = save(path("file"), std::string(1'000'000, 'x'));
    const auto failureAtTheEnd = save(path("file"), std::string(5000, 'x'));
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(failure, FileFailure::tooLarge);
    EXPECT_EQ(failureAtTheEnd, FileFailure::tooLarge);
    EXPECT_EQ(contents("file"), "old");
    EXPECT_EQ(entries(), QStringList{QStringLiteral("file")});
}

TEST_F(AtomicFileTest, FailsWithTheCause) {
    EXPECT_EQ(save(path("missing/file"), "text"), FileFailure::missing);
    EXPECT_EQ(save(folder(), "text"), FileFailure::folder);
    EXPECT_EQ(save(QStringLiteral("/dev/null"), "text"), FileFailure::notRegular);
    ASSERT_TRUE(QFile::link(path("circle"), path("circle")));
    EXPECT_EQ(save(path("circle"), "text"), FileFailure::other);
}

TEST_F(AtomicFileTest, NeedsThePermissionForTheFileAndItsFolder) {
    create("file", "old");
    ASSERT_TRUE(QFile(path("file")).setPermissions(QFile::ReadOwner | QFile::ReadUser));
    {
        const OrdinaryUser user(folder());
        EXPECT_EQ(save(path("file"), "new"), FileFailure::noPermission);
        EXPECT_EQ(save(path("mine"), "new"), std::nullopt);
        ASSERT_TRUE(QFile(folder()).setPermissions(QFile::ReadOwner | QFile::ExeOwner));
        EXPECT_EQ(save(path("mine"), "newer"), FileFailure::noPermission);
        EXPECT_EQ(save(path("other"), "new"), FileFailure::noPermission);
        ASSERT_TRUE(QFile(folder()).setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
    EXPECT_EQ(contents("file"), "old");
    EXPECT_EQ(contents("mine"), "new");
}

TEST_F(AtomicFileTest, SavesNamesOfAnyLength) {
    for (const int length : {248, 249, 254, 255}) {
        const QByteArray name(length, 'x');
        create(name.constData(), "old");
        EXPECT_EQ(save(path(name.constData()), "new"), std::nullopt) << length;
        EXPECT_EQ(contents(name.constData()), "new") << length;
        const QByteArray other = "y" + name.mid(1);
        EXPECT_EQ(save(path(other.constData()), "new"), std::nullopt) << length;
        EXPECT_EQ(contents(other.constData()), "new") << length;
    }
    EXPECT_EQ(entries().size(), 8) << "nothing is left beside them";
}

TEST_F(AtomicFileTest, SavesANameThatIsNotUTF8) {
    const QByteArray name = folder().toUtf8() + "/caf\xE9.xml";
    EXPECT_EQ(save(FilePath::of(name), "text"), std::nullopt);
    EXPECT_EQ(access(name.constData(), R_OK), 0);
    EXPECT_EQ(save(FilePath::of(name), "new"), std::nullopt);
    std::string found;
    std::ifstream(name.toStdString()) >> found;
    EXPECT_EQ(found, "new");
    unlink(name.constData());
}

TEST_F(AtomicFileTest, LeavesTheFileAloneWhenItIsStopped) {
    create("file", "old");
    for (const bool isEarly : {true, false}) {
        std::stop_source stop;
        auto file = AtomicFile::open(path("file"), stop.get_token());
        ASSERT_TRUE(file);
        file->write(bytesOf("new"));
        if (isEarly) {
            stop.request_stop();
        }
        file->write(bytesOf("er"));
        stop.request_stop();
        EXPECT_EQ(file->commit().error(), FileFailure::stopped);
        EXPECT_EQ(contents("file"), "old");
    }
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(save(path("file"), "new", {.stop = stop.get_token()}), FileFailure::stopped);
    EXPECT_EQ(contents("file"), "old");
    EXPECT_EQ(entries(), QStringList{QStringLiteral("file")});
}

TEST_F(AtomicFileTest, AsksRightBeforeItReplacesTheFile) {
    create("file", "old");
    std::string then;
    const auto refuse = [&] {
        then = contents("file");
        return false;
    };
    for (const auto links : {FileReplacement::Links::separated, FileReplacement::Links::written}) {
        EXPECT_EQ(save(path("file"), "new", {.mayReplace = refuse, .links = links}), FileFailure::stopped);
        EXPECT_EQ(then, "old");
        EXPECT_EQ(contents("file"), "old");
        EXPECT_EQ(entries().size(), links == FileReplacement::Links::separated ? 1 : 2);
        if (links == FileReplacement::Links::separated) {
            linkTo("file", "other");
        }
    }
}

TEST_F(AtomicFileTest, WritesAllNamesOfAFile) {
    create("file", "old and longer");
    linkTo("file", "other");
    EXPECT_EQ(AtomicFile::nameCount(path("file")), 2U);
    EXPECT_EQ(AtomicFile::nameCount(path("missing")), 0U);
    for (const std::string text : {"new", "another text that is longer again", ""}) {
        EXPECT_EQ(save(path("file"), text, {.links = FileReplacement::Links::written}), std::nullopt);
        EXPECT_EQ(contents("file"), text);
        EXPECT_EQ(contents("other"), text);
    }
    EXPECT_EQ(AtomicFile::nameCount(path("file")), 2U);
    EXPECT_EQ(entries().size(), 2) << "no copy is left";
}

TEST_F(AtomicFileTest, PutsBackWhatAFileHeldThatCouldNotBeWrittenWhole) {
    create("file", "old");
    linkTo("file", "other");
    // The limit holds for the place in a file: the bytes that are to come are safe, and their file may not
    // grow.
    auto file = AtomicFile::open(path("file"));
    ASSERT_TRUE(file);
    file->write(bytesOf(std::string(100'000, 'x')));
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    const rlimit small{.rlim_cur = 4096, .rlim_max = limit.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const auto result = file->commit({.links = FileReplacement::Links::written});
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, handler);
    ASSERT_FALSE(result.has_value());
    EXPECT_EQ(result.error(), FileFailure::tooLarge);
    EXPECT_EQ(contents("file"), "old");
    EXPECT_EQ(contents("other"), "old");
    EXPECT_EQ(entries().size(), 2);
}

TEST_F(AtomicFileTest, KeepsTheCopiesOfEarlierFailures) {
    create("file", "old");
    create("file.tamo-copia", "kept");
    linkTo("file", "other");
    EXPECT_EQ(save(path("file"), "new", {.links = FileReplacement::Links::written}), std::nullopt);
    EXPECT_EQ(contents("file.tamo-copia"), "kept");
    EXPECT_EQ(entries().size(), 3);
}

TEST_F(AtomicFileTest, WaitsForTheNameOfAFile) {
    create("file", "old");
    ASSERT_TRUE(QFile::link(QStringLiteral("file"), path("link")));
    EXPECT_TRUE(AtomicFile::syncName(path("file")).has_value());
    EXPECT_TRUE(AtomicFile::syncName(path("link")).has_value());
    EXPECT_EQ(AtomicFile::syncName(path("missing/file")).error(), FileFailure::missing);
}
