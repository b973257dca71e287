#include "RecoveryAside.h"

#include "FileIdentity.h"

#include <QFile>
#include <QFileInfo>

#include <cstdio>

#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Whether two paths lead to the same contents.
bool isSame(const QString& path, const QString& other) {
    const auto first = FileIdentity::withContent(path);
    const auto second = FileIdentity::withContent(other);
    return first && second && first->hasSameContent(*second);
}

/// The path of the `count`th file that is kept of `log`; for users to tell them apart.
QString candidate(const QString& log, const QString& root, int count) {
    const QFileInfo info(log);
    const QString stem =
        QStringLiteral("%1/damaged/%2-%3").arg(root, QFileInfo(info.path()).fileName(), info.fileName());
    return count == 1 ? stem : QStringLiteral("%1.%2").arg(stem).arg(count);
}

void makeFolder(const QString& root) {
    constexpr mode_t userOnly = 0700;
    mkdir(QFile::encodeName(root + QStringLiteral("/damaged")).constData(), userOnly);
}

} // namespace

QString RecoveryAside::moved(const QString& log, const QString& root) {
    makeFolder(root);
    int count = 1;
    while (QFileInfo::exists(candidate(log, root, count))) {
        ++count;
    }
    const QString path = candidate(log, root, count);
    const bool isMoved =
        std::rename(QFile::encodeName(log).constData(), QFile::encodeName(path).constData()) == 0;
    return isMoved ? path : log;
}

QString RecoveryAside::keepCopy(const QString& log, const QString& root) {
    makeFolder(root);
    int count = 1;
    for (; QFileInfo::exists(candidate(log, root, count)); ++count) {
        if (isSame(candidate(log, root, count), log)) {
            return candidate(log, root, count);
        }
    }
    const QString path = candidate(log, root, count);
    // A link costs no room. Some disks have none.
    const bool isKept = link(QFile::encodeName(log).constData(), QFile::encodeName(path).constData()) == 0 ||
                        QFile::copy(log, path);
    return isKept ? path : QString();
}
