#include "CodeEditorCoordinator.h"

#include "EditorDesk.h"
#include "Repeated.h"
#include "SystemColor.h"

#include <QContextMenuEvent>
#include <QImage>
#include <QInputMethodEvent>
#include <QMenu>

#include <gtest/gtest.h>

namespace {

struct Row {
    std::u16string_view before;
    std::string_view keys;
    std::u16string_view after;
};

/// Types the keys; undoing as often as it takes brings the text and the caret back.
void check(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        EditorDesk desk(row.before);
        desk.type(row.keys);
        EXPECT_EQ(desk.state(), row.after) << ::testing::PrintToString(row.before) << " " << row.keys;
        if (desk.undoManager.canUndo()) {
            while (desk.undoManager.canUndo()) {
                desk.view().undo();
            }
            EXPECT_EQ(desk.state(), row.before) << row.keys;
        }
    }
}

/// The same where what the keys do is one step of that name, which can be undone and redone.
void checkStep(const QString& name, const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        EditorDesk desk(row.before);
        desk.type(row.keys);
        EXPECT_EQ(desk.state(), row.after) << ::testing::PrintToString(row.before) << " " << row.keys;
        EXPECT_EQ(desk.undoManager.undoActionName(), name) << row.keys;
        desk.view().undo();
        EXPECT_EQ(desk.state(), row.before) << row.keys;
        EXPECT_FALSE(desk.undoManager.canUndo()) << row.keys;
        desk.view().redo();
        EXPECT_EQ(desk.text(), MarkedText(row.after).text.units()) << row.keys;
    }
}

const QString typing = QStringLiteral("Escribir");
const QString renaming = QStringLiteral("Renombrar etiqueta");

/// What is offered for the word that ends at the caret and is marked, `|wor|`.
QStringList completions(std::u16string_view marked) {
    EditorDesk desk(marked);
    return desk.coordinator().completions(desk.view().selection());
}

void compose(TextView& view, const QString& preedit, const QString& commit = {}) {
    QInputMethodEvent event(preedit, {});
    event.setCommitString(commit);
    QCoreApplication::sendEvent(&view, &event);
}

/// The menu on the screen, null for none.
QMenu* menu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }

QStringList titles(const QMenu* of) {
    QStringList titles;
    for (const QAction* action : of != nullptr ? of->actions() : QList<QAction*>()) {
        titles += action->text();
    }
    return titles;
}

} // namespace

// Colours

TEST(CodeEditorCoordinator, ColoursBehindADeclarationWithAnApostropheWhileItIsEdited) {
    EditorDesk desk(u"<!DOCTYPE r [<!-- don't| -->]>\n<r>it's</r>");
    const QRgb blue = color(SystemColor::systemBlue, desk.view().palette()).rgb();
    const auto hasBlue = [&] {
        const QImage image = desk.view().viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
        const QRect line = desk.view().lineRect(1).toRect() & image.rect();
        for (int y = line.top(); y <= line.bottom(); ++y) {
            for (int x = line.left(); x <= line.right(); ++x) {
                if (image.pixel(x, y) == blue) {
                    return true;
                }
            }
        }
        return false;
    };
    // So large that the stems of the letters are wider than a pixel.
    QFont font = desk.view().font();
    font.setPixelSize(48);
    desk.view().setFont(font);
    EXPECT_TRUE(hasBlue());
    EXPECT_TRUE(desk.session.tree().diagnostics.empty());
    desk.type("x");
    EXPECT_FALSE(desk.session.isTreeCurrent());
    EXPECT_TRUE(hasBlue());
    desk.waitForParse();
    EXPECT_TRUE(hasBlue());
    EXPECT_TRUE(desk.session.tree().rootElement().has_value());
}

// Names of pairs

TEST(CodeEditorCoordinator, RenamesBothTagsOverAnErasedName) {
    const auto check = [](std::u16string_view before, const auto& erase, std::string_view typed,
                          std::u16string_view after) {
        EditorDesk desk(before);
        erase(desk);
        desk.type(typed);
        EXPECT_EQ(desk.state(), after);
        while (desk.undoManager.canUndo()) {
            desk.view().undo();
        }
        EXPECT_EQ(desk.state(), before);
    };
    const auto press = [](Qt::Key key, Qt::KeyboardModifiers modifiers, int times) {
        return [=](EditorDesk& desk) {
            for (int i = 0; i < times; ++i) {
                QTest::keyClick(&desk.view(), key, modifiers);
            }
        };
    };
    check(u"<abc|>x</abc>", press(Qt::Key_Backspace, {}, 3), "xyz", u"<xyz|>x</xyz>");
    check(u"<abc|>x</abc>", press(Qt::Key_Backspace, Qt::ControlModifier, 1), "xyz", u"<xyz|>x</xyz>");
    check(u"<|abc>x</abc>", press(Qt::Key_Delete, {}, 3), "xyz", u"<xyz|>x</xyz>");
    check(u"<|abc>x</abc>", press(Qt::Key_Delete, Qt::ControlModifier, 1), "xyz", u"<xyz|>x</xyz>");
    check(u"<|abc|>x</abc>", press(Qt::Key_X, Qt::ControlModifier, 1), "xyz", u"<xyz|>x</xyz>");
    check(u"<h|1>x</h1>", press(Qt::Key_Backspace, {}, 1), "g", u"<g|1>x</g1>");
    check(u"<abc>x</abc|>", press(Qt::Key_Backspace, {}, 3), "xyz", u"<xyz>x</xyz|>");
}

TEST(CodeEditorCoordinator, RenamesOnAfterAnUndo) {
    EditorDesk desk(u"<abc|>x</abc>");
    desk.type("\b\b\bxyz");
    desk.view().undo();
    EXPECT_EQ(desk.state(), u"<|>x</>");
    desk.type("xyz");
    EXPECT_EQ(desk.state(), u"<xyz|>x</xyz>");
}

TEST(CodeEditorCoordinator, RenamesNothingThatIsErasedFromBehind) {
    EditorDesk desk(u"<r>\n  <p>x</p>\n</r>\n|");
    desk.type("\b\b\b\b\b");
    EXPECT_EQ(desk.state(), u"<r>\n  <p>x</p>\n|");
    EditorDesk behind(u"<p>x</p>|>");
    behind.type("\b\b");
    EXPECT_EQ(behind.state(), u"<p>x</|>");
    EditorDesk words(u"<r>\n  <p>x</p>\n</r>|");
    for (int i = 0; i < 3; ++i) {
        QTest::keyClick(&words.view(), Qt::Key_Backspace, Qt::ControlModifier);
    }
    EXPECT_TRUE(words.text().starts_with(u"<r>\n  <p>x</p>"));
}

// Keys for the typing assistant

TEST(CodeEditorCoordinator, ClosesAStartTagAsOneStep) {
    checkStep(typing, {
                          {u"<item id=\"1\"|", ">", u"<item id=\"1\">|</item>"},
                          {u"<r><a| </r>", ">", u"<r><a>|</a> </r>"},
                      });
}

TEST(CodeEditorCoordinator, WritesAnEndTagAsOneStep) {
    checkStep(typing, {{u"<a><b>text<|", "/", u"<a><b>text</b>|"}});
}

TEST(CodeEditorCoordinator, WritesAPairOfQuotesAsOneStep) {
    checkStep(typing, {{u"<a href|>", "=", u"<a href=\"|\">"}});
}

TEST(CodeEditorCoordinator, LetsCharactersThroughThatMeanNothingElse) {
    checkStep(typing, {
                          {u"<br/|", ">", u"<br/>|"},
                          {u"<a></a><|", "/", u"<a></a></|"},
                          {u"<a>x|</a>", "/", u"<a>x/|</a>"},
                          {u"<a>x|</a>", "=", u"<a>x=|</a>"},
                          {u"<a>|</a>", ">", u"<a>>|</a>"},
                          {u"<a b=|>", "\"", u"<a b=\"|>"},
                          {u"<a>|</a>", "'", u"<a>'|</a>"},
                          {u"<a |bc|>", "=", u"<a =|>"}, // Replaces a selection.
                          {u"<!-- <|", "/", u"<!-- </|"},
                      });
}

TEST(CodeEditorCoordinator, StepsOverTheClosingQuoteWithoutAChange) {
    for (const auto& [before, key, after] : {
             Row{u"<a b=\"x|\"/>", "\"", u"<a b=\"x\"|/>"},
             Row{u"<a b='|'/>", "'", u"<a b=''|/>"},
         }) {
        EditorDesk desk(before);
        desk.type(key);
        EXPECT_EQ(desk.state(), after);
        EXPECT_FALSE(desk.undoManager.canUndo());
        EXPECT_EQ(desk.buffer.generation(), 0);
    }
}

TEST(CodeEditorCoordinator, HelpsToTypeAWholeElement) {
    EditorDesk desk(u"|");
    desk.type("<a href=x\">text");
    EXPECT_EQ(desk.state(), u"<a href=\"x\">text|</a>");
    EditorDesk nested(u"|");
    nested.type("<a>\n<b c=1\">x");
    EXPECT_EQ(nested.state(), u"<a>\n    <b c=\"1\">x|</b>\n</a>");
}

TEST(CodeEditorCoordinator, IndentsANewLine) {
    checkStep(typing, {
                          {u"  <a>|</a>\n  <b/>\n", "\n", u"  <a>\n    |\n  </a>\n  <b/>\n"},
                          {u"<a>\n  <b/>|\n</a>", "\n", u"<a>\n  <b/>\n  |\n</a>"},
                          {u"<a>\n  x|yz|\n</a>", "\n", u"<a>\n  x\n  |\n</a>"},
                          {u"<a>\r\n\t<b>|\r\n</a>", "\n", u"<a>\r\n\t<b>\r\n\t\t|\r\n</a>"},
                          {u"|", "\n", u"\n|"},
                      });
}

TEST(CodeEditorCoordinator, IndentsWithTab) {
    checkStep(typing, {
                          {u"<a>\n  <b |/>\n</a>", "\t", u"<a>\n  <b   |/>\n</a>"},
                          {u"<a>\n\t<b/>\n|</a>", "\t", u"<a>\n\t<b/>\n\t|</a>"},
                          {u"<a>\n  <b/>\n  <c|/>\n</|a>\n", "\t", u"<a>\n  <b/>\n    <c|/>\n  </|a>\n"},
                      });
}

TEST(CodeEditorCoordinator, OutdentsWithShiftTab) {
    checkStep(typing, {
                          {u"   x|", "\v", u"x|"},
                          {u"<a>\n  <b|/>\n  </a|>", "\v", u"<a>\n<b|/>\n</a|>"},
                      });
    EditorDesk desk(u"<a|>");
    desk.type("\v");
    EXPECT_EQ(desk.state(), u"<a|>");
    EXPECT_FALSE(desk.undoManager.canUndo());
}

TEST(CodeEditorCoordinator, IndentsVeryManyLinesInOneReplacement) {
    const std::u16string text = std::u16string(u"|") + repeated(u"<b/>\n\n", 2'000) + u"|";
    EditorDesk desk(text);
    const std::u16string indented =
        std::u16string(u"    |") + repeated(u"<b/>\n\n    ", 1'999) + u"<b/>\n\n|";
    desk.type("\t");
    EXPECT_EQ(desk.state(), indented);
    EXPECT_EQ(desk.buffer.generation(), 1);
    EXPECT_EQ(desk.undoManager.undoActionName(), typing);
    desk.view().undo();
    EXPECT_EQ(desk.state(), text);
    EXPECT_FALSE(desk.undoManager.canUndo());
    desk.view().redo();
    desk.view().select(desk.buffer.text().fullRange());
    desk.type("\v");
    EXPECT_EQ(desk.state(), text);
    EXPECT_EQ(desk.buffer.generation(), 4);
}

// Placeholders

TEST(CodeEditorCoordinator, ExpandsAnAbbreviationAsOneStep) {
    checkStep(typing, {
                          {u"ul>li*2|", "\t", u"<ul>\n    <li>|</li>\n    <li></li>\n</ul>"},
                          {u"<r>img/|</r>", "\t", u"<r><img/>|</r>"},
                      });
}

TEST(CodeEditorCoordinator, GoesFromPlaceholderToPlaceholder) {
    EditorDesk desk(u"ul>li*2|");
    desk.type("\t");
    ASSERT_TRUE(desk.coordinator().placeholders().isActive());
    desk.type("one two\t");
    EXPECT_EQ(desk.state(), u"<ul>\n    <li>one two</li>\n    <li>|</li>\n</ul>");
    desk.type("three");
    desk.type("\v");
    EXPECT_EQ(desk.state(), u"<ul>\n    <li>|one two|</li>\n    <li>three</li>\n</ul>");
    desk.type("\v");
    EXPECT_EQ(desk.state(), u"<ul>\n    <li>|one two|</li>\n    <li>three</li>\n</ul>");
    desk.type("new\t");
    EXPECT_EQ(desk.state(), u"<ul>\n    <li>new</li>\n    <li>|three|</li>\n</ul>");
    desk.type("\t");
    EXPECT_EQ(desk.state(), u"<ul>\n    <li>new</li>\n    <li>three</li>\n</ul>|");
    EXPECT_FALSE(desk.coordinator().placeholders().isActive());
    desk.type("\t");
    EXPECT_EQ(desk.state(), u"<ul>\n    <li>new</li>\n    <li>three</li>\n</ul>    |");
}

TEST(CodeEditorCoordinator, ExpandsInsideAPlaceholder) {
    EditorDesk desk(u"a>b|");
    desk.type("\tc>d\t");
    EXPECT_EQ(desk.state(), u"<a>\n    <b><c>\n        <d>|</d>\n    </c></b>\n</a>");
}

TEST(CodeEditorCoordinator, LeavesPlaceholdersWithEscape) {
    EditorDesk desk(u"ul>li*2|");
    desk.type("\tx\x1b");
    EXPECT_FALSE(desk.coordinator().placeholders().isActive());
    const std::u16string state = desk.state();
    EXPECT_EQ(state, u"<ul>\n    <li>x|</li>\n    <li></li>\n</ul>");
    desk.view().select(SourceRange());
    desk.type("\t");
    EXPECT_EQ(desk.state().substr(0, 5), u"    |");
}

TEST(CodeEditorCoordinator, PassesEscapeOnWithoutPlaceholders) {
    EditorDesk desk(u"<a|>");
    EXPECT_FALSE(desk.coordinator().doCommand(TextCommand::cancelOperation));
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    escape.accept();
    QCoreApplication::sendEvent(&desk.view(), &escape);
    EXPECT_FALSE(escape.isAccepted());

    EditorDesk active(u"a>b|");
    active.type("\t");
    escape.accept();
    QCoreApplication::sendEvent(&active.view(), &escape);
    EXPECT_TRUE(escape.isAccepted());
}

TEST(CodeEditorCoordinator, KeepsPlaceholdersInStepWithAllThatChangesTheText) {
    EditorDesk desk(u"<r>\n</r>\nul>li*2|");
    desk.type("\t");
    // Somebody else edits before them, a tag is renamed on the way, and typing is undone.
    desk.buffer.apply(std::vector{TextEdit::insert(u"<!---->", 0)}, QStringLiteral("Comentar"));
    desk.type("ab");
    desk.view().undo();
    desk.type("\t");
    EXPECT_EQ(desk.state(), u"<!----><r>\n</r>\n<ul>\n    <li></li>\n    <li>|</li>\n</ul>");
}

TEST(CodeEditorCoordinator, StopsTrackingWhenTheExpansionIsUndone) {
    EditorDesk desk(u"ul>li*2|");
    desk.type("\t");
    desk.view().undo();
    EXPECT_EQ(desk.state(), u"ul>li*2|");
    EXPECT_FALSE(desk.coordinator().placeholders().isActive());
}

// Names of tags

TEST(CodeEditorCoordinator, RenamesBothTagsAsOneStep) {
    checkStep(renaming, {
                            {u"<r><it|em>x</item></r>", "X", u"<r><itX|em>x</itXem></r>"},
                            {u"<item|>x</item>", "s", u"<items|>x</items>"},
                            {u"<|item>x</item>", "s", u"<s|item>x</sitem>"},
                            {u"<item>x</it|em>", "X", u"<itXem>x</itX|em>"},
                            {u"<item|>x</item>", "\b", u"<ite|>x</ite>"},
                            {u"<item>x</item|>", "\b", u"<ite>x</ite|>"},
                            {u"<|item|>x</item>", "p", u"<p|>x</p>"},
                            {u"<a>x</|a|>", "b", u"<b>x</b|>"},
                        });
}

TEST(CodeEditorCoordinator, RenamesLetterByLetter) {
    EditorDesk desk(u"<a|>x</a>");
    desk.type("bcd\b");
    EXPECT_EQ(desk.state(), u"<abc|>x</abc>");
    // What is typed in one go is one step, and so is what is erased.
    for (const std::u16string_view before : {u"<abcd|>x</abcd>", u"<a|>x</a>"}) {
        EXPECT_EQ(desk.undoManager.undoActionName(), renaming);
        desk.view().undo();
        EXPECT_EQ(desk.state(), before);
    }
    EXPECT_FALSE(desk.undoManager.canUndo());
    desk.view().redo();
    EXPECT_EQ(desk.state(), u"<abcd|>x</abcd>");
    desk.view().redo();
    EXPECT_EQ(desk.state(), u"<abc|>x</abc>");
}

TEST(CodeEditorCoordinator, BeginsANewStepOfRenamingOnceTheCaretHasMoved) {
    EditorDesk desk(u"<a|>x</a>");
    desk.type("b");
    QTest::keyClick(&desk.view(), Qt::Key_Left);
    QTest::keyClick(&desk.view(), Qt::Key_Right);
    desk.type("c");
    EXPECT_EQ(desk.state(), u"<abc|>x</abc>");
    desk.view().undo();
    EXPECT_EQ(desk.state(), u"<ab|>x</ab>");
    desk.view().undo();
    EXPECT_EQ(desk.state(), u"<a|>x</a>");
    EXPECT_FALSE(desk.undoManager.canUndo());
}

TEST(CodeEditorCoordinator, AsksTheTreeWhatHidesAnOpener) {
    for (const auto& [before, keys, after] : {
             Row{u"<r><![CDATA[<!--]]><b|</r>", ">", u"<r><![CDATA[<!--]]><b>|</b></r>"},
             Row{u"<r><![CDATA[<!--]]><b c|></b></r>", "=", u"<r><![CDATA[<!--]]><b c=\"|\"></b></r>"},
             Row{u"<r><![CDATA[<!--]]><|", "/", u"<r><![CDATA[<!--]]></r>|"},
             Row{u"<r><!-- <? -->ul>li|</r>", "\t", u"<r><!-- <? --><ul>\n    <li>|</li>\n</ul></r>"},
             Row{u"<r><!-- <? --><b>|</b></r>", "\n", u"<r><!-- <? --><b>\n    |\n</b></r>"},
             Row{u"<r><!-- <? --><b|>x</b></r>", "c", u"<r><!-- <? --><bc|>x</bc></r>"},
             // What was typed since the parse changes nothing before it.
             Row{u"<r><![CDATA[<!--]]>|</r>", "<b c=\"d\">", u"<r><![CDATA[<!--]]><b c=\"d\">|</b></r>"},
         }) {
        EditorDesk desk(before);
        desk.type(keys);
        EXPECT_EQ(desk.state(), after) << ::testing::PrintToString(before);
    }
    EXPECT_EQ(completions(u"<item/><!-- <? --><|it|"), QStringList(QStringLiteral("item")));
}

TEST(CodeEditorCoordinator, HelpsAfterAClosedCommentWithMarkupInIt) {
    EditorDesk desk(u"<r><!-- if a < b, don't -->ul>li|</r>");
    desk.type("\t");
    EXPECT_EQ(desk.state(), u"<r><!-- if a < b, don't --><ul>\n    <li>|</li>\n</ul></r>");
    EditorDesk quote(u"<r><!-- < ' -->|'</r>");
    quote.type("'");
    EXPECT_EQ(quote.state(), u"<r><!-- < ' -->'|'</r>");
}

TEST(CodeEditorCoordinator, RenamesNothingWithOtherChanges) {
    check({
        {u"<a|>x</a>", " ", u"<a |>x</a>"},
        {u"<a>x|</a>", "b", u"<a>xb|</a>"},
        {u"<a b|>x</a>", "c", u"<a bc|>x</a>"},
        {u"<a|>x</b>", "c", u"<ac|>x</b>"},
        {u"<a|/>", "c", u"<ac|/>"},
        {u"<|a>|x</a>", "c", u"<c|x</a>"},
        {u"<!-- <a|></a> -->", "c", u"<!-- <ac|></a> -->"},
    });
}

// Input methods

TEST(CodeEditorCoordinator, InterceptsNothingThatAnInputMethodComposes) {
    EditorDesk desk(u"<a|>x</a>");
    compose(desk.view(), QStringLiteral("n"));
    EXPECT_TRUE(desk.view().hasMarkedText());
    EXPECT_EQ(desk.state(), u"<a|>x</a>");
    compose(desk.view(), {}, QStringLiteral("ñ"));
    EXPECT_EQ(desk.state(), u"<añ|>x</a>");

    EditorDesk closing(u"<a|");
    compose(closing.view(), QStringLiteral("x"));
    compose(closing.view(), {}, QStringLiteral(">"));
    EXPECT_EQ(closing.state(), u"<a>|");
}

TEST(CodeEditorCoordinator, TreatsWhatAnInputMethodInsertsAtOnceAsTyped) {
    EditorDesk desk(u"<a|");
    compose(desk.view(), {}, QStringLiteral(">"));
    EXPECT_EQ(desk.state(), u"<a>|</a>");
}

// A text so long that the aids run on a worker: they do the same.
TEST(CodeEditorCoordinator, HelpsInALongText) {
    std::u16string text = u"<list>\n";
    while (text.size() < 1'100'000) {
        text += u"  <item>some text</item>\n";
    }
    EditorDesk desk(text + u"  <last|</list>\n");
    desk.type(">x");
    EXPECT_TRUE(desk.state().ends_with(u"</item>\n  <last>x|</last></list>\n"));
    QTest::keyClick(&desk.view(), Qt::Key_Left);
    QTest::keyClick(&desk.view(), Qt::Key_Left);
    desk.type("s");
    EXPECT_TRUE(desk.state().ends_with(u"  <lasts|>x</lasts></list>\n"));
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

// Completions

TEST(CodeEditorCoordinator, CompletesNamesByContext) {
    const QStringList elements{QStringLiteral("item"), QStringLiteral("items")};
    const QStringList attributes{QStringLiteral("id"), QStringLiteral("ix")};
    struct CompletionRow {
        std::u16string_view marked;
        QStringList expected;
    };
    const CompletionRow rows[] = {
        {u"<items><item id='1' ix='2'/>|i|</items>", elements},          // Content.
        {u"<items><item id='1' ix='2'/><|i|</items>", elements},         // After `<`.
        {u"<items><item id='1' ix='2'/></|i|</items>", elements},        // After `/`.
        {u"<items><item id='1' ix='2'/><item |i|></items>", attributes}, // In a tag.
        {u"<items><item id='1' ix='2' |i|/></items>", attributes},
        {u"<items><item id='1' ix='|i|'/></items>", {}}, // In a value.
        {u"<items><item id='1' ix='2'/><!-- |i| --></items>", {}},
        {u"<items><item id='1' ix='2'/><![CDATA[|i|]]></items>", {}},
        {u"<items><item id='1' ix='2'/><?p |i|?></items>", {}},
        {u"<items><item id='1' ix='2'/>|item|</items>", {QStringLiteral("items")}}, // Not the word itself.
        {u"<items><item id='1' ix='2'/>|z|</items>", {}},
    };
    for (const CompletionRow& row : rows) {
        QStringList found = completions(row.marked);
        found.sort();
        EXPECT_EQ(found, row.expected) << ::testing::PrintToString(row.marked);
    }
}

TEST(CodeEditorCoordinator, CompletesWhatCanBeRightFirst) {
    EXPECT_EQ(completions(u"<r><linea a='1' b='2'/><linea a='1' ||/></r>"), (QStringList{"b", "a"}));
    EXPECT_EQ(completions(u"<r><linea a='1' b='2'/><linea || a='1'/></r>"), (QStringList{"b", "a"}));
    EXPECT_EQ(completions(u"<libro><linea>x</|l|"), (QStringList{"linea", "libro"}));
    EXPECT_EQ(completions(u"<a>&||</a>"), (QStringList{"amp;", "lt;", "gt;", "quot;", "apos;"}));
    EXPECT_EQ(completions(u"<a>&|a|</a>"), (QStringList{"amp;", "apos;"}));
    EXPECT_EQ(completions(u"<a b='&|q|'/>"), (QStringList{"quot;"}));
    EXPECT_EQ(completions(u"<a><!-- &|a| --></a>"), QStringList());
}

TEST(CodeEditorCoordinator, LooksForTheContextNoFartherThan65536UnitsBack) {
    for (const bool isTooFar : {false, true}) {
        std::u16string text = u"<item/><!--";
        text.append(65'536 - 4 + (isTooFar ? 4 : 0), u' ').append(u"|i|-->");
        EXPECT_EQ(completions(text).isEmpty(), !isTooFar);
    }
}

// What the session is told, and what it asks for

TEST(CodeEditorCoordinator, TellsTheSessionWhatIsSelected) {
    EditorDesk desk(u"<a><b/>|</a>");
    EXPECT_EQ(desk.session.textSelection(), SourceRange(7, 7));
    QTest::keyClick(&desk.view(), Qt::Key_Left);
    QTest::keyClick(&desk.view(), Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(desk.session.textSelection(), SourceRange(5, 6));
    ASSERT_TRUE(desk.session.selection());
    EXPECT_EQ(desk.session.selection()->indices, (std::vector<std::uint32_t>{0, 0}));
}

TEST(CodeEditorCoordinator, RevealsWhatTheSessionAsksForOnce) {
    std::u16string text = u"<a>\n";
    for (int line = 0; line < 300; ++line) {
        text += u"<b/>\n";
    }
    EditorDesk desk(text + u"|</a>");
    desk.view().scrollToVisible({0, 0});
    const Offset at = desk.buffer.text().lineStart(200);
    desk.session.reveal({at, at + 4});
    EXPECT_EQ(desk.view().selection(), SourceRange(at, at + 4));
    EXPECT_LE(desk.view().firstVisibleLine(), 200U);
    EXPECT_GE(desk.view().lastVisibleLine(), 200U);
    EXPECT_EQ(desk.coordinator().lastRevealSerial(), desk.session.revealRequest()->serial);
    EXPECT_TRUE(desk.view().hasFocus());

    desk.view().select(SourceRange());
    desk.coordinator().update(); // The same request: nothing.
    EXPECT_EQ(desk.view().selection(), SourceRange(0, 0));
    desk.session.reveal({at, at + 4}); // Another one for the same range.
    EXPECT_EQ(desk.view().selection(), SourceRange(at, at + 4));
}

TEST(CodeEditorCoordinator, RevealsTheRestOfARangeBeyondTheText) {
    for (const auto& [length, expected] :
         {std::pair{5, SourceRange(3, 5)}, std::pair{2, SourceRange(2, 2)}}) {
        EditorDesk desk(u"|<a>text</a>");
        desk.session.reveal({3, 7});
        desk.buffer.apply(std::vector{TextEdit::deleteRange({length, 11})});
        // Another pane finds the request as it was made for the longer text.
        CodeEditorView late(desk.session);
        EXPECT_EQ(late.textView().selection(), expected);
    }
}

TEST(CodeEditorCoordinator, ShowsAPendingRevealAsSoonAsThereIsAView) {
    const auto mirror = std::make_shared<TextMirror>(Rope(u"<a><b/></a>"));
    TextBuffer buffer(Rope(u"<a><b/></a>"), mirror);
    EditorSession session(buffer, QStringLiteral("UTF-8"));
    session.start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return session.isTreeCurrent(); }));
    session.reveal({3, 7});
    CodeEditorView editor(session);
    EXPECT_EQ(editor.textView().selection(), SourceRange(3, 7));
}

TEST(CodeEditorCoordinator, GivesEachParseToTheRulerOnce) {
    EditorDesk desk(u"<a>\n&\n</a>|");
    EXPECT_EQ(desk.coordinator().lastHighlightedGeneration(), 0);
    EXPECT_EQ(desk.editor.ruler().lines().lineCount(), 3U);
    EXPECT_TRUE(desk.editor.ruler().errorLines().contains(1));
    EXPECT_EQ(desk.editor.ruler().errorLines().first(2), std::nullopt);

    const auto other = std::make_shared<LineIndex>(SourceText(u"\n\n\n\n"));
    desk.editor.ruler().setLines(other);
    desk.coordinator().update();
    EXPECT_EQ(&desk.editor.ruler().lines(), other.get());

    desk.type("\n");
    desk.waitForParse();
    EXPECT_EQ(desk.coordinator().lastHighlightedGeneration(), desk.buffer.generation());
    EXPECT_EQ(desk.editor.ruler().lines().lineCount(), 4U);
}

// Problems

TEST(CodeEditorCoordinator, TellsTheMessageOfAProblemAsItStands) {
    EditorDesk desk(u"<a>&|</a>");
    const QString message = QString::fromStdU16String(desk.session.tree().diagnostics[0].message);
    EXPECT_FALSE(message.isEmpty());
    EXPECT_EQ(desk.coordinator().toolTip(3), message);
    EXPECT_EQ(desk.coordinator().toolTip(0), QString());
}

TEST(CodeEditorCoordinator, TellsWhereAProblemIsWhileTyping) {
    EditorDesk desk(u"<a>|&</a>");
    const QString message = QString::fromStdU16String(desk.session.tree().diagnostics[0].message);
    desk.type("xyz");
    ASSERT_FALSE(desk.session.isTreeCurrent());
    EXPECT_EQ(desk.coordinator().toolTip(7), message);
    EXPECT_EQ(desk.coordinator().toolTip(0), QString());
}

TEST(CodeEditorCoordinator, OffersTheFixesAtTheCaretWithAltReturn) {
    EditorDesk desk(u"<a>&|</a>");
    const auto fix = desk.session.tree().diagnostics[0].fix;
    ASSERT_TRUE(fix);
    const QString title = QString::fromStdU16String(fix->title);
    QTest::keyClick(&desk.view(), Qt::Key_Return, Qt::AltModifier);
    ASSERT_NE(menu(), nullptr);
    EXPECT_EQ(titles(menu()), QStringList(QString(title).replace(u'&', QStringLiteral("&&"))));
    QTest::keyClick(menu(), Qt::Key_Return);
    EXPECT_EQ(menu(), nullptr);
    EXPECT_EQ(desk.buffer.text(), Rope(u"<a>&amp;</a>"));
    EXPECT_EQ(desk.undoManager.undoActionName(), title);
    desk.view().undo();
    EXPECT_EQ(desk.state(), u"<a>&|</a>");
}

TEST(CodeEditorCoordinator, OffersTheFixesOfTheLineWhenNoneIsAtTheCaret) {
    EditorDesk desk(u"<a>\n  & and|\n&</a>");
    QTest::keyClick(&desk.view(), Qt::Key_Return, Qt::AltModifier);
    ASSERT_NE(menu(), nullptr);
    EXPECT_EQ(menu()->actions().size(), 1);
    menu()->actions().front()->trigger();
    menu()->close();
    EXPECT_EQ(desk.buffer.text(), Rope(u"<a>\n  &amp; and\n&</a>"));
}

TEST(CodeEditorCoordinator, ShortensWhatALongNameIsIn) {
    EditorDesk desk(std::u16string(u"<|") + repeated(u"n", 100'000) + u">");
    EXPECT_EQ(desk.coordinator().toolTip(5), QStringLiteral("Falta cerrar <") + QString(105, u'n') + u'…');
    QTest::keyClick(&desk.view(), Qt::Key_Return, Qt::AltModifier);
    const QString title = QStringLiteral("Cerrar <") + QString(111, u'n') + u'…';
    EXPECT_EQ(titles(menu()), QStringList(title));
    QTest::keyClick(menu(), Qt::Key_Return);
    EXPECT_TRUE(desk.text().ends_with(std::u16string(u"</") + repeated(u"n", 100'000) + u">"));
    EXPECT_EQ(desk.undoManager.undoActionName(), title);
}

TEST(CodeEditorCoordinator, OffersFixesThatDoTheSameOnce) {
    EditorDesk desk(u"<a><b><a><a>|");
    QTest::keyClick(&desk.view(), Qt::Key_Return, Qt::AltModifier);
    ASSERT_NE(menu(), nullptr);
    const QStringList offered = titles(menu());
    EXPECT_EQ(offered.size(), 2);
    EXPECT_EQ(offered.count(QStringLiteral("Cerrar <a>")), 1);
    menu()->close();
}

TEST(CodeEditorCoordinator, OffersToRenameAnEndTagBesideRemovingIt) {
    EditorDesk desk(u"<r><item>x</it|m></r>");
    QTest::keyClick(&desk.view(), Qt::Key_Return, Qt::AltModifier);
    ASSERT_NE(menu(), nullptr);
    EXPECT_EQ(titles(menu()),
              QStringList({QStringLiteral("Eliminar cierre"), QStringLiteral("Cambiar por </item>")}));
    menu()->actions().back()->trigger();
    menu()->close();
    EXPECT_EQ(desk.text(), u"<r><item>x</item></r>");
}

TEST(CodeEditorCoordinator, KeepsTheCaretInWhatIsLaidOut) {
    EditorDesk desk(u"<a><b>x|</b><c/></a>");
    desk.session.format();
    EXPECT_EQ(desk.state(), u"<a>\n    <b>x|</b>\n    <c/>\n</a>\n");
    desk.session.minify();
    EXPECT_EQ(desk.state(), u"<a><b>x|</b><c/></a>");
    desk.view().undo();
    desk.view().undo();
    EXPECT_EQ(desk.state(), u"<a><b>x|</b><c/></a>");
    desk.view().redo();
    EXPECT_EQ(desk.state(), u"<a>\n    <b>x|</b>\n    <c/>\n</a>\n");
}

TEST(CodeEditorCoordinator, OffersNothingWhereThereIsNothingToFix) {
    EditorDesk desk(u"<a>|</a>");
    QTest::keyClick(&desk.view(), Qt::Key_Return, Qt::AltModifier);
    EXPECT_EQ(menu(), nullptr);
    EXPECT_EQ(desk.state(), u"<a>|</a>");
}

TEST(CodeEditorCoordinator, PutsFixesFirstInTheContextMenu) {
    EditorDesk desk(u"|<a>&</a>");
    QMenu given;
    const QAction* const copy = given.addAction(QStringLiteral("Copiar"));
    desk.coordinator().contextMenuWillOpen(given, 4);
    ASSERT_EQ(given.actions().size(), 3);
    EXPECT_TRUE(given.actions()[1]->isSeparator());
    EXPECT_EQ(given.actions()[2], copy);
    given.actions()[0]->trigger();
    EXPECT_EQ(desk.buffer.text(), Rope(u"<a>&amp;</a>"));

    QMenu unchanged;
    unchanged.addAction(QStringLiteral("Copiar"));
    desk.waitForParse();
    desk.coordinator().contextMenuWillOpen(unchanged, 4);
    EXPECT_EQ(unchanged.actions().size(), 1);
}

TEST(CodeEditorCoordinator, AppliesNoFixOfATextThatIsGone) {
    EditorDesk desk(u"<a>&|</a>");
    QMenu given;
    desk.coordinator().contextMenuWillOpen(given, 3);
    ASSERT_EQ(given.actions().size(), 1);
    desk.buffer.apply(std::vector{TextEdit{{3, 4}, u"ok"}});
    desk.waitForParse();
    given.actions()[0]->trigger();
    EXPECT_EQ(desk.buffer.text(), Rope(u"<a>ok</a>"));
}

TEST(CodeEditorCoordinator, DoesNothingOnceTheViewIsGone) {
    EditorDesk desk(u"<a>&</a>|");
    CodeEditorCoordinator coordinator(desk.session);
    EXPECT_FALSE(coordinator.doCommand(TextCommand::insertTab));
    EXPECT_TRUE(coordinator.shouldChangeText({0, 0}, u">"));
    EXPECT_EQ(coordinator.completions({0, 0}), QStringList());
    coordinator.textDidChange();
    coordinator.selectionDidChange();
    coordinator.update();
    coordinator.offerFixes();
    QMenu unchanged;
    coordinator.contextMenuWillOpen(unchanged, 3);
    EXPECT_TRUE(unchanged.isEmpty());
    EXPECT_EQ(coordinator.lastHighlightedGeneration(), std::nullopt);
}
