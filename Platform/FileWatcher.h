#pragma once

#include "FileIdentity.h"
#include "Postbox.h"

#include <QElapsedTimer>
#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QTimer>

#include <cstdint>
#include <expected>
#include <memory>
#include <optional>

/// Tells what others do to one file. It is followed by its path: through replacement by another file,
/// removal and coming back, and the loss of its folders.
///
/// The disk's hints only say that there is something to look at, and are gathered for a moment. What counts
/// is the look: a file that was merely touched, or written again with the same bytes, has not changed. Looks
/// are taken on a thread of their own. Where a disk gives no hints, call `check` when the user comes back.
class FileWatcher : public QObject {
    Q_OBJECT

public:
    explicit FileWatcher(QObject* parent = nullptr);
    ~FileWatcher() override;

    /// Follows the file at `path`, which was last known as `identity`; without one it is known to be missing.
    /// With the hash of its contents, touching is told from changing. An empty path follows nothing.
    void follow(const QString& path, const std::optional<FileIdentity>& identity);

    const QString& path() const { return m_path; }

    /// Between the two whatever happens to the file is our own doing; `identity` is what came of it, or,
    /// after a failure, what was there before.
    void beginOwnWrite();
    void endOwnWrite(const std::optional<FileIdentity>& identity);

public slots:
    /// Takes a look soon.
    void check();

signals:
    /// The file has other contents than were known, which `identity` describes. It may have been gone before.
    void changed(const FileIdentity& identity);

    /// There is no file at the path any more: it was removed or moved away.
    void removed();

    /// The file is there again with the contents that were known.
    void restored();

private:
    using Look = std::expected<FileIdentity, FileFailure>;

    static Look look(const QString& path, const std::optional<FileIdentity>& known);
    void startLook();
    void finishLook(const Look& found, std::uint64_t generation);
    void take(const FileIdentity& found);
    void watch();

    const std::shared_ptr<Postbox> m_postbox;
    QFileSystemWatcher m_watcher;
    QTimer m_delay;
    QElapsedTimer m_sinceHint; ///< Since the first hint that was not looked into.
    QString m_path;
    std::optional<FileIdentity> m_known;
    bool m_isThere = false;
    bool m_isWriting = false;
    bool m_isLooking = false;
    std::uint64_t m_generation = 0; ///< Counts what makes a look outdated.
};
