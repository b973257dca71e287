#include "DocumentWindow.h"

#include "DocumentOutlineView.h"
#include "TreeParser.h"

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

/// A window on the screen over a file of its own.
struct Desk {
    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("prueba.xml"));
    std::unique_ptr<DocumentWindow> window;

    explicit Desk(const QByteArray& contents) {
        write(contents);
        auto document = XMLFileDocument::read(path);
        EXPECT_TRUE(document.has_value());
        window = std::make_unique<DocumentWindow>(std::move(*document), path);
        window->setAttribute(Qt::WA_DeleteOnClose, false);
        QSignalSpy parses(&window->session(), &EditorSession::treeChanged);
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
        EXPECT_TRUE(parses.count() != 0 || parses.wait(10'000));
    }

    void write(const QByteArray& contents) const {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }

    QByteArray read() const {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    TextView& source() const { return *window->findChild<TextView*>(); }
    DocumentOutlineView& outline() const { return *window->findChild<DocumentOutlineView*>(); }
    QListView& problems() const { return *window->findChild<QListView*>(); }

    void type(const char* text) const {
        for (const QChar character : QString::fromUtf8(text)) {
            QTest::simulateEvent(&source(), true, Qt::Key_unknown, Qt::NoModifier, character, false);
        }
    }
    void waitForParse() const {
        QSignalSpy parses(&window->session(), &EditorSession::treeChanged);
        EXPECT_TRUE(parses.wait(10'000));
    }

    bool shows(const char* text) const {
        const auto labels = window->findChildren<QLabel*>();
        return std::ranges::any_of(labels,
                                   [&](QLabel* label) { return label->text() == QString::fromUtf8(text); });
    }

    QAction* action(const char* text) const {
        for (QAction* each : window->findChildren<QAction*>()) {
            const QString shown =
                each->text().replace(QStringLiteral("&&"), QStringLiteral("\n")).remove(u'&');
            if (shown == QString::fromUtf8(text).replace(u'&', u'\n')) {
                return each;
            }
        }
        return nullptr;
    }
};

/// Answers the next message box with `button`, and keeps what it said.
class Answer {
public:
    explicit Answer(QMessageBox::StandardButton button) : m_button(button) {
        m_timer.callOnTimeout([this] { give(); });
        m_timer.start(0);
    }

    QString question;

private:
    void give() {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            m_timer.stop();
            question = box->text();
            EXPECT_EQ(box->textFormat(), Qt::PlainText);
            box->button(m_button)->click();
        }
    }

    QMessageBox::StandardButton m_button;
    QTimer m_timer;
};

} // namespace

TEST(DocumentWindow, ShowsTheDocument) {
    const Desk desk("<?xml version=\"1.0\"?>\r\n<a><b>uno</b></a>");
    EXPECT_EQ(desk.window->windowTitle(), QStringLiteral("prueba.xml[*] — Tamo"));
    EXPECT_FALSE(desk.window->isWindowModified());
    EXPECT_EQ(desk.outline().model()->rowCount(), 2);
    EXPECT_TRUE(desk.shows("Sin errores"));
    EXPECT_TRUE(desk.shows("CRLF"));
    EXPECT_TRUE(desk.shows("Unicode (UTF-8)"));
    EXPECT_TRUE(desk.shows("Línea 1, columna 1"));
    EXPECT_FALSE(desk.problems().isVisible());
}

TEST(DocumentWindow, NamesTheMarkOfTheFile) {
    const Desk desk("\xEF\xBB\xBF<a/>");
    EXPECT_TRUE(desk.shows("Unicode (UTF-8) (BOM)"));
}

TEST(DocumentWindow, SavesWhatIsTyped) {
    const Desk desk("<a/>\r\n\xC3\xB1");
    desk.type("x");
    EXPECT_TRUE(desk.window->isWindowModified());
    EXPECT_TRUE(desk.shows("Línea 1, columna 2"));
    EXPECT_TRUE(desk.window->save());
    EXPECT_FALSE(desk.window->isWindowModified());
    EXPECT_EQ(desk.read(), "x<a/>\r\n\xC3\xB1");
}

TEST(DocumentWindow, UndoesAndRedoesByName) {
    const Desk desk("<a/>");
    EXPECT_FALSE(desk.action("Deshacer")->isEnabled());
    desk.type("xy");
    QAction* const undo = desk.action("Deshacer Escribir");
    ASSERT_NE(undo, nullptr);
    undo->trigger();
    EXPECT_EQ(desk.source().text(), Rope(u"<a/>"));
    EXPECT_FALSE(desk.window->isWindowModified());
    EXPECT_FALSE(undo->isEnabled());
    QAction* const redo = desk.action("Rehacer Escribir");
    ASSERT_NE(redo, nullptr);
    redo->trigger();
    EXPECT_EQ(desk.source().text(), Rope(u"xy<a/>"));
    EXPECT_TRUE(desk.window->isWindowModified());
}

TEST(DocumentWindow, FollowsTheTextInOutlineAndProblems) {
    const Desk desk("<a/>");
    QTest::keyClick(&desk.source(), Qt::Key_End);
    desk.type("<b>&");
    desk.waitForParse();
    EXPECT_EQ(desk.outline().model()->rowCount(), 2);
    EXPECT_TRUE(desk.problems().isVisible());
    const QAbstractItemModel& model = *desk.problems().model();
    ASSERT_EQ(model.rowCount(), 3);
    EXPECT_TRUE(desk.shows("3 errores"));

    desk.source().selectAll();
    QTest::keyClick(&desk.source(), Qt::Key_Delete);
    desk.type("<a/>");
    desk.waitForParse();
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_TRUE(desk.shows("Sin errores"));
}

TEST(DocumentWindow, CountsErrorsAndWarnings) {
    EXPECT_TRUE(Desk("<a>&</a>").shows("1 error"));
    EXPECT_TRUE(Desk("<a/>b").shows("1 advertencia"));
    EXPECT_TRUE(Desk("<a>&&</a>b").shows("2 errores, 1 advertencia"));
}

TEST(DocumentWindow, GoesToTheChosenNode) {
    const Desk desk("<a>\n<b x='1'>uno</b></a>");
    QAbstractItemModel* const model = desk.outline().model();
    desk.outline().setCurrentIndex(model->index(0, 0, model->index(0, 0)));
    EXPECT_EQ(desk.source().selection(), SourceRange(4, 13));
    // The tree is older than the text now, and the node a little further on.
    desk.source().select(SourceRange::empty(0));
    desk.type("xyz");
    desk.outline().setCurrentIndex(model->index(0, 0));
    desk.outline().setCurrentIndex(model->index(0, 0, model->index(0, 0)));
    EXPECT_EQ(desk.source().selection(), SourceRange(7, 16));
}

TEST(DocumentWindow, GoesToAProblemAndMendsIt) {
    const Desk desk("<a>\nuno & dos</a>");
    const QModelIndex row = desk.problems().model()->index(0, 0);
    const QPoint place = desk.problems().visualRect(row).center();
    QTest::mouseClick(desk.problems().viewport(), Qt::LeftButton, {}, place);
    EXPECT_EQ(desk.source().selection(), SourceRange(8, 9));
    QTest::mouseDClick(desk.problems().viewport(), Qt::LeftButton, {}, place);
    EXPECT_EQ(desk.source().text(), Rope(u"<a>\nuno &amp; dos</a>"));
    desk.waitForParse();
    EXPECT_EQ(desk.problems().model()->rowCount(), 0);
    const QString title = QString::fromStdU16String(
        TreeParser::parse(SourceText(u"<a>&</a>")).diagnostics[0].fix.value().title);
    EXPECT_NE(desk.action(qUtf8Printable(QStringLiteral("Deshacer ") + title)), nullptr);
}

TEST(DocumentWindow, AsksBeforeItClosesAnEditedDocument) {
    Desk desk("<a/>");
    desk.type("x");
    {
        Answer answer(QMessageBox::Cancel);
        EXPECT_FALSE(desk.window->close());
        EXPECT_EQ(answer.question, QStringLiteral("¿Guardar los cambios en «prueba.xml»?"));
    }
    {
        Answer answer(QMessageBox::Discard);
        EXPECT_TRUE(desk.window->close());
    }
    EXPECT_EQ(desk.read(), "<a/>");
}

TEST(DocumentWindow, SavesWhenAskedToBeforeClosing) {
    Desk desk("<a/>");
    desk.type("x");
    Answer answer(QMessageBox::Save);
    EXPECT_TRUE(desk.window->close());
    EXPECT_EQ(desk.read(), "x<a/>");
}

TEST(DocumentWindow, SaysWhyItCannotSave) {
    const QByteArray contents("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<a>\xF1</a>");
    Desk desk(contents);
    desk.type("€");
    Answer answer(QMessageBox::Ok);
    EXPECT_FALSE(desk.window->save());
    EXPECT_TRUE(answer.question.contains(QStringLiteral("€"))) << answer.question.toStdString();
    EXPECT_TRUE(desk.window->isWindowModified());
    EXPECT_EQ(desk.read(), contents);
}

TEST(DocumentWindow, IsPristineUntilTouched) {
    DocumentWindow window(std::make_unique<XMLFileDocument>(), {});
    window.setAttribute(Qt::WA_DeleteOnClose, false);
    EXPECT_TRUE(window.isPristine());
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Sin título[*] — Tamo"));
    QTest::keyClick(window.findChild<TextView*>(), Qt::Key_X);
    EXPECT_FALSE(window.isPristine());
    EXPECT_FALSE(Desk("").window->isPristine());
}
