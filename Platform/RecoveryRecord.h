#pragma once

#include "Bytes.h"
#include "RecoveryState.h"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// The bytes of a recovery log. Numbers are little-endian.
///
///     log    = "TamoRec1" salt:u64 record*
///     record = length:u32 kind:u32 checksum:u64 payload[length]
///
/// The checksum of a record covers length, kind and payload and starts from the checksum of the record
/// before, the first one's from the salt: no stretch of another log, or of this one, is taken for the next.
///
///     facts   (1) = encoding, mark, path: each u32 length and bytes; u8 whether a version follows, and then
///                   device, inode, size, modified: u64 each, u8 whether a hash follows, hash:u64
///     replace (2) = lower:u32 upper:u32 form:u8 units, in UTF-8 (form 0) or in UTF-16 (form 1)
///     commit  (3) = generation:u64 lower:u32 upper:u32 changed:i64 units of the text:u32
///
/// A log starts from the empty text. Only what a commit follows counts.
namespace RecoveryRecord {

using ByteString = std::vector<std::uint8_t>;

constexpr std::size_t fileHeaderSize = 16;
constexpr std::size_t headerSize = 16;

/// A replacement in a log has no more units than this.
constexpr Offset longestReplacement = Offset{1} << 16;

enum class Flaw : std::uint8_t {
    cutOff,  ///< The bytes end before the record does, as after a write that was interrupted.
    damaged, ///< All is there, but is not what was written.
};

/// Adds the start of a log to `to`.
void appendFileHeader(std::uint64_t salt, ByteString& to);

/// The salt of a log; a flaw when that is not its start.
std::expected<std::uint64_t, Flaw> salt(Bytes log);

/// Each adds a record to `to`. `chain` is the checksum of the record before; answers the one of this.
std::uint64_t append(const RecoveryFacts& facts, std::uint64_t chain, ByteString& to);
std::uint64_t append(SourceRange range, std::u16string_view units, std::uint64_t chain, ByteString& to);
std::uint64_t append(const RecoveryMoment& moment, Offset textSize, std::uint64_t chain, ByteString& to);

struct Replacement {
    SourceRange range;
    std::u16string units;
};

struct Commit {
    RecoveryMoment moment;
    Offset textSize = 0;
};

struct Parsed {
    std::variant<RecoveryFacts, Replacement, Commit> content;
    std::size_t size = 0; ///< Of the record with its header, in bytes.
    std::uint64_t chain = 0;
};

/// The record at the start of `bytes`, which are not empty.
std::expected<Parsed, Flaw> parse(Bytes bytes, std::uint64_t chain);

} // namespace RecoveryRecord
