#include "AttributeTableView.h"

#include "CommitField.h"
#include "ParsedDesk.h"

#include <QApplication>
#include <QLineEdit>
#include <QToolButton>

namespace {

using Column = AttributeTableModel::Column;

struct Desk : ParsedDesk {
    AttributeTableView view{session};

    explicit Desk(std::u16string_view text) : ParsedDesk(text) {
        view.resize(320, 400);
        view.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
        showRoot();
        QObject::connect(&session, &EditorSession::treeChanged, &view, [this] { showRoot(); });
    }

    void showRoot() { view.setElement(NodePath{{0}}, *session.tree().rootElement()); }

    QTableView& table() const { return *view.table(); }
    QString cell(int row, Column column) const {
        return table().model()->index(row, column).data(Qt::DisplayRole).toString();
    }
    QLineEdit* edit(int row, Column column) const {
        const QModelIndex index = table().model()->index(row, column);
        QTest::mouseClick(table().viewport(), Qt::LeftButton, Qt::NoModifier, table().visualRect(index).center());
        return qobject_cast<QLineEdit*>(QApplication::focusWidget());
    }
};

} // namespace

TEST(AttributeTableView, ShowsTheAttributesInOrder) {
    Desk desk(u"<a z='1' b='x &amp; &#10;y' c=''/>");
    ASSERT_EQ(desk.table().model()->rowCount(), 3);
    EXPECT_EQ(desk.table().model()->headerData(0, Qt::Horizontal, Qt::DisplayRole).toString(), QStringLiteral("Nombre"));
    EXPECT_EQ(desk.table().model()->headerData(1, Qt::Horizontal, Qt::DisplayRole).toString(), QStringLiteral("Valor"));
    EXPECT_EQ(desk.cell(0, Column::name), QStringLiteral("z"));
    EXPECT_EQ(desk.cell(1, Column::value), QStringLiteral("x & \ny"));
    EXPECT_EQ(desk.cell(2, Column::value), QString());
    EXPECT_EQ(desk.table().model()->index(0, Column::removal).data(Qt::AccessibleTextRole).toString(),
              QStringLiteral("Quitar atributo"));
    EXPECT_EQ(desk.view.addButton()->text(), QStringLiteral("Añadir atributo"));
}

TEST(AttributeTableView, RenamesAnAttribute) {
    Desk desk(u"<a b='1' c='2'/>");
    QLineEdit* const field = desk.edit(0, Column::name);
    ASSERT_NE(field, nullptr);
    field->selectAll();
    QTest::keyClicks(field, QStringLiteral("nuevo"));
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(desk.text(), QStringLiteral("<a nuevo='1' c='2'/>"));
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Renombrar atributo"));
    desk.waitForTree();
    EXPECT_EQ(desk.cell(0, Column::name), QStringLiteral("nuevo"));
}

TEST(AttributeTableView, SetsAValue) {
    Desk desk(u"<a b='1' c='2'/>");
    QLineEdit* const field = desk.edit(1, Column::value);
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->accessibleName(), QStringLiteral("Valor del atributo c"));
    field->selectAll();
    QTest::keyClicks(field, QStringLiteral("<'&"));
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(desk.text(), QStringLiteral("<a b='1' c='&lt;&apos;&amp;'/>"));
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Cambiar atributo"));
}

TEST(AttributeTableView, LeavesNoStepWhenATabbedFieldIsUnchanged) {
    Desk desk(u"<a b='1' c='2'/>");
    QWidget* field = desk.edit(0, Column::name);
    for (int at = 0; at < 4; ++at) {
        ASSERT_NE(qobject_cast<QLineEdit*>(field), nullptr) << at;
        QTest::keyClick(field, Qt::Key_Tab);
        field = QApplication::focusWidget();
    }
    EXPECT_EQ(field, desk.view.addButton());
    EXPECT_FALSE(desk.undo.canUndo());
    EXPECT_EQ(desk.text(), QStringLiteral("<a b='1' c='2'/>"));
}

TEST(AttributeTableView, CommitsWhatIsTabbedOutOf) {
    Desk desk(u"<a b='1' c='2'/>");
    QWidget* const field = desk.edit(0, Column::name);
    ASSERT_NE(field, nullptr);
    QTest::keyClick(field, Qt::Key_End);
    QTest::keyClicks(field, QStringLiteral("x"));
    QTest::keyClick(field, Qt::Key_Tab);
    EXPECT_EQ(desk.text(), QStringLiteral("<a bx='1' c='2'/>"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_End);
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("0"));
    desk.waitForTree();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(desk.text(), QStringLiteral("<a bx='10' c='2'/>")) << "the next field outlives the new tree";
}

TEST(AttributeTableView, RefusesANameThatIsTaken) {
    Desk desk(u"<a b='1' c='2'/>");
    QLineEdit* const field = desk.edit(0, Column::name);
    ASSERT_NE(field, nullptr);
    field->selectAll();
    QTest::keyClicks(field, QStringLiteral("c"));
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(desk.session.errorMessage(), QStringLiteral("Ya existe un atributo “c”."));
    EXPECT_EQ(desk.text(), QStringLiteral("<a b='1' c='2'/>"));
    EXPECT_EQ(desk.cell(0, Column::name), QStringLiteral("b"));
    EXPECT_FALSE(desk.undo.canUndo());
}

TEST(AttributeTableView, RemovesAnAttributeWithItsButton) {
    Desk desk(u"<a b='1' c='2'/>");
    const QModelIndex button = desk.table().model()->index(0, Column::removal);
    QTest::mouseClick(desk.table().viewport(), Qt::LeftButton, Qt::NoModifier,
                      desk.table().visualRect(button).center());
    EXPECT_EQ(desk.text(), QStringLiteral("<a c='2'/>"));
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Quitar atributo"));
    desk.waitForTree();
    EXPECT_EQ(desk.table().model()->rowCount(), 1);
    desk.table().setFocus();
    desk.table().setCurrentIndex(desk.table().model()->index(0, Column::removal));
    QTest::keyClick(&desk.table(), Qt::Key_Space);
    EXPECT_EQ(desk.text(), QStringLiteral("<a/>"));
}

TEST(AttributeTableView, AddsAnAttributeAndEditsItsName) {
    Desk desk(u"<a atributo='1'/>");
    QTest::mouseClick(desk.view.addButton(), Qt::LeftButton);
    EXPECT_EQ(desk.text(), QStringLiteral("<a atributo='1' atributo2=\"\"/>"));
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Añadir atributo"));
    desk.waitForTree();
    auto* const field = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->selectedText(), QStringLiteral("atributo2"));
    QTest::keyClicks(field, QStringLiteral("id"));
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(desk.text(), QStringLiteral("<a atributo='1' id=\"\"/>"));
}

TEST(AttributeTableView, GivesUpADraftForTheElementBefore) {
    Desk desk(u"<a b='1'><c b='2'/></a>");
    QLineEdit* const field = desk.edit(0, Column::value);
    ASSERT_NE(field, nullptr);
    QTest::keyClicks(field, QStringLiteral("x"));
    const NodePath other{{0, 0}};
    desk.view.setElement(other, *desk.session.tree().resolve(other));
    EXPECT_EQ(desk.text(), QStringLiteral("<a b='1'><c b='2'/></a>"));
    EXPECT_EQ(desk.cell(0, Column::value), QStringLiteral("2"));
}

TEST(AttributeTableView, DoesNotBringBackAnAttributeThatGoesWhileItIsEdited) {
    Desk desk(u"<a b='1' c='2'/>");
    QLineEdit* const field = desk.edit(1, Column::value);
    ASSERT_NE(field, nullptr);
    QTest::keyClicks(field, QStringLiteral("x"));
    desk.session.removeAttribute(NodePath{{0}}, QStringLiteral("c"));
    desk.waitForTree();
    EXPECT_EQ(desk.text(), QStringLiteral("<a b='1'/>"));
    EXPECT_EQ(desk.table().model()->rowCount(), 1);
}

TEST(AttributeTableView, IsEmptyWhenItIsCleared) {
    Desk desk(u"<a b='1' c='2'/>");
    QLineEdit* const field = desk.edit(1, Column::value);
    ASSERT_NE(field, nullptr);
    QTest::keyClicks(field, QStringLiteral("x"));
    desk.view.clear();
    EXPECT_EQ(desk.table().model()->rowCount(), 0);
    EXPECT_EQ(desk.text(), QStringLiteral("<a b='1' c='2'/>"));
    desk.showRoot();
    EXPECT_EQ(desk.cell(1, Column::value), QStringLiteral("2"));
}

TEST(AttributeTableView, ShowsTheStartOfAValueTooLongToEdit) {
    std::u16string text = u"<a b='";
    text.append(70'000, u'x').append(u"'/>");
    Desk desk(text);
    QLineEdit* const field = desk.edit(0, Column::value);
    ASSERT_NE(field, nullptr);
    EXPECT_TRUE(field->isReadOnly());
    EXPECT_EQ(field->text(), QString(1'000, u'x') + u'…');
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_FALSE(desk.undo.canUndo());
}

TEST(AttributeTableView, ShowsAHundredThousandAttributes) {
    std::u16string text = u"<a";
    for (int at = 0; at < 100'000; ++at) {
        const std::string number = std::to_string(at);
        text += u" n" + std::u16string(number.begin(), number.end()) + u"='v'";
    }
    Desk desk(text + u"/>");
    EXPECT_EQ(desk.table().model()->rowCount(), 100'000);
    EXPECT_LT(desk.view.sizeHint().height(), 500);
    EXPECT_LT(desk.table().findChildren<QWidget*>().size(), 50);
}

TEST(AttributeTableView, WidensTheColumnOfNamesForLongOnes) {
    EXPECT_EQ(AttributeTableView::nameColumnWidth(10, 300), 120);
    EXPECT_EQ(AttributeTableView::nameColumnWidth(130, 300), 150);
    EXPECT_EQ(AttributeTableView::nameColumnWidth(10'000, 300), 180);

    const auto width = [](std::u16string_view text) {
        const Desk desk(text);
        return desk.table().columnWidth(Column::name);
    };
    const int usual = width(u"<a b='1'/>");
    const int wider = width(u"<a b='1' modificado.por.la='2'/>");
    const int widest = width(u"<a b='1' este.nombre.es.tan.largo.que.no.cabe.nunca='2'/>");
    EXPECT_LT(usual, wider);
    EXPECT_LT(wider, widest);
    EXPECT_LE(widest, 320 * 3 / 5);
}

TEST(AttributeTableView, HasACurrentCellForTheKeyboard) {
    Desk desk(u"<a b='1' c='2'/>");
    const auto current = [&] {
        const QModelIndex cell = desk.table().currentIndex();
        return std::pair(cell.row(), cell.column());
    };
    desk.table().setFocus(Qt::BacktabFocusReason);
    EXPECT_EQ(current(), std::pair(1, int(Column::value)));
    desk.view.clear();
    desk.showRoot();
    desk.view.addButton()->setFocus();
    desk.table().setFocus(Qt::TabFocusReason);
    EXPECT_EQ(current(), std::pair(0, int(Column::name)));
    EXPECT_TRUE(desk.table().hasFocus()) << "nothing is edited yet";
    QTest::keyClick(&desk.table(), Qt::Key_Return);
    auto* const field = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->selectedText(), QStringLiteral("b"));
}

TEST(AttributeTableView, RemovesOneAttributeWithOneKey) {
    Desk desk(u"<a b='1' c='2'/>");
    desk.table().setFocus();
    desk.table().setCurrentIndex(desk.table().model()->index(0, Column::removal));
    QTest::keyClick(&desk.table(), Qt::Key_Space);
    desk.waitForTree();
    EXPECT_EQ(desk.text(), QStringLiteral("<a c='2'/>"));
    EXPECT_TRUE(desk.table().hasFocus()) << "nothing is edited";
    EXPECT_EQ(desk.table().currentIndex(), desk.table().model()->index(0, Column::name));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_EQ(desk.text(), QStringLiteral("<a c='2'/>"));
}
