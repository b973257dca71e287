#include "UTF8File.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace {

class UTF8FileTest : public testing::Test {
protected:
    /// What is read from a file of those contents, the first `startSize` bytes given as already read.
    std::optional<std::u16string> decode(const std::string& contents, std::size_t startSize = 0) {
        const QString path = folder.filePath(QStringLiteral("texto.xml"));
        std::ofstream(path.toStdString(), std::ios::binary) << contents;
        auto file = InputFile::open(path);
        std::vector<std::uint8_t> start(startSize);
        EXPECT_EQ(file->read(start), startSize);
        const auto text = UTF8File::decode(start, *file);
        return text ? std::optional(std::u16string(text->units())) : std::nullopt;
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(UTF8FileTest, ReadsAFileOfAnySize) {
    EXPECT_EQ(decode(""), u"");
    EXPECT_EQ(decode("día"), u"día");
    EXPECT_EQ(decode("día", 2), u"día");
    EXPECT_EQ(decode("día", 4), u"día");
    for (const std::size_t size : {UTF8File::pieceSize - 1, UTF8File::pieceSize, UTF8File::pieceSize + 9}) {
        EXPECT_EQ(decode(std::string(size, 'x')), std::u16string(size, u'x'));
    }
}

TEST_F(UTF8FileTest, JoinsTheCharactersThatPiecesDivide) {
    for (std::size_t shift = 0; shift < 8; ++shift) {
        const std::string before(UTF8File::pieceSize - shift, 'x');
        const std::u16string unitsBefore(before.size(), u'x');
        EXPECT_EQ(decode(before + "\xF0\x9F\x98\x80€é."), unitsBefore + u"\U0001F600€é.") << shift;
    }
}

TEST_F(UTF8FileTest, ReadsNothingElse) {
    for (const char* bytes :
         {"\xE9", "caf\xE9", "\xE9 largo texto", "\xE2\x82", "\xF0\x9F\x98", "\xC0\x80"}) {
        EXPECT_EQ(decode(bytes), std::nullopt) << bytes;
        for (std::size_t shift = 0; shift < 5; ++shift) {
            EXPECT_EQ(decode(std::string(UTF8File::pieceSize - shift, 'x') + bytes), std::nullopt)
                << bytes << ' ' << shift;
        }
    }
}
