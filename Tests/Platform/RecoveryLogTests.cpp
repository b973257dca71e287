#include "RecoveryLog.h"

#include "Random.h"
#include "RecoveryReader.h"
#include "Typist.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <sys/stat.h>

namespace {

using Kind = RecoveryReader::Failure::Kind;

const RecoveryFacts facts{.encoding = "UTF-16LE",
                          .bom = {0xFF, 0xFE},
                          .origin = std::string("/home/\xFF\n/a.xml"),
                          .version = FileIdentity{1, 2, 3, -4, 5}};

constexpr RecoveryLineage lineage{.id = 7, .serial = 3};

class RecoveryLogTest : public testing::Test {
protected:
    QString path() const { return m_folder.filePath(QStringLiteral("log")); }

    RecoveryLog create() const { return std::move(RecoveryLog::create(path(), lineage).value()); }

    QByteArray bytes() const {
        QFile file(path());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    void write(const QByteArray& bytes) const {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

    std::expected<RecoveredText, RecoveryReader::Failure> read() const {
        return RecoveryReader::read(path());
    }

    /// A log of three commits. Returns its texts, and where in the file its records are.
    struct Sample {
        qsizetype factsEnd = 0;
        std::vector<Rope> texts;
        std::vector<qsizetype> commits; ///< Where each begins.
        std::vector<qsizetype> ends;
    };
    Sample writeSample() const {
        Sample sample;
        RecoveryLog log = create();
        log.add(facts);
        RecoveryRecord::ByteString start;
        RecoveryRecord::append(RecoveryRecord::Header(), start);
        RecoveryRecord::append(facts, {}, 0, start);
        // The tail may be missing.
        sample.factsEnd = qsizetype(start.size() - RecoveryRecord::headSize);
        Rope text;
        for (const std::u16string_view units : {u"<a>", u"\xD800-\xDC00", u"ñ"}) {
            log.add(SourceRange::empty(text.size()), units);
            text = text.replaced(SourceRange::empty(text.size()), units);
            EXPECT_TRUE(log.commit({.generation = sample.texts.size()}, text.size()));
            sample.texts.push_back(text);
            constexpr qsizetype commitSize = 2 * RecoveryRecord::headSize + 16;
            sample.ends.push_back(bytes().size());
            sample.commits.push_back(sample.ends.back() - commitSize);
        }
        return sample;
    }

private:
    QTemporaryDir m_folder;
};

TEST_F(RecoveryLogTest, GivesBackWhatWasCommittedLast) {
    RecoveryLog log = create();
    log.add(facts);
    log.add(SourceRange::empty(0), u"<a>one</a>");
    ASSERT_TRUE(log.commit({.generation = 1, .selection = {2, 3}, .changed = 1000}, 10));
    const RecoveryEdit edits[]{{{3, 6}, Rope(u"\xD83D\xDE00")}, {{0, 0}, Rope(u"\xDE00")}, {{1, 2}, Rope()}};
    log.add(edits);
    ASSERT_TRUE(log.commit({.generation = 4, .selection = {1, 99}, .changed = -5}, 9));
    log.add(SourceRange::empty(0), u"never committed");
    const auto text = read();
    ASSERT_TRUE(text);
    EXPECT_EQ(text->facts, facts);
    EXPECT_EQ(text->text, Rope(u"\xDE00"
                               u"a>\xD83D\xDE00</a>"));
    EXPECT_EQ(text->moment, (RecoveryMoment{.generation = 4, .selection = {1, 9}, .changed = -5}));
    EXPECT_EQ(text->damage, RecoveryDamage::none);
    EXPECT_EQ(text->lineage, lineage);
}

TEST_F(RecoveryLogTest, KeepsEveryUnit) {
    std::u16string all;
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        all += static_cast<char16_t>(unit);
    }
    for (int doublings = 0; doublings < 5; ++doublings) {
        all += all;
    }
    RecoveryLog log = create();
    log.add(RecoveryFacts());
    const RecoveryEdit edit{{0, 0}, Rope(all)};
    log.add(std::span(&edit, 1));
    ASSERT_TRUE(log.commit({}, edit.units.size()));
    const auto text = read();
    ASSERT_TRUE(text);
    EXPECT_EQ(text->text, edit.units);
    EXPECT_EQ(text->facts, RecoveryFacts());
}

TEST_F(RecoveryLogTest, IsForTheUserOnly) {
    create();
    struct stat status {};
    ASSERT_EQ(stat(QFile::encodeName(path()).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
}

TEST_F(RecoveryLogTest, NeverTakesTheNameOfAnotherFile) {
    write("precious");
    EXPECT_FALSE(RecoveryLog::create(path(), lineage));
    EXPECT_EQ(bytes(), "precious");
}

TEST_F(RecoveryLogTest, CutAnywhereItGivesTheLastWholeCommit) {
    const Sample sample = writeSample();
    const QByteArray whole = bytes();
    for (qsizetype size = 0; size <= whole.size(); ++size) {
        write(whole.first(size));
        const auto text = read();
        // The head of a commit is enough: all that it makes count stands before it.
        const auto commits = std::ranges::count_if(sample.commits, [size](qsizetype at) {
            return at + qsizetype(RecoveryRecord::headSize) <= size;
        });
        if (commits > 0) {
            ASSERT_TRUE(text) << size;
            EXPECT_EQ(text->text, sample.texts[commits - 1]) << size;
            EXPECT_EQ(text->damage, RecoveryDamage::none) << size;
        } else if (text) {
            EXPECT_EQ(text->damage, RecoveryDamage::cutOff) << size;
            EXPECT_EQ(text->text, sample.texts[0].part({0, text->text.size()})) << size;
        } else {
            EXPECT_EQ(text.error().kind, size < sample.factsEnd ? Kind::empty : Kind::unfinished) << size;
        }
    }
}

TEST_F(RecoveryLogTest, IsNotFooledByWhatAnotherLogLeftOnTheDisk) {
    writeSample();
    const QByteArray first = bytes();
    QFile::remove(path());
    const Sample sample = writeSample();
    write(bytes().first(sample.ends[0]) + first.sliced(sample.ends[0]));
    const auto text = read();
    ASSERT_TRUE(text);
    EXPECT_EQ(text->text, sample.texts[0]);
    EXPECT_EQ(text->damage, RecoveryDamage::damaged);
}

TEST_F(RecoveryLogTest, TellsWhyThereIsNoText) {
    EXPECT_EQ(read().error().kind, Kind::unreadable);
    EXPECT_EQ(read().error().cause, FileFailure::missing);
    const std::pair<QByteArray, Kind> rows[] = {
        {"", Kind::empty},
        {"TamoRec", Kind::empty},
        {"TamoRec2", Kind::empty},
        {"TamoRec2saltsalt", Kind::empty},
        {QByteArray("TamoRec2saltsalt") + QByteArray(100, '\0'), Kind::damaged},
        {"TamoRec1", Kind::empty},
        {"TamoRec1saltsalt", Kind::empty},
        {"TamoRec1saltsaltrec", Kind::damaged},
        {QByteArray("TamoRec1saltsalt") + QByteArray(100, '\0'), Kind::damaged},
        {"TamoRec3saltsalt", Kind::newer},
        {"TamoRec9", Kind::newer},
        {"Tami", Kind::damaged},
        {"<?xml version=\"1.0\"?>", Kind::damaged},
    };
    for (const auto& [contents, kind] : rows) {
        write(contents);
        EXPECT_EQ(read().error().kind, kind) << contents.constData();
    }
}

TEST_F(RecoveryLogTest, GivesTheStartOfATextThatWasNeverWrittenWhole) {
    RecoveryLog log = create();
    log.add(facts);
    const RecoveryEdit edit{{}, Rope(std::u16string(std::size_t{1} << 21, u'x'))};
    log.add(std::span(&edit, 1));
    const auto text = read();
    ASSERT_TRUE(text);
    EXPECT_EQ(text->damage, RecoveryDamage::cutOff);
    EXPECT_EQ(text->facts, facts);
    EXPECT_GT(text->text.size(), Offset{1} << 20);
    EXPECT_EQ(text->text, edit.units.part({0, text->text.size()}));
}

TEST_F(RecoveryLogTest, StillReadsTheFirstForm) {
    // Written by the program's first version: "<a>one</a>", then "one" became "two", then a commit was cut
    // off.
    QFile sample(QStringLiteral(TAMO_SOURCE_DIR "/Tests/Platform/first-recovery-log.bin"));
    ASSERT_TRUE(sample.open(QIODevice::ReadOnly));
    const QByteArray whole = sample.readAll();
    write(whole);
    const auto text = read();
    ASSERT_TRUE(text);
    EXPECT_EQ(text->text, Rope(u"<a>two</a>"));
    EXPECT_EQ(text->facts, facts);
    EXPECT_EQ(text->moment, (RecoveryMoment{.generation = 2, .selection = {1, 9}, .changed = 2000}));
    EXPECT_EQ(text->lineage, RecoveryLineage());
    EXPECT_EQ(text->damage, RecoveryDamage::none);
    // Where something follows that cannot be read, it may have been cut off or damaged.
    for (const QByteArray& end : {whole.last(20), QByteArray(100, '\0'), QByteArray("x")}) {
        write(whole + end);
        EXPECT_EQ(read()->text, Rope(u"<a>two</a>"));
        EXPECT_EQ(read()->damage, RecoveryDamage::damaged);
    }
    for (qsizetype size = 17; size < whole.size(); ++size) {
        write(whole.first(size));
        EXPECT_TRUE(read() || read().error().kind == Kind::damaged) << size;
    }
}

TEST_F(RecoveryLogTest, AFailedCommitLeavesRoomForTheNext) {
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    RecoveryLog log = create();
    log.add(SourceRange::empty(0), u"kept");
    ASSERT_TRUE(log.commit({.generation = 1}, 4));
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    // Some of the next commit still fits.
    const rlimit small{.rlim_cur = log.size() + 20, .rlim_max = limit.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    log.add(SourceRange::empty(4), u" and too much");
    const auto failure = log.commit({.generation = 2}, 17);
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, handler);
    ASSERT_FALSE(failure);
    EXPECT_EQ(failure.error(), FileFailure::tooLarge);
    EXPECT_EQ(read()->text, Rope(u"kept"));
    ASSERT_TRUE(log.isUsable());
    log.add(SourceRange::empty(4), u" well");
    ASSERT_TRUE(log.commit({.generation = 3}, 9));
    EXPECT_EQ(read()->text, Rope(u"kept well"));
    EXPECT_EQ(read()->damage, RecoveryDamage::none);
}

TEST_F(RecoveryLogTest, FollowsAnyEdits) {
    Random random;
    TextStorage storage((Rope()));
    RecoveryLog log = create();
    std::vector<RecoveryEdit> edits;
    QObject::connect(&storage, &TextStorage::editProcessed, [&](SourceRange range, std::int64_t change) {
        edits.push_back({{range.lower, range.upper - change}, storage.text().part(range)});
    });
    Typist typist(random.below(1'000'000));
    for (int i = 0; i < 2000; ++i) {
        typist.change(storage);
        if (random.below(10) == 0) {
            log.add(edits);
            edits.clear();
            ASSERT_TRUE(log.commit({}, storage.text().size()));
            if (random.below(20) == 0) {
                ASSERT_EQ(read()->text, storage.text());
            }
        }
    }
}

} // namespace
