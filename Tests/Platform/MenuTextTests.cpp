#include "MenuText.h"

#include <gtest/gtest.h>

TEST(MenuText, ShowsEveryAmpersand) {
    EXPECT_EQ(menuText(QStringLiteral("Guardar")), QStringLiteral("Guardar"));
    EXPECT_EQ(menuText(QStringLiteral("a & b && c")), QStringLiteral("a && b &&&& c"));
}
