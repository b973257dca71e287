#include "EditorSession.h"

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace {

struct Desk {
    std::shared_ptr<TextMirror> mirror;
    TextBuffer buffer;
    EditorSession session;
    QSignalSpy parses;

    explicit Desk(std::u16string_view text)
        : mirror(std::make_shared<TextMirror>(Rope(text))), buffer(Rope(text), mirror), session(buffer),
          parses(&session, &EditorSession::treeChanged) {}

    bool waitForParse() { return parses.wait(10'000); }
};

} // namespace

TEST(EditorSession, KnowsNothingBeforeTheFirstParse) {
    Desk desk(u"<a/>");
    EXPECT_EQ(desk.session.treeGeneration(), -1);
    EXPECT_FALSE(desk.session.isTreeCurrent());
    EXPECT_EQ(desk.session.tree().nodes.size(), 1U);
    EXPECT_EQ(desk.session.indent(), IndentStyle::spaces(4));
}

TEST(EditorSession, ParsesOnceStarted) {
    Desk desk(u"<a>\n\t<b/>\n</a>");
    desk.session.start();
    desk.session.start();
    ASSERT_TRUE(desk.waitForParse());
    EXPECT_EQ(desk.session.tree().name(*desk.session.tree().rootElement()), u"a");
    EXPECT_EQ(desk.session.lines().lineCount(), 3U);
    EXPECT_EQ(desk.session.indent(), IndentStyle::tabs());
    EXPECT_EQ(desk.session.treeGeneration(), 0);
    EXPECT_TRUE(desk.session.isTreeCurrent());
    EXPECT_EQ(desk.parses.count(), 1);
}

TEST(EditorSession, ParsesABurstOfEditsOnce) {
    Desk desk(u"<a/>");
    desk.session.start();
    ASSERT_TRUE(desk.waitForParse());
    for (const char16_t unit : std::u16string_view(u"xyz")) {
        desk.buffer.type({2, 2}, {&unit, 1});
        EXPECT_FALSE(desk.session.isTreeCurrent());
    }
    ASSERT_TRUE(desk.waitForParse());
    EXPECT_EQ(desk.parses.count(), 2);
    EXPECT_EQ(desk.session.tree().name(*desk.session.tree().rootElement()), u"azyx");
    EXPECT_EQ(desk.session.treeGeneration(), 3);
}

TEST(EditorSession, TellsWhereTheTreeIsInTheTextOfNow) {
    Desk desk(u"<a><b/></a>");
    desk.session.start();
    ASSERT_TRUE(desk.waitForParse());
    desk.buffer.type({1, 1}, u"xx");
    EXPECT_EQ(desk.session.editsSinceParse().now({3, 7}), SourceRange(5, 9));
    ASSERT_TRUE(desk.waitForParse());
    EXPECT_EQ(desk.session.editsSinceParse().now({3, 7}), SourceRange(3, 7));
}

TEST(EditorSession, TellsWhenTheDocumentBecomesEmptyOrNot) {
    Desk desk(u"a");
    desk.session.start();
    QSignalSpy changes(&desk.session, &EditorSession::isEmptyDocumentChanged);
    EXPECT_FALSE(desk.session.isEmptyDocument());
    desk.buffer.type({1, 1}, u"b");
    EXPECT_EQ(changes.count(), 0);
    desk.buffer.type({0, 2}, {});
    EXPECT_EQ(changes.count(), 1);
    EXPECT_TRUE(desk.session.isEmptyDocument());
    desk.buffer.type({0, 0}, u"c");
    desk.buffer.type({1, 1}, u"d");
    EXPECT_EQ(changes.count(), 2);
}

TEST(EditorSession, LeavesTheBufferUsable) {
    auto mirror = std::make_shared<TextMirror>();
    TextBuffer buffer(Rope(), mirror);
    {
        EditorSession session(buffer);
        session.start();
    }
    buffer.type({0, 0}, u"a");
    EXPECT_EQ(buffer.generation(), 1);
}
