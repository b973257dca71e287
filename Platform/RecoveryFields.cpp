#include "RecoveryFields.h"

#include "UTF8.h"

#include <utility>

SourceRange RecoveryFields::range() {
    const auto lower = number<std::uint32_t>();
    const auto upper = number<std::uint32_t>();
    m_isGood = m_isGood && lower <= upper;
    return m_isGood ? SourceRange(lower, upper) : SourceRange();
}

std::optional<FileIdentity> RecoveryFields::version() {
    if (number<std::uint8_t>() == 0) {
        return std::nullopt;
    }
    FileIdentity found;
    found.device = number<std::uint64_t>();
    found.inode = number<std::uint64_t>();
    found.size = number<std::uint64_t>();
    found.modified = number<std::int64_t>();
    const bool hasHash = number<std::uint8_t>() != 0;
    const auto hash = number<std::uint64_t>();
    found.contentHash = hasHash ? std::optional(hash) : std::nullopt;
    return found;
}

std::optional<RecoveryFacts> recoveryFacts(Bytes payload) {
    RecoveryFields fields(payload);
    RecoveryFacts facts;
    facts.encoding = stringOf(fields.countedBytes());
    const Bytes bom = fields.countedBytes();
    facts.bom.assign(bom.begin(), bom.end());
    facts.origin = stringOf(fields.countedBytes());
    facts.version = fields.version();
    return fields.isGood() ? std::optional(std::move(facts)) : std::nullopt;
}

std::optional<std::u16string> recoveryUnits(std::uint8_t form, Bytes bytes) {
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
