#include "ToolkitTexts.h"

#include <QCoreApplication>
#include <QKeySequence>
#include <QLibraryInfo>

#include <gtest/gtest.h>

namespace {

/// The translations of the program, in its order, as long as a test runs.
class Installed {
public:
    Installed() {
        EXPECT_TRUE(
            m_toolkit.load(QStringLiteral("qtbase_es"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)));
        QCoreApplication::installTranslator(&m_toolkit);
        QCoreApplication::installTranslator(&m_own);
    }
    ~Installed() {
        QCoreApplication::removeTranslator(&m_own);
        QCoreApplication::removeTranslator(&m_toolkit);
    }

private:
    QTranslator m_toolkit;
    ToolkitTexts m_own;
};

std::string keys(const QKeySequence& sequence) {
    return sequence.toString(QKeySequence::NativeText).toStdString();
}

} // namespace

TEST(ToolkitTexts, NamesKeysAsTheyAreWrittenOnThem) {
    const Installed texts;
    EXPECT_EQ(keys(Qt::CTRL | Qt::SHIFT | Qt::Key_S), "Ctrl+Mayús+S");
    EXPECT_EQ(keys(Qt::CTRL | Qt::Key_Return), "Ctrl+Intro");
    EXPECT_EQ(keys(Qt::ALT | Qt::Key_Enter), "Alt+Intro");
    EXPECT_EQ(keys(Qt::Key_Delete), "Supr");
    EXPECT_EQ(keys(Qt::Key_Escape), "Esc");
    EXPECT_EQ(keys(Qt::CTRL | Qt::ALT | Qt::Key_Up), "Ctrl+Alt+Arriba");
}

TEST(ToolkitTexts, SayTuAndArchivo) {
    const Installed texts;
    EXPECT_EQ(QCoreApplication::translate("QFileDialog", "%1 already exists.\nDo you want to replace it?"),
              QStringLiteral("“%1” ya existe.\n¿Quieres reemplazarlo?"));
    EXPECT_EQ(QCoreApplication::translate("QFileDialog", "File &name:"),
              QStringLiteral("&Nombre del archivo:"));
    EXPECT_EQ(QCoreApplication::translate("QFileSystemModel", "Date Modified"), QStringLiteral("Modificado"));
}

TEST(ToolkitTexts, LeaveTheOthersToTheToolkit) {
    const Installed texts;
    EXPECT_EQ(QCoreApplication::translate("QShortcut", "Up"), QStringLiteral("Arriba"));
    EXPECT_EQ(QCoreApplication::translate("QPlatformTheme", "Cancel"), QStringLiteral("Cancelar"));
    EXPECT_EQ(QCoreApplication::translate("QFileDialog", "Shift"), QStringLiteral("Shift"));
}
