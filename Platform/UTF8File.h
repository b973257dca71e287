#pragma once

#include "InputFile.h"
#include "SourceText.h"

#include <cstddef>
#include <functional>
#include <limits>
#include <optional>
#include <stop_token>

/// Reading a file in UTF-8 straight into its text. The bytes pass through small buffers: touching memory for
/// all of them costs as much again as decoding them. A large file is cut into pieces that are decoded side by
/// side.
namespace UTF8File {

/// How many bytes a piece has at most. Each thread has a buffer of this size; smaller pieces would have the
/// threads touch the same huge page of the text at the same time.
constexpr std::size_t pieceSize = std::size_t{2} << 20;

/// Into how many pieces of about the same size the bytes of `file` from `start` on are cut.
std::size_t pieceCount(const InputFile& file, std::size_t start);

/// Given a piece as soon as it is decoded, by its number, counted from 0, on the thread that decoded it.
using PieceStep = std::function<void(std::size_t piece, const SourceText& text)>;

/// The text of `file` from its byte `start` on, up to the size that it had when it was opened; the pieces are
/// parts of the one array that it has. Nothing when that is not UTF-8, when reading fails, when the file is
/// shorter now, too long for a text or for the memory, and soon after a request to stop.
std::optional<SourceText> decode(const InputFile& file, std::size_t start, const PieceStep& decoded,
                                 const std::stop_token& stop = {});

/// Whether the bytes of `file` from `start` on have more units than `longest`, the most that a text can have,
/// if they are UTF-8. Where the size does not tell, reads as much of the file as it needs to know, a few
/// random places as a rule, and keeps none of it. False after a request to stop.
bool isTooLong(const InputFile& file, std::size_t start, const std::stop_token& stop = {},
               std::size_t longest = std::numeric_limits<Offset>::max());

} // namespace UTF8File
