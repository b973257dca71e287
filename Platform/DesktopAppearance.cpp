#include "DesktopAppearance.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QFileInfo>

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Settings");
const QString group = QStringLiteral("org.freedesktop.appearance");
const QString key = QStringLiteral("color-scheme");

constexpr uint preferDark = 1;
constexpr uint preferLight = 2;

/// The settings wrap some values twice.
QVariant unwrapped(QVariant value) {
    while (value.metaType() == QMetaType::fromType<QDBusVariant>()) {
        value = qvariant_cast<QDBusVariant>(value).variant();
    }
    return value;
}

} // namespace

DesktopAppearance::DesktopAppearance(const QDBusConnection& bus, QObject* parent) : QObject(parent) {
    if (!bus.isConnected()) {
        return;
    }
    // The connection looks up the types of a slot by their names, and connects nothing if one is unknown.
    qRegisterMetaType<QDBusVariant>();
    QDBusConnection listening = bus;
    // A connection without a bus in between has no names of services.
    const QString name = bus.interface() == nullptr ? QString() : service;
    listening.connect(name, path, interface, QStringLiteral("SettingChanged"), this,
                      SLOT(noteChange(QString, QString, QDBusVariant)));
    QDBusMessage question = QDBusMessage::createMethodCall(name, path, interface, QStringLiteral("Read"));
    question.setArguments({group, key});
    auto* const watcher = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, &DesktopAppearance::noteAnswer);
}

QDBusConnection DesktopAppearance::sessionBus() {
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const bool exists = !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") ||
                        (!runtime.isEmpty() && QFileInfo::exists(runtime + QStringLiteral("/bus")));
    return exists ? QDBusConnection::sessionBus() : QDBusConnection(QStringLiteral("none"));
}

void DesktopAppearance::noteAnswer(QDBusPendingCallWatcher* watcher) {
    const QDBusPendingReply<QDBusVariant> answer = *watcher;
    if (answer.isValid()) {
        setPreference(answer.value().variant());
    }
    watcher->deleteLater();
}

void DesktopAppearance::noteChange(const QString& changedGroup, const QString& changedKey,
                                   const QDBusVariant& value) {
    if (changedGroup == group && changedKey == key) {
        setPreference(value.variant());
    }
}

void DesktopAppearance::setPreference(const QVariant& value) {
    const uint number = unwrapped(value).toUInt();
    std::optional<Appearance> preference;
    if (number == preferDark || number == preferLight) {
        preference = number == preferDark ? Appearance::dark : Appearance::light;
    }
    if (m_preference != preference) {
        m_preference = preference;
        emit preferenceChanged();
    }
}
