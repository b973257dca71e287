#include "SessionQuestion.h"

#include "DocumentController.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <QPointer>
#include <QSessionManager>

SessionQuestion::SessionQuestion(DocumentController& controller, QObject* parent)
    : QObject(parent), m_controller(controller) {
    // Directly: the answer counts when the signal returns.
    connect(qApp, &QGuiApplication::commitDataRequest, this, &SessionQuestion::commitData,
            Qt::DirectConnection);
}

void SessionQuestion::commitData(QSessionManager& manager) {
    // Which files were open is written down nowhere.
    manager.setRestartHint(QSessionManager::RestartNever);
    if (!manager.allowsInteraction()) {
        return;
    }
    const bool mayEnd = ask();
    manager.release();
    if (!mayEnd) {
        manager.cancel();
    }
}

bool SessionQuestion::ask() {
    for (const QPointer<DocumentWindow> window : m_controller.windows()) {
        if (window == nullptr || !window->hasChangesToKeep()) {
            continue;
        }
        DocumentController::raise(*window);
        switch (window->askAboutChanges()) {
        case DocumentWindow::Answer::save:
            if (!save(*window)) {
                return false;
            }
            break;
        case DocumentWindow::Answer::discard:
            window->giveUpChanges();
            break;
        case DocumentWindow::Answer::cancel:
            return false;
        }
    }
    return true;
}

/// Waits until the document is saved; answers false when it is not.
bool SessionQuestion::save(DocumentWindow& window) {
    QEventLoop loop;
    bool hasSucceeded = false;
    connect(&window, &DocumentWindow::savingEnded, &loop, [&](bool succeeded) {
        hasSucceeded = succeeded;
        loop.quit();
    });
    connect(&window, &QObject::destroyed, &loop, &QEventLoop::quit);
    window.save();
    if (window.isSaving()) {
        loop.exec();
    }
    return hasSucceeded;
}
