#include "SingleInstance.h"

#include <QFile>
#include <QFileInfo>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <cstdio>
#include <future>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

using Role = SingleInstance::Role;

class SingleInstanceTest : public testing::Test {
protected:
    SingleInstanceTest() { chmod(QFile::encodeName(m_folder.path()).constData(), 0700); }

    QString socket() const { return m_folder.filePath(QStringLiteral("socket")); }
    QString folder() const { return m_folder.path(); }

    /// A later start, which waits on a thread of its own as it does in a process of its own.
    std::future<Role> startLater(const Handover& handover, std::chrono::milliseconds patience = 20s) const {
        return std::async(std::launch::async,
                          [=, path = socket()] { return SingleInstance(path).start(handover, patience); });
    }

    static Role result(std::future<Role>& of) {
        EXPECT_TRUE(QTest::qWaitFor([&of] { return of.wait_for(0s) == std::future_status::ready; }, 30'000));
        return of.get();
    }

private:
    QTemporaryDir m_folder;
};

const Handover handover{
    .files = {QUrl(QStringLiteral("file:///a%20b/%C3%B1.xml")), QUrl(QStringLiteral("file:///%FF%00.xml"))},
    .startupToken = QByteArray("token\n\0\xFF", 8)};

} // namespace

TEST_F(SingleInstanceTest, LaterStartsHandTheirFilesToTheFirst) {
    SingleInstance first(socket());
    ASSERT_EQ(first.start({}), Role::first);
    std::vector<Handover> received;
    QObject::connect(&first, &SingleInstance::handedOver,
                     [&received](const Handover& one) { received.push_back(one); });
    for (const Handover& one : {handover, Handover{}, handover}) {
        auto later = startLater(one);
        EXPECT_EQ(result(later), Role::second);
    }
    EXPECT_TRUE(QTest::qWaitFor([&received] { return received.size() == 3; }));
    EXPECT_EQ(received, (std::vector{handover, Handover{}, handover}));
}

TEST_F(SingleInstanceTest, HandsOverThousandsOfFiles) {
    Handover many;
    for (int i = 0; i < 10'000; ++i) {
        many.files += QUrl(QStringLiteral("file:///folder/with/a/name/of/some/length/%1.xml").arg(i));
    }
    SingleInstance first(socket());
    ASSERT_EQ(first.start({}), Role::first);
    Handover received;
    QObject::connect(&first, &SingleInstance::handedOver,
                     [&received](const Handover& one) { received = one; });
    auto later = startLater(many);
    EXPECT_EQ(result(later), Role::second);
    EXPECT_TRUE(QTest::qWaitFor([&] { return received == many; }));
}

TEST_F(SingleInstanceTest, OfManyStartsAtOnceOneIsTheFirst) {
    std::vector<std::future<Role>> later;
    SingleInstance first(socket());
    ASSERT_EQ(first.start({}), Role::first);
    int received = 0;
    QObject::connect(&first, &SingleInstance::handedOver, [&received] { ++received; });
    for (int i = 0; i < 12; ++i) {
        later.push_back(startLater(handover));
    }
    for (auto& one : later) {
        EXPECT_EQ(result(one), Role::second);
    }
    EXPECT_TRUE(QTest::qWaitFor([&received] { return received == 12; }));
}

TEST_F(SingleInstanceTest, ASocketLeftBehindHindersNobody) {
    {
        QLocalServer crashed;
        ASSERT_TRUE(crashed.listen(socket()));
        ASSERT_EQ(link(QFile::encodeName(socket()).constData(),
                       QFile::encodeName(socket() + QStringLiteral("2")).constData()),
                  0);
    }
    ASSERT_EQ(rename(QFile::encodeName(socket() + QStringLiteral("2")).constData(),
                     QFile::encodeName(socket()).constData()),
              0);
    SingleInstance first(socket());
    ASSERT_EQ(first.start({}), Role::first);
    auto later = startLater(handover);
    EXPECT_EQ(result(later), Role::second);
}

TEST_F(SingleInstanceTest, TheNextIsTheFirstWhenTheFirstHasEnded) {
    {
        SingleInstance first(socket());
        ASSERT_EQ(first.start({}), Role::first);
    }
    SingleInstance next(socket());
    EXPECT_EQ(next.start({}), Role::first);
}

TEST_F(SingleInstanceTest, GoesOnAloneWhenTheFirstHangs) {
    SingleInstance first(socket());
    ASSERT_EQ(first.start({}), Role::first);
    QSignalSpy handovers(&first, &SingleInstance::handedOver);
    // Nobody runs the first one's event loop meanwhile.
    auto later = startLater(handover, 100ms);
    EXPECT_EQ(later.get(), Role::alone);
    // When it comes to itself, it does not open what the other one has opened.
    auto last = startLater({});
    EXPECT_EQ(result(last), Role::second);
    ASSERT_TRUE(QTest::qWaitFor([&handovers] { return handovers.size() == 1; }));
    EXPECT_EQ(handovers[0][0].value<Handover>(), Handover{});
}

TEST_F(SingleInstanceTest, GoesOnAloneWhenTheFirstNeverListens) {
    const auto lock = FileLock::take(socket() + QStringLiteral(".lock"));
    ASSERT_TRUE(lock && *lock);
    EXPECT_EQ(SingleInstance(socket()).start(handover, 100ms), Role::alone);
}

TEST_F(SingleInstanceTest, TrustsAFolderOfItsOwnOnly) {
    for (const mode_t mode : {0755u, 0770u, 0701u}) {
        ASSERT_EQ(chmod(QFile::encodeName(folder()).constData(), mode), 0);
        EXPECT_EQ(SingleInstance(socket()).start({}), Role::alone) << std::oct << mode;
    }
    ASSERT_EQ(chmod(QFile::encodeName(folder()).constData(), 0700), 0);
    EXPECT_EQ(SingleInstance(QString()).start({}), Role::alone);
    EXPECT_EQ(SingleInstance(folder() + QStringLiteral("/none/socket")).start({}), Role::alone);
    if (geteuid() == 0) {
        ASSERT_EQ(chown(QFile::encodeName(folder()).constData(), 65534, -1), 0);
        EXPECT_EQ(SingleInstance(socket()).start({}), Role::alone);
    }
}

TEST_F(SingleInstanceTest, OnlyTheUserMaySpeakToIt) {
    SingleInstance first(socket());
    ASSERT_EQ(first.start({}), Role::first);
    struct stat status {};
    ASSERT_EQ(stat(QFile::encodeName(socket()).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 077, 0U);
}

TEST_F(SingleInstanceTest, HangsUpOnNonsense) {
    SingleInstance first(socket());
    ASSERT_EQ(first.start({}), Role::first);
    QSignalSpy handovers(&first, &SingleInstance::handedOver);
    const QByteArray rows[] = {
        QByteArray("\xFF\xFF\xFF\xFF", 4),
        QByteArray("\0\0\0\4none", 8),
        QByteArray("\0\0\0\5Tamo\1", 9),
        QByteArray("\0\0\0\11Tamo\2\0\0\0\0", 13),
        QByteArray("\0\0\0\15Tamo\1\xFF\xFF\xFF\xF0\0\0\0\0", 17),
        QByteArray("\0\0\0\31Tamo\1\0\0\0\1\0\0\0\10http://a\0\0\0\0", 29),
        QByteArray("\0\0\0\31Tamo\1\0\0\0\1\0\0\0\10file:a.b\0\0\0\0", 29),
    };
    for (const QByteArray& row : rows) {
        QLocalSocket socket;
        socket.connectToServer(this->socket());
        ASSERT_TRUE(socket.waitForConnected());
        socket.write(row + 'g');
        EXPECT_TRUE(QTest::qWaitFor([&] { return socket.state() == QLocalSocket::UnconnectedState; }))
            << row.toHex().constData();
    }
    EXPECT_EQ(handovers.size(), 0);
}

TEST_F(SingleInstanceTest, NamesItsSocketByTheDisplay) {
    const QByteArray before = qgetenv("DISPLAY");
    qputenv("DISPLAY", ":1");
    const QString first = SingleInstance::defaultSocket();
    EXPECT_EQ(SingleInstance::defaultSocket(), first);
    qputenv("DISPLAY", ":2");
    EXPECT_NE(SingleInstance::defaultSocket(), first);
    EXPECT_EQ(QFileInfo(SingleInstance::defaultSocket()).path(), QFileInfo(first).path());
    before.isNull() ? qunsetenv("DISPLAY") : qputenv("DISPLAY", before);
}
