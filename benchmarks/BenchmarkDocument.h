#pragma once

#include "SourceText.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/// One document in the two forms that parsers take, UTF-8 for the peers and UTF-16 for ours, and what our
/// tree of it holds.
struct BenchmarkDocument {
    std::string name; ///< Of the file.
    std::string utf8;
    SourceText text;
    SourceText damagedText; ///< `text` with one tag in 200 damaged.
    std::size_t nodeCount = 0;
    std::size_t attributeCount = 0;
    std::size_t elementCount = 0;
    std::size_t allocatedBytes = 0; ///< What the records of the tree take, spare capacity included.
};

/// The document at `path`, decoded by its byte order mark (left out of the text), else by its encoding
/// declaration, else as UTF-8. None when it cannot be read or holds bytes that its encoding does not.
std::optional<BenchmarkDocument> loadDocument(const std::filesystem::path& path);

/// `intact` with one tag in `oneIn` damaged: an end tag goes missing or is renamed, a start tag loses its
/// first quote or its `>`, or a bare `<` or `&` follows it. The same `seed` does the same damage.
std::u16string damaged(std::u16string_view intact, std::uint32_t oneIn, std::uint32_t seed);
