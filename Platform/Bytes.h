#pragma once

#include <cstdint>
#include <span>
#include <string_view>

/// The contents of a file, or a stretch of them. Borrows its storage.
using Bytes = std::span<const std::uint8_t>;

/// The bytes of `string`, which keeps them.
inline Bytes bytesOf(std::string_view string) {
    return {reinterpret_cast<const std::uint8_t*>(string.data()), string.size()};
}

/// The same bytes as a string.
inline std::string_view stringOf(Bytes bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}
