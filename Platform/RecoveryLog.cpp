#include "RecoveryLog.h"

#include "Postbox.h"

#include <QFile>
#include <QRandomGenerator>

#include <algorithm>
#include <cerrno>
#include <memory>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr std::size_t bytesPerWrite = std::size_t{1} << 20;

/// Writes all of `bytes` at the place in the file; answers the error, or 0.
int writeAll(int number, Bytes bytes, std::uint64_t at) {
    while (!bytes.empty()) {
        const ssize_t count = pwrite(number, bytes.data(), bytes.size(), static_cast<off_t>(at));
        if (count < 0 && errno != EINTR) {
            return errno;
        }
        const std::size_t written = count > 0 ? static_cast<std::size_t>(count) : 0;
        bytes = bytes.subspan(written);
        at += written;
    }
    return 0;
}

} // namespace

std::expected<RecoveryLog, FileFailure> RecoveryLog::create(const QString& path, RecoveryLineage lineage) {
    constexpr mode_t userOnly = 0600;
    const int number =
        open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, userOnly);
    if (number < 0) {
        return std::unexpected(fileFailure(errno));
    }
    RecoveryLog log(number);
    log.m_salt = QRandomGenerator::global()->generate64();
    RecoveryRecord::append({log.m_salt, lineage}, log.m_waiting);
    log.write();
    log.m_committed = log.m_end;
    if (log.m_failure) {
        return std::unexpected(*log.m_failure);
    }
    return log;
}

RecoveryLog::RecoveryLog(RecoveryLog&& other) noexcept
    : m_number(std::exchange(other.m_number, -1)), m_salt(other.m_salt),
      m_waiting(std::move(other.m_waiting)), m_end(other.m_end), m_committed(other.m_committed),
      m_failure(other.m_failure), m_isUsable(other.m_isUsable) {}

RecoveryLog& RecoveryLog::operator=(RecoveryLog&& other) noexcept {
    std::swap(m_number, other.m_number);
    m_salt = other.m_salt;
    std::swap(m_waiting, other.m_waiting);
    m_end = other.m_end;
    m_committed = other.m_committed;
    m_failure = other.m_failure;
    m_isUsable = other.m_isUsable;
    return *this;
}

RecoveryLog::~RecoveryLog() {
    if (m_number >= 0) {
        close(m_number);
    }
}

void RecoveryLog::add(const RecoveryFacts& facts) {
    RecoveryRecord::append(facts, m_end.position, m_salt, m_waiting);
    ++m_end.position.number;
}

void RecoveryLog::add(std::span<const RecoveryEdit> edits) {
    for (const RecoveryEdit& edit : edits) {
        SourceRange place = edit.range;
        Offset done = 0;
        do {
            const Offset size = std::min(edit.units.size() - done, RecoveryRecord::longestReplacement);
            add(place, edit.units.units(SourceRange::at(done, size)));
            place = SourceRange::empty(std::int64_t(place.lower) + size);
            done += size;
        } while (done < edit.units.size());
    }
}

void RecoveryLog::add(SourceRange range, std::u16string_view units) {
    RecoveryRecord::append(range, units, m_end.position, m_salt, m_waiting);
    ++m_end.position.number;
    if (m_waiting.size() >= bytesPerWrite) {
        write();
    }
}

std::expected<void, FileFailure> RecoveryLog::commit(const RecoveryMoment& moment, Offset textSize) {
    RecoveryRecord::append(moment, textSize, m_end.position, m_salt, m_waiting);
    ++m_end.position.number;
    ++m_end.position.batch;
    write();
    if (m_failure) {
        giveUpUncommitted();
        return std::unexpected(*std::exchange(m_failure, std::nullopt));
    }
    m_committed = m_end;
    return {};
}

std::future<std::expected<void, FileFailure>> RecoveryLog::sync() const {
    const auto result = std::make_shared<std::promise<std::expected<void, FileFailure>>>();
    // A number of its own: the log may go first.
    runOnFileThread([result, number = fcntl(m_number, F_DUPFD_CLOEXEC, 0)] {
        // Some disks cannot: they say EINVAL.
        const bool isDone = fdatasync(number) == 0 || errno == EINVAL;
        const int error = errno;
        close(number);
        result->set_value(isDone ? std::expected<void, FileFailure>() : std::unexpected(fileFailure(error)));
    });
    return result->get_future();
}

void RecoveryLog::write() {
    if (!m_failure) {
        const int error = writeAll(m_number, m_waiting, m_end.size);
        m_failure = error != 0 ? std::optional(fileFailure(error)) : std::nullopt;
        m_end.size += m_waiting.size();
    }
    m_waiting.clear();
}

/// Cuts off what a failed write left, so that what is committed next follows on what was committed.
void RecoveryLog::giveUpUncommitted() {
    m_end = m_committed;
    m_isUsable = m_isUsable && ftruncate(m_number, static_cast<off_t>(m_committed.size)) == 0;
}
