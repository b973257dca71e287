#pragma once

#include "StringEncoding.h"

#include <optional>
#include <stop_token>
#include <string_view>

/// In which encoding a file is written, and the byte-order mark at its start.
struct Detection {
    StringEncoding encoding;
    Bytes bom; ///< The bytes of the mark, borrowed from the file's; empty when there is none.
};

/// Finds the encoding of a file.
namespace TextEncodingDetector {

/// The encoding of `bytes`, the whole contents of a file: the one of its byte-order mark (of UTF-8 or
/// UTF-16), or else the one that the XML declaration names within the first 256 bytes, or else UTF-8 when all
/// bytes are legal in it, or else ISO Latin 1.
///
/// A declared encoding wins untried. A declaration that can be read byte by byte is not UTF-16, so that a
/// declared "UTF-16" without a mark stands for UTF-8. Never fails; after a request to stop the answer means
/// nothing.
Detection detect(Bytes bytes, const std::stop_token& stop = {});

/// What `detect` goes by before it looks at all bytes: a mark or a declaration at the start. `prefix` is the
/// start of the file, all of it or at least 256 bytes. Nothing where neither tells.
std::optional<Detection> announced(Bytes prefix);

/// The name that the XML declaration at the start of `prefix` gives, known or not; nothing where there is
/// none. Borrowed from `prefix`.
std::optional<std::string_view> declaredName(Bytes prefix);

} // namespace TextEncodingDetector
