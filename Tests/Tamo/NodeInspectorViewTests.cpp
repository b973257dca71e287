#include "NodeInspectorView.h"

#include "AttributeTableView.h"
#include "CommitField.h"
#include "EmptyStateView.h"
#include "ParsedDesk.h"
#include "Symbol.h"

#include <QApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

namespace {

using Kind = TreeNode::Kind;

struct Desk : ParsedDesk {
    NodeInspectorView inspector{session};

    explicit Desk(std::u16string_view text) : ParsedDesk(text) {
        inspector.resize(320, 700);
        inspector.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&inspector));
    }

    /// The headings that show, from top to bottom.
    QStringList sections() const {
        QStringList shown;
        for (const QString& heading :
             {QStringLiteral("Nombre"), QStringLiteral("Atributos"), QStringLiteral("Contenido"),
              QStringLiteral("Código fuente"), QStringLiteral("Acciones")}) {
            for (const QLabel* label : inspector.findChildren<QLabel*>()) {
                if (label->isVisible() && label->text() == heading) {
                    shown += heading;
                }
            }
        }
        return shown;
    }
    const EmptyStateView& emptyState() const { return *inspector.findChild<EmptyStateView*>(); }
    CommitField& field(const QString& title) const {
        for (CommitField* field : inspector.findChildren<CommitField*>()) {
            if (field->editor()->accessibleName() == title) {
                return *field;
            }
        }
        ADD_FAILURE() << "no field " << title.toStdString();
        std::abort();
    }
    QPushButton& button(const QString& text) const {
        for (QPushButton* button : inspector.findChildren<QPushButton*>()) {
            if (button->text() == text) {
                return *button;
            }
        }
        ADD_FAILURE() << "no button " << text.toStdString();
        std::abort();
    }
};

} // namespace

TEST(NodeInspectorView, NamesEachKindOfNode) {
    struct Row {
        Kind kind;
        QString title;
        QString symbol;
    };
    const Row rows[] = {
        {Kind::document, QStringLiteral("Documento"), QStringLiteral("doc")},
        {Kind::element, QStringLiteral("Elemento"), QStringLiteral("chevron.left.forwardslash.chevron.right")},
        {Kind::text, QStringLiteral("Texto"), QStringLiteral("text.alignleft")},
        {Kind::comment, QStringLiteral("Comentario"), QStringLiteral("text.bubble")},
        {Kind::cdata, QStringLiteral("CDATA"), QStringLiteral("doc.plaintext")},
        {Kind::instruction, QStringLiteral("Instrucción de procesamiento"), QStringLiteral("gearshape")},
        {Kind::doctype, QStringLiteral("DOCTYPE"), QStringLiteral("doc.badge.gearshape")},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(NodeInspectorView::title(row.kind), row.title);
        EXPECT_EQ(NodeInspectorView::symbol(row.kind), row.symbol);
        EXPECT_TRUE(Symbol::has(row.symbol));
    }
}

TEST(NodeInspectorView, SaysWhenNothingIsSelected) {
    Desk desk(u"<a/>");
    EXPECT_TRUE(desk.emptyState().isVisible());
    EXPECT_EQ(desk.emptyState().symbol(), QStringLiteral("cursorarrow.click.2"));
    EXPECT_EQ(desk.emptyState().title(), QStringLiteral("Sin selección"));
    EXPECT_EQ(desk.emptyState().description(), QStringLiteral("Selecciona un nodo para editarlo."));
    EXPECT_EQ(desk.sections(), QStringList());
    desk.session.select(NodePath{{0}});
    EXPECT_FALSE(desk.emptyState().isVisible());
}

TEST(NodeInspectorView, ShowsTheSectionsOfEachKind) {
    Desk desk(u"<?xml version='1.0'?><!DOCTYPE a><a>t<b>x</b><!--c--><![CDATA[d]]><e/></a>");
    const auto sections = [&](std::vector<std::uint32_t> path) {
        desk.session.select(NodePath{std::move(path)});
        return desk.sections().join(u',');
    };
    const QString source = QStringLiteral("Código fuente");
    const QString content = QStringLiteral("Contenido,Acciones");
    const QString element = QStringLiteral("Nombre,Atributos,");
    EXPECT_EQ(sections({}), source);
    EXPECT_EQ(sections({0}), source);
    EXPECT_EQ(sections({1}), source);
    EXPECT_EQ(sections({2}), element + QStringLiteral("Acciones")) << "it has elements inside";
    EXPECT_EQ(sections({2, 0}), content);
    EXPECT_EQ(sections({2, 1}), element + content);
    EXPECT_EQ(sections({2, 2}), content);
    EXPECT_EQ(sections({2, 3}), content);
    EXPECT_EQ(sections({2, 4}), element + content);
}

TEST(NodeInspectorView, ShowsTheSourceOfWhatCannotBeEditedHere) {
    Desk desk(u"<?xml version='1.0'?>\n<a/>");
    desk.session.select(NodePath{{0}});
    auto* const source = desk.inspector.findChild<QPlainTextEdit*>(QString(), Qt::FindChildrenRecursively);
    ASSERT_NE(source, nullptr);
    bool isShown = false;
    for (const QPlainTextEdit* each : desk.inspector.findChildren<QPlainTextEdit*>()) {
        isShown = isShown || (each->isVisible() && each->isReadOnly() &&
                              each->toPlainText() == QStringLiteral("<?xml version='1.0'?>"));
    }
    EXPECT_TRUE(isShown);
}

TEST(NodeInspectorView, RenamesAnElement) {
    Desk desk(u"<a><b/></a>");
    desk.session.select(NodePath{{0}});
    CommitField& name = desk.field(QStringLiteral("Nombre"));
    EXPECT_EQ(name.draft(), QStringLiteral("a"));
    name.setFocus();
    name.selectAll();
    QTest::keyClicks(name.editor(), QStringLiteral("raiz"));
    QTest::keyClick(name.editor(), Qt::Key_Return);
    EXPECT_EQ(desk.text(), QStringLiteral("<raiz><b/></raiz>"));
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Renombrar"));
    name.selectAll();
    QTest::keyClicks(name.editor(), QStringLiteral("2 x"));
    QTest::keyClick(name.editor(), Qt::Key_Return);
    EXPECT_EQ(desk.session.errorMessage(), QStringLiteral("“2 x” no es un nombre XML válido."));
    EXPECT_EQ(desk.text(), QStringLiteral("<raiz><b/></raiz>"));
    EXPECT_EQ(name.draft(), name.value());
}

TEST(NodeInspectorView, EditsContentWhenTheFieldIsLeft) {
    Desk desk(u"<a>uno</a>");
    desk.session.select(NodePath{{0}});
    CommitField& content = desk.field(QStringLiteral("Texto"));
    content.setFocus();
    content.selectAll();
    QTest::keyClicks(content.editor(), QStringLiteral("<dos>"));
    desk.field(QStringLiteral("Nombre")).setFocus();
    EXPECT_EQ(desk.text(), QStringLiteral("<a>&lt;dos&gt;</a>"));
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Editar texto"));
    EXPECT_FALSE(desk.session.errorMessage());
    desk.waitForTree();
    EXPECT_EQ(content.draft(), QStringLiteral("<dos>"));
}

TEST(NodeInspectorView, EndsLinesLikeTheDocument) {
    Desk desk(u"<a>\r\n<b>uno\r\ndos</b>\r\n</a>");
    desk.session.select(NodePath{{0, 0}});
    CommitField& content = desk.field(QStringLiteral("Texto"));
    content.setFocus();
    content.selectAll();
    QTest::keyClick(content.editor(), Qt::Key_End, Qt::ControlModifier);
    QTest::keyClick(content.editor(), Qt::Key_Return, Qt::ShiftModifier);
    QTest::keyClicks(content.editor(), QStringLiteral("tres"));
    QTest::keyClick(content.editor(), Qt::Key_Return);
    const QString after = QStringLiteral("<a>\r\n<b>uno\r\ndos\r\ntres</b>\r\n</a>");
    EXPECT_EQ(desk.text(), after);
    desk.waitForTree();
    desk.field(QStringLiteral("Nombre")).setFocus();
    EXPECT_EQ(desk.text(), after);
}

TEST(NodeInspectorView, KeepsADraftToTheNodeItWasWrittenFor) {
    Desk desk(u"<a><b>uno</b><c>dos</c></a>");
    desk.session.select(NodePath{{0, 0}});
    CommitField& content = desk.field(QStringLiteral("Texto"));
    content.setFocus();
    QTest::keyClicks(content.editor(), QStringLiteral("!"));
    desk.session.select(NodePath{{0, 1}});
    EXPECT_EQ(content.draft(), QStringLiteral("dos"));
    desk.field(QStringLiteral("Nombre")).setFocus();
    EXPECT_EQ(desk.text(), QStringLiteral("<a><b>uno</b><c>dos</c></a>"));
}

TEST(NodeInspectorView, ShowsTheStartOfANameTooLongToEdit) {
    const QString text = u'<' + QString(70'000, u'n') + QStringLiteral("/>");
    Desk desk(text.toStdU16String());
    desk.session.select(NodePath{{0}});
    EXPECT_EQ(desk.field(QStringLiteral("Nombre")).draft(), QString(1'000, u'n') + u'…');
}

TEST(NodeInspectorView, ForgetsTheAttributesOfAnElementThatIsNoLongerSelected) {
    Desk desk(u"<a b='1'>t</a>");
    const QAbstractItemModel& attributes = *desk.inspector.findChild<AttributeTableView*>()->table()->model();
    desk.session.select(NodePath{{0}});
    EXPECT_EQ(attributes.rowCount(), 1);
    desk.session.select(NodePath{{0, 0}});
    EXPECT_EQ(attributes.rowCount(), 0) << "a later tree would leave them dangling";
}

TEST(NodeInspectorView, RunsTheCommandsOnTheNode) {
    using Prompt = EditorSession::NamePrompt;
    Desk desk(u"<a><b/></a>");
    const NodePath path{{0, 0}};
    desk.session.select(path);
    const std::pair<QString, Prompt::Kind> prompts[] = {{QStringLiteral("Hijo"), Prompt::Kind::addChild},
                                                       {QStringLiteral("Hermano"), Prompt::Kind::addSibling},
                                                       {QStringLiteral("Envolver"), Prompt::Kind::wrap}};
    for (const auto& [title, kind] : prompts) {
        QTest::mouseClick(&desk.button(title), Qt::LeftButton);
        EXPECT_EQ(desk.session.namePrompt(), (Prompt{kind, path}));
        desk.session.setNamePrompt(std::nullopt);
    }
    QTest::mouseClick(&desk.button(QStringLiteral("Duplicar")), Qt::LeftButton);
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Duplicar"));
    desk.waitForTree();
    QTest::mouseClick(&desk.button(QStringLiteral("Eliminar")), Qt::LeftButton);
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Eliminar"));
    EXPECT_EQ(desk.text().count(QStringLiteral("<b/>")), 1);
}

TEST(NodeInspectorView, KeepsAMarginBesideEveryKindOfNode) {
    Desk desk(u"<?xml version='1.0'?><!DOCTYPE a><?una-orden con un contenido largo?><a b='c'>texto</a>");
    desk.inspector.resize(200, 700);
    const auto expectMargin = [&](const QWidget& part, const QString& what) {
        const QPoint right = part.mapTo(&desk.inspector, QPoint(part.width(), 0));
        EXPECT_TRUE(!part.isVisible() || right.x() <= desk.inspector.width() - 8) << qUtf8Printable(what);
    };
    for (const NodePath& path : {NodePath{{0}}, NodePath{{1}}, NodePath{{2}}, NodePath{{3}}, NodePath{{3, 0}}}) {
        desk.session.select(path);
        QApplication::sendPostedEvents();
        for (const QLabel* const label : desk.inspector.findChildren<QLabel*>()) {
            expectMargin(*label, label->text());
        }
        for (const QPlainTextEdit* const field : desk.inspector.findChildren<QPlainTextEdit*>()) {
            expectMargin(*field, field->toPlainText());
        }
    }
}

TEST(NodeInspectorView, OffersAChildToElementsOnly) {
    Desk desk(u"<a>t<!--c--></a>");
    const std::pair<NodePath, bool> rows[] = {{{{0}}, true}, {{{0, 0}}, false}, {{{0, 1}}, false}};
    for (const auto& [path, isOffered] : rows) {
        desk.session.select(path);
        EXPECT_EQ(desk.button(QStringLiteral("Hijo")).isEnabled(), isOffered);
        EXPECT_TRUE(desk.button(QStringLiteral("Hermano")).isEnabled());
    }
}
