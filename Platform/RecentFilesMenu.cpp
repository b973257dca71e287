#include "RecentFilesMenu.h"

#include "MenuText.h"
#include "RecentFiles.h"
#include "ShownName.h"

#include <QDir>
#include <QFileInfo>

#include <utility>

namespace {

/// "nombre.xml — ~/carpeta", as an action shows it.
QString actionTitle(const QString& path) {
    const QFileInfo file(path);
    QString folder = file.path();
    const QString home = QDir::homePath();
    if (folder == home || folder.startsWith(home + u'/')) {
        folder.replace(0, home.size(), u'~');
    }
    return menuText(QStringLiteral("%1 — %2").arg(shownFileName(path), shownPath(folder)));
}

} // namespace

RecentFilesMenu::RecentFilesMenu(RecentFiles* files, Open open, QWidget* parent)
    : QMenu(QStringLiteral("Abrir &reciente"), parent), m_files(files), m_open(std::move(open)) {
    if (files != nullptr) {
        connect(files, &RecentFiles::filesChanged, this, &RecentFilesMenu::showFiles);
        // Others may have come meanwhile; they show when they are found.
        connect(this, &QMenu::aboutToShow, files, &RecentFiles::refresh);
    }
    showFiles();
}

void RecentFilesMenu::showFiles() {
    clear();
    const QStringList files = m_files == nullptr ? QStringList() : m_files->files();
    for (const QString& path : files) {
        addAction(actionTitle(path), this, [this, path] { m_open(path); });
    }
    if (!files.isEmpty()) {
        addSeparator();
        addAction(QStringLiteral("Vaciar la lista"), m_files, &RecentFiles::clear);
    }
    setEnabled(!files.isEmpty());
}
