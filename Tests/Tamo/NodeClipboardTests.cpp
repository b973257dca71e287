#include "NodeClipboard.h"

#include "ParsedDesk.h"

#include <QClipboard>
#include <QGuiApplication>

namespace {

QString clipboardText() { return QGuiApplication::clipboard()->text(); }

} // namespace

TEST(NodeClipboard, CopiesTheSourceOfTheSelectedNode) {
    ParsedDesk desk(u"<a>\n  <b c='1'>x &amp; y</b>\n</a>");
    QGuiApplication::clipboard()->setText(QStringLiteral("antes"));
    NodeClipboard::copy(desk.session);
    EXPECT_EQ(clipboardText(), QStringLiteral("antes")) << "nothing is selected";
    desk.select(u"<b");
    NodeClipboard::copy(desk.session);
    EXPECT_EQ(clipboardText(), QStringLiteral("<b c='1'>x &amp; y</b>"));
    EXPECT_EQ(desk.text(), QStringLiteral("<a>\n  <b c='1'>x &amp; y</b>\n</a>"));
    EXPECT_TRUE(NodeClipboard::canPaste());
}

TEST(NodeClipboard, CutsAndPastesInOneStepEach) {
    ParsedDesk desk(u"<a>\n  <b/>\n  <c/>\n</a>\n");
    desk.select(u"<b");
    NodeClipboard::cut(desk.session);
    EXPECT_EQ(desk.text(), QStringLiteral("<a>\n  <c/>\n</a>\n"));
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Cortar"));
    desk.waitForTree();
    EXPECT_EQ(desk.selected(), u"<c/>");
    NodeClipboard::paste(desk.session);
    EXPECT_EQ(desk.text(), QStringLiteral("<a>\n  <c>\n    <b/>\n  </c>\n</a>\n"));
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Pegar"));
    desk.waitForTree();
    EXPECT_EQ(desk.selected(), u"<b/>");
    desk.undo.undo();
    desk.undo.undo();
    EXPECT_EQ(desk.text(), QStringLiteral("<a>\n  <b/>\n  <c/>\n</a>\n"));
}

TEST(NodeClipboard, PastesTheTextOfANodeAsItWasWritten) {
    ParsedDesk desk(u"<a><b>x &amp; y</b><c/></a>");
    desk.session.select(NodePath{{0, 0, 0}});
    NodeClipboard::copy(desk.session);
    desk.select(u"<c");
    NodeClipboard::paste(desk.session);
    EXPECT_EQ(desk.text(), QStringLiteral("<a><b>x &amp; y</b><c>x &amp; y</c></a>"));
    desk.undo.undo();
    desk.waitForTree();
    QGuiApplication::clipboard()->setText(QStringLiteral("x &amp; y"));
    desk.select(u"<c");
    NodeClipboard::paste(desk.session);
    EXPECT_EQ(desk.text(), QStringLiteral("<a><b>x &amp; y</b><c>x &amp;amp; y</c></a>"));
}

TEST(NodeClipboard, SaysWhatCannotBeDone) {
    ParsedDesk desk(u"<a/>");
    QGuiApplication::clipboard()->setText(QStringLiteral("texto"));
    NodeClipboard::paste(desk.session);
    EXPECT_EQ(desk.session.errorMessage(), QStringLiteral("Fuera del elemento raíz no puede haber texto."));
    desk.session.setErrorMessage(std::nullopt);
    desk.session.select(NodePath());
    NodeClipboard::cut(desk.session);
    EXPECT_EQ(desk.session.errorMessage(), QStringLiteral("No se puede hacer esa operación en ese lugar."));
    EXPECT_EQ(clipboardText(), QStringLiteral("texto"));
    EXPECT_EQ(desk.text(), QStringLiteral("<a/>"));
}

TEST(NodeClipboard, WorksOnTheTextOfNow) {
    ParsedDesk desk(u"<a><b/></a>");
    desk.select(u"<b");
    desk.buffer.type({2, 2}, u" c='1'");
    NodeClipboard::copy(desk.session);
    EXPECT_TRUE(desk.session.isTreeCurrent());
    EXPECT_EQ(clipboardText(), QStringLiteral("<b/>"));
}
