#include "EncodingPreview.h"

#include "Bytes.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

FileStart start(std::string_view bytes, bool isWhole = true) {
    const Bytes all = bytesOf(bytes);
    return {{all.begin(), all.end()}, isWhole};
}

} // namespace

TEST(EncodingPreview, ShowsTheFirstLinesAsTheyWouldRead) {
    const FileStart file = start("<a>\x80</a>\r\n<b/>");
    EXPECT_EQ(EncodingPreview::of(file, *StringEncoding::named("windows-1252")).text,
              QStringLiteral("<a>€</a>\n<b/>\n"));
    EXPECT_EQ(EncodingPreview::of(file, *StringEncoding::named("windows-1252")).illegalAt, std::nullopt);
}

TEST(EncodingPreview, TellsWhereTheFileIsIllegal) {
    const EncodingPreview preview = EncodingPreview::of(start("abc\xF1"
                                                              "d"),
                                                        StringEncoding::utf8());
    EXPECT_EQ(preview.illegalAt, 3U);
    EXPECT_EQ(preview.text, QStringLiteral("abc\n"));
}

TEST(EncodingPreview, LeavesOutAMarkAndCountsItsBytes) {
    EXPECT_EQ(EncodingPreview::of(start("\xEF\xBB\xBF<a/>"), StringEncoding::utf8()).text,
              QStringLiteral("<a/>\n"));
    EXPECT_EQ(EncodingPreview::of(start("\xEF\xBB\xBF" "a\xFF zz"), StringEncoding::utf8()).illegalAt, 4U);
}

TEST(EncodingPreview, TakesACharacterThatIsCutOffForLegal) {
    EXPECT_EQ(EncodingPreview::of(start("abc\xE2\x82", false), StringEncoding::utf8()).illegalAt,
              std::nullopt);
    EXPECT_EQ(EncodingPreview::of(start("abc\xE2\x82", true), StringEncoding::utf8()).illegalAt, 3U);
}

TEST(EncodingPreview, IsBounded) {
    const QString text = EncodingPreview::of(start(std::string(60'000, 'x')), StringEncoding::utf8()).text;
    EXPECT_LT(text.size(), 500);
    EXPECT_TRUE(text.endsWith(QStringLiteral("x…\n")));
}
