#include "RecentFiles.h"

#include "AtomicFile.h"
#include "BookmarkList.h"
#include "FileIdentity.h"
#include "FilePath.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>
#include <QUrl>

#include <algorithm>
#include <mutex>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Longer lists are not read: every program of the desktop would suffer from one.
constexpr qint64 longestList = qint64{16} << 20;

std::optional<QByteArray> contents(const QString& list) {
    QFile file(list);
    if (!file.open(QIODevice::ReadOnly) || file.size() > longestList) {
        return std::nullopt;
    }
    return file.read(longestList);
}

/// Creates an empty list, which only the user may read; a replaced one keeps its mode.
bool create(const QString& list) {
    constexpr mode_t userOnly = 0600;
    QDir().mkpath(QFileInfo(list).path());
    const int number =
        open(QFile::encodeName(list).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, userOnly);
    if (number >= 0) {
        close(number);
    }
    return number >= 0;
}

bool write(const QByteArray& bytes, const QString& list) {
    auto file = AtomicFile::open(list);
    if (!file) {
        return false;
    }
    file->write(bytesOf({bytes.constData(), static_cast<std::size_t>(bytes.size())}));
    return file->commit().has_value();
}

/// Notes the visit in the list. Programs do not lock it: whoever wrote it meanwhile is read again.
void noteVisit(const BookmarkList::Visit& visit, const QString& list) {
    // Of this program, one at a time.
    static std::mutex mutex;
    const std::lock_guard guard(mutex);
    constexpr int tries = 5;
    if (!QFileInfo::exists(list) && !create(list)) {
        return;
    }
    for (int i = 0; i < tries; ++i) {
        const auto before = FileIdentity::of(list);
        const auto old = contents(list);
        const auto bytes = old ? BookmarkList::noting(visit, *old) : std::nullopt;
        if (!before || !bytes) {
            return;
        }
        const auto now = FileIdentity::of(list);
        if (now && now->isUntouched(*before)) {
            write(*bytes, list);
            return;
        }
    }
}

bool isOfInterest(const BookmarkList::Bookmark& bookmark, const QString& path,
                  const RecentFiles::Interest& interest) {
    return interest.mimeTypes.contains(bookmark.mimeType) ||
           interest.suffixes.contains(QFileInfo(path).suffix().toLower());
}

/// The files of this run and of the list, in the order in which they are shown.
QStringList filesOf(const QStringList& own, const QStringList& hidden, const QString& list,
                    const RecentFiles::Interest& interest) {
    // Looking whether a file is there may take long where it is far away.
    constexpr int mostCandidates = 3 * RecentFiles::mostFiles;
    auto bookmarks = BookmarkList::read(contents(list).value_or(QByteArray()));
    std::ranges::stable_sort(bookmarks, std::ranges::greater(), &BookmarkList::Bookmark::modified);
    QStringList candidates = own;
    for (const BookmarkList::Bookmark& bookmark : bookmarks) {
        const QString path = FilePath::of(QUrl(bookmark.url));
        if (!path.isEmpty() && isOfInterest(bookmark, path, interest) && !candidates.contains(path) &&
            !hidden.contains(path) && candidates.size() < mostCandidates) {
            candidates += path;
        }
    }
    std::ranges::stable_partition(candidates, &FilePath::isRegularFile);
    return candidates.mid(0, RecentFiles::mostFiles);
}

} // namespace

QString RecentFiles::defaultList() {
    QString data = QFile::decodeName(qgetenv("XDG_DATA_HOME"));
    // The rule of desktops: a path that is not absolute is not to be used.
    if (!QDir::isAbsolutePath(data)) {
        data = QDir::homePath() + QStringLiteral("/.local/share");
    }
    return QDir::cleanPath(data + QStringLiteral("/recently-used.xbel"));
}

RecentFiles::RecentFiles(Interest interest, QString list, QObject* parent)
    : QObject(parent), m_interest(std::move(interest)), m_list(std::move(list)),
      m_postbox(std::make_shared<Postbox>(this)) {}

RecentFiles::~RecentFiles() { m_postbox->close(); }

void RecentFiles::refresh() { look({}); }

void RecentFiles::clear() {
    m_hidden += m_files;
    m_own.clear();
    m_files.clear();
    emit filesChanged();
    refresh();
}

void RecentFiles::note(const QString& path) {
    const QString absolute = FilePath::absolute(path);
    m_own.removeAll(absolute);
    m_hidden.removeAll(absolute);
    m_own.prepend(absolute);
    m_own = m_own.mid(0, mostFiles);
    look(absolute);
}

/// Notes a visit of the file, when one is given, and looks up the files.
void RecentFiles::look(const QString& visited) {
    runOnFileThread([postbox = m_postbox, this, visited, own = m_own, hidden = m_hidden, list = m_list,
                     interest = m_interest] {
        if (!visited.isEmpty()) {
            const QString type =
                QMimeDatabase().mimeTypeForFile(visited, QMimeDatabase::MatchExtension).name();
            noteVisit({.url = FilePath::url(visited).toString(QUrl::FullyEncoded),
                       .mimeType = interest.mimeTypes.contains(type) ? type : interest.mimeTypes.value(0),
                       .program = interest.program,
                       .command = interest.command,
                       .time = QDateTime::currentDateTimeUtc()},
                      list);
        }
        const QStringList files = filesOf(own, hidden, list, interest);
        // Called only as long as this lives.
        postbox->post([this, files, own] { take(files, own); });
    });
}

void RecentFiles::take(const QStringList& files, const QStringList& own) {
    // A look that began before the last visit is outdated; that visit's own follows.
    if (own == m_own && files != m_files) {
        m_files = files;
        emit filesChanged();
    }
}
