#pragma once

#include "BackgroundTask.h"
#include "DocumentReading.h"
#include "FileWatcher.h"

#include <QObject>

#include <cstdint>
#include <optional>

class DocumentWindow;
class NoticeBar;

/// Follows the file of a window's document. What others write to it is read again where the user has no
/// changes; otherwise a bar of the window tells of it, as it does when the file is gone. A companion of the
/// document.
class OutsideChangeNotice : public QObject {
    Q_OBJECT

public:
    explicit OutsideChangeNotice(DocumentWindow& window);
    ~OutsideChangeNotice() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow();
    void endOwnWrite(bool hasSucceeded);
    void learnContent();
    void takeChange(const FileIdentity& now);
    void takeRemoval();
    void takeReturn();
    void reload(bool isWanted);
    void finishReloading(DocumentReading reading, bool isWanted);
    void showChange(const FileIdentity& now);

    DocumentWindow& m_window;
    NoticeBar& m_bar;
    FileWatcher m_watcher;
    std::optional<FileIdentity> m_seen; ///< The file as it was seen last; nothing when it is gone.
    BackgroundTask<DocumentReading> m_reading;
    BackgroundTask<std::optional<FileIdentity>> m_learning;
    /// The state of the history that was saved until its file was removed.
    std::optional<std::uint64_t> m_cleanMark;
};
