#include "SessionDesk.h"

#include <QTest>

#include <gtest/gtest.h>

namespace {

using Mode = EditorSession::Mode;

/// A session whose text is edited as a view would do it.
struct Desk : SessionDesk {
    explicit Desk(std::u16string_view text, Mode mode = Mode::visual) : SessionDesk(text) {
        session.setMode(mode);
        EXPECT_TRUE(open());
    }

    Offset place(std::u16string_view source) const { return static_cast<Offset>(text().find(source)); }

    /// Puts `units` in front of `source`, and waits for the parse.
    void insert(std::u16string_view source, std::u16string_view units) {
        buffer.replace(SourceRange::empty(place(source)), Rope(units));
        EXPECT_TRUE(settle());
    }
    void erase(std::u16string_view units) {
        buffer.replace(SourceRange::at(place(units), static_cast<std::int64_t>(units.size())), Rope());
        EXPECT_TRUE(settle());
    }
    void undo() {
        undoManager.undo();
        EXPECT_TRUE(settle());
    }
    /// What the text view tells of a caret in front of `source`.
    void moveCaret(std::u16string_view source) {
        session.setTextSelection(SourceRange::empty(place(source)));
        session.followCaret();
    }
};

constexpr std::u16string_view shelf =
    u"<lib><libro><autor>Ana</autor></libro><libro><autor>Eva</autor></libro></lib>";

} // namespace

TEST(EditorSessionPlace, IsKeptWhenACommentIsPutAboveTheRoot) {
    Desk desk(shelf);
    desk.session.collapse(NodePath{{0, 0}});
    desk.select(u"<libro><autor>Eva");
    const std::u16string rows = desk.rows();
    desk.insert(u"<lib>", u"<!-- hola -->\n");
    EXPECT_EQ(desk.rows(), u"<!-- hola -->\n" + rows);
    EXPECT_EQ(desk.selected(), u"<libro><autor>Eva</autor></libro>");
    desk.undo();
    EXPECT_EQ(desk.rows(), rows);
    EXPECT_EQ(desk.selected(), u"<libro><autor>Eva</autor></libro>");
}

TEST(EditorSessionPlace, IsKeptWhileACommentIsTypedThere) {
    Desk desk(shelf);
    desk.session.collapse(NodePath{{0, 0}});
    const std::u16string rows = desk.rows();
    desk.insert(u"<lib>", u"<!--");
    desk.insert(u"<lib>", u" nota ");
    desk.insert(u"<lib>", u"-->");
    EXPECT_EQ(desk.rows(), u"<!-- nota -->\n" + rows);
}

TEST(EditorSessionPlace, IsKeptByADropAndItsUndo) {
    Desk desk(u"<a><b><c><d/></c></b><e/><f><g/></f></a>");
    desk.session.collapse(desk.path(u"<f>"));
    desk.select(u"<b>");
    const std::u16string rows = desk.rows();
    desk.session.move(desk.path(u"<b>"), desk.path(u"<f>"), TreeMutation::Placement::after);
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(desk.rows(), u"a\n e\n +f\n b\n  c\n   d\n");
    EXPECT_EQ(desk.selected(), u"<b><c><d/></c></b>");
    desk.undo();
    EXPECT_EQ(desk.rows(), rows);
    EXPECT_EQ(desk.selected(), u"<b><c><d/></c></b>");
}

TEST(EditorSessionPlace, ComesBackWithADeletedNode) {
    Desk desk(u"<a><b><c><d/></c></b><e/></a>");
    desk.select(u"<e/>");
    const std::u16string rows = desk.rows();
    desk.erase(u"<b><c><d/></c></b>");
    EXPECT_EQ(desk.rows(), u"a\n e\n");
    EXPECT_EQ(desk.selected(), u"<e/>");
    desk.undo();
    EXPECT_EQ(desk.rows(), rows);
    EXPECT_EQ(desk.selected(), u"<e/>");
}

TEST(EditorSessionPlace, IsKeptByAFormattingAndItsUndo) {
    Desk desk(shelf);
    desk.session.collapse(NodePath{{0, 0}});
    desk.select(u"<autor>Eva");
    const std::u16string rows = desk.rows();
    desk.session.format();
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(desk.rows(), rows);
    EXPECT_EQ(desk.selected(), u"<autor>Eva</autor>");
    desk.undo();
    EXPECT_EQ(desk.rows(), rows);
    EXPECT_EQ(desk.selected(), u"<autor>Eva</autor>");
}

TEST(EditorSessionPlace, LeavesNoOtherNodeSelectedForADeletedOne) {
    Desk desk(u"<a><b/><c/></a>");
    desk.select(u"<b/>");
    const std::int64_t serial = desk.session.selectionSerial();
    desk.erase(u"<b/>");
    EXPECT_EQ(desk.selected(), u"-");
    EXPECT_GT(desk.session.selectionSerial(), serial);
}

TEST(EditorSessionPlace, TellsASelectionThatOnlyMovedFromAnother) {
    Desk desk(u"<a><b/><c/></a>");
    desk.select(u"<c/>");
    const std::int64_t serial = desk.session.selectionSerial();
    desk.insert(u"<a>", u"<!---->");
    EXPECT_EQ(desk.session.selection(), (NodePath{{1, 1}}));
    EXPECT_EQ(desk.session.selectionSerial(), serial);
    desk.select(u"<b/>");
    EXPECT_GT(desk.session.selectionSerial(), serial);
}

TEST(EditorSessionPlace, FollowsWhatTheUserSelectsExpandsOrCollapsesMeanwhile) {
    Desk desk(u"<a><b><c/></b><d><e/></d></a>");
    desk.buffer.replace({0, 0}, Rope(u"<!-- x -->"));
    // The parse has been asked for by now, and is under way or done; the rows are still those of the tree
    // before.
    QObject::connect(&desk.session, &EditorSession::rowsChanged, &desk.session, [] {});
    ASSERT_TRUE(waitFor([&] { return !desk.session.isTreeCurrent(); }));
    desk.session.collapse(NodePath{{0, 0}});
    desk.session.select(NodePath{{0, 1}});
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(desk.rows(), u"<!-- x -->\na\n +b\n d\n  e\n");
    EXPECT_EQ(desk.selected(), u"<d><e/></d>");
}

TEST(EditorSessionPlace, IsThatOfACommandGivenForTheTreeBefore) {
    Desk desk(u"<a><b/><c/></a>");
    const NodePath b = desk.path(u"<b/>");
    desk.buffer.replace({3, 3}, Rope(u"<x/>"));
    desk.session.rename(b, QStringLiteral("nuevo"));
    EXPECT_EQ(desk.text(), u"<a><x/><nuevo/><c/></a>");
    desk.buffer.replace({3, 3}, Rope(u"<y/>"));
    desk.session.move(NodePath{{0, 2}}, NodePath{{0, 0}}, TreeMutation::Placement::before);
    EXPECT_EQ(desk.text(), u"<a><y/><c/><x/><nuevo/></a>");
    ASSERT_TRUE(desk.settle());
    desk.select(u"<c/>");
    desk.buffer.replace({3, 3}, Rope(u"<z/>"));
    desk.session.requestNamePrompt(EditorSession::NamePrompt::Kind::wrap);
    ASSERT_TRUE(desk.session.namePrompt().has_value());
    EXPECT_EQ(desk.session.namePrompt()->path, desk.path(u"<c/>"));
}

// The caret

TEST(EditorSessionPlace, FollowsTheCaretThatMovedWhileTheTreeWasOld) {
    Desk desk(u"<a><b/><c/></a>", Mode::split);
    desk.moveCaret(u"<b/>");
    ASSERT_EQ(desk.selected(), u"<b/>");
    desk.session.noteTyping();
    desk.buffer.replace({3, 3}, Rope(u"<x/>"));
    desk.moveCaret(u"<c/>");
    ASSERT_EQ(desk.session.selection(), (NodePath{{0, 0}}));
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(desk.selected(), u"<c/>");
}

TEST(EditorSessionPlace, FollowsTheCaretWhenItsNodeIsErasedBehindIt) {
    Desk desk(u"<a><b/><c/></a>", Mode::text);
    desk.moveCaret(u"<b/>");
    ASSERT_EQ(desk.selected(), u"<b/>");
    desk.session.noteTyping();
    desk.erase(u"<b/>");
    EXPECT_EQ(desk.selected(), u"<c/>");
}

TEST(EditorSessionPlace, IsNotTakenFromTheTreeByAParse) {
    Desk desk(u"<a><b/><c/></a>", Mode::split);
    desk.moveCaret(u"<b/>");
    desk.select(u"<c/>");
    desk.session.setAttribute(desk.path(u"<c/>"), QStringLiteral("n"), QStringLiteral("1"));
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(desk.selected(), u"<c n=\"1\"/>");
    desk.insert(u"<a>", u"<!---->");
    EXPECT_EQ(desk.selected(), u"<c n=\"1\"/>");
}

TEST(EditorSessionPlace, IsNotTakenByTheCaretThatARevealMoves) {
    Desk desk(u"<a><b/></a>", Mode::split);
    desk.moveCaret(u"<b/>");
    // As a view does it: what is revealed is selected in the text.
    QObject::connect(&desk.session, &EditorSession::revealRequestChanged, &desk.session, [&] {
        desk.session.setTextSelection(desk.session.revealRequest()->range);
        desk.session.followCaret();
    });
    desk.session.select(NodePath());
    EXPECT_EQ(desk.session.selection(), NodePath());
    desk.insert(u"<b/>", u" ");
    EXPECT_EQ(desk.session.selection(), NodePath());
}

TEST(EditorSessionPlace, IsThatOfAMutationAlsoAfterTyping) {
    Desk desk(u"<a><b/><c/></a>", Mode::split);
    desk.select(u"<b/>");
    desk.session.noteTyping();
    desk.buffer.replace({3, 3}, Rope(u" "));
    desk.moveCaret(u"</a>");
    desk.session.duplicate();
    ASSERT_TRUE(desk.settle());
    EXPECT_NE(desk.selected(), u"-");
    EXPECT_EQ(desk.text().find(u"<b/>"), 4U);
}

TEST(EditorSessionPlace, IsCarriedFromNowhereBeforeTheFirstParse) {
    SessionDesk desk(shelf);
    desk.session.start();
    desk.buffer.replace(SourceRange::empty(5), Rope(u"<nuevo/>"));
    desk.session.select(NodePath{{0}});
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(desk.session.tree().text.string(), desk.text());
    EXPECT_EQ(desk.session.selection(), (NodePath{{0}}));
}
