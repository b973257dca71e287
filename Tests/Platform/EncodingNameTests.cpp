#include "EncodingName.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include <unicode/ucnv.h>

TEST(EncodingName, IsSpanish) {
    const struct {
        const char* name;
        const char* expected;
    } cases[]{
        {"UTF-8", "Unicode (UTF-8)"},
        {"UTF-16LE", "Unicode (UTF-16 little-endian)"},
        {"ISO-8859-1", "Occidental (ISO Latin 1)"},
        {"ISO-8859-15", "Occidental (ISO Latin 9)"},
        {"windows-1252", "Occidental (Windows Latin 1)"},
        {"ISO-8859-2", "Centroeuropeo (ISO Latin 2)"},
        {"KOI8-R", "Cirílico (KOI8-R)"},
        {"Shift_JIS", "Japonés (Shift JIS)"},
        {"EUC-KR", "Coreano (Windows)"},
        {"GB2312", "Chino simplificado (GB 18030)"},
        {"Big5", "Chino tradicional (Big5)"},
        {"cp037", "Otra codificación (IBM037)"},
    };
    for (const auto& [name, expected] : cases) {
        EXPECT_EQ(localizedName(StringEncoding::named(name).value()).toStdString(), expected) << name;
    }
}

TEST(EncodingName, TellsEveryEncodingFromTheOthers) {
    std::map<std::string, std::string_view> converters;
    for (int i = 0; i < ucnv_countAvailable(); ++i) {
        const StringEncoding encoding = StringEncoding::named(ucnv_getAvailableName(i)).value();
        const std::string name = localizedName(encoding).toStdString();
        EXPECT_FALSE(name.empty());
        const auto [known, isNew] = converters.emplace(name, encoding.converterName());
        EXPECT_TRUE(isNew || known->second == encoding.converterName()) << name;
    }
}
