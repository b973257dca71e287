#include "RecoveryRecord.h"

#include "Checksum.h"
#include "UTF8.h"

#include <QtEndian>

#include <algorithm>
#include <concepts>
#include <limits>
#include <utility>

namespace RecoveryRecord {

namespace {

constexpr std::string_view magic = "TamoRec1";
constexpr std::uint8_t inUTF8 = 0;
constexpr std::uint8_t inUTF16 = 1;

/// No record is nearly as long: a longer one was never written.
constexpr std::uint32_t longestPayload = std::uint32_t{1} << 20;

enum class Kind : std::uint32_t { facts = 1, replace = 2, commit = 3 };

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

/// Takes fields from the front of a payload. One that is too short is noted, and gives zeros.
class Fields {
public:
    explicit Fields(Bytes rest) : m_rest(rest) {}

    Bytes bytes(std::size_t count) {
        m_isGood = m_isGood && count <= m_rest.size();
        const Bytes taken = m_isGood ? m_rest.first(count) : Bytes();
        m_rest = m_rest.subspan(taken.size());
        return taken;
    }

    template <std::integral Number>
    Number number() {
        const Bytes taken = bytes(sizeof(Number));
        return m_isGood ? qFromLittleEndian<Number>(taken.data()) : Number{};
    }

    Bytes countedBytes() { return bytes(number<std::uint32_t>()); }

    SourceRange range() {
        const auto lower = number<std::uint32_t>();
        const auto upper = number<std::uint32_t>();
        m_isGood = m_isGood && lower <= upper;
        return m_isGood ? SourceRange(lower, upper) : SourceRange();
    }

    Bytes rest() { return bytes(m_rest.size()); }

    bool isGood() const { return m_isGood; }

private:
    Bytes m_rest;
    bool m_isGood = true;
};

/// Starts a record at the end of `to`; `finish` knows what follows it.
std::size_t start(Kind kind, ByteString& to) {
    const std::size_t at = to.size();
    put(std::uint32_t{0}, to);
    put(std::to_underlying(kind), to);
    put(std::uint64_t{0}, to);
    return at;
}

std::uint64_t checksumOf(Bytes header, Bytes payload, std::uint64_t chain) {
    return checksum(payload, checksum(header.first(2 * sizeof(std::uint32_t)), chain));
}

std::uint64_t finish(std::size_t startedAt, std::uint64_t chain, ByteString& to) {
    const Bytes record = Bytes(to).subspan(startedAt);
    qToLittleEndian(static_cast<std::uint32_t>(record.size() - headerSize), to.data() + startedAt);
    const std::uint64_t sum = checksumOf(record.first(headerSize), record.subspan(headerSize), chain);
    qToLittleEndian(sum, to.data() + startedAt + 2 * sizeof(std::uint32_t));
    return sum;
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

std::optional<std::u16string> units(std::uint8_t form, Bytes bytes) {
    std::u16string result;
    if (form == inUTF8) {
        result.resize(bytes.size());
        const UTF8::Progress progress = UTF8::decode(bytes, result.data());
        result.resize(progress.written);
        return progress.read == bytes.size() ? std::optional(std::move(result)) : std::nullopt;
    }
    if (form != inUTF16 || bytes.size() % sizeof(char16_t) != 0) {
        return std::nullopt;
    }
    result.resize(bytes.size() / sizeof(char16_t));
    qFromLittleEndian<char16_t>(bytes.data(), static_cast<qsizetype>(result.size()), result.data());
    return result;
}

std::optional<FileIdentity> version(Fields& fields) {
    if (fields.number<std::uint8_t>() == 0) {
        return std::nullopt;
    }
    FileIdentity found;
    found.device = fields.number<std::uint64_t>();
    found.inode = fields.number<std::uint64_t>();
    found.size = fields.number<std::uint64_t>();
    found.modified = fields.number<std::int64_t>();
    const bool hasHash = fields.number<std::uint8_t>() != 0;
    const auto hash = fields.number<std::uint64_t>();
    found.contentHash = hasHash ? std::optional(hash) : std::nullopt;
    return found;
}

std::optional<decltype(Parsed::content)> content(Kind kind, Bytes payload) {
    Fields fields(payload);
    switch (kind) {
    case Kind::facts: {
        RecoveryFacts facts;
        facts.encoding = stringOf(fields.countedBytes());
        const Bytes bom = fields.countedBytes();
        facts.bom.assign(bom.begin(), bom.end());
        facts.origin = stringOf(fields.countedBytes());
        facts.version = version(fields);
        return fields.isGood() ? std::optional(std::move(facts)) : std::nullopt;
    }
    case Kind::replace: {
        const SourceRange range = fields.range();
        const auto form = fields.number<std::uint8_t>();
        auto found = units(form, fields.rest());
        return fields.isGood() && found ? std::optional(Replacement{range, std::move(*found)}) : std::nullopt;
    }
    case Kind::commit: {
        Commit commit;
        commit.moment.generation = fields.number<std::uint64_t>();
        commit.moment.selection = fields.range();
        commit.moment.changed = fields.number<std::int64_t>();
        commit.textSize = fields.number<std::uint32_t>();
        return fields.isGood() ? std::optional(commit) : std::nullopt;
    }
    }
    return std::nullopt;
}

} // namespace

void appendFileHeader(std::uint64_t salt, ByteString& to) {
    put(bytesOf(magic), to);
    put(salt, to);
}

std::expected<std::uint64_t, Flaw> salt(Bytes log) {
    const Bytes start = log.first(std::min(log.size(), magic.size()));
    if (!magic.starts_with(stringOf(start))) {
        return std::unexpected(Flaw::damaged);
    }
    if (log.size() < fileHeaderSize) {
        return std::unexpected(Flaw::cutOff);
    }
    return qFromLittleEndian<std::uint64_t>(log.data() + magic.size());
}

std::uint64_t append(const RecoveryFacts& facts, std::uint64_t chain, ByteString& to) {
    const std::size_t at = start(Kind::facts, to);
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
    return finish(at, chain, to);
}

std::uint64_t append(SourceRange range, std::u16string_view units, std::uint64_t chain, ByteString& to) {
    const std::size_t at = start(Kind::replace, to);
    put(range.lower, to);
    put(range.upper, to);
    putUnits(units, to);
    return finish(at, chain, to);
}

std::uint64_t append(const RecoveryMoment& moment, Offset textSize, std::uint64_t chain, ByteString& to) {
    const std::size_t at = start(Kind::commit, to);
    put(moment.generation, to);
    put(std::min(moment.selection.lower, textSize), to);
    put(std::min(moment.selection.upper, textSize), to);
    put(moment.changed, to);
    put(textSize, to);
    return finish(at, chain, to);
}

std::expected<Parsed, Flaw> parse(Bytes bytes, std::uint64_t chain) {
    if (bytes.size() < headerSize) {
        return std::unexpected(Flaw::cutOff);
    }
    Fields header(bytes.first(headerSize));
    const auto length = header.number<std::uint32_t>();
    const auto kind = static_cast<Kind>(header.number<std::uint32_t>());
    const auto sum = header.number<std::uint64_t>();
    if (length > longestPayload) {
        return std::unexpected(Flaw::damaged);
    }
    if (bytes.size() - headerSize < length) {
        return std::unexpected(Flaw::cutOff);
    }
    const Bytes payload = bytes.subspan(headerSize, length);
    if (checksumOf(bytes.first(headerSize), payload, chain) != sum) {
        return std::unexpected(Flaw::damaged);
    }
    auto found = content(kind, payload);
    if (!found) {
        return std::unexpected(Flaw::damaged);
    }
    return Parsed{std::move(*found), headerSize + length, sum};
}

} // namespace RecoveryRecord
