#include "RecoveryReplay.h"

#include "RecoveryFields.h"
#include "UTF8.h"

#include <algorithm>
#include <string>
#include <utility>

namespace {

using namespace RecoveryRecord;

constexpr char16_t replacementCharacter = u'\xFFFD';

bool isContinuation(std::uint8_t byte) { return (byte & 0xC0) == 0x80; }

/// The units of UTF-8 that may be damaged, `count` of them if there are any. Illegal bytes are U+FFFD each,
/// but those that could only continue a character are left out. Should there be more units than `count`, or
/// fewer, the difference is made up at the first illegal byte, so that what follows it stands where it stood.
std::u16string decoded(Bytes bytes, std::size_t count) {
    std::u16string result(bytes.size(), replacementCharacter);
    std::size_t written = 0;
    std::optional<std::size_t> firstIllegal;
    while (!bytes.empty()) {
        const UTF8::Progress progress = UTF8::decode(bytes, result.data() + written);
        written += progress.written;
        bytes = bytes.subspan(progress.read);
        if (!bytes.empty()) {
            firstIllegal = firstIllegal.value_or(written);
            if (!isContinuation(bytes.front())) {
                result[written++] = replacementCharacter;
            }
            bytes = bytes.subspan(1);
        }
    }
    result.resize(written);
    const std::size_t place = std::min(firstIllegal.value_or(written), count);
    if (written > count) {
        result.erase(place, written - count);
    } else {
        result.insert(place, count - written, replacementCharacter);
    }
    return result;
}

/// What a damaged payload still tells of the units that were written, as many as they were.
std::u16string salvaged(Bytes payload, const Head& head) {
    const Bytes bytes = payload.subspan(std::min<std::size_t>(payload.size(), 1));
    const std::uint8_t form = payload.empty() ? std::uint8_t{inUTF8} : payload.front();
    const bool isUTF16 =
        form == inUTF16 || (form != inUTF8 && head.length == 1 + 2 * std::size_t{head.units});
    if (!isUTF16) {
        return decoded(bytes, head.units);
    }
    auto units = recoveryUnits(inUTF16, bytes.first(bytes.size() / 2 * 2)).value_or(std::u16string());
    units.resize(head.units, replacementCharacter);
    return units;
}

} // namespace

std::optional<RecoveredText> RecoveryReplay::text() {
    for (const Record& record : m_scan.records) {
        if (!bridge(record.head) || !take(record)) {
            m_isDamaged = true;
            break;
        }
    }
    const bool isCutOff = !m_committed && !m_text.isEmpty();
    if (isCutOff) {
        // Only a part of the first text is there.
        commit({.selection = SourceRange::empty(m_text.size())});
    }
    if (m_committed) {
        m_committed->lineage = m_scan.header.lineage;
        m_committed->damage = m_isDamaged || m_scan.isDamaged ? RecoveryDamage::damaged
                              : isCutOff                      ? RecoveryDamage::cutOff
                                                              : RecoveryDamage::none;
    }
    return m_committed;
}

/// Goes over the records that are missing before the one under `to`. Returns whether that is safe.
bool RecoveryReplay::bridge(const Head& to) {
    const std::uint32_t missing = to.number - m_next.number;
    if (missing == 0) {
        return to.batch == m_next.batch;
    }
    m_isDamaged = true;
    const bool areOnlyPieces = to.batch == 0;
    const bool isOnlyACommit = missing == 1 && to.batch == m_next.batch + 1;
    return areOnlyPieces || isOnlyACommit;
}

bool RecoveryReplay::take(const Record& record) {
    const Head& head = record.head;
    m_next = {head.batch + (head.kind == Kind::commit ? 1 : 0), head.number + 1};
    switch (head.kind) {
    case Kind::facts:
        m_facts = record.isWhole ? RecoveryRecord::facts(record.payload).value_or(RecoveryFacts()) : m_facts;
        return true;
    case Kind::replace:
        return takeReplacement(record);
    case Kind::commit:
        return takeCommit(record);
    }
    return false;
}

bool RecoveryReplay::takeReplacement(const Record& record) {
    const Head& head = record.head;
    if (head.batch == 0) {
        fillUpTo(head.range.lower);
    }
    if (head.range.upper > m_text.size()) {
        return false;
    }
    auto units = record.isWhole ? RecoveryRecord::units(record.payload) : std::nullopt;
    if (!units) {
        units = salvaged(record.payload, head);
        if (record.payload.size() < head.length && &record == &m_scan.records.back()) {
            // The log is cut off here: nothing follows that needs its place.
            units->resize(units->find_last_not_of(replacementCharacter) + 1);
        }
    }
    m_text = m_text.replaced(head.range, *units);
    return true;
}

bool RecoveryReplay::takeCommit(const Record& record) {
    const Head& head = record.head;
    if (head.batch == 0) {
        fillUpTo(head.units);
    }
    if (head.units != m_text.size() || head.range.upper > m_text.size()) {
        return false;
    }
    RecoveryMoment moment = m_committed ? m_committed->moment : RecoveryMoment();
    if (const auto told = record.isWhole ? RecoveryRecord::moment(record.payload) : std::nullopt) {
        moment = *told;
    }
    moment.selection = head.range;
    commit(moment);
    return true;
}

void RecoveryReplay::commit(const RecoveryMoment& moment) {
    m_committed = {.facts = m_facts, .moment = moment, .text = m_text};
}

/// Stands for the units of pieces that are missing, up to `size` units of the text.
void RecoveryReplay::fillUpTo(Offset size) {
    if (size > m_text.size()) {
        m_isDamaged = true;
        const std::u16string missing(size - m_text.size(), replacementCharacter);
        m_text = m_text.replaced(SourceRange::empty(m_text.size()), missing);
    }
}
