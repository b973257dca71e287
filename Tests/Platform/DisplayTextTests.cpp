#include "DisplayText.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::u16string show(std::u16string_view units) { return displayText(units).toStdU16String(); }

} // namespace

TEST(DisplayText, ReplacesUnitForUnit) {
    const struct {
        std::u16string units, shown;
    } rows[] = {
        {u"", u""},
        {u"<a b=\"ñ\">", u"<a b=\"ñ\">"},
        {u"a\tb", u"a\tb"},
        {std::u16string(u"a\0b", 3), u"a⬚b"},
        {u"a\u001Bb", u"a⬚b"},
        {u"a\u007Fb", u"a⬚b"},
        {u"a\u0085b", u"a⬚b"},
        {u"a\u2028b\u2029", u"a⬚b⬚"},
        {u"a\u202Eb\u2066c", u"a⬚b⬚c"},
        {u"a\uFEFFb\uFFFC", u"a⬚b⬚"},
        {u"a\u200Db", u"a\u200Db"},
        {u"\u200Db", u"⬚b"},
        {u"a\u200Bb\u00AD", u"a⬚b⬚"},
        {u"e\u0301", u"e\u0301"},
        {u"\u0301\u0301", u"⬚\u0301"},
        {u"\u0001\u0301", u"⬚⬚"},
        {u"a\U000E0001b", u"a⬚⬚b"},
        {u"a\U000E0101", u"a\U000E0101"},
        {u"a\u3164\uFFA0", u"a⬚⬚"},
        {u"👩\u200D💻🇪🇸", u"👩\u200D💻🇪🇸"},
        {u"😀", u"😀"},
        {{u'a', u'\xD83D', u'b'}, u"a\uFFFDb"},
        {{u'\xDE00', u'b'}, u"\uFFFDb"},
        {{u'\xD83D'}, u"\uFFFD"},
        {{u'\xDE00', u'\xD83D'}, u"\uFFFD\uFFFD"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(show(row.units), row.shown);
        EXPECT_EQ(show(row.units).size(), row.units.size());
    }
}

TEST(DisplayText, ShowsCarriageReturnsAndLineFeeds) {
    EXPECT_EQ(show(u"a\rb\r\r"), u"a⬚b⬚⬚");
    EXPECT_EQ(show(u"a\r\n"), u"a⬚\n");
}
