#include "TextEncodingDetector.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

#include <unicode/regex.h>

using namespace std::string_literals;

namespace {

/// The name of the encoding of `bytes`, and how long their byte-order mark is.
std::string detected(std::string_view bytes) {
    const Detection detection = TextEncodingDetector::detect(bytesOf(bytes));
    EXPECT_TRUE(detection.bom.empty() || detection.bom.data() == bytesOf(bytes).data());
    return std::string(detection.encoding.converterName()) + ' ' + std::to_string(detection.bom.size());
}

std::string declaration(std::string_view encoding) {
    return "<?xml version=\"1.0\" encoding=\"" + std::string(encoding) + "\"?><a/>";
}

} // namespace

TEST(TextEncodingDetector, TakesAnEmptyFileForUTF8) { EXPECT_EQ(detected(""), "UTF-8 0"); }

TEST(TextEncodingDetector, SeesByteOrderMarks) {
    const struct {
        std::string bytes;
        const char* expected;
    } cases[]{
        {"\xEF\xBB\xBF", "UTF-8 3"},     {"\xEF\xBB\xBF" + declaration("ISO-8859-1"), "UTF-8 3"},
        {"\xEF\xBB\xBF\xFF", "UTF-8 3"}, {"\xFF\xFE", "UTF-16LE 2"},
        {"\xFF\xFE<\0"s, "UTF-16LE 2"},  {"\xFF\xFE\0\0"s, "UTF-16LE 2"},
        {"\xFE\xFF\0<"s, "UTF-16BE 2"},  {"\xEF\xBB", "ISO-8859-1 0"},
        {"\xFF", "ISO-8859-1 0"},        {"\0\0\xFE\xFF"s, "ISO-8859-1 0"},
    };
    for (const auto& [bytes, expected] : cases) {
        EXPECT_EQ(detected(bytes), expected) << testing::PrintToString(bytes);
    }
}

TEST(TextEncodingDetector, BelievesTheDeclaration) {
    const struct {
        std::string bytes;
        const char* expected;
    } cases[]{
        {declaration("ISO-8859-1"), "ISO-8859-1 0"},
        {declaration("utf-8") + "\xFF", "UTF-8 0"},
        {declaration("Shift_JIS"), "ibm-943_P15A-2003 0"},
        {declaration("UTF-16"), "UTF-8 0"},
        {declaration("utf16") + "\xFF", "UTF-8 0"},
        {declaration("ISO-10646-UCS-2"), "UTF-8 0"},
        {declaration("UTF-16LE"), "UTF-16LE 0"},
        {declaration("cp037"), "ibm-37_P100-1995 0"},
        {declaration("no-such-name"), "UTF-8 0"},
        {declaration("no-such-name") + "\xFF", "ISO-8859-1 0"},
        {declaration(""), "UTF-8 0"},
        {declaration(" ISO-8859-1"), "UTF-8 0"},
        {declaration("ISO 8859-1"), "UTF-8 0"},
        {declaration("ISO-8859-1 "), "UTF-8 0"},
        {declaration("ISO_8859-1:1987"), "UTF-8 0"},
        {"<?xml encoding='KOI8-R'?>", "ibm-878_P100-1996 0"},
        {"<?xml encoding='KOI8-R\"?>", "ibm-878_P100-1996 0"},
        {"<?xml encoding \n=\t\r 'KOI8-R'?>", "ibm-878_P100-1996 0"},
        {"<?xml encoding='KOI8-R", "UTF-8 0"},
        {"<?xml encoding='KOI8-R?>", "UTF-8 0"},
        {"<?xml encoding=KOI8-R?>", "UTF-8 0"},
        {"<?xml encoding encoding='KOI8-R'?>", "ibm-878_P100-1996 0"},
        {"<?xml encoding=''?><a encoding='KOI8-R'/>", "ibm-878_P100-1996 0"},
        {"<?xml?><a encoding='unknown'/><a encoding='KOI8-R'/>", "UTF-8 0"},
        {"<?xmlencoding='KOI8-R'", "ibm-878_P100-1996 0"},
        {"<?xml ENCODING='KOI8-R'?>", "UTF-8 0"},
        {"<?XML encoding='KOI8-R'?>", "UTF-8 0"},
        {"\n<?xml encoding='KOI8-R'?>", "UTF-8 0"},
        {" <?xml encoding='KOI8-R'?>", "UTF-8 0"},
        {"<a encoding='KOI8-R'/>", "UTF-8 0"},
        {"<?xml encoding='KOI8-R'?><\xC1/>", "ibm-878_P100-1996 0"},
    };
    for (const auto& [bytes, expected] : cases) {
        EXPECT_EQ(detected(bytes), expected) << testing::PrintToString(bytes);
    }
}

TEST(TextEncodingDetector, LooksForTheDeclarationInTheFirst256Bytes) {
    const std::string rest = "encoding='KOI8-R'";
    const std::string start = "<?xml ";
    const std::string spaces(256 - start.size() - rest.size(), ' ');
    EXPECT_EQ(detected(start + spaces + rest), "ibm-878_P100-1996 0");
    EXPECT_EQ(detected(start + spaces + " " + rest), "UTF-8 0");
    EXPECT_EQ(detected(std::string(300, '\n') + start + rest), "UTF-8 0");
}

TEST(TextEncodingDetector, FallsBackToLatin1WhenTheBytesAreNoUTF8) {
    EXPECT_EQ(detected("<a>\xC3\xB1</a>"), "UTF-8 0");
    EXPECT_EQ(detected("<a>\xF1</a>"), "ISO-8859-1 0");
    EXPECT_EQ(detected(std::string(100'000, 'a') + "\xC3"), "ISO-8859-1 0");
    EXPECT_EQ(detected("<a>\xED\xA0\x80</a>"), "ISO-8859-1 0");
}

TEST(TextEncodingDetector, FindsWhatTheRegularExpressionFinds) {
    const icu::UnicodeString pattern(uR"(encoding\s*=\s*["']([A-Za-z0-9._\-]+)["'])");
    const std::string pieces[]{"",  "encoding", "encod", "ing",  "=",       "\"",     "'",
                               " ", "\n",       "\x0B",  "\x85", "\xA0",    "KOI8-R", "Big5",
                               "-", "\xC3",     "nope",  "?>",   "utf_16le"};
    constexpr unsigned seed = 4711;
    std::mt19937 random(seed);
    int found = 0;
    for (int round = 0; round < 50'000; ++round) {
        std::string bytes = "<?xml";
        // One to four attributes with a part replaced here and there.
        for (auto attributes = 1 + random() % 4; attributes > 0; --attributes) {
            for (const char* const part : {"encoding", " ", "=", "\n", "\"", "KOI8-R", "'"}) {
                bytes += random() % 8 == 0 ? pieces[random() % std::size(pieces)] : part;
            }
        }
        icu::UnicodeString text;
        for (const char byte : bytes.substr(0, 256)) {
            text.append(static_cast<char16_t>(static_cast<unsigned char>(byte)));
        }
        UErrorCode error = U_ZERO_ERROR;
        icu::RegexMatcher matcher(pattern, text, 0, error);
        std::string name;
        if (matcher.find()) {
            matcher.group(1, error).toUTF8String(name);
            ++found;
        }
        const auto expected = StringEncoding::named(name);
        const std::string_view other = detected(bytes).starts_with("UTF-8") ? "UTF-8" : "ISO-8859-1";
        ASSERT_EQ(detected(bytes), std::string(expected ? expected->converterName() : other) + " 0")
            << testing::PrintToString(bytes) << ", seed " << seed;
    }
    EXPECT_GT(found, 10'000);
    EXPECT_LT(found, 49'000);
}

TEST(TextEncodingDetector, TellsWhatTheStartOfAFileAnnounces) {
    const auto announced = [](std::string_view prefix) {
        const auto detection = TextEncodingDetector::announced(bytesOf(prefix));
        return detection ? std::string(detection->encoding.converterName()) : "nothing";
    };
    EXPECT_EQ(announced("\xEF\xBB\xBF<a/>"), "UTF-8");
    EXPECT_EQ(announced("\xFF\xFE"), "UTF-16LE");
    EXPECT_EQ(announced("<?xml version='1.0' encoding='ISO-8859-1'?>"), "ISO-8859-1");
    EXPECT_EQ(announced("<?xml version='1.0' encoding='UTF-8'?>\xE9"), "UTF-8");
    EXPECT_EQ(announced("<?xml version='1.0'?>"), "nothing");
    EXPECT_EQ(announced("<a/>\xE9"), "nothing");
    EXPECT_EQ(announced(""), "nothing");
}
