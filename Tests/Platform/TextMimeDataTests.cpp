#include "TextMimeData.h"

#include <gtest/gtest.h>

TEST(TextMimeData, CarriesEveryUnit) {
    const std::u16string odd{u'a', u'\0', u'\xD83D', u'\r', u'\u2028', u'\xDE00', u'ñ'};
    const TextMimeData data{Rope(odd)};
    EXPECT_EQ(TextMimeData::units(data), odd);
    EXPECT_EQ(data.text().size(), 7);
    EXPECT_EQ(data.text()[2], QChar(u'\uFFFD'));
}

TEST(TextMimeData, CarriesItThroughOtherPrograms) {
    const std::u16string odd{u'a', u'\xD83D', u'\xDE00', u'\xD83D'};
    const TextMimeData data{Rope(odd)};
    QMimeData arrived;
    for (const QString& format : data.formats()) {
        arrived.setData(format, data.data(format));
    }
    EXPECT_TRUE(TextMimeData::hasUnits(arrived));
    EXPECT_EQ(TextMimeData::units(arrived), odd);
    EXPECT_EQ(arrived.data(QStringLiteral("text/plain")), QByteArray("a\xF0\x9F\x98\x80\xEF\xBF\xBD"));
}

TEST(TextMimeData, TakesPlainTextOfOthers) {
    QMimeData data;
    EXPECT_EQ(TextMimeData::units(data), u"");
    data.setText(QStringLiteral("uno\r\ndos"));
    EXPECT_EQ(TextMimeData::units(data), u"uno\r\ndos");
}

TEST(TextMimeData, PutsTextInWithTheLineEndsOfTheOther) {
    struct Row {
        std::u16string_view copied;
        std::u16string_view into;
        std::u16string_view put;
    };
    for (const auto& [copied, into, put] : {
             Row{u"x\ny\n", u"<a>\r\n</a>", u"x\r\ny\r\n"},
             Row{u"x\r\ny\n", u"<a>\n</a>", u"x\ny\n"},
             Row{u"x\ry", u"<a>\n</a>", u"x\ry"}, // None that the text has.
             Row{u"x", u"\r\n", u"x"},
             Row{u"x\r\ny\n", u"<a/>", u"x\r\ny\r\n"}, // A text of one line has none yet.
             Row{u"x\ny", u"", u"x\ny"},
         }) {
        EXPECT_EQ(TextMimeData::units(TextMimeData{Rope(copied)}, Rope(into)), put);
    }
}

TEST(TextMimeData, TakesAnOddNumberOfBytesWithoutTheLast) {
    QMimeData data;
    data.setData(QStringLiteral("application/x-tamo-utf16"), QByteArray("a\0b", 3));
    EXPECT_EQ(TextMimeData::units(data), u"a");
}
