#pragma once

#include "StringEncoding.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

/// The start of a file as bytes, to try encodings on.
struct FileStart {
    static constexpr std::size_t longest = std::size_t{1} << 16;

    std::vector<std::uint8_t> bytes; ///< At most `longest`.
    bool isWhole = true;             ///< The file has no more.
};

/// How the first lines of a file read in an encoding.
struct EncodingPreview {
    QString text; ///< A bounded number of lines of a bounded length, ready to be shown.
    std::optional<std::size_t> illegalAt; ///< The first byte that is illegal in the encoding.

    static EncodingPreview of(const FileStart& start, const StringEncoding& encoding);
};
