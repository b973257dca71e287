#include "RecoveryReader.h"

#include "FileContents.h"
#include "FirstRecoveryFormat.h"
#include "RecoveryReplay.h"
#include "RecoveryScan.h"

#include <QDateTime>
#include <QFileInfo>

#include <new>
#include <string_view>
#include <utility>

namespace {

using Kind = RecoveryReader::Failure::Kind;
using Result = std::expected<RecoveredText, RecoveryReader::Failure>;

constexpr int firstVersion = 1;
constexpr int thisVersion = 2;

Result failure(Kind kind, FileFailure cause = FileFailure::other) {
    return std::unexpected(RecoveryReader::Failure{kind, cause});
}

/// Whether `log` ends within its header or facts, and is as it was written up to there.
bool endsBeforeFacts(Bytes log, const std::optional<RecoveryScan>& scan) {
    constexpr std::string_view start = "TamoRec2";
    if (log.size() < RecoveryRecord::headersSize) {
        const Bytes name = log.first(std::min(log.size(), start.size()));
        return start.starts_with(stringOf(name));
    }
    const bool hasFacts =
        scan && !scan->records.empty() && (scan->records.size() > 1 || scan->records.front().isWhole);
    return scan && !scan->isDamaged && !hasFacts;
}

Result readThisVersion(Bytes log) {
    const auto scan = RecoveryScan::of(log);
    if (auto text = scan ? RecoveryReplay(*scan).text() : std::nullopt) {
        return std::move(*text);
    }
    if (endsBeforeFacts(log, scan)) {
        return failure(Kind::empty);
    }
    return failure(scan && !scan->isDamaged ? Kind::unfinished : Kind::damaged);
}

} // namespace

std::expected<RecoveredText, RecoveryReader::Failure> RecoveryReader::read(const QString& path) {
    const auto contents = FileContents::read(path);
    if (!contents && contents.error() == FileFailure::noMemory) {
        throw std::bad_alloc();
    }
    if (!contents) {
        return failure(Kind::unreadable, contents.error());
    }
    const Bytes log = contents->bytes();
    const int version = RecoveryRecord::version(log).value_or(thisVersion);
    const bool isThisVersion = version == thisVersion || RecoveryRecord::header(log).has_value();
    if (!isThisVersion && version > thisVersion) {
        return failure(Kind::newer);
    }
    Result text = isThisVersion ? readThisVersion(log) : FirstRecoveryFormat::read(log);
    if (text && text->moment.changed == 0) {
        // That was lost.
        text->moment.changed = QFileInfo(path).lastModified().toMSecsSinceEpoch();
    }
    return text;
}
