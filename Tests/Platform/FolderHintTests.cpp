#include "FolderHint.h"

#include <gtest/gtest.h>

TEST(FolderHint, IsTheShortestEndThatNoOtherFolderHas) {
    struct Row {
        QString path;
        QStringList others;
        QString hint;
    };
    const auto text = [](const char* units) { return QString::fromUtf8(units); };
    for (const Row& row : {
             Row{text("/x/a.xml"), {}, text("")},
             Row{text("/x/uno/a.xml"), {text("/x/dos/a.xml")}, text("uno")},
             Row{text("/x/uno/datos/a.xml"), {text("/x/dos/datos/a.xml")}, text("uno/datos")},
             Row{text("/x/uno/datos/a.xml"), {text("/x/dos/a.xml"), text("/x/dos/datos/a.xml")}, text("uno/datos")},
             Row{text("/datos/a.xml"), {text("/x/datos/a.xml")}, text("/datos")},
             Row{text("/x/datos/a.xml"), {text("/datos/a.xml")}, text("/x/datos")},
             Row{text("/a.xml"), {text("/x/a.xml")}, text("/")},
             Row{text("/x/a.xml"), {text("/x/a.xml")}, text("/x")},
         }) {
        EXPECT_EQ(FolderHint::of(row.path, row.others).toStdString(), row.hint.toStdString());
    }
}
