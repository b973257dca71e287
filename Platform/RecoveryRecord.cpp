#include "RecoveryRecord.h"

#include "RecoveryFields.h"
#include "UTF8.h"

#include <algorithm>
#include <concepts>
#include <utility>

#include <xxhash.h>

namespace RecoveryRecord {

namespace {

constexpr std::string_view name = "TamoRec";
constexpr char thisVersion = '2';
constexpr std::size_t checksumSize = sizeof(std::uint64_t);

constexpr std::size_t headerSize = 40;
static_assert(headersSize == 2 * headerSize);

/// No record is nearly as long: a longer one was never written.
constexpr std::uint32_t longestPayload = std::uint32_t{1} << 20;

std::uint64_t checksum(Bytes bytes, std::uint64_t salt) {
    return XXH3_64bits_withSeed(bytes.data(), bytes.size(), salt);
}

template <std::integral Number>
void put(Number number, ByteString& to) {
    const std::size_t at = to.size();
    to.resize(at + sizeof number);
    qToLittleEndian(number, to.data() + at);
}

void put(Bytes bytes, ByteString& to) { to.insert(to.end(), bytes.begin(), bytes.end()); }

void putCounted(Bytes bytes, ByteString& to) {
    put(static_cast<std::uint32_t>(bytes.size()), to);
    put(bytes, to);
}

/// The bytes of a head, or of a tail: they differ in what their own checksum starts from.
ByteString headBytes(const Head& head, std::uint64_t seed) {
    ByteString bytes;
    put(std::to_underlying(head.kind), bytes);
    put(head.length, bytes);
    put(head.batch, bytes);
    put(head.number, bytes);
    put(head.range.lower, bytes);
    put(head.range.upper, bytes);
    put(head.units, bytes);
    put(head.payloadChecksum, bytes);
    put(checksum(bytes, seed), bytes);
    return bytes;
}

/// Completes the record whose payload ends at the end of `to`, with room for a head before it at `startedAt`.
void finish(Head head, std::size_t startedAt, std::uint64_t salt, ByteString& to) {
    const Bytes payload = Bytes(to).subspan(startedAt + headSize);
    head.length = static_cast<std::uint32_t>(payload.size());
    head.payloadChecksum = checksum(payload, salt);
    std::ranges::copy(headBytes(head, salt), to.begin() + static_cast<std::ptrdiff_t>(startedAt));
    put(headBytes(head, ~salt), to);
}

/// Leaves room for a head at the end of `to`.
std::size_t start(ByteString& to) {
    const std::size_t at = to.size();
    to.resize(at + headSize);
    return at;
}

void putUnits(std::u16string_view units, ByteString& to) {
    const std::size_t at = to.size();
    constexpr std::size_t mostBytesOfUnit = 3;
    to.resize(at + 1 + mostBytesOfUnit * units.size());
    to[at] = inUTF8;
    const UTF8::Progress progress = UTF8::encode(units, to.data() + at + 1);
    if (progress.read == units.size()) {
        to.resize(at + 1 + progress.written);
        return;
    }
    // Half a surrogate pair, or half of one at the end of a piece.
    to[at] = inUTF16;
    to.resize(at + 1 + sizeof(char16_t) * units.size());
    qToLittleEndian<char16_t>(units.data(), static_cast<qsizetype>(units.size()), to.data() + at + 1);
}

/// The head at the start of `bytes` whose own checksum starts from `seed`.
std::optional<Head> headUnder(std::uint64_t seed, Bytes bytes) {
    if (bytes.size() < headSize) {
        return std::nullopt;
    }
    RecoveryFields fields(bytes.first(headSize));
    Head found;
    found.kind = static_cast<Kind>(fields.number<std::uint32_t>());
    found.length = fields.number<std::uint32_t>();
    // Quick to see, where each byte of a log may be the start of a head.
    if (found.kind < Kind::facts || found.kind > Kind::commit || found.length > longestPayload) {
        return std::nullopt;
    }
    found.batch = fields.number<std::uint32_t>();
    found.number = fields.number<std::uint32_t>();
    found.range = fields.range();
    found.units = fields.number<std::uint32_t>();
    found.payloadChecksum = fields.number<std::uint64_t>();
    const bool isGood =
        fields.number<std::uint64_t>() == checksum(bytes.first(headSize - checksumSize), seed);
    return isGood && fields.isGood() ? std::optional(found) : std::nullopt;
}

std::optional<Header> oneHeader(Bytes bytes) {
    RecoveryFields fields(bytes);
    const bool isNamed = version(fields.bytes(name.size() + 1)) == thisVersion - '0';
    Header found;
    found.salt = fields.number<std::uint64_t>();
    found.lineage.id = fields.number<std::uint64_t>();
    found.lineage.serial = fields.number<std::uint64_t>();
    const bool isGood = fields.number<std::uint64_t>() == checksum(bytes.first(headerSize - checksumSize), 0);
    return isNamed && isGood ? std::optional(found) : std::nullopt;
}

} // namespace

void append(const Header& header, ByteString& to) {
    ByteString bytes;
    put(bytesOf(name), bytes);
    bytes.push_back(static_cast<std::uint8_t>(thisVersion));
    put(header.salt, bytes);
    put(header.lineage.id, bytes);
    put(header.lineage.serial, bytes);
    put(checksum(bytes, 0), bytes);
    put(bytes, to);
    put(bytes, to);
}

void append(const RecoveryFacts& facts, Position at, std::uint64_t salt, ByteString& to) {
    const std::size_t startedAt = start(to);
    putCounted(bytesOf(facts.encoding), to);
    putCounted(facts.bom, to);
    putCounted(bytesOf(facts.origin), to);
    put(static_cast<std::uint8_t>(facts.version.has_value()), to);
    if (facts.version) {
        put(facts.version->device, to);
        put(facts.version->inode, to);
        put(facts.version->size, to);
        put(facts.version->modified, to);
        put(static_cast<std::uint8_t>(facts.version->contentHash.has_value()), to);
        put(facts.version->contentHash.value_or(0), to);
    }
    finish({.kind = Kind::facts, .batch = at.batch, .number = at.number}, startedAt, salt, to);
}

void append(SourceRange range, std::u16string_view units, Position at, std::uint64_t salt, ByteString& to) {
    const std::size_t startedAt = start(to);
    putUnits(units, to);
    finish({.kind = Kind::replace,
            .batch = at.batch,
            .number = at.number,
            .range = range,
            .units = static_cast<Offset>(units.size())},
           startedAt, salt, to);
}

void append(const RecoveryMoment& moment, Offset textUnits, Position at, std::uint64_t salt, ByteString& to) {
    const std::size_t startedAt = start(to);
    put(moment.generation, to);
    put(moment.changed, to);
    const SourceRange selection(std::min(moment.selection.lower, textUnits),
                                std::min(moment.selection.upper, textUnits));
    finish({.kind = Kind::commit,
            .batch = at.batch,
            .number = at.number,
            .range = selection,
            .units = textUnits},
           startedAt, salt, to);
}

std::optional<Header> header(Bytes log) {
    if (log.size() < headersSize) {
        return std::nullopt;
    }
    const auto first = oneHeader(log.first(headerSize));
    return first ? first : oneHeader(log.subspan(headerSize, headerSize));
}

std::optional<int> version(Bytes log) {
    if (log.size() <= name.size() || stringOf(log.first(name.size())) != name) {
        return std::nullopt;
    }
    const int digit = log[name.size()] - '0';
    return digit >= 1 && digit <= 9 ? std::optional(digit) : std::nullopt;
}

std::optional<Head> head(Bytes bytes, std::uint64_t salt) { return headUnder(salt, bytes); }

std::optional<Head> tail(Bytes bytes, std::uint64_t salt) { return headUnder(~salt, bytes); }

bool isWhole(Bytes payload, const Head& head, std::uint64_t salt) {
    return payload.size() == head.length && checksum(payload, salt) == head.payloadChecksum;
}

std::optional<RecoveryFacts> facts(Bytes payload) { return recoveryFacts(payload); }

std::optional<std::u16string> units(Bytes payload) {
    RecoveryFields fields(payload);
    const auto form = fields.number<std::uint8_t>();
    return fields.isGood() ? recoveryUnits(form, fields.rest()) : std::nullopt;
}

std::optional<RecoveryMoment> moment(Bytes payload) {
    RecoveryFields fields(payload);
    RecoveryMoment found;
    found.generation = fields.number<std::uint64_t>();
    found.changed = fields.number<std::int64_t>();
    return fields.isGood() ? std::optional(found) : std::nullopt;
}

} // namespace RecoveryRecord
