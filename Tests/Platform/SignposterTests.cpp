#include "Signposter.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <set>
#include <thread>

namespace {

constexpr Signposter signposter("tamo", "Parse");

class SignposterTest : public testing::Test {
protected:
    SignposterTest() {
        Signposter::takeRecords();
        Signposter::setRecording(true);
    }
    ~SignposterTest() override { Signposter::setRecording(false); }
};

TEST_F(SignposterTest, RecordsIntervalsInTheOrderOfTheirBeginning) {
    {
        const auto outer = signposter.interval("Parse");
        const auto inner = Signposter("tamo", "Highlight").interval("Highlight", "12 units");
    }
    const std::vector<Signposter::Record> records = Signposter::takeRecords();
    ASSERT_EQ(records.size(), 2);
    EXPECT_STREQ(records[0].subsystem, "tamo");
    EXPECT_STREQ(records[0].category, "Parse");
    EXPECT_STREQ(records[0].name, "Parse");
    EXPECT_EQ(records[0].message, "");
    EXPECT_STREQ(records[1].category, "Highlight");
    EXPECT_EQ(records[1].message, "12 units");
    EXPECT_LE(records[0].begin, records[1].begin);
    EXPECT_GE(records[0].begin + records[0].duration, records[1].begin + records[1].duration);
    EXPECT_TRUE(Signposter::takeRecords().empty());
}

TEST_F(SignposterTest, RecordsNothingThatBeganBeforeItWasAsked) {
    Signposter::setRecording(false);
    {
        const auto interval = signposter.interval("Parse");
        Signposter::setRecording(true);
    }
    EXPECT_TRUE(Signposter::takeRecords().empty());
}

TEST_F(SignposterTest, KeepsWhatSeveralThreadsRecord) {
    constexpr int threadCount = 4;
    constexpr int intervalCount = 1000;
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([] {
            for (int j = 0; j < intervalCount; ++j) {
                const auto interval = signposter.interval("Parse", std::to_string(j));
            }
        });
    }
    std::size_t taken = Signposter::takeRecords().size();
    for (std::thread& thread : threads) {
        thread.join();
    }
    taken += Signposter::takeRecords().size();
    EXPECT_EQ(taken, threadCount * intervalCount);
}

TEST_F(SignposterTest, TellsThreadsApart) {
    {
        const auto here = signposter.interval("Parse");
    }
    std::thread([] { const auto there = signposter.interval("Parse"); }).join();
    std::set<std::uint64_t> threads;
    for (const Signposter::Record& record : Signposter::takeRecords()) {
        threads.insert(record.thread);
    }
    EXPECT_EQ(threads.size(), 2);
}

TEST_F(SignposterTest, WritesATrace) {
    const Signposter::Record record = {
        .subsystem = "tamo",
        .category = "Highlight",
        .name = "Highlight",
        .message = "12 \"units\"",
        .begin = std::chrono::steady_clock::time_point(std::chrono::milliseconds(5)),
        .duration = std::chrono::microseconds(7),
        .thread = 3};
    const QJsonObject trace = QJsonDocument::fromJson(Signposter::trace({&record, 1})).object();
    const QJsonArray events = trace.value(QStringLiteral("traceEvents")).toArray();
    ASSERT_EQ(events.size(), 1);
    const QJsonObject event = events[0].toObject();
    const QJsonObject arguments = event.value(QStringLiteral("args")).toObject();
    EXPECT_EQ(event.value(QStringLiteral("ph")).toString(), QStringLiteral("X"));
    EXPECT_EQ(event.value(QStringLiteral("name")).toString(), QStringLiteral("Highlight"));
    EXPECT_EQ(event.value(QStringLiteral("cat")).toString(), QStringLiteral("Highlight"));
    EXPECT_EQ(event.value(QStringLiteral("ts")).toDouble(), 5000);
    EXPECT_EQ(event.value(QStringLiteral("dur")).toDouble(), 7);
    EXPECT_EQ(event.value(QStringLiteral("tid")).toInt(), 3);
    EXPECT_EQ(arguments.value(QStringLiteral("subsystem")).toString(), QStringLiteral("tamo"));
    EXPECT_EQ(arguments.value(QStringLiteral("message")).toString(), QStringLiteral("12 \"units\""));
}

} // namespace
