#pragma once

#include "Appearance.h"

#include <QDBusConnection>
#include <QObject>

class QDBusPendingCallWatcher;
class QDBusVariant;

/// What the desktop prefers, by the settings that it publishes on a message bus. Asks once, without waiting,
/// and listens from then on.
class DesktopAppearance : public QObject {
    Q_OBJECT

public:
    /// A bus that is not connected says nothing, and neither does one without such settings.
    explicit DesktopAppearance(const QDBusConnection& bus, QObject* parent = nullptr);

    /// The bus of the user's session, which is only asked for when there is one: to look for it otherwise
    /// would start one.
    static QDBusConnection sessionBus();

    /// Nothing before the first answer, and when the desktop does not prefer either.
    std::optional<Appearance> preference() const { return m_preference; }

signals:
    void preferenceChanged();

private slots:
    void noteChange(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void noteAnswer(QDBusPendingCallWatcher* watcher);
    void setPreference(const QVariant& value);

    std::optional<Appearance> m_preference;
};
