#include "ToolkitWords.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

TEST(ToolkitWords, GoesBeforeTheTranslationOfTheToolkit) {
    ToolkitWords words;
    QCoreApplication::installTranslator(&words);
    EXPECT_EQ(QCoreApplication::translate("QFileDialog", "File &name:"),
              QStringLiteral("&Nombre del archivo:"));
    EXPECT_EQ(QCoreApplication::translate("QFileDialog", "Go to the parent directory"),
              QStringLiteral("Ir a la carpeta superior"));
    EXPECT_EQ(QCoreApplication::translate("QFileSystemModel", "Date Modified"), QStringLiteral("Modificado"));
    QCoreApplication::removeTranslator(&words);
}

TEST(ToolkitWords, LeavesEverythingElseAlone) {
    ToolkitWords words;
    EXPECT_TRUE(words.translate("QFileDialog", "No such text", nullptr, -1).isNull());
    EXPECT_TRUE(words.translate("Other", "Open", nullptr, -1).isNull());
}
