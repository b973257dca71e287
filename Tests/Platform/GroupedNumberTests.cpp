#include "GroupedNumber.h"

#include <gtest/gtest.h>

#include <limits>

TEST(GroupedNumber, GroupsLongNumbersByThree) {
    const struct {
        std::uint64_t number;
        const char* text;
    } rows[] = {
        {0, "0"},
        {999, "999"},
        {1234, "1234"},
        {12345, "12.345"},
        {123456, "123.456"},
        {1234567, "1.234.567"},
        {50'000'000, "50.000.000"},
        {std::numeric_limits<std::uint64_t>::max(), "18.446.744.073.709.551.615"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(groupedNumber(row.number).toStdString(), row.text);
    }
}

TEST(GroupedNumber, CountsOneInTheSingular) {
    const auto errors = [](std::uint64_t number) {
        return counted(number, QStringLiteral("error"), QStringLiteral("errores")).toStdString();
    };
    EXPECT_EQ(errors(0), "0 errores");
    EXPECT_EQ(errors(1), "1 error");
    EXPECT_EQ(errors(2), "2 errores");
    EXPECT_EQ(errors(12'345), "12.345 errores");
}
