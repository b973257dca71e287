#include "FolderHint.h"

#include <QFileInfo>

#include <algorithm>

namespace {

QStringList folders(const QString& path) {
    return QFileInfo(path).path().split(u'/', Qt::SkipEmptyParts);
}

/// How many of the last folders of both are the same.
qsizetype commonEnd(const QStringList& one, const QStringList& other) {
    const auto [difference, rest] = std::mismatch(one.rbegin(), one.rend(), other.rbegin(), other.rend());
    return difference - one.rbegin();
}

} // namespace

QString FolderHint::of(const QString& path, const QStringList& others) {
    if (others.isEmpty()) {
        return {};
    }
    const QStringList own = folders(path);
    qsizetype shown = 0;
    for (const QString& other : others) {
        shown = std::max(shown, commonEnd(own, folders(other)) + 1);
    }
    return shown < own.size() ? own.last(shown).join(u'/') : QFileInfo(path).path();
}
