#include "ShownName.h"

#include "FilePath.h"

#include <gtest/gtest.h>

TEST(ShownName, ReplacesWhatWouldNotShowOrTurnTheOrder) {
    struct Row {
        QString path;
        QString name;
    };
    for (const Row& row : {
             Row{QStringLiteral("/a/cañón 中文 ملف.xml"), QStringLiteral("cañón 中文 ملف.xml")},
             Row{QStringLiteral("factura\u202Elmx.exe"), QStringLiteral("factura\u2B1Almx.exe")},
             Row{QStringLiteral("a\u2066b\u200Fc\u0007d\ne\tf"),
                 QStringLiteral("a\u2B1Ab\u2B1Ac\u2B1Ad\u2B1Ae\u2B1Af")},
             Row{FilePath::of(QByteArray("/a/caf\xE9.xml")), QStringLiteral("caf\uFFFD.xml")},
             Row{QStringLiteral("😀.xml"), QStringLiteral("😀.xml")},
             Row{QStringLiteral("a\U000E0001.xml"), QStringLiteral("a\u2B1A\u2B1A.xml")},
         }) {
        EXPECT_EQ(shownFileName(row.path), row.name);
    }
}

TEST(ShownName, ShowsWholePaths) {
    EXPECT_EQ(shownPath(FilePath::of(QByteArray("/caf\xE9/b\x01.xml"))),
              QStringLiteral("/caf\uFFFD/b\u2B1A.xml"));
}
