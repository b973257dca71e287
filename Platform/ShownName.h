#pragma once

#include <QString>

/// A name or path of a file as it is shown: what would be invisible or turn the order of its neighbours, and
/// bytes that are not UTF-8, are replaced by stand-ins (`displayText`). Not for finding the file.
QString shownPath(const QString& path);

/// The same of the last part of `path`.
QString shownFileName(const QString& path);
