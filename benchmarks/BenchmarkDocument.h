#pragma once

#include "SourceText.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/// One document in the two forms that parsers take: UTF-8 for the peers, UTF-16 for ours.
struct BenchmarkDocument {
    std::string name; ///< The path it came from.
    std::string utf8;
    SourceText text;
};

/// The document at `path`, decoded by its byte order mark (left out of the text), else by its encoding
/// declaration, else as UTF-8. None when it cannot be read or holds bytes that its encoding does not.
std::optional<BenchmarkDocument> loadDocument(const std::filesystem::path& path);

/// The document of `text`; none when it holds lone surrogates.
std::optional<BenchmarkDocument> makeDocument(std::string name, std::u16string_view text);

/// `intact` with one tag in `oneIn` damaged: an end tag goes missing or is renamed, a start tag loses its
/// first quote or its `>`, or a bare `<` or `&` follows it. The same `seed` does the same damage.
std::u16string damaged(std::u16string_view intact, std::uint32_t oneIn, std::uint32_t seed);
