#include "EditorWindowView.h"

#include "AppCommands.h"
#include "CodeEditorView.h"
#include "FindBar.h"
#include "KeyTable.h"
#include "NamePromptDialog.h"
#include "NodeInspectorView.h"
#include "NoticeBar.h"
#include "ParsedDesk.h"
#include "TemplateGalleryView.h"
#include "TreeEditorView.h"
#include "TreeRowEditor.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

using Mode = EditorSession::Mode;

/// A window with the menus and the view of a document.
struct Desk {
    std::shared_ptr<TextMirror> mirror;
    TextBuffer buffer;
    UndoManager undo;
    EditorSession session;
    QWidget window;
    QMenuBar* menus = new QMenuBar;
    QMenu* view = new QMenu(QStringLiteral("Visualización"), &window);
    EditorWindowView* editor;

    explicit Desk(std::u16string_view text)
        : mirror(std::make_shared<TextMirror>(Rope(text))), buffer(Rope(text), mirror),
          session(buffer, QStringLiteral("Unicode (UTF-8)")), editor(new EditorWindowView(session, undo)) {
        AppCommands::addModes(*view);
        AppCommands::addPlaces(*view);
        menus->addMenu(view);
        menus->addMenu(AppCommands::makeFormatMenu(&window));
        menus->addMenu(AppCommands::makeNodeMenu(&window));
        auto* layout = new QVBoxLayout(&window);
        layout->setMenuBar(menus);
        layout->addWidget(editor);
        window.resize(1000, 700);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        waitForTree();
    }
    ~Desk() { delete editor; }

    void waitForTree() {
        EXPECT_TRUE(QTest::qWaitFor([this] { return session.isTreeCurrent(); }, 10'000));
    }
    QString text() const {
        return QString::fromStdU16String(buffer.text().units(buffer.text().fullRange()));
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
        QWidget* const focused = QApplication::focusWidget();
        QTest::keyClick(focused == nullptr ? editor : focused, key, modifiers);
    }
    template <class Dialog>
    Dialog* dialog() const {
        Dialog* found = nullptr;
        EXPECT_TRUE(QTest::qWaitFor([&] {
            found = qobject_cast<Dialog*>(QApplication::activeModalWidget());
            return found != nullptr;
        }));
        return found;
    }
    QStringList titles(int menu) const {
        QStringList all;
        for (const QAction* action : menus->actions()[menu]->menu()->actions()) {
            all += action->isSeparator() ? QStringLiteral("-")
                                         : KeyTable::plainTitle(action->text()) + u' ' +
                                               action->shortcut().toString();
        }
        return all;
    }
};

QPushButton* button(QWidget& dialog, const QString& text) {
    for (QPushButton* button : dialog.findChildren<QPushButton*>()) {
        if (button->text() == text) {
            return button;
        }
    }
    return nullptr;
}

} // namespace

TEST(AppCommands, AreListedInOrderWithTheirShortcuts) {
    Desk desk(u"<a/>");
    EXPECT_EQ(desk.titles(0),
              (QStringList{QStringLiteral("Modo texto Ctrl+1"), QStringLiteral("Modo visual Ctrl+2"),
                           QStringLiteral("Modo dividido Ctrl+3"), QStringLiteral("-"),
                           QStringLiteral("Panel siguiente F6"), QStringLiteral("Panel anterior Shift+F6"),
                           QStringLiteral("-"), QStringLiteral("Problema siguiente F8"),
                           QStringLiteral("Problema anterior Shift+F8")}));
    EXPECT_EQ(desk.titles(1),
              (QStringList{QStringLiteral("Formatear documento Ctrl+Alt+F"),
                           QStringLiteral("Minificar documento Ctrl+Alt+Shift+F"), QStringLiteral("-"),
                           QStringLiteral("Comentar / descomentar Ctrl+/")}));
    EXPECT_EQ(
        desk.titles(2),
        (QStringList{
            QStringLiteral("Añadir hijo… Ctrl+Return"), QStringLiteral("Añadir hermano… Ctrl+Shift+Return"),
            QStringLiteral("Envolver en… Ctrl+Alt+W"), QStringLiteral("Duplicar Ctrl+D"), QStringLiteral("-"),
            QStringLiteral("Mover arriba Ctrl+Alt+Up"), QStringLiteral("Mover abajo Ctrl+Alt+Down"),
            QStringLiteral("-"), QStringLiteral("Copiar ruta Ctrl+Shift+C"), QStringLiteral("Eliminar "),
            QStringLiteral("-"), QStringLiteral("Renombrar… "), QStringLiteral("Insertar texto… "), QStringLiteral("Insertar comentario… "),
            QStringLiteral("Crear elemento raíz… ")}));
}

TEST(AppCommands, LeadTheKeyboardToNotices) {
    Desk desk(u"<a/>");
    NoticeBar bar(&desk.window);
    bar.tell(QStringLiteral("Aviso"));
    bar.offer(QStringLiteral("Entendido"), [] {});
    const QWidget* const button = bar.findChild<QPushButton*>();
    ASSERT_TRUE(QTest::qWaitFor([&] { return button->isVisible(); }));
    for (int step = 0; step < 8 && !button->hasFocus(); ++step) {
        desk.press(Qt::Key_F6, Qt::NoModifier);
    }
    EXPECT_TRUE(button->hasFocus());
    bar.dismiss();
    for (int step = 0; step < 8; ++step) {
        desk.press(Qt::Key_F6, Qt::NoModifier);
        EXPECT_FALSE(bar.isAncestorOf(QApplication::focusWidget()));
    }
}

TEST(AppCommands, EditTheSelectedNodeInTheTree) {
    Desk desk(u"<a><b/></a>");
    desk.session.setMode(EditorSession::Mode::text);
    desk.session.select(NodePath{{0, 0}});
    for (QAction* const action : desk.menus->actions()[2]->menu()->actions()) {
        if (KeyTable::plainTitle(action->text()) == QStringLiteral("Renombrar…")) {
            action->trigger();
        }
    }
    TreeRowEditor* field = nullptr;
    ASSERT_TRUE(QTest::qWaitFor([&] {
        field = desk.editor->findChild<TreeRowEditor*>();
        return field != nullptr;
    }));
    EXPECT_EQ(field->text(), QStringLiteral("b"));
    EXPECT_TRUE(field->isVisible());
}

TEST(AppCommands, WorkOnTheFocusedWindow) {
    Desk desk(u"<a><b/><c/></a>");
    desk.session.select(NodePath{{0, 0}});
    desk.press(Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(desk.text(), QStringLiteral("<a><b/><b/><c/></a>"));
    desk.waitForTree();
    desk.press(Qt::Key_Down, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(desk.text(), QStringLiteral("<a><b/><c/><b/></a>"));
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Mover"));
    desk.waitForTree();
    desk.press(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("/a/b[2]"));
    desk.press(Qt::Key_F, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Formatear"));
    EXPECT_EQ(desk.text(), QStringLiteral("<a>\n    <b/>\n    <c/>\n    <b/>\n</a>\n"));
    desk.press(Qt::Key_F, Qt::ControlModifier | Qt::AltModifier | Qt::ShiftModifier);
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Minificar"));
    desk.press(Qt::Key_3, Qt::ControlModifier);
    EXPECT_EQ(desk.session.mode(), Mode::split);
    desk.press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(desk.session.mode(), Mode::text);
}

TEST(AppCommands, DoNothingWithoutAnEditorWindow) {
    EXPECT_EQ(AppCommands::focused().session, nullptr);
    QWidget other;
    QMenuBar menus(&other);
    menus.addMenu(AppCommands::makeNodeMenu(&other));
    other.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    EXPECT_EQ(AppCommands::focused().session, nullptr);
    for (QAction* action : menus.actions().front()->menu()->actions()) {
        EXPECT_TRUE(action->isEnabled());
        action->trigger();
    }
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST(AppCommands, DoNothingWithoutASelectedNode) {
    Desk desk(u"<a/>");
    for (QAction* action : desk.menus->actions()[2]->menu()->actions()) {
        action->trigger();
    }
    EXPECT_EQ(desk.text(), QStringLiteral("<a/>"));
    EXPECT_FALSE(desk.session.namePrompt());
    EXPECT_FALSE(desk.session.errorMessage());
}

TEST(AppCommands, MoveNodesByKeysThatWindowManagersLeave) {
    Desk desk(u"<a><b/><c/></a>");
    desk.session.select(NodePath{{0, 0}});
    desk.press(Qt::Key_Down, Qt::AltModifier | Qt::ShiftModifier);
    EXPECT_EQ(desk.text(), QStringLiteral("<a><c/><b/></a>"));
    desk.waitForTree();
    desk.press(Qt::Key_Up, Qt::AltModifier | Qt::ShiftModifier);
    EXPECT_EQ(desk.text(), QStringLiteral("<a><b/><c/></a>"));
}

TEST(AppCommands, OfferARootWhereThereIsNone) {
    for (const auto& [text, isOffered] : {std::pair(u"<!-- c -->", true), std::pair(u"<a/>", false)}) {
        Desk desk(text);
        QMenu* const node = desk.menus->actions()[2]->menu();
        emit node->aboutToShow();
        EXPECT_EQ(node->actions().back()->isVisible(), isOffered);
    }
}

TEST(AppCommands, LeadAroundThePanes) {
    Desk desk(u"<a/>");
    desk.session.setMode(Mode::split);
    desk.session.select(NodePath{{0}});
    desk.editor->codeEditor().setFocus();
    QStringList places;
    const auto place = [&] {
        const QWidget* const focused = QApplication::focusWidget();
        for (const auto& [pane, name] :
             {std::pair<const QWidget*, const char*>(&desk.editor->codeEditor(), "source"),
              std::pair<const QWidget*, const char*>(&desk.editor->treeEditor(), "tree"),
              std::pair<const QWidget*, const char*>(&desk.editor->inspector(), "inspector"),
              std::pair<const QWidget*, const char*>(&desk.editor->toolBar(), "tools")}) {
            if (pane->isAncestorOf(focused)) {
                return QString::fromLatin1(name);
            }
        }
        return QStringLiteral("bar");
    };
    for (int step = 0; step < 5; ++step) {
        desk.press(Qt::Key_F6, Qt::NoModifier);
        places += place();
    }
    EXPECT_EQ(places.join(u' '), QStringLiteral("tree inspector bar tools source"));
    desk.press(Qt::Key_F6, Qt::ShiftModifier);
    EXPECT_EQ(place(), QStringLiteral("tools"));
    desk.session.setMode(Mode::visual);
    desk.editor->setShowInspector(false);
    desk.editor->treeEditor().setFocus();
    desk.press(Qt::Key_F6, Qt::NoModifier);
    EXPECT_EQ(place(), QStringLiteral("bar")) << "what is hidden is left out";
}

TEST(AppCommands, CommentTheLineOfTheCaret) {
    Desk desk(u"<a>\n<b/>\n</a>");
    desk.session.setMode(Mode::text);
    desk.editor->codeEditor().setFocus();
    desk.editor->codeEditor().select(SourceRange(5, 5));
    desk.press(Qt::Key_Slash, Qt::ControlModifier);
    EXPECT_EQ(desk.text(), QStringLiteral("<a>\n<!-- <b/> -->\n</a>"));
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Comentar"));
    desk.press(Qt::Key_Slash, Qt::ControlModifier);
    EXPECT_EQ(desk.text(), QStringLiteral("<a>\n<b/>\n</a>"));
}

TEST(EditorWindowView, ShowsThePanesOfTheMode) {
    Desk desk(u"<a/>");
    EXPECT_EQ(desk.session.mode(), Mode::visual);
    const auto shown = [&] {
        return std::pair(desk.editor->codeEditor().isVisible(), desk.editor->treeEditor().isVisible());
    };
    EXPECT_EQ(shown(), std::pair(false, true));
    desk.session.setMode(Mode::text);
    EXPECT_EQ(shown(), std::pair(true, false));
    desk.session.setMode(Mode::split);
    EXPECT_EQ(shown(), std::pair(true, true));
    QCoreApplication::processEvents();
    EXPECT_NEAR(desk.editor->codeEditor().width(), desk.editor->treeEditor().width(), 2);
    EXPECT_TRUE(desk.editor->inspector().isVisible());
}

TEST(EditorWindowView, HasItsToolBarInOrder) {
    Desk desk(u"<a/>");
    QStringList texts;
    QList<QAbstractButton*> buttons;
    for (QAbstractButton* button : desk.editor->toolBar().findChildren<QAbstractButton*>()) {
        if (button->isVisible()) {
            buttons += button;
        }
    }
    std::ranges::sort(buttons, {}, [&](const QAbstractButton* button) {
        return button->mapTo(desk.editor, QPoint()).x();
    });
    for (const QAbstractButton* button : buttons) {
        texts += button->text();
    }
    EXPECT_EQ(texts,
              (QStringList{QStringLiteral("Texto"), QStringLiteral("Visual"), QStringLiteral("Dividido"),
                           QStringLiteral("Formatear"), QStringLiteral("Inspector")}));
    ASSERT_EQ(buttons.size(), 5);
    QTest::mouseClick(buttons[2], Qt::LeftButton);
    EXPECT_EQ(desk.session.mode(), Mode::split);
    desk.session.setMode(Mode::text);
    EXPECT_TRUE(buttons[0]->isChecked());
    EXPECT_EQ(buttons[3]->toolTip(), QStringLiteral("Formatear documento (Ctrl+Alt+F)"));
}

TEST(EditorWindowView, ShowsWhetherTheDocumentIsWellFormed) {
    const auto status = [](const Desk& desk) {
        for (const QLabel* label : desk.editor->toolBar().findChildren<QLabel*>()) {
            if (label->toolTip().startsWith(QStringLiteral("El documento"))) {
                EXPECT_EQ(label->accessibleName(), label->toolTip());
                return std::pair(label->text(), label->toolTip());
            }
        }
        return std::pair(QString(), QString());
    };
    EXPECT_EQ(status(Desk(u"<a/>")), std::pair(QString(), QStringLiteral("El documento está bien formado")));
    EXPECT_EQ(status(Desk(u"<a><b></a>&")),
              std::pair(QStringLiteral("2 errores"), QStringLiteral("El documento tiene errores")));
}

TEST(EditorWindowView, TogglesTheInspector) {
    Desk desk(u"<a/>");
    QToolButton* const button = desk.editor->toolBar().findChildren<QToolButton*>().back();
    ASSERT_EQ(button->text(), QStringLiteral("Inspector"));
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_FALSE(desk.editor->showInspector());
    EXPECT_FALSE(desk.editor->inspector().isVisible());
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_TRUE(desk.editor->inspector().isVisible());
}

TEST(EditorWindowView, AsksForANameAndInserts) {
    Desk desk(u"<a><b/></a>");
    desk.session.select(NodePath{{0}});
    desk.press(Qt::Key_Return, Qt::ControlModifier);
    auto* const prompt = desk.dialog<NamePromptDialog>();
    ASSERT_NE(prompt, nullptr);
    EXPECT_EQ(prompt->windowTitle(), QStringLiteral("Nombre de la etiqueta"));
    EXPECT_NE(button(*prompt, QStringLiteral("Cancelar")), nullptr);
    QTest::keyClicks(prompt->findChild<QLineEdit*>(), QStringLiteral("c"));
    QTest::mouseClick(button(*prompt, QStringLiteral("Aceptar")), Qt::LeftButton);
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Añadir hijo"));
    EXPECT_TRUE(desk.text().contains(QStringLiteral("<b/>")) && desk.text().contains(QStringLiteral("<c")));
    EXPECT_FALSE(desk.session.namePrompt());
}

TEST(EditorWindowView, TellsThatANamePromptWraps) {
    Desk desk(u"<a><b/></a>");
    desk.session.select(NodePath{{0, 0}});
    desk.press(Qt::Key_W, Qt::ControlModifier | Qt::AltModifier);
    auto* const prompt = desk.dialog<NamePromptDialog>();
    ASSERT_NE(prompt, nullptr);
    const auto labels = prompt->findChildren<QLabel*>();
    EXPECT_TRUE(std::ranges::any_of(
        labels, [](const QLabel* label) { return label->text() == QStringLiteral("Envolver en"); }));
    QTest::keyClick(prompt, Qt::Key_Escape);
    EXPECT_FALSE(desk.session.namePrompt());
    EXPECT_EQ(desk.text(), QStringLiteral("<a><b/></a>"));
}

TEST(EditorWindowView, TellsWhyAnEditWasRefused) {
    Desk desk(u"<a b='1'/>");
    desk.session.select(NodePath{{0}});
    desk.session.renameAttribute(NodePath{{0}}, QStringLiteral("b"), QStringLiteral("2"));
    auto* const alert = desk.dialog<QMessageBox>();
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->text(), QStringLiteral("No se pudo editar"));
    EXPECT_EQ(alert->informativeText(), QStringLiteral("“2” no es un nombre XML válido."));
    EXPECT_EQ(alert->textFormat(), Qt::PlainText);
    QTest::mouseClick(button(*alert, QStringLiteral("Aceptar")), Qt::LeftButton);
    EXPECT_FALSE(desk.session.errorMessage());
}

TEST(EditorWindowView, OffersTheGalleryForANewDocument) {
    Desk desk(u"");
    TemplateGalleryView& gallery = desk.editor->gallery();
    EXPECT_TRUE(gallery.isVisible());
    EXPECT_FALSE(desk.editor->treeEditor().isVisible());
    QTest::mouseClick(gallery.cards()[0], Qt::LeftButton);
    EXPECT_FALSE(gallery.isVisible());
    desk.waitForTree();
    desk.undo.undo();
    EXPECT_TRUE(gallery.isVisible()) << "undoing the template brings it back";
    desk.waitForTree();
    QTest::keyClicks(&gallery, QStringLiteral("<"));
    EXPECT_FALSE(gallery.isVisible());
    EXPECT_EQ(desk.text(), QStringLiteral("<"));
    EXPECT_TRUE(desk.editor->codeEditor().isVisible());
    EXPECT_TRUE(desk.editor->codeEditor().isAncestorOf(QApplication::focusWidget()));
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("a"));
    EXPECT_EQ(desk.text(), QStringLiteral("<a"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backspace);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backspace);
    EXPECT_EQ(desk.text(), QString());
    EXPECT_FALSE(gallery.isVisible()) << "emptying does not";
}

TEST(EditorWindowView, BeginsWithWhatIsPastedIntoTheGallery) {
    Desk desk(u"");
    QApplication::clipboard()->setText(QStringLiteral("<a>\n</a>"));
    desk.editor->gallery().paste();
    EXPECT_EQ(desk.text(), QStringLiteral("<a>\n</a>"));
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Pegar"));
    EXPECT_FALSE(desk.editor->gallery().isVisible());
    EXPECT_TRUE(desk.editor->treeEditor().isVisible());
}

TEST(EditorWindowView, KeepsTheNamePromptWithAnInvalidName) {
    Desk desk(u"<a/>");
    desk.session.select(NodePath{{0}});
    desk.press(Qt::Key_Return, Qt::ControlModifier);
    auto* const prompt = desk.dialog<NamePromptDialog>();
    ASSERT_NE(prompt, nullptr);
    QTest::keyClicks(prompt->findChild<QLineEdit*>(), QStringLiteral("a b"));
    QTest::mouseClick(button(*prompt, QStringLiteral("Aceptar")), Qt::LeftButton);
    EXPECT_TRUE(prompt->isVisible());
    EXPECT_EQ(prompt->name(), QStringLiteral("a b"));
    EXPECT_FALSE(desk.session.errorMessage());
    EXPECT_TRUE(desk.session.namePrompt());
    EXPECT_EQ(desk.text(), QStringLiteral("<a/>"));
}

TEST(EditorWindowView, StartsBlankWithSomewhereToType) {
    Desk desk(u"");
    QTest::mouseClick(desk.editor->gallery().blankButton(), Qt::LeftButton);
    EXPECT_FALSE(desk.editor->gallery().isVisible());
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("x"));
    EXPECT_EQ(desk.text(), QStringLiteral("x"));
}

TEST(EditorWindowView, ClaimsNothingBeforeTheFirstParse) {
    auto mirror = std::make_shared<TextMirror>(Rope(u"<a/>"));
    TextBuffer buffer(Rope(u"<a/>"), mirror);
    UndoManager undo;
    EditorSession session(buffer, QStringLiteral("Unicode (UTF-8)"));
    EditorWindowView editor(session, undo);
    const auto status = [&editor] {
        const auto shown = editor.toolBar().findChildren<QWidget*>();
        return std::ranges::any_of(shown, [](const QWidget* widget) {
            return widget->isVisible() &&
                   widget->accessibleName() == QStringLiteral("El documento está bien formado");
        });
    };
    editor.show();
    EXPECT_FALSE(session.hasTree());
    EXPECT_FALSE(status());
    ASSERT_TRUE(QTest::qWaitFor([&] { return session.hasTree(); }));
    EXPECT_TRUE(QTest::qWaitFor(status));
}

TEST(EditorWindowView, FindsInTheTreeByItsFilter) {
    Desk desk(u"<a><b/></a>");
    desk.session.setMode(Mode::visual);
    desk.editor->findCommands().front()->trigger();
    EXPECT_EQ(desk.session.mode(), Mode::visual);
    EXPECT_TRUE(desk.editor->treeEditor().filterField().hasFocus());
    EXPECT_TRUE(desk.editor->codeEditor().findBar().isHidden());
    desk.session.setMode(Mode::text);
    desk.editor->findCommands().front()->trigger();
    EXPECT_TRUE(desk.editor->codeEditor().findBar().isVisible());
}

TEST(AppCommands, LeaveANodeAloneThatTheFilterHides) {
    Desk desk(u"<a><b/><c/></a>");
    desk.session.setMode(Mode::visual);
    desk.session.select(NodePath{{0, 0}});
    desk.session.setFilter(QStringLiteral("c"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return desk.session.areRowsFiltered(); }));
    desk.editor->treeEditor().outline().setFocus();
    for (QAction* const action : desk.menus->actions()[2]->menu()->actions()) {
        action->trigger();
    }
    EXPECT_EQ(desk.text(), QStringLiteral("<a><b/><c/></a>"));
    EXPECT_FALSE(desk.session.namePrompt().has_value());
    desk.session.setFilter({});
    const auto commands = desk.menus->actions()[2]->menu()->actions();
    const auto remove = std::ranges::find(
        commands, QStringLiteral("Eliminar"), [](const QAction* command) { return command->text().remove(u'&'); });
    ASSERT_NE(remove, commands.end());
    (*remove)->trigger();
    EXPECT_EQ(desk.text(), QStringLiteral("<a><c/></a>"));
}

TEST(AppCommands, CountWhatIsBeingWrittenInTheTree) {
    const auto write = [](Desk& desk) {
        desk.session.setMode(Mode::visual);
        desk.session.select(NodePath{{0, 0, 0}});
        TreeOutlineView& outline = desk.editor->treeEditor().outline();
        outline.setFocus();
        desk.press(Qt::Key_F2, Qt::NoModifier);
        ASSERT_NE(outline.editor(), nullptr);
        desk.press(Qt::Key_End, Qt::NoModifier);
        QTest::keyClicks(outline.editor(), QStringLiteral(" uno"));
    };
    {
        Desk desk(u"<a><b>tres</b></a>");
        write(desk);
        desk.press(Qt::Key_D, Qt::ControlModifier);
        EXPECT_EQ(desk.text(), QStringLiteral("<a><b>tres unotres uno</b></a>"));
        EXPECT_EQ(desk.editor->treeEditor().outline().editor(), nullptr);
        EXPECT_TRUE(desk.editor->treeEditor().outline().hasFocus());
    }
    {
        Desk desk(u"<a><b>tres</b></a>");
        write(desk);
        desk.press(Qt::Key_3, Qt::ControlModifier);
        EXPECT_EQ(desk.text(), QStringLiteral("<a><b>tres uno</b></a>"));
        EXPECT_TRUE(desk.editor->treeEditor().outline().hasFocus());
    }
    {
        Desk desk(u"<a><b>tres</b></a>");
        write(desk);
        for (QToolButton* const tool : desk.editor->toolBar().findChildren<QToolButton*>()) {
            if (tool->text() == QStringLiteral("Formatear")) {
                QTest::mouseClick(tool, Qt::LeftButton);
            }
        }
        EXPECT_EQ(desk.text(), QStringLiteral("<a>\n    <b>tres uno</b>\n</a>\n"));
    }
}

TEST(EditorWindowView, GoesToTheNextMatchOfTheFilter) {
    Desk desk(u"<a><b1/><c><b2/></c><d/><e>b</e></a>");
    desk.session.setMode(Mode::visual);
    desk.editor->findCommands().front()->trigger();
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("b"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return desk.session.areRowsFiltered(); }));
    QList<NodePath> visited;
    const auto find = [&](const QKeySequence& key) {
        for (QAction* const command : desk.editor->findCommands()) {
            if (command->shortcut() == key) {
                command->trigger();
            }
        }
        visited += desk.session.selection().value_or(NodePath());
    };
    for (int step = 0; step < 4; ++step) {
        find(Qt::Key_F3);
    }
    find(Qt::SHIFT | Qt::Key_F3);
    EXPECT_EQ(visited, (QList<NodePath>{{{0, 0}}, {{0, 1, 0}}, {{0, 3, 0}}, {{0, 0}}, {{0, 3, 0}}}));
    EXPECT_EQ(desk.session.mode(), Mode::visual);
    EXPECT_TRUE(desk.editor->codeEditor().findBar().isHidden());
}
