#include "RecoveryWriter.h"

#include "Postbox.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <future>
#include <iterator>
#include <mutex>
#include <new>
#include <optional>
#include <span>
#include <system_error>
#include <thread>
#include <utility>

namespace {

using Clock = std::chrono::steady_clock;

/// More changes at once are not worth looking at one by one: the text is written whole.
constexpr std::size_t mostEdits = std::size_t{1} << 16;

/// Bytes that the record of a change takes beside its units.
constexpr std::uint64_t bytesPerEdit = 2 * RecoveryRecord::headSize + 1;

/// Units of a whole text between two looks at what changed meanwhile.
constexpr Offset unitsPerTurn = Offset{1} << 20;

/// How long to wait for the disk between two looks at what changed meanwhile.
constexpr std::chrono::milliseconds turn(50);

/// Bytes of a whole text that wait for the disk at most, so that the last wait is no longer than others.
constexpr std::uint64_t bytesPerSync = std::uint64_t{16} << 20;

/// Puts `next` and `last`, which it follows, into one when they touch; answers whether they do.
bool join(RecoveryEdit& last, const RecoveryEdit& next) {
    const std::int64_t lower = last.range.lower;
    const std::int64_t upper = lower + last.units.size(); // After `last`.
    if (next.range.lower > upper || next.range.upper < lower) {
        return false;
    }
    const std::int64_t before = std::max<std::int64_t>(next.range.lower - lower, 0);
    const std::int64_t after = std::min<std::int64_t>(next.range.upper - lower, last.units.size());
    last.units = last.units.replaced({before, after}, next.units);
    last.range = {std::min<std::int64_t>(lower, next.range.lower),
                  last.range.upper + std::max<std::int64_t>(next.range.upper - upper, 0)};
    return true;
}

RecoveryEdits joined(RecoveryEdits edits) {
    RecoveryEdits result;
    for (RecoveryEdit& edit : edits) {
        if (result.empty() || !join(result.back(), edit)) {
            result.push_back(std::move(edit));
        }
    }
    return result;
}

using Result = std::expected<void, FileFailure>;

/// The lineage of logs that go on from `taken`.
RecoveryLineage continuing(const std::optional<RecoveryWriter::Taken>& taken) {
    RecoveryLineage lineage = taken ? taken->lineage : RecoveryLineage();
    while (lineage.id == 0) {
        lineage.id = QRandomGenerator::global()->generate64();
    }
    return lineage;
}

} // namespace

/// The editor's side leaves notes under a lock; the thread takes them.
class RecoveryWriter::Work {
public:
    Work(std::shared_ptr<RecoverySession> session, const RecoveryPace& pace, RecoveryFacts facts,
         const std::optional<Taken>& taken, FailureStep onFailure)
        : m_session(std::move(session)), m_pace(pace), m_onFailure(std::move(onFailure)),
          m_facts(std::move(facts)), m_isKept(taken.has_value()), m_path(taken ? taken->path : QString()),
          m_lineage(continuing(taken)), m_retryDelay(pace.retryDelay) {}

    void add(std::optional<RecoveryEdits> edits, const Rope& text, const RecoveryMoment& moment);
    void moveTo(const Rope& text);
    void setSelection(SourceRange selection);
    /// Both answer whether there is something to do now.
    bool setFacts(const RecoveryFacts& facts, const Rope& text, const RecoveryMoment& moment);
    bool forget();

    void end();
    bool waitUntilIdle(std::chrono::milliseconds timeout);

    /// Starts the thread unless it runs.
    void start(const std::shared_ptr<Work>& self);

private:
    /// What is not kept yet.
    struct Notes {
        RecoveryEdits edits;
        bool isWhole = false; ///< The edits do not tell everything: only the text does.
        Rope text;
        RecoveryMoment moment;
        std::optional<Clock::time_point> due; ///< Nothing when there is nothing to keep.
    };

    struct Job {
        Notes notes;
        RecoveryFacts facts;
        bool isForgotten = false;
        bool isLast = false;
    };

    /// What the log that is to be replaced has: all up to now, or less.
    enum class OldLog : std::uint8_t { current, outdated };

    /// A whole text on its way into a new log.
    struct Rewrite {
        RecoveryEdits tail; ///< What changed since; made `text` at `moment`.
        Rope text;
        RecoveryMoment moment;
        OldLog old = OldLog::outdated;
        bool replaces = false;  ///< There is an old log.
        bool isStopped = false; ///< Nobody wants it any more.
        std::uint64_t startSize = 0;
    };

    void run();
    std::optional<Job> next();
    void perform(Job job);
    Notes takeNotes();
    void giveBack(Notes notes);
    Result keep(Notes& notes, const RecoveryFacts& facts);
    Result append(const Notes& notes);
    Result writeWhole(Notes& notes, const RecoveryFacts& facts, OldLog old);
    std::expected<RecoveryLog, FileFailure> writtenLog(const QString& file, const Notes& notes,
                                                       const RecoveryFacts& facts, Rewrite& rewrite);
    Result synced(const RecoveryLog& log, Rewrite& rewrite);
    void catchUp(Rewrite& rewrite);
    void syncSoon();
    void checkSync();
    void removeLog();
    bool hasUsableLog() const;
    std::uint64_t mostChanges() const;

    // Set before the thread starts.
    const std::shared_ptr<RecoverySession> m_session;
    const RecoveryPace m_pace;
    const FailureStep m_onFailure;
    bool m_isStarted = false; ///< The editor's own.

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::condition_variable m_idle;
    Notes m_notes;
    RecoveryFacts m_facts;
    bool m_isForgotten = false; ///< What was kept is to be removed.
    bool m_isEnding = false;
    bool m_isBusy = false;
    bool m_isKept = false; ///< There is a log, or will be soon.

    // The thread's own.
    QString m_path; ///< Of the log; empty when there is none.
    RecoveryLineage m_lineage;
    std::optional<RecoveryLog> m_log;
    std::optional<std::future<Result>> m_sync; ///< Under way.
    bool m_isSyncDue = false;                  ///< After the one that is under way.
    Rope m_keptText;                           ///< What the log has; empty once the disk has taken it.
    RecoveryMoment m_keptMoment;
    std::uint64_t m_startSize = 0; ///< Of the text that the log starts with, in bytes.
    std::chrono::milliseconds m_retryDelay;
};

void RecoveryWriter::Work::add(std::optional<RecoveryEdits> edits, const Rope& text,
                               const RecoveryMoment& moment) {
    const std::lock_guard guard(m_mutex);
    if (!edits || m_notes.edits.size() + edits->size() > mostEdits) {
        m_notes.isWhole = true;
    }
    if (!m_notes.isWhole) {
        std::ranges::move(*edits, std::back_inserter(m_notes.edits));
    }
    m_notes.text = text;
    m_notes.moment = moment;
    if (!m_notes.due) {
        m_notes.due = Clock::now() + m_pace.flushDelay;
        m_changed.notify_one();
    }
}

void RecoveryWriter::Work::moveTo(const Rope& text) {
    const std::lock_guard guard(m_mutex);
    if (m_notes.due) {
        m_notes.text = text;
    }
}

void RecoveryWriter::Work::setSelection(SourceRange selection) {
    const std::lock_guard guard(m_mutex);
    m_notes.moment.selection = selection;
}

bool RecoveryWriter::Work::setFacts(const RecoveryFacts& facts, const Rope& text,
                                    const RecoveryMoment& moment) {
    const std::lock_guard guard(m_mutex);
    m_facts = facts;
    if (!m_notes.due && !m_isKept) {
        return false;
    }
    m_notes.isWhole = true;
    m_notes.text = text;
    m_notes.moment = moment;
    m_notes.due = Clock::now();
    m_changed.notify_one();
    return true;
}

bool RecoveryWriter::Work::forget() {
    const std::lock_guard guard(m_mutex);
    if (!m_notes.due && !m_isKept) {
        return false;
    }
    m_notes = {};
    m_isKept = false;
    m_isForgotten = true;
    m_changed.notify_one();
    return true;
}

void RecoveryWriter::Work::end() {
    const std::lock_guard guard(m_mutex);
    m_isEnding = true;
    m_changed.notify_one();
}

bool RecoveryWriter::Work::waitUntilIdle(std::chrono::milliseconds timeout) {
    std::unique_lock guard(m_mutex);
    return m_idle.wait_for(guard, timeout, [this] { return !m_notes.due && !m_isForgotten && !m_isBusy; });
}

void RecoveryWriter::Work::start(const std::shared_ptr<Work>& self) {
    if (m_isStarted) {
        return;
    }
    const auto works = m_session->works();
    works->begin();
    try {
        std::thread([work = self, works]() mutable {
            work->run();
            // The session, and its lock, may go with it: before anybody hears of the end.
            work.reset();
            works->end();
        }).detach();
        m_isStarted = true;
    } catch (const std::system_error&) {
        // Tried again at the next change.
        works->end();
        m_onFailure(FileFailure::other, m_session->root());
    }
}

void RecoveryWriter::Work::run() {
    bool isLast = false;
    while (auto job = isLast ? std::nullopt : next()) {
        isLast = job->isLast;
        perform(std::move(*job));
    }
    if (m_sync) {
        m_sync->wait();
    }
    if (m_log && m_isSyncDue) {
        m_log->sync().wait();
    }
}

/// Waits for something to do; nothing when the end came first.
std::optional<RecoveryWriter::Work::Job> RecoveryWriter::Work::next() {
    for (;;) {
        checkSync();
        std::unique_lock guard(m_mutex);
        m_isBusy = false;
        const bool isDue = m_notes.due && (m_isEnding || *m_notes.due <= Clock::now());
        if (m_isForgotten || isDue) {
            m_isBusy = true;
            Job job{.notes = {}, .facts = m_facts, .isForgotten = m_isForgotten, .isLast = m_isEnding};
            if (isDue) {
                job.notes = takeNotes();
                m_isKept = true;
            }
            m_isForgotten = false;
            return job;
        }
        m_idle.notify_all();
        if (m_isEnding) {
            return std::nullopt;
        }
        constexpr std::chrono::hours never(24);
        m_changed.wait_until(guard, std::min<Clock::time_point>(
                                        m_notes.due.value_or(Clock::now() + never),
                                        Clock::now() + (m_sync ? std::chrono::milliseconds(turn) : never)));
    }
}

/// Has the disk take what the log has, after what it is taking already.
void RecoveryWriter::Work::syncSoon() {
    m_isSyncDue = m_sync.has_value();
    if (!m_sync) {
        m_sync = m_log->sync();
    }
}

/// Goes on with what the disk took. When it could not, the text is to be written anew.
void RecoveryWriter::Work::checkSync() {
    if (!m_sync || m_sync->wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
        return;
    }
    const Result result = std::exchange(m_sync, std::nullopt)->get();
    if (result) {
        if (m_isSyncDue) {
            syncSoon();
        } else {
            // The disk has it.
            m_keptText = {};
        }
        return;
    }
    m_log.reset();
    Notes lost;
    lost.isWhole = true;
    lost.text = m_keptText;
    lost.moment = m_keptMoment;
    giveBack(std::move(lost));
    m_onFailure(result.error(), m_session->root());
}

/// What there is to keep. The selection stays for the next change.
RecoveryWriter::Work::Notes RecoveryWriter::Work::takeNotes() {
    Notes taken = std::exchange(m_notes, {});
    m_notes.moment = taken.moment;
    return taken;
}

void RecoveryWriter::Work::perform(Job job) {
    if (job.isForgotten) {
        removeLog();
    }
    if (!job.notes.due) {
        return;
    }
    Result result;
    try {
        result = keep(job.notes, job.facts);
    } catch (const std::bad_alloc&) {
        // What the log has by now is uncertain. The text is there, whatever became of the edits.
        m_log.reset();
        job.notes.isWhole = true;
        result = std::unexpected(FileFailure::noMemory);
    }
    if (result) {
        m_retryDelay = m_pace.retryDelay;
        return;
    }
    giveBack(std::move(job.notes));
    m_onFailure(result.error(), m_session->root());
}

/// Puts what could not be kept before what there is to keep since, for another try.
void RecoveryWriter::Work::giveBack(Notes notes) {
    const std::lock_guard guard(m_mutex);
    if (m_isForgotten) {
        return;
    }
    const bool isNewer = m_notes.due.has_value();
    if (!isNewer) {
        std::swap(m_notes, notes);
    } else if (m_notes.isWhole || notes.isWhole || notes.edits.size() + m_notes.edits.size() > mostEdits) {
        m_notes.isWhole = true;
    } else {
        std::ranges::move(m_notes.edits, std::back_inserter(notes.edits));
        std::swap(m_notes.edits, notes.edits);
    }
    m_notes.due = Clock::now() + m_retryDelay;
    m_retryDelay = std::min(2 * m_retryDelay, m_pace.longestRetryDelay);
}

/// Whether the log is good and where it was: somebody may have cleaned up the disk.
bool RecoveryWriter::Work::hasUsableLog() const {
    return m_log && m_log->isUsable() && QFileInfo::exists(m_path);
}

/// How many bytes of changes a log may have.
std::uint64_t RecoveryWriter::Work::mostChanges() const {
    constexpr std::uint64_t part = 4;
    return std::clamp(m_startSize / part, m_pace.leastChanges, m_pace.mostChanges);
}

Result RecoveryWriter::Work::keep(Notes& notes, const RecoveryFacts& facts) {
    notes.edits = joined(std::move(notes.edits));
    std::uint64_t bytes = bytesPerEdit * notes.edits.size();
    for (const RecoveryEdit& edit : notes.edits) {
        bytes += edit.units.size();
    }
    if (notes.isWhole || !hasUsableLog() || bytes > mostChanges()) {
        return writeWhole(notes, facts, OldLog::outdated);
    }
    if (const Result result = append(notes); !result) {
        return result;
    }
    if (m_log->size() - m_startSize <= mostChanges()) {
        return {};
    }
    const Result result = writeWhole(notes, facts, OldLog::current);
    if (!result && notes.isWhole) {
        return result;
    }
    if (!result) {
        // The old log has everything, and is only longer than it should be. It may grow as much again.
        m_startSize = m_log->size();
    }
    return {};
}

Result RecoveryWriter::Work::append(const Notes& notes) {
    m_log->add(notes.edits);
    const Result result = m_log->commit(notes.moment, notes.text.size());
    if (result) {
        m_keptText = notes.text;
        m_keptMoment = notes.moment;
        syncSoon();
    }
    return result;
}

/// Starts a log anew with the text. On failure `notes` are what is not kept: nothing, not even whole, where
/// the old log has it all.
Result RecoveryWriter::Work::writeWhole(Notes& notes, const RecoveryFacts& facts, OldLog old) {
    if (!m_path.isEmpty() && !QFileInfo::exists(m_path)) {
        m_path.clear();
    }
    const auto path = m_path.isEmpty() ? m_session->pathForNewLog() : m_path;
    if (!path) {
        notes.isWhole = true;
        return std::unexpected(path.error());
    }
    // Where there is no old log to be careful of, a half-written one may as well be found under its name.
    const QString file = m_path.isEmpty() ? *path : *path + QStringLiteral(".new");
    QFile::remove(file);
    Rewrite rewrite{.text = notes.text, .moment = notes.moment, .old = old, .replaces = !m_path.isEmpty()};
    auto log = [&]() -> std::expected<RecoveryLog, FileFailure> {
        try {
            return writtenLog(file, notes, facts, rewrite);
        } catch (const std::bad_alloc&) {
            rewrite.old = OldLog::outdated;
            return std::unexpected(FileFailure::noMemory);
        }
    }();
    if (log && file != *path &&
        rename(QFile::encodeName(file).constData(), QFile::encodeName(*path).constData()) != 0) {
        log = std::unexpected(fileFailure(errno));
    }
    if (!log) {
        QFile::remove(file);
        notes.isWhole = rewrite.old != OldLog::current;
        notes.text = rewrite.text;
        notes.moment = rewrite.moment;
        return rewrite.isStopped ? Result() : std::unexpected(log.error());
    }
    m_path = *path;
    m_log = std::move(*log);
    m_startSize = rewrite.startSize;
    // Of the log that is gone.
    m_sync.reset();
    m_keptText = rewrite.text;
    m_keptMoment = rewrite.moment;
    syncSoon();
    runOnFileThread([folder = QFileInfo(m_path).path()] { syncFolder(folder); });
    return {};
}

/// A new log in `file` that has the text of `notes` and what changed while it was written. Where it is to
/// replace another one, the disk has taken it.
std::expected<RecoveryLog, FileFailure> RecoveryWriter::Work::writtenLog(const QString& file,
                                                                         const Notes& notes,
                                                                         const RecoveryFacts& facts,
                                                                         Rewrite& rewrite) {
    ++m_lineage.serial;
    auto log = RecoveryLog::create(file, m_lineage);
    if (!log) {
        return log;
    }
    log->add(facts);
    std::uint64_t unsynced = 0;
    for (Offset done = 0; done < notes.text.size() && !rewrite.isStopped;) {
        const Offset size = std::min(notes.text.size() - done, unitsPerTurn);
        const RecoveryEdit piece{SourceRange::empty(done), notes.text.part(SourceRange::at(done, size))};
        log->add(std::span(&piece, 1));
        done += size;
        unsynced += size;
        if (unsynced >= bytesPerSync) {
            // What fails here fails in the end as well.
            log->sync();
            unsynced = 0;
        }
        catchUp(rewrite);
    }
    Result result = rewrite.isStopped ? std::unexpected(FileFailure::other)
                                      : log->commit(notes.moment, notes.text.size());
    rewrite.startSize = log->size();
    for (int i = 0; i < 2 && result && rewrite.replaces; ++i) {
        result = synced(*log, rewrite);
        if (result && !rewrite.tail.empty()) {
            // The disk gets this with the next sync: the old log, which has it, is good until then.
            log->add(std::exchange(rewrite.tail, {}));
            result = log->commit(rewrite.moment, rewrite.text.size());
        }
    }
    if (!result) {
        return std::unexpected(result.error());
    }
    return log;
}

/// Waits until the disk has the new log; the old one goes on being written.
Result RecoveryWriter::Work::synced(const RecoveryLog& log, Rewrite& rewrite) {
    auto sync = log.sync();
    while (sync.wait_for(turn) != std::future_status::ready) {
        catchUp(rewrite);
        if (rewrite.isStopped) {
            return std::unexpected(FileFailure::other);
        }
    }
    return sync.get();
}

/// Gives the old log, where it is current, what became due while the new one is written.
void RecoveryWriter::Work::catchUp(Rewrite& rewrite) {
    Notes notes;
    {
        const std::lock_guard guard(m_mutex);
        rewrite.isStopped = m_isForgotten;
        const bool isDue = m_notes.due && *m_notes.due <= Clock::now();
        if (rewrite.isStopped || rewrite.old != OldLog::current || !isDue || m_notes.isWhole) {
            return;
        }
        notes = takeNotes();
    }
    // First: from here on, no failure may lose the text.
    rewrite.text = notes.text;
    rewrite.moment = notes.moment;
    notes.edits = joined(std::move(notes.edits));
    if (!append(notes)) {
        rewrite.old = OldLog::outdated;
    }
    std::ranges::move(notes.edits, std::back_inserter(rewrite.tail));
}

void RecoveryWriter::Work::removeLog() {
    m_log.reset();
    m_sync.reset();
    m_isSyncDue = false;
    m_keptText = {};
    if (!m_path.isEmpty()) {
        QFile::remove(m_path);
        QFile::remove(m_path + QStringLiteral(".new"));
        m_path.clear();
    }
}

RecoveryWriter::RecoveryWriter(std::shared_ptr<RecoverySession> session, const RecoveryPace& pace,
                               RecoveryFacts facts, const std::optional<Taken>& taken, FailureStep onFailure)
    : m_work(
          std::make_shared<Work>(std::move(session), pace, std::move(facts), taken, std::move(onFailure))) {}

RecoveryWriter::~RecoveryWriter() { m_work->end(); }

void RecoveryWriter::add(std::optional<RecoveryEdits> edits, const Rope& text, const RecoveryMoment& moment) {
    m_work->add(std::move(edits), text, moment);
    m_work->start(m_work);
}

void RecoveryWriter::moveTo(const Rope& text) { m_work->moveTo(text); }

void RecoveryWriter::setSelection(SourceRange selection) { m_work->setSelection(selection); }

void RecoveryWriter::setFacts(const RecoveryFacts& facts, const Rope& text, const RecoveryMoment& moment) {
    if (m_work->setFacts(facts, text, moment)) {
        m_work->start(m_work);
    }
}

void RecoveryWriter::forget() {
    if (m_work->forget()) {
        m_work->start(m_work);
    }
}

bool RecoveryWriter::waitUntilIdle(std::chrono::milliseconds timeout) const {
    return m_work->waitUntilIdle(timeout);
}
