#pragma once

#include "BackgroundTask.h"
#include "Document.h"
#include "FileIdentity.h"

#include <QMainWindow>
#include <QPointer>
#include <QTimer>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

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

    Document* document() const { return m_document.get(); }
    QWidget* view() const { return m_view; }
    const QString& path() const { return m_path; }
    const std::optional<FileIdentity>& version() const { return m_version; }

    /// The file's name, "Sin título" without one.
    QString documentName() const;

    /// Whether this is a new document that nobody touched.
    bool isPristine() const;
    bool isSaving() const { return m_saving.isRunning(); }

    QMenu& menu(Menu which) const { return *m_menus[static_cast<std::size_t>(which)]; }
    NoticeBar& notices() const { return *m_notices; }

    /// Says that a file is being read, and offers to give up.
    void showOpening(const QString& path, std::function<void()> cancel);

    /// Whether the document may go: asks the user where there are changes. True when it may go at once; when
    /// it is to be saved before, the window closes by itself after that.
    bool askToClose();

public slots:
    /// Writes the document to its file, asking for one where there is none. `saved` tells when it is done;
    /// when it cannot be done, the user is told why.
    void save();
    void saveAs();
    /// Puts what the file holds back into the text, as one step of undo; asks where changes would go.
    void revert();

signals:
    void documentChanged(); ///< Another document, or the same at another path.
    void saved();
    void closingRefused(); ///< The user wants to keep the document open.
    void aboutToClose();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    enum class Conflict : std::uint8_t { ask, overwrite };

    struct SaveResult {
        std::expected<void, QString> written;
        bool isConflict = false; ///< The file is not the one that was read; nothing was written.
        bool isCancelled = false;
        std::optional<FileIdentity> version;
    };
    struct Reading {
        std::expected<std::unique_ptr<DocumentContents>, QString> contents;
        std::optional<FileIdentity> version;
    };

    void buildMenus();
    void buildFileMenu();
    void buildEditMenu();
    void showHistory();
    void showTitle();
    void listWindows();

    void write(const QString& path, Conflict conflict);
    void finishSaving(const QString& path, SaveResult result);
    void askAboutConflict(const QString& path);
    void reload(const QString& actionName);
    void finishReloading(const QString& actionName, Reading reading);
    void say(const QString& text);
    void toEditor(const char* slot);

    DocumentController& m_controller;
    std::unique_ptr<Document> m_document;
    QString m_path;
    std::optional<FileIdentity> m_version; ///< Of the file, as it was read or written last.

    QWidget* m_view = nullptr;
    QWidget* m_frame = nullptr;
    NoticeBar* m_notices = nullptr;
    std::array<QMenu*, 5> m_menus{};
    QAction* m_undo = nullptr;
    QAction* m_redo = nullptr;
    QPointer<QWidget> m_lastFocus; ///< What had the focus before a menu took it.

    BackgroundTask<SaveResult> m_saving;
    std::stop_source m_savingStop;
    BackgroundTask<Reading> m_reloading;
    QTimer m_patience; ///< What takes longer shows.
    bool m_closesAfterSaving = false;
};
