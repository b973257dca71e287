#pragma once

#include "Bytes.h"
#include "RecoveryState.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

/// The bytes of a recovery log. Numbers are little-endian, checksums are XXH3 with 64 bits.
///
///     log     = header header record*
///     header  = "TamoRec2" salt:u64 lineage:u64 serial:u64 checksum:u64
///               checksum of the 32 bytes before
///     record  = head payload[length] tail
///     head    = kind:u32 length:u32 batch:u32 number:u32 lower:u32 upper:u32 units:u32
///               payload checksum:u64 head checksum:u64
///               both checksums start from the salt
///     tail    = the same as the head; its own checksum starts from the salt's complement
///
///     facts   (1) payload = encoding, mark, path: each u32 length and bytes; u8 whether a version follows,
///                 and then device, inode, size, modified: u64 each, u8 whether a hash follows, hash:u64
///     replace (2) payload = form:u8 units, in UTF-8 (form 0) or in UTF-16 (form 1)
///                 `units` of them take the place of the range from `lower` to `upper`.
///     commit  (3) payload = generation:u64 changed:i64
///                 The text has `units` units; `lower` and `upper` are the selection.
///
/// A log starts from the empty text. The first batch is the facts and the pieces of the whole text in
/// ascending order; each later batch is the changes that one commit makes count. `number` counts all records
/// of the log, `batch` the commits before a record: both show what is missing, what stands twice and what was
/// swapped.
///
/// Each head and tail has a checksum of its own, so that a record is found without the one before it, and
/// damage is told from a cut. What is lost in a head stands in the tail.
namespace RecoveryRecord {

using ByteString = std::vector<std::uint8_t>;

constexpr std::size_t headersSize = 80; ///< Both of them, at the start of a log.
constexpr std::size_t headSize = 44;    ///< Of a tail as well.

/// A replacement in a log has at most this many units.
constexpr Offset longestReplacement = Offset{1} << 16;

struct Header {
    std::uint64_t salt = 0; ///< Different in each log.
    RecoveryLineage lineage;

    bool operator==(const Header&) const = default;
};

enum class Kind : std::uint32_t { facts = 1, replace = 2, commit = 3 };

/// What head and tail tell of a record.
struct Head {
    Kind kind = Kind::facts;
    std::uint32_t length = 0; ///< Of the payload, in bytes.
    std::uint32_t batch = 0;
    std::uint32_t number = 0;
    SourceRange range;
    Offset units = 0;
    std::uint64_t payloadChecksum = 0;

    bool operator==(const Head&) const = default;
};

/// Where the next record stands in the order of its log.
struct Position {
    std::uint32_t batch = 0;
    std::uint32_t number = 0;

    bool operator==(const Position&) const = default;
};

// Writing: each function adds to the end of `to`.

/// The start of a log: the header, twice.
void append(const Header& header, ByteString& to);

void append(const RecoveryFacts& facts, Position at, std::uint64_t salt, ByteString& to);
void append(SourceRange range, std::u16string_view units, Position at, std::uint64_t salt, ByteString& to);
void append(const RecoveryMoment& moment, Offset textUnits, Position at, std::uint64_t salt, ByteString& to);

// Reading

/// The header at the start of `log`. Absent if there are too few bytes, or both its copies are damaged.
std::optional<Header> header(Bytes log);

/// The version of the format that the first bytes of `log` name; absent if they name none.
std::optional<int> version(Bytes log);

/// The head or the tail at the start of `bytes`. Absent if none stands there, or its checksum says that it is
/// damaged.
std::optional<Head> head(Bytes bytes, std::uint64_t salt);
std::optional<Head> tail(Bytes bytes, std::uint64_t salt);

/// Whether `payload` is what was written under `head`.
bool isWhole(Bytes payload, const Head& head, std::uint64_t salt);

/// The contents of the payloads. Absent if the bytes do not have that form.
std::optional<RecoveryFacts> facts(Bytes payload);
std::optional<std::u16string> units(Bytes payload);
std::optional<RecoveryMoment> moment(Bytes payload); ///< Its selection stands in the head.

} // namespace RecoveryRecord
