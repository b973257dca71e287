#include "SingleInstance.h"

#include "FilePath.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QThread>
#include <QTimer>
#include <QtEndian>

#include <algorithm>
#include <memory>
#include <utility>

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr char magic[] = "Tamo";
constexpr quint8 version = 1;
constexpr char ready = 'r';
constexpr char go = 'g';
constexpr std::size_t lengthSize = sizeof(quint32);

/// Nobody hands over more than this.
constexpr quint32 longestMessage = quint32{4} << 20;

/// Nobody takes longer to say something.
constexpr std::chrono::seconds longestSilence(10);

/// Whether the folder of `path` is the user's own, and closed to all others.
bool isPrivate(const QString& path) {
    struct stat status {};
    return lstat(QFile::encodeName(QFileInfo(path).path()).constData(), &status) == 0 &&
           S_ISDIR(status.st_mode) && status.st_uid == geteuid() && (status.st_mode & 077) == 0;
}

/// Whether the process at the other end is the user's own.
bool isOwn(const QLocalSocket& socket) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return getsockopt(static_cast<int>(socket.socketDescriptor()), SOL_SOCKET, SO_PEERCRED, &peer, &size) ==
               0 &&
           peer.uid == geteuid();
}

QByteArray message(const Handover& handover) {
    QByteArray content;
    QDataStream stream(&content, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_0);
    stream.writeRawData(magic, sizeof magic - 1);
    stream << version << handover.files << handover.startupToken;
    QByteArray all;
    QDataStream(&all, QIODevice::WriteOnly) << static_cast<quint32>(content.size());
    return all + content;
}

std::optional<Handover> handover(const QByteArray& content) {
    if (!content.startsWith(magic)) {
        return std::nullopt;
    }
    QDataStream stream(content.sliced(sizeof magic - 1));
    stream.setVersion(QDataStream::Qt_6_0);
    quint8 spoken = 0;
    Handover result;
    stream >> spoken >> result.files >> result.startupToken;
    const bool isGood = stream.status() == QDataStream::Ok && spoken == version &&
                        std::ranges::all_of(result.files, [](const QUrl& url) {
                            return url.isLocalFile() && FilePath::of(url).startsWith(u'/');
                        });
    return isGood ? std::optional(std::move(result)) : std::nullopt;
}

} // namespace

QString SingleInstance::defaultSocket() {
    const QByteArray display = qgetenv("WAYLAND_DISPLAY") + '\n' + qgetenv("DISPLAY");
    const QByteArray name = QCryptographicHash::hash(display, QCryptographicHash::Sha256).toHex().first(16);
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    return folder.isEmpty() ? QString() : folder + QStringLiteral("/tamo-") + QString::fromLatin1(name);
}

SingleInstance::SingleInstance(QString socket, QObject* parent) : QObject(parent), m_path(std::move(socket)) {
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &SingleInstance::welcome);
}

SingleInstance::~SingleInstance() = default;

SingleInstance::Role SingleInstance::start(const Handover& handover, std::chrono::milliseconds patience) {
    if (m_path.isEmpty() || !isPrivate(m_path)) {
        return Role::alone;
    }
    auto lock = FileLock::take(m_path + QStringLiteral(".lock"));
    if (!lock) {
        return Role::alone;
    }
    if (!*lock) {
        return send(handover, patience) ? Role::second : Role::alone;
    }
    if (!listen()) {
        return Role::alone;
    }
    m_lock.emplace(std::move(**lock));
    return Role::first;
}

/// Whoever holds the lock owns the socket: one that is there was left behind.
bool SingleInstance::listen() {
    QFile::remove(m_path);
    return m_server.listen(m_path);
}

bool SingleInstance::send(const Handover& handover, std::chrono::milliseconds patience) const {
    constexpr unsigned long pause = 20;
    const QDeadlineTimer deadline(patience);
    const auto left = [&deadline] { return static_cast<int>(deadline.remainingTime()); };
    QLocalSocket socket;
    // The first may hold the lock but not listen yet.
    for (;;) {
        socket.connectToServer(m_path);
        if (socket.waitForConnected(left())) {
            break;
        }
        if (deadline.hasExpired()) {
            return false;
        }
        QThread::msleep(pause);
    }
    if (!isOwn(socket)) {
        return false;
    }
    const QByteArray bytes = message(handover);
    char answer = 0;
    socket.write(bytes);
    while (socket.bytesToWrite() > 0) {
        if (!socket.waitForBytesWritten(left())) {
            return false;
        }
    }
    if (!socket.waitForReadyRead(left()) || socket.read(&answer, 1) != 1 || answer != ready) {
        return false;
    }
    return socket.write(&go, 1) == 1 && (socket.bytesToWrite() == 0 || socket.waitForBytesWritten(left()));
}

void SingleInstance::welcome() {
    while (QLocalSocket* const socket = m_server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        if (!isOwn(*socket)) {
            socket->abort();
            continue;
        }
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { read(socket); });
        QTimer::singleShot(longestSilence, socket, [socket] { socket->abort(); });
        read(socket);
    }
}

/// Reads what has come so far; acts when all is there and the other end still waits.
void SingleInstance::read(QLocalSocket* from) {
    const QByteArray start = from->peek(lengthSize);
    if (start.size() < qsizetype(lengthSize)) {
        return;
    }
    const auto length = qFromBigEndian<quint32>(start.constData());
    if (length > longestMessage) {
        from->abort();
        return;
    }
    const qsizetype whole = qsizetype(lengthSize) + length;
    const QByteArray all = from->peek(whole + 1);
    if (all.size() < whole) {
        return;
    }
    const auto wanted = handover(all.sliced(lengthSize, length));
    if (!wanted) {
        from->abort();
    } else if (all.size() == whole) {
        if (!from->property("isAnswered").toBool()) {
            from->setProperty("isAnswered", true);
            from->write(&ready, 1);
        }
    } else {
        const bool isWanted = all.back() == go;
        from->disconnect(this);
        from->disconnectFromServer();
        if (isWanted) {
            emit handedOver(*wanted);
        }
    }
}
