#pragma once

#include <QString>

/// Where logs that cannot be read, or not wholly, are kept for as long as the user wants: the folder
/// `damaged` of the recovery folder. For a worker.
namespace RecoveryAside {

/// Moves `log` there. Returns its new path, or the old one if it could not be moved.
QString moved(const QString& log, const QString& root);

/// Leaves a copy of `log` there, unless one with the same contents is there already. Returns its path; empty
/// if the disk refused it.
QString keepCopy(const QString& log, const QString& root);

} // namespace RecoveryAside
