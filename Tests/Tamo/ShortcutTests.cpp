#include "DocumentController.h"
#include "DocumentWindow.h"
#include "EditingKeys.h"
#include "EditorDocument.h"
#include "EditorWindowView.h"
#include "TextView.h"

#include <QAction>
#include <QKeyEvent>
#include <QShortcut>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>
#include <set>

namespace {

/// A window of the program, with all its menus.
struct Desk {
    DocumentController controller{std::make_unique<EditorDocumentType>()};
    DocumentWindow* window = nullptr;

    Desk() {
        QSignalSpy opened(&controller, &DocumentController::windowOpened);
        controller.newDocument();
        EXPECT_TRUE(!opened.isEmpty() || opened.wait(10'000));
        window = opened.first().first().value<DocumentWindow*>();
    }

    /// The keys of all commands of the window.
    std::set<QKeySequence> shortcuts() const {
        std::set<QKeySequence> keys;
        for (const QAction* action : window->findChildren<QAction*>()) {
            for (const QKeySequence& key : action->shortcuts()) {
                keys.insert(key);
            }
        }
        for (const QShortcut* shortcut : window->findChildren<QShortcut*>()) {
            keys.insert(shortcut->key());
        }
        return keys;
    }
};

bool isTakenByText(const QKeySequence& keys) {
    const QKeyCombination key = keys[0];
    const QKeyEvent press(QEvent::ShortcutOverride, key.key(), key.keyboardModifiers());
    return EditingKeys::isEditingKey(press);
}

/// What a text does with these keys is what their commands do in it.
std::set<QKeySequence> keysOfBoth() {
    std::set<QKeySequence> keys;
    for (const auto key : {QKeySequence::Undo, QKeySequence::Redo, QKeySequence::Cut, QKeySequence::Copy,
                           QKeySequence::Paste, QKeySequence::SelectAll}) {
        for (const QKeySequence& binding : QKeySequence::keyBindings(key)) {
            keys.insert(binding);
        }
    }
    return keys;
}

} // namespace

/// Which keys those of a text are is up to the desktop: also run where that has letters erase.
TEST(Shortcuts, AreTakenByTheTextOnlyWhereItDoesTheSame) {
    const Desk desk;
    const std::set<QKeySequence> both = keysOfBoth();
    const std::set<QKeySequence> shortcuts = desk.shortcuts();
    EXPECT_TRUE(shortcuts.contains(QKeySequence(Qt::CTRL | Qt::Key_D)));
    EXPECT_TRUE(shortcuts.contains(QKeySequence(Qt::CTRL | Qt::Key_F)));
    EXPECT_GT(shortcuts.size(), 25U);
    for (const QKeySequence& keys : shortcuts) {
        EXPECT_TRUE(both.contains(keys) || !isTakenByText(keys)) << keys.toString().toStdString();
    }
}

TEST(Shortcuts, LeaveOutKeysThatWouldEraseALine) {
    for (const Qt::Key key : {Qt::Key_D, Qt::Key_K, Qt::Key_U}) {
        EXPECT_FALSE(isTakenByText(QKeySequence(Qt::CTRL | key)));
    }
}
