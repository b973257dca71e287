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

TEST(TextMimeData, TakesAnOddNumberOfBytesWithoutTheLast) {
    QMimeData data;
    data.setData(QStringLiteral("application/x-tamo-utf16"), QByteArray("a\0b", 3));
    EXPECT_EQ(TextMimeData::units(data), u"a");
}
