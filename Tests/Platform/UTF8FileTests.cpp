#include "UTF8File.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <map>
#include <mutex>
#include <stop_token>
#include <string>

#include <unistd.h>

namespace {

class UTF8FileTest : public testing::Test {
protected:
    /// What is read from byte `start` on of a file of those contents, which then has `added` after them. The
    /// pieces must be parts of it, in order.
    std::optional<std::u16string> decode(const std::string& contents, std::size_t start = 0,
                                         const std::string& added = {}) {
        const QString path = folder.filePath(QStringLiteral("texto.xml"));
        std::ofstream(path.toStdString(), std::ios::binary) << contents;
        const auto file = InputFile::open(path);
        std::ofstream(path.toStdString(), std::ios::binary | std::ios::app) << added;
        std::mutex mutex;
        std::map<std::size_t, SourceText> pieces;
        const auto text = UTF8File::decode(*file, start, [&](std::size_t piece, const SourceText& part) {
            const std::lock_guard lock(mutex);
            EXPECT_TRUE(pieces.emplace(piece, part).second);
        });
        if (!text) {
            return std::nullopt;
        }
        EXPECT_EQ(pieces.size(), UTF8File::pieceCount(*file, start));
        const char16_t* end = text->units().data();
        for (const auto& [number, part] : pieces) {
            EXPECT_EQ(part.units().data(), end) << number;
            end = part.units().data() + part.count();
        }
        EXPECT_EQ(end, text->units().data() + text->count());
        return std::u16string(text->units());
    }

    QTemporaryDir folder;
};

/// `part` again and again, at least `size` bytes long.
std::string filled(std::string_view part, std::size_t size) {
    std::string text;
    while (text.size() < size) {
        text += part;
    }
    return text;
}

} // namespace

TEST_F(UTF8FileTest, ReadsAFileOfAnySize) {
    EXPECT_EQ(decode(""), u"");
    EXPECT_EQ(decode("día"), u"día");
    EXPECT_EQ(decode("<>día", 2), u"día");
    EXPECT_EQ(decode("día", 4), u"");
    EXPECT_EQ(decode("día", 5), std::nullopt);
    for (const std::size_t size : {UTF8File::pieceSize - 1, UTF8File::pieceSize, UTF8File::pieceSize + 9,
                                   3 * UTF8File::pieceSize + 1}) {
        EXPECT_EQ(decode(std::string(size, 'x')), std::u16string(size, u'x'));
    }
}

TEST_F(UTF8FileTest, JoinsTheCharactersThatPiecesDivide) {
    const std::u16string_view units[] = {u"x", u"é", u"€", u"\U0001F600", u"é€\U0001F600x"};
    const std::string_view bytes[] = {"x", "é", "€", "\U0001F600", "é€\U0001F600x"};
    for (std::size_t i = 0; i < std::size(units); ++i) {
        for (std::size_t shift = 0; shift < 4; ++shift) {
            const std::string text = std::string(shift, '.') + filled(bytes[i], 3 * UTF8File::pieceSize);
            std::u16string expected(shift, u'.');
            for (std::size_t times = (text.size() - shift) / bytes[i].size(); times > 0; --times) {
                expected += units[i];
            }
            EXPECT_TRUE(decode(text) == expected) << i << ' ' << shift;
        }
    }
}

TEST_F(UTF8FileTest, ReadsNothingElse) {
    for (const char* bytes : {"\xE9", "caf\xE9", "\xE9 largo texto", "\xE2\x82", "\xF0\x9F\x98", "\xC0\x80",
                              "\x80\x80\x80\x80"}) {
        EXPECT_EQ(decode(bytes), std::nullopt) << bytes;
        for (std::size_t shift = 0; shift < 5; ++shift) {
            EXPECT_EQ(decode(std::string(UTF8File::pieceSize - shift, 'x') + bytes), std::nullopt)
                << bytes << ' ' << shift;
        }
    }
    // Each byte announces more units than there is room for.
    EXPECT_EQ(decode(std::string(3 * UTF8File::pieceSize, '\xF0')), std::nullopt);
    EXPECT_EQ(decode(std::string(3 * UTF8File::pieceSize, '\x80')), std::nullopt);
}

TEST_F(UTF8FileTest, ReadsAGrowingFileToTheSizeThatItHad) {
    EXPECT_EQ(decode("día", 0, "s"), u"día");
    EXPECT_TRUE(decode(std::string(2 * UTF8File::pieceSize, 'x'), 0, "s") ==
                std::u16string(2 * UTF8File::pieceSize, u'x'));
}

TEST_F(UTF8FileTest, ReadsNoFileThatHasShrunk) {
    const std::string path = folder.filePath(QStringLiteral("texto.xml")).toStdString();
    std::ofstream(path) << std::string(3 * UTF8File::pieceSize, 'x');
    const auto file = InputFile::open(QString::fromStdString(path));
    ASSERT_EQ(truncate(path.c_str(), 10), 0);
    EXPECT_EQ(UTF8File::decode(*file, 0, [](std::size_t, const SourceText&) {}), std::nullopt);
}

TEST_F(UTF8FileTest, StopsBetweenPieces) {
    const std::string path = folder.filePath(QStringLiteral("texto.xml")).toStdString();
    std::ofstream(path) << std::string(16 * UTF8File::pieceSize, 'x');
    const auto file = InputFile::open(QString::fromStdString(path));
    std::stop_source stop;
    std::atomic<std::size_t> pieces = 0;
    const auto text = UTF8File::decode(
        *file, 0,
        [&](std::size_t, const SourceText&) {
            ++pieces;
            stop.request_stop();
        },
        stop.get_token());
    EXPECT_EQ(text, std::nullopt);
    EXPECT_GE(pieces, 1U);
    EXPECT_LE(pieces, 8U) << "each thread ends with the piece that it has";
}

TEST_F(UTF8FileTest, KnowsAtOnceWhatMustBeTooLong) {
    constexpr long long limit = 4'294'967'295;
    const std::string path = folder.filePath(QStringLiteral("texto.xml")).toStdString();
    std::ofstream(path) << "<a/>";
    // Takes no room. Three bytes a unit are the most.
    ASSERT_EQ(truncate(path.c_str(), 3 * limit + 4), 0);
    const auto file = InputFile::open(QString::fromStdString(path));
    EXPECT_TRUE(UTF8File::isTooLong(*file, 0));
    EXPECT_TRUE(UTF8File::isTooLong(*file, 3));
    EXPECT_EQ(UTF8File::decode(*file, 0, [](std::size_t, const SourceText&) {}), std::nullopt);
    ASSERT_EQ(truncate(path.c_str(), 5'000'000'000), 0);
    EXPECT_TRUE(UTF8File::isTooLong(*InputFile::open(QString::fromStdString(path)), 0));
    ASSERT_EQ(truncate(path.c_str(), limit), 0);
    EXPECT_FALSE(UTF8File::isTooLong(*InputFile::open(QString::fromStdString(path)), 0));
    ASSERT_EQ(truncate(path.c_str(), limit + 3), 0);
    EXPECT_FALSE(UTF8File::isTooLong(*InputFile::open(QString::fromStdString(path)), 3));
    std::stop_source stop;
    stop.request_stop();
    EXPECT_FALSE(UTF8File::isTooLong(*InputFile::open(QString::fromStdString(path)), 0, stop.get_token()))
        << "it does not look through the file any more";
}

TEST_F(UTF8FileTest, CountsWhatTheSizeDoesNotTell) {
    const std::string path = folder.filePath(QStringLiteral("texto.xml")).toStdString();
    constexpr std::size_t size = 18'000'000;
    struct Row {
        std::string_view text;
        std::size_t longest;
        bool isTooLong;
    };
    for (const Row& row : {Row{"x", size, false}, Row{"x", size - 1, true}, Row{"x", size / 2, true},
                           Row{"€", size / 3, false}, Row{"€", size / 3 - 1, true}, Row{"€", size / 2, false},
                           Row{"x€x€x€", size / 2, false}, Row{"x€x€x€", size / 2 - 1, true},
                           Row{"\U0001F600x", size * 3 / 5, false},
                           Row{"\U0001F600x", size * 3 / 5 - 1, true}, Row{"\U0001F600x", size / 2, true}}) {
        std::ofstream(path) << filled(row.text, size);
        const auto file = InputFile::open(QString::fromStdString(path));
        ASSERT_EQ(file->expectedSize(), size);
        EXPECT_EQ(UTF8File::isTooLong(*file, 0, {}, row.longest), row.isTooLong) << row.text << row.longest;
    }
}
