#include "TreeTypeAhead.h"

#include "Repeated.h"
#include "TreeParser.h"

#include <QTest>

#include <gtest/gtest.h>

namespace {

DocumentTree parse(std::u16string_view text) { return TreeParser::parse(SourceText(text)); }

} // namespace

TEST(TreeTypeAhead, FindsNamesByTheirBeginning) {
    const DocumentTree tree = parse(u"<uno/><dos/><Dado/>dato<dosis/>");
    const TreeOutline::Rows rows = TreeOutline().rows(tree);
    const auto typed = [&](const QStringList& keys, std::optional<std::size_t> current) {
        TreeTypeAhead typeAhead;
        for (const QString& key : keys) {
            if (const auto row = typeAhead.row(key, current, rows, tree)) {
                current = row;
            }
        }
        return current;
    };
    EXPECT_EQ(typed({"d"}, std::nullopt), 1);
    EXPECT_EQ(typed({"d"}, 1), 2);
    EXPECT_EQ(typed({"D"}, 2), 4);
    EXPECT_EQ(typed({"d"}, 4), 1);
    EXPECT_EQ(typed({"d", "d"}, 0), 2);
    EXPECT_EQ(typed({"d", "o", "s"}, 0), 1);
    EXPECT_EQ(typed({"d", "o", "s", "i"}, 0), 4);
    EXPECT_EQ(typed({"d", "a"}, 0), 2);
    EXPECT_EQ(typed({"x"}, 0), 0);
    EXPECT_EQ(typed({"u"}, 0), 0);
}

TEST(TreeTypeAhead, ForgetsWhatWasTypedAWhileAgo) {
    const DocumentTree tree = parse(u"<uno/><dos/><oro/>");
    const TreeOutline::Rows rows = TreeOutline().rows(tree);
    TreeTypeAhead typeAhead;
    EXPECT_EQ(typeAhead.row("d", 0, rows, tree), 1U);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !typeAhead.isInProgress(); }));
    EXPECT_EQ(typeAhead.row("o", 1, rows, tree), 2U);
}

TEST(TreeTypeAhead, LooksAtABoundedNumberOfRows) {
    const DocumentTree tree =
        parse(repeated(u"<a/>", TreeTypeAhead::mostRows) + u"<b/>" + repeated(u"<a/>", 10));
    const TreeOutline::Rows rows = TreeOutline().rows(tree);
    TreeTypeAhead typeAhead;
    EXPECT_EQ(typeAhead.row("b", std::nullopt, rows, tree), std::nullopt);
    TreeTypeAhead nearer;
    EXPECT_EQ(nearer.row("b", 5, rows, tree), TreeTypeAhead::mostRows);
}
