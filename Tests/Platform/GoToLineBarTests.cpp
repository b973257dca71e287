#include "GoToLineBar.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace {

/// A text with a caret, and no more of a view than the bar needs.
class Page : public QWidget, public FindBarClient {
public:
    explicit Page(std::u16string_view units) : m_storage(Rope(units)) { setFocusPolicy(Qt::StrongFocus); }

    TextStorage& storage() override { return m_storage; }
    SourceRange selection() const override { return m_selection; }
    void select(SourceRange range) override { m_selection = range; }
    void replace(SourceRange, const Rope&, const QString&, Offset) override { ADD_FAILURE(); }
    void setMatches(Matches) override { ADD_FAILURE(); }
    void focus() override { setFocus(); }

private:
    TextStorage m_storage;
    SourceRange m_selection;
};

struct Desk {
    QWidget window;
    Page* page;
    GoToLineBar* bar;
    QLineEdit* field;

    explicit Desk(std::u16string_view units)
        : page(new Page(units)), bar(new GoToLineBar(*page)), field(bar->findChild<QLineEdit*>()) {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(bar);
        layout->addWidget(page, 1);
        window.addActions(bar->commands());
        window.show();
        page->setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    void ask() { QTest::keyClick(page, Qt::Key_L, Qt::ControlModifier); }
    void answer(const char* place) {
        QTest::keyClicks(field, QString::fromUtf8(place));
        QTest::keyClick(field, Qt::Key_Return);
    }
};

} // namespace

TEST(GoToLineBar, UnderstandsLinesAndColumns) {
    const Rope text(u"uno\ndos 😀\r\n\ncuatro");
    const struct {
        const char* written;
        std::optional<Offset> place;
    } rows[] = {
        {"1", 0},
        {"2", 4},
        {" 3 ", 12},
        {"4", 13},
        {"5", 13},
        {"0", 0},
        {"2:1", 4},
        {"2:3", 6},
        {"2:6", 8},
        {"2:7", 10},
        {"2:99", 10},
        {"3:1", 12},
        {"3:9", 12},
        {"4:0", 13},
        {"4:7", 19},
        {"2 : 2", 5},
        {"", {}},
        {"dos", {}},
        {"-1", {}},
        {"2:", {}},
        {"1:2:3", {}},
        {":3", {}},
        {"1.5", {}},
        {"99999999999999999999", 13},
        {"1:99999999999999999999", 3},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(GoToLineBar::place(QString::fromUtf8(row.written), text), row.place) << row.written;
    }
    EXPECT_EQ(GoToLineBar::place(QStringLiteral("7:7"), Rope()), 0U);
}

TEST(GoToLineBar, PutsTheCaretThereAndGoes) {
    Desk desk(u"uno\ndos\ntres");
    desk.page->select(SourceRange::empty(5));
    desk.ask();
    EXPECT_EQ(QApplication::focusWidget(), desk.field);
    EXPECT_EQ(desk.field->selectedText(), QStringLiteral("2"));
    desk.answer("3:2");
    EXPECT_EQ(desk.page->selection(), SourceRange(9, 9));
    EXPECT_FALSE(desk.bar->isVisible());
    EXPECT_EQ(QApplication::focusWidget(), desk.page);
}

TEST(GoToLineBar, AsksAgainForWhatIsNoPlace) {
    Desk desk(u"uno\ndos");
    desk.ask();
    desk.answer("dos");
    EXPECT_TRUE(desk.bar->isVisible());
    EXPECT_EQ(desk.page->selection(), SourceRange(0, 0));
    const auto labels = desk.bar->findChildren<QLabel*>();
    EXPECT_EQ(labels.last()->text(), QStringLiteral("Escribe una línea, o una línea y una columna: 12:5"));
    desk.answer("2");
    EXPECT_EQ(desk.page->selection(), SourceRange(4, 4));
}

TEST(GoToLineBar, CancelsWithEscape) {
    Desk desk(u"uno\ndos");
    desk.page->select({1, 2});
    desk.ask();
    QTest::keyClicks(desk.field, QStringLiteral("2"));
    QTest::keyClick(desk.field, Qt::Key_Escape);
    EXPECT_FALSE(desk.bar->isVisible());
    EXPECT_EQ(desk.page->selection(), SourceRange(1, 2));
    EXPECT_EQ(QApplication::focusWidget(), desk.page);
    desk.ask();
    QTest::mouseClick(desk.bar->findChild<QToolButton*>(), Qt::LeftButton);
    EXPECT_FALSE(desk.bar->isVisible());
}
