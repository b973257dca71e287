#pragma once

#include "Postbox.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

/// The files that the user worked with lately: those of this run and those that the programs of the desktop
/// tell each other of. What this run opens and saves is told to the others.
///
/// The disk is touched on another thread only. A list that is broken, too long or not to be written is left
/// alone: then the files of this run are all that there is.
class RecentFiles : public QObject {
    Q_OBJECT

public:
    /// Which files matter, and who visits them.
    struct Interest {
        QStringList mimeTypes; ///< The first is what a visited file of no known type is said to be.
        QStringList suffixes;  ///< Without the dot, in lower case.
        QString program;
        QString command; ///< Opens the file that stands for `%u` in it.
    };

    /// How many files are shown at most.
    static constexpr int mostFiles = 10;

    /// `recently-used.xbel` in the desktop's folder for the data of programs.
    static QString defaultList();

    explicit RecentFiles(Interest interest, QString list = defaultList(), QObject* parent = nullptr);
    ~RecentFiles() override;

    /// Paths of files as of the last time that they were looked up: the latest first, but those that are not
    /// there after all others.
    const QStringList& files() const { return m_files; }

    /// Looks them up; `filesChanged` follows when they are others.
    void refresh();

    /// The file at `path` was opened or saved.
    void note(const QString& path);

    /// Shows none of the present files in this run any more, unless they are noted again. Other programs go
    /// on showing them.
    void clear();

signals:
    void filesChanged();

private:
    void look(const QString& visited);
    void take(const QStringList& files, const QStringList& own);

    const Interest m_interest;
    const QString m_list;
    const std::shared_ptr<Postbox> m_postbox;
    QStringList m_files;
    QStringList m_own;    ///< Of this run; the latest first.
    QStringList m_hidden; ///< Not to be shown in this run.
};
