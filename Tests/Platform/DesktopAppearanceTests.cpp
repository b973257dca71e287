#include "DesktopAppearance.h"

#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusServer>
#include <QDBusVariant>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace {

const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Settings");

/// A desktop that publishes a preference.
class Settings : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    QVariant value;

public slots:
    QDBusVariant Read(const QString& group, const QString& key) {
        EXPECT_EQ(group, QStringLiteral("org.freedesktop.appearance"));
        EXPECT_EQ(key, QStringLiteral("color-scheme"));
        // As desktops do: a variant inside the variant.
        return QDBusVariant(QVariant::fromValue(QDBusVariant(value)));
    }
};

/// The two ends of a line to a desktop, without a bus.
class DesktopAppearanceTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_server.isConnected()) << qPrintable(m_server.lastError().message());
        m_server.setAnonymousAuthenticationAllowed(true);
        QObject::connect(&m_server, &QDBusServer::newConnection, &m_server, [this](QDBusConnection end) {
            m_desktopEnd = end;
            m_desktopEnd.registerObject(path, &m_settings, QDBusConnection::ExportAllSlots);
        });
        m_end = QDBusConnection::connectToPeer(m_server.address(), QStringLiteral("appearance test"));
        ASSERT_TRUE(m_end.isConnected());
        QTRY_VERIFY(m_desktopEnd.isConnected());
    }

    void TearDown() override { QDBusConnection::disconnectFromPeer(QStringLiteral("appearance test")); }

    void publish(const QString& group, const QString& key, const QVariant& value) {
        QDBusMessage change = QDBusMessage::createSignal(path, interface, QStringLiteral("SettingChanged"));
        change.setArguments({group, key, QVariant::fromValue(QDBusVariant(value))});
        ASSERT_TRUE(m_desktopEnd.send(change));
    }

    QDBusServer m_server;
    Settings m_settings;
    QDBusConnection m_end{QString()};
    QDBusConnection m_desktopEnd{QString()};
};

} // namespace

TEST_F(DesktopAppearanceTest, AsksWhatTheDesktopPrefers) {
    const struct {
        uint value;
        std::optional<Appearance> preference;
    } rows[] = {{1, Appearance::dark}, {2, Appearance::light}};
    for (const auto& row : rows) {
        m_settings.value = row.value;
        DesktopAppearance desktop(m_end);
        EXPECT_EQ(desktop.preference(), std::nullopt);
        QSignalSpy changes(&desktop, &DesktopAppearance::preferenceChanged);
        ASSERT_TRUE(changes.wait());
        EXPECT_EQ(desktop.preference(), row.preference);
    }
}

TEST_F(DesktopAppearanceTest, FollowsTheDesktop) {
    m_settings.value = 1U;
    DesktopAppearance desktop(m_end);
    QSignalSpy changes(&desktop, &DesktopAppearance::preferenceChanged);
    ASSERT_TRUE(changes.wait());
    const struct {
        uint value;
        std::optional<Appearance> preference;
    } rows[] = {{2, Appearance::light}, {0, std::nullopt}, {1, Appearance::dark}, {77, std::nullopt}};
    for (const auto& row : rows) {
        publish(QStringLiteral("org.freedesktop.appearance"), QStringLiteral("color-scheme"), row.value);
        ASSERT_TRUE(changes.wait());
        EXPECT_EQ(desktop.preference(), row.preference) << row.value;
    }
}

TEST_F(DesktopAppearanceTest, IgnoresOtherSettings) {
    m_settings.value = 1U;
    DesktopAppearance desktop(m_end);
    QSignalSpy changes(&desktop, &DesktopAppearance::preferenceChanged);
    ASSERT_TRUE(changes.wait());
    publish(QStringLiteral("org.freedesktop.appearance"), QStringLiteral("contrast"), 2U);
    publish(QStringLiteral("org.example"), QStringLiteral("color-scheme"), 2U);
    // Messages keep their order, so the others have come once this one has.
    publish(QStringLiteral("org.freedesktop.appearance"), QStringLiteral("color-scheme"), 0U);
    ASSERT_TRUE(changes.wait());
    EXPECT_EQ(desktop.preference(), std::nullopt);
    EXPECT_EQ(changes.count(), 2);
}

TEST(DesktopAppearance, KnowsNothingWithoutABus) {
    const DesktopAppearance desktop{QDBusConnection(QStringLiteral("there is no such connection"))};
    EXPECT_EQ(desktop.preference(), std::nullopt);
}

#include "DesktopAppearanceTests.moc"
