#pragma once

#include <QMenu>
#include <QPointer>
#include <QString>

#include <functional>

class RecentFiles;

/// A menu of the files that the user worked with lately. Enabled as long as there are any.
class RecentFilesMenu : public QMenu {
    Q_OBJECT

public:
    using Open = std::function<void(const QString& path)>;

    /// Without `files` the menu stays empty.
    RecentFilesMenu(RecentFiles* files, Open open, QWidget* parent = nullptr);

private:
    void showFiles();

    const QPointer<RecentFiles> m_files;
    const Open m_open;
};
