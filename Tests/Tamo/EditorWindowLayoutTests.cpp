#include "EditorWindowView.h"

#include "CodeEditorView.h"
#include "FindBar.h"
#include "GoToLineBar.h"
#include "NodeInspectorView.h"
#include "ParsedDesk.h"
#include "TreeEditorView.h"
#include "SymbolLabel.h"

#include <QAction>
#include <QApplication>
#include <QToolBar>
#include <QToolButton>

namespace {

using Mode = EditorSession::Mode;

constexpr QSize smallest(480, 270); // Of the smallest window, below its menus.

struct Desk : ParsedDesk {
    QWidget window; ///< As small as a test wants it, whatever its contents would like.
    EditorWindowView view{session, undo, &window};

    explicit Desk(QSize size, Mode mode = Mode::split, std::u16string_view text = u"<a b='1'>uno</a>")
        : ParsedDesk(text) {
        session.setMode(mode);
        window.resize(size);
        view.resize(size);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        waitForTree();
    }

    QRect place(const QWidget& widget) const { return {widget.mapTo(&view, QPoint()), widget.size()}; }
    void trigger(const QString& command) {
        for (QAction* const action : view.findCommands()) {
            if (action->text().remove(u'&') == command) {
                action->trigger();
            }
        }
        QApplication::processEvents();
    }
};

/// Expects that no two of the visible children of `parent` share a pixel and that none reaches out of it.
void checkChildren(const QWidget& parent) {
    QList<const QWidget*> children;
    for (const QWidget* const child : parent.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        if (child->isVisible() && !child->isWindow() && !child->size().isEmpty()) {
            children += child;
        }
    }
    for (const QWidget* const child : children) {
        EXPECT_TRUE(parent.rect().contains(child->geometry()))
            << child->metaObject()->className() << " in " << parent.metaObject()->className();
        for (const QWidget* const other : children) {
            EXPECT_TRUE(child == other || !child->geometry().intersects(other->geometry()))
                << child->metaObject()->className() << " and " << other->metaObject()->className() << " in "
                << parent.metaObject()->className();
        }
    }
}

} // namespace

TEST(EditorWindowLayout, FitsItsPanesAndTheFindBarIntoTheSmallestWindow) {
    for (const Mode mode : {Mode::text, Mode::split}) {
        for (const bool showsInspector : {true, false}) {
            Desk desk(smallest, mode);
            desk.view.setShowInspector(showsInspector);
            desk.trigger(QStringLiteral("Buscar y reemplazar…"));
            FindBar& bar = desk.view.codeEditor().findBar();
            ASSERT_TRUE(bar.isVisible());
            EXPECT_EQ(desk.view.size(), smallest);
            checkChildren(bar);
            QList<const QWidget*> parts = {&bar, &desk.view.codeEditor()};
            if (mode == Mode::split) {
                parts += &desk.view.treeEditor();
            }
            if (showsInspector) {
                parts += &desk.view.inspector();
            }
            for (const QWidget* const part : parts) {
                EXPECT_TRUE(desk.view.rect().contains(desk.place(*part))) << part->metaObject()->className();
                for (const QWidget* const other : parts) {
                    EXPECT_TRUE(part == other || !desk.place(*part).intersects(desk.place(*other)))
                        << part->metaObject()->className() << " and " << other->metaObject()->className();
                }
            }
        }
    }
}

TEST(EditorWindowLayout, FitsTheBarThatGoesToALineIntoTheSmallestWindow) {
    Desk desk(smallest);
    desk.trigger(QStringLiteral("Ir a la línea…"));
    ASSERT_TRUE(desk.view.codeEditor().goToLineBar().isVisible());
    checkChildren(desk.view.codeEditor().goToLineBar());
    EXPECT_LT(desk.place(desk.view.codeEditor().goToLineBar()).bottom(),
              desk.place(desk.view.codeEditor()).top());
}

TEST(EditorWindowLayout, HidesTheFindBarWithTheSource) {
    Desk desk({900, 600});
    desk.trigger(QStringLiteral("Buscar…"));
    FindBar& bar = desk.view.codeEditor().findBar();
    ASSERT_TRUE(bar.isAncestorOf(QApplication::focusWidget()));
    desk.session.setMode(Mode::visual);
    EXPECT_FALSE(bar.isVisible());
    const QWidget* const focused = QApplication::focusWidget();
    EXPECT_TRUE(focused == &desk.view.treeEditor() || desk.view.treeEditor().isAncestorOf(focused));
    desk.session.setMode(Mode::text);
    EXPECT_TRUE(bar.isVisible());
}

TEST(EditorWindowLayout, GivesTheSourceMoreThanAThirdBesideTheTree) {
    Desk desk({1280, 760});
    EXPECT_GT(desk.view.codeEditor().width(), 1280 / 3 + 40);
    EXPECT_NEAR(desk.view.codeEditor().width(), desk.view.treeEditor().width(), 6);
    EXPECT_GE(desk.view.inspector().width(), 240);
}

TEST(EditorWindowLayout, WritesFormatearBesideItsSymbol) {
    const Desk desk({1280, 760});
    const auto* const bar = desk.view.findChild<QToolBar*>();
    for (QAction* const action : bar->actions()) {
        if (action->text() == QStringLiteral("Formatear")) {
            const auto* const button = qobject_cast<QToolButton*>(bar->widgetForAction(action));
            ASSERT_NE(button, nullptr);
            EXPECT_EQ(button->toolButtonStyle(), Qt::ToolButtonTextBesideIcon);
            EXPECT_EQ(action->icon().name(), QStringLiteral("increase.indent"));
            return;
        }
    }
    FAIL();
}

TEST(EditorWindowLayout, CountsOneErrorInTheSingular) {
    const auto status = [](std::u16string_view text) {
        const Desk desk({1280, 760}, Mode::split, text);
        QStringList texts;
        for (const auto* const label : desk.view.findChild<QToolBar*>()->findChildren<SymbolLabel*>()) {
            texts += label->text();
        }
        return texts.filter(QStringLiteral("error")).join(u' ');
    };
    EXPECT_EQ(status(u"<a>&</a>"), QStringLiteral("1 error"));
    EXPECT_EQ(status(u"<a>&&</a>"), QStringLiteral("2 errores"));
    EXPECT_EQ(status(u"<a>" + std::u16string(12'345, u'&') + u"</a>"), QStringLiteral("12.345 errores"));
}
