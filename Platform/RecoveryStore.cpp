#include "RecoveryStore.h"

#include "RecoveryAside.h"
#include "RecoveryReader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <new>
#include <utility>

namespace {

QString reason(FileFailure failure) {
    switch (failure) {
    case FileFailure::noPermission:
        return QStringLiteral("no tienes permiso para escribir en esa carpeta");
    case FileFailure::noSpace:
        return QStringLiteral("no queda espacio en el disco");
    case FileFailure::tooLarge:
        return QStringLiteral("el texto es demasiado grande");
    case FileFailure::noMemory:
        return QStringLiteral("no hay memoria suficiente");
    case FileFailure::missing:
    case FileFailure::folder:
    case FileFailure::notRegular:
        return QStringLiteral("esa carpeta no existe y no se pudo crear");
    case FileFailure::stopped:
    case FileFailure::halfWritten:
    case FileFailure::other:
        break;
    }
    return QStringLiteral("falló la escritura en el disco");
}

QString newLog(const QString& ofLog) { return ofLog + QStringLiteral(".new"); }

bool move(const QString& from, const QString& to) {
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

/// Whether nothing of a log is lost when it is removed: it gives its text, or the start of one, or has none.
bool isRead(const std::expected<RecoveredText, RecoveryReader::Failure>& log) {
    using Kind = RecoveryReader::Failure::Kind;
    return log ? log->damage != RecoveryDamage::damaged
               : log.error().kind == Kind::empty || log.error().kind == Kind::unfinished;
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
    std::vector<Found> found = search(result);
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
std::vector<RecoveryStore::Found> RecoveryStore::search(Recoverables& left) const {
    std::vector<Found> found;
    for (const QString& folder : RecoverySession::folders(m_folder)) {
        const std::shared_ptr session = RecoverySession::adopted(m_folder, folder);
        for (const QString& log : session ? session->logs() : QStringList()) {
            if (const auto text = readable(log, left)) {
                found.push_back({session,
                                 log,
                                 {{}, text->facts, text->moment.changed, text->text.size(), text->damage},
                                 text->lineage});
            }
        }
    }
    removeContinued(found);
    return found;
}

/// Leaves out the texts that another one goes on from, and removes their logs.
void RecoveryStore::removeContinued(std::vector<Found>& found) {
    std::map<std::uint64_t, std::uint64_t> latestWhole; // Serials by lineage.
    for (const Found& one : found) {
        if (one.document.damage == RecoveryDamage::none && one.lineage.id != 0) {
            std::uint64_t& latest = latestWhole[one.lineage.id];
            latest = std::max(latest, one.lineage.serial);
        }
    }
    std::erase_if(found, [&](const Found& one) {
        const auto latest = latestWhole.find(one.lineage.id);
        const bool isContinued = latest != latestWhole.end() && one.lineage.serial < latest->second;
        return isContinued && QFile::remove(one.log);
    });
}

/// The text in `log`, or in the file that was to replace it. Without a text the log is set aside or, where it
/// ends before a text was begun, removed.
std::optional<RecoveredText> RecoveryStore::readable(const QString& log, Recoverables& left) const {
    using Kind = RecoveryReader::Failure::Kind;
    takeNewLog(log, left);
    auto text = RecoveryReader::read(log);
    const auto kind = text ? std::nullopt : std::optional(text.error().kind);
    if (kind == Kind::empty) {
        QFile::remove(log);
    } else if (kind == Kind::newer) {
        left.newer += log;
    } else if (kind) {
        left.setAside += RecoveryAside::moved(log, m_folder);
    } else if (text->damage != RecoveryDamage::none) {
        RecoveryAside::keepCopy(log, m_folder);
    }
    return text ? std::optional(std::move(*text)) : std::nullopt;
}

/// The run may have ended while it wrote the log anew. The new one takes the place of the old one if it has
/// more.
void RecoveryStore::takeNewLog(const QString& log, Recoverables& left) const {
    if (!QFileInfo::exists(newLog(log))) {
        return;
    }
    const auto next = RecoveryReader::read(newLog(log));
    if (!next && next.error().kind == RecoveryReader::Failure::Kind::newer) {
        left.newer += newLog(log);
        return;
    }
    const auto old = RecoveryReader::read(log);
    const bool isOldWhole = old && old->damage == RecoveryDamage::none;
    const bool isNewWhole = next && next->damage == RecoveryDamage::none;
    const bool isLater = old && next && next->moment.changed > old->moment.changed;
    if (next && (!old || (isNewWhole && (!isOldWhole || isLater)))) {
        if (QFileInfo::exists(log) && !isRead(old)) {
            left.setAside += RecoveryAside::moved(log, m_folder);
        }
        move(newLog(log), log);
    } else if (!isRead(next)) {
        left.setAside += RecoveryAside::moved(newLog(log), m_folder);
    } else {
        QFile::remove(newLog(log));
    }
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
    try {
        Recoverables left;
        return readable(log, left);
    } catch (const std::bad_alloc&) {
        // It is still there for another try.
        const std::lock_guard guard(m_mutex);
        m_found.at(id).isTaken = false;
        throw;
    }
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
    std::optional<RecoveryWriter::Taken> log;
    if (!taken.isEmpty()) {
        const std::lock_guard guard(m_mutex);
        const auto found = m_found.find(taken);
        precondition(found != m_found.end() && found->second.isTaken,
                     "a text is taken before it is followed");
        session = found->second.session;
        log = {found->second.log, found->second.lineage};
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
