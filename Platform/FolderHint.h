#pragma once

#include <QString>
#include <QStringList>

/// Tells files of one name apart.
namespace FolderHint {

/// The shortest end of the folder of `path` that the folders of none of `others` end in: "uno" for "/x/uno/a.xml"
/// beside "/x/dos/a.xml". The whole folder where another folder ends in all of it; empty without others. All
/// paths are absolute.
QString of(const QString& path, const QStringList& others);

} // namespace FolderHint
