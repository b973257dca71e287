#include "FileForm.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>

namespace {

FileForm form(const char* encoding) {
    return {.choice = EncodingChoice::usual(*StringEncoding::named(encoding))};
}

} // namespace

TEST(FileForm, WritesTheMarkAndTheText) {
    EXPECT_EQ(form("UTF-8").encode(Rope(u"ñ")), "\xC3\xB1");
    EXPECT_EQ(form("UTF-16BE").encode(Rope(u"ñ")), std::string("\xFE\xFF\0\xF1", 4));
    EXPECT_EQ(form("windows-1252").encode(Rope(u"€")), "\x80");
}

TEST(FileForm, GivesBackWhatWasReadOnlyInTheEncodingThatItWasReadIn) {
    FileForm read = form("Shift_JIS");
    const std::string_view bytes = "bytes as they were";
    auto storage = std::make_shared<std::uint8_t[]>(bytes.size());
    std::ranges::copy(bytesOf(bytes), storage.get());
    read.readText = SourceText(u"テス");
    read.readBytes = FileContents(std::move(storage), bytes.size());
    read.readChoice = read.choice;
    EXPECT_EQ(read.encode(Rope(u"テス")), bytes);
    EXPECT_EQ(read.encode(Rope(u"テ")), "\x83\x65");
    read.choice = EncodingChoice::usual(StringEncoding::utf8());
    EXPECT_EQ(read.encode(Rope(u"テス")), "\xE3\x83\x86\xE3\x82\xB9");
}

TEST(FileForm, FindsTheFirstCharacterThatAnEncodingLacks) {
    const Rope text(u"uno\ndos €\ntres 漢\n");
    EXPECT_EQ(FileForm::unencodable(text, StringEncoding::latin1()),
              (UnencodableText{U'€', 2, StringEncoding::latin1()}));
    const StringEncoding windows = *StringEncoding::named("windows-1252");
    EXPECT_EQ(FileForm::unencodable(text, windows), (UnencodableText{U'漢', 3, windows}));
    EXPECT_EQ(FileForm::unencodable(text, StringEncoding::utf8()), std::nullopt);
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(FileForm::unencodable(text, windows, stop.get_token()), std::nullopt);
}
