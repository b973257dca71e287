#include "EncodingCommands.h"

#include "DocumentDesk.h"
#include "EditorDocument.h"
#include "EncodingList.h"
#include "ReopenEncodingDialog.h"
#include "SaveEncodingDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QPlainTextEdit>
#include <QTimer>

#include <functional>
#include <string_view>

using namespace std::string_literals;

namespace {

/// A window on a file of XML, and what its user does.
class Desk {
public:
    explicit Desk(std::string_view bytes) { write(bytes); }

    QString path() const { return m_folder.filePath(QStringLiteral("a.xml")); }

    void write(std::string_view bytes) const {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes.data(), static_cast<qint64>(bytes.size()));
    }
    std::string bytes() const {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "missing";
    }

    DocumentWindow& window() {
        if (m_window == nullptr) {
            QSignalSpy opened(&m_controller, &DocumentController::windowOpened);
            m_controller.open({path()});
            EXPECT_TRUE(opened.count() == 1 || opened.wait(10'000));
            m_window = opened.takeFirst().first().value<DocumentWindow*>();
        }
        return *m_window;
    }
    EditorDocument& document() { return *static_cast<EditorDocument*>(window().document()); }
    EncodingCommands& commands() {
        window();
        return *document().encodingCommands();
    }
    QString text() {
        const Rope& text = document().storage().text();
        return QString::fromStdU16String(text.units(text.fullRange()));
    }
    QString encodingName() { return document().session().encodingName(); }

    void type(Offset at, const QString& units) {
        const TextEdit edit = TextEdit::insert(units.toStdU16String(), at);
        document().file().buffer().apply(std::span(&edit, 1), QStringLiteral("Escribir"));
    }
    bool waitForText(const QString& expected) {
        return QTest::qWaitFor([&] { return text() == expected; }, 10'000);
    }
    /// Saves, and waits until that is done.
    void save() {
        QSignalSpy ended(&window(), &DocumentWindow::savingEnded);
        window().save();
        EXPECT_TRUE(!window().isSaving() || ended.count() == 1 || ended.wait(10'000));
    }
    QString notice() {
        for (const NoticeBar* const bar : window().findChildren<NoticeBar*>()) {
            if (bar->isVisible()) {
                return bar->text();
            }
        }
        return {};
    }

private:
    QTemporaryDir m_folder;
    DocumentController m_controller{std::make_unique<EditorDocumentType>()};
    DocumentWindow* m_window = nullptr;
};

/// Has the next dialog of a kind filled in by `act` and accepted.
template <class Dialog>
class Accept : public QObject {
public:
    explicit Accept(std::function<void(Dialog&)> act) : m_act(std::move(act)) { startTimer(10); }

    bool isDone() const { return m_isDone; }

protected:
    void timerEvent(QTimerEvent*) override {
        auto* const dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
        if (dialog != nullptr && !m_isDone) {
            m_isDone = true;
            m_act(*dialog);
            dialog->accept();
        }
    }

private:
    std::function<void(Dialog&)> m_act;
    bool m_isDone = false;
};

template <class Dialog>
void choose(Dialog& dialog, const char* encoding) {
    dialog.template findChild<EncodingList*>()->choose(*StringEncoding::named(encoding));
}

const std::string spanish = "<a>ca\xF1\xF3n</a>\r\n";
const QString spanishText = QStringLiteral("<a>cañón</a>\r\n");

} // namespace

TEST(EncodingCommands, ReadsTheFileInAnotherEncoding) {
    Desk desk("<a>\x83\x65\x83\x58</a>");
    EXPECT_TRUE(desk.text().startsWith(QStringLiteral("<a>\u0083")));
    Accept<ReopenEncodingDialog> accept([](ReopenEncodingDialog& dialog) {
        choose(dialog, "Shift_JIS");
        EXPECT_EQ(dialog.findChild<QPlainTextEdit*>()->toPlainText(), QStringLiteral("<a>テス</a>\n"));
    });
    desk.commands().reopen();
    ASSERT_TRUE(desk.waitForText(QStringLiteral("<a>テス</a>")));
    EXPECT_EQ(desk.encodingName(), QStringLiteral("Japonés (Shift JIS)"));
    EXPECT_FALSE(desk.window().isWindowModified());
    EXPECT_EQ(desk.document().undoManager().undoActionName(),
              QStringLiteral("Volver a abrir con la codificación"));
    desk.document().undoManager().undo();
    EXPECT_EQ(desk.encodingName(), QStringLiteral("Occidental (ISO Latin 1)"));
    EXPECT_EQ(desk.document().file().encode(desk.document().file().snapshot()), "<a>\x83\x65\x83\x58</a>");
}

TEST(EncodingCommands, AsksBeforeChangesGo) {
    Desk desk(spanish);
    desk.type(desk.window().document()->storage().text().size(), QStringLiteral("<!-- x -->"));
    const Answer answer(QStringLiteral("Cancelar"));
    desk.commands().reopen();
    EXPECT_EQ(answer.question(), QStringLiteral("¿Volver a abrir “a.xml” con otra codificación?"));
    EXPECT_EQ(desk.text(), spanishText + QStringLiteral("<!-- x -->"));
}

TEST(EncodingCommands, KeepsTheChosenEncodingWhenTheFileChangesOutside) {
    Desk desk(spanish);
    Accept<ReopenEncodingDialog> accept([](ReopenEncodingDialog& dialog) { choose(dialog, "ibm-850"); });
    desk.commands().reopen();
    ASSERT_TRUE(desk.waitForText(QStringLiteral("<a>ca±¾n</a>\r\n")));
    desk.write("<b>ca\xF1\xF3n</b>");
    desk.window().revert();
    EXPECT_TRUE(desk.waitForText(QStringLiteral("<b>ca±¾n</b>")));
}

TEST(EncodingCommands, SavesInAnotherEncodingWithLineEndsMarkAndDeclaration) {
    Desk desk("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\r\n" + spanish);
    desk.window();
    QSignalSpy saved(&desk.window(), &DocumentWindow::saved);
    Accept<SaveEncodingDialog> accept([](SaveEncodingDialog& dialog) {
        choose(dialog, "UTF-8");
        dialog.findChild<QCheckBox*>()->setChecked(true);
        dialog.findChild<QComboBox*>()->setCurrentIndex(1);
    });
    desk.commands().save();
    ASSERT_TRUE(saved.count() == 1 || saved.wait(10'000));
    EXPECT_EQ(desk.bytes(),
              "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>ca\xC3\xB1\xC3\xB3n</a>\n");
    EXPECT_EQ(desk.encodingName(), QStringLiteral("Unicode (UTF-8) (BOM)"));
    EXPECT_FALSE(desk.window().isWindowModified());
    desk.document().undoManager().undo();
    EXPECT_EQ(desk.encodingName(), QStringLiteral("Occidental (ISO Latin 1)"));
    desk.save();
    EXPECT_EQ(desk.bytes(), "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\r\n" + spanish)
        << "one step of undo";
}

TEST(EncodingCommands, WritesUTF16WithAMarkAndNothingElse) {
    Desk desk("<a/>\n");
    QSignalSpy saved(&desk.window(), &DocumentWindow::saved);
    Accept<SaveEncodingDialog> accept([](SaveEncodingDialog& dialog) {
        choose(dialog, "UTF-16BE");
        EXPECT_TRUE(dialog.findChild<QCheckBox*>()->isChecked());
        EXPECT_FALSE(dialog.findChild<QCheckBox*>()->isEnabled());
    });
    desk.commands().save();
    ASSERT_TRUE(saved.count() == 1 || saved.wait(10'000));
    EXPECT_EQ(desk.bytes(), "\xFE\xFF\0<\0a\0/\0>\0\n"s);
}

TEST(EncodingCommands, ChangesNothingWhereACharacterIsMissing) {
    Desk desk("<a>\xE2\x82\xAC</a>");
    desk.window();
    Accept<SaveEncodingDialog> accept([](SaveEncodingDialog& dialog) { choose(dialog, "ISO-8859-1"); });
    const Answer answer(QStringLiteral("Cancelar"));
    desk.commands().save();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !answer.question().isEmpty(); }, 10'000));
    EXPECT_TRUE(answer.question().contains(QStringLiteral("“€” (U+20AC) de la línea 1")))
        << qPrintable(answer.question());
    EXPECT_EQ(desk.text(), QStringLiteral("<a>€</a>"));
    EXPECT_EQ(desk.encodingName(), QStringLiteral("Unicode (UTF-8)"));
    EXPECT_FALSE(desk.document().undoManager().canUndo());
}

TEST(EncodingCommands, OffersUTF8AfterACharacterThatTheEncodingLacks) {
    Desk desk("<?xml version=\"1.0\" encoding=\"windows-1252\"?>\n<a>\x80</a>");
    desk.window();
    desk.type(desk.document().storage().text().size(), QStringLiteral("<!-- 漢 -->"));
    const Answer answer(QStringLiteral("Guardar en UTF-8"));
    QSignalSpy saved(&desk.window(), &DocumentWindow::saved);
    desk.window().save();
    ASSERT_TRUE(saved.count() == 1 || saved.wait(10'000));
    EXPECT_EQ(desk.bytes(),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>\xE2\x82\xAC</a><!-- \xE6\xBC\xA2 -->");
    EXPECT_FALSE(desk.window().isWindowModified());
}

TEST(EncodingCommands, AsksWhichHoldsWhereDeclarationAndFileWouldDiffer) {
    const QString declaration = QStringLiteral("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n");
    struct Row {
        const char* button;
        std::string bytes;
    };
    const std::string rest = "<a>ca\xC3\xB1\xC3\xB3n</a>";
    for (const Row& row :
         {Row{"Declarar UTF-8", "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + rest},
          Row{"Guardar en ISO-8859-1", "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<a>ca\xF1\xF3n</a>"},
          Row{"Guardar tal cual", "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n" + rest},
          Row{"Cancelar", rest}}) {
        Desk desk(rest);
        desk.window();
        desk.type(0, declaration);
        {
            const Answer answer(QString::fromUtf8(row.button));
            desk.save();
            EXPECT_EQ(
                answer.question(),
                QStringLiteral(
                    "“a.xml” declara la codificación “ISO-8859-1”, pero se guardaría en Unicode (UTF-8)."));
        }
        EXPECT_EQ(desk.bytes(), row.bytes) << row.button;
        EXPECT_EQ(desk.window().isWindowModified(), row.bytes == rest);
        if (row.bytes != rest) {
            // Nothing is asked twice.
            desk.type(desk.document().storage().text().size(), QStringLiteral("\n"));
            desk.save();
            EXPECT_EQ(desk.bytes(), row.bytes + "\n") << row.button;
        }
    }
}

TEST(EncodingCommands, ReadsAFileThatWasSavedAsItIsInItsEncoding) {
    Desk desk("<a>ca\xC3\xB1\xC3\xB3n</a>");
    desk.window();
    desk.type(0, QStringLiteral("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n"));
    const QString text = desk.text();
    const Answer answer(QStringLiteral("Guardar tal cual"));
    desk.save();
    desk.window().revert();
    QTest::qWait(100);
    EXPECT_EQ(desk.text(), text);
    EXPECT_EQ(desk.encodingName(), QStringLiteral("Unicode (UTF-8)"));
}

TEST(EncodingCommands, TellsWhatHadToBeAssumed) {
    {
        Desk desk("<?xml version=\"1.0\" encoding=\"foo-1\"?><a/>");
        desk.window();
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return desk.notice().contains(QStringLiteral("“foo-1”, que no se conoce")); }));
    }
    {
        Desk desk("<?xml version=\"1.0\" encoding=\"UTF-8\"?><a>\xF1</a>");
        desk.window();
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return desk.notice().contains(QStringLiteral("hay bytes que no son Unicode (UTF-8)")); }));
    }
    {
        Desk desk("<?xml version=\"1.0\" encoding=\"UTF-8\"?><a/>");
        desk.window();
        QTest::qWait(50);
        EXPECT_EQ(desk.notice(), QString());
    }
}

TEST(EncodingCommands, GivesBackUntouchedFilesByteForByte) {
    for (const std::string& bytes :
         {"<?xml version=\"1.0\" encoding=\"Shift_JIS\"?>\r\n<a>\x83\x65\x83\x58\\</a>"s,
          "<?xml version=\"1.0\" encoding=\"windows-1252\"?><a>\x80</a>"s, "\xFF\xFE<\0a\0/\0>\0"s,
          "\xEF\xBB\xBF<a/>\r\n"s, "<?xml version=\"1.0\" encoding=\"UTF-16\"?><a>\xC3\xB1</a>"s}) {
        Desk desk(bytes);
        desk.window();
        const Answer answer(QStringLiteral("Guardar tal cual"));
        desk.save();
        EXPECT_EQ(desk.bytes(), bytes);
    }
}
