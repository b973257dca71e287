#include "TemplateGalleryView.h"

#include "DocumentTemplate.h"
#include "ParsedDesk.h"
#include "Symbol.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QPushButton>

namespace {

struct Desk : ParsedDesk {
    TemplateGalleryView gallery{session};
    QSignalSpy requests{&gallery, &TemplateGalleryView::textRequested};

    Desk() : ParsedDesk(u"") {
        gallery.resize(900, 600);
        gallery.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&gallery));
        gallery.setFocus();
    }
};

} // namespace

TEST(TemplateGalleryView, OffersEveryTemplateInOrder) {
    Desk desk;
    QStringList titles;
    for (const QAbstractButton* card : desk.gallery.cards()) {
        titles += card->text();
    }
    EXPECT_EQ(titles, (QStringList{QStringLiteral("Básico"), QStringLiteral("Solo declaración"),
                                   QStringLiteral("SVG"), QStringLiteral("Property List"), QStringLiteral("RSS")}));
    QStringList texts;
    for (const QLabel* label : desk.gallery.findChildren<QLabel*>()) {
        texts += label->text();
    }
    EXPECT_EQ(texts, (QStringList{QStringLiteral("Nuevo documento XML"),
                                  QStringLiteral("Elige un punto de partida o empieza a escribir.")}));
    EXPECT_EQ(desk.gallery.blankButton()->text(), QStringLiteral("Empezar en blanco"));
    for (const DocumentTemplate& each : DocumentTemplate::catalogue()) {
        EXPECT_TRUE(Symbol::has(QStringView(each.symbol)));
    }
}

TEST(TemplateGalleryView, StartsFromTheCardThatIsChosen) {
    Desk desk;
    QTest::mouseClick(desk.gallery.cards()[2], Qt::LeftButton);
    const auto text = DocumentTemplate::catalogue()[2].text;
    EXPECT_EQ(desk.text().toStdU16String(), text);
    EXPECT_EQ(desk.undo.undoActionName(), QStringLiteral("Plantilla"));
    desk.undo.undo();
    desk.gallery.cards()[0]->setFocus();
    QTest::keyClick(desk.gallery.cards()[0], Qt::Key_Space);
    EXPECT_EQ(desk.text().toStdU16String(), DocumentTemplate::catalogue()[0].text);
}

TEST(TemplateGalleryView, PassesWhatIsTypedOn) {
    Desk desk;
    QTest::keyClicks(&desk.gallery, QStringLiteral("<"));
    ASSERT_EQ(desk.requests.count(), 1);
    EXPECT_EQ(desk.requests.takeFirst().first().toString(), QStringLiteral("<"));
    desk.gallery.cards()[1]->setFocus();
    QTest::keyClicks(desk.gallery.cards()[1], QStringLiteral("a"));
    ASSERT_EQ(desk.requests.count(), 1);
    EXPECT_EQ(desk.requests.takeFirst().first().toString(), QStringLiteral("a"));
    QTest::keyClick(&desk.gallery, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&desk.gallery, Qt::Key_Escape);
    QTest::keyClick(&desk.gallery, Qt::Key_F5);
    EXPECT_EQ(desk.requests.count(), 0);
}

TEST(TemplateGalleryView, LeadsTheTabKeyFromCardToCard) {
    Desk desk;
    for (QAbstractButton* const card : desk.gallery.cards()) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget(), card) << qUtf8Printable(card->text());
    }
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), desk.gallery.blankButton());
}

TEST(TemplateGalleryView, OffersABlankPage) {
    Desk desk;
    QTest::mouseClick(desk.gallery.blankButton(), Qt::LeftButton);
    ASSERT_EQ(desk.requests.count(), 1);
    EXPECT_EQ(desk.requests.first().first().toString(), QString());
}

TEST(TemplateGalleryView, FitsTheCardsToItsWidth) {
    Desk desk;
    const auto columns = [&] {
        QCoreApplication::processEvents();
        std::set<int> lefts;
        for (const QAbstractButton* card : desk.gallery.cards()) {
            lefts.insert(card->x());
        }
        return lefts.size();
    };
    EXPECT_EQ(columns(), 5U);
    desk.gallery.resize(420, 600);
    EXPECT_EQ(columns(), 2U);
    desk.gallery.resize(1600, 600);
    EXPECT_EQ(columns(), 5U) << "the page has a widest width";
    const QAbstractButton* const card = desk.gallery.cards()[1];
    EXPECT_EQ(card->x() - desk.gallery.cards()[0]->geometry().right() - 1, 14);
}
