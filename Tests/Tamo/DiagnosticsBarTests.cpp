#include "DiagnosticsBar.h"

#include "ParsedDesk.h"

#include <QLabel>
#include <QMenu>
#include <QScreen>
#include <QToolButton>

namespace {

struct Desk : ParsedDesk {
    DiagnosticsBar bar{session};

    explicit Desk(std::u16string_view text) : ParsedDesk(text) {
        session.setMode(EditorSession::Mode::split);
        bar.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&bar));
    }

    /// The text of a label that shows, nothing of one that does not.
    QString shown(const char* name) const {
        const auto* label = bar.findChild<QLabel*>(QLatin1String(name));
        return label != nullptr && label->isVisible() ? label->text() : QString();
    }
    QList<QAction*> entries() const {
        bar.problemsMenu()->popup(QPoint(0, 0));
        bar.problemsMenu()->hide();
        QList<QAction*> entries;
        for (QAction* action : bar.problemsMenu()->actions()) {
            if (!action->isSeparator()) {
                entries += action;
            }
        }
        return entries;
    }
    QWidget* counts() const { return bar.findChild<QLabel*>(QStringLiteral("errors"))->parentWidget(); }
    QToolButton* next() const {
        for (QToolButton* button : bar.findChildren<QToolButton*>()) {
            if (button->text() == QStringLiteral("Ir al problema")) {
                return button;
            }
        }
        return nullptr;
    }
};

} // namespace

TEST(DiagnosticsBar, SaysThatThereAreNoProblems) {
    Desk desk(u"<a/>");
    EXPECT_EQ(desk.shown("noErrors"), QStringLiteral("Sin errores"));
    EXPECT_EQ(desk.shown("errors"), QString());
    ASSERT_NE(desk.next(), nullptr);
    EXPECT_FALSE(desk.next()->isVisible());
}

TEST(DiagnosticsBar, CountsErrorsAndWarnings) {
    Desk desk(u"<a b='1' b='2'><c></a>");
    EXPECT_EQ(desk.shown("noErrors"), QString());
    const std::size_t errors = desk.session.tree().diagnostics.errorCount();
    EXPECT_EQ(desk.shown("errors"), QString::number(errors));
    EXPECT_EQ(desk.shown("warnings"), QString::number(desk.session.tree().diagnostics.size() - errors));
    Desk warned(u"<?xml version='1.0'?>");
    ASSERT_EQ(warned.session.tree().diagnostics.errorCount(), 0U);
    ASSERT_EQ(warned.session.tree().diagnostics.size(), 1U);
    EXPECT_EQ(warned.shown("errors"), QStringLiteral("0"));
    EXPECT_EQ(warned.shown("warnings"), QStringLiteral("1"));
}

TEST(DiagnosticsBar, ListsTheProblemsWithTheirFixes) {
    Desk desk(u"<a>\n<b>\n</a>");
    const DiagnosticList& diagnostics = desk.session.tree().diagnostics;
    ASSERT_EQ(diagnostics.size(), 1U);
    ASSERT_TRUE(diagnostics[0].fix);
    const auto entries = desk.entries();
    ASSERT_EQ(entries.size(), 3);
    EXPECT_EQ(entries[0]->text(), QStringLiteral("Línea 2: ") + QString::fromStdU16String(diagnostics[0].message));
    EXPECT_EQ(entries[1]->text().trimmed(), QString::fromStdU16String(diagnostics[0].fix->title));
    EXPECT_EQ(entries[2]->text(), QStringLiteral("Corregir todo"));
    entries[0]->trigger();
    ASSERT_TRUE(desk.session.revealRequest());
    EXPECT_EQ(desk.session.revealRequest()->range, diagnostics.range(0));
    const QString title = QString::fromStdU16String(diagnostics[0].fix->title);
    entries[1]->trigger();
    EXPECT_EQ(desk.undo.undoActionName(), title);
    desk.waitForTree();
    EXPECT_TRUE(desk.session.tree().diagnostics.empty());
}

TEST(DiagnosticsBar, CountsInWordsThatAgree) {
    Desk one(u"<a>&</a>");
    EXPECT_EQ(one.counts()->accessibleName(), QStringLiteral("1 error, 0 advertencias"));
    Desk two(u"<a>&&</a>x");
    EXPECT_EQ(two.counts()->accessibleName(), QStringLiteral("2 errores, 1 advertencia"));
    std::u16string text = u"<a>";
    text.append(12'345, u'&');
    Desk many(text + u"</a>");
    EXPECT_EQ(many.shown("errors"), QStringLiteral("12.345"));
    EXPECT_EQ(many.counts()->accessibleName(), QStringLiteral("12.345 errores, 0 advertencias"));
    const auto entries = many.entries();
    EXPECT_EQ(entries[entries.size() - 2]->text(), QStringLiteral("y 12.245 más…"));
}

TEST(DiagnosticsBar, NumbersTheLineOnWhichAProblemIsSeen) {
    Desk outside(u"<a/>\n\nuno");
    EXPECT_TRUE(outside.entries()[0]->text().startsWith(QStringLiteral("Línea 3: ")));
    std::u16string text = u"<a>";
    text.append(12'344, u'\n');
    Desk far(text + u"&</a>");
    EXPECT_TRUE(far.entries()[0]->text().startsWith(QStringLiteral("Línea 12.345: ")));
}

TEST(DiagnosticsBar, FixesAllInOneStep) {
    Desk desk(u"<a>\n<b>\n<c>\n</a>");
    const QString before = desk.text();
    const auto entries = desk.entries();
    ASSERT_FALSE(entries.isEmpty());
    entries.back()->trigger();
    desk.waitForTree();
    EXPECT_TRUE(desk.session.tree().diagnostics.empty());
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Corregir todo"));
    desk.undo.undo();
    EXPECT_EQ(desk.text(), before);
}

TEST(DiagnosticsBar, GoesToTheNextProblemAndAround) {
    Desk desk(u"<a>\n<b>\n<c>\n</a>");
    const DiagnosticList& diagnostics = desk.session.tree().diagnostics;
    ASSERT_EQ(diagnostics.size(), 2U);
    for (const std::size_t expected : {0U, 1U, 0U}) {
        desk.next()->click();
        ASSERT_TRUE(desk.session.revealRequest());
        EXPECT_EQ(desk.session.revealRequest()->range, diagnostics.range(expected));
        desk.session.setTextSelection(desk.session.revealRequest()->range);
    }
}

TEST(DiagnosticsBar, BoundsAMenuOfManyProblems) {
    std::u16string text = u"<r>";
    for (int at = 0; at < 5'000; ++at) {
        text += u"&";
    }
    Desk desk(text);
    const auto entries = desk.entries();
    EXPECT_LT(entries.size(), 300);
    const auto isMore = [](const QAction* entry) { return entry->text().startsWith(QStringLiteral("y ")); };
    EXPECT_EQ(std::ranges::count_if(entries, isMore), 1);
}

TEST(DiagnosticsBar, CutsEntriesToTheScreen) {
    Desk desk(u"<r><" + std::u16string(2'000, u'W') + u">");
    QMenu& menu = *desk.bar.problemsMenu();
    desk.entries();
    for (const QAction* const entry : menu.actions()) {
        EXPECT_LT(menu.fontMetrics().horizontalAdvance(entry->text()), menu.screen()->size().width());
    }
}

TEST(DiagnosticsBar, ShowsTextFromTheDocumentPlainly) {
    Desk desk(u"<a><b\tx&y='1'></a>");
    for (const QAction* entry : desk.entries()) {
        EXPECT_EQ(entry->text().count(u'\t'), 0);
        EXPECT_EQ(QString(entry->text()).remove(QStringLiteral("&&")).count(u'&'), 0);
    }
}

TEST(DiagnosticsBar, StatesFactsAboutTheFile) {
    Desk desk(u"<a>\n</a>");
    EXPECT_EQ(desk.shown("lineEnding"), QStringLiteral("LF"));
    EXPECT_EQ(desk.shown("encoding"), QStringLiteral("Unicode (UTF-8)"));
    EXPECT_EQ(desk.shown("size"), QStringLiteral("8 bytes"));
    Desk windows(u"<á>\r\n</á>");
    EXPECT_EQ(windows.shown("lineEnding"), QStringLiteral("CRLF"));
    EXPECT_EQ(windows.shown("size"), QStringLiteral("11 bytes"));
    EXPECT_EQ(Desk(u"x").shown("size"), QStringLiteral("1 byte"));
    EXPECT_EQ(Desk(std::u16string(1234, u'x')).shown("size"),
              QLocale().formattedDataSize(1234, 1, QLocale::DataSizeSIFormat));
}

TEST(DiagnosticsBar, ClaimsNothingBeforeTheFirstParse) {
    SessionDesk unread(u"<a/>");
    DiagnosticsBar bar(unread.session);
    bar.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&bar));
    const auto label = [&bar](const char* name) { return bar.findChild<QLabel*>(QLatin1String(name)); };
    EXPECT_FALSE(label("noErrors")->isVisible());
    EXPECT_FALSE(label("size")->isVisible());
    EXPECT_EQ(label("size")->text(), QString());
    ASSERT_TRUE(unread.open());
    EXPECT_TRUE(label("noErrors")->isVisible());
    EXPECT_TRUE(label("size")->isVisible());
}

TEST(DiagnosticsBar, SaysWhichProblemWasGoneTo) {
    Desk desk(u"<r>\n<a b='1' b='2' c='3' c='4'/>\n</r>");
    desk.session.setMode(EditorSession::Mode::visual);
    const auto message = [&] {
        return desk.bar.findChild<QWidget*>(QStringLiteral("message"))->accessibleName();
    };
    ASSERT_EQ(desk.session.tree().diagnostics.size(), 2U);
    EXPECT_EQ(message(), QString());
    QStringList said;
    for (int step = 0; step < 2; ++step) {
        desk.session.nextProblem();
        said += message();
    }
    EXPECT_TRUE(said[0].startsWith(QStringLiteral("Línea 2: "))) << said[0].toStdString();
    EXPECT_TRUE(said[1].startsWith(QStringLiteral("Línea 2: "))) << said[1].toStdString();
    EXPECT_NE(said[0], said[1]) << "both are of one node";
    desk.session.select(NodePath{{0}});
    EXPECT_EQ(message(), QString());
}
