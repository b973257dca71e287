#include "ByteVector.h"

#include <gtest/gtest.h>

#include <array>

namespace {

/// The bytes 0x01 to 0x10, with `byte` in place of the one in the lane `at`.
std::array<std::uint8_t, ByteVector::lanes> bytesWith(std::uint8_t byte, int at) {
    std::array<std::uint8_t, ByteVector::lanes> bytes{};
    for (int i = 0; i < ByteVector::lanes; ++i) {
        bytes[i] = static_cast<std::uint8_t>(i + 1);
    }
    bytes[at] = byte;
    return bytes;
}

} // namespace

TEST(ByteVector, CountsTheASCIIBytesAtItsStart) {
    for (int lane = 0; lane < ByteVector::lanes; ++lane) {
        for (const std::uint8_t byte : {std::uint8_t{0x80}, std::uint8_t{0xFF}}) {
            EXPECT_EQ(ByteVector::load(bytesWith(byte, lane).data()).asciiPrefix(), lane);
        }
        for (const std::uint8_t byte : {std::uint8_t{0}, std::uint8_t{0x7F}}) {
            EXPECT_EQ(ByteVector::load(bytesWith(byte, lane).data()).asciiPrefix(), ByteVector::lanes);
        }
    }
}

TEST(ByteVector, WidensBytesToUnitsAndNarrowsThemAgain) {
    for (int byte = 0; byte < 256; ++byte) {
        for (int lane = 0; lane < ByteVector::lanes; ++lane) {
            const auto bytes = bytesWith(static_cast<std::uint8_t>(byte), lane);
            std::array<char16_t, ByteVector::lanes> units{};
            ByteVector::load(bytes.data()).widen(units.data());
            for (int i = 0; i < ByteVector::lanes; ++i) {
                ASSERT_EQ(units[i], bytes[i]);
            }
            std::array<std::uint8_t, ByteVector::lanes> narrowed{};
            ByteVector::narrow(UnitVector::load(units.data()),
                               UnitVector::load(units.data() + UnitVector::lanes))
                .store(narrowed.data());
            ASSERT_EQ(narrowed, bytes);
        }
    }
}
