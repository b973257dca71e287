#include "RecoveryScan.h"
#include "RecoveryStore.h"

#include "Random.h"
#include "RecoveryLog.h"

#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <vector>

namespace {

using RecoveryRecord::headersSize;
using RecoveryRecord::headSize;

constexpr Offset pieceUnits = RecoveryRecord::longestReplacement;

/// A log with its text, and where its records are.
struct Sample {
    QByteArray log;
    std::u16string text;
    std::vector<std::pair<qsizetype, qsizetype>> records; ///< Start and end in the log.
    qsizetype firstCommit = 0;                            ///< Where the head of the first commit ends.
    qsizetype factsEnd = 0;                               ///< Where the payload of the facts ends.
};

/// Some words with characters of one to four bytes.
std::u16string words(Random& random, std::size_t count) {
    static constexpr std::array words{u"<a>", u"texto ", u"año ", u"日本", u"\xD83D\xDE00", u"\n"};
    std::u16string text;
    while (count-- > 0) {
        text += words[random.below(words.size())];
    }
    return text;
}

void addCommit(RecoveryLog& log, std::uint64_t generation, const std::u16string& text) {
    const auto size = static_cast<Offset>(text.size());
    EXPECT_TRUE(
        log.commit({.generation = generation, .selection = SourceRange::empty(size), .changed = 1000}, size));
}

/// A log with a text, of several pieces if `isLong`, and some changes in it.
Sample sample(Random& random, const QString& path, bool isLong) {
    Sample result;
    QFile::remove(path);
    RecoveryLog log = std::move(RecoveryLog::create(path, {.id = 1, .serial = 1}).value());
    log.add({.encoding = "UTF-8", .origin = "/home/a.xml"});
    result.text = words(random, isLong ? 50'000 : 50);
    const RecoveryEdit whole{{}, Rope(result.text)};
    log.add(std::span(&whole, 1));
    addCommit(log, 0, result.text);
    for (std::uint64_t generation = 1; generation <= 10; ++generation) {
        const auto at = static_cast<Offset>(random.below(result.text.size()));
        const auto length =
            static_cast<Offset>(random.below(std::min<std::size_t>(5, result.text.size() - at)));
        const std::u16string units = words(random, random.below(4));
        log.add(SourceRange::at(at, length), units);
        result.text.replace(at, length, units);
        addCommit(log, generation, result.text);
    }
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    result.log = file.readAll();
    const auto scan = RecoveryScan::of(bytesOf(std::string_view(result.log.constData(), result.log.size())));
    auto end = static_cast<qsizetype>(headersSize);
    for (const RecoveryScan::Record& record : scan.value().records) {
        const qsizetype start = end;
        end += static_cast<qsizetype>(2 * headSize + record.payload.size());
        result.records.emplace_back(start, end);
        if (record.head.kind == RecoveryRecord::Kind::commit && result.firstCommit == 0) {
            result.firstCommit = start + static_cast<qsizetype>(headSize);
        }
    }
    result.factsEnd = result.records.front().second - static_cast<qsizetype>(headSize);
    EXPECT_EQ(end, result.log.size());
    return result;
}

/// How many units of the texts differ, at the same places.
std::size_t difference(const Rope& text, const std::u16string& from) {
    const std::u16string units = text.units({0, text.size()});
    std::size_t count = std::max(units.size(), from.size()) - std::min(units.size(), from.size());
    for (std::size_t i = 0; i < std::min(units.size(), from.size()); ++i) {
        count += units[i] != from[i] ? 1 : 0;
    }
    return count;
}

/// What a start of the program finds where a run left `log`.
class Folder {
public:
    explicit Folder(const QByteArray& log) {
        const QString run = m_folder.filePath(QStringLiteral("run-1"));
        EXPECT_TRUE(QDir().mkpath(run));
        QFile file(run + QStringLiteral("/text-1.log"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(log), log.size());
        file.close();
        RecoveryStore store(m_folder.path());
        const Recoverables left = store.recoverable();
        setAside = left.setAside.size();
        if (left.documents.size() == 1) {
            text = store.take(left.documents.front().id);
        }
        EXPECT_LE(left.documents.size(), 1U);
    }

    /// Whether the bytes `log` are in some file.
    bool has(const QByteArray& log) const {
        for (QDirIterator all(m_folder.path(), QDir::Files, QDirIterator::Subdirectories); all.hasNext();) {
            QFile file(all.next());
            if (file.open(QIODevice::ReadOnly) && file.readAll() == log) {
                return true;
            }
        }
        return false;
    }

    std::optional<RecoveredText> text;
    qsizetype setAside = 0;

private:
    QTemporaryDir m_folder;
};

void flip(QByteArray& log, qsizetype at, Random& random) {
    log[at] = static_cast<char>(log[at] ^ (1 << random.below(8)));
}

/// A way to damage a log, and how many units of its text that may cost; all of them if absent.
struct Damage {
    std::string name;
    std::function<QByteArray(const Sample&, Random&)> damaged;
    std::optional<std::size_t> mostLost;
};

/// One bit of a field of any record, `from` bytes behind its start.
Damage flippedHeadField(const std::string& name, qsizetype from, qsizetype size) {
    return {"a bit of " + name,
            [from, size](const Sample& sample, Random& random) {
                QByteArray log = sample.log;
                const auto& record = sample.records[random.below(sample.records.size())];
                flip(log, record.first + from + qsizetype(random.below(std::size_t(size))), random);
                return log;
            },
            0};
}

std::vector<Damage> damages() {
    const auto anyRecord = [](const Sample& sample, Random& random) {
        return sample.records[random.below(sample.records.size())];
    };
    std::vector<Damage> list{flippedHeadField("a kind", 0, 4),
                             flippedHeadField("a length", 4, 4),
                             flippedHeadField("a batch", 8, 4),
                             flippedHeadField("a number", 12, 4),
                             flippedHeadField("a range", 16, 8),
                             flippedHeadField("a count of units", 24, 4),
                             flippedHeadField("a payload's checksum", 28, 8),
                             flippedHeadField("a head's checksum", 36, 8)};
    list.push_back({"a bit of the headers",
                    [](const Sample& sample, Random& random) {
                        QByteArray log = sample.log;
                        flip(log, qsizetype(random.below(headersSize)), random);
                        return log;
                    },
                    0});
    list.push_back({"a bit of a payload or tail",
                    [=](const Sample& sample, Random& random) {
                        QByteArray log = sample.log;
                        const auto [start, end] = anyRecord(sample, random);
                        const qsizetype payload = start + qsizetype(headSize);
                        flip(log, payload + qsizetype(random.below(std::size_t(end - payload))), random);
                        return log;
                    },
                    4});
    list.push_back({"a whole head",
                    [=](const Sample& sample, Random& random) {
                        QByteArray log = sample.log;
                        return log.replace(anyRecord(sample, random).first, headSize,
                                           QByteArray(headSize, '\xAA'));
                    },
                    0});
    list.push_back({"a record that stands twice",
                    [=](const Sample& sample, Random& random) {
                        const auto [start, end] = anyRecord(sample, random);
                        QByteArray log = sample.log;
                        return log.insert(end, sample.log.sliced(start, end - start));
                    },
                    0});
    list.push_back({"two records swapped",
                    [](const Sample& sample, Random& random) {
                        const std::size_t first = random.below(sample.records.size() - 1);
                        const auto [start, middle] = sample.records[first];
                        const qsizetype end = sample.records[first + 1].second;
                        return sample.log.first(start) + sample.log.sliced(middle, end - middle) +
                               sample.log.sliced(start, middle - start) + sample.log.sliced(end);
                    },
                    0});
    list.push_back({"a stretch of zeros",
                    [](const Sample& sample, Random& random) {
                        QByteArray log = sample.log;
                        const qsizetype size = std::min<qsizetype>(512, log.size());
                        return log.replace(qsizetype(random.below(std::size_t(log.size() - size + 1))), size,
                                           QByteArray(size, '\0'));
                    },
                    std::nullopt});
    list.push_back({"a stretch that is missing",
                    [](const Sample& sample, Random& random) {
                        QByteArray log = sample.log;
                        return log.remove(qsizetype(random.below(std::size_t(log.size() - 40))),
                                          qsizetype(1 + random.below(30)));
                    },
                    std::nullopt});
    list.push_back({"random bytes put in",
                    [](const Sample& sample, Random& random) {
                        QByteArray log = sample.log;
                        return log.insert(qsizetype(random.below(std::size_t(log.size()))),
                                          QByteArray(qsizetype(1 + random.below(60)), 'x'));
                    },
                    std::nullopt});
    return list;
}

class RecoveryDamageTest : public testing::Test {
protected:
    QString path() const { return m_folder.filePath(QStringLiteral("log")); }

private:
    QTemporaryDir m_folder;
};

} // namespace

/// `TAMO_DAMAGES` in the environment sets how many.
TEST_F(RecoveryDamageTest, CostsNoMoreThanWhatWasDamagedAndIsToldOf) {
    const char* const wanted = std::getenv("TAMO_DAMAGES");
    const std::size_t count = wanted != nullptr ? std::strtoul(wanted, nullptr, 10) : 150;
    Random random;
    const std::vector<Damage> kinds = damages();
    std::map<std::string, std::array<int, 4>> table; // Tries, whole, with losses, without a text.
    for (std::size_t i = 0; i < count; ++i) {
        const Sample before = sample(random, path(), i % 10 == 0);
        const Damage& damage = kinds[i % kinds.size()];
        SCOPED_TRACE(damage.name + ", try " + std::to_string(i));
        const QByteArray log = damage.damaged(before, random);
        const Folder found(log);
        auto& row = table[damage.name];
        ++row[0];
        if (log == before.log) {
            ASSERT_TRUE(found.text);
            EXPECT_EQ(found.text->damage, RecoveryDamage::none);
            continue;
        }
        EXPECT_TRUE(found.has(log)) << "nothing that could not be read wholly is deleted";
        if (!found.text) {
            EXPECT_EQ(found.setAside, 1);
            EXPECT_FALSE(damage.mostLost);
            ++row[3];
            continue;
        }
        EXPECT_EQ(found.text->damage, RecoveryDamage::damaged);
        const std::size_t lost = difference(found.text->text, before.text);
        if (damage.mostLost) {
            EXPECT_LE(lost, *damage.mostLost);
        }
        ++row[lost == 0 ? 1 : 2];
    }
    std::cout << "damage: tries, whole text, text with losses, set aside\n";
    for (const auto& [name, row] : table) {
        std::cout << name << ": " << row[0] << ", " << row[1] << ", " << row[2] << ", " << row[3] << '\n';
    }
}

TEST_F(RecoveryDamageTest, ACutIsNeverTakenForAnEmptyLog) {
    Random random;
    int gone = 0;
    int cutOff = 0;
    for (int i = 0; i < 200; ++i) {
        const Sample before = sample(random, path(), false);
        const auto size = static_cast<qsizetype>(random.below(std::size_t(before.firstCommit) + 200));
        const QByteArray log = before.log.first(std::min(size, before.log.size()));
        const Folder found(log);
        if (log.size() < before.factsEnd) {
            EXPECT_FALSE(found.text);
            EXPECT_EQ(found.setAside, 0);
            ++gone;
        } else if (log.size() < before.firstCommit) {
            EXPECT_TRUE(found.has(log)) << size;
            EXPECT_TRUE(found.setAside == 1 || found.text->damage == RecoveryDamage::cutOff) << size;
            ++cutOff;
        } else {
            ASSERT_TRUE(found.text) << size;
            EXPECT_EQ(found.text->damage, RecoveryDamage::none) << size;
        }
    }
    EXPECT_GT(gone, 0);
    EXPECT_GT(cutOff, 0);
}

TEST_F(RecoveryDamageTest, APieceOfTheFirstTextIsFilledWhereItIsLost) {
    Random random;
    const Sample before = sample(random, path(), true);
    ASSERT_GT(before.text.size(), 2 * std::size_t{pieceUnits});
    const auto [start, end] = before.records[2];
    QByteArray log = before.log;
    log.replace(start, end - start, QByteArray(end - start, 'x'));
    const Folder found(log);
    ASSERT_TRUE(found.text);
    EXPECT_EQ(found.text->text.size(), before.text.size());
    EXPECT_LE(difference(found.text->text, before.text), std::size_t{pieceUnits});
    EXPECT_EQ(found.text->damage, RecoveryDamage::damaged);
}

TEST_F(RecoveryDamageTest, AnyBytesAreRead) {
    Random random;
    for (int i = 0; i < 300; ++i) {
        QByteArray log = i % 2 == 0 ? QByteArray() : sample(random, path(), false).log.first(headersSize);
        for (std::size_t size = random.below(2000); size > 0; --size) {
            log += static_cast<char>(random.below(256));
        }
        const Folder found(log);
        EXPECT_FALSE(found.text);
        EXPECT_TRUE(found.setAside == 1 || log.size() < qsizetype(headersSize + 2 * headSize));
    }
}
