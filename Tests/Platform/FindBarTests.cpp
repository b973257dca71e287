#include "FindBar.h"

#include "UndoManager.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace {

/// A text with a selection, and no more of a view than the bar needs.
class Page : public QWidget, public FindBarClient {
public:
    explicit Page(std::u16string_view units) : m_storage(Rope(units)) { setFocusPolicy(Qt::StrongFocus); }

    TextStorage& storage() override { return m_storage; }
    SourceRange selection() const override { return m_selection; }
    void select(SourceRange range) override { m_selection = range; }
    void replace(SourceRange range, const Rope& with, const QString& actionName, Offset caret) override {
        undo.beginUndoGroup();
        undo.setActionName(actionName);
        change(range, with);
        m_selection = SourceRange::empty(caret);
        undo.endUndoGroup();
    }
    void setMatches(Matches matches) override { m_matches = std::move(matches); }
    void focus() override { setFocus(); }

    /// The text with the selection between brackets, or the caret as `|`.
    std::u16string shown() const {
        std::u16string units = m_storage.text().units(m_storage.text().fullRange());
        if (m_selection.isEmpty()) {
            return units.insert(m_selection.lower, 1, u'|');
        }
        units.insert(m_selection.upper, 1, u']');
        return units.insert(m_selection.lower, 1, u'[');
    }
    std::size_t markedMatches() const {
        return m_matches ? m_matches(m_storage.text().fullRange()).size() : 0;
    }

    UndoManager undo;

private:
    void change(SourceRange range, const Rope& with) {
        const Rope old = m_storage.text().part(range);
        const SourceRange changed = SourceRange::at(range.lower, with.size());
        undo.registerUndo([this, changed, old] { change(changed, old); });
        m_storage.replaceCharacters(range, with);
    }

    TextStorage m_storage;
    SourceRange m_selection;
    Matches m_matches;
};

/// A page with a bar above it, on the screen.
struct Desk {
    QWidget window;
    Page* page;
    FindBar* bar;

    explicit Desk(std::u16string_view units) : page(new Page(units)), bar(new FindBar(*page)) {
        auto* layout = new QVBoxLayout(&window);
        layout->setContentsMargins({});
        layout->addWidget(bar);
        layout->addWidget(page, 1);
        // As a menu would hold them.
        window.addActions(bar->commands());
        window.resize(900, 300);
        window.show();
        page->setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    // The page's text goes last.
    ~Desk() { delete bar; }

    template <class Widget>
    Widget* named(const char* name) const {
        for (auto* widget : bar->findChildren<Widget*>()) {
            if (widget->accessibleName() == QString::fromUtf8(name)) {
                return widget;
            }
        }
        ADD_FAILURE() << "no " << name;
        return nullptr;
    }
    QPushButton* button(const char* text) const {
        for (auto* widget : bar->findChildren<QPushButton*>()) {
            if (widget->text() == QString::fromUtf8(text)) {
                return widget;
            }
        }
        ADD_FAILURE() << "no " << text;
        return nullptr;
    }
    QLineEdit* pattern() const { return named<QLineEdit>("Buscar"); }
    std::string message() const { return bar->findChild<QLabel*>()->text().toStdString(); }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    void type(const char* text) { QTest::keyClicks(QApplication::focusWidget(), QString::fromUtf8(text)); }
    void click(QAbstractButton* button) { QTest::mouseClick(button, Qt::LeftButton); }

    void expect(std::u16string_view shown, const std::string& messageText) const {
        EXPECT_TRUE(
            QTest::qWaitFor([&] { return page->shown() == shown && message() == messageText; }, 20'000))
            << "shown: " << testing::PrintToString(page->shown()) << ", message: " << message();
    }
};

} // namespace

TEST(FindBar, EndsAMessageWithoutRoomInAnEllipsis) {
    Desk desk(u"tres");
    auto* const label = desk.bar->findChild<QLabel*>();
    const QString message = QStringLiteral("29.188 de 114.205");
    label->setFixedWidth(label->fontMetrics().horizontalAdvance(message) / 2);
    const auto picture = [&](const QString& text) {
        label->setText(text);
        return label->grab().toImage();
    };
    const QString cut = label->fontMetrics().elidedText(message, Qt::ElideRight, label->minimumWidth());
    ASSERT_TRUE(cut.endsWith(u'…'));
    EXPECT_EQ(picture(message), picture(cut));
    EXPECT_NE(picture(message), picture(QString()));
}

TEST(FindBar, FindsWhileTyping) {
    Desk desk(u"tres dos tren tres");
    desk.page->select(SourceRange::empty(5));
    desk.press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_TRUE(desk.bar->isVisible());
    EXPECT_EQ(QApplication::focusWidget(), desk.pattern());
    EXPECT_EQ(desk.page->shown(), u"tres |dos tren tres");
    desk.type("tre");
    desk.expect(u"tres dos [tre]n tres", "2 de 3");
    desk.type("s");
    desk.expect(u"tres dos tren [tres]", "2 de 2");
    desk.type("x");
    desk.expect(u"tres |dos tren tres", "Sin resultados");
    desk.press(Qt::Key_Backspace);
    desk.expect(u"tres dos tren [tres]", "2 de 2");
    desk.pattern()->clear();
    desk.expect(u"tres |dos tren tres", "");
}

TEST(FindBar, StepsByKeysAndButtons) {
    Desk desk(u"a1 a2 a3");
    desk.press(Qt::Key_F, Qt::ControlModifier);
    desk.type("a");
    desk.expect(u"[a]1 a2 a3", "1 de 3");
    desk.press(Qt::Key_Return);
    desk.expect(u"a1 [a]2 a3", "2 de 3");
    desk.press(Qt::Key_F3);
    desk.expect(u"a1 a2 [a]3", "3 de 3");
    desk.press(Qt::Key_G, Qt::ControlModifier);
    desk.expect(u"[a]1 a2 a3", "1 de 3");
    desk.press(Qt::Key_Enter, Qt::ShiftModifier);
    desk.expect(u"a1 a2 [a]3", "3 de 3");
    desk.press(Qt::Key_F3, Qt::ShiftModifier);
    desk.expect(u"a1 [a]2 a3", "2 de 3");
    desk.press(Qt::Key_G, Qt::ControlModifier | Qt::ShiftModifier);
    desk.expect(u"[a]1 a2 a3", "1 de 3");
    desk.click(desk.named<QToolButton>("Siguiente"));
    desk.expect(u"a1 [a]2 a3", "2 de 3");
    desk.click(desk.named<QToolButton>("Anterior"));
    desk.expect(u"[a]1 a2 a3", "1 de 3");
}

TEST(FindBar, GoesOnTypingWhereAStepLed) {
    Desk desk(u"ab ac ab ad");
    desk.press(Qt::Key_F, Qt::ControlModifier);
    desk.type("a");
    desk.expect(u"[a]b ac ab ad", "1 de 4");
    desk.press(Qt::Key_Return);
    desk.expect(u"ab [a]c ab ad", "2 de 4");
    desk.type("b");
    desk.expect(u"ab ac [ab] ad", "2 de 2");
}

TEST(FindBar, LeadsFromFieldToFieldByTab) {
    const Desk desk(u"");
    desk.bar->findAndReplace();
    QTest::keyClick(desk.pattern(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), desk.named<QLineEdit>("Reemplazar por"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), desk.named<QToolButton>("Distinguir mayúsculas"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_TRUE(desk.named<QToolButton>("Distinguir mayúsculas")->isChecked());
}

TEST(FindBar, ReturnsToTheTextWithTheMatchSelected) {
    Desk desk(u"uno dos");
    desk.press(Qt::Key_F, Qt::ControlModifier);
    desk.type("dos");
    desk.expect(u"uno [dos]", "1 de 1");
    EXPECT_EQ(desk.page->markedMatches(), 1U);
    desk.press(Qt::Key_Escape);
    EXPECT_FALSE(desk.bar->isVisible());
    EXPECT_EQ(QApplication::focusWidget(), desk.page);
    EXPECT_EQ(desk.page->shown(), u"uno [dos]");
    EXPECT_EQ(desk.page->markedMatches(), 0U);
    desk.bar->find();
    desk.click(desk.named<QToolButton>("Cerrar"));
    EXPECT_FALSE(desk.bar->isVisible());
}

TEST(FindBar, GoesOnWhenClosed) {
    Desk desk(u"uno dos uno");
    desk.press(Qt::Key_F, Qt::ControlModifier);
    desk.type("uno");
    desk.expect(u"[uno] dos uno", "1 de 2");
    desk.press(Qt::Key_Escape);
    desk.press(Qt::Key_F3);
    EXPECT_TRUE(QTest::qWaitFor([&] { return desk.page->shown() == u"uno dos [uno]"; }));
    desk.press(Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return desk.page->shown() == u"[uno] dos uno"; }));
    EXPECT_FALSE(desk.bar->isVisible());
}

TEST(FindBar, OpensWhenThereIsNothingToGoOnWith) {
    Desk desk(u"uno");
    desk.press(Qt::Key_F3);
    EXPECT_TRUE(desk.bar->isVisible());
    EXPECT_EQ(QApplication::focusWidget(), desk.pattern());
}

TEST(FindBar, TakesTheSelectionOfOneLine) {
    Desk desk(u"a.c abc\na.c");
    desk.page->select({0, 3});
    desk.press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(desk.pattern()->text(), QStringLiteral("a.c"));
    EXPECT_EQ(desk.pattern()->selectedText(), QStringLiteral("a.c"));
    desk.expect(u"[a.c] abc\na.c", "1 de 2");
    desk.press(Qt::Key_Escape);
    desk.page->select({4, 9});
    desk.press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(desk.pattern()->text(), QStringLiteral("a.c"));
    EXPECT_EQ(desk.page->selection(), SourceRange(4, 9));
    desk.press(Qt::Key_Escape);
    desk.named<QToolButton>("Expresión regular")->setChecked(true);
    desk.page->select({8, 11});
    desk.press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(desk.pattern()->text(), QStringLiteral("a\\.c"));
    desk.expect(u"a.c abc\n[a.c]", "2 de 2");
}

TEST(FindBar, HasOptions) {
    Desk desk(u"Uno uno unos");
    desk.press(Qt::Key_F, Qt::ControlModifier);
    desk.type("uno");
    desk.expect(u"[Uno] uno unos", "1 de 3");
    desk.click(desk.named<QToolButton>("Distinguir mayúsculas"));
    desk.expect(u"Uno [uno] unos", "1 de 2");
    desk.click(desk.named<QToolButton>("Palabras completas"));
    desk.expect(u"Uno [uno] unos", "1 de 1");
    desk.click(desk.named<QToolButton>("Distinguir mayúsculas"));
    desk.expect(u"[Uno] uno unos", "1 de 2");
    desk.click(desk.named<QToolButton>("Palabras completas"));
    desk.click(desk.named<QToolButton>("Expresión regular"));
    desk.pattern()->clear();
    desk.type("u.o\\w");
    desk.expect(u"Uno uno [unos]", "1 de 1");
    desk.type("(");
    desk.expect(u"|Uno uno unos", "Falta un paréntesis de cierre (posición 7)");
}

TEST(FindBar, StepsOverEmptyMatches) {
    Desk desk(u"ab\ncd\n");
    desk.named<QToolButton>("Expresión regular")->setChecked(true);
    desk.press(Qt::Key_F, Qt::ControlModifier);
    desk.type("$");
    desk.expect(u"ab|\ncd\n", "1 de 3");
    desk.press(Qt::Key_Return);
    desk.expect(u"ab\ncd|\n", "2 de 3");
    desk.press(Qt::Key_Return);
    desk.expect(u"ab\ncd\n|", "3 de 3");
    desk.press(Qt::Key_Return, Qt::ShiftModifier);
    desk.expect(u"ab\ncd|\n", "2 de 3");
}

TEST(FindBar, ReplacesOneAfterAnother) {
    Desk desk(u"uno dos uno");
    desk.press(Qt::Key_R, Qt::ControlModifier);
    desk.type("uno");
    desk.expect(u"[uno] dos uno", "1 de 2");
    desk.named<QLineEdit>("Reemplazar por")->setFocus();
    desk.type("1");
    desk.click(desk.button("Reemplazar"));
    desk.expect(u"1 dos [uno]", "1 de 1");
    EXPECT_EQ(desk.page->undo.undoActionName(), QStringLiteral("Reemplazar"));
    desk.press(Qt::Key_Return);
    desk.expect(u"1 dos 1|", "Sin resultados");
    desk.page->undo.undo();
    desk.page->undo.undo();
    EXPECT_EQ(desk.page->storage().text().units({0, 11}), u"uno dos uno");
}

TEST(FindBar, FindsBeforeItReplaces) {
    Desk desk(u"uno dos uno");
    desk.press(Qt::Key_H, Qt::ControlModifier);
    desk.type("uno");
    desk.expect(u"[uno] dos uno", "1 de 2");
    desk.page->select(SourceRange::empty(5));
    desk.click(desk.button("Reemplazar"));
    desk.expect(u"uno dos [uno]", "2 de 2");
    EXPECT_FALSE(desk.page->undo.canUndo());
}

TEST(FindBar, ReplacesAllAsOneStep) {
    Desk desk(u"ana=1 eva=2 fin");
    desk.named<QToolButton>("Expresión regular")->setChecked(true);
    desk.press(Qt::Key_R, Qt::ControlModifier);
    desk.type("(\\w+)=(\\d)");
    desk.named<QLineEdit>("Reemplazar por")->setText(QStringLiteral("\\2: \\1"));
    desk.page->select(SourceRange::empty(12));
    desk.click(desk.button("Reemplazar todo"));
    desk.expect(u"1: ana 2: eva |fin", "2 reemplazos");
    EXPECT_EQ(desk.page->undo.undoActionName(), QStringLiteral("Reemplazar todo"));
    desk.page->undo.undo();
    EXPECT_EQ(desk.page->storage().text().units({0, 15}), u"ana=1 eva=2 fin");
    EXPECT_FALSE(desk.page->undo.canUndo());
    EXPECT_TRUE(QTest::qWaitFor([&] { return desk.message() == "2 resultados"; }));
}

TEST(FindBar, TellsNoPlaceOfAMatchOnceTheTextHasChanged) {
    Desk desk(u"uno dos uno");
    desk.press(Qt::Key_F, Qt::ControlModifier);
    desk.type("uno");
    desk.expect(u"[uno] dos uno", "1 de 2");
    desk.page->select(SourceRange::empty(11));
    desk.page->storage().replaceCharacters(SourceRange::empty(11), std::u16string_view(u"x"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return desk.message() == "2 resultados"; }));
}

TEST(FindBar, ReplacesNothingWhenThereIsNothing) {
    Desk desk(u"uno");
    desk.press(Qt::Key_R, Qt::ControlModifier);
    desk.type("x");
    desk.expect(u"|uno", "Sin resultados");
    desk.click(desk.button("Reemplazar todo"));
    desk.expect(u"|uno", "Sin resultados");
    EXPECT_FALSE(desk.page->undo.canUndo());
}

TEST(FindBar, LetsReplacingAllBeCancelled) {
    std::u16string units;
    for (int line = 0; line < 3'000'000; ++line) {
        units += u"ab\n";
    }
    Desk desk(units);
    desk.named<QToolButton>("Expresión regular")->setChecked(true);
    desk.press(Qt::Key_R, Qt::ControlModifier);
    desk.pattern()->setText(QStringLiteral("(a)(b)"));
    desk.named<QLineEdit>("Reemplazar por")->setText(QStringLiteral("\\2\\1"));
    desk.click(desk.button("Reemplazar todo"));
    QPushButton* cancel = nullptr;
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            for (auto* button : desk.bar->findChildren<QPushButton*>()) {
                cancel = button->text() == QStringLiteral("Cancelar") ? button : cancel;
            }
            return cancel != nullptr;
        },
        20'000));
    EXPECT_EQ(desk.message(), "Reemplazando…");
    EXPECT_FALSE(desk.button("Reemplazar")->isEnabled());
    desk.click(cancel);
    EXPECT_EQ(desk.message(), "Reemplazo cancelado");
    EXPECT_EQ(cancel->text(), QStringLiteral("Reemplazar todo"));
    EXPECT_TRUE(desk.button("Reemplazar")->isEnabled());
    // Nothing comes of it later.
    desk.pattern()->setText(QStringLiteral("b$"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return desk.page->selection() == SourceRange(1, 2); }, 20'000));
    EXPECT_FALSE(desk.page->undo.canUndo());
}

TEST(FindBar, TellsWhenTheTextChangedUnderAReplacement) {
    Desk desk(u"uno dos");
    desk.press(Qt::Key_R, Qt::ControlModifier);
    desk.type("uno");
    desk.expect(u"[uno] dos", "1 de 1");
    desk.click(desk.button("Reemplazar todo"));
    desk.page->storage().replaceCharacters({7, 7}, u"!");
    EXPECT_EQ(desk.message(), "El texto ha cambiado y no se ha reemplazado nada");
    EXPECT_FALSE(desk.page->undo.canUndo());
}

TEST(FindBar, CountsAgainAfterEdits) {
    Desk desk(u"uno uno");
    desk.press(Qt::Key_F, Qt::ControlModifier);
    desk.type("uno");
    desk.expect(u"[uno] uno", "1 de 2");
    desk.page->storage().replaceCharacters({7, 7}, u" uno");
    desk.expect(u"[uno] uno uno", "1 de 3");
}

TEST(FindBar, ShowsTheSecondRowForReplacingOnly) {
    Desk desk(u"uno");
    auto* with = desk.named<QLineEdit>("Reemplazar por");
    desk.press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_FALSE(with->isVisible());
    desk.press(Qt::Key_H, Qt::ControlModifier);
    EXPECT_TRUE(with->isVisible());
    EXPECT_EQ(QApplication::focusWidget(), desk.pattern());
    desk.press(Qt::Key_Escape);
    desk.press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_FALSE(with->isVisible());
}

TEST(FindBar, NamesEverythingForScreenReaders) {
    const Desk desk(u"");
    for (const auto* button : desk.bar->findChildren<QToolButton*>()) {
        EXPECT_FALSE(button->accessibleName().isEmpty());
        EXPECT_FALSE(button->toolTip().isEmpty());
    }
    for (const auto* button : desk.bar->findChildren<QPushButton*>()) {
        EXPECT_FALSE(button->text().isEmpty());
        EXPECT_FALSE(button->toolTip().isEmpty());
    }
    for (const auto* field : desk.bar->findChildren<QLineEdit*>()) {
        EXPECT_FALSE(field->accessibleName().isEmpty());
        EXPECT_FALSE(field->toolTip().isEmpty());
    }
    for (const auto* command : desk.bar->commands()) {
        EXPECT_FALSE(command->text().isEmpty());
    }
}
