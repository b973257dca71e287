#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

/// Paths of files as strings, without loss. To the system a path is bytes, in UTF-8 by custom only. In the
/// string a byte that belongs to no UTF-8 sequence is a lone low surrogate, U+DC80 to U+DCFF; no legal
/// sequence decodes to one, so that the bytes can always be had back. The toolkit's own functions lose such
/// bytes as soon as they ask the system; those that only cut a path up, as `QFileInfo::fileName`, do not.
namespace FilePath {

/// The path that the system knows as `bytes`.
QString of(const QByteArray& bytes);

/// The bytes to give to the system.
QByteArray bytes(const QString& path);

/// The path of a `file:` URL; empty for another one.
QString of(const QUrl& url);
QUrl url(const QString& path);

/// The same path from the root folder on, without `.`, `..` and repeated slashes.
QString absolute(const QString& path);

/// The one path of a file, whatever links lead to it; `absolute` where no file is there.
QString canonical(const QString& path);

/// Whether the toolkit's functions can find the file too.
bool isUnicode(const QString& path);

bool isRegularFile(const QString& path);
bool isFolder(const QString& path);

} // namespace FilePath
