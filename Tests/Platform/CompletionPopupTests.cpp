#include "CompletionPopup.h"

#include "TextDesk.h"

#include <QSignalSpy>

namespace {

struct Words : TextViewDelegate {
    QStringList all = {"alfa", "alba", "beta"};
    SourceRange asked;

    QStringList known;
    const TextView* view = nullptr;
    QStringList completions(SourceRange partialWord) override {
        asked = partialWord;
        const QString typed = QString::fromStdU16String(view->text().units(partialWord));
        QStringList fitting;
        for (const QString& word : all) {
            if (word.startsWith(typed) && word != typed) {
                fitting += word;
            }
        }
        return fitting;
    }
};

struct CompletingDesk : TextDesk {
    Words words;
    explicit CompletingDesk(std::u16string_view units) : TextDesk(units) {
        words.view = &view;
        view.setDelegate(&words);
        view.select(SourceRange::empty(storage.text().size()));
    }
    ~CompletingDesk() { view.setDelegate(nullptr); }
    CompletionPopup* popup() const { return view.findChild<CompletionPopup*>(); }
    bool isOffering() const { return popup() != nullptr && popup()->isVisible(); }
};

} // namespace

TEST(CompletionPopup, OffersWhatTheDelegateKnows) {
    CompletingDesk desk(u"<a al");
    desk.press(Qt::Key_Space, Qt::ControlModifier);
    ASSERT_TRUE(desk.isOffering());
    EXPECT_EQ(desk.words.asked, SourceRange(3, 5));
    EXPECT_EQ(desk.popup()->model()->rowCount(), 2);
    desk.press(Qt::Key_Down);
    desk.press(Qt::Key_Return);
    EXPECT_FALSE(desk.isOffering());
    EXPECT_EQ(desk.shown(), u"<a alba|");
    desk.undo.undo();
    EXPECT_EQ(desk.shown(), u"<a al|");
}

TEST(CompletionPopup, NarrowsWhileTypingAndTakesTab) {
    CompletingDesk desk(u"");
    desk.press(Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(desk.popup()->model()->rowCount(), 3);
    desk.type("alb");
    ASSERT_TRUE(desk.isOffering());
    EXPECT_EQ(desk.popup()->model()->rowCount(), 1);
    desk.press(Qt::Key_Tab);
    EXPECT_EQ(desk.shown(), u"alba|");
}

TEST(CompletionPopup, LeavesWithEscapeAMoveOrNoFittingWord) {
    CompletingDesk desk(u"al");
    const auto offer = [&] {
        desk.press(Qt::Key_Space, Qt::ControlModifier);
        EXPECT_TRUE(desk.isOffering());
    };
    offer();
    desk.press(Qt::Key_Escape);
    EXPECT_FALSE(desk.isOffering());
    offer();
    desk.press(Qt::Key_Left);
    EXPECT_FALSE(desk.isOffering());
    desk.press(Qt::Key_End);
    offer();
    desk.type("z");
    EXPECT_FALSE(desk.isOffering());
    EXPECT_EQ(desk.shown(), u"alz|");
}

TEST(CompletionPopup, ShowsAThousandWordsAtMost) {
    QWidget window;
    window.show();
    CompletionPopup popup(&window);
    QStringList many;
    for (int i = 0; i < 5000; ++i) {
        many += QString::number(i);
    }
    popup.offer(many, {10, 10, 2, 16});
    EXPECT_TRUE(popup.isVisible());
    EXPECT_EQ(popup.model()->rowCount(), 1000);
    popup.offer({}, {});
    EXPECT_FALSE(popup.isVisible());
}
