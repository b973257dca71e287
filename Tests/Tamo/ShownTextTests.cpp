#include "ShownText.h"

#include <gtest/gtest.h>

TEST(ShownText, KeepsWhatFits) {
    EXPECT_EQ(ShownText::shortened(u"", 3), QString());
    EXPECT_EQ(ShownText::shortened(u"abc", 3), QStringLiteral("abc"));
    const SourceText text(u"abcdef");
    EXPECT_EQ(ShownText::start({1, 4}, 3, text), QStringLiteral("bcd"));
    EXPECT_EQ(ShownText::start({2, 2}, 3, text), QString());
}

TEST(ShownText, EndsWhatDoesNotFitInAnEllipsis) {
    EXPECT_EQ(ShownText::shortened(u"abcd", 3), QStringLiteral("ab…")) << "the ellipsis counts";
    EXPECT_EQ(ShownText::start({1, 5}, 3, SourceText(u"abcdef")), QStringLiteral("bcd…")) << "it does not";
}
