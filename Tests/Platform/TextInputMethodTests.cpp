#include "TextInputMethod.h"

#include "TextDesk.h"

#include <QApplication>
#include <QInputMethodEvent>

namespace {

void compose(TextDesk& desk, const QString& text, const QList<QInputMethodEvent::Attribute>& attributes = {}) {
    QInputMethodEvent event(text, attributes);
    QApplication::sendEvent(&desk.view, &event);
}

void commit(TextDesk& desk, const QString& text, int start = 0, int length = 0) {
    QInputMethodEvent event;
    event.setCommitString(text, start, length);
    QApplication::sendEvent(&desk.view, &event);
}

/// Notes whether what is about to change is being composed.
struct Watcher : TextViewDelegate {
    const TextView* view = nullptr;
    std::vector<bool> marked;
    bool shouldChangeText(SourceRange, std::u16string_view) override {
        marked.push_back(view->hasMarkedText());
        return true;
    }
};

} // namespace

TEST(TextInputMethod, ComposesAndCommits) {
    for (const std::u16string text : {u"", u"ab"}) {
        TextDesk desk(text);
        compose(desk, QStringLiteral("´"));
        EXPECT_TRUE(desk.view.hasMarkedText());
        EXPECT_EQ(desk.shown(), u"|" + text);
        EXPECT_FALSE(desk.undo.canUndo());
        desk.view.grab();
        commit(desk, QStringLiteral("á"));
        EXPECT_FALSE(desk.view.hasMarkedText());
        EXPECT_EQ(desk.shown(), u"á|" + text);
    }
}

TEST(TextInputMethod, LeavesTheTextAloneWhenComposingIsGivenUp) {
    TextDesk desk(u"ab");
    compose(desk, QStringLiteral("に"));
    compose(desk, QString());
    EXPECT_FALSE(desk.view.hasMarkedText());
    EXPECT_EQ(desk.shown(), u"|ab");
    EXPECT_FALSE(desk.undo.canUndo());
}

TEST(TextInputMethod, TakesTheSelectionAwayWhenComposingBegins) {
    TextDesk desk(u"uno dos");
    desk.view.select(SourceRange(0, 3));
    compose(desk, QStringLiteral("に"));
    EXPECT_EQ(desk.shown(), u"| dos");
    commit(desk, QStringLiteral("日"));
    EXPECT_EQ(desk.shown(), u"日| dos");
}

TEST(TextInputMethod, CommitsInPlaceOfWhatIsThere) {
    TextDesk desk(u"uno dos");
    desk.view.select(SourceRange::empty(7));
    commit(desk, QStringLiteral("tres"), -3, 3);
    EXPECT_EQ(desk.shown(), u"uno tres|");
    commit(desk, QStringLiteral("x"), -300, 400);
    EXPECT_EQ(desk.shown(), u"x|");
}

TEST(TextInputMethod, ComposesAnewWhatIsSelected) {
    TextDesk desk(u"にほん");
    desk.view.select(SourceRange(0, 3));
    EXPECT_EQ(desk.view.inputMethodQuery(Qt::ImCurrentSelection).toString(), QStringLiteral("にほん"));
    compose(desk, QStringLiteral("日本"));
    commit(desk, QStringLiteral("日本"));
    EXPECT_EQ(desk.shown(), u"日本|");
}

TEST(TextInputMethod, TellsTheDelegateWhatIsComposed) {
    TextDesk desk(u"");
    Watcher watcher;
    watcher.view = &desk.view;
    desk.view.setDelegate(&watcher);
    compose(desk, QStringLiteral("´"));
    commit(desk, QStringLiteral("á"));
    commit(desk, QStringLiteral(">"));
    EXPECT_EQ(watcher.marked, (std::vector<bool>{true, false}));
    desk.view.setDelegate(nullptr);
}

TEST(TextInputMethod, SelectsWhatTheMethodWants) {
    TextDesk desk(u"uno dos");
    compose(desk, QString(), {{QInputMethodEvent::Selection, 4, 3, {}}});
    EXPECT_EQ(desk.shown(), u"uno [dos]");
}

TEST(TextInputMethod, ShowsOnlyWhatIsAroundTheCaret) {
    std::u16string units;
    for (int i = 0; i < 100'000; ++i) {
        units += u"😀";
    }
    TextDesk desk(units);
    desk.view.select(TextSelection{100'002, 100'000});
    const QString seen = desk.view.inputMethodQuery(Qt::ImSurroundingText).toString();
    EXPECT_LE(seen.size(), 512);
    EXPECT_GE(seen.size(), 500);
    EXPECT_TRUE(seen.isValidUtf16());
    const int caret = desk.view.inputMethodQuery(Qt::ImCursorPosition).toInt();
    EXPECT_EQ(desk.view.inputMethodQuery(Qt::ImAnchorPosition).toInt(), caret + 2);
    EXPECT_EQ(desk.view.inputMethodQuery(Qt::ImTextBeforeCursor).toString().size(), caret);
    EXPECT_EQ(desk.view.inputMethodQuery(Qt::ImTextAfterCursor).toString().size(), seen.size() - caret);
    EXPECT_EQ(desk.view.inputMethodQuery(Qt::ImCurrentSelection).toString(), QStringLiteral("😀"));

    desk.view.selectAll();
    EXPECT_LE(desk.view.inputMethodQuery(Qt::ImCurrentSelection).toString().size(), 512);
    EXPECT_EQ(desk.view.inputMethodQuery(Qt::ImAnchorPosition).toInt(), 0);
}

TEST(TextInputMethod, KeepsLooksAndCaretOfWhatIsComposed) {
    QTextCharFormat format;
    format.setFontItalic(true);
    const QInputMethodEvent event(QStringLiteral("abcd"), {{QInputMethodEvent::TextFormat, 1, 99, format},
                                                           {QInputMethodEvent::Cursor, 2, 1, {}}});
    const TextLayout::Preedit preedit = TextInputMethod::preedit(event);
    EXPECT_EQ(preedit.caret, 2);
    ASSERT_EQ(preedit.formats.size(), 1);
    EXPECT_EQ(preedit.formats[0].start, 1);
    EXPECT_EQ(preedit.formats[0].length, 3);
    EXPECT_TRUE(preedit.formats[0].format.fontItalic());
    const TextLayout::Preedit plain = TextInputMethod::preedit(QInputMethodEvent(QStringLiteral("ab"), {}));
    ASSERT_EQ(plain.formats.size(), 1);
    EXPECT_TRUE(plain.formats[0].format.fontUnderline());
}
