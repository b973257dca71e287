#pragma once

#include <QObject>

#include <chrono>
#include <functional>

/// Ends the application a moment after its last document window has closed, unless a window or a document
/// has come up by then. Panels (dialogs, tools, popups) do not keep it running.
class AppDelegate : public QObject {
    Q_OBJECT

public:
    /// `hasOpenDocuments` is asked when the moment is over.
    explicit AppDelegate(std::function<bool()> hasOpenDocuments, QObject* parent = nullptr);

    /// What ends the application; by default it is asked to quit.
    std::function<void()> terminate;

    std::chrono::milliseconds grace{400};

    /// Watches windows close from now on.
    void applicationDidFinishLaunching();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void windowWillClose(QWidget* window);

    const std::function<bool()> m_hasOpenDocuments;
};
