#include "TemporaryFile.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

namespace {

using Naming = TemporaryFile::Naming;

class TemporaryFileTest : public testing::Test {
protected:
    QStringList entries() const {
        return QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    std::string contents() const {
        std::string text;
        std::ifstream(target) >> text;
        return text;
    }
    static void fill(const TemporaryFile& file) { ASSERT_EQ(write(file.number(), "new", 3), 3); }

    /// Has a process of its own make a file for the target and be killed.
    void leaveOver() const {
        const pid_t child = fork();
        if (child == 0) {
            const auto file = TemporaryFile::create(target, Naming::atOnce);
            kill(getpid(), file ? SIGKILL : SIGTERM);
            _exit(1);
        }
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
    }

    QTemporaryDir folder;
    std::filesystem::path target = folder.filePath(QStringLiteral("archivo.xml")).toStdString();
};

} // namespace

TEST_F(TemporaryFileTest, TakesTheTargetsPlace) {
    for (const Naming naming : {Naming::late, Naming::atOnce}) {
        std::ofstream(target) << "old";
        auto file = TemporaryFile::create(target, naming);
        ASSERT_TRUE(file);
        fill(*file);
        ASSERT_TRUE(file->giveName());
        ASSERT_TRUE(file->giveName()) << "a second name is not needed";
        EXPECT_EQ(contents(), "old");
        ASSERT_TRUE(file->takePlace());
        EXPECT_EQ(contents(), "new");
        EXPECT_EQ(entries().size(), 1);
    }
}

TEST_F(TemporaryFileTest, LeavesNothing) {
    for (const Naming naming : {Naming::late, Naming::atOnce}) {
        for (const bool isNamed : {false, true}) {
            auto file = TemporaryFile::create(target, naming);
            ASSERT_TRUE(file);
            if (isNamed) {
                ASSERT_TRUE(file->giveName());
                EXPECT_EQ(entries().size(), 1);
                EXPECT_TRUE(entries().front().startsWith(QStringLiteral(".tamo-")));
            }
            EXPECT_EQ(entries().size(), isNamed || naming == Naming::atOnce ? 1 : 0);
            const TemporaryFile last = std::move(*file);
        }
        EXPECT_EQ(entries(), QStringList());
    }
}

TEST_F(TemporaryFileTest, StandsBesideOthersForTheSameTarget) {
    auto first = TemporaryFile::create(target, Naming::atOnce);
    auto second = TemporaryFile::create(target, Naming::atOnce);
    auto third = TemporaryFile::create(target, Naming::late);
    ASSERT_TRUE(first && second && third);
    ASSERT_TRUE(third->giveName());
    EXPECT_EQ(entries().size(), 3) << "those that are being written are not removed";
    fill(*second);
    ASSERT_TRUE(second->takePlace());
    EXPECT_EQ(contents(), "new");
}

TEST_F(TemporaryFileTest, RemovesWhatAKilledProcessLeft) {
    leaveOver();
    ASSERT_EQ(entries().size(), 1);
    const auto other = TemporaryFile::create(folder.filePath(QStringLiteral("otro.xml")).toStdString());
    EXPECT_EQ(entries().size(), 1) << "what is another file's stays";
    const auto file = TemporaryFile::create(target);
    EXPECT_EQ(entries(), QStringList());
}

TEST_F(TemporaryFileTest, RemovesNothingThatIsNotItsOwn) {
    leaveOver();
    const std::filesystem::path name = folder.filePath(entries().front()).toStdString();
    std::filesystem::remove(name);
    const std::filesystem::path elsewhere = folder.filePath(QStringLiteral("ajeno")).toStdString();
    std::ofstream(elsewhere) << "mine";
    std::filesystem::create_symlink(elsewhere, name);
    {
        auto file = TemporaryFile::create(target, Naming::atOnce);
        ASSERT_TRUE(file);
        fill(*file);
        ASSERT_TRUE(file->takePlace());
    }
    EXPECT_TRUE(std::filesystem::is_symlink(name));
    EXPECT_TRUE(std::filesystem::exists(elsewhere));
    std::filesystem::remove(name);
    std::filesystem::create_directory(name);
    EXPECT_TRUE(TemporaryFile::create(target, Naming::atOnce).has_value());
    EXPECT_TRUE(std::filesystem::is_directory(name));
}

TEST_F(TemporaryFileTest, HasANameForTargetsOfAnyName) {
    for (const std::string& name : {std::string(255, 'x'), std::string("caf\xE9"), std::string("a")}) {
        const auto path = std::filesystem::path(folder.path().toStdString()) / name;
        auto file = TemporaryFile::create(path);
        ASSERT_TRUE(file && file->giveName() && file->takePlace()) << name;
        EXPECT_TRUE(std::filesystem::remove(path)) << name;
    }
}

TEST_F(TemporaryFileTest, TellsWhyThereIsNone) {
    const auto missing = folder.filePath(QStringLiteral("no/archivo.xml")).toStdString();
    for (const Naming naming : {Naming::late, Naming::atOnce}) {
        EXPECT_EQ(TemporaryFile::create(missing, naming).error(), FileFailure::missing);
    }
}
