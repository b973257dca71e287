#pragma once

#include "BackgroundTask.h"
#include "Document.h"
#include "DocumentReading.h"
#include "DocumentWindow.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QUrl>

#include <memory>
#include <vector>

class RecentFiles;
class RecoveryStore;

/// The documents of the running program, one window each: makes them, opens files, and sees to it that
/// nothing is lost when all are closed.
class DocumentController : public QObject {
    Q_OBJECT

public:
    explicit DocumentController(std::unique_ptr<DocumentType> type, QObject* parent = nullptr);
    ~DocumentController() override;

    const DocumentType& type() const { return *m_type; }

    /// From now on unsaved texts are kept in `store`, and files noted in `files`; without them they are not.
    void setRecoveryStore(std::shared_ptr<RecoveryStore> store) { m_store = std::move(store); }
    void setRecentFiles(RecentFiles* files);

    /// The windows in the order in which they were opened.
    std::vector<DocumentWindow*> windows() const;
    bool hasOpenDocuments() const { return !windows().empty() || !m_openings.empty(); }

    /// Opens each file in a window of its own, and brings that of a file which is open already to the front.
    /// A file that takes long shows that it is coming. On failure there is `openingFailed`.
    void open(const QStringList& paths);

    /// Opens a text that was kept, and is called `id` in the store, as a document with unsaved changes.
    DocumentWindow* openRecovered(const RecoveredText& text, const QString& id);

    /// Has the user choose files. A window that shows an untouched new document makes place for them.
    void chooseAndOpen(DocumentWindow* from);

    /// A menu of the files that were open lately.
    QMenu* makeRecentMenu(QWidget* parent);

    /// Brings a window to the front.
    static void raise(DocumentWindow& window);

public slots:
    DocumentWindow* newDocument();

    /// Opens those of `files` that are on this computer's disks.
    void openFiles(const QList<QUrl>& files);

    /// Asks about all changes, then closes all windows and ends the program. When the user cancels one
    /// question, no window closes. A document that arrives during the questions stays open, and the program
    /// with it.
    void quit();

signals:
    void windowOpened(DocumentWindow* window);
    void openingFailed(const QString& path, const QString& message);
    void quitRefused();
    /// All windows are closed because the user wants to quit.
    void readyToQuit();

private:
    /// A file on its way to a window.
    struct Opening {
        QString path;
        std::unique_ptr<DocumentWindow> window; ///< Not shown yet, unless it takes long.
        QPointer<DocumentWindow> shown;         ///< That window once it shows, and owns itself.
        BackgroundTask<DocumentReading> task;
        QTimer patience;
    };

    std::unique_ptr<DocumentWindow> makeWindow();
    void equip(DocumentWindow& window, const QString& recovered = {});
    void noteFile(const DocumentWindow& window);
    DocumentWindow* show(std::unique_ptr<DocumentWindow> window);
    DocumentWindow* windowOf(const QString& path) const;
    void openFile(const QString& path);
    void showOpening(Opening& opening);
    void finish(Opening& opening, DocumentReading reading);
    void end(Opening& opening);
    void askAndClose();
    void showTitles();

    const std::unique_ptr<DocumentType> m_type;
    std::shared_ptr<RecoveryStore> m_store;
    QPointer<RecentFiles> m_recentFiles;
    std::vector<QPointer<DocumentWindow>> m_windows;
    std::vector<std::unique_ptr<Opening>> m_openings;
    bool m_isQuitting = false;
};
