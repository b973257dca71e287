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

class RecoveryLogTest : public testing::Test {
protected:
    QString path() const { return m_folder.filePath(QStringLiteral("log")); }

    RecoveryLog create() const { return std::move(RecoveryLog::create(path()).value()); }

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

    /// A log of three commits; answers the texts, and where in the file each commit ended.
    struct Sample {
        std::vector<Rope> texts;
        std::vector<qsizetype> ends;
    };
    Sample writeSample() const {
        Sample sample;
        RecoveryLog log = create();
        log.add(facts);
        Rope text;
        for (const std::u16string_view units : {u"<a>", u"\xD800-\xDC00", u"ñ"}) {
            log.add(SourceRange::empty(text.size()), units);
            text = text.replaced(SourceRange::empty(text.size()), units);
            EXPECT_TRUE(log.commit({.generation = sample.texts.size()}, text.size()));
            sample.texts.push_back(text);
            sample.ends.push_back(bytes().size());
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
    EXPECT_FALSE(text->isDamaged);
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
    EXPECT_FALSE(RecoveryLog::create(path()));
    EXPECT_EQ(bytes(), "precious");
}

TEST_F(RecoveryLogTest, CutAnywhereItGivesTheLastWholeCommit) {
    const Sample sample = writeSample();
    const QByteArray whole = bytes();
    for (qsizetype size = 0; size <= whole.size(); ++size) {
        write(whole.first(size));
        const auto text = read();
        const auto commits =
            std::ranges::count_if(sample.ends, [size](qsizetype end) { return end <= size; });
        ASSERT_EQ(text.has_value(), commits > 0) << size;
        if (text) {
            EXPECT_EQ(text->text, sample.texts[commits - 1]) << size;
            EXPECT_FALSE(text->isDamaged) << size;
        } else {
            EXPECT_TRUE(text.error().kind == Kind::empty || text.error().kind == Kind::unfinished) << size;
        }
    }
}

TEST_F(RecoveryLogTest, ADamagedByteCostsWhatFollowsItAndIsToldOf) {
    const Sample sample = writeSample();
    const QByteArray whole = bytes();
    for (qsizetype at = 0; at < whole.size(); ++at) {
        for (const int bit : {0x01, 0x80}) {
            QByteArray damaged = whole;
            damaged[at] = static_cast<char>(damaged[at] ^ bit);
            write(damaged);
            const auto text = read();
            const auto commits =
                std::ranges::count_if(sample.ends, [at](qsizetype end) { return end <= at; });
            ASSERT_EQ(text.has_value(), commits > 0) << at;
            if (text) {
                EXPECT_EQ(text->text, sample.texts[commits - 1]) << at;
            }
        }
    }
    QByteArray damaged = whole;
    damaged.back() = '!';
    write(damaged);
    EXPECT_TRUE(read()->isDamaged);
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
    EXPECT_TRUE(text->isDamaged);
}

TEST_F(RecoveryLogTest, TellsWhyThereIsNoText) {
    EXPECT_EQ(read().error().kind, Kind::unreadable);
    EXPECT_EQ(read().error().cause, FileFailure::missing);
    const std::pair<QByteArray, Kind> rows[] = {
        {"", Kind::empty},
        {"TamoRec1", Kind::empty},
        {"TamoRec1saltsalt", Kind::empty},
        {"TamoRec1saltsaltrec", Kind::empty},
        {"TamoRec9saltsalt", Kind::damaged},
        {"Tami", Kind::damaged},
        {"<?xml version=\"1.0\"?>", Kind::damaged},
        {QByteArray("TamoRec1saltsalt") + QByteArray(100, '\0'), Kind::damaged},
        {QByteArray("TamoRec1saltsalt") + QByteArray(100, '\xFF'), Kind::damaged},
    };
    for (const auto& [contents, kind] : rows) {
        write(contents);
        EXPECT_EQ(read().error().kind, kind) << contents.constData();
    }
    QFile::remove(path());
    RecoveryLog log = create();
    const RecoveryEdit edit{{}, Rope(std::u16string(std::size_t{1} << 21, u'x'))};
    log.add(std::span(&edit, 1));
    EXPECT_EQ(read().error().kind, Kind::unfinished);
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
    EXPECT_FALSE(read()->isDamaged);
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
