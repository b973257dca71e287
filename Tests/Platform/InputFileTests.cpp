#include "InputFile.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <array>

namespace {

/// A file in `folder` that holds `12345`, open for reading.
std::expected<InputFile, FileFailure> openedDigits(const QTemporaryDir& folder) {
    const QString path = folder.filePath(QStringLiteral("a.xml"));
    QFile written(path);
    EXPECT_TRUE(written.open(QIODevice::WriteOnly));
    written.write("12345");
    written.close();
    return InputFile::open(path);
}

} // namespace

TEST(InputFile, ReadsPieceByPiece) {
    const QTemporaryDir folder;
    auto file = openedDigits(folder);
    ASSERT_TRUE(file);
    EXPECT_EQ(file->expectedSize(), 5U);
    std::array<std::uint8_t, 3> room{};
    EXPECT_EQ(file->read({}), 0U);
    EXPECT_EQ(file->read(room), 3U);
    EXPECT_EQ(room.back(), '3');
    EXPECT_EQ(file->read(room), 2U);
    EXPECT_EQ(room.front(), '4');
    EXPECT_EQ(file->read(room), 0U);
}

TEST(InputFile, ReadsAnyPlaceWithoutLosingItsOwn) {
    const QTemporaryDir folder;
    auto file = openedDigits(folder);
    ASSERT_TRUE(file);
    std::array<std::uint8_t, 3> room{};
    EXPECT_EQ(file->read(std::span(room).first(1)), 1U);
    EXPECT_EQ(file->readAt(2, room), 3U);
    EXPECT_EQ(room, (std::array<std::uint8_t, 3>{'3', '4', '5'}));
    EXPECT_EQ(file->readAt(4, room), 1U);
    EXPECT_EQ(file->readAt(5, room), 0U);
    EXPECT_EQ(file->read(std::span(room).first(1)), 1U);
    EXPECT_EQ(room.front(), '2');
}

TEST(InputFile, TellsWhyItCannotBeOpened) {
    const QTemporaryDir folder;
    EXPECT_EQ(InputFile::open(folder.path()).error(), FileFailure::folder);
    EXPECT_EQ(InputFile::open(folder.filePath(QStringLiteral("a.xml"))).error(), FileFailure::missing);
    EXPECT_EQ(InputFile::open(QStringLiteral("/dev/null")).error(), FileFailure::notRegular);
}

TEST(InputFile, StopsWhenItIsAskedTo) {
    const QTemporaryDir folder;
    auto file = openedDigits(folder);
    ASSERT_TRUE(file);
    std::array<std::uint8_t, 3> room{};
    std::stop_source stop;
    EXPECT_EQ(file->read(room, stop.get_token()), 3U);
    stop.request_stop();
    EXPECT_EQ(file->read(room, stop.get_token()).error(), FileFailure::stopped);
    EXPECT_EQ(file->readAt(0, room, stop.get_token()).error(), FileFailure::stopped);
    EXPECT_EQ(file->read(room), 2U) << "it reads on when it is asked again";
}
