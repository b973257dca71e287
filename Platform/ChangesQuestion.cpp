#include "ChangesQuestion.h"

#include "DocumentController.h"
#include "TextStorage.h"

#include <QEventLoop>

#include <algorithm>

namespace {

/// Waits while the document is being saved.
void waitForSaving(const QPointer<DocumentWindow>& window) {
    // A save that failed may be followed by another, which the user asked for.
    while (window != nullptr && window->isSaving()) {
        QEventLoop loop;
        QObject::connect(window, &DocumentWindow::savingEnded, &loop, &QEventLoop::quit);
        QObject::connect(window, &QObject::destroyed, &loop, &QEventLoop::quit);
        loop.exec();
    }
}

/// Saves the document and waits until that is done; returns whether it succeeded.
bool save(const QPointer<DocumentWindow>& window) {
    bool hasSucceeded = false;
    const auto watching = QObject::connect(window, &DocumentWindow::savingEnded, window,
                                           [&](bool succeeded) { hasSucceeded = succeeded; });
    window->save();
    waitForSaving(window);
    QObject::disconnect(watching);
    return hasSucceeded;
}

/// The questions of one time, and the documents whose changes the user does not want.
class Questions : public QObject {
public:
    bool isSettled(const QPointer<DocumentWindow>& window) const {
        return window == nullptr ||
               (!window->isSaving() && (!window->hasChangesToKeep() || isDiscarded(window)));
    }

    /// Returns false when the document has to stay.
    bool settle(const QPointer<DocumentWindow>& window) {
        if (window->isSaving()) {
            waitForSaving(window);
            return true;
        }
        DocumentController::raise(*window);
        switch (window->askAboutChanges()) {
        case DocumentWindow::Answer::save:
            return save(window);
        case DocumentWindow::Answer::discard:
            m_discarded.push_back(window);
            connect(&window->document()->storage(), &TextStorage::editingEnded, this,
                    [this, window] { std::erase(m_discarded, window); });
            return true;
        case DocumentWindow::Answer::cancel:
            break;
        }
        return false;
    }

private:
    bool isDiscarded(const QPointer<DocumentWindow>& window) const {
        return std::ranges::find(m_discarded, window) != m_discarded.end();
    }

    std::vector<QPointer<DocumentWindow>> m_discarded;
};

} // namespace

bool ChangesQuestion::mayClose(const std::vector<QPointer<DocumentWindow>>& windows) {
    for (const auto& window : windows) {
        window->finishEditing();
    }
    Questions questions;
    const auto isOpen = [&](const auto& window) { return !questions.isSettled(window); };
    // From the first again after each question: meanwhile any of the documents may have changed.
    for (auto next = std::ranges::find_if(windows, isOpen); next != windows.end();
         next = std::ranges::find_if(windows, isOpen)) {
        if (!questions.settle(*next)) {
            return false;
        }
    }
    return true;
}
