#include "TextViewAccessible.h"

#include "TextDesk.h"

namespace {

/// What the accessibility of the view answers.
struct Reader : TextDesk {
    using TextDesk::TextDesk;

    QAccessibleInterface* interface() { return QAccessible::queryAccessibleInterface(&view); }
    QAccessibleTextInterface& read() { return *interface()->textInterface(); }
    QAccessibleEditableTextInterface& edit() { return *interface()->editableTextInterface(); }

    /// What an edit of `before` is told as.
    template <class Event>
    std::unique_ptr<Event> edited(std::u16string_view before, SourceRange replaced, Offset length, std::u16string_view now) {
        auto event = TextViewAccessible::editEvent(view, Rope(before), replaced, length, Rope(now));
        return std::unique_ptr<Event>(static_cast<Event*>(event.release()));
    }
};

using Boundary = QAccessible::TextBoundaryType;

} // namespace

TEST(TextViewAccessible, IsAnEditableText) {
    Reader reader(u"uno");
    ASSERT_NE(reader.interface(), nullptr);
    EXPECT_EQ(reader.interface()->role(), QAccessible::EditableText);
    EXPECT_TRUE(reader.interface()->state().multiLine);
    EXPECT_TRUE(reader.interface()->state().editable);
    EXPECT_TRUE(reader.interface()->state().focused);
    EXPECT_EQ(reader.interface()->text(QAccessible::Value), QStringLiteral("uno"));
}

TEST(TextViewAccessible, ReadsByCharacterWordAndLine) {
    Reader reader(u"uno d\u0301os\ntres\n");
    const struct {
        QString (QAccessibleTextInterface::*read)(int, Boundary, int*, int*) const;
        Boundary boundary;
        int offset;
        const char16_t* text;
        int start;
    } rows[] = {
        {&QAccessibleTextInterface::textAtOffset, QAccessible::CharBoundary, 4, u"d\u0301", 4},
        {&QAccessibleTextInterface::textBeforeOffset, QAccessible::CharBoundary, 6, u"d\u0301", 4},
        {&QAccessibleTextInterface::textAfterOffset, QAccessible::CharBoundary, 4, u"o", 6},
        {&QAccessibleTextInterface::textAtOffset, QAccessible::WordBoundary, 5, u"d\u0301os", 4},
        {&QAccessibleTextInterface::textBeforeOffset, QAccessible::WordBoundary, 6, u"uno", 0},
        {&QAccessibleTextInterface::textAfterOffset, QAccessible::WordBoundary, 6, u"tres", 9},
        {&QAccessibleTextInterface::textAtOffset, QAccessible::LineBoundary, 6, u"uno d\u0301os\n", 0},
        {&QAccessibleTextInterface::textAfterOffset, QAccessible::LineBoundary, 6, u"tres\n", 9},
        {&QAccessibleTextInterface::textBeforeOffset, QAccessible::LineBoundary, 14, u"tres\n", 9},
        {&QAccessibleTextInterface::textAtOffset, QAccessible::LineBoundary, 14, u"", 14},
        {&QAccessibleTextInterface::textBeforeOffset, QAccessible::LineBoundary, 3, u"", 0},
        {&QAccessibleTextInterface::textAtOffset, QAccessible::NoBoundary, 3, u"uno d\u0301os\ntres\n", 0},
    };
    for (const auto& row : rows) {
        int start = -1;
        int end = -1;
        const QString text = (reader.read().*row.read)(row.offset, row.boundary, &start, &end);
        EXPECT_EQ(text, QString::fromUtf16(row.text)) << row.offset;
        EXPECT_EQ(start, row.start) << row.offset;
        EXPECT_EQ(end - start, text.size()) << row.offset;
    }
}

TEST(TextViewAccessible, TellsABoundedPartOfAHugeText) {
    Reader reader(std::u16string(5'000'000, u'x'));
    EXPECT_EQ(reader.read().characterCount(), 5'000'000);
    EXPECT_EQ(reader.read().text(0, -1).size(), 1 << 20);
    EXPECT_EQ(reader.read().text(4'999'990, 6'000'000).size(), 10);
    int start = 0;
    int end = 0;
    EXPECT_EQ(reader.read().textAtOffset(2'000'000, QAccessible::LineBoundary, &start, &end).size(), 1 << 16);
    EXPECT_LT(start, 2'000'000);
    EXPECT_GT(end, 2'000'000);
}

TEST(TextViewAccessible, ReplacesWhatReadersCannotTake) {
    Reader reader(std::u16string{u'a', u'\0', u'\xD83D', u'b'});
    EXPECT_EQ(reader.read().text(0, 4), QStringLiteral("a\uFFFD\uFFFDb"));
}

TEST(TextViewAccessible, TellsAndMovesCaretAndSelection) {
    Reader reader(u"uno dos");
    reader.read().setCursorPosition(3);
    EXPECT_EQ(reader.shown(), u"uno| dos");
    EXPECT_EQ(reader.read().cursorPosition(), 3);
    EXPECT_EQ(reader.read().selectionCount(), 0);
    reader.read().setSelection(0, 4, 70);
    EXPECT_EQ(reader.shown(), u"uno [dos]");
    int start = 0;
    int end = 0;
    reader.read().selection(0, &start, &end);
    EXPECT_EQ(start, 4);
    EXPECT_EQ(end, 7);
    reader.read().removeSelection(0);
    EXPECT_EQ(reader.read().selectionCount(), 0);
}

TEST(TextViewAccessible, PlacesCharactersOnTheScreen) {
    Reader reader(u"uno\ndos");
    const QRect d = reader.read().characterRect(4);
    const QRect o = reader.read().characterRect(5);
    EXPECT_GT(d.width(), 3);
    EXPECT_NEAR(o.left(), d.left() + d.width(), 1);
    EXPECT_GT(d.top(), reader.read().characterRect(0).top());
    EXPECT_EQ(reader.read().offsetAtPoint(QPoint(o.left(), o.center().y())), 5);
}

TEST(TextViewAccessible, EditsAsTheUserDoes) {
    Reader reader(u"uno dos");
    reader.edit().insertText(3, QStringLiteral("!"));
    reader.edit().deleteText(0, 1);
    reader.edit().replaceText(0, 2, QStringLiteral("ON"));
    EXPECT_EQ(reader.text(), u"ON! dos");
    reader.undo.undo();
    EXPECT_EQ(reader.text(), u"no! dos");
}

TEST(TextViewAccessible, TellsWhatChanges) {
    Reader reader(u"");
    const auto inserted = reader.edited<QAccessibleTextInsertEvent>(u"uno", {1, 1}, 2, u"uabno");
    EXPECT_EQ(inserted->type(), QAccessible::TextInserted);
    EXPECT_EQ(inserted->changePosition(), 1);
    EXPECT_EQ(inserted->textInserted(), QStringLiteral("ab"));
    const auto removed = reader.edited<QAccessibleTextRemoveEvent>(u"uno", {1, 3}, 0, u"u");
    EXPECT_EQ(removed->type(), QAccessible::TextRemoved);
    EXPECT_EQ(removed->textRemoved(), QStringLiteral("no"));
    const auto updated = reader.edited<QAccessibleTextUpdateEvent>(u"uno", {0, 1}, 2, u"xyno");
    EXPECT_EQ(updated->type(), QAccessible::TextUpdated);
    EXPECT_EQ(updated->textRemoved(), QStringLiteral("u"));
    EXPECT_EQ(updated->textInserted(), QStringLiteral("xy"));
    const std::u16string huge(100'000, u'x');
    const auto much = reader.edited<QAccessibleTextInsertEvent>(u"", {0, 0}, 100'000, huge);
    EXPECT_EQ(much->textInserted().size(), 4096);
}
