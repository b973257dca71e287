#pragma once

#include "CodeEditorView.h"
#include "MarkedText.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>

/// A source pane on the screen, with a session whose first parse is done. Texts are written with the
/// selection marked.
struct EditorDesk {
    std::shared_ptr<TextMirror> mirror;
    TextBuffer buffer;
    UndoManager undoManager;
    EditorSession session;
    CodeEditorView editor;

    explicit EditorDesk(std::u16string_view marked) : EditorDesk(MarkedText(marked)) {}

    explicit EditorDesk(const MarkedText& marked)
        : mirror(std::make_shared<TextMirror>(Rope(marked.text))), buffer(Rope(marked.text), mirror),
          session(buffer, QStringLiteral("UTF-8")), editor(session) {
        buffer.setUndoManager(&undoManager);
        session.setMode(EditorSession::Mode::text);
        session.start();
        waitForParse();
        editor.resize(800, 400);
        editor.show();
        editor.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&editor));
        editor.setFocus();
        view().select(marked.selection);
    }

    TextView& view() { return editor.textView(); }
    CodeEditorCoordinator& coordinator() { return editor.coordinator(); }

    void waitForParse() {
        EXPECT_TRUE(QTest::qWaitFor([this] { return session.isTreeCurrent(); }, 10'000));
    }

    std::u16string text() const { return buffer.text().units(buffer.text().fullRange()); }

    /// The text with the selection marked.
    std::u16string state() { return marked(text(), view().selection()); }

    /// Types ASCII characters, one key each; `\t`, `\v`, `\n`, `\b` and `\x1b` are Tab, Shift-Tab, Return,
    /// Backspace and Escape.
    void type(std::string_view keys) {
        for (const char key : keys) {
            switch (key) {
            case '\t':
                QTest::keyClick(&view(), Qt::Key_Tab);
                break;
            case '\v':
                QTest::keyClick(&view(), Qt::Key_Backtab, Qt::ShiftModifier);
                break;
            case '\n':
                QTest::keyClick(&view(), Qt::Key_Return);
                break;
            case '\b':
                QTest::keyClick(&view(), Qt::Key_Backspace);
                break;
            case '\x1b':
                QTest::keyClick(&view(), Qt::Key_Escape);
                break;
            default:
                QTest::keyClick(&view(), key);
            }
        }
    }
};
