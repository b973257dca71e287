#include "FileSave.h"

#include "AtomicFile.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <string>

#include <unistd.h>

namespace {

using Links = FileReplacement::Links;
using Outcome = FileSave::Outcome;

class FileSaveTest : public testing::Test {
protected:
    FileSaveTest() { put("old"); }

    void put(const std::string& text) const { std::ofstream(path.toStdString()) << text; }
    std::string contents() const {
        std::string text;
        std::ifstream(path.toStdString()) >> text;
        return text;
    }
    FileIdentity version() const { return FileIdentity::withContent(path).value(); }

    /// Writes "new", and does `meanwhile` after that, before the file is replaced.
    static Document::Write writing(std::function<void()> meanwhile = [] {}) {
        return [meanwhile = std::move(meanwhile)](
                   const QString& to, const FileReplacement& how) -> std::expected<void, WriteFailure> {
            auto file = AtomicFile::open(to, how.stop);
            if (!file) {
                return std::unexpected(WriteFailure(QStringLiteral("No se pudo.")));
            }
            file->write(bytesOf("new"));
            meanwhile();
            if (!file->commit(how)) {
                return std::unexpected(WriteFailure(QStringLiteral("No se pudo.")));
            }
            return {};
        };
    }

    FileSave save(Document::Write write = writing()) const {
        return {.path = path, .write = std::move(write), .known = version(), .gate = gate};
    }

    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.xml"));
    const std::shared_ptr<SaveGate> gate = std::make_shared<SaveGate>();
};

} // namespace

TEST_F(FileSaveTest, ReplacesTheKnownFile) {
    const auto result = save().run();
    EXPECT_EQ(result.outcome, Outcome::saved);
    EXPECT_EQ(contents(), "new");
    ASSERT_TRUE(result.version.has_value());
    EXPECT_TRUE(result.version->isUntouched(version()));
    EXPECT_FALSE(gate->isOpen());
    EXPECT_FALSE(gate->cancel()) << "it is too late";
}

TEST_F(FileSaveTest, ReplacesAFileThatWasOnlyTouched) {
    const FileSave wanted = save();
    put("old");
    EXPECT_EQ(wanted.run().outcome, Outcome::saved);
}

TEST_F(FileSaveTest, LeavesAChangedFileAlone) {
    const FileSave wanted = save();
    put("changed");
    EXPECT_EQ(wanted.run().outcome, Outcome::changed);
    EXPECT_EQ(contents(), "changed");
    FileSave unknown = save();
    unknown.known.reset();
    EXPECT_EQ(unknown.run().outcome, Outcome::changed);
    EXPECT_TRUE(gate->isOpen());
}

TEST_F(FileSaveTest, LeavesAFileAloneThatChangesMeanwhile) {
    const Document::Write write = writing([this] { put("changed"); });
    for (const bool replacesAny : {false, true}) {
        put("old");
        FileSave wanted = save(write);
        wanted.replacesAny = replacesAny;
        EXPECT_EQ(wanted.run().outcome, Outcome::changedMeanwhile);
        EXPECT_EQ(contents(), "changed");
    }
    EXPECT_TRUE(gate->isOpen());
}

TEST_F(FileSaveTest, ReplacesAnyFileWhereTheUserWantsThat) {
    FileSave wanted = save();
    put("changed");
    wanted.replacesAny = true;
    EXPECT_EQ(wanted.run().outcome, Outcome::saved);
    EXPECT_EQ(contents(), "new");
}

TEST_F(FileSaveTest, LeavesANewFileAloneThatAppearsMeanwhile) {
    ASSERT_EQ(std::remove(path.toStdString().c_str()), 0);
    FileSave wanted{
        .path = path, .write = writing([this] { put("other"); }), .replacesAny = true, .gate = gate};
    EXPECT_EQ(wanted.run().outcome, Outcome::changedMeanwhile);
    EXPECT_EQ(contents(), "other");
}

TEST_F(FileSaveTest, WritesNothingOnceItIsCancelled) {
    EXPECT_EQ(save(writing([this] { EXPECT_TRUE(gate->cancel()); })).run().outcome, Outcome::cancelled);
    EXPECT_EQ(contents(), "old");
    EXPECT_EQ(save().run().outcome, Outcome::cancelled) << "a gate is for one save";
    EXPECT_EQ(contents(), "old");
}

TEST_F(FileSaveTest, AsksAboutOtherNames) {
    ASSERT_EQ(link(path.toStdString().c_str(), (path + u'b').toStdString().c_str()), 0);
    EXPECT_EQ(save().run().outcome, Outcome::shared);
    EXPECT_EQ(contents(), "old");
    FileSave wanted = save();
    wanted.links = Links::written;
    EXPECT_EQ(wanted.run().outcome, Outcome::saved);
    EXPECT_EQ(AtomicFile::nameCount(path), 2U);
    wanted = {.path = path,
              .write = writing(),
              .known = version(),
              .links = Links::separated,
              .gate = std::make_shared<SaveGate>()};
    EXPECT_EQ(wanted.run().outcome, Outcome::saved);
    EXPECT_EQ(AtomicFile::nameCount(path), 1U);
}

TEST_F(FileSaveTest, TellsWhyItFailed) {
    FileSave wanted = save();
    wanted.path = folder.filePath(QStringLiteral("no/a.xml"));
    const auto result = wanted.run();
    EXPECT_EQ(result.outcome, Outcome::failed);
    ASSERT_TRUE(result.failure.has_value());
    EXPECT_EQ(result.failure->message, QStringLiteral("No se pudo."));
}

TEST(SaveGate, LetsTheFirstOneWin) {
    int passed = 0;
    SaveGate early;
    early.onPass = [&passed] { ++passed; };
    EXPECT_TRUE(early.isOpen());
    EXPECT_TRUE(early.cancel());
    EXPECT_TRUE(early.cancel());
    EXPECT_FALSE(early.pass());
    EXPECT_TRUE(early.stop().stop_requested());
    EXPECT_EQ(passed, 0);
    SaveGate late;
    late.onPass = [&passed] { ++passed; };
    EXPECT_TRUE(late.pass());
    EXPECT_FALSE(late.cancel());
    EXPECT_FALSE(late.stop().stop_requested());
    EXPECT_FALSE(late.isOpen());
    EXPECT_EQ(passed, 1);
}
