#include "FirstRecoveryFormat.h"

#include "Checksum.h"
#include "RecoveryFields.h"

#include <optional>
#include <string_view>
#include <utility>

namespace {

constexpr std::string_view magic = "TamoRec1";
constexpr std::size_t fileHeaderSize = 16;
constexpr std::size_t headerSize = 16;
constexpr std::uint32_t longestPayload = std::uint32_t{1} << 20;

enum class Kind : std::uint32_t { facts = 1, replace = 2, commit = 3 };

struct Record {
    Kind kind;
    Bytes payload;
    std::uint64_t checksum;
};

/// The record at the start of `bytes`; absent if it is cut off or damaged.
std::optional<Record> record(Bytes bytes, std::uint64_t chain) {
    RecoveryFields header(bytes);
    const auto length = header.number<std::uint32_t>();
    const auto kind = static_cast<Kind>(header.number<std::uint32_t>());
    const auto sum = header.number<std::uint64_t>();
    if (!header.isGood() || length > longestPayload || bytes.size() - headerSize < length) {
        return std::nullopt;
    }
    const Bytes payload = bytes.subspan(headerSize, length);
    const std::uint64_t found = checksum(payload, checksum(bytes.first(2 * sizeof(std::uint32_t)), chain));
    return found == sum ? std::optional(Record{kind, payload, sum}) : std::nullopt;
}

/// The text as the records make it.
class Replay {
public:
    /// Whether the record fits what stands before it.
    bool take(const Record& record) {
        switch (record.kind) {
        case Kind::facts:
            return takeFacts(record.payload);
        case Kind::replace:
            return takeReplacement(RecoveryFields(record.payload));
        case Kind::commit:
            return takeCommit(RecoveryFields(record.payload));
        }
        return false;
    }

    bool hasFacts() const { return m_facts.has_value(); }
    std::optional<RecoveredText>& committed() { return m_committed; }

private:
    bool takeFacts(Bytes payload) {
        m_facts = recoveryFacts(payload);
        return m_facts.has_value();
    }

    bool takeReplacement(RecoveryFields fields) {
        const SourceRange range = fields.range();
        const auto form = fields.number<std::uint8_t>();
        const auto units = recoveryUnits(form, fields.rest());
        if (!fields.isGood() || !units || range.upper > m_text.size()) {
            return false;
        }
        m_text = m_text.replaced(range, *units);
        return true;
    }

    bool takeCommit(RecoveryFields fields) {
        RecoveryMoment moment;
        moment.generation = fields.number<std::uint64_t>();
        moment.selection = fields.range();
        moment.changed = fields.number<std::int64_t>();
        const auto size = fields.number<std::uint32_t>();
        if (!fields.isGood() || size != m_text.size() || moment.selection.upper > size) {
            return false;
        }
        m_committed = {.facts = m_facts.value_or(RecoveryFacts()), .moment = moment, .text = m_text};
        return true;
    }

    std::optional<RecoveryFacts> m_facts;
    Rope m_text;
    std::optional<RecoveredText> m_committed;
};

} // namespace

std::expected<RecoveredText, RecoveryReader::Failure> FirstRecoveryFormat::read(Bytes log) {
    using Failure = RecoveryReader::Failure;
    if (log.size() < fileHeaderSize) {
        return std::unexpected(Failure{Failure::Kind::empty});
    }
    RecoveryFields header(log);
    header.bytes(magic.size());
    auto chain = header.number<std::uint64_t>();
    Replay replay;
    Bytes rest = header.rest();
    while (!rest.empty()) {
        const auto next = record(rest, chain);
        if (!next || !replay.take(*next)) {
            break;
        }
        chain = next->checksum;
        rest = rest.subspan(headerSize + next->payload.size());
    }
    if (auto& text = replay.committed()) {
        text->damage = rest.empty() ? RecoveryDamage::none : RecoveryDamage::damaged;
        return std::move(*text);
    }
    const bool isEmpty = rest.empty() && !replay.hasFacts();
    return std::unexpected(Failure{isEmpty ? Failure::Kind::empty : Failure::Kind::damaged});
}
