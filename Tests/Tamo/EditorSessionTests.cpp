#include "EditorSession.h"

#include "Repeated.h"
#include "SessionDesk.h"

#include <QClipboard>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QThreadPool>

#include <gtest/gtest.h>

namespace {

using Mode = EditorSession::Mode;

void typeOver(SessionDesk& desk, std::u16string_view old, std::u16string_view now) {
    const auto at = static_cast<std::int64_t>(desk.text().find(old));
    desk.buffer.type(SourceRange::at(at, static_cast<std::int64_t>(old.size())), now);
}

// The fields

TEST(EditorSession, KnowsNothingBeforeTheFirstParse) {
    SessionDesk desk(u"<a/>");
    const EditorSession& session = desk.session;
    EXPECT_EQ(session.mode(), Mode::visual);
    EXPECT_EQ(session.filter(), QString());
    EXPECT_FALSE(session.namePrompt().has_value());
    EXPECT_FALSE(session.errorMessage().has_value());
    EXPECT_EQ(session.encodingName(), QStringLiteral("Unicode (UTF-8)"));
    EXPECT_EQ(session.tree().nodes.size(), 1U);
    EXPECT_EQ(session.lines().lineCount(), 1U);
    EXPECT_EQ(session.indent(), IndentStyle::spaces(4));
    EXPECT_TRUE(session.rows().isEmpty());
    EXPECT_TRUE(session.errorNodes().isEmpty());
    EXPECT_FALSE(session.selection().has_value());
    EXPECT_FALSE(session.revealRequest().has_value());
    EXPECT_FALSE(session.isEmptyDocument());
    EXPECT_FALSE(session.isBusy());
    EXPECT_EQ(session.treeGeneration(), -1);
    EXPECT_FALSE(session.isTreeCurrent());
    EXPECT_EQ(session.textSelection(), SourceRange());
    EXPECT_TRUE(SessionDesk(u"").session.isEmptyDocument());
}

TEST(EditorSession, NamesItsModes) {
    QStringList names;
    for (const Mode mode : EditorSession::allModes) {
        names += EditorSession::rawValue(mode);
    }
    EXPECT_EQ(names, QStringList({"text", "visual", "split"}));
}

TEST(EditorSession, TellsNobodyOfEqualValues) {
    SessionDesk desk(u"<a/>");
    ASSERT_TRUE(desk.open());
    EditorSession& session = desk.session;
    const NodePath path{{0}};
    const EditorSession::NamePrompt prompt{EditorSession::NamePrompt::Kind::wrap, path};
    QSignalSpy modes(&session, &EditorSession::modeChanged);
    QSignalSpy filters(&session, &EditorSession::filterChanged);
    QSignalSpy prompts(&session, &EditorSession::namePromptChanged);
    QSignalSpy messages(&session, &EditorSession::errorMessageChanged);
    QSignalSpy selections(&session, &EditorSession::selectionChanged);
    session.setMode(Mode::visual);
    session.setFilter(QString());
    session.setNamePrompt(std::nullopt);
    session.setErrorMessage(std::nullopt);
    for (const QSignalSpy* spy : {&modes, &filters, &prompts, &messages, &selections}) {
        EXPECT_EQ(spy->count(), 0);
    }
    for (int round = 0; round < 2; ++round) {
        session.setMode(Mode::split);
        session.setFilter(QStringLiteral("a"));
        session.setNamePrompt(prompt);
        session.setErrorMessage(QStringLiteral("m"));
        session.select(path);
        for (const QSignalSpy* spy : {&modes, &filters, &prompts, &messages, &selections}) {
            EXPECT_EQ(spy->count(), 1);
        }
    }
    session.setNamePrompt(EditorSession::NamePrompt{EditorSession::NamePrompt::Kind::addChild, path});
    EXPECT_EQ(prompts.count(), 2);
    session.setNamePrompt(std::nullopt);
    EXPECT_EQ(prompts.count(), 3);
}

// From the text to the tree

TEST(EditorSession, ParsesOnceStarted) {
    SessionDesk desk(u"<a>\n\t<b/>\n</a>");
    QSignalSpy generations(&desk.session, &EditorSession::treeGenerationChanged);
    QSignalSpy rows(&desk.session, &EditorSession::rowsChanged);
    desk.session.start();
    ASSERT_TRUE(desk.open());
    EXPECT_EQ(desk.session.tree().name(*desk.session.tree().rootElement()), u"a");
    EXPECT_EQ(desk.session.lines().lineCount(), 3U);
    EXPECT_EQ(desk.session.indent(), IndentStyle::tabs());
    EXPECT_EQ(desk.session.treeGeneration(), 0);
    EXPECT_TRUE(desk.session.isTreeCurrent());
    EXPECT_EQ(desk.parses.count(), 1);
    EXPECT_EQ(generations.count(), 1);
    EXPECT_EQ(rows.count(), 1);
    EXPECT_EQ(desk.rows(), u"a\n b\n");
}

TEST(EditorSession, ParsesABurstOfEditsOnce) {
    SessionDesk desk(u"<a/>");
    ASSERT_TRUE(desk.open());
    QElapsedTimer sinceLastKey;
    for (const char16_t unit : std::u16string_view(u"xyz")) {
        desk.buffer.type({2, 2}, {&unit, 1});
        sinceLastKey.start();
        EXPECT_FALSE(desk.session.isTreeCurrent());
    }
    ASSERT_TRUE(desk.settle());
    EXPECT_GE(sinceLastKey.elapsed(), 120);
    EXPECT_EQ(desk.parses.count(), 2);
    EXPECT_EQ(desk.session.tree().name(*desk.session.tree().rootElement()), u"azyx");
    EXPECT_EQ(desk.session.treeGeneration(), 3);
}

TEST(EditorSession, TellsWhereTheTreeIsInTheTextOfNow) {
    SessionDesk desk(u"<a><b/></a>");
    ASSERT_TRUE(desk.open());
    desk.buffer.type({1, 1}, u"xx");
    EXPECT_EQ(desk.session.editsSinceParse().now({3, 7}), SourceRange(5, 9));
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(desk.session.editsSinceParse().now({3, 7}), SourceRange(3, 7));
}

TEST(EditorSession, TellsWhenTheDocumentBecomesEmptyOrNot) {
    SessionDesk desk(u"a");
    desk.session.start();
    QSignalSpy changes(&desk.session, &EditorSession::isEmptyDocumentChanged);
    desk.buffer.type({1, 1}, u"b");
    EXPECT_EQ(changes.count(), 0);
    desk.buffer.type({0, 2}, {});
    EXPECT_EQ(changes.count(), 1);
    EXPECT_TRUE(desk.session.isEmptyDocument());
    desk.buffer.type({0, 0}, u"c");
    desk.buffer.type({1, 1}, u"d");
    EXPECT_EQ(changes.count(), 2);
    EXPECT_FALSE(desk.session.isEmptyDocument());
}

TEST(EditorSession, TellsOfNodesWithErrorsWhenTheyChange) {
    SessionDesk desk(u"<r><a><b></a><c/></r>");
    ASSERT_TRUE(desk.open());
    const auto hasError = [&](std::u16string_view source) {
        return desk.session.errorNodes().contains(*desk.session.tree().resolve(desk.path(source)));
    };
    EXPECT_TRUE(hasError(u"<b>"));
    EXPECT_TRUE(hasError(u"<a>"));
    EXPECT_TRUE(hasError(u"<r>"));
    EXPECT_FALSE(hasError(u"<c/>"));
    QSignalSpy changes(&desk.session, &EditorSession::errorNodesChanged);
    typeOver(desk, u"<c/>", u"<d/>");
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(changes.count(), 0);
    typeOver(desk, u"<b>", u"<b/>");
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(changes.count(), 1);
    EXPECT_TRUE(desk.session.errorNodes().isEmpty());
}

TEST(EditorSession, LeavesTheBufferUsable) {
    auto mirror = std::make_shared<TextMirror>();
    TextBuffer buffer(Rope(), mirror);
    {
        EditorSession session(buffer, QString());
        session.start();
    }
    buffer.type({0, 0}, u"a");
    EXPECT_EQ(buffer.generation(), 1);
}

TEST(EditorSession, FreesLargeTreesElsewhereWhoeverHoldsThemLast) {
    SessionDesk desk(u"<a>" + repeated(u"<b/>", 200'000) + u"</a>");
    ASSERT_TRUE(desk.open());
    std::shared_ptr<const ParsedDocument> held = desk.session.parsed();
    desk.buffer.type({2, 2}, u"x");
    ASSERT_TRUE(desk.settle());
    desk.buffer.type({2, 2}, u"y");
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(held->tree.nodes.size(), 200'002U);
    EXPECT_EQ(held->tree.name(NodeID{1}), u"a");
    held.reset();
    QThreadPool::globalInstance()->waitForDone();
}

// The selection

TEST(EditorSession, KeepsTheSelectionWithItsNode) {
    struct Row {
        std::u16string_view text, selected, old, now, after;
        int changes;
    };
    for (const Row& row : {
             Row{u"<a><b/><c/></a>", u"<c/>", u"<c/>", u"<d/>", u"<d/>", 0},
             Row{u"<a><b/><c/></a>", u"<b/>", u"<b/>", u"<x/><b/>", u"<b/>", 1},
             Row{u"<a><b/><c/></a>", u"<c/>", u"<c/>", u"", u"-", 1},
             Row{u"<a><b><c/></b></a>", u"<c/>", u"<b><c/></b>", u"", u"-", 1},
         }) {
        SessionDesk desk(row.text);
        ASSERT_TRUE(desk.open());
        desk.select(row.selected);
        QSignalSpy changes(&desk.session, &EditorSession::selectionChanged);
        typeOver(desk, row.old, row.now);
        ASSERT_TRUE(desk.settle());
        EXPECT_EQ(desk.selected(), row.after);
        EXPECT_EQ(changes.count(), row.changes);
    }
}

TEST(EditorSession, ResolvesASelectionThatChangedWhileAParseWasUnderWay) {
    SessionDesk desk(u"<a><b/><c/></a>");
    ASSERT_TRUE(desk.open());
    desk.select(u"<c/>");
    typeOver(desk, u"<c/>", u"");
    desk.session.select({{0, 0}});
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(desk.selected(), u"<b/>");
    typeOver(desk, u"<b/>", u"");
    QTest::qWait(120);
    desk.session.select({{0, 7}});
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(desk.selected(), u"-");
}

TEST(EditorSession, RevealsASelectedNodeInSplitModeOnly) {
    for (const Mode mode : EditorSession::allModes) {
        SessionDesk desk(u"<a><b/><c/></a>");
        ASSERT_TRUE(desk.open());
        desk.session.setMode(mode);
        QSignalSpy reveals(&desk.session, &EditorSession::revealRequestChanged);
        desk.select(u"<c/>");
        EXPECT_EQ(desk.selected(), u"<c/>");
        if (mode != Mode::split) {
            EXPECT_FALSE(desk.session.revealRequest().has_value());
            continue;
        }
        EXPECT_EQ(desk.session.revealRequest(), EditorSession::RevealRequest(SourceRange(7, 11), 1));
        desk.select(u"<c/>");
        EXPECT_EQ(reveals.count(), 1);
        desk.select(u"<b/>");
        EXPECT_EQ(desk.session.revealRequest(), EditorSession::RevealRequest(SourceRange(3, 7), 2));
        desk.session.select({{9, 9}});
        EXPECT_EQ(desk.selected(), u"?");
        EXPECT_EQ(reveals.count(), 2);
    }
}

TEST(EditorSession, RevealsWhereTheNodeIsNow) {
    SessionDesk desk(u"<a><b/><c/></a>");
    ASSERT_TRUE(desk.open());
    desk.session.setMode(Mode::split);
    desk.buffer.type({3, 3}, u"text");
    desk.session.select({{0, 1}});
    EXPECT_EQ(desk.session.revealRequest()->range, SourceRange(11, 15));
}

TEST(EditorSession, FollowsTheCaret) {
    struct Row {
        Offset caret;
        std::u16string_view selected;
    };
    const std::u16string_view text = u"<a>\n<b>x</b><!--c--></a>\n";
    for (const Row& row : {Row{0, u"<a>\n<b>x</b><!--c--></a>"}, Row{3, u"<a>\n<b>x</b><!--c--></a>"},
                           Row{4, u"<b>x</b>"}, Row{7, u"x"}, Row{8, u"<b>x</b>"}, Row{12, u"<!--c-->"},
                           Row{20, u"<a>\n<b>x</b><!--c--></a>"}, Row{24, text}, Row{25, u"-"}}) {
        for (const Mode mode : EditorSession::allModes) {
            SessionDesk desk(text);
            ASSERT_TRUE(desk.open());
            desk.session.setMode(mode);
            desk.session.setTextSelection({row.caret, 25});
            EXPECT_EQ(desk.selected(), u"-");
            desk.session.followCaret();
            EXPECT_EQ(desk.selected(), mode == Mode::visual ? u"-" : row.selected) << row.caret;
            EXPECT_FALSE(desk.session.revealRequest().has_value());
        }
    }
}

TEST(EditorSession, DoesNotFollowTheCaretInAnOldTree) {
    SessionDesk desk(u"<a><b/></a>");
    ASSERT_TRUE(desk.open());
    desk.session.setMode(Mode::text);
    desk.buffer.type({3, 3}, u" ");
    desk.session.setTextSelection({5, 5});
    desk.session.followCaret();
    EXPECT_EQ(desk.selected(), u"-");
    ASSERT_TRUE(desk.settle());
    desk.session.followCaret();
    EXPECT_EQ(desk.selected(), u"<b/>");
}

TEST(EditorSession, ExpandsWhatHidesTheNodeOfTheCaret) {
    SessionDesk desk(u"<a><b><c/></b><d/></a>");
    ASSERT_TRUE(desk.open());
    desk.session.setMode(Mode::split);
    desk.session.collapse({{0}});
    desk.session.collapse({{0, 0}});
    EXPECT_EQ(desk.rows(), u"+a\n");
    QSignalSpy rows(&desk.session, &EditorSession::rowsChanged);
    desk.session.setTextSelection({6, 6});
    desk.session.followCaret();
    EXPECT_EQ(desk.rows(), u"a\n b\n  c\n d\n");
    EXPECT_EQ(rows.count(), 1);
    EXPECT_TRUE(desk.session.outline().expanded.contains({{0, 0}}));
    desk.session.setTextSelection({14, 14});
    desk.session.followCaret();
    EXPECT_EQ(rows.count(), 1);
}

TEST(EditorSession, ShowsTheStepsToTheSelectedNode) {
    SessionDesk desk(u"<a><b><!--c--></b></a>");
    ASSERT_TRUE(desk.open());
    EXPECT_TRUE(desk.session.breadcrumbs().empty());
    desk.select(u"<!--");
    QStringList titles;
    for (const Breadcrumb& step : desk.session.breadcrumbs()) {
        titles += step.title;
    }
    EXPECT_EQ(titles, QStringList({"Documento", "a", "b", "Comentario"}));
    desk.session.select({{3, 3}});
    EXPECT_TRUE(desk.session.breadcrumbs().empty());
}

TEST(EditorSession, CopiesThePathOfTheSelectedNode) {
    SessionDesk desk(u"<a><b/><b><c/></b></a>");
    ASSERT_TRUE(desk.open());
    QGuiApplication::clipboard()->setText(QStringLiteral("before"));
    desk.session.copyPath();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("before"));
    desk.select(u"<c/>");
    desk.session.copyPath();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("/a/b[2]/c"));
}

// The outline

TEST(EditorSession, ExpandsAFewLevelsOnceTheFirstTreeIsThere) {
    SessionDesk desk(u"");
    ASSERT_TRUE(desk.open());
    EXPECT_EQ(desk.rows(), u"");
    desk.buffer.type({0, 0}, u"<a><b><c/></b></a>");
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(desk.rows(), u"a\n b\n  c\n");
    desk.session.collapse({{0, 0}});
    typeOver(desk, u"<c/>", u"<c/><d/>");
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(desk.rows(), u"a\n +b\n");
}

TEST(EditorSession, ExpandsAndCollapses) {
    SessionDesk desk(u"<a><b><c/></b><d/></a>");
    ASSERT_TRUE(desk.open());
    QSignalSpy rows(&desk.session, &EditorSession::rowsChanged);
    desk.session.collapse({{0, 0}});
    EXPECT_EQ(desk.rows(), u"a\n +b\n d\n");
    desk.session.collapse({{0, 0}});
    EXPECT_EQ(rows.count(), 1);
    desk.session.expandRow(1);
    EXPECT_EQ(desk.rows(), u"a\n b\n  c\n d\n");
    desk.session.collapseRow(0);
    EXPECT_EQ(desk.rows(), u"+a\n");
    desk.session.collapse({{0, 0}});
    EXPECT_EQ(rows.count(), 3);
    desk.session.expand({{0}});
    EXPECT_EQ(desk.rows(), u"a\n +b\n d\n");
}

TEST(EditorSession, KeepsWhatIsExpandedWhileTheTextChanges) {
    SessionDesk desk(u"<a><b><c/></b><d><e/></d></a>");
    ASSERT_TRUE(desk.open());
    desk.session.collapse({{0, 0}});
    typeOver(desk, u"<e/>", u"<e/><f/>");
    desk.session.collapse({{0, 1}});
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(desk.rows(), u"a\n +b\n +d\n");
    desk.session.expand({{0, 1}});
    EXPECT_EQ(desk.rows(), u"a\n +b\n d\n  e\n  f\n");
}

TEST(EditorSession, KeepsWhatIsExpandedWhileAParseIsUnderWay) {
    for (const std::size_t children : {10, 200'000}) {
        SessionDesk desk(u"<a><b><c/></b>" + repeated(u"<x/>", children) + u"</a>");
        ASSERT_TRUE(desk.open());
        desk.session.collapse({{0}});
        desk.session.collapse({{0, 0}});
        desk.session.apply(TreeMutation::SetText{{{0, 0, 0}}, u"t"}, {});
        // The snapshot is taken by the timer, without a delay; this runs right after it.
        QTimer::singleShot(0, &desk.session, [&] {
            desk.session.expand({{0}});
            desk.session.expand({{0, 0}});
        });
        ASSERT_TRUE(desk.settle());
        EXPECT_TRUE(waitFor([&] { return desk.session.rows().size() == children + 3; }));
        EXPECT_TRUE(desk.session.outline().expanded.contains({{0, 0}}));
    }
}

// The filter

TEST(EditorSession, FiltersTheOutlineAfterAPause) {
    SessionDesk desk(u"<a><b>uno</b><c><d x='Uno'/></c><e/></a>");
    ASSERT_TRUE(desk.open());
    const std::u16string all = desk.rows();
    QSignalSpy rows(&desk.session, &EditorSession::rowsChanged);
    QElapsedTimer sinceTyped;
    for (const char* typed : {" ", " Ú", " ÚN", " ÚNO", " ÚNO "}) {
        desk.session.setFilter(QString::fromUtf8(typed));
        sinceTyped.start();
        QTest::qWait(20);
    }
    rows.clear();
    EXPECT_FALSE(desk.session.areRowsFiltered());
    ASSERT_TRUE(rows.wait(10'000));
    EXPECT_GE(sinceTyped.elapsed(), 150);
    EXPECT_TRUE(desk.session.areRowsFiltered());
    EXPECT_EQ(desk.rows(), u"a\n b\n  uno\n c\n  d\n");
    QTest::qWait(200);
    EXPECT_EQ(rows.count(), 1);
    desk.session.setFilter({});
    EXPECT_EQ(desk.rows(), all);
    EXPECT_FALSE(desk.session.areRowsFiltered());
}

TEST(EditorSession, SearchesEachNewTree) {
    SessionDesk desk(u"<a><b/><c/></a>");
    ASSERT_TRUE(desk.open());
    desk.session.setFilter(QStringLiteral("c"));
    ASSERT_TRUE(waitFor([&] { return desk.session.areRowsFiltered(); }));
    EXPECT_EQ(desk.rows(), u"a\n c\n");
    typeOver(desk, u"<b/>", u"<cc/>");
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(desk.rows(), u"a\n cc\n c\n");
}

TEST(EditorSession, FiltersWhenATreeArrivesBeforeTheSearch) {
    SessionDesk desk(u"<a><b/><c/></a>");
    ASSERT_TRUE(desk.open());
    desk.session.setFilter(QStringLiteral("b"));
    ASSERT_TRUE(waitFor([&] { return desk.session.areRowsFiltered(); }));
    desk.session.setFilter(QStringLiteral("c"));
    desk.session.apply(TreeMutation::Rename{{{0, 0}}, u"bb"}, {});
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(desk.rows(), u"a\n bb\n");
    ASSERT_TRUE(waitFor([&] { return desk.rows() == u"a\n c\n"; }));
    desk.session.setFilter(QStringLiteral("nothing"));
    ASSERT_TRUE(waitFor([&] { return desk.session.rows().isEmpty(); }));
    EXPECT_TRUE(desk.session.areRowsFiltered());
}

TEST(EditorSession, DropsASearchThatWasOvertaken) {
    SessionDesk desk(u"<a>" + repeated(u"<b/>", 300'000) + u"<c/></a>");
    ASSERT_TRUE(desk.open());
    desk.session.setFilter(QStringLiteral("b"));
    QTest::qWait(151);
    desk.session.setFilter(QStringLiteral("c"));
    ASSERT_TRUE(waitFor([&] { return desk.session.areRowsFiltered(); }));
    EXPECT_EQ(desk.rows(), u"a\n c\n");
    desk.session.setFilter({});
    ASSERT_TRUE(waitFor([&] { return !desk.session.areRowsFiltered(); }));
}

TEST(EditorSession, RemembersWhatIsExpandedBehindAFilter) {
    SessionDesk desk(u"<a><b><c/></b></a>");
    ASSERT_TRUE(desk.open());
    desk.session.setFilter(QStringLiteral("c"));
    ASSERT_TRUE(waitFor([&] { return desk.session.areRowsFiltered(); }));
    desk.session.collapseRow(1);
    EXPECT_EQ(desk.rows(), u"a\n b\n  c\n");
    desk.session.setFilter({});
    EXPECT_EQ(desk.rows(), u"a\n +b\n");
}

// Problems

TEST(EditorSession, RevealsARange) {
    for (const Mode mode : EditorSession::allModes) {
        SessionDesk desk(u"<a><b><c></b></a>");
        ASSERT_TRUE(desk.open());
        desk.session.collapse({{0}});
        desk.session.setMode(mode);
        const SourceRange problem = desk.session.tree().diagnostics.range(0);
        desk.session.reveal(problem);
        desk.session.reveal(problem);
        EXPECT_EQ(desk.session.revealRequest(), EditorSession::RevealRequest(problem, 2));
        EXPECT_EQ(desk.selected(), mode == Mode::visual ? u"<c>" : u"-");
        EXPECT_EQ(desk.rows(), mode == Mode::visual ? u"a\n b\n  c\n" : u"+a\n");
    }
}

TEST(EditorSession, RevealsNothingThatWasEdited) {
    SessionDesk desk(u"<a>&<b>&</b></a>");
    ASSERT_TRUE(desk.open());
    desk.session.setMode(Mode::text);
    desk.buffer.type({3, 5}, u"abc");
    desk.session.reveal({4, 5});
    EXPECT_FALSE(desk.session.revealRequest().has_value());
    desk.session.reveal({7, 8});
    EXPECT_EQ(desk.session.revealRequest()->range, SourceRange(8, 9));
}

TEST(EditorSession, GoesToThePreviousProblemAndAround) {
    for (const Mode mode : EditorSession::allModes) {
        SessionDesk desk(u"<a> & <b> & </b> & </a>");
        ASSERT_TRUE(desk.open());
        desk.session.setMode(mode);
        for (const Offset expected : {17, 10, 4, 17, 10}) {
            desk.session.previousProblem();
            ASSERT_TRUE(desk.session.revealRequest().has_value());
            EXPECT_EQ(desk.session.revealRequest()->range, SourceRange::at(expected, 1));
            if (mode != Mode::visual) {
                desk.session.setTextSelection(desk.session.revealRequest()->range);
            }
        }
    }
}

TEST(EditorSession, GoesToTheNextProblemAndAround) {
    for (const Mode mode : EditorSession::allModes) {
        SessionDesk desk(u"<a> & <b> & </b> & </a>");
        ASSERT_TRUE(desk.open());
        desk.session.setMode(mode);
        for (const Offset expected : {4, 10, 17, 4, 10}) {
            desk.session.nextProblem();
            ASSERT_TRUE(desk.session.revealRequest().has_value());
            EXPECT_EQ(desk.session.revealRequest()->range, SourceRange::at(expected, 1));
            if (mode != Mode::visual) {
                desk.session.setTextSelection(desk.session.revealRequest()->range);
            }
        }
        desk.session.setMode(Mode::text);
        desk.session.setTextSelection({12, 12});
        desk.session.nextProblem();
        EXPECT_EQ(desk.session.revealRequest()->range, SourceRange(17, 18));
    }
    SessionDesk perfect(u"<a/>");
    ASSERT_TRUE(perfect.open());
    perfect.session.nextProblem();
    perfect.session.previousProblem();
    EXPECT_FALSE(perfect.session.revealRequest().has_value());
}

// Completions

TEST(EditorSession, CompletesNames) {
    SessionDesk desk(u"<raiz ruta='' id=''><ramo/><r/><Rama id='' radio=''/><ramo/><ram/></raiz>");
    ASSERT_TRUE(desk.open());
    EXPECT_EQ(desk.session.nameCompletions("r", false), QStringList({"raiz", "ramo", "ram"}));
    EXPECT_EQ(desk.session.nameCompletions("ram", false), QStringList({"ramo"}));
    EXPECT_EQ(desk.session.nameCompletions("", true), QStringList({"ruta", "id", "radio"}));
    EXPECT_EQ(desk.session.nameCompletions("id", true), QStringList());
    typeOver(desk, u"<ram/>", u"<ramita/>");
    EXPECT_EQ(desk.session.nameCompletions("ram", false), QStringList({"ramo"}));
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(desk.session.nameCompletions("ram", false), QStringList({"ramo", "ramita"}));
}

} // namespace
