#pragma once

#include "SourceText.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/// One document in the two forms that parsers read, UTF-8 for the peers and UTF-16 for our parser, and what
/// our tree of it contains.
struct BenchmarkDocument {
    std::string name; ///< The name of the file.
    std::string utf8;
    SourceText text;
    SourceText damagedText; ///< `text` with one tag in 200 damaged.
    std::size_t nodeCount = 0;
    std::size_t attributeCount = 0;
    std::size_t elementCount = 0;
    std::size_t allocatedBytes = 0; ///< The memory of the tree's records, unused capacity included.
};

/// The document at `path`, decoded according to its byte-order mark (which is left out of the text),
/// otherwise according to its encoding declaration, otherwise as UTF-8. None if it cannot be read or contains
/// bytes that its encoding does not allow.
std::optional<BenchmarkDocument> loadDocument(const std::filesystem::path& path);

/// `intact` with one tag in `oneIn` damaged: an end tag is removed or renamed, a start tag loses its first
/// quote or its `>`, or is followed by an unescaped `<` or `&`. The same `seed` causes the same damage.
std::u16string damaged(std::u16string_view intact, std::uint32_t oneIn, std::uint32_t seed);
