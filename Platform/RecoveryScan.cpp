#include "RecoveryScan.h"

#include <algorithm>
#include <functional>
#include <tuple>

namespace {

using namespace RecoveryRecord;

class Scanner {
public:
    Scanner(Bytes records, RecoveryScan& to) : m_rest(records), m_scan(to) {}

    void run() {
        while (m_rest.size() >= headSize) {
            if (const auto next = head(m_rest, salt())) {
                takeRecord(*next);
            } else {
                m_scan.isDamaged = true;
                skipDamaged();
            }
        }
    }

private:
    std::uint64_t salt() const { return m_scan.header.salt; }

    /// How far from the start of `bytes`, `from` or further, a head or a tail stands; their size if none
    /// does.
    std::size_t distanceToMark(Bytes bytes, std::size_t from) const {
        for (; from < bytes.size(); ++from) {
            const Bytes rest = bytes.subspan(from);
            if (head(rest, salt()) || tail(rest, salt())) {
                return from;
            }
        }
        return bytes.size();
    }

    void take(const Head& found, Bytes payload) {
        m_scan.records.push_back({found, payload, isWhole(payload, found, salt())});
    }

    void takeRecord(const Head& next) {
        const Bytes behind = m_rest.subspan(headSize);
        const Bytes payload = behind.first(std::min<std::size_t>(next.length, behind.size()));
        if (isWhole(payload, next, salt())) {
            take(next, payload);
            skipTail(next, behind.subspan(payload.size()));
        } else {
            takeDamaged(next, behind);
        }
    }

    /// `behind` is what follows a whole payload: the tail of the record, or less where the log is cut off.
    void skipTail(const Head& of, Bytes behind) {
        const auto found = tail(behind, salt());
        m_rest =
            behind.subspan(found == of || behind.size() < headSize ? std::min(headSize, behind.size()) : 0);
    }

    /// The payload under `next` is damaged, some of its bytes may be missing, or the log is cut off in it.
    void takeDamaged(const Head& next, Bytes behind) {
        const std::size_t written = next.length;
        std::size_t length = distanceToMark(behind, 0);
        const bool isCutOff = length == behind.size() && length < written + headSize;
        m_scan.isDamaged = m_scan.isDamaged || !isCutOff || length >= written;
        length = length == behind.size() ? std::min(length, written) : length;
        take(next, behind.first(std::min(length, written)));
        skipTail(next, behind.subspan(length));
    }

    /// No head stands where one should. A record whose tail is found is taken all the same.
    void skipDamaged() {
        const std::size_t distance = distanceToMark(m_rest, 1);
        const Bytes behind = m_rest.subspan(distance);
        if (const auto found = tail(behind, salt())) {
            const std::size_t length = std::min<std::size_t>(found->length, distance);
            take(*found, m_rest.subspan(distance - length, length));
            m_rest = behind.subspan(headSize);
        } else {
            m_rest = behind;
        }
    }

    Bytes m_rest;
    RecoveryScan& m_scan;
};

/// Brings the records into the order in which they were written, each once.
void putInOrder(RecoveryScan& scan) {
    const auto number = [](const RecoveryScan::Record& record) { return record.head.number; };
    if (!std::ranges::is_sorted(scan.records, std::ranges::less(), number)) {
        scan.isDamaged = true;
    }
    // Of several with the same number a whole one comes first.
    std::ranges::stable_sort(scan.records, std::ranges::less(), [](const RecoveryScan::Record& record) {
        return std::tuple(record.head.number, !record.isWhole);
    });
    const auto repeated = std::ranges::unique(scan.records, std::ranges::equal_to(), number);
    scan.isDamaged = scan.isDamaged || !repeated.empty();
    scan.records.erase(repeated.begin(), repeated.end());
}

} // namespace

std::optional<RecoveryScan> RecoveryScan::of(Bytes log) {
    const auto found = RecoveryRecord::header(log);
    if (!found) {
        return std::nullopt;
    }
    RecoveryScan scan{.header = *found};
    ByteString written;
    append(*found, written);
    scan.isDamaged = !std::ranges::equal(log.first(headersSize), written);
    Scanner(log.subspan(headersSize), scan).run();
    putInOrder(scan);
    return scan;
}
