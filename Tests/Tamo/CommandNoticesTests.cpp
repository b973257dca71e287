#include "CommandNotices.h"

#include "DocumentDesk.h"
#include "EditorDocument.h"
#include "Repeated.h"
#include "WaitFor.h"

#include <algorithm>

namespace {

/// A window on a document, and its bar of notices.
struct Desk {
    DocumentController controller{std::make_unique<EditorDocumentType>()};
    DocumentWindow* window = controller.newDocument();
    EditorDocument& document = static_cast<EditorDocument&>(*window->document());
    EditorSession& session = document.session();
    TextBuffer& buffer = session.buffer();

    explicit Desk(std::u16string_view text) { buffer.type({}, text); }

    std::u16string text() const { return buffer.text().units(buffer.text().fullRange()); }

    /// What the bars that show say, one after the other.
    QString notice() const {
        QString all;
        for (const NoticeBar* bar : window->findChildren<NoticeBar*>()) {
            all += bar->text();
        }
        return all;
    }
    /// The button of a notice, null when none of that title shows.
    QPushButton* button(const QString& title) const {
        const auto buttons = window->findChildren<QPushButton*>();
        const auto found = std::ranges::find_if(
            buttons, [&](const QPushButton* each) { return each->text() == title && each->isVisible(); });
        return found != buttons.end() ? *found : nullptr;
    }
    void click(const QString& title) {
        ASSERT_TRUE(waitFor([&] { return button(title) != nullptr; }));
        button(title)->click();
    }
    void fixAll() {
        session.applyAllFixes();
        ASSERT_TRUE(waitFor([this] { return !session.fixTask().isRunning(); }));
    }
    ~Desk() {
        document.undoManager().setClean();
        window->close();
    }
};

const QString changedSpace = QStringLiteral("Se han cambiado espacios que pueden ser parte del texto.");

TEST(CommandNotices, TellOfChangedTextSpaceAndUndoIt) {
    const std::u16string_view text = u"<p>uno <b>dos</b></p>";
    Desk desk(text);
    desk.session.format();
    EXPECT_EQ(desk.notice(), changedSpace);
    desk.click(QStringLiteral("Deshacer"));
    EXPECT_EQ(desk.text(), text);
    EXPECT_TRUE(waitFor([&] { return desk.notice().isEmpty(); }));
    // Once a document.
    desk.session.minify();
    desk.session.format();
    EXPECT_EQ(desk.notice(), QString());
}

TEST(CommandNotices, OfferToUndoNothingElse) {
    Desk desk(u"<p>uno <b>dos</b></p>");
    desk.session.format();
    ASSERT_TRUE(waitFor([&] { return desk.button(QStringLiteral("Deshacer")) != nullptr; }));
    desk.buffer.type({0, 0}, u" ");
    EXPECT_TRUE(waitFor([&] { return desk.button(QStringLiteral("Deshacer")) == nullptr; }));
    EXPECT_EQ(desk.notice(), changedSpace);
    desk.document.undoManager().undo();
    desk.document.undoManager().undo();
    EXPECT_TRUE(waitFor([&] { return desk.notice().isEmpty(); }));
}

TEST(CommandNotices, SayNothingOfOtherLayouts) {
    Desk desk(u"<p><b>dos</b></p>");
    desk.session.format();
    EXPECT_EQ(desk.notice(), QString());
}

TEST(CommandNotices, SayHowManyProblemsAreLeft) {
    struct Row {
        std::u16string_view text;
        QString notice;
    };
    for (const Row& row : {
             Row{u"<a><b></a>", {}},
             Row{u"<a/>&<b/>", QStringLiteral("Quedan 2 problemas que Tamo no sabe corregir.")},
             Row{u"<a x='' x=''>", QStringLiteral("Queda 1 problema que Tamo no sabe corregir.")},
         }) {
        Desk desk(row.text);
        desk.fixAll();
        EXPECT_EQ(desk.notice(), row.notice);
        desk.buffer.type({0, 0}, u" ");
        EXPECT_TRUE(waitFor([&] { return desk.notice().isEmpty(); }));
    }
}

TEST(CommandNotices, LetALongRepairBeCancelled) {
    // Takes longer than anything is kept silent about.
    const std::u16string text = repeated(u"<abc>", 3'000'000);
    Desk desk(text);
    desk.session.applyAllFixes();
    ASSERT_TRUE(waitFor([&] { return desk.notice() == QStringLiteral("Corrigiendo…"); }));
    desk.click(QStringLiteral("Cancelar"));
    EXPECT_FALSE(desk.session.fixTask().isRunning());
    EXPECT_EQ(desk.notice(), QString());
    EXPECT_EQ(desk.buffer.text().size(), text.size());
}

} // namespace
