#include "XMLFileDocument.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

using namespace std::string_literals;

namespace {

using Kind = EncodingDoubt::Kind;

FileContents contents(std::string_view bytes) {
    auto storage = std::make_shared<std::uint8_t[]>(bytes.size());
    std::ranges::copy(bytesOf(bytes), storage.get());
    return {std::move(storage), bytes.size()};
}

std::optional<EncodingDoubt> doubt(std::string_view bytes) {
    const auto document = XMLFileDocument::decode(contents(bytes));
    EXPECT_TRUE(document);
    return (*document)->doubt();
}

} // namespace

TEST(EncodingDoubt, IsWhatHadToBeAssumed) {
    struct Row {
        std::string bytes;
        Kind kind;
        std::string declared;
        StringEncoding encoding;
    };
    for (const Row& row : {
             Row{"<?xml encoding=\"UTF-8\"?><a>\xF1</a>", Kind::illegal, "UTF-8", StringEncoding::utf8()},
             Row{"\xEF\xBB\xBF<a>\xF1</a>", Kind::illegal, "", StringEncoding::utf8()},
             Row{"<?xml encoding=\"foo-1\"?><a/>", Kind::unknownName, "foo-1", StringEncoding::utf8()},
             Row{"<?xml encoding=\"foo-1\"?><a>\xF1</a>", Kind::unknownName, "foo-1",
                 StringEncoding::latin1()},
             Row{"<a>\xF1</a>", Kind::undeclared, "", StringEncoding::latin1()},
             Row{"<\0a\0/\0>\0"s, Kind::unmarkedUTF16, "", StringEncoding::utf16LittleEndian()},
             Row{"\0<\0a\0/\0>"s, Kind::unmarkedUTF16, "", StringEncoding::utf16BigEndian()},
         }) {
        EXPECT_EQ(doubt(row.bytes), (EncodingDoubt{row.kind, row.declared, row.encoding})) << row.bytes;
    }
}

TEST(EncodingDoubt, IsNoneWhereAllIsWell) {
    for (const std::string& bytes :
         {""s, "<a/>"s, "<a>\xC3\xB1</a>"s, "<?xml encoding=\"ISO-8859-1\"?><a>\xF1</a>"s,
          "\xFF\xFE<\0a\0/\0>\0"s, "<?xml encoding=\"windows-1252\"?><a>\x80</a>"s}) {
        EXPECT_EQ(doubt(bytes), std::nullopt) << bytes;
    }
}

TEST(EncodingDoubt, SaysWhatWasAssumedAndWhatSavingRewrites) {
    const QString name = QStringLiteral("a %2.xml");
    EXPECT_EQ(
        (EncodingDoubt{Kind::illegal, "UTF-8", StringEncoding::utf8()}.message(name)),
        QStringLiteral(
            "“a %2.xml” declara “UTF-8”, pero hay bytes que no son Unicode (UTF-8). Se ha leído como "
            "Occidental (ISO Latin 1); al guardarlo se escribirá en Unicode (UTF-8) y cambiarán los bytes "
            "de todas las letras que no sean ASCII."));
    EXPECT_EQ((EncodingDoubt{Kind::unknownName, "foo-1", StringEncoding::utf8()}.message(name)),
              QStringLiteral(
                  "“a %2.xml” declara la codificación “foo-1”, que no se conoce. Se ha leído como Unicode "
                  "(UTF-8), y así se escribirá al guardarlo."));
    EXPECT_TRUE(
        (EncodingDoubt{Kind::unmarkedUTF16, "", StringEncoding::utf16LittleEndian()}.guess().has_value()));
    EXPECT_FALSE((EncodingDoubt{Kind::undeclared, "", StringEncoding::latin1()}.guess().has_value()));
}
