#include "ReparseScheduler.h"

#include "MemoryLimit.h"
#include "Repeated.h"
#include "Signposter.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QThread>
#include <QThreadPool>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace std::chrono_literals;

/// Runs the event loop until `isDone`; the deadline only keeps a failing test from hanging.
template <class IsDone>
bool runUntil(IsDone isDone) {
    const QDeadlineTimer deadline(60s);
    while (!isDone() && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return isDone();
}

/// Runs the event loop until a parse that is scheduled now by another scheduler is delivered: whatever was
/// ready before it has been delivered too.
void settle() {
    ReparseScheduler other;
    bool isDelivered = false;
    QThreadPool::globalInstance()->waitForDone();
    other.schedule(
        0ms, [] { return ReparseScheduler::Snapshot(); }, [&](const auto&) { isDelivered = true; });
    EXPECT_TRUE(runUntil([&] { return isDelivered; }));
}

/// A scheduler, and what it asked for and delivered.
class Session {
public:
    void schedule(std::chrono::milliseconds delay, std::u16string_view text) {
        scheduler->schedule(
            delay,
            [this, text = Rope(text)] {
                snapshots.push_back(text.units(text.fullRange()));
                if (whileParsing) {
                    // Posted before the parse begins, so that it runs before the result arrives.
                    QMetaObject::invokeMethod(qApp, std::exchange(whileParsing, nullptr),
                                              Qt::QueuedConnection);
                }
                return ReparseScheduler::Snapshot{text, static_cast<std::int64_t>(snapshots.size())};
            },
            [this](ReparseScheduler::Result result) {
                EXPECT_EQ(QThread::currentThread(), scheduler->thread());
                delivered.push_back(result.document->tree.text.string());
                last = std::move(result);
            });
    }

    std::function<void()> whileParsing; ///< Run once, between the next snapshot and the arrival of its tree.
    std::unique_ptr<ReparseScheduler> scheduler = std::make_unique<ReparseScheduler>();
    std::vector<std::u16string> snapshots;
    std::vector<std::u16string> delivered;
    std::optional<ReparseScheduler::Result> last;
};

using Texts = std::vector<std::u16string>;

TEST(ReparseScheduler, DeliversTheTreeWithWhatDerivesFromTheText) {
    Session session;
    session.schedule(0ms, u"<a>\n\t<b/>\n\t<c/>\n</a>");
    EXPECT_TRUE(session.snapshots.empty());
    ASSERT_TRUE(runUntil([&] { return !session.delivered.empty(); }));
    EXPECT_EQ(session.last->document->tree.attributes.size(), 0);
    ASSERT_TRUE(session.last->document->tree.rootElement().has_value());
    EXPECT_EQ(session.last->document->tree.name(*session.last->document->tree.rootElement()), u"a");
    EXPECT_EQ(session.last->document->lines.starts, (std::vector<Offset>{0, 4, 10, 16}));
    EXPECT_EQ(session.last->document->indent, IndentStyle::tabs());
    EXPECT_EQ(session.last->document->generation, 1);
}

TEST(ReparseScheduler, DeliversTheSameOfALongText) {
    const std::u16string line = u"<é a='b'>x</é>\n";
    constexpr std::size_t lines = 300'000;
    const std::u16string text = u"<r>\n" + repeated(line, lines) + u"</r>";
    Session session;
    // First with fresh memory, beside the first tree again, and then with the memory of the first.
    for (std::size_t round = 1; round <= 3; ++round) {
        session.schedule(0ms, text);
        ASSERT_TRUE(runUntil([&] { return session.delivered.size() == round; }));
        const ParsedDocument& document = *session.last->document;
        EXPECT_EQ(document.tree.nodes.size(), 2 + 2 * lines);
        EXPECT_EQ(document.tree.attributes.size(), lines);
        EXPECT_TRUE(document.tree.diagnostics.empty());
        EXPECT_EQ(document.lines.lineCount(), lines + 2);
        EXPECT_EQ(document.byteCount, text.size() + 2 * lines);
        if (round == 2) {
            session.scheduler->recycle(std::move(*session.last));
        }
    }
}

TEST(ReparseScheduler, ParsesOnlyTheLastOfABurst) {
    Session session;
    session.schedule(120ms, u"<first/>");
    QThread::msleep(50);
    QCoreApplication::processEvents();
    session.schedule(120ms, u"<second/>");
    ASSERT_TRUE(runUntil([&] { return !session.delivered.empty(); }));
    settle();
    EXPECT_EQ(session.snapshots, Texts{u"<second/>"});
    EXPECT_EQ(session.delivered, Texts{u"<second/>"});
}

TEST(ReparseScheduler, LetsARequestWithoutDelayCancelASleepingOne) {
    Session session;
    session.schedule(50ms, u"<sleeping/>");
    session.schedule(0ms, u"<now/>");
    ASSERT_TRUE(runUntil([&] { return !session.delivered.empty(); }));
    QThread::msleep(60);
    QCoreApplication::processEvents();
    settle();
    EXPECT_EQ(session.snapshots, Texts{u"<now/>"});
    EXPECT_EQ(session.delivered, Texts{u"<now/>"});
}

TEST(ReparseScheduler, DiscardsAFinishedResultThatWasOvertaken) {
    for (const std::u16string_view newer : {u"<newer/>", u"<older/>"}) {
        Session session;
        session.whileParsing = [&] {
            QThreadPool::globalInstance()->waitForDone();
            session.schedule(0ms, newer);
        };
        session.schedule(0ms, u"<older/>");
        ASSERT_TRUE(runUntil([&] { return !session.delivered.empty(); }));
        settle();
        EXPECT_EQ(session.delivered, Texts{std::u16string(newer)});
        EXPECT_EQ(session.last->document->generation, 2);
    }
}

TEST(ReparseScheduler, WaitsForACancelledParseWithTheNext) {
    Session session;
    std::u16string large;
    for (int i = 0; i < 300'000; ++i) {
        large += u"<a b='c'>";
    }
    session.whileParsing = [&] { session.schedule(0ms, u"<small/>"); };
    session.schedule(0ms, large);
    ASSERT_TRUE(runUntil([&] { return !session.delivered.empty(); }));
    settle();
    EXPECT_EQ(session.delivered, Texts{u"<small/>"});
}

TEST(ReparseScheduler, DeliversNothingOnceItIsGone) {
    Session sleeping;
    sleeping.schedule(0ms, u"<a/>");
    sleeping.scheduler.reset();
    settle();
    EXPECT_TRUE(sleeping.snapshots.empty());

    Session parsing;
    parsing.whileParsing = [&] { parsing.scheduler.reset(); };
    parsing.schedule(0ms, u"<a/>");
    ASSERT_TRUE(runUntil([&] { return parsing.scheduler == nullptr; }));
    settle();
    EXPECT_EQ(parsing.snapshots.size(), 1);
    EXPECT_TRUE(parsing.delivered.empty());
}

TEST(ReparseScheduler, MayBeScheduledOrDestroyedByADelivery) {
    auto scheduler = std::make_unique<ReparseScheduler>();
    int deliveries = 0;
    const auto snapshot = [] { return ReparseScheduler::Snapshot{Rope(u"<a/>"), 0}; };
    scheduler->schedule(0ms, snapshot, [&](const auto&) {
        ++deliveries;
        scheduler->schedule(0ms, snapshot, [&](const auto&) {
            ++deliveries;
            scheduler.reset();
        });
    });
    ASSERT_TRUE(runUntil([&] { return scheduler == nullptr; }));
    EXPECT_EQ(deliveries, 2);
}

TEST(ReparseScheduler, UsesOldTreesAgain) {
    Session session;
    std::u16string text = u"<root>";
    for (int i = 0; i < 1000; ++i) {
        text += u"<child name='value'/>text";
    }
    text += u"</root>";
    session.schedule(0ms, text);
    ASSERT_TRUE(runUntil([&] { return session.delivered.size() == 1; }));
    const std::size_t nodes = session.last->document->tree.nodes.size();
    const void* const storage = session.last->document->tree.nodes.data();
    session.scheduler->recycle(std::move(*session.last));
    session.schedule(0ms, text);
    ASSERT_TRUE(runUntil([&] { return session.delivered.size() == 2; }));
    EXPECT_EQ(session.last->document->tree.nodes.size(), nodes);
    EXPECT_EQ(session.last->document->tree.nodes.data(), storage);
    EXPECT_EQ(session.delivered[1], text);
}

/// Without room for the tree, of 52 bytes a unit, of the densest markup.
constexpr std::size_t tooLittle = std::size_t{32} << 20;

TEST(ReparseScheduler, DeliversNoDocumentWhereTheMemoryIsTooShort) {
    const Rope dense(repeated(u"<a ", 1'000'000));
    ReparseScheduler scheduler;
    const auto snapshot = [&] { return ReparseScheduler::Snapshot{dense, 1}; };
    std::optional<ReparseScheduler::Result> delivered;
    const auto deliver = [&](ReparseScheduler::Result result) { delivered = std::move(result); };
    {
        const MemoryLimit limit(tooLittle);
        scheduler.schedule(0ms, snapshot, deliver);
        ASSERT_TRUE(runUntil([&] { return delivered.has_value(); }));
        EXPECT_EQ(delivered->document, nullptr);
        const auto now = scheduler.parseNow(snapshot(), [](const auto& parse) { parse(); });
        EXPECT_EQ(now.document, nullptr);
        scheduler.recycle(std::move(*delivered));
    }
    delivered.reset();
    scheduler.schedule(0ms, snapshot, deliver);
    ASSERT_TRUE(runUntil([&] { return delivered.has_value(); }));
    ASSERT_NE(delivered->document, nullptr);
    EXPECT_EQ(delivered->document->tree.nodes.size(), 1'000'001);
}

TEST(ReparseScheduler, HandsOverTheTextThatItHadToCopy) {
    const std::u16string units = repeated(u"<a>some text</a>\n", 300'000);
    const Rope whole(units);
    const Rope edited = whole.replaced({5, 6}, u"S");
    ReparseScheduler scheduler;
    std::vector<std::pair<Rope, std::int64_t>> moved;
    scheduler.setOnMove([&](const Rope& same, std::int64_t generation) { moved.emplace_back(same, generation); });
    for (const Rope& text : {whole, edited}) {
        std::optional<ReparseScheduler::Result> delivered;
        scheduler.schedule(
            0ms, [&] { return ReparseScheduler::Snapshot{text, 7}; },
            [&](ReparseScheduler::Result result) { delivered = std::move(result); });
        ASSERT_TRUE(runUntil([&] { return delivered.has_value(); }));
        if (!moved.empty()) {
            EXPECT_EQ(moved.front().first.contiguous().units().data(),
                      delivered->document->tree.text.units().data());
        }
    }
    ASSERT_EQ(moved.size(), 1);
    EXPECT_EQ(moved.front().first, edited);
    EXPECT_EQ(moved.front().second, 7);
}

TEST(ReparseScheduler, FreesWhatItKeepsForTheNextParseAfterARest) {
    Session session;
    session.schedule(0ms, u"<a/>");
    ASSERT_TRUE(runUntil([&] { return !session.delivered.empty(); }));
    const std::weak_ptr<ParsedDocument> old = session.last->document;
    session.scheduler->recycle(std::move(*session.last));
    EXPECT_FALSE(old.expired());
    EXPECT_TRUE(runUntil([&] { return old.expired(); }));
}

TEST(ReparseScheduler, MarksEachParse) {
    Signposter::takeRecords();
    Signposter::setRecording(true);
    Session session;
    session.schedule(0ms, u"<a/>");
    ASSERT_TRUE(runUntil([&] { return !session.delivered.empty(); }));
    Signposter::setRecording(false);
    std::vector<Signposter::Record> records = Signposter::takeRecords();
    std::erase_if(records, [](const auto& record) { return std::string_view(record.name) != "Parse"; });
    ASSERT_EQ(records.size(), 1);
    EXPECT_STREQ(records[0].name, "Parse");
    EXPECT_STREQ(records[0].category, "Parse");
    EXPECT_STREQ(records[0].subsystem, "tamo");
}

TEST(ReparseSchedulerDeathTest, StopsOnAnotherThread) {
    EXPECT_DEATH(
        {
            ReparseScheduler scheduler;
            std::thread([&] { scheduler.schedule(0ms, nullptr, nullptr); }).join();
        },
        "on the main thread");
}

} // namespace
