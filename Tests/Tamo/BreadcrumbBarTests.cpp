#include "BreadcrumbBar.h"

#include "ParsedDesk.h"
#include "SystemColor.h"
#include "TagPalette.h"

#include <QLabel>
#include <QSignalSpy>
#include <QToolButton>

namespace {

struct Desk : ParsedDesk {
    BreadcrumbBar bar{session};

    explicit Desk(std::u16string_view text) : ParsedDesk(text) {
        bar.resize(600, bar.height());
        bar.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&bar));
    }

    QStringList titles() const {
        QStringList titles;
        for (const Crumb& crumb : bar.crumbs()) {
            titles += crumb.title;
        }
        return titles;
    }
    QList<QToolButton*> buttons() const { return bar.findChildren<QToolButton*>(); }
};

} // namespace

TEST(BreadcrumbBar, SaysWhenNothingIsSelected) {
    Desk desk(u"<a/>");
    EXPECT_TRUE(desk.buttons().isEmpty());
    ASSERT_NE(desk.bar.findChild<QLabel*>(), nullptr);
    EXPECT_EQ(desk.bar.findChild<QLabel*>()->text(), QStringLiteral("Sin selección"));
}

TEST(BreadcrumbBar, LeadsFromTheDocumentToTheSelectedNode) {
    Desk desk(u"<?x y?><a><b>t</b></a>");
    desk.session.select(NodePath{{1, 0, 0}});
    EXPECT_EQ(desk.titles(), (QStringList{QStringLiteral("Documento"), QStringLiteral("a"), QStringLiteral("b"),
                                          QStringLiteral("Texto")}));
    const QPalette palette = desk.bar.palette();
    EXPECT_EQ(desk.bar.crumbs()[1].color, TagPalette::tagColor(u"a", palette));
    EXPECT_EQ(desk.bar.crumbs()[3].color, color(SystemColor::secondaryLabel, palette));
    desk.session.select(NodePath{{0}});
    EXPECT_EQ(desk.titles(), (QStringList{QStringLiteral("Documento"),
                                          QStringLiteral("Instrucción de procesamiento x")}));
}

TEST(BreadcrumbBar, ShowsTheDocumentAlone) {
    Desk desk(u"<a/>");
    desk.session.select(NodePath{});
    EXPECT_EQ(desk.titles(), QStringList{QStringLiteral("Documento")});
    EXPECT_EQ(desk.buttons().size(), 1);
}

TEST(BreadcrumbBar, AsksForTheSelectedNodeInView) {
    Desk desk(u"<a><b/></a>");
    desk.session.select(NodePath{{0, 0}});
    QSignalSpy requests(&desk.bar, &BreadcrumbBar::selectedNodeRequested);
    QTest::mouseClick(desk.buttons()[2], Qt::LeftButton);
    EXPECT_TRUE(requests.count() == 1 || requests.wait());
    QTest::mouseClick(desk.buttons()[1], Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([&] { return desk.session.selection() == NodePath{{0}}; }));
    EXPECT_EQ(requests.count(), 1);
}

TEST(BreadcrumbBar, SelectsTheNodeOfTheCrumbThatIsPressed) {
    Desk desk(u"<a><b><c/></b></a>");
    desk.session.setMode(EditorSession::Mode::split);
    desk.session.select(NodePath{{0, 0, 0}});
    ASSERT_EQ(desk.buttons().size(), 4);
    QTest::mouseClick(desk.buttons()[2], Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([&] { return desk.session.selection() == NodePath{{0, 0}}; }));
    ASSERT_TRUE(desk.session.revealRequest());
    EXPECT_EQ(desk.session.revealRequest()->range, SourceRange(3, 14));
}

TEST(BreadcrumbBar, ShowsNamesAsTheyAre) {
    Desk desk(u"<a:b&amp;c/>");
    desk.session.select(NodePath{{0}});
    for (const QToolButton* button : desk.buttons()) {
        EXPECT_EQ(button->text().remove(QStringLiteral("&&")).count(u'&'), 0);
    }
}

TEST(BreadcrumbBar, StaysSmallInADeepDocument) {
    std::u16string text;
    std::vector<std::uint32_t> path;
    for (int depth = 0; depth < 5'000; ++depth) {
        text += u"<n>";
        path.push_back(0);
    }
    Desk desk(text);
    desk.session.select(NodePath{path});
    EXPECT_LE(desk.buttons().size(), 300);
    EXPECT_EQ(desk.bar.crumbs().back().path.indices.size(), path.size());
}

TEST(BreadcrumbBar, LeavesTheFocusOnACrumbThatWasPressed) {
    Desk desk(u"<a><b><c/></b></a>");
    desk.session.select(NodePath{{0, 0, 0}});
    ASSERT_TRUE(QTest::qWaitForWindowActive(&desk.bar));
    desk.buttons()[1]->setFocus(Qt::TabFocusReason);
    QTest::keyClick(desk.buttons()[1], Qt::Key_Space);
    ASSERT_TRUE(QTest::qWaitFor([&] { return desk.session.selection() == NodePath{{0}}; }));
    ASSERT_EQ(desk.buttons().size(), 2);
    EXPECT_TRUE(desk.buttons()[1]->hasFocus());
}

TEST(BreadcrumbBar, FollowsTheAppearanceWithoutASelection) {
    Desk desk(u"<a/>");
    QPalette dark = desk.bar.palette();
    dark.setColor(QPalette::Window, Qt::black);
    dark.setColor(QPalette::Base, Qt::black);
    dark.setColor(QPalette::WindowText, Qt::white);
    dark.setColor(QPalette::Text, Qt::white);
    desk.bar.setPalette(dark);
    const QLabel* const label = desk.bar.findChild<QLabel*>();
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->palette().color(QPalette::WindowText), color(SystemColor::tertiaryLabel, dark));
}
