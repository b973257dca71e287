#include "TreeOutlineView.h"

#include "Repeated.h"
#include "TreeParser.h"
#include "TreeRowEditor.h"

#include <QAccessible>
#include <QDrag>
#include <QMimeData>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>

#include <gtest/gtest.h>

#include <map>

namespace {

using Placement = TreeMutation::Placement;

constexpr int rowHeight = TreeRowView::height;

/// A shown view of a document with some nodes expanded. Wishes to expand and collapse come true.
class TreeOutlineViewTest : public testing::Test {
protected:
    void show(std::u16string_view text, std::initializer_list<NodePath> expanded) {
        m_tree = TreeParser::parse(SourceText(text));
        for (const NodePath& path : expanded) {
            m_outline.expanded.insert(path);
        }
        m_rows = m_outline.rows(m_tree);
        setContents();
        QObject::connect(&view, &TreeOutlineView::expansionRequested, &view, [this](std::size_t row) {
            m_outline.expand(row, m_rows, m_tree);
            setContentsKeepingSelection();
        });
        QObject::connect(&view, &TreeOutlineView::collapseRequested, &view, [this](std::size_t row) {
            m_outline.collapse(row, m_rows, m_tree);
            setContentsKeepingSelection();
        });
        view.resize(400, 300);
        view.show();
        view.activateWindow();
        view.setFocus();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
    }
    void setContents() {
        view.setContents({&m_tree, &m_rows, [this](NodeID node) { return node == m_faulty; }});
    }
    void setContentsKeepingSelection() {
        const auto selected = view.selectedRow();
        setContents();
        view.setSelectedRow(selected);
    }
    /// A document that takes the place of the one before.
    void reparse(std::u16string_view text) {
        m_tree = TreeParser::parse(SourceText(text));
        m_rows = m_outline.rows(m_tree);
        setContents();
    }
    /// The row after each of `keys`, from the row selected before.
    std::vector<std::size_t> rowsAfter(std::initializer_list<Qt::Key> keys) {
        std::vector<std::size_t> rows;
        for (const Qt::Key key : keys) {
            QTest::keyClick(&view, key);
            rows.push_back(view.selectedRow().value_or(SIZE_MAX));
        }
        return rows;
    }
    QPoint center(std::size_t row) const {
        return view.rowView(row).labelRect(view.appearance(row)).center();
    }
    QPoint disclosure(std::size_t row) const {
        return TreeRowView::disclosureRect(view.appearance(row)).center();
    }
    QPoint at(std::size_t row, double fraction) const {
        return {200, view.rect(row).top() + static_cast<int>(fraction * rowHeight)};
    }
    /// What came of a drag of one row to a point of another.
    std::optional<Qt::DropAction> drop(std::size_t dragged, QPoint to, Qt::KeyboardModifiers modifiers = {}) {
        const auto dragData = view.pickUp(dragged);
        std::optional<Qt::DropAction> action;
        const auto connection = QObject::connect(
            &view, &TreeOutlineView::dropRequested, &view,
            [&](const NodePath&, const NodePath&, Placement, Qt::DropAction asked) { action = asked; });
        const Qt::DropActions offered = Qt::MoveAction | Qt::CopyAction;
        QDragEnterEvent enter(to, offered, dragData.get(), Qt::LeftButton, modifiers);
        QCoreApplication::sendEvent(view.viewport(), &enter);
        // Else the platform would never tell of the pointer's moves.
        EXPECT_TRUE(enter.isAccepted());
        QDragMoveEvent move(to, offered, dragData.get(), Qt::LeftButton, modifiers);
        QCoreApplication::sendEvent(view.viewport(), &move);
        EXPECT_EQ(move.isAccepted(), view.dropTarget().has_value());
        QDropEvent dropped(to, offered, dragData.get(), Qt::LeftButton, modifiers);
        QCoreApplication::sendEvent(view.viewport(), &dropped);
        QObject::disconnect(connection);
        EXPECT_FALSE(view.dropTarget());
        return action;
    }

    DocumentTree m_tree = DocumentTree::empty();
    TreeOutline m_outline;
    TreeOutline::Rows m_rows;
    NodeID m_faulty;
    TreeOutlineView view; ///< After what it shows, and so gone before it.
};

/// 0 `a`, 1 `b` collapsed with a child, 2 a text, 3 `d` expanded, 4 `e`.
constexpr std::u16string_view small = u"<a><b><c/></b>texto<d><e/></d></a>";
const std::initializer_list<NodePath> smallExpanded = {{{0}}, {{0, 2}}};

} // namespace

TEST_F(TreeOutlineViewTest, GoesUpAndDown) {
    show(small, smallExpanded);
    using enum Qt::Key;
    EXPECT_EQ(rowsAfter({Key_Down, Key_Down, Key_Down, Key_Up, Key_End, Key_Down, Key_Home, Key_Up}),
              (std::vector<std::size_t>{0, 1, 2, 1, 4, 4, 0, 0}));
    EXPECT_EQ(rowsAfter({Key_PageDown, Key_PageUp}), (std::vector<std::size_t>{4, 0}));
}

TEST_F(TreeOutlineViewTest, StartsAtTheEndForTheUpKey) {
    show(small, smallExpanded);
    EXPECT_EQ(rowsAfter({Qt::Key_Up}), std::vector<std::size_t>{4});
}

TEST_F(TreeOutlineViewTest, TellsWhichRowTheUserChose) {
    show(small, smallExpanded);
    QSignalSpy chosen(&view, &TreeOutlineView::rowChosen);
    view.setSelectedRow(3);
    EXPECT_EQ(chosen.count(), 0);
    QTest::keyClick(&view, Qt::Key_Down);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, center(2));
    ASSERT_EQ(chosen.count(), 2);
    EXPECT_EQ(chosen[0].front().value<std::size_t>(), 4U);
    EXPECT_EQ(chosen[1].front().value<std::size_t>(), 2U);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, QPoint(100, 290));
    EXPECT_EQ(chosen.count(), 2);
    EXPECT_EQ(view.selectedRow(), 2U);
}

TEST_F(TreeOutlineViewTest, ExpandsAndCollapsesByKeys) {
    show(small, smallExpanded);
    view.setSelectedRow(1);
    QTest::keyClick(&view, Qt::Key_Right);
    EXPECT_EQ(view.rowCount(), 6U);
    EXPECT_EQ(view.selectedRow(), 1U);
    EXPECT_EQ(rowsAfter({Qt::Key_Right, Qt::Key_Right, Qt::Key_Left}), (std::vector<std::size_t>{2, 2, 1}));
    QTest::keyClick(&view, Qt::Key_Left);
    EXPECT_EQ(view.rowCount(), 5U);
    EXPECT_EQ(rowsAfter({Qt::Key_Left}), std::vector<std::size_t>{0});
    QTest::keyClick(&view, Qt::Key_Left);
    EXPECT_EQ(view.rowCount(), 1U);
    QTest::keyClick(&view, Qt::Key_Left);
    EXPECT_EQ(view.selectedRow(), 0U);
}

TEST_F(TreeOutlineViewTest, ExpandsAndCollapsesByTheDisclosureButton) {
    show(small, smallExpanded);
    view.setSelectedRow(4);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, disclosure(1));
    EXPECT_EQ(view.rowCount(), 6U);
    EXPECT_EQ(view.selectedRow(), 4U);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, disclosure(1));
    EXPECT_EQ(view.rowCount(), 5U);
    // A row without children has no button there.
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, disclosure(2));
    EXPECT_EQ(view.rowCount(), 5U);
    EXPECT_EQ(view.selectedRow(), 2U);
}

TEST_F(TreeOutlineViewTest, JumpsToANameThatIsTyped) {
    show(small, smallExpanded);
    QTest::keyClicks(&view, "d");
    EXPECT_EQ(view.selectedRow(), 3U);
}

TEST_F(TreeOutlineViewTest, LeavesKeysWithModifiersToTheWindow) {
    show(small, smallExpanded);
    view.setSelectedRow(1);
    QSignalSpy deleted(&view, &TreeOutlineView::deletionRequested);
    QTest::keyClick(&view, Qt::Key_Delete, Qt::ControlModifier);
    QTest::keyClick(&view, Qt::Key_Down, Qt::ControlModifier | Qt::AltModifier);
    QTest::keyClick(&view, Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(deleted.count(), 0);
    EXPECT_EQ(view.selectedRow(), 1U);
}

TEST_F(TreeOutlineViewTest, AsksToDeleteTheSelectedRow) {
    show(small, smallExpanded);
    QSignalSpy deleted(&view, &TreeOutlineView::deletionRequested);
    QTest::keyClick(&view, Qt::Key_Delete);
    EXPECT_EQ(deleted.count(), 0);
    view.setSelectedRow(1);
    QTest::keyClick(&view, Qt::Key_Delete);
    ASSERT_EQ(deleted.count(), 1);
    EXPECT_EQ(deleted.front().front().value<std::size_t>(), 1U);
}

TEST_F(TreeOutlineViewTest, IgnoresKeysWithoutRows) {
    show(u"", {});
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_End, Qt::Key_Right, Qt::Key_Left, Qt::Key_Return,
                              Qt::Key_Delete, Qt::Key_A, Qt::Key_PageUp}) {
        QTest::keyClick(&view, key);
    }
    EXPECT_EQ(view.selectedRow(), std::nullopt);
}

TEST_F(TreeOutlineViewTest, RenamesAnElementInPlace) {
    show(small, smallExpanded);
    QSignalSpy renamed(&view, &TreeOutlineView::renameRequested);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_F2}) {
        view.setSelectedRow(3);
        QTest::keyClick(&view, key);
        ASSERT_NE(view.editor(), nullptr);
        EXPECT_EQ(view.editor()->text(), u"d");
        EXPECT_TRUE(view.editor()->hasFocus());
        EXPECT_TRUE(view.rect(3).contains(view.editor()->geometry()));
        QTest::keyClicks(view.editor(), "nuevo");
        QTest::keyClick(view.editor(), Qt::Key_Return);
        EXPECT_EQ(view.editor(), nullptr);
        EXPECT_TRUE(view.hasFocus());
        ASSERT_EQ(renamed.count(), 1);
        EXPECT_EQ(renamed.front().at(0).value<NodePath>(), (NodePath{{0, 2}}));
        EXPECT_EQ(renamed.front().at(1).toString(), u"nuevo");
        renamed.clear();
    }
}

TEST_F(TreeOutlineViewTest, EditsTheContentOfOtherNodesInPlace) {
    show(u"<!--nota-->a &amp;\n b<![CDATA[<c>]]><?php x?><!DOCTYPE x>", {});
    QSignalSpy changed(&view, &TreeOutlineView::textChangeRequested);
    const QString contents[] = {"nota", "a &\n b", "<c>"};
    for (std::size_t row = 0; row < std::size(contents); ++row) {
        view.setSelectedRow(row);
        QTest::keyClick(&view, Qt::Key_Return);
        ASSERT_NE(view.editor(), nullptr) << row;
        EXPECT_EQ(view.editor()->text(), contents[row]);
        QTest::keyClick(view.editor(), Qt::Key_End);
        QTest::keyClicks(view.editor(), "!");
        QTest::keyClick(view.editor(), Qt::Key_Return);
        ASSERT_EQ(changed.count(), 1);
        EXPECT_EQ(changed.front().at(0).value<NodePath>(), (NodePath{{std::uint32_t(row)}}));
        EXPECT_EQ(changed.front().at(1).toString(), contents[row] + '!');
        changed.clear();
    }
    for (const std::size_t row : {3, 4}) {
        view.setSelectedRow(row);
        QTest::keyClick(&view, Qt::Key_Return);
        EXPECT_EQ(view.editor(), nullptr);
    }
}

TEST_F(TreeOutlineViewTest, LeavesLongContentsToTheSource) {
    show(repeated(u"x", 10'001), {});
    view.edit(0);
    EXPECT_EQ(view.editor(), nullptr);
}

TEST_F(TreeOutlineViewTest, GivesUpEditingByEscape) {
    show(small, smallExpanded);
    QSignalSpy renamed(&view, &TreeOutlineView::renameRequested);
    view.edit(3);
    QTest::keyClicks(view.editor(), "nuevo");
    QTest::keyClick(view.editor(), Qt::Key_Escape);
    EXPECT_EQ(view.editor(), nullptr);
    EXPECT_EQ(renamed.count(), 0);
    EXPECT_TRUE(view.hasFocus());
}

TEST_F(TreeOutlineViewTest, AsksForNothingWhenTheTextIsTheSame) {
    show(small, smallExpanded);
    QSignalSpy renamed(&view, &TreeOutlineView::renameRequested);
    view.edit(3);
    QTest::keyClick(view.editor(), Qt::Key_Return);
    EXPECT_EQ(renamed.count(), 0);
}

TEST_F(TreeOutlineViewTest, AcceptsWhatWasTypedWhenTheFocusLeaves) {
    show(small, smallExpanded);
    QSignalSpy renamed(&view, &TreeOutlineView::renameRequested);
    view.edit(3);
    QTest::keyClicks(view.editor(), "nuevo");
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, center(0));
    view.setFocus();
    EXPECT_EQ(view.editor(), nullptr);
    EXPECT_EQ(renamed.count(), 1);
}

TEST_F(TreeOutlineViewTest, GoesOnEditingWhenTheRowMoves) {
    show(small, smallExpanded);
    view.edit(3);
    QTest::keyClicks(view.editor(), "nuevo");
    reparse(u"<a><b/>texto<d><e/></d></a>");
    ASSERT_NE(view.editor(), nullptr);
    EXPECT_EQ(view.editor()->text(), u"nuevo");
    m_outline.collapse(0, m_rows, m_tree);
    setContents();
    EXPECT_EQ(view.editor(), nullptr);
}

TEST_F(TreeOutlineViewTest, MayGoWhileARowIsEdited) {
    DocumentTree tree = TreeParser::parse(SourceText(small));
    const TreeOutline::Rows rows = TreeOutline().rows(tree);
    auto other = std::make_unique<TreeOutlineView>();
    QSignalSpy renamed(other.get(), &TreeOutlineView::renameRequested);
    other->setContents({&tree, &rows, {}});
    other->show();
    other->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(other.get()));
    other->edit(0);
    QTest::keyClicks(other->editor(), "nuevo");
    other.reset();
    EXPECT_EQ(renamed.count(), 0);
}

TEST_F(TreeOutlineViewTest, EditsByADoubleClick) {
    show(small, smallExpanded);
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, center(3));
    EXPECT_NE(view.editor(), nullptr);
}

TEST_F(TreeOutlineViewTest, AsksForTheMenuByPointerAndKey) {
    show(small, smallExpanded);
    std::vector<std::pair<std::size_t, QPoint>> asked;
    QObject::connect(&view, &TreeOutlineView::menuRequested, &view,
                     [&](std::size_t row, QPoint at) { asked.emplace_back(row, at); });
    QTest::mouseClick(view.viewport(), Qt::RightButton, {}, center(2));
    EXPECT_EQ(view.selectedRow(), 2U);
    const QPoint pointer = view.viewport()->mapToGlobal(center(2));
    QContextMenuEvent byMouse(QContextMenuEvent::Mouse, center(2), pointer);
    QCoreApplication::sendEvent(view.viewport(), &byMouse);
    view.setSelectedRow(3);
    QContextMenuEvent byKey(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QCoreApplication::sendEvent(&view, &byKey);
    ASSERT_EQ(asked.size(), 2U);
    EXPECT_EQ(asked[0], std::pair(std::size_t(2), pointer));
    EXPECT_EQ(asked[1].first, 3U);
    EXPECT_TRUE(view.rect(3).contains(view.viewport()->mapFromGlobal(asked[1].second)));
}

TEST_F(TreeOutlineViewTest, DropsBesideAndInto) {
    show(small, smallExpanded);
    QSignalSpy dropped(&view, &TreeOutlineView::dropRequested);
    struct Case {
        std::size_t dragged;
        std::size_t over;
        double fraction;
        NodePath target;
        Placement placement;
    };
    const Case cases[] = {
        {4, 1, 0.1, {{0, 0}}, Placement::before}, {4, 1, 0.5, {{0, 0}}, Placement::lastChild},
        {4, 1, 0.9, {{0, 0}}, Placement::after},  {1, 3, 0.9, {{0, 2}}, Placement::firstChild},
        {1, 2, 0.7, {{0, 1}}, Placement::after},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(drop(each.dragged, at(each.over, each.fraction)), Qt::MoveAction);
        ASSERT_EQ(dropped.count(), 1);
        EXPECT_EQ(dropped.front().at(0).value<NodePath>(), m_rows.path(each.dragged, m_tree));
        EXPECT_EQ(dropped.front().at(1).value<NodePath>(), each.target);
        EXPECT_EQ(dropped.front().at(2).value<Placement>(), each.placement);
        dropped.clear();
    }
}

TEST_F(TreeOutlineViewTest, CopiesWithTheControlKey) {
    show(small, smallExpanded);
    EXPECT_EQ(drop(4, at(1, 0.5), Qt::ControlModifier), Qt::CopyAction);
    EXPECT_EQ(drop(3, at(4, 0.5), Qt::ControlModifier), Qt::CopyAction);
}

TEST_F(TreeOutlineViewTest, RefusesToDropANodeIntoItself) {
    show(small, smallExpanded);
    EXPECT_EQ(drop(3, at(4, 0.5)), std::nullopt);
    EXPECT_EQ(drop(3, at(3, 0.5)), std::nullopt);
    EXPECT_EQ(drop(0, at(2, 0.2)), std::nullopt);
    EXPECT_EQ(drop(3, QPoint(100, 290)), std::nullopt);
}

TEST_F(TreeOutlineViewTest, RefusesWhatComesFromElsewhere) {
    show(small, smallExpanded);
    const auto ours = view.pickUp(1);
    QMimeData foreign;
    foreign.setText("<x/>");
    TreeOutlineView other;
    other.setContents({&m_tree, &m_rows, {}});
    const auto others = other.pickUp(1);
    for (const QMimeData* const dragData :
         {static_cast<const QMimeData*>(&foreign), static_cast<const QMimeData*>(others.get())}) {
        QDragEnterEvent enter(at(2, 0.2), Qt::MoveAction, dragData, Qt::LeftButton, {});
        QCoreApplication::sendEvent(view.viewport(), &enter);
        EXPECT_FALSE(enter.isAccepted());
    }
}

TEST_F(TreeOutlineViewTest, ScrollsWhileADragRestsNearAnEdge) {
    show(u"<a>" + repeated(u"<b/>", 100) + u"</a>", {{{0}}});
    const auto dragData = view.pickUp(1);
    QDragEnterEvent enter(QPoint(100, view.viewport()->height() - 4), Qt::MoveAction, dragData.get(),
                          Qt::LeftButton, {});
    QCoreApplication::sendEvent(view.viewport(), &enter);
    EXPECT_TRUE(QTest::qWaitFor([&] { return view.verticalScrollBar()->value() > 5 * rowHeight; }));
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(view.viewport(), &leave);
    EXPECT_FALSE(view.dropTarget());
}

TEST_F(TreeOutlineViewTest, ExpandsACollapsedRowThatADragRestsOn) {
    show(small, smallExpanded);
    const auto dragData = view.pickUp(4);
    QDragEnterEvent enter(at(1, 0.5), Qt::MoveAction, dragData.get(), Qt::LeftButton, {});
    QCoreApplication::sendEvent(view.viewport(), &enter);
    EXPECT_TRUE(QTest::qWaitFor([&] { return view.rowCount() == 6; }));
}

TEST_F(TreeOutlineViewTest, BringsChosenRowsIntoView) {
    show(u"<a>" + repeated(u"<b/>", 1000) + u"</a>", {{{0}}});
    QTest::keyClick(&view, Qt::Key_End);
    EXPECT_TRUE(view.viewport()->rect().contains(view.rect(1000)));
    QTest::keyClick(&view, Qt::Key_Home);
    EXPECT_EQ(view.verticalScrollBar()->value(), 0);
    view.scrollTo(500);
    EXPECT_TRUE(view.viewport()->rect().contains(view.rect(500)));
    const int scrolled = view.verticalScrollBar()->value();
    view.scrollTo(501);
    EXPECT_EQ(view.verticalScrollBar()->value(), scrolled);
    view.setSelectedRow(3);
    EXPECT_EQ(view.verticalScrollBar()->value(), scrolled);
}

TEST_F(TreeOutlineViewTest, StaysWhereItIsWhenRowsChange) {
    show(u"<a>" + repeated(u"<b/>", 1000) + u"</a>", {{{0}}});
    view.scrollTo(500);
    const int scrolled = view.verticalScrollBar()->value();
    reparse(u"<a>" + repeated(u"<b/>", 1001) + u"</a>");
    EXPECT_EQ(view.verticalScrollBar()->value(), scrolled);
    reparse(u"<a/>");
    EXPECT_EQ(view.verticalScrollBar()->value(), 0);
}

TEST_F(TreeOutlineViewTest, KeepsDeepRowsInSight) {
    constexpr std::uint32_t levels = 20'000;
    show(repeated(u"<a>", levels), {});
    m_outline.expanded.insertAncestors(m_tree.path({levels}));
    m_rows = m_outline.rows(m_tree);
    setContents();
    QTest::keyClick(&view, Qt::Key_End);
    ASSERT_EQ(view.selectedRow(), levels - 1);
    const auto label = view.rowView(levels - 1).labelRect(view.appearance(levels - 1));
    EXPECT_GE(label.width(), 50);
    EXPECT_LE(label.right(), view.viewport()->width());
    EXPECT_GT(view.appearance(levels - 1).indentation, view.appearance(levels - 3).indentation);
}

TEST_F(TreeOutlineViewTest, ExplainsTheErrorMarkWhenItIsPointedAt) {
    m_faulty = NodeID{2};
    show(small, smallExpanded);
    EXPECT_TRUE(view.rowView(1).hasError);
    EXPECT_FALSE(view.rowView(0).hasError);
    const auto point = [this](QPoint at) {
        QHelpEvent help(QEvent::ToolTip, at, view.viewport()->mapToGlobal(at));
        QCoreApplication::sendEvent(view.viewport(), &help);
    };
    point(TreeRowView::errorRect(view.appearance(1)).center());
    EXPECT_EQ(QToolTip::text(), u"Este nodo tiene errores");
    point(center(0));
    EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }));
}

TEST_F(TreeOutlineViewTest, ShowsItsRowsToAssistiveTechnology) {
    m_faulty = NodeID{2};
    show(small, smallExpanded);
    view.setSelectedRow(3);
    QAccessibleInterface* const tree = QAccessible::queryAccessibleInterface(&view);
    ASSERT_NE(tree, nullptr);
    EXPECT_EQ(tree->role(), QAccessible::Tree);
    EXPECT_FALSE(tree->text(QAccessible::Name).isEmpty());
    ASSERT_EQ(tree->childCount(), 5);
    const QString names[] = {"a", "b", "texto", "d", "e"};
    for (int row = 0; row < 5; ++row) {
        QAccessibleInterface* const item = tree->child(row);
        EXPECT_EQ(item->role(), QAccessible::TreeItem);
        EXPECT_EQ(item->text(QAccessible::Name), names[row]);
        EXPECT_EQ(item->parent(), tree);
        EXPECT_EQ(tree->indexOfChild(item), row);
        EXPECT_EQ(item->state().selected, row == 3);
        EXPECT_EQ(item->state().expandable, row == 0 || row == 1 || row == 3);
        EXPECT_EQ(item->state().expanded, row == 0 || row == 3);
        EXPECT_EQ(tree->childAt(item->rect().center().x(), item->rect().center().y()), item);
    }
    EXPECT_EQ(tree->child(0)->text(QAccessible::Description), u"Elemento, nivel 1");
    EXPECT_EQ(tree->child(1)->text(QAccessible::Description), u"Elemento, nivel 2. Este nodo tiene errores");
    EXPECT_EQ(tree->child(2)->text(QAccessible::Description), u"Texto, nivel 2");
    EXPECT_EQ(tree->child(5), nullptr);
    EXPECT_EQ(tree->focusChild(), tree->child(3));
}

TEST_F(TreeOutlineViewTest, ShowsTheFieldOfARowToAssistiveTechnology) {
    show(small, smallExpanded);
    QAccessibleInterface* const tree = QAccessible::queryAccessibleInterface(&view);
    view.edit(1);
    ASSERT_EQ(tree->childCount(), 6);
    QAccessibleInterface* const field = tree->child(5);
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->role(), QAccessible::EditableText);
    EXPECT_EQ(field->text(QAccessible::Name), u"Nombre del elemento");
    EXPECT_EQ(tree->indexOfChild(field), 5);
    QTest::keyClick(view.editor(), Qt::Key_Escape);
    EXPECT_EQ(tree->childCount(), 5);
}

TEST_F(TreeOutlineViewTest, IsWorkedByAssistiveTechnology) {
    show(small, smallExpanded);
    QAccessibleInterface* const tree = QAccessible::queryAccessibleInterface(&view);
    QAccessibleInterface* const button = tree->child(1)->child(0);
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(button->role(), QAccessible::Button);
    EXPECT_EQ(button->text(QAccessible::Name), u"Expandir");
    EXPECT_EQ(button->parent(), tree->child(1));
    EXPECT_EQ(tree->child(0)->child(0)->text(QAccessible::Name), u"Contraer");
    EXPECT_EQ(tree->child(2)->child(0), nullptr);
    button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(tree->childCount(), 6);
    tree->child(2)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(view.selectedRow(), 2U);
    tree->child(1)->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_EQ(tree->childCount(), 5);
}
