#include "KeyTable.h"

#include "CodeEditorView.h"
#include "DocumentController.h"
#include "DocumentWindow.h"
#include "EditingKeys.h"
#include "EditorDocument.h"
#include "EditorWindowView.h"
#include "TextView.h"
#include "TreeEditorView.h"
#include "TreeOutlineView.h"
#include "TreeRowEditor.h"

#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QSet>
#include <QTest>

#include <gtest/gtest.h>

namespace {

/// A window as the program opens it.
struct Desk {
    DocumentController controller{std::make_unique<EditorDocumentType>()};
    DocumentWindow* window = nullptr;

    Desk() {
        controller.newDocument();
        EXPECT_FALSE(controller.windows().empty());
        window = controller.windows().front();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
    }
    EditorDocument& document() const { return *static_cast<EditorDocument*>(window->document()); }
    EditorWindowView& view() const { return *static_cast<EditorWindowView*>(window->view()); }
};

/// All keys of a keyboard that might do something alone or with modifiers.
QList<int> keys() {
    QList<int> all{Qt::Key_Return,    Qt::Key_Enter,  Qt::Key_Escape,   Qt::Key_Tab,
                   Qt::Key_Backspace, Qt::Key_Delete, Qt::Key_Insert,   Qt::Key_Home,
                   Qt::Key_End,       Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Up,
                   Qt::Key_Down,      Qt::Key_Left,   Qt::Key_Right,    Qt::Key_Space};
    for (int key = Qt::Key_F1; key <= Qt::Key_F20; ++key) {
        all += key;
    }
    for (int key = Qt::Key_Exclam; key <= Qt::Key_AsciiTilde; ++key) {
        all += key;
    }
    return all;
}

/// Every key with every set of modifiers that types nothing.
QList<QKeyCombination> commandKeys() {
    QList<QKeyCombination> all;
    for (const int key : keys()) {
        for (int set = 0; set < 8; ++set) {
            Qt::KeyboardModifiers modifiers;
            modifiers.setFlag(Qt::ShiftModifier, set & 1);
            modifiers.setFlag(Qt::ControlModifier, set & 2);
            modifiers.setFlag(Qt::AltModifier, set & 4);
            const bool types = key >= Qt::Key_Space && key <= Qt::Key_AsciiTilde && set < 2;
            if (!types) {
                all += QKeyCombination(modifiers, static_cast<Qt::Key>(key));
            }
        }
    }
    return all;
}

QSet<QKeySequence> listed(const QList<KeySection>& sections) {
    QSet<QKeySequence> all;
    for (const KeySection& section : sections) {
        for (const KeyBinding& binding : section.bindings) {
            all += QSet<QKeySequence>(binding.keys.begin(), binding.keys.end());
        }
    }
    return all;
}

QSet<QKeySequence> listedFor(const DocumentWindow& window) {
    return listed(KeyTable::ofMenus(*window.menuBar()) + KeyTable::ofViews());
}

/// The mnemonic of a title; none when it has none.
QChar mnemonic(const QString& title) {
    const QKeySequence key = QKeySequence::mnemonic(title);
    return key.isEmpty() ? QChar() : QChar(static_cast<char16_t>(key[0].key()));
}

void expectDistinctMnemonics(const QList<QAction*>& actions, const QString& where) {
    QSet<QChar> taken;
    for (const QAction* const action : actions) {
        const QChar letter = mnemonic(action->text());
        EXPECT_FALSE(!letter.isNull() && taken.contains(letter))
            << where.toStdString() << ": " << action->text().toStdString();
        taken += letter;
        if (action->menu() != nullptr) {
            expectDistinctMnemonics(action->menu()->actions(), action->text());
        }
    }
}

/// Whether a widget takes a key that comes to it.
bool takes(QWidget& widget, QKeyCombination key) {
    QKeyEvent press(QEvent::KeyPress, key.key(), key.keyboardModifiers());
    QCoreApplication::sendEvent(&widget, &press);
    return press.isAccepted();
}

} // namespace

TEST(KeyTable, ShowsTitlesWithoutMnemonics) {
    EXPECT_EQ(KeyTable::plainTitle(QStringLiteral("Guardar &como…")), QStringLiteral("Guardar como…"));
    EXPECT_EQ(KeyTable::plainTitle(QStringLiteral("a && b&")), QStringLiteral("a & b&"));
}

TEST(KeyTable, ListsTheCommandsOfTheMenus) {
    const Desk desk;
    const QList<KeySection> menus = KeyTable::ofMenus(*desk.window->menuBar());
    ASSERT_FALSE(menus.isEmpty());
    EXPECT_EQ(menus.first().title, QStringLiteral("Archivo"));
    const auto has = [&](const QString& meaning, const QKeySequence& key) {
        for (const KeySection& section : menus) {
            for (const KeyBinding& binding : section.bindings) {
                if (binding.meaning == meaning && binding.keys.contains(key)) {
                    return true;
                }
            }
        }
        return false;
    };
    EXPECT_TRUE(has(QStringLiteral("Rehacer"), Qt::CTRL | Qt::Key_Y));
    EXPECT_TRUE(has(QStringLiteral("Mover arriba"), Qt::CTRL | Qt::ALT | Qt::Key_Up));
    EXPECT_TRUE(has(QStringLiteral("Mover arriba"), Qt::ALT | Qt::SHIFT | Qt::Key_Up));
    EXPECT_TRUE(has(QStringLiteral("Panel anterior"), Qt::SHIFT | Qt::Key_F6));
    EXPECT_TRUE(has(QStringLiteral("Problema siguiente"), Qt::Key_F8));
    EXPECT_TRUE(has(QStringLiteral("Atajos de teclado"), Qt::Key_F1));
}

TEST(KeyTable, HasNoShortcutTwiceInTheMenus) {
    const Desk desk;
    QSet<QKeySequence> seen;
    for (const KeySection& section : KeyTable::ofMenus(*desk.window->menuBar())) {
        for (const KeyBinding& binding : section.bindings) {
            for (const QKeySequence& key : binding.keys) {
                EXPECT_FALSE(seen.contains(key)) << key.toString().toStdString();
                seen += key;
            }
        }
    }
}

TEST(KeyTable, HasEveryKeyOfTheText) {
    const Desk desk;
    const QSet<QKeySequence> all = listedFor(*desk.window);
    for (const QKeyCombination key : commandKeys()) {
        const QKeyEvent event(QEvent::KeyPress, key.key(), key.keyboardModifiers());
        if (EditingKeys::isEditingKey(event)) {
            EXPECT_TRUE(all.contains(key)) << QKeySequence(key).toString().toStdString();
        }
    }
    for (const QAction* const action : desk.view().codeEditor().textView().actions()) {
        for (const QKeySequence& key : action->shortcuts()) {
            EXPECT_TRUE(all.contains(key)) << key.toString().toStdString();
        }
    }
}

TEST(KeyTable, HasEveryKeyOfTheTree) {
    const Desk desk;
    EditorSession& session = desk.document().session();
    session.apply(DocumentTemplate::catalogue()[0]);
    ASSERT_TRUE(QTest::qWaitFor([&] { return session.isTreeCurrent() && session.rows().size() != 0; }));
    const QSet<QKeySequence> all = listedFor(*desk.window);
    TreeOutlineView& outline = desk.view().treeEditor().outline();
    int taken = 0;
    for (const QKeyCombination key : commandKeys()) {
        // Shift changes nothing there.
        const QKeyCombination plain(key.keyboardModifiers() & ~Qt::ShiftModifier, key.key());
        outline.setSelectedRow(0);
        if (takes(outline, key)) {
            ++taken;
            EXPECT_TRUE(all.contains(key) || all.contains(plain))
                << QKeySequence(key).toString().toStdString();
        }
        if (outline.editor() != nullptr) {
            QTest::keyClick(outline.editor(), Qt::Key_Escape);
        }
        ASSERT_TRUE(QTest::qWaitFor([&] { return session.isTreeCurrent(); }));
        if (session.rows().size() == 0) {
            // Delete took the only node away.
            desk.document().undoManager().undo();
            ASSERT_TRUE(
                QTest::qWaitFor([&] { return session.isTreeCurrent() && session.rows().size() != 0; }));
        }
    }
    EXPECT_GT(taken, 10);
}

TEST(Menus, ShareNoMnemonic) {
    const Desk desk;
    expectDistinctMnemonics(desk.window->menuBar()->actions(), QStringLiteral("menu bar"));
}
