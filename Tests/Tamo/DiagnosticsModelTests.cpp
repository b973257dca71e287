#include "DiagnosticsModel.h"

#include "TreeParser.h"

#include <QAbstractItemModelTester>

#include <gtest/gtest.h>

namespace {

struct Parsed {
    DocumentTree tree;
    LineIndex lines;

    explicit Parsed(std::u16string_view text) : tree(TreeParser::parse(SourceText(text))), lines(tree.text) {}
};

} // namespace

TEST(DiagnosticsModel, TellsLineAndMessage) {
    const Parsed parsed(u"<a>\n  <b x='1' x='2'/>\n  1 < 2\n</a>\n");
    DiagnosticsModel model;
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    model.setTree(&parsed.tree, &parsed.lines);
    ASSERT_EQ(model.rowCount(), 2);
    for (int row = 0; row < model.rowCount(); ++row) {
        const QString expected =
            QStringLiteral("Línea ") + QString::number(row + 2) + QStringLiteral(": ") +
            QString::fromStdU16String(parsed.tree.diagnostics[static_cast<std::size_t>(row)].message);
        EXPECT_EQ(model.index(row).data().toString(), expected);
    }
}

TEST(DiagnosticsModel, KeepsNamesOfTheDocumentPlain) {
    const Parsed parsed(u"<a%1<b");
    DiagnosticsModel model;
    model.setTree(&parsed.tree, &parsed.lines);
    ASSERT_GT(model.rowCount(), 0);
    for (int row = 0; row < model.rowCount(); ++row) {
        const QString hint = model.index(row).data(Qt::ToolTipRole).toString();
        EXPECT_FALSE(hint.contains(QStringLiteral("<b"))) << hint.toStdString();
    }
}

TEST(DiagnosticsModel, GrowsByAThousandRows) {
    std::u16string text = u"<a>";
    for (int each = 0; each < 2500; ++each) {
        text += u"&\n";
    }
    const Parsed parsed(text + u"</a>");
    DiagnosticsModel model;
    model.setTree(&parsed.tree, &parsed.lines);
    EXPECT_EQ(model.rowCount(), 1000);
    EXPECT_TRUE(model.canFetchMore({}));
    model.fetchMore({});
    model.fetchMore({});
    EXPECT_EQ(model.rowCount(), 2500);
    EXPECT_FALSE(model.canFetchMore({}));
    EXPECT_TRUE(model.index(2499).data().toString().startsWith(QStringLiteral("Línea 2500: ")));

    model.setTree(nullptr, nullptr);
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_FALSE(model.canFetchMore({}));
}

TEST(DiagnosticsModel, ShowsTheStartOfAVeryLongMessage) {
    const Parsed parsed(u"<" + std::u16string(100'000, u'n') + u">");
    DiagnosticsModel model;
    model.setTree(&parsed.tree, &parsed.lines);
    ASSERT_GT(model.rowCount(), 0);
    const QString shown = model.index(0).data().toString();
    EXPECT_TRUE(shown.startsWith(QStringLiteral("Línea 1: Falta cerrar <nnn"))) << shown.toStdString();
    EXPECT_TRUE(shown.endsWith(u'…'));
    EXPECT_LT(shown.size(), 400);
    EXPECT_LT(model.index(0).data(Qt::ToolTipRole).toString().size(), 400);
}
