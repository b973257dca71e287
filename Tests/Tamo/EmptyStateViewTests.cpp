#include "EmptyStateView.h"

#include <QImage>

#include <gtest/gtest.h>

namespace {

QImage painted(EmptyStateView& view, QSize size) {
    view.resize(size);
    return view.grab().toImage();
}

} // namespace

TEST(EmptyStateView, ShowsItsSymbolAndTexts) {
    EmptyStateView view;
    const QImage blank = painted(view, {300, 300});
    view.setContents("magnifyingglass", QStringLiteral("Título"), QStringLiteral("Descripción."));
    const QImage shown = painted(view, {300, 300});
    EXPECT_NE(shown, blank);
    EXPECT_EQ(view.accessibleName(), QStringLiteral("Título"));
    EXPECT_EQ(view.accessibleDescription(), QStringLiteral("Descripción."));
    view.setContents("magnifyingglass", QStringLiteral("Título"), QStringLiteral("Otra."));
    EXPECT_NE(painted(view, {300, 300}), shown);
}

TEST(EmptyStateView, ShowsMarkupAsPlainText) {
    EmptyStateView view;
    view.setContents("magnifyingglass", QStringLiteral("<b>T</b>"), QString());
    const QImage plain = painted(view, {300, 300});
    view.setContents("magnifyingglass", QStringLiteral("T"), QString());
    EXPECT_NE(painted(view, {300, 300}), plain);
}

TEST(EmptyStateView, FitsIntoAnySize) {
    EmptyStateView view;
    view.setContents("magnifyingglass", QString(60, u'W'), QStringLiteral("Descripción."));
    for (const QSize size : {QSize(1, 1), QSize(40, 20), QSize(200, 100)}) {
        EXPECT_EQ(painted(view, size).size(), size * view.devicePixelRatioF());
    }
}
