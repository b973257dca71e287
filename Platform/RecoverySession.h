#pragma once

#include "FileFailure.h"
#include "FileLock.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <condition_variable>
#include <expected>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

/// How many threads are at work on something.
class WorkCount {
public:
    void begin();
    void end();

    /// Waits until there is none; answers whether that came before the time was over.
    bool waitForEnd(std::chrono::milliseconds timeout);

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_count = 0;
};

/// The folder in which one run of the program keeps its unsaved texts: a folder of the recovery folder, with
/// a lock that shows whether that run still lives. Since the system lets go of it when a process ends,
/// neither a number that another process got later nor a restart of the machine is mistaken for life.
///
/// All functions wait for the disk and may be called from any thread.
class RecoverySession {
public:
    /// Makes nothing on the disk yet.
    explicit RecoverySession(QString root) : m_root(std::move(root)) {}

    /// Removes the folder, unless something is kept there.
    ~RecoverySession();

    RecoverySession(const RecoverySession&) = delete;
    RecoverySession& operator=(const RecoverySession&) = delete;

    const QString& root() const { return m_root; }

    /// The folder of this run, which is made the first time that it is needed. A failure may be gone at the
    /// next call.
    std::expected<QString, FileFailure> folder();

    /// A path in `folder()` that nothing stands at.
    std::expected<QString, FileFailure> pathForNewLog();

    /// Takes over the folder of a run that is dead and that nobody else took over; nothing when there is none
    /// at `path`, it lives, or its lock cannot be had.
    static std::unique_ptr<RecoverySession> adopted(const QString& root, const QString& path);

    /// The folders of all runs below `root`, this one and others.
    static QStringList folders(const QString& root);

    /// The logs in `folder()`; empty when that was never made.
    QStringList logs();

    /// The threads that write in the folder.
    const std::shared_ptr<WorkCount>& works() const { return m_works; }

private:
    std::expected<void, FileFailure> make();

    const QString m_root;
    std::mutex m_mutex; ///< Of all below.
    QString m_folder;   ///< Empty until it is made.
    std::optional<FileLock> m_lock;
    int m_logs = 0;
    const std::shared_ptr<WorkCount> m_works = std::make_shared<WorkCount>();
};

/// Has the disk remember the entries of the folder at `path`.
void syncFolder(const QString& path);
