#include "TreeEditorView.h"

#include "EmptyStateView.h"
#include "NamePromptDialog.h"
#include "Repeated.h"
#include "SessionDesk.h"
#include "TreeRowEditor.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

namespace {

constexpr std::u16string_view library =
    u"<lib>\n    <libro>\n        <autor>Ana</autor>\n    </libro>\n    <revista/>\n</lib>\n";

/// A shown pane over a session that has parsed its document.
struct Pane {
    SessionDesk desk;
    TreeEditorView view;
    TreeOutlineView& outline;

    explicit Pane(std::u16string_view text) : desk(text), view(desk.session), outline(view.outline()) {
        EXPECT_TRUE(desk.open());
        view.resize(400, 300);
        view.show();
        view.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
    }

    void settle() { ASSERT_TRUE(desk.settle()); }

    /// Types `filter` and waits for its rows.
    void filter(const QString& filter) {
        view.filterField().setFocus();
        QTest::keyClicks(&view.filterField(), filter);
        ASSERT_TRUE(waitFor([this] { return desk.session.areRowsFiltered(); }));
    }

    void choose(std::u16string_view source) {
        desk.select(source);
        outline.setFocus();
    }

    QAction* action(const QString& text) {
        menu = view.makeMenu(*outline.selectedRow());
        for (QAction* const action : menu->actions()) {
            if (action->text() == text) {
                return action;
            }
        }
        return nullptr;
    }

    std::unique_ptr<QMenu> menu;
};

/// Drags one row onto the middle of another, or to a part of it.
void drop(TreeOutlineView& outline, std::size_t dragged, std::size_t over, double fraction,
          Qt::KeyboardModifiers modifiers = {}) {
    const auto dragData = outline.pickUp(dragged);
    const QPoint at(200, outline.rect(over).top() + static_cast<int>(fraction * TreeRowView::height));
    const Qt::DropActions offered = Qt::MoveAction | Qt::CopyAction;
    QDragEnterEvent enter(at, offered, dragData.get(), Qt::LeftButton, modifiers);
    QCoreApplication::sendEvent(outline.viewport(), &enter);
    QDropEvent dropped(at, offered, dragData.get(), Qt::LeftButton, modifiers);
    QCoreApplication::sendEvent(outline.viewport(), &dropped);
}

} // namespace

TEST(TreeEditorView, ShowsTheRowsOfTheSession) {
    Pane pane(library);
    EXPECT_EQ(pane.desk.rows(), u"lib\n libro\n  autor\n   Ana\n revista\n");
    EXPECT_EQ(pane.outline.rowCount(), 5U);
    EXPECT_EQ(pane.view.emptyState(), nullptr);
    EXPECT_TRUE(pane.outline.isVisible());
}

TEST(TreeEditorView, SelectsInTheSessionWhatTheUserChooses) {
    Pane pane(library);
    pane.outline.setFocus();
    QTest::keyClick(&pane.outline, Qt::Key_Down);
    QTest::keyClick(&pane.outline, Qt::Key_Down);
    EXPECT_EQ(pane.desk.session.selection(), (NodePath{{0, 0}}));
    QTest::keyClicks(&pane.outline, "r");
    EXPECT_EQ(pane.desk.selected(), u"<revista/>");
}

TEST(TreeEditorView, ShowsWhatTheSessionSelects) {
    Pane pane(u"<a>" + repeated(u"<b/>", 900) + u"<c/></a>");
    pane.desk.select(u"<c/>");
    EXPECT_EQ(pane.outline.selectedRow(), 901U);
    EXPECT_TRUE(pane.outline.viewport()->rect().contains(pane.outline.rect(901)));
}

TEST(TreeEditorView, StaysWhereTheUserScrolledWhenTheTextChanges) {
    Pane pane(u"<a>" + repeated(u"<b/>", 900) + u"<c/></a>");
    pane.desk.select(u"<c/>");
    pane.outline.verticalScrollBar()->setValue(100);
    pane.desk.buffer.replace({3, 3}, Rope(u"x"));
    pane.settle();
    EXPECT_EQ(pane.outline.verticalScrollBar()->value(), 100);
}

TEST(TreeEditorView, ExpandsAndCollapsesByArrowKeys) {
    Pane pane(library);
    pane.choose(u"<libro>");
    QTest::keyClick(&pane.outline, Qt::Key_Left);
    EXPECT_EQ(pane.desk.rows(), u"lib\n +libro\n revista\n");
    QTest::keyClick(&pane.outline, Qt::Key_Right);
    EXPECT_EQ(pane.desk.rows(), u"lib\n libro\n  autor\n   Ana\n revista\n");
}

TEST(TreeEditorView, StaysExpandedWhenTheTextIsEdited) {
    Pane pane(library);
    pane.desk.session.collapse({{0, 0, 0}});
    pane.desk.buffer.replace({5, 5}, Rope(u" "));
    pane.settle();
    EXPECT_EQ(pane.desk.rows(), u"lib\n libro\n  +autor\n revista\n");
    EXPECT_EQ(pane.outline.rowCount(), 4U);
}

TEST(TreeEditorView, SelectsTheCollapsedNodeWhenItHidesTheSelectedOne) {
    Pane pane(library);
    pane.choose(u"Ana");
    QTest::mouseClick(pane.outline.viewport(), Qt::LeftButton, {},
                      TreeRowView::disclosureRect(pane.outline.appearance(1)).center());
    EXPECT_EQ(pane.desk.session.selection(), (NodePath{{0, 0}}));
    EXPECT_EQ(pane.outline.selectedRow(), 1U);
    EXPECT_EQ(pane.outline.rowCount(), 3U);
}

TEST(TreeEditorView, RenamesAnElementInPlace) {
    Pane pane(library);
    pane.choose(u"<libro>");
    QTest::keyClick(&pane.outline, Qt::Key_Return);
    ASSERT_NE(pane.outline.editor(), nullptr);
    QTest::keyClicks(pane.outline.editor(), "tomo");
    QTest::keyClick(pane.outline.editor(), Qt::Key_Return);
    pane.settle();
    EXPECT_EQ(pane.desk.text(),
              u"<lib>\n    <tomo>\n        <autor>Ana</autor>\n    </tomo>\n    <revista/>\n</lib>\n");
    pane.desk.undoManager.undo();
    EXPECT_EQ(pane.desk.text(), library);
}

TEST(TreeEditorView, EditsATextInPlace) {
    Pane pane(library);
    pane.choose(u"Ana");
    QTest::keyClick(&pane.outline, Qt::Key_F2);
    QTest::keyClicks(pane.outline.editor(), "Eva & co");
    QTest::keyClick(pane.outline.editor(), Qt::Key_Enter);
    pane.settle();
    EXPECT_NE(pane.desk.text().find(u"<autor>Eva &amp; co</autor>"), std::u16string::npos);
}

TEST(TreeEditorView, DeletesTheSelectedNode) {
    Pane pane(library);
    pane.choose(u"<libro>");
    QTest::keyClick(&pane.outline, Qt::Key_Delete);
    pane.settle();
    EXPECT_EQ(pane.desk.text(), u"<lib>\n    <revista/>\n</lib>\n");
    EXPECT_EQ(pane.desk.selected(), u"<revista/>");
}

TEST(TreeEditorView, CutsCopiesAndPastesTheSelectedNode) {
    Pane pane(u"<a>\n  <b/>\n  <c>t</c>\n</a>\n");
    pane.choose(u"<b/>");
    pane.view.copy();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("<b/>"));
    pane.choose(u"<c>");
    pane.view.paste();
    pane.settle();
    EXPECT_EQ(pane.desk.text(), u"<a>\n  <b/>\n  <c>t</c>\n  <b/>\n</a>\n");
    EXPECT_EQ(pane.outline.selectedRow(), 4U);
    pane.view.cut();
    EXPECT_EQ(pane.desk.text(), u"<a>\n  <b/>\n  <c>t</c>\n</a>\n");
}

TEST(TreeEditorView, LeavesANodeThatTheFilterHides) {
    Pane pane(library);
    pane.choose(u"<revista/>");
    pane.filter(QStringLiteral("Ana"));
    pane.outline.setSelectedRow(std::nullopt);
    QGuiApplication::clipboard()->setText(QStringLiteral("antes"));
    pane.view.copy();
    pane.view.cut();
    pane.view.paste();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("antes"));
    EXPECT_EQ(pane.desk.text(), library);
}

TEST(TreeEditorView, OffersARootWhereThereIsNone) {
    Pane pane(u"<?xml version=\"1.0\"?>\n");
    auto* const button = pane.view.findChild<QPushButton*>();
    ASSERT_NE(button, nullptr);
    EXPECT_TRUE(button->isVisible());
    EXPECT_EQ(button->text(), QStringLiteral("Crear elemento raíz…"));
    QTest::mouseClick(button, Qt::LeftButton);
    auto* const prompt = qobject_cast<NamePromptDialog*>(QApplication::activeModalWidget());
    ASSERT_NE(prompt, nullptr);
    QTest::keyClicks(prompt->findChild<QLineEdit*>(), "a");
    QTest::keyClick(prompt, Qt::Key_Return);
    pane.settle();
    EXPECT_EQ(pane.desk.text(), u"<?xml version=\"1.0\"?>\n<a></a>\n");
    pane.view.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&pane.view));
    EXPECT_TRUE(waitFor([&] { return pane.outline.hasFocus(); })) << "the keys go on to the tree";

    Pane withRoot(u"<!-- c --><a/>");
    withRoot.choose(u"<!--");
    EXPECT_EQ(withRoot.action(QStringLiteral("Crear elemento raíz…")), nullptr);
    Pane withoutRoot(u"<!-- c -->");
    withoutRoot.choose(u"<!--");
    EXPECT_NE(withoutRoot.action(QStringLiteral("Crear elemento raíz…")), nullptr);
}

TEST(TreeEditorView, OffersItsCommandsInOrder) {
    Pane pane(library);
    pane.choose(u"<libro>");
    const auto menu = pane.view.makeMenu(1);
    struct Entry {
        QString text; ///< Empty for a divider.
        bool hasIcon;
        QKeySequence shortcut = {};
    };
    const Entry entries[] = {
        {QStringLiteral("Añadir hijo…"), true, Qt::CTRL | Qt::Key_Return},
        {QStringLiteral("Añadir hermano…"), true, Qt::CTRL | Qt::SHIFT | Qt::Key_Return},
        {QStringLiteral("Duplicar"), false, Qt::CTRL | Qt::Key_D},
        {QStringLiteral("Envolver en…"), false, Qt::CTRL | Qt::ALT | Qt::Key_W},
        {QString(), false},
        {QStringLiteral("Copiar ruta"), true, Qt::CTRL | Qt::SHIFT | Qt::Key_C},
        {QString(), false},
        {QStringLiteral("Eliminar"), true, Qt::Key_Delete},
        {QString(), false},
        {QStringLiteral("Renombrar…"), false, Qt::Key_F2},
        {QStringLiteral("Cortar"), false, QKeySequence::Cut},
        {QStringLiteral("Copiar"), false, QKeySequence::Copy},
        {QStringLiteral("Pegar"), false, QKeySequence::Paste},
        {QString(), false},
        {QStringLiteral("Insertar texto…"), false},
        {QStringLiteral("Insertar comentario…"), false},
    };
    const QList<QAction*> actions = menu->actions();
    ASSERT_EQ(actions.size(), std::ssize(entries));
    for (qsizetype at = 0; at < actions.size(); ++at) {
        EXPECT_EQ(actions[at]->isSeparator(), entries[at].text.isEmpty()) << at;
        EXPECT_EQ(actions[at]->text(), entries[at].text) << at;
        EXPECT_EQ(!actions[at]->icon().isNull(), entries[at].hasIcon) << at;
        EXPECT_TRUE(actions[at]->isEnabled()) << at;
        EXPECT_EQ(actions[at]->shortcut(), entries[at].shortcut) << at;
    }
}

TEST(TreeEditorView, AddsChildrenToElementsOnly) {
    Pane pane(library);
    pane.choose(u"Ana");
    EXPECT_FALSE(pane.action(QStringLiteral("Añadir hijo…"))->isEnabled());
    EXPECT_TRUE(pane.action(QStringLiteral("Añadir hermano…"))->isEnabled());
}

TEST(TreeEditorView, AsksForNamesThroughTheSession) {
    using Kind = EditorSession::NamePrompt::Kind;
    Pane pane(library);
    pane.choose(u"<libro>");
    const std::pair<QString, Kind> entries[] = {
        {QStringLiteral("Añadir hijo…"), Kind::addChild},
        {QStringLiteral("Añadir hermano…"), Kind::addSibling},
        {QStringLiteral("Envolver en…"), Kind::wrap},
    };
    for (const auto& [text, kind] : entries) {
        pane.action(text)->trigger();
        EXPECT_EQ(pane.desk.session.namePrompt(), (EditorSession::NamePrompt{kind, {{0, 0}}}));
        pane.desk.session.setNamePrompt(std::nullopt);
    }
}

TEST(TreeEditorView, RenamesInTheRow) {
    Pane pane(library);
    pane.choose(u"<revista/>");
    pane.action(QStringLiteral("Renombrar…"))->trigger();
    auto* const field = pane.view.findChild<TreeRowEditor*>();
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->text(), u"revista");
}

TEST(TreeEditorView, RunsTheOtherCommandsAtOnce) {
    Pane pane(library);
    pane.choose(u"<revista/>");
    pane.action(QStringLiteral("Copiar ruta"))->trigger();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"/lib/revista");
    pane.action(QStringLiteral("Duplicar"))->trigger();
    pane.settle();
    EXPECT_NE(pane.desk.text().find(u"    <revista/>\n    <revista/>\n"), std::u16string::npos);
    pane.action(QStringLiteral("Eliminar"))->trigger();
    pane.settle();
    EXPECT_EQ(pane.desk.text(), library);
}

TEST(TreeEditorView, OpensTheMenuForTheRowThatIsClicked) {
    Pane pane(library);
    pane.choose(u"<lib>");
    const QPoint at = pane.outline.rect(4).center();
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, pane.outline.viewport()->mapToGlobal(at));
    QCoreApplication::sendEvent(pane.outline.viewport(), &event);
    EXPECT_EQ(pane.desk.selected(), u"<revista/>");
    auto* const menu = pane.view.findChild<QMenu*>();
    ASSERT_NE(menu, nullptr);
    EXPECT_TRUE(menu->isVisible());
    QTest::keyClick(menu, Qt::Key_Escape);
    EXPECT_TRUE(waitFor([&] { return pane.view.findChild<QMenu*>() == nullptr; }));
}

TEST(TreeEditorView, MovesWhatIsDragged) {
    Pane pane(library);
    drop(pane.outline, 4, 1, 0.1);
    pane.settle();
    EXPECT_EQ(pane.desk.text(),
              u"<lib>\n    <revista/>\n    <libro>\n        <autor>Ana</autor>\n    </libro>\n</lib>\n");
    EXPECT_EQ(pane.desk.selected(), u"<revista/>");
    pane.desk.undoManager.undo();
    EXPECT_EQ(pane.desk.text(), library);
}

TEST(TreeEditorView, CopiesWhatIsDraggedWithTheControlKey) {
    Pane pane(library);
    drop(pane.outline, 4, 1, 0.5, Qt::ControlModifier);
    pane.settle();
    EXPECT_EQ(pane.desk.rows(), u"lib\n libro\n  autor\n   Ana\n  revista\n revista\n");
}

TEST(TreeEditorView, DoesNothingWithARefusedDrop) {
    Pane pane(library);
    drop(pane.outline, 1, 2, 0.5);
    drop(pane.outline, 0, 0, 0.5);
    EXPECT_EQ(pane.desk.text(), library);
    EXPECT_EQ(pane.desk.session.errorMessage(), std::nullopt);
}

TEST(TreeEditorView, FiltersAsTheUserTypes) {
    Pane pane(library);
    EXPECT_EQ(pane.view.filterField().placeholderText(), u"Filtrar nodos");
    pane.desk.session.collapse({{0, 0}});
    pane.filter("ANA");
    EXPECT_EQ(pane.desk.rows(), u"lib\n libro\n  autor\n   Ana\n");
    EXPECT_EQ(pane.outline.rowCount(), 4U);
    QTest::keyClick(&pane.view.filterField(), Qt::Key_Down);
    EXPECT_TRUE(pane.outline.hasFocus());
    pane.view.filterField().setFocus();
    QTest::keyClick(&pane.view.filterField(), Qt::Key_Escape);
    EXPECT_EQ(pane.desk.session.filter(), QString());
    EXPECT_EQ(pane.desk.rows(), u"lib\n +libro\n revista\n");
}

TEST(TreeEditorView, ShowsTheFilterOfTheSession) {
    Pane pane(library);
    pane.desk.session.setFilter("ana");
    EXPECT_EQ(pane.view.filterField().text(), u"ana");
}

TEST(TreeEditorView, SaysWhenNothingMatches) {
    Pane pane(library);
    pane.filter("zz <b>");
    ASSERT_NE(pane.view.emptyState(), nullptr);
    EXPECT_EQ(pane.view.emptyState()->title(), u"Sin resultados para “zz <b>”");
    EXPECT_EQ(pane.view.emptyState()->symbol(), u"magnifyingglass");
    EXPECT_TRUE(pane.view.filterField().hasFocus());
    pane.view.filterField().clear();
    EXPECT_EQ(pane.view.emptyState(), nullptr);
}

TEST(TreeEditorView, SaysWhenThereIsNoStructure) {
    for (const std::u16string_view text : {u"", u"  \n", u"<?xml version='1.0'?>\n\n"}) {
        Pane pane(text);
        ASSERT_NE(pane.view.emptyState(), nullptr);
        EXPECT_EQ(pane.view.emptyState()->title(), u"Sin nodos");
        EXPECT_EQ(pane.view.emptyState()->symbol(), u"list.bullet.indent");
        EXPECT_EQ(pane.view.emptyState()->description(), u"El documento aún no tiene estructura.");
    }
    for (const std::u16string_view text : {u"<?xsl x?>", u"<!--nota-->", u"<?xml version='1.0'?><a/>"}) {
        Pane pane(text);
        EXPECT_EQ(pane.view.emptyState(), nullptr);
    }
}

TEST(TreeEditorView, ShowsStructureAsSoonAsThereIsSome) {
    Pane pane(u"");
    pane.desk.buffer.replace({0, 0}, Rope(u"<a/>"));
    pane.settle();
    EXPECT_EQ(pane.view.emptyState(), nullptr);
    EXPECT_EQ(pane.outline.rowCount(), 1U);
}

TEST(TreeEditorView, MarksRowsWithErrors) {
    Pane pane(u"<a><b x='1' x='2'/><c/></a>");
    EXPECT_TRUE(pane.outline.rowView(1).hasError);
    EXPECT_FALSE(pane.outline.rowView(2).hasError);
}

TEST(TreeEditorView, IsWorkedByKeysAlone) {
    Pane pane(library);
    pane.view.filterField().setFocus();
    QTest::keyClick(&pane.view.filterField(), Qt::Key_Tab);
    EXPECT_TRUE(pane.outline.hasFocus());
    QTest::keyClick(&pane.outline, Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_TRUE(pane.view.filterField().hasFocus());
    EXPECT_FALSE(pane.view.filterField().accessibleName().isEmpty());
    EXPECT_FALSE(pane.outline.accessibleName().isEmpty());
}

TEST(TreeEditorView, DoesNotDisturbASecondWindow) {
    Pane first(library);
    Pane second(library);
    first.choose(u"<libro>");
    QTest::keyClick(&first.outline, Qt::Key_Left);
    EXPECT_EQ(second.outline.rowCount(), 5U);
    EXPECT_EQ(second.outline.selectedRow(), std::nullopt);
}

TEST(TreeEditorView, ClaimsNothingBeforeTheFirstParse) {
    SessionDesk unread(u"<a/>");
    TreeEditorView view(unread.session);
    view.show();
    EXPECT_EQ(view.emptyState(), nullptr);
    EXPECT_FALSE(view.outline().isVisible());
    ASSERT_TRUE(unread.open());
    EXPECT_TRUE(view.outline().isVisible());
    SessionDesk empty(u"");
    TreeEditorView emptyView(empty.session);
    EXPECT_EQ(emptyView.emptyState(), nullptr);
    ASSERT_TRUE(empty.open());
    ASSERT_NE(emptyView.emptyState(), nullptr);
}

TEST(TreeEditorView, CountsTheMatchesOfTheFilter) {
    Pane pane(u"<a>" + repeated(u"<b/>", 12'345) + u"<c>x</c></a>");
    const auto count = [&pane] {
        for (const QLabel* const label : pane.view.findChildren<QLabel*>()) {
            if (label->isVisible() && label->text().contains(QStringLiteral("esultado"))) {
                return label->text();
            }
        }
        return QString();
    };
    EXPECT_EQ(count(), QString());
    pane.filter(QStringLiteral("b"));
    EXPECT_EQ(count(), QStringLiteral("12.345 resultados"));
    pane.view.filterField().setText(QStringLiteral("c"));
    EXPECT_EQ(count(), QString()) << "of another filter";
    ASSERT_TRUE(waitFor([&] { return !count().isEmpty(); }));
    EXPECT_EQ(count(), QStringLiteral("1 resultado"));
    pane.view.filterField().setText(QStringLiteral("nada"));
    ASSERT_TRUE(waitFor([&] { return count() == QStringLiteral("Sin resultados"); }));
    pane.desk.buffer.replace({3, 3}, Rope(u"<nada/>"));
    pane.settle();
    EXPECT_EQ(count(), QStringLiteral("1 resultado"));
    pane.view.filterField().clear();
    EXPECT_EQ(count(), QString());
}

TEST(TreeEditorView, HasNoSelectedRowWhileTheFilterHidesTheNode) {
    Pane pane(library);
    pane.choose(u"<revista/>");
    pane.filter(QStringLiteral("autor"));
    EXPECT_EQ(pane.outline.selectedRow(), std::nullopt);
    EXPECT_TRUE(pane.desk.session.isSelectionFilteredOut());
    pane.outline.setFocus();
    for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_Return, Qt::Key_F2}) {
        QTest::keyClick(&pane.outline, key);
    }
    EXPECT_EQ(pane.desk.text(), library);
    EXPECT_EQ(pane.outline.editor(), nullptr);
    pane.view.filterField().clear();
    EXPECT_EQ(pane.outline.selectedRow(), 4U);
    EXPECT_FALSE(pane.desk.session.isSelectionFilteredOut());
}

TEST(TreeEditorView, SaysWhatMatched) {
    Pane pane(u"<a><b autor='Ana'/></a>");
    pane.filter(QStringLiteral("ana"));
    ASSERT_EQ(pane.outline.rowCount(), 2U);
    EXPECT_EQ(pane.outline.rowView(0).text(), QStringLiteral("a"));
    EXPECT_EQ(pane.outline.rowView(1).text(), QStringLiteral("b autor=\"Ana\""));
}

TEST(TreeEditorView, GoesOnEditingTheSameNodeInAnotherTree) {
    Pane pane(u"<a><b/><c/></a>");
    pane.choose(u"<c/>");
    QTest::keyClick(&pane.outline, Qt::Key_F2);
    ASSERT_NE(pane.outline.editor(), nullptr);
    pane.desk.buffer.replace({3, 3}, Rope(u"<x/>"));
    pane.settle();
    ASSERT_NE(pane.outline.editor(), nullptr);
    pane.outline.editor()->setText(QStringLiteral("nuevo"));
    QTest::keyClick(pane.outline.editor(), Qt::Key_Return);
    EXPECT_EQ(pane.desk.text(), u"<a><x/><b/><nuevo/></a>");
}

TEST(TreeEditorView, GoesToTheFirstMatchWithReturnInTheFilter) {
    Pane pane(u"<a><b><c>x</c></b><d>x</d></a>");
    pane.filter(QStringLiteral("x"));
    QTest::keyClick(&pane.view.filterField(), Qt::Key_Return);
    EXPECT_TRUE(pane.outline.hasFocus());
    EXPECT_EQ(pane.desk.session.selection(), (NodePath{{0, 0, 0, 0}}));
    pane.desk.session.select(NodePath{{0, 1, 0}});
    QTest::keyClick(&pane.view.filterField(), Qt::Key_Return);
    EXPECT_EQ(pane.desk.session.selection(), (NodePath{{0, 1, 0}})) << "a match already";
}

TEST(TreeEditorView, GoesToTheFirstMatchOnceItIsFound) {
    Pane pane(u"<a><b><c>x</c></b><d>x</d></a>");
    pane.view.filterField().setFocus();
    QTest::keyClicks(&pane.view.filterField(), QStringLiteral("x"));
    QTest::keyClick(&pane.view.filterField(), Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return pane.desk.session.areRowsFiltered(); }));
    EXPECT_EQ(pane.desk.session.selection(), (NodePath{{0, 0, 0, 0}}));
}

TEST(TreeEditorView, KeepsTheNodeThatTheFilterFoundInSight) {
    Pane pane(u"<a>" + repeated(u"<b><c/></b>", 900) + u"<d><e><f/></e></d></a>");
    for (std::uint32_t child = 0; child <= 900; ++child) {
        pane.desk.session.collapse(NodePath{{0, child}});
    }
    pane.filter(QStringLiteral("f"));
    pane.desk.select(u"<f/>");
    pane.view.filterField().clear();
    ASSERT_TRUE(waitFor([&] { return !pane.desk.session.areRowsFiltered(); }));
    const auto row = pane.outline.selectedRow();
    ASSERT_TRUE(row.has_value());
    EXPECT_EQ(*row, 903U);
    EXPECT_TRUE(pane.outline.viewport()->rect().contains(pane.outline.rect(*row)));
}
