#pragma once

#include "BackgroundTask.h"
#include "Document.h"
#include "DocumentReading.h"
#include "FileSave.h"

#include <QMainWindow>
#include <QPointer>
#include <QTimer>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

class DocumentController;
class NoticeBar;
class QMenu;

/// The window of one document: its menus, its title with the edited mark, and everything between the document
/// and its file. Reading and writing happen on workers; what takes longer than a moment shows, and can be
/// cancelled.
class DocumentWindow : public QMainWindow {
    Q_OBJECT

public:
    enum class Menu : std::uint8_t { file, edit, view, window, help };

    /// Empty, until it is given a document. The controller outlives it.
    explicit DocumentWindow(DocumentController& controller);
    ~DocumentWindow() override;

    /// `path` is empty, and `version` nothing, for a document that was never saved.
    void setDocument(std::unique_ptr<Document> document, const QString& path,
                     const std::optional<FileIdentity>& version);

    const DocumentType& type() const;
    Document* document() const { return m_document.get(); }
    QWidget* view() const { return m_view; }
    const QString& path() const { return m_path; }
    const std::optional<FileIdentity>& version() const { return m_version; }

    /// The file's name as it is shown, also while it is being read; "Sin título" without a file.
    QString documentName() const;

    /// What tells the file from those of the same name in other windows: the end of its folder. Usually empty.
    QString folderHint() const;

    /// Shows the title anew: it depends on the names in other windows.
    void showTitle();

    /// Whether this is a new document that nobody touched.
    bool isPristine() const;

    /// Whether closing would lose something: there are changes, and not an empty text that no file has.
    bool hasChangesToKeep() const;
    bool isSaving() const { return m_saving.isRunning(); }

    QMenu& menu(Menu which) const { return *m_menus[static_cast<std::size_t>(which)]; }

    /// Where the window shows that it reads or writes.
    NoticeBar& notices() const { return *m_notices; }
    /// Another bar, for what somebody else has to tell of the document.
    NoticeBar* addNoticeBar();
    /// A bar with a text that the user only has to read.
    void addNotice(const QString& text);

    /// Has something that follows the document live as long as the document does, and end just before it.
    void addCompanion(std::unique_ptr<QObject> companion) { m_companions.push_back(std::move(companion)); }

    /// The file is now known in this version, which saving may replace without asking.
    void setVersion(const std::optional<FileIdentity>& version);

    /// Puts what was read of the file into the text, as one step of undo that leaves the document saved.
    /// `reading` has contents.
    void takeOver(DocumentReading reading, const QString& actionName);

    /// Says that a file is being read, whose name the window has from now on, and offers to give up.
    void showOpening(const QString& path, std::function<void()> cancel);

    /// Tells the user something in a box, and waits until it is read.
    void say(const QString& text);

    /// Adds a command on the document's file to the menu "Archivo", after those on saving.
    QAction* addFileCommand(const QString& title);

    enum class Answer : std::uint8_t { save, discard, cancel };

    /// Asks what is to become of the changes.
    Answer askAboutChanges();

    /// Has a field that is being written in make that part of the document.
    void finishEditing();

    /// Opens the context menu of what has the focus.
    void openContextMenu();

    /// Closes without a question: the user has answered it.
    void closeUnasked();

    /// The user does not want the changes. The document goes on as it is.
    void giveUpChanges() { emit changesGivenUp(); }

public slots:
    /// Writes the document to its file, asking for one where there is none. `saved` tells when it is done;
    /// when it cannot be done, the user is told why.
    void save();
    void saveAs();
    /// Puts what the file holds back into the text, as one step of undo; asks where changes would go.
    void revert();

signals:
    void documentChanged(); ///< Another document, or the same at another path.
    void versionChanged();
    void saved(); ///< The file has the text of this moment, or of a moment ago when there are changes.
    void savingStarted();
    /// Follows once on each `savingStarted`, after `saved` if it `succeeded`, before the user is told
    /// otherwise or more.
    void savingEnded(bool succeeded);
    void closingRefused(); ///< The user wants to keep the document open.
    void changesGivenUp();
    void aboutToClose();

protected:
    void closeEvent(QCloseEvent* event) override;
    /// Return presses a button that has the focus, as in a dialog.
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    enum class Conflict : std::uint8_t { ask, overwrite };
    enum class Closing : std::uint8_t { now, later, refused };

    void buildMenus();
    void buildFileMenu();
    void buildEditMenu();
    void showHistory();
    const QString& ownPath() const { return m_path.isEmpty() ? m_openingPath : m_path; }
    void listWindows();

    void write(const QString& path, Conflict conflict);
    void giveUpSaving();
    void showSaving(const QString& path, Conflict conflict);
    void cancelSaving(const QString& path, Conflict conflict);
    void finishSaving(const QString& path, Conflict conflict, const FileSave::Result& result);
    void resolve(const QString& path, Conflict conflict, const FileSave::Result& result);
    void adoptFile(const QString& path, const std::optional<FileIdentity>& version);
    void askAboutConflict(const QString& path, FileSave::Outcome outcome);
    void askAboutLinks(const QString& path, Conflict conflict);
    Closing prepareToClose();
    void toEditor(const char* slot);

    DocumentController& m_controller;
    std::unique_ptr<Document> m_document;
    std::vector<std::unique_ptr<QObject>> m_companions; ///< They go first.
    QString m_path;
    QString m_openingPath; ///< Of the file that is being read for a window without a document.
    std::optional<FileIdentity> m_version; ///< Of the file, as it was read or written last.

    QWidget* m_view = nullptr;
    QWidget* m_frame = nullptr;
    NoticeBar* m_notices = nullptr;
    std::array<QMenu*, 5> m_menus{};
    QAction* m_fileCommandsEnd = nullptr; ///< The separator below the commands on the file.
    QAction* m_undo = nullptr;
    QAction* m_redo = nullptr;
    QPointer<QWidget> m_lastFocus; ///< What had the focus before a menu took it.

    BackgroundTask<FileSave::Result> m_saving;
    std::shared_ptr<SaveGate> m_gate; ///< Of the save that runs.
    std::uint64_t m_writtenState = 0; ///< The state of the document that it writes.
    /// What the user wants with the other names of a file, and of which.
    std::optional<std::pair<QString, FileReplacement::Links>> m_links;
    BackgroundTask<DocumentReading> m_reverting;
    QTimer m_patience; ///< What takes longer shows.
    bool m_closesAfterSaving = false;
    bool m_closesUnasked = false;
};
