#pragma once

#include "Bytes.h"
#include "InputFile.h"
#include "SourceText.h"

#include <optional>

/// Reading a file in UTF-8 straight into its text. The bytes pass through a small buffer: touching memory for
/// all of them costs as much again as decoding them.
namespace UTF8File {

/// How many bytes of the file are read at once.
constexpr std::size_t pieceSize = std::size_t{1} << 18;

/// The text of what is in `start`, the bytes already read, and in the rest of `file`. Nothing when that is
/// not UTF-8, when reading fails, when the file has grown since it was opened, or is too large: whoever reads
/// it whole learns which.
std::optional<SourceText> decode(Bytes start, InputFile& file);

} // namespace UTF8File
