#include "Snippet.h"

#include <gtest/gtest.h>

TEST(Snippet, HasItsCursorAtTheFirstPlaceholder) {
    EXPECT_EQ((Snippet{u"<a></a>", {{3, 3}, {7, 7}}}).cursor(), 3U);
    EXPECT_EQ((Snippet{u"<a>abc</a>", {{3, 6}, {1, 1}}}).cursor(), 3U);
}

TEST(Snippet, HasItsCursorAtTheEndWithoutPlaceholders) {
    EXPECT_EQ((Snippet{u"<a/>", {}}).cursor(), 4U);
    EXPECT_EQ((Snippet{u"\U0001F600", {}}).cursor(), 2U);
    EXPECT_EQ(Snippet().cursor(), 0U);
}

TEST(Snippet, HashesItsTextAndPlaceholders) {
    const std::hash<Snippet> hash;
    const Snippet snippet{u"<a></a>", {{3, 3}, {7, 7}}};
    EXPECT_EQ(hash(snippet), hash(Snippet(snippet)));
    EXPECT_NE(hash(snippet), hash(Snippet{u"<b></b>", {{3, 3}, {7, 7}}}));
    EXPECT_NE(hash(snippet), hash(Snippet{u"<a></a>", {{3, 3}}}));
    EXPECT_NE(hash(snippet), hash(Snippet{u"<a></a>", {{7, 7}, {3, 3}}}));
}
