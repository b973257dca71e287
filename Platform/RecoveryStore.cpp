#include "RecoveryStore.h"

#include "RecoveryReader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace {

QString reason(FileFailure failure) {
    switch (failure) {
    case FileFailure::noPermission:
        return QStringLiteral("no tienes permiso para escribir en esa carpeta");
    case FileFailure::noSpace:
        return QStringLiteral("no queda espacio en el disco");
    case FileFailure::tooLarge:
        return QStringLiteral("el texto es demasiado grande");
    case FileFailure::missing:
    case FileFailure::folder:
    case FileFailure::notRegular:
        return QStringLiteral("esa carpeta no existe y no se pudo crear");
    case FileFailure::other:
        break;
    }
    return QStringLiteral("falló la escritura en el disco");
}

QString newLog(const QString& ofLog) { return ofLog + QStringLiteral(".new"); }

/// Where a log that cannot be read is put: no file is there yet.
QString pathAside(const QString& root, const QString& log) {
    constexpr mode_t userOnly = 0700;
    const QString folder = root + QStringLiteral("/damaged");
    mkdir(QFile::encodeName(folder).constData(), userOnly);
    const QFileInfo info(log);
    const QString stem =
        folder + QLatin1Char('/') + QFileInfo(info.path()).fileName() + QLatin1Char('-') + info.fileName();
    QString path = stem;
    for (int i = 2; QFileInfo::exists(path); ++i) {
        path = stem + QLatin1Char('.') + QString::number(i);
    }
    return path;
}

bool move(const QString& from, const QString& to) {
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

} // namespace

QString RecoveryStore::defaultFolder() {
    QString state = QFile::decodeName(qgetenv("XDG_STATE_HOME"));
    // The rule of desktops: a path that is not absolute is not to be used.
    if (!QDir::isAbsolutePath(state)) {
        state = QDir::homePath() + QStringLiteral("/.local/state");
    }
    return QDir::cleanPath(state + QStringLiteral("/tamo/recovery"));
}

RecoveryStore::RecoveryStore(QString folder, RecoveryPace pace, QObject* parent)
    : QObject(parent), m_folder(std::move(folder)), m_pace(pace),
      m_session(std::make_shared<RecoverySession>(m_folder)), m_postbox(std::make_shared<Postbox>(this)) {}

RecoveryStore::~RecoveryStore() {
    m_postbox->close();
    constexpr std::chrono::seconds patience(5);
    m_session->works()->waitForEnd(patience);
    for (const auto& [id, found] : m_found) {
        found.session->works()->waitForEnd(patience);
    }
}

Recoverables RecoveryStore::recoverable() {
    Recoverables result;
    std::vector<Found> found = search(result.setAside);
    const std::lock_guard guard(m_mutex);
    for (Found& one : found) {
        one.document.id = QString::number(++m_lastID);
        m_found.insert({one.document.id, std::move(one)});
    }
    for (const auto& [id, one] : m_found) {
        if (!one.isTaken) {
            result.documents.push_back(one.document);
        }
    }
    std::ranges::stable_sort(result.documents, std::ranges::greater(), &RecoverableDocument::changed);
    return result;
}

/// What the dead runs left that this run did not take over before.
std::vector<RecoveryStore::Found> RecoveryStore::search(QStringList& aside) const {
    std::vector<Found> found;
    for (const QString& folder : RecoverySession::folders(m_folder)) {
        const std::shared_ptr session = RecoverySession::adopted(m_folder, folder);
        for (const QString& log : session ? session->logs() : QStringList()) {
            if (const auto text = readable(log, aside)) {
                found.push_back(
                    {session,
                     log,
                     {{}, text->facts, text->moment.changed, text->text.size(), text->isDamaged}});
            }
        }
    }
    return found;
}

/// The text in `log`. When there is none, the file is gone afterwards: it was set aside or, with nothing in
/// it, removed.
std::optional<RecoveredText> RecoveryStore::readable(const QString& log, QStringList& aside) const {
    auto text = RecoveryReader::read(log);
    const bool isEmpty = !text && text.error().kind == RecoveryReader::Failure::Kind::empty;
    if (isEmpty) {
        QFile::remove(log);
    } else if (!text) {
        aside += setAside(log);
    }
    if (!text && QFileInfo::exists(newLog(log))) {
        // The run ended while it wrote the log anew, perhaps just before that took its place.
        move(newLog(log), log);
        return readable(log, aside);
    }
    if (!text) {
        return std::nullopt;
    }
    QFile::remove(newLog(log));
    if (text->isDamaged) {
        setCopyAside(log);
    }
    return std::move(*text);
}

/// Moves `log` to where it stays; answers where it is now.
QString RecoveryStore::setAside(const QString& log) const {
    const QString path = pathAside(m_folder, log);
    return move(log, path) ? path : log;
}

void RecoveryStore::setCopyAside(const QString& log) const {
    const QString path = pathAside(m_folder, log);
    link(QFile::encodeName(log).constData(), QFile::encodeName(path).constData());
}

std::optional<RecoveredText> RecoveryStore::take(const QString& id) {
    QString log;
    {
        const std::lock_guard guard(m_mutex);
        const auto found = m_found.find(id);
        if (found == m_found.end()) {
            return std::nullopt;
        }
        found->second.isTaken = true;
        log = found->second.log;
    }
    QStringList aside;
    return readable(log, aside);
}

void RecoveryStore::discard(const QString& id) {
    Found found;
    {
        const std::lock_guard guard(m_mutex);
        if (auto node = m_found.extract(id)) {
            found = std::move(node.mapped());
        }
    }
    if (found.session) {
        QFile::remove(found.log);
        syncFolder(QFileInfo(found.log).path());
    }
}

std::unique_ptr<DocumentRecovery> RecoveryStore::follow(TextStorage& storage, const RecoveryFacts& facts,
                                                        const QString& taken) {
    std::shared_ptr<RecoverySession> session = m_session;
    QString log;
    if (!taken.isEmpty()) {
        const std::lock_guard guard(m_mutex);
        const auto found = m_found.find(taken);
        precondition(found != m_found.end() && found->second.isTaken,
                     "a text is taken before it is followed");
        session = found->second.session;
        log = found->second.log;
    }
    const auto tell = [this, postbox = m_postbox](FileFailure failure, const QString& folder) {
        postbox->post([this, failure, folder] { tellFailure(failure, folder); });
    };
    return std::make_unique<DocumentRecovery>(
        storage, std::make_unique<RecoveryWriter>(session, m_pace, facts, log, tell));
}

void RecoveryStore::tellFailure(FileFailure failure, const QString& folder) {
    if (!std::exchange(m_hasToldFailure, true)) {
        emit keepingFailed(
            QStringLiteral("Los cambios sin guardar no se pueden proteger en “%1”: %2. Si el programa se "
                           "interrumpe, se perderán. Guarda los documentos con frecuencia.")
                .arg(folder, reason(failure)));
    }
}
