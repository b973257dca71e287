#include "CodeEditorView.h"
#include "EditorWindowView.h"
#include "ParsedDesk.h"
#include "TreeEditorView.h"

#include <QScrollBar>

namespace {

using Mode = EditorSession::Mode;

std::u16string books(int count) {
    std::u16string text = u"<lib>\n";
    for (int book = 0; book < count; ++book) {
        text += u"  <libro>\n    <autor" + QString::number(book).toStdU16String() + u"/>\n  </libro>\n";
    }
    return text + u"</lib>\n";
}

/// A window over a long document, its tree fully collapsed below the root.
struct Desk : ParsedDesk {
    EditorWindowView window{session, undoManager};

    explicit Desk(Mode mode) : ParsedDesk(books(150)) {
        session.setMode(mode);
        window.resize(900, 600);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
    }
    ~Desk() { window.hide(); }

    TextView& source() { return window.codeEditor().textView(); }
    TreeOutlineView& outline() { return window.treeEditor().outline(); }

    Offset place(std::u16string_view units) const {
        return static_cast<Offset>(SessionDesk::text().find(units));
    }
    bool showsText(std::u16string_view units) {
        const std::size_t line = source().text().line(place(units));
        return source().isVisible() && source().firstVisibleLine() <= line &&
               line <= source().lastVisibleLine();
    }
    bool showsRow(std::u16string_view units) {
        const auto row = session.rows().row(path(units), session.tree());
        return row && outline().isVisible() &&
               outline().viewport()->rect().contains(outline().rect(*row).center());
    }
    void scrollTextTo(std::u16string_view units) {
        source().verticalScrollBar()->setValue(0);
        source().scrollToVisible(SourceRange::empty(place(units)));
        EXPECT_TRUE(showsText(units));
    }
};

template <class Condition>
bool soon(Condition condition) {
    return QTest::qWaitFor(condition, 10'000);
}

} // namespace

TEST(PlaceKeeper, ShowsTheNodeAtTheCaretInTheTree) {
    Desk desk(Mode::text);
    desk.source().select(SourceRange::empty(desk.place(u"<autor90/>")));
    desk.scrollTextTo(u"<autor90/>");
    desk.session.setMode(Mode::visual);
    EXPECT_TRUE(soon([&] { return desk.showsRow(u"<autor90/>"); }));
    EXPECT_EQ(desk.selected(), u"<autor90/>");
}

TEST(PlaceKeeper, ScrollsToTheSideOnlyWhereTheNodeNeedsIt) {
    Desk desk(Mode::visual);
    for (const std::u16string_view book : {u"<autor3/>", u"<autor90/>"}) {
        const Offset place = desk.place(book);
        desk.session.reveal({place, place + static_cast<Offset>(book.size())});
    }
    desk.session.setMode(Mode::text);
    EXPECT_TRUE(soon([&] { return desk.showsText(u"<autor90/>"); }));
    EXPECT_TRUE(soon([&] { return desk.source().horizontalScrollBar()->value() == 0; }))
        << desk.source().horizontalScrollBar()->value();
}

TEST(PlaceKeeper, ShowsTheNodeAtTheTopWhereTheCaretIsElsewhere) {
    Desk desk(Mode::text);
    desk.source().select(SourceRange::empty(desk.place(u"<autor3/>")));
    desk.scrollTextTo(u"<autor120/>");
    const std::size_t top = desk.source().firstVisibleLine() + 2;
    const std::u16string line = desk.source().text().units(desk.source().text().lineRange(top));
    desk.session.setMode(Mode::split);
    const Offset start = desk.source().text().lineStart(top);
    EXPECT_TRUE(soon([&] {
        const NodeID node = desk.session.tree().node(start + 4);
        for (NodeID near{node.raw - 4}; near.raw < node.raw + 4; ++near.raw) {
            const auto row = desk.session.rows().row(near);
            if (row && desk.outline().viewport()->rect().intersects(desk.outline().rect(*row))) {
                return true;
            }
        }
        return false;
    })) << QString::fromStdU16String(line).toStdString();
    EXPECT_EQ(desk.selected(), u"<autor3/>") << "what is selected stays";
}

TEST(PlaceKeeper, PutsTheCaretWhereTheSelectedRowIs) {
    Desk desk(Mode::visual);
    desk.select(desk.SessionDesk::text().substr(desk.place(u"<libro>\n    <autor77/>"), 20));
    ASSERT_TRUE(desk.showsRow(u"<libro>\n    <autor77/>"));
    desk.session.setMode(Mode::text);
    EXPECT_TRUE(soon([&] { return desk.showsText(u"<autor77/>"); }));
    EXPECT_EQ(desk.source().selection(), SourceRange::empty(desk.place(u"<libro>\n    <autor77/>")));
    EXPECT_EQ(desk.session.selection(), (NodePath{{0, 77}}));
}

TEST(PlaceKeeper, ShowsTheTopmostRowWhereTheSelectedOneIsElsewhere) {
    Desk desk(Mode::visual);
    desk.session.select(NodePath{{0, 2}});
    desk.outline().scrollTo(*desk.session.rows().row(NodePath{{0, 110}}, desk.session.tree()));
    ASSERT_TRUE(desk.showsRow(u"<libro>\n    <autor110/>"));
    const auto top = desk.outline().row(QPoint(0, TreeRowView::height));
    const Offset start = desk.session.tree()[desk.session.rows()[*top].node].range.lower;
    desk.session.setMode(Mode::text);
    EXPECT_TRUE(soon([&] {
        const std::size_t line = desk.source().text().line(start);
        return desk.source().isVisible() && desk.source().firstVisibleLine() <= line &&
               line <= desk.source().lastVisibleLine();
    }));
    EXPECT_EQ(desk.source().caret(), 0U);
}

TEST(PlaceKeeper, LeavesTheCaretInsideTheSelectedNode) {
    Desk desk(Mode::text);
    const Offset caret = desk.place(u"utor90/>");
    desk.source().select(SourceRange::empty(caret));
    desk.scrollTextTo(u"<autor90/>");
    desk.session.setMode(Mode::visual);
    ASSERT_TRUE(soon([&] { return desk.showsRow(u"<autor90/>"); }));
    desk.session.setMode(Mode::text);
    ASSERT_TRUE(soon([&] { return desk.showsText(u"<autor90/>"); }));
    EXPECT_EQ(desk.source().caret(), caret);
}
