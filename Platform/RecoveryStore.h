#pragma once

#include "DocumentRecovery.h"
#include "Postbox.h"
#include "RecoverySession.h"
#include "RecoveryState.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

/// A text that a run of the program left behind when it ended before its time.
struct RecoverableDocument {
    QString id;
    RecoveryFacts facts;
    std::int64_t changed = 0; ///< When it last changed: milliseconds since 1970 in UTC.
    Offset size = 0;          ///< Of the text, in units.
    RecoveryDamage damage = RecoveryDamage::none;
};

/// What there is to recover.
struct Recoverables {
    std::vector<RecoverableDocument> documents; ///< The latest first.
    QStringList setAside;                       ///< Files that could not be read, where they were moved to.
    QStringList newer; ///< Files of a newer version of the program, left where they are.
};

/// Where the unsaved texts of this user's documents are kept, so that neither a crash nor a loss of power
/// costs more than the last second.
///
///     recovery/run-…/lock          held while the program lives that keeps its texts here
///     recovery/run-…/text-1.log    a text, in the format of `RecoveryRecord`
///     recovery/run-…/text-1.log.new    the same, on its way to replace it
///     recovery/damaged/…           what could not be read, or not wholly; never removed
///
/// Making one touches no disk, and a folder that cannot be written keeps nobody from working: it is told
/// once.
class RecoveryStore : public QObject {
    Q_OBJECT

public:
    /// `tamo/recovery` in the desktop's folder for the state of programs.
    static QString defaultFolder();

    explicit RecoveryStore(QString folder = defaultFolder(), RecoveryPace pace = {},
                           QObject* parent = nullptr);

    /// Waits a little for what is being written or removed; a hung disk does not keep the program from
    /// ending.
    ~RecoveryStore() override;

    /// What dead runs left and nobody took or discarded yet. It is kept from other starts as long as this
    /// object lives. Reads all of it: for a worker.
    Recoverables recoverable();

    /// The text with that id. It goes on being kept where it is, and would be found again after another
    /// crash, until the recovery that follows it forgets it. For a worker. Nothing when it cannot be read
    /// any more; then it was set aside.
    std::optional<RecoveredText> take(const QString& id);

    /// Removes the text with that id. For a worker.
    void discard(const QString& id);

    /// Keeps the unsaved text in `storage` from its next change on. `taken` is the id of a text that was
    /// taken and that `storage` now has. The recovery must go before the store and before `storage`.
    std::unique_ptr<DocumentRecovery> follow(TextStorage& storage, const RecoveryFacts& facts,
                                             const QString& taken = {});

    const QString& folder() const { return m_folder; }

signals:
    /// Unsaved texts cannot be kept; `message` says why, for the user. Once in the life of a store.
    void keepingFailed(const QString& message);

private:
    struct Found {
        std::shared_ptr<RecoverySession> session;
        QString log;
        RecoverableDocument document;
        RecoveryLineage lineage;
        bool isTaken = false;
    };

    std::vector<Found> search(Recoverables& left) const;
    static void removeContinued(std::vector<Found>& found);
    std::optional<RecoveredText> readable(const QString& log, Recoverables& left) const;
    void takeNewLog(const QString& log, Recoverables& left) const;
    void tellFailure(FileFailure failure, const QString& folder);

    const QString m_folder;
    const RecoveryPace m_pace;
    const std::shared_ptr<RecoverySession> m_session;
    const std::shared_ptr<Postbox> m_postbox;
    bool m_hasToldFailure = false;

    std::mutex m_mutex; ///< Of all below; nobody waits for a disk while holding it.
    std::map<QString, Found> m_found;
    int m_lastID = 0;
};
