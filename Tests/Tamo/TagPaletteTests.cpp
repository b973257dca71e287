#include "TagPalette.h"

#include <QPalette>
#include <QString>

#include <gtest/gtest.h>

using namespace TagPalette;

namespace {

const QPalette light(Qt::white);
const QPalette dark(QColor(0x20, 0x20, 0x20));

} // namespace

TEST(TagPalette, HashesTheBytesOfUTF8) {
    const struct {
        QStringView name;
        std::uint32_t hash;
    } rows[] = {
        {u"", 0x811C9DC5},
        {u"a", 0xE40C292C},
        {u"b", 0xE70C2DE5},
        {u"fo", 0x6222E842},
        {u"foobar", 0xBF9CF968},
        {u"A", 0xC40BF6CC},
        {u"chongo was here!\n", 0xD49930D5},
        {u"ñ", 0x069DC2F9},
        {u"漢", 0xA40D74A7},
        {u"😀", 0x33A29608},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(hash(row.name), row.hash) << qPrintable(row.name.toString());
    }
}

TEST(TagPalette, TakesALoneSurrogateForAReplacementCharacter) {
    const char16_t lone[] = {u'a', 0xD83D, u'b'};
    EXPECT_EQ(hash(QStringView(lone, 3)), hash(u"a\uFFFDb"));
    EXPECT_EQ(hash(QStringView(lone, 2)), hash(u"a\uFFFD"));
}

TEST(TagPalette, TurnsTheHashIntoAHue) {
    for (const QPalette& palette : {light, dark}) {
        EXPECT_NEAR(tagColor(u"", palette).hsvHueF(), 61.0 / 360, 1e-4);
        EXPECT_NEAR(tagColor(u"a", palette).hsvHueF(), double(0xE40C292CU % 360) / 360, 1e-4);
        EXPECT_NEAR(tagColor(u"foobar", palette).hsvHueF(), double(0xBF9CF968U % 360) / 360, 1e-4);
    }
}

TEST(TagPalette, IsBrighterAndPalerInTheDark) {
    for (const QStringView name : {u"raiz", u"a", u"ñ"}) {
        EXPECT_NEAR(tagColor(name, light).hsvSaturationF(), 0.75, 1e-4);
        EXPECT_NEAR(tagColor(name, light).valueF(), 0.62, 1e-4);
        EXPECT_NEAR(tagColor(name, dark).hsvSaturationF(), 0.55, 1e-4);
        EXPECT_NEAR(tagColor(name, dark).valueF(), 0.95, 1e-4);
        EXPECT_EQ(tagColor(name, light).alpha(), 255);
        EXPECT_EQ(tagColor(name, dark).alpha(), 255);
    }
}

TEST(TagPalette, TellsCaseApart) {
    EXPECT_NE(tagColor(u"a", light).hsvHue(), tagColor(u"A", light).hsvHue());
}

TEST(TagPalette, ReadsBoundedlyMuchOfALongName) {
    const QString name(65'536, u'a');
    EXPECT_EQ(hash(name + u'b'), hash(name));
    EXPECT_NE(hash(name.chopped(1) + u'b'), hash(name));
}
