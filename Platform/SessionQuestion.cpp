#include "SessionQuestion.h"

#include "ChangesQuestion.h"
#include "DocumentController.h"

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
    const auto open = m_controller.windows();
    const std::vector<QPointer<DocumentWindow>> asked(open.begin(), open.end());
    if (!ChangesQuestion::mayClose(asked)) {
        return false;
    }
    for (const QPointer<DocumentWindow>& window : asked) {
        if (window != nullptr && window->hasChangesToKeep()) {
            window->giveUpChanges();
        }
    }
    return true;
}
