#include "TextMimeData.h"

#include <gtest/gtest.h>

TEST(TextMimeData, CarriesEveryUnit) {
    const std::u16string odd{u'a', u'\0', u'\xD83D', u'\r', u'\u2028', u'\xDE00', u'ñ'};
    const auto data = TextMimeData::make(odd);
    EXPECT_EQ(TextMimeData::units(*data), odd);
    EXPECT_EQ(data->text().size(), 7);
    EXPECT_EQ(data->text()[2], QChar(u'\uFFFD'));
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
