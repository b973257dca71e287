#include "RecoveryReader.h"

#include "FileContents.h"
#include "RecoveryRecord.h"

#include <optional>
#include <utility>

namespace {

using Kind = RecoveryReader::Failure::Kind;

/// The text as the records of a log make it.
class Replay {
public:
    bool take(RecoveryFacts facts) {
        m_facts = std::move(facts);
        return true;
    }

    bool take(const RecoveryRecord::Replacement& replacement) {
        if (replacement.range.upper > m_text.size()) {
            return false;
        }
        m_text = m_text.replaced(replacement.range, replacement.units);
        return true;
    }

    bool take(const RecoveryRecord::Commit& commit) {
        if (commit.textSize != m_text.size() || commit.moment.selection.upper > commit.textSize) {
            return false;
        }
        m_committed = {m_facts, commit.moment, m_text};
        return true;
    }

    bool hasBegun() const { return !m_text.isEmpty(); }
    std::optional<RecoveredText>& committed() { return m_committed; }

private:
    RecoveryFacts m_facts;
    Rope m_text;
    std::optional<RecoveredText> m_committed;
};

/// Replays the records from `rest`; answers whether the log is what was written, be it cut off.
bool replay(Bytes rest, std::uint64_t chain, Replay& to) {
    while (!rest.empty()) {
        auto record = RecoveryRecord::parse(rest, chain);
        if (!record) {
            return record.error() == RecoveryRecord::Flaw::cutOff;
        }
        if (!std::visit([&to](auto& content) { return to.take(std::move(content)); }, record->content)) {
            return false;
        }
        chain = record->chain;
        rest = rest.subspan(record->size);
    }
    return true;
}

std::unexpected<RecoveryReader::Failure> failure(Kind kind, FileFailure cause = FileFailure::other) {
    return std::unexpected(RecoveryReader::Failure{kind, cause});
}

} // namespace

std::expected<RecoveredText, RecoveryReader::Failure> RecoveryReader::read(const QString& path) {
    const auto contents = FileContents::read(path);
    if (!contents) {
        return failure(Kind::unreadable, contents.error());
    }
    const Bytes log = contents->bytes();
    const auto salt = RecoveryRecord::salt(log);
    if (!salt) {
        return failure(salt.error() == RecoveryRecord::Flaw::cutOff ? Kind::empty : Kind::damaged);
    }
    Replay replayed;
    const bool isWhole = replay(log.subspan(RecoveryRecord::fileHeaderSize), *salt, replayed);
    if (auto& text = replayed.committed()) {
        text->isDamaged = !isWhole;
        return std::move(*text);
    }
    if (!isWhole) {
        return failure(Kind::damaged);
    }
    return failure(replayed.hasBegun() ? Kind::unfinished : Kind::empty);
}
