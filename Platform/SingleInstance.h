#pragma once

#include "FileLock.h"

#include <QByteArray>
#include <QList>
#include <QLocalServer>
#include <QObject>
#include <QString>
#include <QUrl>

#include <chrono>
#include <cstdint>
#include <optional>

class QLocalSocket;

/// What a second start of the program hands to the first.
struct Handover {
    QList<QUrl> files;       ///< Absolute `file:` URLs; none to just come to the front.
    QByteArray startupToken; ///< With which a window may take the focus; empty when the desktop gave none.

    bool operator==(const Handover&) const = default;
};

/// Makes starts of the program on one display find each other: the first goes on, later ones hand their files
/// to it. A lock, which ends with its process, says who is the first; a socket beside it is how it is spoken
/// to.
///
/// Both are in the user's own folder for running programs, and only the user's own processes are heard.
/// Whoever is not answered in time, as by a program that hangs, goes on alone: nobody's files are lost.
///
///     later: length:u32 and that many bytes: "Tamo" 1:u8, files and token as QDataStream 6.0 has them
///     first: "r", when it has read that           later: "g", when it still waited
class SingleInstance : public QObject {
    Q_OBJECT

public:
    enum class Role : std::uint8_t {
        first,  ///< Goes on, and hears of later starts.
        second, ///< Has handed over everything, and ends.
        alone,  ///< Goes on; nobody hears of anybody.
    };

    /// In the user's folder for running programs, a name for each display.
    static QString defaultSocket();

    explicit SingleInstance(QString socket = defaultSocket(), QObject* parent = nullptr);
    ~SingleInstance() override;

    /// Becomes the first, or hands `handover` to the first. Waits for its answer as long as `patience`.
    Role start(const Handover& handover, std::chrono::milliseconds patience = std::chrono::seconds(3));

signals:
    /// A later start wants this opened.
    void handedOver(const Handover& handover);

private:
    bool listen();
    bool send(const Handover& handover, std::chrono::milliseconds patience) const;
    void welcome();
    void read(QLocalSocket* from);

    const QString m_path;
    std::optional<FileLock> m_lock;
    QLocalServer m_server;
};
