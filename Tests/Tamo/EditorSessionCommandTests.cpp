#include "EditorSession.h"

#include "Repeated.h"
#include "SessionDesk.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using Mode = EditorSession::Mode;
using Kind = EditorSession::NamePrompt::Kind;
using Placement = TreeMutation::Placement;
using Command = std::function<void(SessionDesk&)>;

/// Answers the prompt for a node.
Command prompt(Kind kind, const QString& name) {
    return [kind, name](SessionDesk& desk) {
        desk.session.requestNamePrompt(kind);
        EXPECT_EQ(desk.session.namePrompt(), EditorSession::NamePrompt(kind, *desk.session.selection()));
        desk.session.completeNamePrompt(name);
        EXPECT_FALSE(desk.session.namePrompt().has_value());
    };
}

/// A command of the session that takes the path of the selected node first.
template <class... Parameters, class... Arguments>
Command onSelection(void (EditorSession::*command)(const NodePath&, Parameters...), Arguments... arguments) {
    return [=](SessionDesk& desk) { (desk.session.*command)(*desk.session.selection(), arguments...); };
}

/// A command of the session without arguments.
Command command(void (EditorSession::*simple)()) {
    return [simple](SessionDesk& desk) { (desk.session.*simple)(); };
}

void fixAll(SessionDesk& desk) {
    desk.session.applyAllFixes();
    EXPECT_TRUE(desk.finishFixing());
}

// What each command does

TEST(EditorSessionCommands, AreOneStepOfUndoUnderTheirName) {
    struct Row {
        QString name;
        Command run;
        std::u16string_view text, select, after, selected;
    };
    const std::u16string_view text = u"<a>\n  <b x='1'>t</b>\n  <c/>\n</a>\n";
    const Row rows[] = {
        {"Añadir hijo", prompt(Kind::addChild, "n"), text, u"<c/>",
         u"<a>\n  <b x='1'>t</b>\n  <c>\n    <n></n>\n  </c>\n</a>\n", u"<n></n>"},
        {"Añadir hermano", prompt(Kind::addSibling, "n"), text, u"<b x",
         u"<a>\n  <b x='1'>t</b>\n  <n></n>\n  <c/>\n</a>\n", u"<n></n>"},
        {"Envolver", prompt(Kind::wrap, "n"), text, u"<c/>",
         u"<a>\n  <b x='1'>t</b>\n  <n>\n    <c/>\n  </n>\n</a>\n", u"<n>\n    <c/>\n  </n>"},
        {"Duplicar", command(&EditorSession::duplicate), text, u"<c/>",
         u"<a>\n  <b x='1'>t</b>\n  <c/>\n  <c/>\n</a>\n", u"<c/>"},
        {"Eliminar", command(&EditorSession::deleteSelection), text, u"<b x", u"<a>\n  <c/>\n</a>\n",
         u"<c/>"},
        {"Mover", command(&EditorSession::moveUp), text, u"<c/>", u"<a>\n  <c/>\n  <b x='1'>t</b>\n</a>\n",
         u"<c/>"},
        {"Mover", command(&EditorSession::moveDown), text, u"<b x", u"<a>\n  <c/>\n  <b x='1'>t</b>\n</a>\n",
         u"<b x='1'>t</b>"},
        {"Mover", onSelection(&EditorSession::move, NodePath{{0, 1}}, Placement::firstChild), text, u"<b x",
         u"<a>\n  <c>\n    <b x='1'>t</b>\n  </c>\n</a>\n", u"<b x='1'>t</b>"},
        {"Duplicar", onSelection(&EditorSession::copy, NodePath{{0, 1}}, Placement::after), text, u"<b x",
         u"<a>\n  <b x='1'>t</b>\n  <c/>\n  <b x='1'>t</b>\n</a>\n", u"<b x='1'>t</b>"},
        {"Renombrar", onSelection(&EditorSession::rename, "n"), text, u"<b x",
         u"<a>\n  <n x='1'>t</n>\n  <c/>\n</a>\n", u"<n x='1'>t</n>"},
        {"Editar texto", onSelection(&EditorSession::setText, "1 < 2"), text, u"<b x",
         u"<a>\n  <b x='1'>1 &lt; 2</b>\n  <c/>\n</a>\n", u"<b x='1'>1 &lt; 2</b>"},
        {"Renombrar atributo", onSelection(&EditorSession::renameAttribute, "x", "y"), text, u"<b x",
         u"<a>\n  <b y='1'>t</b>\n  <c/>\n</a>\n", u"<b y='1'>t</b>"},
        {"Cambiar atributo", onSelection(&EditorSession::setAttribute, "x", "it's"), text, u"<b x",
         u"<a>\n  <b x='it&apos;s'>t</b>\n  <c/>\n</a>\n", u"<b x='it&apos;s'>t</b>"},
        {"Quitar atributo", onSelection(&EditorSession::removeAttribute, "x"), text, u"<b x",
         u"<a>\n  <b>t</b>\n  <c/>\n</a>\n", u"<b>t</b>"},
        {"Añadir atributo",
         [](SessionDesk& desk) {
             EXPECT_EQ(desk.session.addAttribute(*desk.session.selection()), QStringLiteral("atributo"));
         },
         text, u"<b x", u"<a>\n  <b x='1' atributo=\"\">t</b>\n  <c/>\n</a>\n",
         u"<b x='1' atributo=\"\">t</b>"},
        {"Formatear", command(&EditorSession::format), u"<a>\n\t<b><c/></b></a>", u"<c/>",
         u"<a>\n\t<b>\n\t\t<c/>\n\t</b>\n</a>\n", u"<c/>"},
        {"Minificar", command(&EditorSession::minify), text, u"<c/>", u"<a><b x='1'>t</b><c/></a>", u"<c/>"},
        {"Comentar",
         [](SessionDesk& desk) {
             desk.session.setTextSelection({24, 24});
             EXPECT_EQ(desk.session.toggleComment(), SourceRange(23, 36));
         },
         text, u"<b x", u"<a>\n  <b x='1'>t</b>\n  <!-- <c/> -->\n</a>\n", u"<b x='1'>t</b>"},
        {"Plantilla", [](SessionDesk& desk) { desk.session.apply(DocumentTemplate::catalogue()[1]); }, text,
         u"<a>", u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n",
         u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>"},
        {"Escapar como &amp;", [](SessionDesk& desk) { desk.session.applyFix(1); }, u"<a> & & </a>", u"<a>",
         u"<a> & &amp; </a>", u"<a> & &amp; </a>"},
        {"Corregir todo", fixAll, u"<a> & <b x>", u"<a>", u"<a> &amp; <b x=\"\"></b></a>",
         u"<a> &amp; <b x=\"\"></b></a>"},
    };
    for (const Row& row : rows) {
        SessionDesk desk(row.text);
        ASSERT_TRUE(desk.open());
        desk.select(row.select);
        row.run(desk);
        EXPECT_EQ(desk.text(), row.after) << row.name.toStdString();
        EXPECT_EQ(desk.undoManager.undoActionName(), row.name);
        EXPECT_FALSE(desk.session.errorMessage().has_value()) << row.name.toStdString();
        EXPECT_FALSE(desk.session.isBusy());
        ASSERT_TRUE(desk.settle());
        EXPECT_EQ(desk.selected(), row.selected) << row.name.toStdString();
        desk.undoManager.undo();
        EXPECT_EQ(desk.text(), row.text) << row.name.toStdString();
        EXPECT_FALSE(desk.undoManager.canUndo());
        desk.undoManager.redo();
        EXPECT_EQ(desk.text(), row.after) << row.name.toStdString();
    }
}

TEST(EditorSessionCommands, DoNothingWithoutASelection) {
    const Command commands[] = {
        command(&EditorSession::duplicate),
        command(&EditorSession::deleteSelection),
        command(&EditorSession::moveUp),
        command(&EditorSession::moveDown),
        [](SessionDesk& desk) { desk.session.requestNamePrompt(Kind::wrap); },
        [](SessionDesk& desk) { desk.session.completeNamePrompt("n"); },
    };
    for (const Command& run : commands) {
        SessionDesk desk(u"<a/>");
        ASSERT_TRUE(desk.open());
        run(desk);
        EXPECT_EQ(desk.text(), u"<a/>");
        EXPECT_FALSE(desk.session.errorMessage().has_value());
        EXPECT_FALSE(desk.session.namePrompt().has_value());
    }
}

TEST(EditorSessionCommands, MoveOnlyAmongSiblings) {
    struct Row {
        std::u16string_view select;
        void (EditorSession::*move)();
        std::u16string_view after;
    };
    const std::u16string_view text = u"<?x?><a><b/><c/></a>";
    for (const Row& row : {
             Row{u"<b/>", &EditorSession::moveUp, text},
             Row{u"<c/>", &EditorSession::moveDown, text},
             Row{u"<b/>", &EditorSession::moveDown, u"<?x?><a><c/><b/></a>"},
             Row{u"<a>", &EditorSession::moveUp, u"<a><b/><c/></a>\n<?x?>"},
             Row{u"<a>", &EditorSession::moveDown, text},
         }) {
        SessionDesk desk(text);
        ASSERT_TRUE(desk.open());
        desk.select(row.select);
        (desk.session.*row.move)();
        EXPECT_EQ(desk.text(), row.after);
        EXPECT_EQ(desk.undoManager.canUndo(), row.after != text);
        EXPECT_FALSE(desk.session.errorMessage().has_value());
    }
    SessionDesk desk(text);
    ASSERT_TRUE(desk.open());
    for (const NodePath& path : {NodePath(), NodePath{{1, 0, 0}}, NodePath{{7, 7}}}) {
        desk.session.select(path);
        desk.session.moveUp();
        desk.session.moveDown();
        EXPECT_EQ(desk.text(), text);
    }
}

TEST(EditorSessionCommands, SayWhyTheyFail) {
    struct Row {
        Command run;
        std::u16string_view select;
        QString message;
    };
    const Row rows[] = {
        {onSelection(&EditorSession::rename, "1x"), u"<b", "“1x” no es un nombre XML válido."},
        {prompt(Kind::addChild, ""), u"<b", "“” no es un nombre XML válido."},
        {prompt(Kind::wrap, "a b"), u"<b", "“a b” no es un nombre XML válido."},
        {onSelection(&EditorSession::renameAttribute, "x", "y"), u"<b", "Ya existe un atributo “y”."},
        {onSelection(&EditorSession::removeAttribute, "z"), u"<b", "El nodo ya no existe."},
        {onSelection(&EditorSession::rename, "n"), u"<!--", "La operación solo aplica a elementos."},
        {onSelection(&EditorSession::setText, "n"), u"<?p", "No se puede hacer esa operación en ese lugar."},
        {onSelection(&EditorSession::move, NodePath{{1, 0}}, Placement::firstChild), u"<a>",
         "No se puede hacer esa operación en ese lugar."},
        {onSelection(&EditorSession::copy, NodePath{{9}}, Placement::after), u"<a>", "El nodo ya no existe."},
        {[](SessionDesk& desk) { desk.session.rename({{9}}, "n"); }, u"<a>", "El nodo ya no existe."},
        {[](SessionDesk& desk) {
             EXPECT_EQ(desk.session.addAttribute({{1, 2}}), QStringLiteral("atributo"));
         },
         u"<a>", "La operación solo aplica a elementos."},
    };
    for (const Row& row : rows) {
        const std::u16string_view text = u"<?p q?><a><b x='' y=''/><!--c-->t</a>";
        SessionDesk desk(text);
        ASSERT_TRUE(desk.open());
        desk.select(row.select);
        const auto selection = desk.session.selection();
        QSignalSpy messages(&desk.session, &EditorSession::errorMessageChanged);
        row.run(desk);
        EXPECT_EQ(desk.session.errorMessage(), row.message);
        EXPECT_EQ(messages.count(), 1);
        EXPECT_EQ(desk.text(), text);
        EXPECT_EQ(desk.session.selection(), selection);
        EXPECT_FALSE(desk.undoManager.canUndo());
        EXPECT_TRUE(desk.session.isTreeCurrent());
    }
}

TEST(EditorSessionCommands, LeaveNoStepWhereNothingChanges) {
    const Command commands[] = {
        onSelection(&EditorSession::rename, "b"),
        onSelection(&EditorSession::renameAttribute, "x", "x"),
        onSelection(&EditorSession::setAttribute, "x", "1"),
        onSelection(&EditorSession::setText, "t"),
        command(&EditorSession::format),
        fixAll,
        [](SessionDesk& desk) { desk.session.applyFix(0); },
    };
    const std::u16string_view text = u"<a>\n    <b x=\"1\">t</b>\n</a>\n";
    for (const Command& run : commands) {
        SessionDesk desk(text);
        ASSERT_TRUE(desk.open());
        desk.select(u"<b");
        run(desk);
        EXPECT_EQ(desk.text(), text);
        EXPECT_FALSE(desk.undoManager.canUndo());
    }
    SessionDesk blank(u" \n<a/>");
    EXPECT_FALSE(blank.session.toggleComment().has_value());
    EXPECT_FALSE(blank.undoManager.canUndo());
    const DocumentTemplate& basic = DocumentTemplate::catalogue()[0];
    SessionDesk same(basic.text);
    same.session.apply(basic);
    EXPECT_FALSE(same.undoManager.canUndo());
}

// After the change

TEST(EditorSessionCommands, SelectAndRevealTheirNodeInTheNextTree) {
    for (const Mode mode : EditorSession::allModes) {
        SessionDesk desk(u"<a>\n  <b/>\n</a>");
        ASSERT_TRUE(desk.open());
        desk.select(u"<b/>");
        desk.session.setMode(mode);
        desk.session.collapse({{0}});
        desk.session.duplicate();
        EXPECT_EQ(desk.selected(), u"<b/>");
        EXPECT_EQ(desk.session.selection(), NodePath({{0, 0}}));
        ASSERT_TRUE(desk.settle());
        EXPECT_EQ(desk.session.selection(), NodePath({{0, 1}}));
        EXPECT_EQ(desk.session.revealRequest(), EditorSession::RevealRequest(SourceRange(13, 17), 1));
        EXPECT_EQ(desk.rows(), u"a\n b\n b\n");
    }
}

TEST(EditorSessionCommands, SelectTheirNodeWhereverTypingMovesIt) {
    SessionDesk desk(u"<a><b/></a>");
    ASSERT_TRUE(desk.open());
    desk.select(u"<b/>");
    desk.session.duplicate();
    desk.buffer.type({3, 3}, u"<!--before--><x/>");
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(desk.session.selection(), NodePath({{0, 3}}));
}

TEST(EditorSessionCommands, SelectNothingThatIsGoneAgain) {
    SessionDesk desk(u"<a><b/></a>");
    ASSERT_TRUE(desk.open());
    desk.select(u"<b/>");
    desk.session.duplicate();
    desk.undoManager.undo();
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(desk.session.selection(), NodePath({{0, 0}}));
    EXPECT_EQ(desk.session.revealRequest(), EditorSession::RevealRequest(SourceRange(3, 7), 1));
}

TEST(EditorSessionCommands, SelectTheirNodesAgainWhenTheyAreUndoneAndRedone) {
    const std::pair<Command, std::u16string> rows[] = {
        {command(&EditorSession::duplicate), u"<b>1</b>"},
        {prompt(Kind::addChild, QStringLiteral("n")), u"<n></n>"},
        {prompt(Kind::addSibling, QStringLiteral("n")), u"<n></n>"},
        {prompt(Kind::wrap, QStringLiteral("n")), u"<n>\n    <b>1</b>\n</n>"},
        {command(&EditorSession::deleteSelection), u"<c/>"},
        {command(&EditorSession::moveDown), u"<b>1</b>"},
        {onSelection(&EditorSession::rename, QStringLiteral("n")), u"<n>1</n>"},
    };
    for (const auto& [run, after] : rows) {
        SessionDesk desk(u"<a><x/><b>1</b><c/></a>");
        ASSERT_TRUE(desk.open());
        desk.select(u"<b>");
        run(desk);
        ASSERT_TRUE(desk.settle());
        EXPECT_EQ(desk.selected(), after);
        const auto selected = desk.session.selection();
        for (int round = 0; round < 2; ++round) {
            desk.undoManager.undo();
            ASSERT_TRUE(desk.settle());
            EXPECT_EQ(desk.selected(), u"<b>1</b>");
            EXPECT_EQ(desk.session.selection(), NodePath({{0, 1}}));
            desk.undoManager.redo();
            ASSERT_TRUE(desk.settle());
            EXPECT_EQ(desk.selected(), after);
            EXPECT_EQ(desk.session.selection(), selected);
        }
    }
}

TEST(EditorSessionCommands, LeaveTheSelectionToTheCaretWhenTheyAreUndoneInTheText) {
    SessionDesk desk(u"<a><b/><c/></a>");
    ASSERT_TRUE(desk.open());
    desk.select(u"<b/>");
    desk.session.duplicate();
    ASSERT_TRUE(desk.settle());
    desk.session.setMode(Mode::text);
    desk.session.setTextSelection(SourceRange::empty(12));
    desk.session.followCaret();
    ASSERT_EQ(desk.selected(), u"<c/>");
    desk.undoManager.undo();
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(desk.selected(), u"<c/>");
}

TEST(EditorSessionCommands, LeaveAloneWhatTheUserSelectsMeanwhile) {
    SessionDesk desk(u"<a><b/></a>");
    ASSERT_TRUE(desk.open());
    desk.select(u"<b/>");
    desk.session.duplicate();
    desk.session.select({{0}});
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(desk.session.selection(), NodePath({{0}}));
}

TEST(EditorSessionCommands, AreParsedWithoutDelay) {
    const Command commands[] = {
        command(&EditorSession::duplicate),
        command(&EditorSession::format),
        [](SessionDesk& desk) { desk.session.apply(DocumentTemplate::catalogue()[0]); },
        fixAll,
    };
    for (const Command& run : commands) {
        SessionDesk desk(u"<a><b/>&</a>");
        ASSERT_TRUE(desk.open());
        desk.select(u"<b/>");
        run(desk);
        // Whatever waits for a pause comes after this timer.
        bool hasPaused = false;
        QTimer::singleShot(std::chrono::milliseconds(119), Qt::PreciseTimer, &desk.session,
                           [&] { hasPaused = true; });
        ASSERT_TRUE(desk.settle());
        EXPECT_FALSE(hasPaused);
    }
}

// With text that was not parsed yet

TEST(EditorSessionCommands, ParseTheTextOfNowFirst) {
    struct Row {
        Command run;
        std::u16string_view after;
    };
    const Row rows[] = {
        {command(&EditorSession::duplicate), u"<aa><c/><c/><b/></aa>"},
        {command(&EditorSession::deleteSelection), u"<aa><b/></aa>"},
        {command(&EditorSession::moveDown), u"<aa><b/><c/></aa>"},
        {prompt(Kind::wrap, "n"), u"<aa><n>\n    <c/>\n</n><b/></aa>"},
        {[](SessionDesk& desk) { desk.session.rename({{0}}, "n"); }, u"<n><c/><b/></n>"},
        {[](SessionDesk& desk) {
             desk.session.copy({{0, 1}}, {{0}}, Placement::lastChild);
         },
         u"<aa><c/><b/><c/></aa>"},
        {command(&EditorSession::format), u"<aa>\n    <c/>\n    <b/>\n</aa>\n"},
        {[](SessionDesk& desk) { EXPECT_EQ(desk.session.addAttribute({{0}}), "atributo"); },
         u"<aa atributo=\"\"><c/><b/></aa>"},
    };
    for (const Row& row : rows) {
        SessionDesk desk(u"<a>x<c/></a>");
        ASSERT_TRUE(desk.open());
        desk.select(u"<c/>");
        desk.buffer.type({11, 11}, u"a");
        desk.buffer.type({8, 8}, u"<b/>");
        desk.buffer.type({3, 4}, {});
        desk.buffer.type({2, 2}, u"a");
        EXPECT_EQ(desk.text(), u"<aa><c/><b/></aa>");
        // Paths are those of the tree that shows.
        desk.session.select({{0, 1}});
        row.run(desk);
        EXPECT_EQ(desk.text(), row.after);
    }
}

TEST(EditorSessionCommands, DeliverTheTreeTheyParseAndNoOlderOne) {
    SessionDesk desk(u"<a><b/></a>");
    ASSERT_TRUE(desk.open());
    desk.select(u"<b/>");
    desk.buffer.type({3, 7}, {});
    desk.session.deleteSelection();
    EXPECT_EQ(desk.parses.count(), 2);
    EXPECT_TRUE(desk.session.isTreeCurrent());
    EXPECT_EQ(desk.selected(), u"-");
    EXPECT_EQ(desk.text(), u"<a></a>");
    QTest::qWait(150);
    EXPECT_EQ(desk.parses.count(), 2);
}

TEST(EditorSessionCommands, WorkBeforeTheFirstParse) {
    SessionDesk desk(u"<a/>");
    desk.session.select({{0}});
    desk.session.duplicate();
    EXPECT_EQ(desk.text(), u"<a/>\n<a/>");
}

TEST(EditorSessionCommands, CopyIntoTheNodeItself) {
    SessionDesk desk(u"<a>\n  <b/>\n</a>");
    ASSERT_TRUE(desk.open());
    desk.session.copy({{0}}, {{0}}, Placement::lastChild);
    EXPECT_EQ(desk.text(), u"<a>\n  <b/>\n  <a>\n    <b/>\n  </a>\n</a>");
}

TEST(EditorSessionCommands, NumberAddedAttributes) {
    SessionDesk desk(u"<a/>");
    ASSERT_TRUE(desk.open());
    for (const char* name : {"atributo", "atributo2", "atributo3"}) {
        EXPECT_EQ(desk.session.addAttribute({{0}}), name);
    }
    EXPECT_EQ(desk.text(), u"<a atributo=\"\" atributo2=\"\" atributo3=\"\"/>");
}

// Comments

TEST(EditorSessionCommands, LookForACommentOnlyAroundTheSelection) {
    struct Row {
        std::size_t before, after;
        bool isWhole;
    };
    // The line is longer than what is looked at, so that the comment begins or ends where that does.
    for (const Row& row : {Row{65'535, 4'096, true}, Row{65'536, 4'095, true}, Row{65'537, 10, false},
                           Row{10, 4'097, false}}) {
        const std::u16string text = repeated(u"x", row.before) + repeated(u"y", row.after);
        SessionDesk desk(text);
        const auto caret = static_cast<Offset>(row.before);
        desk.session.setTextSelection({caret, caret});
        ASSERT_TRUE(desk.session.toggleComment().has_value());
        const std::u16string whole = u"<!-- " + text + u" -->";
        EXPECT_EQ(desk.text() == whole, row.isWhole) << row.before;
        const std::size_t start = row.before > 65'536 ? row.before - 65'536 : 0;
        const std::size_t end = row.before + std::min<std::size_t>(row.after, 4'096);
        EXPECT_EQ(desk.text(), text.substr(0, start) + u"<!-- " + text.substr(start, end - start) + u" -->" +
                                   text.substr(end));
    }
}

TEST(EditorSessionCommands, TakeACommentAway) {
    SessionDesk desk(u"<a>\n  <!-- <b/> -->\n</a>");
    desk.session.setTextSelection({100, 100});
    EXPECT_EQ(desk.session.toggleComment(), SourceRange(20, 33));
    desk.undoManager.undo();
    desk.session.setTextSelection({8, 8});
    EXPECT_EQ(desk.session.toggleComment(), SourceRange(6, 10));
    EXPECT_EQ(desk.text(), u"<a>\n  <b/>\n</a>");
    EXPECT_EQ(desk.undoManager.undoActionName(), QStringLiteral("Comentar"));
}

TEST(EditorSessionCommands, RefuseWhatWouldNotFit) {
    // A rope shares what repeats, so that four thousand million units take little room.
    Rope text(repeated(u"x\n", 1 << 15));
    while (text.size() < (Offset(1) << 31)) {
        text = text.replaced(SourceRange::empty(text.size()), text);
    }
    text = text.replaced(SourceRange::empty(0), text.part({8, text.size()}));
    const auto mirror = std::make_shared<TextMirror>(text);
    TextBuffer buffer(text, mirror);
    UndoManager undoManager;
    buffer.setUndoManager(&undoManager);
    EditorSession session(buffer, {});
    EXPECT_EQ(buffer.text().size(), 4'294'967'288);
    EXPECT_FALSE(session.toggleComment().has_value());
    EXPECT_EQ(session.errorMessage(), QStringLiteral("El documento sería demasiado grande."));
    EXPECT_FALSE(undoManager.canUndo());
    EXPECT_EQ(buffer.generation(), 0);
    buffer.type({2, 4}, {});
    session.setErrorMessage(std::nullopt);
    EXPECT_TRUE(session.toggleComment().has_value());
    EXPECT_FALSE(session.errorMessage().has_value());
    EXPECT_EQ(buffer.text().size(), 4'294'967'295);
}

// Fixes

TEST(EditorSessionCommands, FixTheProblemWhereItIsNow) {
    SessionDesk desk(u"<a> & &</a>");
    ASSERT_TRUE(desk.open());
    desk.buffer.type({4, 4}, u"&text ");
    desk.session.applyFix(1);
    EXPECT_EQ(desk.text(), u"<a> &text & &amp;</a>");
}

TEST(EditorSessionCommands, FixNoProblemThatIsGone) {
    SessionDesk desk(u"<a> & &</a>");
    ASSERT_TRUE(desk.open());
    desk.session.applyFix(2);
    desk.buffer.type({5, 5}, u"amp;");
    desk.session.applyFix(0);
    EXPECT_EQ(desk.text(), u"<a> &amp; &</a>");
    EXPECT_FALSE(desk.session.errorMessage().has_value());
}

TEST(EditorSessionCommands, ApplyTheRepairThatWasChosen) {
    SessionDesk desk(u"<r><item>x</itm></r>");
    ASSERT_TRUE(desk.open());
    desk.session.applyFix(1, 1);
    EXPECT_EQ(desk.text(), u"<r><item>x</item></r>");
    EXPECT_EQ(desk.undoManager.undoActionName(), QStringLiteral("Cambiar por </item>"));
    ASSERT_TRUE(desk.settle());
    desk.session.applyFix(0, 0);
    EXPECT_EQ(desk.text(), u"<r><item>x</item></r>");
}

TEST(EditorSessionCommands, TellOfWhiteSpaceThatMayBeText) {
    struct Row {
        std::u16string_view text;
        Command run;
        QString name;
    };
    for (const Row& row : {
             Row{u"<p>one <b>two</b></p>", command(&EditorSession::format), "Formatear"},
             Row{u"<p>one <b>two</b></p>", command(&EditorSession::minify), "Minificar"},
             Row{u"<p><b>two</b></p>", command(&EditorSession::format), {}},
             Row{u"<p>\n  one\n  <b/>\n</p>\n", command(&EditorSession::format), {}},
         }) {
        SessionDesk desk(row.text);
        ASSERT_TRUE(desk.open());
        QSignalSpy told(&desk.session, &EditorSession::textSpaceChanged);
        row.run(desk);
        ASSERT_EQ(told.count(), row.name.isEmpty() ? 0 : 1);
        EXPECT_TRUE(row.name.isEmpty() || told[0][0].toString() == row.name);
    }
}

TEST(EditorSessionCommands, FixManyProblemsInOneStep) {
    const std::u16string text = u"<r>" + repeated(u"<a>&", 2'000) + u"</r>";
    SessionDesk desk(text);
    ASSERT_TRUE(desk.open());
    desk.session.applyAllFixes();
    ASSERT_TRUE(desk.finishFixing());
    EXPECT_EQ(desk.text(), u"<r>" + repeated(u"<a>&amp;", 2'000) + repeated(u"</a>", 2'000) + u"</r>");
    ASSERT_TRUE(desk.settle());
    EXPECT_TRUE(desk.session.tree().diagnostics.empty());
    desk.undoManager.undo();
    EXPECT_EQ(desk.text(), text);
    EXPECT_FALSE(desk.undoManager.canUndo());
}

TEST(EditorSession, FormatsNothingWhereNothingIs) {
    SessionDesk desk(u"");
    ASSERT_TRUE(desk.open());
    desk.session.format();
    EXPECT_EQ(desk.text(), u"");
    EXPECT_TRUE(desk.session.showsGallery());
    EXPECT_FALSE(desk.undoManager.canUndo());
}

// The gallery

class Gallery : public testing::Test {
protected:
    void open(std::u16string_view text) {
        desk.emplace(text);
        ASSERT_TRUE(desk->open());
        changes.emplace(&desk->session, &EditorSession::showsGalleryChanged);
    }
    bool isShown() const { return desk->session.showsGallery(); }
    void applyTemplate() { desk->session.apply(DocumentTemplate::catalogue()[0]); }

    std::optional<SessionDesk> desk;
    std::optional<QSignalSpy> changes;
};

TEST_F(Gallery, StandsInAnEmptyNewDocument) {
    open(u"<a/>");
    EXPECT_FALSE(isShown());
    open(u"");
    EXPECT_TRUE(isShown());
}

TEST_F(Gallery, EndsWithTheFirstCharacter) {
    open(u"");
    desk->buffer.type({0, 0}, u"a");
    EXPECT_FALSE(isShown());
    EXPECT_EQ(changes->count(), 1);
    desk->undoManager.undo();
    EXPECT_FALSE(isShown());
    EXPECT_TRUE(desk->session.isEmptyDocument());
}

TEST_F(Gallery, EndsWithABlankStart) {
    open(u"");
    desk->session.startBlank();
    EXPECT_FALSE(isShown());
    EXPECT_EQ(changes->count(), 1);
    applyTemplate();
    desk->undoManager.undo();
    EXPECT_FALSE(isShown());
}

TEST_F(Gallery, ComesBackWhenATemplateIsUndone) {
    open(u"");
    applyTemplate();
    EXPECT_FALSE(isShown());
    EXPECT_EQ(desk->text(), DocumentTemplate::catalogue()[0].text);
    for (int round = 0; round < 2; ++round) {
        desk->undoManager.undo();
        EXPECT_TRUE(isShown());
        EXPECT_TRUE(desk->session.isEmptyDocument());
        desk->undoManager.redo();
        EXPECT_FALSE(isShown());
        EXPECT_EQ(desk->text(), DocumentTemplate::catalogue()[0].text);
    }
    desk->buffer.type({0, 0}, u"x");
    desk->undoManager.undo();
    desk->undoManager.undo();
    EXPECT_TRUE(isShown());
}

TEST_F(Gallery, StaysAwayWhenADocumentIsEmptied) {
    open(u"");
    applyTemplate();
    desk->buffer.type(desk->buffer.text().fullRange(), {});
    EXPECT_TRUE(desk->session.isEmptyDocument());
    EXPECT_FALSE(isShown());
    open(u"<a/>");
    desk->buffer.type({0, 4}, {});
    EXPECT_FALSE(isShown());
    applyTemplate();
    desk->undoManager.undo();
    EXPECT_TRUE(desk->session.isEmptyDocument());
    EXPECT_FALSE(isShown());
}

} // namespace
